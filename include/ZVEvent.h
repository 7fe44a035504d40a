// Events: what the library tells an application, its palettes, groups and items, and what it tells the
// function of a gadget. Event numbers, report bits and cursor codes are here, and the loop that sends them.
// Main thread only.
#pragma once

#include "ZVBase.h"

/// Events of ZVEvent. `item` holds what the comment names first.
enum ZVEventType : uint16_t {
    ZV_EVENT_KEY = 1,         ///< the character; `key` is the code
    ZV_EVENT_MOUSE_MOVE = 2,  ///< item under the mouse
    ZV_EVENT_MOUSE_DOWN = 3,
    ZV_EVENT_MOUSE_UP = 4,
    ZV_EVENT_GADGET = 5,   ///< the item, whose state has changed
    ZV_EVENT_TICK = 6,     ///< item, while an item is called
    ZV_EVENT_SETUP = 7,    ///< palette, as to TAB_DEACTIVATE: it has been laid out
    ZV_EVENT_CLEANUP = 8,  ///< it is about to be freed
    ZV_EVENT_ACTIVATE = 9,
    ZV_EVENT_DEACTIVATE = 10,
    ZV_EVENT_DOC_ACTIVATE = 11,
    ZV_EVENT_DOC_DEACTIVATE = 12,
    ZV_EVENT_NONE = 14,       ///< no callback; clears the report bits
    ZV_EVENT_MENU = 15,       ///< ZVMenu*; `key` is the action
    ZV_EVENT_MENU_INIT = 16,  ///< a menu is about to open
    ZV_EVENT_USER = 17,       ///< the application's
    ZV_EVENT_OPEN_DOC = 18,   ///< path
    ZV_EVENT_PRINT_DOC = 19,  ///< path
    ZV_EVENT_SCROLL_H = 20,   ///< the palette's horizontal scroll value
    ZV_EVENT_SCROLL_V = 21,
    ZV_EVENT_ASK_CLOSE = 22,  ///< a result of 0 refuses the close; it starts at 1
    ZV_EVENT_ZOOM = 23,
    ZV_EVENT_ACTION = 24,     ///< action id of a key binding
    ZV_EVENT_CLOSE_APP = 25,  ///< the desktop wants an end; a result but 0 keeps ExitZV from following
    ZV_EVENT_TAB_ACTIVATE = 26,
    ZV_EVENT_TAB_DEACTIVATE = 27,
    ZV_EVENT_REMOTE_MESSAGE = 28,  ///< the value given
    ZV_EVENT_CLOSE_BOX = 29        ///< palette: a floater's close box; a result other than 0 stops the close
};

/// Bits of `modifiers`: the keyboard, and what the gadget just did.
enum ZVModifier : uint32_t {
    ZV_MOD_BUTTON = 0x0001,         ///< the mouse button is down
    ZV_MOD_SECOND_BUTTON = 0x0004,  ///< press of another button while a slider holds the mouse
    ZV_MOD_PRESS = 0x0008,          ///< gadget event of a press
    ZV_MOD_CHANGE = 0x0010,         ///< gadget event of a change while held or typed
    ZV_MOD_RELEASE = 0x0020,        ///< gadget event of a release or commit
    ZV_MOD_DOUBLE_CLICK = 0x0040,   ///< this press is a double click
    ZV_MOD_DRAGGED = 0x0080,        ///< the mouse has moved more than 4 pixels since the press
    ZV_MOD_CAPS_LOCK = 0x0100,
    ZV_MOD_CONTROL = 0x0200,
    ZV_MOD_SHIFT = 0x0400,
    ZV_MOD_ALT = 0x0800,
    ZV_MOD_COMMAND = 0x1000,
    ZV_MOD_REPEAT = 0x2000,      ///< key event of a key that is held
    ZV_MOD_KEY_UP = 0x4000,      ///< key event of a release
    ZV_MOD_ERASER = 0x8000,      ///< the eraser end of the tablet pen is in use
    ZV_MOD_CONTEXTUAL = 0x10000  ///< contextual-menu click; in `buttonState` only
};

/// Codes of the cursor of items, groups and palettes. 5 to 127 are system cursors by number, 129 and up
/// colour cursors of the library's resources.
enum ZVCursor : uint16_t {
    ZV_CURSOR_ARROW = 0,
    ZV_CURSOR_TEXT = 2,
    ZV_CURSOR_OWN = 3,  ///< colour cursor 128
    ZV_CURSOR_BUSY = 4,
    ZV_CURSOR_COLOR = 128,
    ZV_CURSOR_SLIDE = 1010,         ///< over a value that is dragged to the left and right
    ZV_CURSOR_GRAB = 1070,          ///< over what can be taken hold of, as a tab
    ZV_CURSOR_SPLIT_ACROSS = 1190,  ///< over a line between neighbours that is dragged to the left and right
    ZV_CURSOR_SPLIT_DOWN = 1200,    ///< and over one that is dragged up and down
    ZV_CURSOR_NONE = 1210           ///< the pointer is hidden
};

/// State of a tablet. By way of SDL no desktop tells of pens: then 65535, always, and no pen is near.
struct ZVTablet {
    uint16_t pressure;    ///< 65535 when no pen reports
    int32_t inProximity;  ///< 1 while a pen is near; see HeadlessPenZV
};

/// What an event function gets; valid during the call.
struct ZVEvent {
    uint16_t type;           ///< ZVEventType, or a number above 29 of the application's own
    unsigned long item;      ///< by event
    uint32_t modifiers;      ///< ZVModifier
    int32_t x, y;            ///< mouse, relative to what is called
    int32_t deltaX, deltaY;  ///< since the last mouse event
    uint32_t ticks;
    uint32_t key;  ///< key code, or the action of a menu event
    ZVPalette* palette;
    unsigned long result;  ///< returned by Do_Event
    ZVTablet const* tablet;
};

/// The item of a gadget event.
inline ZVItem* Event_Item(ZVEvent const* event)
{
    return reinterpret_cast<ZVItem*>(event->item);
}

/// Events of a gadget function.
enum ZVCustomEventType : uint16_t {
    ZV_CUSTOM_SETUP = 100,       ///< once, when the gadget is declared
    ZV_CUSTOM_CREATE = 101,      ///< it becomes visible
    ZV_CUSTOM_DESTROY = 102,     ///< it stops being visible
    ZV_CUSTOM_CLEANUP = 103,     ///< it is about to be freed
    ZV_CUSTOM_DRAW = 104,        ///< draw all of it, enabled
    ZV_CUSTOM_DRAW_STATE = 105,  ///< draw the state
    ZV_CUSTOM_DRAW_DISABLED = 106,
    ZV_CUSTOM_MOUSE_UP = 107,  ///< after a press on this gadget
    ZV_CUSTOM_MOUSE_DOWN = 108,
    ZV_CUSTOM_MOUSE_MOVE = 109,  ///< over it, or while it holds the press
    ZV_CUSTOM_MOUSE_IN = 110,
    ZV_CUSTOM_MOUSE_OUT = 111,
    ZV_CUSTOM_KEY = 112,
    ZV_CUSTOM_TICK = 113,      ///< with ZV_ITEMF_TICKS, and while held down
    ZV_CUSTOM_SET_SIZE = 114,  ///< width and height are proposed and may be changed
    ZV_CUSTOM_GET_SIZE = 115,
    ZV_CUSTOM_USER = 116,
    ZV_CUSTOM_SET_STATE = 117,  ///< replyData: that the state changed, in and out
    ZV_CUSTOM_MENU = 118,       ///< contextual-menu click, right behind the press
    ZV_CUSTOM_WHEEL = 119       ///< the wheel's delta times 40 on its axis
};

/// What a gadget function gets; valid during the call. It answers by the reply fields: an event of replyType
/// with replyData is sent when it has returned, replyFlags being report bits of that event.
struct ZVCustomEvent {
    uint16_t type;  ///< ZVCustomEventType
    ZVItem* item;
    uint32_t modifiers;  ///< ZVModifier
    int32_t x, y;        ///< relative to the item
    int32_t deltaX, deltaY;
    uint32_t ticks;
    uint16_t replyType;       ///< ZV_EVENT_NONE at first; ZV_EVENT_MOUSE_MOVE for a move
    unsigned long replyData;  ///< the item, for ZV_EVENT_GADGET
    uint32_t replyFlags;      ///< ZV_MOD_PRESS, ZV_MOD_CHANGE or ZV_MOD_RELEASE
    ZVTablet const* tablet;
};

/// Runs the event loop, or that of the modal palette on top, until it is told to end. Always 1.
ZV_API long HandleGUIZV();

/// Handles all waiting events without waiting for more. 1, and 0 once ExitZV was called.
ZV_API long AdvanceGUIZV(long unused);

/// Between these calls, which nest, the busy cursor shows.
ZV_API void BusyZV();
ZV_API void NotBusyZV();

/// Starts and stops gathering mouse points in the queue; a release stops it too.
ZV_API void TrackMouseZV(long on);

/// Hides the pointer and lets it move without end: the position stays, the deltas tell.
ZV_API void InfiniteMouseMovesZV(long on);

/// During a press, says that a contextual click is meant as a plain press.
ZV_API void IgnoreContextualMenuEventZV();

/// No effect: the pointer belongs to the user.
ZV_API void WrapMouseMovesZV(long on);
ZV_API void SetCursorPosZV(ZVWindow* window, long x, long y);
ZV_API void SetCursorPosZV(ZVPalette* palette, long x, long y);
ZV_API void SetCursorPosZV(ZVGroup* group, long x, long y);
ZV_API void SetCursorPosZV(ZVItem* item, long x, long y);
ZV_API void DequeueMouseQueueZV();

ZV_API long QueuedMouseMessagesZV();  ///< Always 3.

/// Always 1: a tablet reports when it is there. In use is one whose pen is near.
ZV_API long TabletAvailableZV();
ZV_API long TabletInUse();

// ---- the functions of the built-in gadgets ----------------------------------------------------------------

/// Button, toggle and radio. Always 1.
ZV_API long ButtonCustomFunc(ZVCustomEvent* event);
/// Check box, and a round radio for a gadget that names it. Always 1.
ZV_API long CheckRadioCustomFunc(ZVCustomEvent* event);
/// Cycle, and the list that it opens, of which ZV_ITEM_USER_DATA is the cycle. 1, and 0 for event 100 without
/// memory.
ZV_API long CycleCustomFunc(ZVCustomEvent* event);
ZV_API long ListCustomFunc(ZVCustomEvent* event);
/// The tab bar of a floater. Always 1.
ZV_API long Tab_Gad(ZVCustomEvent* event);
/// The menu gadget: opens the menu of its `selected` beside itself; the id of the entry chosen becomes its
/// state. Always 1.
ZV_API long MenuGadCustomFunc(ZVCustomEvent* event);
