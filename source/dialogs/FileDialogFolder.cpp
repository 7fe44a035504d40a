// The question of a file dialog for the name of a new folder.
#include "FileDialog.h"

#include "Locale/ZVLibStr.h"
#include "interface/Interruption.h"

#include <string>

namespace {

enum : unsigned short { NameId = 1, CancelId, CreateId };

constexpr unsigned short FirstPlace = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);

/// What has been typed, when it was confirmed.
struct FolderName {
    std::string typed, confirmed;
};

void On_Event(ZVEvent* event)
{
    if (!event->palette || event->palette->flags & ZV_PALF_CLOSING) return;
    auto& name = *static_cast<FolderName*>(event->palette->object);
    bool const isKey = event->type == ZV_EVENT_KEY && !(event->modifiers & (ZV_MOD_KEY_UP | ZV_MOD_REPEAT));
    uint32_t const key = isKey ? event->key : 0;
    ZVItem const* const item = event->type == ZV_EVENT_GADGET ? Event_Item(event) : nullptr;
    uint32_t const id = item ? item->node.id : 0;
    if (id == NameId) name.typed = item->editText;
    bool const confirms = id == CreateId || key == ZV_KEY_RETURN || key == ZV_KEY_ENTER;
    if (!confirms && id != CancelId && key != ZV_KEY_ESCAPE) return;
    if (confirms) name.confirmed = name.typed;
    event->result = event->type == ZV_EVENT_KEY;
    ClosePaletteZV(event->palette);
}

void Add_Groups(std::string const& name)
{
    InitGroupZV();
    AddGadgetZV(NameId, FirstPlace, 0, ZV_GAD_STRING, ZV_SIZE_XLARGE, ZVSTR_DIALOG_NAME, ZV_ITEM_MAX_CHARS,
                255, 0);
    SetTextGadgetStateZV(NameId, name.c_str());
    EndGroupZV(1, FirstPlace, 0, nullptr, ZV_MARGIN_NONE, 1, 0);
    InitGroupZV();
    AddGadgetZV(CancelId, FirstPlace, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, ZVSTR_CANCEL, nullptr);
    AddGadgetZV(CreateId, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM,
                ZVSTR_DIALOG_CREATE, ZV_ITEM_FONT_BOLD, 1, ZV_GAP_WIDE, 1, 0);
    EndGroupZV(2, ZV_Position(ZV_POS_PARENT_END, ZV_POS_AFTER), 1, nullptr, ZV_MARGIN_NONE, 1, 0);
}

}  // namespace

std::string Ask_Folder_Name()
{
    Interruption const interruption;
    FolderName name;
    name.typed = GetStringZV(ZVSTR_DIALOG_NEW_FOLDER);
    ZVPalette* const palette = InitPaletteZV();
    if (!palette) return {};
    LivingPalette const watch(palette);
    palette->object = &name;
    Add_Groups(name.typed);
    if (EndPaletteZV(0, ZVSTR_DIALOG_NEW_FOLDER, ZV_PAL_CALLBACK, On_Event, 0))
        DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, ZV_PAL_FLAGS, ZV_PALF_NO_PREFS, 0);
    if (watch.Is_There()) ClosePaletteZV(palette);
    return name.confirmed;
}
