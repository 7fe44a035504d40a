// Windows: what the desktop sees. A window holds one palette or several; those of a floater show as tabs, and
// one of them is active. Windows come and go with their palettes. Main thread only.
#pragma once

#include "ZVList.h"
#include "ZVRect.h"
#include "ZVTags.h"

struct ZVSysScrollBar;  ///< a native scroll bar of a window; the desktop layer's own

/// Kinds of palettes and of the windows that are made for them.
enum ZVKind : uint32_t {
    ZV_KIND_DOCUMENT = 1,   ///< document window with close and collapse boxes; resizes, has no preferences
    ZV_KIND_MODAL = 2,      ///< dialog: its display returns when it has been closed
    ZV_KIND_FLOATER = 3,    ///< floating window with a tab bar, which other floaters can share
    ZV_KIND_FIXED = 4,      ///< floating window without tab bar; the default, and the kind of sub-palettes
    ZV_KIND_ROOT = 5,       ///< the window behind all others, made by InitZV
    ZV_KIND_TRANSIENT = 6,  ///< undecorated pop-up, closed by a press elsewhere
    ZV_KIND_APP = 7         ///< application window, which takes the place of the root window
};

/// A window of the desktop, or a pseudo-window inside one. On the environment's `windows`, which owns it.
struct ZVWindow {
    Node node;                 ///< id: of a pseudo-window; 0 for a system window
    List palettes;             ///< its ZVPalettes, highest tab priority first
    ZVPalette* activePalette;  ///< null while none is
    char* name;                ///< title of SetWindowNameZV; else the active palette's name is the title
    uint32_t kind;             ///< ZVKind, of the first palette
    uint32_t flags;            ///< ZVPaletteFlag, of the first palette
    int32_t top, left, width, height;  ///< client area on the screen; of a pseudo-window in its parent
    uint16_t position, reference;      ///< placement of a pseudo-window
    ZVWindow* parent;                  ///< of a pseudo-window; null for a system window
    TagItem* tags;                     ///< flat clone of a pseudo-window's tags, or null
    List hooks;                        ///< ZVEventHook
    ZVSysWindow* sysWindow;            ///< the native window; null for a pseudo-window
    ZVSysScrollBar* verticalBar;       ///< or null
    ZVSysScrollBar* horizontalBar;     ///< or null
};

/// An event hook of a window. Called behind the callbacks of each event of its number that is sent to its
/// palette, with the palette, the event number and the user pointer.
struct ZVEventHook {
    Node node;  ///< id: of AddEventHookZV
    ZVPalette* palette;
    uint32_t event;
    void (*function)(void* palette, long event, void* user);
    void* user;
};

/// Sets a window's own title, copied; null gives the title back to the active palette's name.
ZV_API void SetWindowNameZV(ZVWindow* window, char const* name);
ZV_API void SetWindowNameZV(ZVWindow* window, unsigned long nameId);

/// Frame and client area on the screen; empty without a window.
ZV_API void GetWindowRectZV(ZVWindow const* window, ZVRectT<long>* rect);
ZV_API void GetClientRectZV(ZVWindow const* window, ZVRectT<long>* rect);

/// Main monitor without the menu bar: 0, the menu bar's height, the width, and the height that is left.
ZV_API void GetScreenRectZV(ZVRectT<long>* rect);

/// Size in pixels and bits per pixel of the display. Null outputs are passed over.
ZV_API void GetDisplayFormatZV(long* width, long* height, long* depth);

/// No effect: the desktop keeps a modal window's owner from being used.
ZV_API void DisableWindowsZV();
ZV_API void EnableWindowsZV();

/// Lines that one notch of the mouse wheel scrolls.
ZV_API long GetWheelScrollLinesZV();
