// The file dialogs of the gallery: to open, to save and for directories, with each way of telling which files
// are wanted. What was chosen shows below the buttons, and is the start of the next dialog.
#include "Gallery.h"

#include <cstdio>

namespace {

char textKind[] = "Text";
char pictureKind[] = "PNG Picture";
ZVFileTypeDescriptor kinds[] = {{textKind, "txt", ZV_FourCC("TEXT")}, {pictureKind, "png", 0}, {}};

char directory[ZV_SPEC_SIZE];
ZVFormatDesc* format = nullptr;
ZVFileTypeDescriptor* kind = nullptr;

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
constexpr unsigned short beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

enum GroupId : short { ButtonGroup = 1, ResultGroup };

/// Asks with a table of kinds, with the format modules, both or neither.
char* Ask(bool isSaving, bool hasTable, bool hasFormats)
{
    constexpr unsigned long ignored = 2053;
    return AskFileNameZV(ZV_ASK_DIRECTORY, directory, isSaving ? ZV_ASK_SAVE : ignored, 0, ZV_ASK_FILE_NAME,
                         isSaving ? "untitled" : nullptr, hasTable ? ZV_ASK_FILE_TYPES : ignored, kinds,
                         hasFormats ? ZV_ASK_FORMATS : ignored, 0, ZV_ASK_FORMAT_RESULT, &format,
                         ZV_ASK_TYPE_RESULT, &kind, 0);
}

void Tell_Choice(char* spec)
{
    char text[ZV_SPEC_SIZE + 200];
    std::snprintf(text, sizeof text, "%s\nKind: %s", spec ? spec : "cancelled",
                  kind     ? static_cast<char const*>(kind->Value)
                  : format ? format->Node.name
                           : "none chosen");
    Show_Result(AskResult, text);
    FreeFileSpecZV(spec);
}

void On_Event(ZVEvent* event)
{
    Tell(event);
    if (event->type != ZV_EVENT_GADGET) return;
    unsigned long const id = Event_Item(event)->node.id;
    if (id == AskDirectory) Tell_Choice(AskDirectoryZV(ZV_ASK_DIRECTORY, directory, 0));
    if (id < AskOpen || id > AskSaveBoth) return;
    bool const isSaving = id >= AskSave;
    unsigned long const which = id - (isSaving ? AskSave : AskOpen);
    Tell_Choice(Ask(isSaving, which & 1, which & 2));
}

}  // namespace

void Show_Files_Palette()
{
    static constexpr char const* labels[] = {"plain", "table", "formats", "both"};
    if (FindPaletteZV(FilesPalette)) return;
    if (List_Empty(&ZVEnv->formats)) InitFormatModulesZV(nullptr);
    InitPaletteZV();
    InitGroupZV();
    for (unsigned short which = 0; which < 4; ++which) {
        char open[32], save[32];
        std::snprintf(open, sizeof open, "Open, %s...", labels[which]);
        std::snprintf(save, sizeof save, "Save, %s...", labels[which]);
        auto const openId = static_cast<unsigned short>(AskOpen + which);
        AddGadgetZV(openId, which ? below : first, which ? -2 : 0, ZV_GAD_BUTTON, ZV_SIZE_LARGE, open,
                    nullptr);
        AddGadgetZV(static_cast<unsigned short>(AskSave + which), beside, -1, ZV_GAD_BUTTON, ZV_SIZE_LARGE,
                    save, nullptr);
    }
    AddGadgetZV(AskDirectory, below, -2, ZV_GAD_BUTTON, ZV_SIZE_LARGE, "Directory...", nullptr);
    EndGroupZV(ButtonGroup, first, 0, nullptr, ZV_MARGIN_NONE, 1, 0);
    InitGroupZV();
    AddGadgetZV(AskResult, first, 0, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 200,
                ZV_ITEM_HEIGHT, 60, ZV_ITEM_MAX_CHARS, 2000, ZV_ITEM_GROW_WIDTH, 100, 0);
    EndGroupZV(ResultGroup, below, ButtonGroup, nullptr, ZV_GRP_FULL_WIDTH, 1, ZV_MARGIN_NONE, 1, 0);
    EndPaletteZV(FilesPalette, "File dialogs", ZV_PAL_CALLBACK, On_Event, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FIXED, ZV_PAL_RELATIVE_TO, MainPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER), 0);
}
