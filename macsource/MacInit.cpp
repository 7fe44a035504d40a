// The platform's part of start and end.
#include "MacWindow.h"

#include "ZVLibInternal.h"
#include "foundation/Style.h"
#include "interface/PaletteTree.h"

/// The first version of the system numbering from which all rules of a modern system hold.
static constexpr uint32_t ModernSystem = 0x1000;

static constexpr int32_t DefaultScript = 3;

static void Store_App_Title()
{
    TagItem const* tag = FindTagItem(ZV_INIT_APP_TITLE, ZVEnv->initTags);
    auto const* title = tag ? reinterpret_cast<char const*>(tag->data) : nullptr;
    ZVEnv->appTitle = title && *title ? AllocString(title) : nullptr;
}

/// The monitor of ZV_INIT_MONITOR, or the first one when there is none of that number.
static ZVMonitor const& Chosen_Monitor()
{
    TagItem const* tag = FindTagItem(ZV_INIT_MONITOR, ZVEnv->initTags);
    bool const exists = tag && tag->data < static_cast<unsigned long>(ZVEnv->monitorCount);
    return ZVEnv->monitors[exists ? tag->data : 0];
}

/// The window behind all palettes, over all monitors; with one monitor the menu bar stays free. False with
/// error 1 when it cannot be had.
static bool Make_Root_Window()
{
    ZVRectT<long> area = Desktop_Area();
    if (ZVEnv->monitorCount == 1) {
        area.y += Menu_Bar_Height();
        area.height -= Menu_Bar_Height();
    }
    ZVWindow* const window = New_Window();
    if (!window) return false;
    window->kind = ZV_KIND_ROOT;
    window->left = static_cast<int32_t>(area.x);
    window->top = static_cast<int32_t>(area.y);
    window->width = static_cast<int32_t>(area.width);
    window->height = static_cast<int32_t>(area.height);
    if (!Make_SysWindow(window, nullptr)) {
        SetError(ZV_ERR_MEMORY);
        Free_Window(window);
        return false;
    }
    ZVEnv->rootWindow = window;
    return true;
}

static bool Start_Interface(long makeRootWindow)
{
    if (!Open_Display()) return false;
    Mac_Flush_Events();
    Mac_Show_Cursor(ZV_CURSOR_ARROW);
    bool const isOwn = FindTagItem(ZV_INIT_NO_ROOT_WINDOW, ZVEnv->initTags);
    return !makeRootWindow || isOwn || Make_Root_Window();
}

long Init_OS(long makeRootWindow)
{
    Store_App_Title();
    ZVEnv->systemVersion = ModernSystem;
    Set_Memory_Limits(OS_Total_Memory());
    ZVEnv->scriptCode = DefaultScript;
    if (!FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags) && !Start_Interface(makeRootWindow)) return 0;
    TagItem const* tag = FindTagItem(ZV_INIT_FONT_SIZE, ZVEnv->initTags);
    long const fontSize = tag ? static_cast<long>(tag->data) : 0;
    Set_Metrics(*ZVEnv->style, Chosen_Monitor().width, tag ? &fontSize : nullptr);
    return 1;
}

void Cleanup_OS()
{
    if (Display()) Mac_Flush_Events();
}

void Mac_Close_Display()
{
    Close_Display();
    Close_Fonts();
}
