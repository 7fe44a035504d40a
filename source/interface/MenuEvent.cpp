// Choices: from the entry that the user chose to its check mark and event 15; the bar as a whole, and menus
// that an application opens.
#include "EventWalk.h"
#include "MenuState.h"
#include "PaletteTree.h"

// ---- the bar ----------------------------------------------------------------------------------------------

void MakeMenuBarZV()
{
    if (ZVEnv->modalDepth == 0) Make_MenuBar();
}

void ClearMenuBarZV()
{
    Free_SysMenus();
    while (Node* const menu = List_First(&ZVEnv->menus))
        Free_Menu(reinterpret_cast<ZVMenu*>(menu));
    ZVEnv->missingMenus = 0;
}

// ---- choices ----------------------------------------------------------------------------------------------

static void Follow_Choice(ZVMenu& menu)
{
    if (!(menu.flags & ZV_MENUF_CHECKABLE)) return;
    if (menu.flags & ZV_MENUF_CHECKED)
        Uncheck_Menu(menu);
    else
        Check_Menu(menu);
}

/// Its own callback or the nearest ancestor's, else that of the nearest key section; null for the
/// application's.
static auto Callback_Of(ZVMenu const& menu)
{
    for (ZVMenu const* each = &menu; each; each = each->parent)
        if (each->callback) return each->callback;
    for (ZVMenu const* each = &menu; each; each = each->parent)
        if (each->keySection) return each->keySection->callback;
    return static_cast<void (*)(ZVEvent*)>(nullptr);
}

void Choose_Menu(ZVMenu* menu)
{
    Follow_Choice(*menu);
    ZVEvent event = Make_Event(ZV_EVENT_MENU);
    event.item = Tag_Word(menu);
    event.key = menu->action;
    CurrentPalette const current(ZVEnv->currentPalette);
    Call_Back(Callback_Of(*menu), event);
}

/// The entry at a position, from 1 on, among those of the menu that stand in place; null when there is none.
static ZVMenu* Entry_At(ZVMenu const& menu, long position)
{
    for (ZVMenu& entry : Entries_Of(menu))
        if (!Is_In_Application_Menu(&entry) && !Is_In_Help_Menu(&entry) && --position == 0) return &entry;
    return nullptr;
}

static void Choose_From(ZVMenu* menu, short number, short item)
{
    if (!menu && number == HelpMenuNumber) {
        menu = Find_Help_Item(item);
        item = 0;
    } else if (!menu && number == ApplicationMenuNumber) {
        menu = Find_About_Item(item);
        item = 0;
    }
    if (menu && item > 0) menu = Entry_At(*menu, item);
    if (menu) Choose_Menu(menu);
}

void Menu_Event(List* list, short menu, short item)
{
    ZVMenu* found = nullptr;
    Find_MenuID(list, menu, &found, nullptr);
    Choose_From(found, menu, item);
}

void Menu_Event(short menu, short item)
{
    Menu_Event(&ZVEnv->menus, menu, item);
}

void Menu_Event(ZVMenu* root, short menu, short item)
{
    if (root) Choose_From(Find_Menu(root, menu), menu, item);
}

// ---- menus that an application opens ----------------------------------------------------------------------

ZVMenu* Select_From_Menu(ZVMenu* menu, long x, long y)
{
    constexpr uint32_t pressBits = ZV_MOD_BUTTON | ZV_MOD_DOUBLE_CLICK;
    constexpr uint32_t otherButtons = 0x0002 | ZV_MOD_SECOND_BUTTON;  // the menu has had what they did
    auto const clear = [](uint32_t bits) {
        ZVEnv->modifiers &= ~bits;
        ZVEnv->buttonState &= ~bits;
    };
    ZVEnv->trackingItem = ZVEnv->tickItem = nullptr;
    clear(pressBits);
    ZVMenu* const chosen = Make_Popup_Menu(menu, x, y);
    // No cursor has that number, so that the next one is shown whatever the menu has left there.
    ZVEnv->cursor = -1;
    Update_Cursor();
    clear(pressBits | otherButtons);
    return chosen;
}

void DisplayContextualMenuZV(ZVMenu* menu)
{
    if (!menu || !(menu->flags & ZV_MENUF_POPUP)) return;
    if (ZVMenu* const chosen = Select_From_Menu(menu, ZVEnv->pointerX, ZVEnv->pointerY)) Choose_Menu(chosen);
}
