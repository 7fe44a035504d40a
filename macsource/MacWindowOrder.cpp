// Which window is in front, and when floaters are on screen.
#include "MacWindow.h"

#include "ZVLibInternal.h"
#include "interface/Records.h"

void DisableWindowsZV() {}

void EnableWindowsZV() {}

void Mac_Select_Window(ZVWindow* window)
{
    if (!window || !window->sysWindow) return;
    window->sysWindow->host->Raise();
    ZVEnv->frontWindow = Mac_FrontNonFloatingWindow();
}

bool Is_Floating(ZVWindow const& window)
{
    return window.kind == ZV_KIND_FLOATER || window.kind == ZV_KIND_FIXED || window.kind == ZV_KIND_TRANSIENT;
}

ZVWindow* Mac_FrontNonFloatingWindow()
{
    if (!Display()) return nullptr;
    for (HostWindow const* host = nullptr; (host = Display()->Next_Window(host));)
        if (ZVWindow* window = Window_Of(host); window && !Is_Floating(*window)) return window;
    return nullptr;
}

static void Show_Floaters(bool areShown)
{
    for (ZVWindow const& window : All_Windows()) {
        bool const isFloater = window.kind == ZV_KIND_FLOATER || window.kind == ZV_KIND_FIXED;
        if (!window.sysWindow || !isFloater) continue;
        if (areShown)
            window.sysWindow->host->Show();
        else
            window.sysWindow->host->Hide();
    }
}

void Mac_Show_Floaters()
{
    Show_Floaters(true);
}

void Mac_Hide_Floaters()
{
    Show_Floaters(false);
}
