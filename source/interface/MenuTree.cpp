#include "MenuTree.h"

#include <strings.h>

ZVMenu* Next_In_Tree(ZVMenu const* menu, ZVMenu const* owner)
{
    if (Node* const first = List_First(&menu->submenus)) return reinterpret_cast<ZVMenu*>(first);
    for (; menu != owner; menu = menu->parent)
        if (Node* const next = List_Next(&menu->node)) return reinterpret_cast<ZVMenu*>(next);
    return nullptr;
}

ZVMenu const& Top_Of(ZVMenu const& menu)
{
    ZVMenu const* top = &menu;
    while (top->parent)
        top = top->parent;
    return *top;
}

bool Is_Within(ZVMenu const* menu, ZVMenu const* other)
{
    while (menu && menu != other)
        menu = menu->parent;
    return menu;
}

// ---- finding ----------------------------------------------------------------------------------------------

static ZVMenu* Find_In(List const& list, long id)
{
    for (ZVMenu& menu : MenuTree(list))
        if (menu.node.id == static_cast<uint32_t>(id)) return &menu;
    return nullptr;
}

ZVMenu* Find_Menu(ZVMenu* menu, long id)
{
    if (!ZVEnv) return nullptr;
    if (!menu) return Find_In(ZVEnv->menus, id);
    if (ZVMenu* const found = Find_In(menu->submenus, id)) return found;
    return menu->node.id == static_cast<uint32_t>(id) ? menu : nullptr;
}

ZVMenu* FindMenuZV(unsigned long id)
{
    return Find_Menu(nullptr, static_cast<long>(id));
}

bool Is_In_Application_Menu(ZVMenu const* menu)
{
    return menu->flags & ZV_MENUF_ABOUT;
}

bool Is_In_Help_Menu(ZVMenu const* menu)
{
    if (!(menu->flags & ZV_MENUF_HELP) || Is_In_Application_Menu(menu)) return false;
    return !(Top_Of(*menu).flags & ZV_MENUF_POPUP);
}

static bool Is_In_Place(ZVMenu const* menu)
{
    return !Is_In_Application_Menu(menu) && !Is_In_Help_Menu(menu);
}

/// Entries up to this one, with it, of the list and below it that stand where it does.
static long Position_In(List const& list, ZVMenu const& menu, bool (*standsThere)(ZVMenu const*))
{
    long position = 0;
    for (ZVMenu const& each : MenuTree(list)) {
        position += standsThere(&each);
        if (&each == &menu) break;
    }
    return position;
}

static long Position_In_Place(ZVMenu const& menu)
{
    long position = 1;
    for (Node const* node = menu.node.prev; node && node->prev; node = node->prev)
        position += Is_In_Place(reinterpret_cast<ZVMenu const*>(node));
    return position;
}

static long Position_Of(List const& list, ZVMenu const& menu)
{
    if (Is_In_Application_Menu(&menu)) return Position_In(list, menu, Is_In_Application_Menu);
    if (Is_In_Help_Menu(&menu)) return Position_In(list, menu, Is_In_Help_Menu);
    return Position_In_Place(menu);
}

long Find_MenuID(List const* list, long id, ZVMenu** result, long* position)
{
    ZVMenu* const found = list ? Find_In(*list, id) : nullptr;
    if (result) *result = found;
    if (position) *position = found ? Position_Of(*list, *found) : 0;
    return found != nullptr;
}

ZVMenu* FindSubMenuZV(List* list, unsigned long id, char const* text)
{
    ZVMenu* const menu = list && text ? Find_In(*list, static_cast<long>(id)) : nullptr;
    if (!menu) return nullptr;
    HeapBlock<char> const wanted(static_cast<char*>(New_Block(std::strlen(text) + 1)));
    if (!wanted) return nullptr;
    Strip_Marks(text, wanted.get());
    for (ZVMenu& entry : Entries_Of(*menu))
        if (strcasecmp(entry.text, wanted.get()) == 0) return &entry;
    return nullptr;
}

ZVKeySection* Section_Of_Menu(ZVMenu const* menu)
{
    while (menu && !menu->keySection)
        menu = menu->parent;
    return menu ? menu->keySection : ZVEnv->keySection;
}

ZVMenu* Find_ActionID(long action, ZVKeySection const* section)
{
    if (action == 0) return nullptr;
    for (ZVMenu& menu : MenuTree(ZVEnv->menus))
        if (menu.action == action && Section_Of_Menu(&menu) == section) return &menu;
    return nullptr;
}

void Set_Key_Command(ZVMenu* menu)
{
    for (ZVMenu* each = menu; each; each = Next_In_Tree(each, menu))
        if (each->action) each->key = static_cast<uint16_t>(Find_Key(Section_Of_Menu(each), each->action));
}

static ZVMenu* Find_By_Place(long position, bool (*standsThere)(ZVMenu const*))
{
    for (ZVMenu& menu : MenuTree(ZVEnv->menus))
        if (standsThere(&menu) && --position == 0) return &menu;
    return nullptr;
}

ZVMenu* Find_About_Item(long position)
{
    return Find_By_Place(position, Is_In_Application_Menu);
}

ZVMenu* Find_Help_Item(long position)
{
    return Find_By_Place(position, Is_In_Help_Menu);
}

ZVMenu* Find_Special_Menu_Item(unsigned long flag)
{
    for (ZVMenu& menu : MenuTree(ZVEnv->menus))
        if (menu.flags & flag) return &menu;
    return nullptr;
}

// ---- making and freeing -----------------------------------------------------------------------------------

void Strip_Marks(char const* text, char* out)
{
    while (*text) {
        if (*text == '&' && !*++text) break;
        *out++ = *text++;
    }
    *out = 0;
}

bool Take_Menu_Text(ZVMenu& menu, char const* text)
{
    if (!text) text = "";
    auto* const copy = static_cast<char*>(New_Block(std::strlen(text) + 1));
    if (!copy) return false;
    Strip_Marks(text, copy);
    FreeMemZV(menu.node.name);
    menu.text = menu.node.name = copy;
    return true;
}

ZVMenu* New_Menu(char const* text)
{
    auto* const menu = New_Record<ZVMenu>();
    if (!menu) return nullptr;
    NewList(&menu->submenus);
    if (Take_Menu_Text(*menu, text)) return menu;
    FreeMemZV(menu);
    return nullptr;
}

void Link_Menu(ZVMenu& menu, ZVMenu* parent)
{
    menu.parent = parent;
    AddTail(parent ? &parent->submenus : &ZVEnv->menus, &menu.node);
}

void Unlink_Menu(ZVMenu& menu)
{
    if (menu.node.next) Remove(&menu.node);
    menu.parent = nullptr;
}

void Free_Menu(ZVMenu* menu)
{
    Delete_Item(menu);
    if (Is_Within(ZVEnv->currentMenu, menu)) ZVEnv->currentMenu = menu->parent;
    Unlink_Menu(*menu);
    // The last one of each list first, so that depth costs nothing.
    for (ZVMenu* each = menu; each;) {
        if (Node* const first = List_First(&each->submenus)) {
            each = reinterpret_cast<ZVMenu*>(first);
            continue;
        }
        ZVMenu* const parent = each == menu ? nullptr : each->parent;
        if (each != menu) Remove(&each->node);
        FreeMemZV(each->exclusion);
        FreeMemZV(each->node.name);
        FreeMemZV(each);
        each = parent;
    }
}
