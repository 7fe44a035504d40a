// Trees of menus built, changed, shown and used in any order that bytes can tell, on the desktop in memory;
// callbacks do the same from within.
#include "InputBytes.h"

#include <ZVLibInternal.h>

namespace {

/// A choice inside the callback of a choice: as deep as this.
constexpr int DeepestCall = 3;

/// Copies of copies grow fast; so many of a run are enough.
constexpr int MostCopies = 6;

/// Ticks after which a menu that waits for a user is given up.
constexpr unsigned Patience = 3;

Bytes* input = nullptr;
int depth = 0, copies = 0;
unsigned ticks = 0;
ZVMenu* popUp = nullptr;

void Act();

void On_Event(ZVEvent* event)
{
    // To make the bar anew closes what is open.
    if (event->type == ZV_EVENT_TICK && ++ticks % Patience == 0) MakeMenuBarZV();
    if (event->type == ZV_EVENT_TICK || event->type == ZV_EVENT_MOUSE_MOVE || depth >= DeepestCall) return;
    ++depth;
    Act();
    --depth;
}

long Next_Id()
{
    return input->Next() % 20;
}

/// Declares or inserts an entry, with tags of which none holds a pointer: those end with the 17th.
void Add_Entry()
{
    long const id = Next_Id();
    std::string const text = input->Next() % 5 ? input->Next_Text() : "-";
    TagItem tags[] = {{ZV_MENU_AFTER + input->Next() % 17, input->Next()},
                      {ZV_MENU_AFTER + input->Next() % 14, static_cast<unsigned long>(Next_Id())},
                      {}};
    switch (input->Next() % 4) {
    case 0: InsertMenuItemZV(FindMenuZV(input->Next()), id, text.c_str(), id & 3, tags); break;
    case 1: AddMenuItemZV(FindMenuZV(input->Next()), tags); break;
    case 2: InsertMenuItemZV(popUp, id, text.c_str(), 0, tags); break;
    default: AddMenuItemZV(id, text.c_str(), 0, tags); break;
    }
}

void Open_Or_Close()
{
    if (input->Next() % 2) {
        InitMenuZV();
        return;
    }
    TagItem tags[] = {{ZV_MENU_AFTER + input->Next() % 17, input->Next()}, {}};
    // What has left the bar is ours.
    ZVMenu* const menu = EndMenuZV(Next_Id(), input->Next_Text().c_str(), tags);
    if (!menu || !(menu->flags & ZV_MENUF_POPUP)) return;
    DelMenuZV(popUp);
    popUp = menu;
}

void Change()
{
    long const id = Next_Id(), on = input->Next() & 1;
    ZVMenu* const menu = input->Next() % 3 ? FindMenuZV(static_cast<unsigned long>(id)) : popUp;
    switch (input->Next() % 9) {
    case 0:
        if (menu == popUp) popUp = nullptr;
        DelMenuZV(menu);
        break;
    case 1: DelMenuItemZV(id); break;
    case 2: SetMenuTextZV(id, input->Next_Text().c_str()); break;
    case 3: SelectMenuZV(menu, id, on); break;
    case 4: EnableMenusZV(menu, on); break;
    case 5: SetMenuExclusionZV(menu, Next_Id(), Next_Id()); break;
    case 6: SortSubMenusZV(menu); break;
    case 7: SetMenuStyleZV(id, input->Next()); break;
    default:
        if (++copies <= MostCopies) AddMenuZV(menu, nullptr);
        break;
    }
}

void Use()
{
    switch (input->Next() % 9) {
    case 0: HeadlessClickZV(input->Next() * 2L, input->Next() * 2L, input->Next() % 3); break;
    case 1: HeadlessClickZV(input->Next(), 5, 0); break;
    case 2: HeadlessMoveZV(input->Next() * 2L, input->Next() * 2L); break;
    case 3: HeadlessKeyZV(ZV_KEY_LEFT + input->Next() % 15); break;
    case 4: HeadlessTypeZV(input->Next_Text().c_str()); break;
    case 5: HeadlessWheelZV(0, static_cast<double>(input->Next() % 7) - 3); break;
    case 6: MakeMenuBarZV(); break;
    case 7: Menu_Event(static_cast<short>(Next_Id()), static_cast<short>(Next_Id() - 3)); break;
    default: DisplayContextualMenuZV(popUp); break;
    }
}

void Act()
{
    switch (input->Next() % 5) {
    case 0: Add_Entry(); break;
    case 1: Open_Or_Close(); break;
    case 2: Change(); break;
    case 3: HeadlessRunZV(input->Next()); break;
    default: Use(); break;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Start_Headless(On_Event);
    Bytes bytes(data, size);
    input = &bytes;
    depth = copies = 0;
    while (!bytes.Is_Empty())
        Act();
    HeadlessRunZV(50);
    ClearMenuBarZV();
    DelMenuZV(popUp);
    popUp = nullptr;
    SetError(ZV_ERR_NONE);
    return 0;
}
