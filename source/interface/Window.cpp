// Windows as such: their records, titles and hooks, and the end of all of them.
#include "interface/PaletteTree.h"
#include "interface/WindowPrefs.h"

bool Is_Window(ZVWindow const* window)
{
    for (ZVWindow const& other : All_Windows())
        if (&other == window) return true;
    return false;
}

char const* Window_Title(ZVWindow const& window)
{
    char const* title = window.name;
    if (!title && window.activePalette) title = window.activePalette->title;
    return title ? title : "";
}

void SetWindowNameZV(ZVWindow* window, char const* name)
{
    if (!window || !Replace_Text(window->node.name, name)) return;
    window->name = window->node.name;
    if (window->sysWindow) Set_SysWindowName(window, Window_Title(*window));
}

void SetWindowNameZV(ZVWindow* window, unsigned long nameId)
{
    SetWindowNameZV(window, Text_Of_Id(nameId));
}

ZVWindow* GetParentSysWindow(ZVPalette const* palette, long* dx, long* dy)
{
    long left = 0, top = 0;
    ZVWindow* window = palette ? palette->window : nullptr;
    for (; window && window->parent; window = window->parent) {
        left += window->left;
        top += window->top;
    }
    if (dx) *dx = left;
    if (dy) *dy = top;
    return window;
}

ZVWindow* New_Window()
{
    auto* const window = New_Record<ZVWindow>();
    if (!window) return nullptr;
    NewList(&window->palettes);
    NewList(&window->hooks);
    AddTail(&ZVEnv->windows, &window->node);
    return window;
}

void Free_Window(ZVWindow* window)
{
    if (!window) return;
    if (ZVEnv->rootWindow == window) ZVEnv->rootWindow = nullptr;
    if (ZVEnv->frontWindow == window) ZVEnv->frontWindow = nullptr;
    Free_List(&window->hooks);
    FreeMemZV(window->tags);
    FreeNode(&window->node);
}

// ---- hooks ------------------------------------------------------------------------------------------------

unsigned long AddEventHookZV(ZVPalette* palette, unsigned long event, void (*function)(void*, long, void*),
                             void* user)
{
    if (!function || !Is_Palette(palette) || !palette->window) return 0;
    auto* const hook = New_Record<ZVEventHook>();
    if (!hook) return 0;
    List& hooks = palette->window->hooks;
    hook->node.id = 1;
    while (FindNodeID(&hooks, hook->node.id))
        ++hook->node.id;
    hook->palette = palette;
    hook->event = static_cast<uint32_t>(event);
    hook->function = function;
    hook->user = user;
    AddTail(&hooks, &hook->node);
    return hook->node.id;
}

void RemoveEventHookZV(ZVPalette* palette, unsigned long id)
{
    if (!Is_Palette(palette) || !palette->window) return;
    for (ZVEventHook& hook : Records<ZVEventHook>(palette->window->hooks)) {
        if (hook.palette != palette || hook.node.id != id) continue;
        FreeNode(&hook.node);
        return;
    }
}

// ---- the end ----------------------------------------------------------------------------------------------

void Close_Window(ZVWindow& window)
{
    // What a palette's own callbacks ask for while it is being freed leaves it where it is.
    while (Node* first = List_First(&window.palettes)) {
        auto* const palette = reinterpret_cast<ZVPalette*>(first);
        if (palette->flags & ZV_PALF_CLOSING) return;
        Free_Palette(palette);
    }
    if (window.sysWindow)
        Free_SysWindow(&window);
    else
        Free_Window(&window);
}

void CleanUpWindowsZV()
{
    if (!ZVEnv) return;
    Snapshot_WindowPrefs();
    Seal_WindowPrefs();
    if (ZVPalette* unfinished = Root_Of(ZVEnv->buildingPalette)) Free_Palette(unfinished);
    for (Node* node = ZVEnv->windows.tailPred; node->prev;) {
        auto* const window = reinterpret_cast<ZVWindow*>(node);
        Close_Window(*window);
        // A window that stays, or one that a callback has opened, is passed over and met again.
        node = Is_Window(window) ? window->node.prev : ZVEnv->windows.tailPred;
    }
    ZVEnv->rootSysWindow = nullptr;
}
