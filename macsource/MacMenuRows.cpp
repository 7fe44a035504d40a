#include "MacMenuRows.h"

#include "ZVKey.h"
#include "ZVLibInternal.h"
#include "interface/MenuTree.h"

#include <cstring>

// ---- texts ------------------------------------------------------------------------------------------------

std::string Make_MenuString(ZVMenu const& menu)
{
    constexpr int mostCharacters = 50;
    char const* end = menu.text;
    for (int count = 0; *end; ++end) {
        bool const isStart = (*end & 0xC0) != 0x80;
        if (isStart && ++count > mostCharacters) break;
    }
    std::string text(menu.text, static_cast<std::size_t>(end - menu.text));
    if (*end || menu.flags & ZV_MENUF_ELLIPSIS) text += "...";
    return text;
}

static std::string Key_Text(unsigned code)
{
    if (code == ' ') return "Space";
    bool const isSmall = (code >= 'a' && code <= 'z') || (code >= 0xE0 && code <= 0xFE && code != 0xF7);
    unsigned const shown = isSmall ? code - ('a' - 'A') : code;
    if (shown < 0x80) return {static_cast<char>(shown)};
    return {static_cast<char>(0xC0 | shown >> 6), static_cast<char>(0x80 | (shown & 0x3F))};
}

std::string Shortcut_Text(unsigned key)
{
    constexpr unsigned codes = 0x1FF;
    unsigned const code = key & codes;
    if (code == 0 || code >= ZV_KEY_F1) return {};
    std::string text;
    if (key & ZV_MOD_CONTROL) text += "Ctrl+";
    if (key & ZV_MOD_ALT) text += "Alt+";
    if (key & ZV_MOD_SHIFT) text += "Shift+";
    if (key & ZV_MOD_COMMAND) text += "Super+";
    return text + Key_Text(code);
}

FontChoice Menu_Font(ZVMenu const& menu)
{
    bool const isBold = menu.flags & ZV_MENUF_BOLD, isItalic = menu.flags & ZV_MENUF_ITALIC;
    if (isBold && isItalic) return {ZV_FONT_BOLD_ITALIC, nullptr};
    if (isBold) return {ZV_FONT_BOLD, nullptr};
    return {isItalic ? ZV_FONT_ITALIC : ZV_FONT_INTERFACE, nullptr};
}

// ---- rows -------------------------------------------------------------------------------------------------

static bool Is_Line(ZVMenu const& menu)
{
    return std::strcmp(menu.text, "-") == 0;
}

static bool Is_In_Place(ZVMenu const& menu)
{
    return !Is_In_Application_Menu(&menu) && !Is_In_Help_Menu(&menu);
}

static void Add_Line(MenuRows& rows)
{
    if (!rows.empty() && !rows.back().Is_Line()) rows.push_back({});
}

static void Add_Row(MenuRows& rows, ZVMenu& menu)
{
    if (Is_Line(menu))
        Add_Line(rows);
    else
        rows.push_back({&menu, Make_MenuString(menu), Shortcut_Text(menu.key)});
}

static MenuRows Finished(MenuRows rows)
{
    if (!rows.empty() && rows.back().Is_Line()) rows.pop_back();
    return rows;
}

MenuRows Rows_Of_Menu(ZVMenu const& menu)
{
    MenuRows rows;
    for (ZVMenu& entry : Entries_Of(menu))
        if (Is_In_Place(entry)) Add_Row(rows, entry);
    return Finished(std::move(rows));
}

bool Has_Rows(ZVMenu const& menu)
{
    for (ZVMenu const& entry : Entries_Of(menu))
        if (Is_In_Place(entry) && !Is_Line(entry)) return true;
    return false;
}

MenuRows Rows_Of_Application_Menu()
{
    MenuRows rows;
    for (ZVMenu& menu : MenuTree(ZVEnv->menus))
        if (Is_In_Application_Menu(&menu)) Add_Row(rows, menu);
    for (unsigned const flag : {ZV_MENUF_PREFERENCES, ZV_MENUF_QUIT}) {
        Add_Line(rows);
        if (ZVMenu* const menu = Find_Special_Menu_Item(flag)) Add_Row(rows, *menu);
    }
    return Finished(std::move(rows));
}

MenuRows Rows_Of_Help_Menu()
{
    MenuRows rows;
    for (ZVMenu& menu : MenuTree(ZVEnv->menus))
        if (Is_In_Help_Menu(&menu)) Add_Row(rows, menu);
    return Finished(std::move(rows));
}

MenuRows Rows_Of_Menus(std::vector<ZVMenu*> const& menus)
{
    MenuRows rows;
    for (ZVMenu* const menu : menus)
        Add_Row(rows, *menu);
    return rows;
}
