// Palettes: panels of groups and items, declared by a sequence of calls and then displayed. Between
// InitPaletteZV and DisplayPaletteZV come the groups of ZVGroup.h with the items of ZVItem.h, and
// sub-palettes, each closed by EndPaletteZV, which lie inside their parent. A palette may be closed in any of
// its own callbacks. Main thread only.
#pragma once

#include "ZVLayout.h"
#include "ZVWindow.h"

/// Flags of a palette; as data of ZV_PAL_FLAGS they gather.
enum ZVPaletteFlag : uint32_t {
    ZV_PALF_HIDDEN = 0x00000002,        ///< set and cleared by the library
    ZV_PALF_SIZE_BOTH = 0x00000008,     ///< resizes; both sizes come from the preferences
    ZV_PALF_SIZE_X = 0x00000010,        ///< resizes in width, which comes from the preferences
    ZV_PALF_SIZE_Y = 0x00000020,        ///< resizes in height, which comes from the preferences
    ZV_PALF_ZOOM = 0x00000040,          ///< zoom box
    ZV_PALF_NO_CLOSE = 0x00000080,      ///< no close box
    ZV_PALF_PLAIN = 0x00000100,         ///< no title bar, and no resizing
    ZV_PALF_HSCROLL = 0x00000200,       ///< horizontal scroll bar, 15 pixels high
    ZV_PALF_VSCROLL = 0x00000400,       ///< vertical scroll bar, 15 pixels wide
    ZV_PALF_NO_ACTIVATE = 0x00000800,   ///< takes no part in activation
    ZV_PALF_NO_GROW_AREA = 0x00001000,  ///< resizes, but without strips for a grow box
    ZV_PALF_HILITED = 0x00002000,       ///< marked by a frame of one pixel
    ZV_PALF_PSEUDO = 0x00008000,        ///< lies in a pseudo-window; cleared without a root window
    ZV_PALF_NO_TAB_BAR = 0x00010000,    ///< a floater without its tab bar
    ZV_PALF_NO_PREFS = 0x00020000,      ///< nothing of it is kept in or taken from the window preferences
    ZV_PALF_CLOSING = 0x00040000        ///< set by the library while the palette is being closed
};

inline constexpr uint32_t ZV_PALF_SIZES = ZV_PALF_SIZE_BOTH | ZV_PALF_SIZE_X | ZV_PALF_SIZE_Y;

/// Tags of DisplayPaletteZV, and of EndPaletteZV for a sub-palette, beside the gap and margin tags of
/// ZVLayout.h. Data is a long where nothing else is said.
enum ZVPaletteTag : unsigned long {
    ZV_PAL_CURSOR = 256,            ///< default cursor code; EndPaletteZV only
    ZV_PAL_CALLBACK = 257,          ///< void (*)(ZVEvent*); EndPaletteZV only
    ZV_PAL_KIND = 258,              ///< ZVKind, ZV_KIND_FIXED by default
    ZV_PAL_FLAGS = 259,             ///< ZVPaletteFlag, added to those given before
    ZV_PAL_POSITION = 260,          ///< position code
    ZV_PAL_RELATIVE_TO = 261,       ///< id of the reference palette; 65535 is the one displayed before
    ZV_PAL_PSEUDO_WINDOW = 262,     ///< ZVWindow*: display in this pseudo-window
    ZV_PAL_PSEUDO_WINDOW_ID = 263,  ///< the same by window id
    ZV_PAL_ACTIVATE = 264,          ///< 0: do not make it the active palette
    ZV_PAL_WINDOW = 265,            ///< ZVWindow*: display in this window, as a further tab
    ZV_PAL_WINDOW_OF = 266,         ///< display in the window of the palette with this id
    ZV_PAL_WINDOW_X = 267,          ///< window position
    ZV_PAL_WINDOW_Y = 268,
    ZV_PAL_CLIENT_X = 269,  ///< taken like the window position
    ZV_PAL_CLIENT_Y = 270,
    ZV_PAL_OFFSET_X = 271,  ///< added to the position
    ZV_PAL_OFFSET_Y = 272,
    ZV_PAL_MIN_WIDTH = 273,  ///< smallest client size
    ZV_PAL_MIN_HEIGHT = 274,
    ZV_PAL_FORCE_WIDTH = 275,  ///< client size
    ZV_PAL_FORCE_HEIGHT = 276,
    ZV_PAL_FORCE_WINDOW_WIDTH = 277,  ///< window size; kind and flags must stand before it
    ZV_PAL_FORCE_WINDOW_HEIGHT = 278,
    ZV_PAL_SUGGEST_WIDTH = 279,  ///< size to use when positive and the preferences give none
    ZV_PAL_SUGGEST_HEIGHT = 280,
    ZV_PAL_KEY_SECTION = 281,     ///< ZVKeySection*; EndPaletteZV only
    ZV_PAL_OVERRIDE_PREFS = 282,  ///< ignore the window preferences; data ignored
    ZV_PAL_EDIT_FOCUS = 283,      ///< 0: the first text gadget does not get the focus
    ZV_PAL_PREF_NAME = 284,       ///< char const*: name for the preferences; null leaves the old one
    ZV_PAL_TAB_PRIORITY = 285     ///< order among the window's palettes, the highest first
};

/// A palette. On its window's or its parent's list, which owns it.
struct ZVPalette {
    Node node;            ///< id: of the palette, 16 bits
    uint16_t position;    ///< position code, centred at first
    uint16_t relativeTo;  ///< id of the reference palette, 0 for none
    TagItem* tags;        ///< flat clone of all its tags
    List groups;          ///< ZVGroup
    char* title;          ///< the node's name
    char* prefName;       ///< own copy of the name in the preferences, or null
    uint32_t kind;        ///< ZVKind
    uint16_t marginTop, marginBottom, marginLeft, marginRight;
    int32_t originX, originY;             ///< of the groups' area: x + marginLeft, y + marginTop
    int32_t contentWidth, contentHeight;  ///< extent of the groups
    int32_t x, y, width, height;          ///< in the client area of the window
    int32_t minWidth, minHeight;          ///< the smallest useful size
    int32_t forcedWidth, forcedHeight;    ///< -1 when free
    ZVPalette* nextModal;                 ///< next on the stack of modal palettes
    ZVPalette* parent;                    ///< of a sub-palette
    ZVWindow* window;
    ZVKeySection* keySection;
    List subPalettes;   ///< ZVPalette
    void* object;       ///< of the class layer
    int32_t scroll[8];  ///< of the scroll bars, in the order of ZVScrollTag
    uint16_t cursor;    ///< default cursor code
    uint32_t flags;     ///< ZVPaletteFlag
    void (*callback)(ZVEvent*);
    int32_t tabPriority;
    int32_t tabLeft, tabWidth;  ///< of its tab as drawn last, in the tab bar
    uint32_t serial;            ///< tells it from an earlier palette at its address
    uint16_t freeItemId;        ///< all item ids above it, up to 32767, are taken
    uint16_t takenItemId;       ///< highest one taken below it
};

/// Starts a palette, or a sub-palette of the one under construction; it becomes the current one.
/// @return  null with error 1 when memory runs out
ZV_API ZVPalette* InitPaletteZV();

/// Ends the sub-palette under construction; its parent is the one under construction again. An id of 0 takes
/// the highest free id below 65000. DisplayPaletteZV ends a top-level palette by itself; one that was ended
/// here as well, for its name and tags, stays under construction until then.
/// @param name  copied; null for none
/// @return  true when the error number is 0; false without a palette under construction
ZV_API bool EndPaletteZV(unsigned short id, char const* name, TagItem* tags);
ZV_API bool EndPaletteZV(unsigned short id, unsigned long nameId, TagItem* tags);
template <ZVLabel Name, ZVTagKey Key, ZVTagValue... Rest>
bool EndPaletteZV(unsigned short id, Name name, Key first, Rest... rest)
{
    return EndPaletteZV(id, Label_Word(name), Tag_Array(first, rest...).data());
}

/// Lays out the palette under construction and shows it. That of a modal one returns when it has been closed.
/// @return  0 without a palette, when it closes itself while it is set up (event 7), and with error 1 when
///          memory runs out or there is no window to be had; the palette is gone then
ZV_API long DisplayPaletteZV(TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> long DisplayPaletteZV(Key first, Rest... rest)
{
    return DisplayPaletteZV(Tag_Array(first, rest...).data());
}

/// Closes a palette, and its window when no other palette is left in it. Nothing for one that is gone.
ZV_API void ClosePaletteZV(ZVPalette* palette);
ZV_API void ClosePaletteZV(unsigned short id);

/// Makes a palette the active one of its window, and with bringToFront its window the front one.
ZV_API void ActivatePaletteZV(ZVPalette* palette, long bringToFront);
ZV_API void ActivatePaletteZV(unsigned short id, long bringToFront);

/// Shows or hides. Without a window or below a hidden parent only the flag changes. A floater gets event 26
/// or 27.
ZV_API void PaletteVisibleZV(ZVPalette* palette, long visible);
ZV_API long IsPaletteVisibleZV(ZVPalette const* palette);

/// Gives a palette a client size; on screen it is laid out and drawn again.
ZV_API void ResizePaletteZV(ZVPalette* palette, long width, long height);

/// Lays a palette out again at its forced size, as after a change of its items.
ZV_API void RebuildPaletteZV(ZVPalette* palette);

/// The palette that calls without a palette argument act on.
ZV_API void SetCurrentPaletteZV(ZVPalette* palette);
ZV_API void SetCurrentPaletteZV(unsigned short id);
ZV_API unsigned short GetCurrentPaletteZV();  ///< its id, 0 for none

/// Renames a palette, and its window when that has no name of its own.
ZV_API void SetPaletteNameZV(ZVPalette* palette, char const* name);
ZV_API void SetPaletteNameZV(ZVPalette* palette, unsigned long nameId);
ZV_API void SetPaletteNameZV(unsigned short id, char const* name);
ZV_API void SetPaletteNameZV(unsigned short id, unsigned long nameId);

/// Draws or takes away the frame that marks a palette.
ZV_API void HilitePaletteZV(ZVPalette* palette, long on);

/// Keeps a palette out of activation, so that it takes clicks without coming to the front.
ZV_API void SupressPaletteActivationZV(ZVPalette* palette, long on);
ZV_API void SupressPaletteActivationZV(unsigned short id, long on);

/// The palette if it still exists, sub-palettes included; the pointer is compared, never followed. By id, or
/// by name regardless of case.
ZV_API ZVPalette* FindPaletteZV(ZVPalette const* palette);
ZV_API ZVPalette* FindPaletteZV(unsigned short id);
ZV_API ZVPalette* FindPaletteZV(char const* name);

/// Adds a hook for events of a number that are sent to the palette. Hooks go with the palette's window.
/// @return  a hook id above 0; 0 without a window, function or memory
ZV_API unsigned long AddEventHookZV(ZVPalette* palette, unsigned long event,
                                    void (*function)(void*, long, void*), void* user);
ZV_API void RemoveEventHookZV(ZVPalette* palette, unsigned long id);

/// Values of the window's scroll bars, as longs.
enum ZVScrollTag : unsigned long {
    ZV_SCROLL_H_MIN = 2304,
    ZV_SCROLL_H_MAX = 2305,
    ZV_SCROLL_H_VIEW = 2306,
    ZV_SCROLL_H_VALUE = 2307,
    ZV_SCROLL_V_MIN = 2308,
    ZV_SCROLL_V_MAX = 2309,
    ZV_SCROLL_V_VIEW = 2310,
    ZV_SCROLL_V_VALUE = 2311
};
ZV_API void SetScrollPosZV(ZVPalette* palette, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> void SetScrollPosZV(ZVPalette* palette, Key first, Rest... rest)
{
    SetScrollPosZV(palette, Tag_Array(first, rest...).data());
}
