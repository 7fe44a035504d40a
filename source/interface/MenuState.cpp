// Changing menus that stand: texts, styles, check marks, radio sets, order, and their end.
#include "MenuState.h"
#include "foundation/Guard.h"

#include <algorithm>
#include <vector>

// ---- deleting ---------------------------------------------------------------------------------------------

void DelMenuZV(ZVMenu* menu)
{
    if (menu) Free_Menu(menu);
}

void DelMenuZV(long id)
{
    DelMenuZV(Find_Menu(nullptr, id));
}

void DelMenuItemZV(ZVMenu* menu, long id)
{
    if (menu) DelMenuZV(Find_Menu(menu, id));
}

void DelMenuItemZV(long id)
{
    DelMenuZV(id);
}

// ---- texts ------------------------------------------------------------------------------------------------

static void Set_Text(ZVMenu* menu, char const* text)
{
    if (menu && Take_Menu_Text(*menu, text)) Update_Item_State(menu);
}

void SetMenuTextZV(long id, char const* text)
{
    Set_Text(Find_Menu(nullptr, id), text);
}

void SetMenuTextZV(long id, unsigned long textId)
{
    SetMenuTextZV(id, Text_Of_Id(textId));
}

void SetMenuTextZV(ZVMenu* menu, long id, char const* text)
{
    if (menu) Set_Text(Find_Menu(menu, id), text);
}

void SetMenuTextZV(ZVMenu* menu, long id, unsigned long textId)
{
    SetMenuTextZV(menu, id, Text_Of_Id(textId));
}

// ---- flags ------------------------------------------------------------------------------------------------

static void Set_Flag(ZVMenu& menu, uint16_t flag, bool on)
{
    menu.flags = static_cast<uint16_t>(on ? menu.flags | flag : menu.flags & ~flag);
    Update_Item_State(&menu);
}

static void Set_Style(ZVMenu* menu, unsigned long style)
{
    if (menu) Set_Flag(*menu, static_cast<uint16_t>(style & ZV_MENUF_STYLES), true);
}

void SetMenuStyleZV(long id, unsigned long style)
{
    Set_Style(Find_Menu(nullptr, id), style);
}

void SetMenuStyleZV(ZVMenu* menu, long id, unsigned long style)
{
    if (menu) Set_Style(Find_Menu(menu, id), style);
}

static void Enable(ZVMenu* menu, long on)
{
    if (menu) Set_Flag(*menu, ZV_MENUF_DISABLED, !on);
}

void EnableMenuZV(long id, long on)
{
    Enable(Find_Menu(nullptr, id), on);
}

void EnableMenuZV(ZVMenu* menu, long id, long on)
{
    if (menu) Enable(Find_Menu(menu, id), on);
}

void EnableMenusZV(ZVMenu* menu, long on)
{
    if (!menu) return;
    for (ZVMenu& each : MenuTree(menu->submenus))
        if (!(each.flags & (ZV_MENUF_ABOUT | ZV_MENUF_HELP))) Enable(&each, on);
}

void EnableMenusZV(long id, long on)
{
    EnableMenusZV(Find_Menu(nullptr, id), on);
}

// ---- check marks ------------------------------------------------------------------------------------------

static bool Is_Listed(uint16_t const* ids, uint32_t id)
{
    while (*ids && *ids != id)
        ++ids;
    return *ids;
}

void Check_Menu(ZVMenu& menu)
{
    Set_Flag(menu, ZV_MENUF_CHECKED, true);
    if (!menu.exclusion) return;
    ZVMenu const& top = Top_Of(menu);
    bool const isInBar = top.node.next;
    for (ZVMenu& each : MenuTree(isInBar ? ZVEnv->menus : top.submenus))
        if (&each != &menu && each.flags & ZV_MENUF_CHECKED && Is_Listed(menu.exclusion, each.node.id))
            Set_Flag(each, ZV_MENUF_CHECKED, false);
}

void Uncheck_Menu(ZVMenu& menu)
{
    if (!menu.exclusion) Set_Flag(menu, ZV_MENUF_CHECKED, false);
}

static void Select(ZVMenu* menu, long on)
{
    if (!menu || !(menu->flags & ZV_MENUF_CHECKABLE)) return;
    if (on)
        Check_Menu(*menu);
    else
        Uncheck_Menu(*menu);
}

void SelectMenuZV(long id, long on)
{
    Select(Find_Menu(nullptr, id), on);
}

void SelectMenuZV(ZVMenu* menu, long id, long on)
{
    if (menu) Select(Find_Menu(menu, id), on);
}

static long Is_Selected(ZVMenu const* menu)
{
    return menu && menu->flags & ZV_MENUF_CHECKABLE && menu->flags & ZV_MENUF_CHECKED;
}

long IsMenuSelectedZV(long id)
{
    return Is_Selected(Find_Menu(nullptr, id));
}

long IsMenuSelectedZV(ZVMenu* menu, long id)
{
    return menu && Is_Selected(Find_Menu(menu, id));
}

static void Exclude(ZVMenu* menu, unsigned long const* ids)
{
    struct Member {
        ZVMenu* menu;
        HeapBlock<uint16_t> list;
    };
    std::vector<uint16_t> set;
    for (; *ids; ++ids)
        if (*ids <= UINT16_MAX) set.push_back(static_cast<uint16_t>(*ids));
    set.push_back(0);
    std::vector<Member> members;
    for (std::size_t i = 0; i + 1 < set.size(); ++i) {
        ZVMenu* const member = Find_Menu(menu, set[i]);
        if (!member) continue;
        HeapBlock<uint16_t> list(static_cast<uint16_t*>(New_Block(set.size() * sizeof(uint16_t))));
        if (!list) return;
        std::ranges::copy(set, list.get());
        members.push_back({member, std::move(list)});
    }
    for (Member& member : members) {
        FreeMemZV(member.menu->exclusion);
        member.menu->exclusion = member.list.release();
        Update_Item_State(member.menu);
    }
}

void Set_Menu_Exclusion(ZVMenu* menu, unsigned long const* ids)
{
    Guarded([=] { Exclude(menu, ids); });
}

// ---- order ------------------------------------------------------------------------------------------------

static constexpr char dots[] = "...";

/// So that "Open..." stands where "Open" would.
static void Truncate_Dots(ZVMenu& menu)
{
    std::size_t const length = std::strlen(menu.text), cut = std::strlen(dots);
    if (length < cut || std::strcmp(menu.text + length - cut, dots) != 0) return;
    menu.text[length - cut] = 0;
    menu.flags |= ZV_MENUF_DOTS_CUT;
}

static void Restore_Dots(ZVMenu& menu)
{
    if (!(menu.flags & ZV_MENUF_DOTS_CUT)) return;
    menu.text[std::strlen(menu.text)] = dots[0];
    menu.flags &= static_cast<uint16_t>(~ZV_MENUF_DOTS_CUT);
}

void SortSubMenusZV(ZVMenu* menu)
{
    if (!menu) return;
    for (ZVMenu& each : MenuTree(menu->submenus))
        Truncate_Dots(each);
    for (ZVMenu* each = menu; each; each = Next_In_Tree(each, menu))
        Sort_List(&each->submenus);
    for (ZVMenu& each : MenuTree(menu->submenus))
        Restore_Dots(each);
}

void SortSubMenusZV(List* list, long id)
{
    ZVMenu* menu = nullptr;
    if (Find_MenuID(list, id, &menu, nullptr)) SortSubMenusZV(menu);
}
