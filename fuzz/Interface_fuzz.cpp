// Palettes declared, shown, used and closed in any order that bytes can tell, on the desktop in memory; their
// callbacks do the same from within.
#include "InputBytes.h"

#include <ZVLib.h>

namespace {

/// A display inside a callback of a display: as deep as this.
constexpr int DeepestCall = 4;

/// Ticks after which what waits for a user is closed.
constexpr unsigned Patience = 5;

Bytes* input = nullptr;
int depth = 0;
unsigned ticks = 0;

void Act();

void On_Event(ZVEvent* event)
{
    if (event->type == ZV_EVENT_TICK && ++ticks > Patience && ZVEnv->modalPalette) {
        ticks = 0;
        ClosePaletteZV(ZVEnv->modalPalette);
        return;
    }
    if (event->type == ZV_EVENT_TICK || event->type == ZV_EVENT_MOUSE_MOVE || input->Is_Empty()) return;
    event->result = input->Next() & 1;
    if (depth >= DeepestCall || input->Next() % 4) return;
    ++depth;
    Act();
    --depth;
}

long Gadget(ZVCustomEvent* event)
{
    if (event->type == ZV_CUSTOM_DRAW) {
        ZVDrawInfo* const draw = DrawBeginZV(event->item);
        FillRectZV(draw, 0, 0, event->item->width - 1, event->item->height - 1);
        DrawEndZV(draw);
    }
    if (event->type == ZV_CUSTOM_MOUSE_DOWN || event->type == ZV_CUSTOM_WHEEL) {
        event->replyType = ZV_EVENT_GADGET;
        event->replyData = Tag_Word(event->item);
    }
    return 1;
}

void Add_Item()
{
    unsigned short const id = input->Next_Id(), position = input->Next_Short();
    auto const reference = static_cast<short>(static_cast<int>(input->Next() % 15) - 3);
    auto const type = static_cast<ZVGadgetType>(input->Next() % 20);
    auto const size = static_cast<ZVGadgetSize>(input->Next() % 8);
    std::string const text = input->Next_Text();
    TagItem tags[] = {{static_cast<unsigned long>(768 + input->Next() % 20), input->Next()},
                      {ZV_ITEM_WIDTH, input->Next() * 2UL},
                      {ZV_ITEM_HEIGHT, input->Next()},
                      {input->Next() % 2 ? ZV_ITEM_GROW_WIDTH : ZV_ITEM_GROW_HEIGHT, input->Next() % 120},
                      {ZV_ITEM_CUSTOM_FUNC, Tag_Word(&Gadget)},
                      {}};
    // Tags with pointers get none of the bytes.
    switch (tags[0].tag) {
    case ZV_ITEM_TEXT:
    case ZV_ITEM_ENTRIES_CSV: tags[0].data = Tag_Word(text.c_str()); break;
    case ZV_ITEM_MIN:
    case ZV_ITEM_MAX:
    case ZV_ITEM_MAX_CHARS:
    case ZV_ITEM_ROWS:
    case ZV_ITEM_CHARS: break;
    default: tags[0].tag = ZV_ITEM_USER_DATA; break;
    }
    // What these two read there is a text, and ids.
    static constexpr uint32_t neighbours[] = {1, 2, 3, 0};
    if (tags[0].tag == ZV_ITEM_USER_DATA && type == ZV_GAD_TEXTBOX) tags[0].data = Tag_Word(text.c_str());
    if (tags[0].tag == ZV_ITEM_USER_DATA && type == ZV_GAD_SEPARATOR) tags[0].data = Tag_Word(neighbours);
    if (type != ZV_GAD_CUSTOM) tags[4] = {};
    switch (input->Next() % 5) {
    case 0: AddTextZV(id, position, reference, text.c_str(), nullptr); break;
    case 1: AddLineZV(id, position, reference, size, input->Next() % 4, nullptr); break;
    default: AddGadgetZV(id, position, reference, type, size, text.c_str(), tags); break;
    }
}

void Declare_And_Show()
{
    InitPaletteZV();
    for (unsigned groups = 1 + input->Next() % 3; groups > 0; --groups) {
        InitGroupZV();
        for (unsigned items = input->Next() % 6; items > 0; --items)
            Add_Item();
        TagItem tags[] = {{static_cast<unsigned long>(ZV_GRP_FULL_WIDTH + input->Next() % 18), input->Next()},
                          {}};
        if (tags[0].tag == ZV_GRP_CALLBACK) tags[0].data = 0;
        EndGroupZV(static_cast<short>(input->Next_Id()), input->Next_Short(),
                   static_cast<short>(static_cast<int>(input->Next() % 6) - 2), input->Next_Text().c_str(),
                   tags);
        if (input->Next() % 8 == 0) InitPaletteZV();  // a sub-palette
    }
    EndPaletteZV(input->Next_Id(), input->Next_Text().c_str(), ZV_PAL_CALLBACK,
                 input->Next() % 2 ? &On_Event : nullptr, 0);
    DisplayPaletteZV(ZV_PAL_KIND, 1 + input->Next() % 7, ZV_PAL_FLAGS, input->Next_Short() & ~2U,
                     ZV_PAL_POSITION, input->Next_Short(), ZV_PAL_RELATIVE_TO, input->Next_Id(),
                     ZV_PAL_SUGGEST_WIDTH, input->Next() * 3, 0);
}

/// One of the windows, or null.
ZVWindow* Some_Window()
{
    unsigned place = input->Next() % 4;
    for (Node* node = ZVEnv->windows.head; node->next; node = node->next)
        if (place-- == 0) return reinterpret_cast<ZVWindow*>(node);
    return nullptr;
}

void Act_On_Window()
{
    ZVWindow* const window = Some_Window();
    if (!window || !window->sysWindow) return;
    ZVRectT<long> const client{input->Next() * 4L, input->Next() * 4L, input->Next() * 4L,
                               input->Next() * 4L};
    switch (input->Next() % 4) {
    case 0: HeadlessCloseBoxZV(window); break;
    case 1: HeadlessZoomBoxZV(window); break;
    case 2: HeadlessDragFrameZV(window, &client); break;
    default: ActivatePaletteZV(window->activePalette, 1); break;
    }
}

void Act_On_Item()
{
    SetCurrentPaletteZV(input->Next_Id());
    ZVItem* const item = FindItemZV(input->Next_Id());
    switch (input->Next() % 7) {
    case 0: ItemVisibleZV(item, input->Next() & 1); break;
    case 1: ItemEnabledZV(item, input->Next() & 1); break;
    case 2: SetGadgetStateZV(input->Next_Id(), static_cast<double>(input->Next())); break;
    case 3: SetTextGadgetStateZV(input->Next_Id(), input->Next_Text().c_str()); break;
    case 4: ModifyItemZV(item, ZV_ITEM_ADD_ENTRY, input->Next_Text().c_str(), 0); break;
    case 5: ScheduleItemForFocusZV(item); break;
    default: ModifyItemZV(item, ZV_ITEM_TEXT, input->Next_Text().c_str(), 0); break;
    }
}

void Act_On_Palette()
{
    ZVPalette* const palette = FindPaletteZV(input->Next_Id());
    switch (input->Next() % 5) {
    case 0: ClosePaletteZV(palette); break;
    case 1: PaletteVisibleZV(palette, input->Next() & 1); break;
    case 2: ResizePaletteZV(palette, input->Next() * 4L, input->Next() * 4L); break;
    case 3: RebuildPaletteZV(palette); break;
    default: HilitePaletteZV(palette, input->Next() & 1); break;
    }
}

void Use_Input_Devices()
{
    switch (input->Next() % 8) {
    case 0: HeadlessClickZV(input->Next() * 6L, input->Next() * 4L, input->Next() % 3); break;
    case 1: HeadlessMoveZV(input->Next() * 6L, input->Next() * 4L); break;
    case 2: HeadlessPressZV(0); break;
    case 3: HeadlessReleaseZV(0); break;
    case 4: HeadlessKeyZV(ZV_KEY_F1 + input->Next() % 32); break;
    case 5: HeadlessTypeZV(input->Next_Text().c_str()); break;
    case 6: HeadlessComposeZV(input->Next_Text().c_str(), input->Next() % 9); break;
    default: HeadlessWheelZV(0, static_cast<double>(input->Next() % 7) - 3); break;
    }
    HeadlessHoldZV(input->Next() % 8 ? 0 : ZV_MOD_CONTROL);
}

void Act()
{
    switch (input->Next() % 6) {
    case 0: Declare_And_Show(); break;
    case 1: Act_On_Window(); break;
    case 2: Act_On_Item(); break;
    case 3: Act_On_Palette(); break;
    case 4: HeadlessRunZV(input->Next() * 4UL); break;
    default: Use_Input_Devices(); break;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Start_Headless(On_Event);
    Bytes bytes(data, size);
    input = &bytes;
    depth = 0;
    while (!bytes.Is_Empty())
        Act();
    HeadlessRunZV(50);
    CleanUpWindowsZV();
    SetError(ZV_ERR_NONE);
    return 0;
}
