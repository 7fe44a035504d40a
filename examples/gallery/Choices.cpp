// A window of several floaters, each behind a tab: cycles of texts, of icons, and of many entries. Tabs can
// be dragged out into windows of their own, and back.
#include "Gallery.h"

#include <string>

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);

void On_Choice(ZVEvent* event)
{
    Tell(event);
}

ZVItem* Add_Cycle(unsigned short id, char const* label, char const* entries, long chosen)
{
    ZVItem* const cycle =
        AddGadgetZV(id, id == TextCycle || id == IconCycle || id == LongCycle ? first : below, -1,
                    ZV_GAD_CYCLE, ZV_SIZE_MEDIUM, label, ZV_ITEM_ENTRIES_CSV, entries, ZV_ITEM_ROWS, 12, 0);
    SetGadgetStateZV(cycle, static_cast<double>(chosen));
    return cycle;
}

/// Shows what has been declared, in the window of the other choices if there is one.
void Show_Choice(unsigned short id, char const* name, long priority)
{
    EndPaletteZV(id, name, ZV_PAL_CALLBACK, On_Choice, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FLOATER, ZV_PAL_WINDOW_OF, TextPalette, ZV_PAL_TAB_PRIORITY,
                     priority, ZV_PAL_RELATIVE_TO, ToolsPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER), 0);
}

void Show_Texts()
{
    InitPaletteZV();
    InitGroupZV();
    Add_Cycle(TextCycle, "Filter", "None,(-,Blur,Sharpen,(-,Find edges,A filter of considerable length", 3);
    ZVItem* const marked = Add_Cycle(MarkedCycle, "Quality", "Draft,Good,Best,Lossless", 2);
    ModifyItemZV(marked, ZV_ITEM_DISABLE_ENTRY, 3, ZV_ITEM_DISABLE_ENTRY, 4, 0);
    ItemEnabledZV(Add_Cycle(DisabledCycle, "Mode", "Cannot be changed", 1), 0);
    EndGroupZV(1, first, 0, "", 0, 0);
    Show_Choice(TextPalette, "Texts", 3);
}

void Show_Icons()
{
    InitPaletteZV();
    InitGroupZV();
    Add_Cycle(IconCycle, "Shape", "\\101,\\102,\\103,\\104", 1);
    Add_Cycle(MixedCycle, "Brush", "Round,\\101,(-,Square,\\102", 2);
    EndGroupZV(1, first, 0, "", 0, 0);
    Show_Choice(IconPalette, "Icons", 2);
}

void Show_Many()
{
    InitPaletteZV();
    InitGroupZV();
    std::string entries = "Layer 1";
    for (int i = 2; i <= 40; ++i)
        entries += ",Layer " + std::to_string(i);
    Add_Cycle(LongCycle, "Layer", entries.c_str(), 20);
    EndGroupZV(1, first, 0, "", 0, 0);
    Show_Choice(LongPalette, "Many", 1);
}

}  // namespace

void Show_Choices()
{
    static bool hasIcons = false;
    if (!hasIcons) {
        hasIcons = true;
        if (List_Empty(&ZVEnv->formats)) InitFormatModulesZV(nullptr);
        Add_Library_Formats(nullptr);  // The icons are the pages of a TIFF file.
        LoadIconFileZV("icons.tif");
    }
    if (!FindPaletteZV(TextPalette)) Show_Texts();
    if (!FindPaletteZV(IconPalette)) Show_Icons();
    if (!FindPaletteZV(LongPalette)) Show_Many();
    ActivatePaletteZV(TextPalette, 1);
}
