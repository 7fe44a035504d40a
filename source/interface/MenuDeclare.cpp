// Declaring menus: opening and closing them, their entries, ids and places.
#include "MenuTree.h"

#include <algorithm>

// ---- ids --------------------------------------------------------------------------------------------------

static constexpr int32_t FirstItemId = 1000, LastItemId = 32767;
static constexpr int32_t FirstMenuId = 1, LastMenuId = 234;

/// The first id in the range, from `next` on and round, that no entry of the bar has; 0 when all are taken.
static uint32_t Free_Id(int32_t& next, int32_t first, int32_t last)
{
    if (next < first || next > last) next = first;
    int32_t const start = next;
    do {
        int32_t const id = next;
        next = id == last ? first : id + 1;
        if (!Find_Menu(nullptr, id)) return static_cast<uint32_t>(id);
    } while (next != start);
    return 0;
}

static uint32_t Free_Item_Id()
{
    return Free_Id(ZVEnv->nextItemId, FirstItemId, LastItemId);
}

static uint32_t Free_Menu_Id()
{
    return Free_Id(ZVEnv->nextMenuId, std::max(ZVEnv->menuIdBase, FirstMenuId), LastMenuId);
}

void SetBaseUniqueMenuID(long base)
{
    ZVEnv->nextMenuId = ZVEnv->menuIdBase =
        static_cast<int32_t>(std::clamp<long>(base, FirstMenuId, LastMenuId));
}

// ---- tags -------------------------------------------------------------------------------------------------

static void Take_Tag(ZVMenu& menu, TagItem const& tag)
{
    switch (tag.tag) {
    case ZV_MENU_ENABLED:
        if (!tag.data) menu.flags |= ZV_MENUF_DISABLED;
        break;
    case ZV_MENU_CHECKED:
        if (tag.data && !(menu.flags & ZV_MENUF_SYSTEM)) menu.flags |= ZV_MENUF_CHECKED;
        break;
    case ZV_MENU_SYSTEM: menu.flags |= ZV_MENUF_SYSTEM; break;
    case ZV_MENU_ELLIPSIS: menu.flags |= ZV_MENUF_ELLIPSIS; break;
    case ZV_MENU_CHECKABLE: menu.flags |= ZV_MENUF_CHECKABLE; break;
    case ZV_MENU_STYLE: menu.flags |= static_cast<uint16_t>(tag.data & ZV_MENUF_STYLES); break;
    case ZV_MENU_DATA: menu.data = tag.data; break;
    case ZV_MENU_NEW_MENU_ID: menu.node.id = Free_Menu_Id(); break;
    case ZV_MENU_NEW_ITEM_ID: menu.node.id = Free_Item_Id(); break;
    case ZV_MENU_POPUP: menu.flags |= ZV_MENUF_POPUP; break;
    case ZV_MENU_ABOUT: menu.flags |= ZV_MENUF_ABOUT; break;
    case ZV_MENU_HELP: menu.flags |= ZV_MENUF_HELP; break;
    case ZV_MENU_QUIT: menu.flags |= ZV_MENUF_QUIT; break;
    case ZV_MENU_PREFERENCES: menu.flags |= ZV_MENUF_PREFERENCES; break;
    case ZV_MENU_CALLBACK: menu.callback = Tag_Pointer<void (*)(ZVEvent*)>(tag); break;
    case ZV_MENU_KEY_SECTION: menu.keySection = Tag_Pointer<ZVKeySection*>(tag); break;
    default: break;
    }
}

static void Take_Tags(ZVMenu& menu, TagItem* tags)
{
    while (TagItem const* tag = NextTagItem(&tags))
        Take_Tag(menu, *tag);
}

// ---- places -----------------------------------------------------------------------------------------------

namespace {

/// The place that tags name.
struct MenuPlace {
    ZVMenu* reference = nullptr;  ///< null for none
    unsigned long tag = ZV_TAG_END;
};

/// The first place of the tags whose reference is there, in the menu or else in the bar, and not part of
/// what is to be placed.
MenuPlace Find_Place(ZVMenu const& menu, ZVMenu* within, TagItem* tags)
{
    while (TagItem const* tag = NextTagItem(&tags)) {
        if (tag->tag < ZV_MENU_AFTER || tag->tag > ZV_MENU_UNDER) continue;
        auto const id = static_cast<long>(tag->data);
        ZVMenu* reference = Find_Menu(within, id);
        // A pop-up menu has nothing beside it.
        if (reference && !reference->node.next && tag->tag != ZV_MENU_UNDER) reference = nullptr;
        if (!reference) reference = Find_Menu(nullptr, id);
        if (reference && !Is_Within(reference, &menu)) return {reference, tag->tag};
    }
    return {};
}

}  // namespace

static void Put_At(ZVMenu& menu, MenuPlace const& place)
{
    ZVMenu& reference = *place.reference;
    if (menu.node.next) Remove(&menu.node);
    if (place.tag == ZV_MENU_UNDER) {
        Link_Menu(menu, &reference);
        return;
    }
    // Beside the reference it has the same parent.
    menu.parent = reference.parent;
    List* const list = GetList(&reference.node);
    if (place.tag == ZV_MENU_AFTER)
        Insert(list, &menu.node, &reference.node);
    else
        InsertBefore(list, &menu.node, &reference.node);
}

// ---- menus ------------------------------------------------------------------------------------------------

ZVMenu* InitMenuZV()
{
    bool const isTop = !ZVEnv->currentMenu && ZVEnv->missingMenus == 0;
    if (isTop) SetError(ZV_ERR_NONE);
    // What is opened inside a menu that is not there is not there either.
    ZVMenu* const menu = ZVEnv->missingMenus == 0 ? New_Menu("") : nullptr;
    if (!menu) {
        ++ZVEnv->missingMenus;
        return nullptr;
    }
    Link_Menu(*menu, ZVEnv->currentMenu);
    return ZVEnv->currentMenu = menu;
}

ZVMenu* EndMenuZV(long id, char const* title, TagItem* tags)
{
    if (ZVEnv->missingMenus > 0) {
        --ZVEnv->missingMenus;
        return nullptr;
    }
    ZVMenu* const menu = ZVEnv->currentMenu;
    if (!menu) return nullptr;
    Take_Menu_Text(*menu, title);
    ZVEnv->currentMenu = menu->parent;
    if (GetErrorZV() != ZV_ERR_NONE) {
        Free_Menu(menu);
        return nullptr;
    }
    menu->node.id = id ? static_cast<uint32_t>(id) : Free_Menu_Id();
    Take_Tags(*menu, tags);
    if (FindTagItem(ZV_MENU_FLAG_2000, tags)) menu->flags |= ZV_MENUF_FLAG_2000;
    ZVKeySection* const section = Section_Of_Menu(menu);
    if (menu->flags & ZV_MENUF_POPUP) {
        Delete_Item(menu);
        // Outside the tree it has no ancestor to ask.
        if (section != ZVEnv->keySection) menu->keySection = section;
        Unlink_Menu(*menu);
    } else if (MenuPlace const place = Find_Place(*menu, nullptr, tags); place.reference) {
        Put_At(*menu, place);
    }
    Set_Key_Command(menu);
    return menu;
}

ZVMenu* EndMenuZV(long id, unsigned long titleId, TagItem* tags)
{
    return EndMenuZV(id, Text_Of_Id(titleId), tags);
}

// ---- entries ----------------------------------------------------------------------------------------------

/// An entry with an id and its tags, on no list. Null with error 1.
static ZVMenu* Make_Item(long id, char const* text, unsigned long action, TagItem* tags)
{
    ZVMenu* const menu = New_Menu(text);
    if (!menu) return nullptr;
    menu->node.id = id ? static_cast<uint32_t>(id) : Free_Item_Id();
    menu->action = static_cast<uint16_t>(action);
    Take_Tags(*menu, tags);
    return menu;
}

/// Links an entry at the place of the tags, else at the end of the parent's list.
static void Insert_MenuItem(ZVMenu& menu, ZVMenu* parent, TagItem* tags)
{
    MenuPlace const place = Find_Place(menu, parent, tags);
    if (place.reference)
        Put_At(menu, place);
    else
        Link_Menu(menu, parent);
}

ZVMenu* AddMenuItemZV(long id, char const* text, unsigned long action, TagItem* tags)
{
    if (GetErrorZV() != ZV_ERR_NONE) return nullptr;
    if (!ZVEnv->currentMenu) {
        SetError(ZV_ERR_NO_MENU);
        return nullptr;
    }
    ZVMenu* const menu = Make_Item(id, text, action, tags);
    if (menu) Insert_MenuItem(*menu, ZVEnv->currentMenu, tags);
    return menu;
}

ZVMenu* AddMenuItemZV(long id, unsigned long textId, unsigned long action, TagItem* tags)
{
    return AddMenuItemZV(id, Text_Of_Id(textId), action, tags);
}

ZVMenu* AddMenuItemZV(ZVMenu* menu, TagItem* tags)
{
    if (!menu) return nullptr;
    MenuPlace place = Find_Place(*menu, menu->parent, tags);
    ZVMenu* const current = ZVEnv->currentMenu;
    bool const canEnd = current && !Is_Within(current, menu);
    if (!place.reference && canEnd) place = {current, ZV_MENU_UNDER};
    if (!place.reference) {
        SetError(ZV_ERR_NO_MENU);
        return nullptr;
    }
    Delete_Item(menu);
    Put_At(*menu, place);
    Set_Key_Command(menu);
    return menu;
}

ZVMenu* InsertMenuItemZV(ZVMenu* parent, long id, char const* text, unsigned long action, TagItem* tags)
{
    ZVMenu* const menu = Make_Item(id, text, action, tags);
    if (!menu) return nullptr;
    Insert_MenuItem(*menu, parent, tags);
    Set_Key_Command(menu);
    return menu;
}

ZVMenu* InsertMenuItemZV(ZVMenu* parent, long id, unsigned long textId, unsigned long action, TagItem* tags)
{
    return InsertMenuItemZV(parent, id, Text_Of_Id(textId), action, tags);
}

ZVMenu* InsertMenuItemZV(long id, char const* text, unsigned long action, TagItem* tags)
{
    return InsertMenuItemZV(nullptr, id, text, action, tags);
}

ZVMenu* InsertMenuItemZV(long id, unsigned long textId, unsigned long action, TagItem* tags)
{
    return InsertMenuItemZV(nullptr, id, Text_Of_Id(textId), action, tags);
}

// ---- copies -----------------------------------------------------------------------------------------------

static uint16_t* Copy_Exclusion(uint16_t const* ids)
{
    std::size_t count = 1;
    while (ids[count - 1])
        ++count;
    auto* const copy = static_cast<uint16_t*>(New_Block(count * sizeof *ids));
    if (copy) std::copy_n(ids, count, copy);
    return copy;
}

/// What an entry is, without what is below it; null with error 1.
static ZVMenu* Copy_Entry(ZVMenu const& entry)
{
    ZVMenu* const copy = New_Menu("");
    if (!copy) return nullptr;
    // The text has no marks any more.
    bool isWhole = Replace_Text(copy->node.name, entry.text);
    copy->text = copy->node.name;
    if (isWhole && entry.exclusion) isWhole = (copy->exclusion = Copy_Exclusion(entry.exclusion)) != nullptr;
    if (!isWhole) {
        Free_Menu(copy);
        return nullptr;
    }
    copy->node.id = entry.node.id;
    copy->data = entry.data;
    copy->flags = entry.flags;
    copy->action = entry.action;
    copy->key = entry.key;
    copy->callback = entry.callback;
    copy->keySection = entry.keySection;
    return copy;
}

/// An entry with all below it, on no list; null with error 1.
static ZVMenu* Copy_Tree(ZVMenu const& entry)
{
    ZVMenu* const top = Copy_Entry(entry);
    ZVMenu const* from = &entry;
    // Where the walk goes up in the one tree it goes up in the other.
    for (ZVMenu* parent = top; parent;) {
        ZVMenu const* const next = Next_In_Tree(from, &entry);
        if (!next) return top;
        for (ZVMenu const* each = from; each != next->parent; each = each->parent)
            parent = parent->parent;
        ZVMenu* const copy = Copy_Entry(*next);
        if (!copy) break;
        Link_Menu(*copy, parent);
        from = next;
        parent = copy;
    }
    if (top) Free_Menu(top);
    return nullptr;
}

/// Copies of a menu's entries, on a list of their own. An empty list with error 1.
static void Copy_Entries_Of(ZVMenu const& menu, List& copies)
{
    for (ZVMenu const& entry : Entries_Of(menu)) {
        ZVMenu* const copy = Copy_Tree(entry);
        if (!copy) {
            while (Node* const node = List_First(&copies))
                Free_Menu(reinterpret_cast<ZVMenu*>(node));
            return;
        }
        if (!copy->callback) copy->callback = menu.callback;
        AddTail(&copies, &copy->node);
    }
}

void AddMenuZV(ZVMenu const* menu, TagItem* tags)
{
    if (!menu || GetErrorZV() != ZV_ERR_NONE) return;
    ZVMenu* const current = ZVEnv->currentMenu;
    if (!current) {
        SetError(ZV_ERR_NO_MENU);
        return;
    }
    // All copies are made before the first is linked: the open menu may be the given one or lie in it.
    List copies;
    NewList(&copies);
    Copy_Entries_Of(*menu, copies);
    while (Node* const node = RemHead(&copies)) {
        auto& copy = *reinterpret_cast<ZVMenu*>(node);
        node->next = nullptr;
        Take_Tags(copy, tags);
        Insert_MenuItem(copy, current, tags);
    }
}
