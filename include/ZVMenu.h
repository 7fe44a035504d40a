// Menus: a tree of records, declared like palettes, from which the menu bar, pop-up menus and contextual
// menus are drawn. The tree is the truth: each entry has its id, action, shortcut, state and event function,
// and choosing one sends event 15. Entries with entries below them are submenus; a text of "-" is a
// separating line. "&" is dropped from every text, and the character behind it stays.
//
//     InitMenuZV();
//     AddMenuItemZV(10, "&Open...", ActionOpen, 0);
//     AddMenuItemZV(0, "-", 0, 0);
//     AddMenuItemZV(11, "Quit", ActionQuit, ZV_MENU_QUIT, 0, 0);
//     EndMenuZV(1, "File", 0);
//     MakeMenuBarZV();
//
// Some entries have places of their own in the bar. Those of ZV_MENU_ABOUT stand in an application menu at
// the left end, named by the application's title, and nowhere else; the entries of ZV_MENU_PREFERENCES and
// ZV_MENU_QUIT stay where they were declared and can be reached from there too. Those of ZV_MENU_HELP stand
// in a menu "Help" at the right end of the menus. Neither menu is there without such entries, nor is a menu
// all of whose entries have gone there. In pop-up menus all entries but those of ZV_MENU_ABOUT stand in
// place.
//
// By keys: F10 opens the bar, when no callback takes it and no binding has it; Escape leaves a menu, and F10
// all of them. The shortcut of an entry shows beside its text when its key has a character; that of a named
// key, such as F5, acts and does not show.
//
// An id of 0 asks for a free one: item ids run from 1000 to 32767, menu ids from the base of
// SetBaseUniqueMenuID to 234; with none left the id stays 0. Calls by id reach the menus of the bar; those
// with a ZVMenu* first look below that one, then at itself. Unknown ids and null menus are passed over. Of
// two entries of one id the first in depth-first order is meant. Main thread only.
#pragma once

#include "ZVEvent.h"
#include "ZVList.h"
#include "ZVTags.h"

/// Flags of an entry.
enum ZVMenuFlag : uint16_t {
    ZV_MENUF_CHECKED = 0x0001,
    ZV_MENUF_DISABLED = 0x0002,
    ZV_MENUF_SYSTEM = 0x0004,     ///< shows neither check mark nor whether it is disabled
    ZV_MENUF_ELLIPSIS = 0x0008,   ///< "..." behind the text
    ZV_MENUF_CHECKABLE = 0x0010,  ///< choosing it toggles the check mark, or in an exclusion set moves it
    ZV_MENUF_BOLD = 0x0020,
    ZV_MENUF_ITALIC = 0x0040,
    ZV_MENUF_UNDERLINED = 0x0080,
    ZV_MENUF_POPUP = 0x0100,        ///< a menu outside the bar: pop-up or contextual
    ZV_MENUF_ABOUT = 0x0200,        ///< stands in the application menu
    ZV_MENUF_HELP = 0x0400,         ///< stands in the help menu
    ZV_MENUF_QUIT = 0x0800,         ///< the application menu's quit entry leads here
    ZV_MENUF_FLAG_2000 = 0x2000,    ///< of tag 1811
    ZV_MENUF_PREFERENCES = 0x4000,  ///< the application menu's preferences entry leads here
    ZV_MENUF_DOTS_CUT = 0x8000      ///< the text is without its dots while its menu is sorted
};
inline constexpr uint16_t ZV_MENUF_STYLES = ZV_MENUF_BOLD | ZV_MENUF_ITALIC | ZV_MENUF_UNDERLINED;

/// Tags of the calls that make entries and menus.
enum ZVMenuTag : unsigned long {
    ZV_MENU_AFTER = 1792,    ///< menu id: behind that entry, in its menu
    ZV_MENU_BEFORE = 1793,   ///< menu id: in front of that entry
    ZV_MENU_UNDER = 1794,    ///< menu id: the last entry below that one
    ZV_MENU_ENABLED = 1795,  ///< long: 0 disables
    ZV_MENU_CHECKED = 1796,  ///< long: non-zero checks, unless ZV_MENU_SYSTEM stands before it
    ZV_MENU_SYSTEM = 1797,   ///< as to CHECKABLE: the flag of that name; data ignored
    ZV_MENU_ELLIPSIS = 1798,
    ZV_MENU_CHECKABLE = 1799,
    ZV_MENU_STYLE = 1800,        ///< bits of ZV_MENUF_STYLES, which are added
    ZV_MENU_DATA = 1801,         ///< one word: `data`
    ZV_MENU_NEW_MENU_ID = 1802,  ///< a free menu id in place of the one given; data ignored
    ZV_MENU_NEW_ITEM_ID = 1803,  ///< a free item id likewise
    ZV_MENU_POPUP = 1804,        ///< EndMenuZV: the menu leaves the bar; data ignored
    ZV_MENU_ABOUT = 1805,        ///< as to PREFERENCES: the flag of that name; data ignored
    ZV_MENU_HELP = 1806,
    ZV_MENU_QUIT = 1807,
    ZV_MENU_PREFERENCES = 1808,
    ZV_MENU_CALLBACK = 1809,     ///< void (*)(ZVEvent*)
    ZV_MENU_KEY_SECTION = 1810,  ///< ZVKeySection*
    ZV_MENU_FLAG_2000 = 1811     ///< EndMenuZV only; data ignored
};

/// An entry, or a menu with its entries. On its parent's list or the environment's `menus`, which owns it; a
/// pop-up menu is on no list and belongs to the application, which releases it with DelMenuZV before
/// CleanUpZV.
struct ZVMenu {
    Node node;  ///< id: of the menu, 32 bits; name: own copy of the text
    List submenus;
    ZVMenu* parent;              ///< null at the top level
    unsigned long data;          ///< of tag 1801, for the application
    char* text;                  ///< the node's name, never null
    uint16_t flags;              ///< ZVMenuFlag
    uint16_t action;             ///< ties it to the key sections; 0 for none
    uint16_t* exclusion;         ///< ids of the radio set that it belongs to, ended by 0; or null
    uint16_t key;                ///< key and modifiers of its shortcut as in a binding; 0 for none
    void (*callback)(ZVEvent*);  ///< gets event 15 of it and of what is below it; or null
    ZVKeySection* keySection;    ///< of it and of what is below it; or null
};

/// The entry of event 15.
inline ZVMenu* Event_Menu(ZVEvent const* event)
{
    return reinterpret_cast<ZVMenu*>(event->item);
}

// ---- declaring --------------------------------------------------------------------------------------------

/// Opens a menu, inside the one that is open or at the top level, where it clears the error number.
/// @return  null with error 1 when memory runs out; its EndMenuZV has to be called all the same
ZV_API ZVMenu* InitMenuZV();

/// Adds an entry to the open menu. Nothing happens while the error number is set, so that a declaration can
/// run to its end.
/// @param text  copied; null is an empty one
/// @return  null with error 5 without an open menu, with error 1 without memory
ZV_API ZVMenu* AddMenuItemZV(long id, char const* text, unsigned long action, TagItem* tags);
ZV_API ZVMenu* AddMenuItemZV(long id, unsigned long textId, unsigned long action, TagItem* tags);
template <ZVLabel Text, ZVTagKey Key, ZVTagValue... Rest>
ZVMenu* AddMenuItemZV(long id, Text text, unsigned long action, Key first, Rest... rest)
{
    return AddMenuItemZV(id, Label_Word(text), action, Tag_Array(first, rest...).data());
}

/// Moves an entry that was made before to the place of tag ZV_MENU_AFTER or ZV_MENU_BEFORE, else to the end
/// of the open menu; it stays where it is, with error 5, when there is neither, and when that place lies
/// below itself.
ZV_API ZVMenu* AddMenuItemZV(ZVMenu* menu, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> ZVMenu* AddMenuItemZV(ZVMenu* menu, Key first, Rest... rest)
{
    return AddMenuItemZV(menu, Tag_Array(first, rest...).data());
}

/// Adds an entry at any time, at the place of its tags or else at the end of the parent's list; null is the
/// top level.
/// @return  null with error 1 without memory
ZV_API ZVMenu* InsertMenuItemZV(ZVMenu* parent, long id, char const* text, unsigned long action,
                                TagItem* tags);
ZV_API ZVMenu* InsertMenuItemZV(ZVMenu* parent, long id, unsigned long textId, unsigned long action,
                                TagItem* tags);
ZV_API ZVMenu* InsertMenuItemZV(long id, char const* text, unsigned long action, TagItem* tags);
ZV_API ZVMenu* InsertMenuItemZV(long id, unsigned long textId, unsigned long action, TagItem* tags);
template <ZVLabel Text, ZVTagKey Key, ZVTagValue... Rest>
ZVMenu* InsertMenuItemZV(ZVMenu* parent, long id, Text text, unsigned long action, Key first, Rest... rest)
{
    return InsertMenuItemZV(parent, id, Label_Word(text), action, Tag_Array(first, rest...).data());
}
template <ZVLabel Text, ZVTagKey Key, ZVTagValue... Rest>
ZVMenu* InsertMenuItemZV(long id, Text text, unsigned long action, Key first, Rest... rest)
{
    return InsertMenuItemZV(nullptr, id, Label_Word(text), action, Tag_Array(first, rest...).data());
}

/// Closes the open menu and finds the shortcuts of its entries.
/// @return  the menu; null without an open one, and with all of it freed when the error number is set
ZV_API ZVMenu* EndMenuZV(long id, char const* title, TagItem* tags);
ZV_API ZVMenu* EndMenuZV(long id, unsigned long titleId, TagItem* tags);
template <ZVLabel Title, ZVTagKey Key, ZVTagValue... Rest>
ZVMenu* EndMenuZV(long id, Title title, Key first, Rest... rest)
{
    return EndMenuZV(id, Label_Word(title), Tag_Array(first, rest...).data());
}

/// Adds copies of a menu's entries to the open menu, each with the tags, as AddMenuItemZV does. A copy whose
/// entry has no callback gets the menu's.
ZV_API void AddMenuZV(ZVMenu const* menu, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> void AddMenuZV(ZVMenu const* menu, Key first, Rest... rest)
{
    AddMenuZV(menu, Tag_Array(first, rest...).data());
}

/// Sets the lower end of the menu id range, 1 at first.
ZV_API void SetBaseUniqueMenuID(long base);

// ---- the bar ----------------------------------------------------------------------------------------------

/// Shows the menus of the top level in a bar along the top of the main monitor; without any there is no bar.
/// Windows that it would cover move down. Nothing happens while a modal palette is open; the bar is made anew
/// when the last one ends.
ZV_API void MakeMenuBarZV();

/// Takes the bar down and frees all its menus.
ZV_API void ClearMenuBarZV();

/// Shows a pop-up menu at the mouse, and sends the event of the entry that the user chooses. For a gadget's
/// answer to custom event 118; the press has ended then, and no event tells of its release.
ZV_API void DisplayContextualMenuZV(ZVMenu* menu);

// ---- changing ---------------------------------------------------------------------------------------------

/// Frees an entry and all below it, off the screen too.
ZV_API void DelMenuZV(ZVMenu* menu);
ZV_API void DelMenuZV(long id);
ZV_API void DelMenuItemZV(ZVMenu* menu, long id);
ZV_API void DelMenuItemZV(long id);

/// The old text stays when memory runs out, with error 1.
ZV_API void SetMenuTextZV(long id, char const* text);
ZV_API void SetMenuTextZV(long id, unsigned long textId);
ZV_API void SetMenuTextZV(ZVMenu* menu, long id, char const* text);
ZV_API void SetMenuTextZV(ZVMenu* menu, long id, unsigned long textId);

/// Adds bits of ZV_MENUF_STYLES.
ZV_API void SetMenuStyleZV(long id, unsigned long style);
ZV_API void SetMenuStyleZV(ZVMenu* menu, long id, unsigned long style);

/// Sets or clears the check mark of a checkable entry. In an exclusion set another member's goes, and there
/// is no clearing.
ZV_API void SelectMenuZV(long id, long on);
ZV_API void SelectMenuZV(ZVMenu* menu, long id, long on);
ZV_API long IsMenuSelectedZV(long id);  ///< 1 when checkable and checked
ZV_API long IsMenuSelectedZV(ZVMenu* menu, long id);

ZV_API void EnableMenuZV(long id, long on);
ZV_API void EnableMenuZV(ZVMenu* menu, long id, long on);

/// All entries below a menu but those of the application and help menus.
ZV_API void EnableMenusZV(ZVMenu* menu, long on);
ZV_API void EnableMenusZV(long id, long on);

/// Makes entries a radio set. Each gets a list of its own; with error 1, when memory runs out, none does.
/// @param menu  where they are looked for, null being the bar
/// @param ids   ended by 0
ZV_API void Set_Menu_Exclusion(ZVMenu* menu, unsigned long const* ids);
template <ZVTagKey... Ids> void SetMenuExclusionZV(ZVMenu* menu, Ids... ids)
{
    unsigned long const list[] = {Tag_Word(ids)..., 0};
    Set_Menu_Exclusion(menu, list);
}
template <ZVTagKey... Ids> void SetMenuExclusionZV(unsigned long id, Ids... ids)
{
    unsigned long const list[] = {id, Tag_Word(ids)..., 0};
    Set_Menu_Exclusion(nullptr, list);
}

/// Sorts all that is below a menu by name, without regard to case and to dots at the end.
ZV_API void SortSubMenusZV(ZVMenu* menu);
ZV_API void SortSubMenusZV(List* list, long id);  ///< The menu of that id in the list or below.

// ---- finding ----------------------------------------------------------------------------------------------

ZV_API ZVMenu* FindMenuZV(unsigned long id);  ///< Null when there is none.

/// The entry directly below the menu of that id, in the list or below, that has the text: "&" does not count,
/// nor does case. Null when there is none.
ZV_API ZVMenu* FindSubMenuZV(List* list, unsigned long id, char const* text);
