// What a native menu shows of the tree: its rows, with texts and shortcuts in readable form.
#pragma once

#include "MacText.h"
#include "ZVMenu.h"

#include <string>
#include <vector>

struct MenuRow {
    ZVMenu* menu = nullptr;  ///< null for a line
    std::string text, shortcut;

    bool Is_Line() const { return !menu; }
};
using MenuRows = std::vector<MenuRow>;

/// The entries of a menu that stand in place. Lines that separate nothing are left out.
MenuRows Rows_Of_Menu(ZVMenu const& menu);

/// The library does not look after the state of a system entry.
inline bool Is_Dimmed(ZVMenu const& menu)
{
    return !(menu.flags & ZV_MENUF_SYSTEM) && menu.flags & ZV_MENUF_DISABLED;
}
inline bool Is_Marked(ZVMenu const& menu)
{
    return !(menu.flags & ZV_MENUF_SYSTEM) && menu.flags & ZV_MENUF_CHECKED;
}

/// Whether a menu has such rows, which makes it one that opens.
bool Has_Rows(ZVMenu const& menu);

/// The menus of the bar that gather entries of all others.
MenuRows Rows_Of_Application_Menu();
MenuRows Rows_Of_Help_Menu();

/// Menus as rows, each of which opens.
MenuRows Rows_Of_Menus(std::vector<ZVMenu*> const& menus);

/// What a menu shows as the text of an entry: 50 characters at most, with dots behind them when there are
/// more or the entry has ZV_MENUF_ELLIPSIS.
std::string Make_MenuString(ZVMenu const& menu);

/// "Ctrl+S", for a key with modifiers as in ZVMenu. Of the keys only those that have a character show: the
/// text is empty for a function key and the like, and for none.
std::string Shortcut_Text(unsigned key);

FontChoice Menu_Font(ZVMenu const& menu);
