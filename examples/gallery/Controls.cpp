// The palette of controls: proportional gadgets, sliders of each kind, a text box with the gadget that
// scrolls it, a separator between two lists, and labels.
#include "Gallery.h"

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_DEFAULT, ZV_POS_AFTER);
constexpr unsigned short beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);
constexpr unsigned short besideProp =
    ZV_Position(ZV_POS_AFTER, ZV_POS_DEFAULT);  // which begins with its arrow

enum GroupId : short { PropGroup = 1, SliderGroup, TextGroup, SplitGroup, LabelGroup };

void Add_Props()
{
    InitGroupZV();
    AddGadgetZV(WideProp, first, 0, ZV_GAD_HPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 240, ZV_ITEM_PROP_PAGE,
                30, 0);
    AddGadgetZV(MarkedProp, below, -1, ZV_GAD_HPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 240,
                ZV_ITEM_PROP_PAGE, 20, ZV_ITEM_PROP_TRACK, 1, ZV_ITEM_EXTRA, 65, 0);
    AddGadgetZV(DisabledProp, below, -1, ZV_GAD_HPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 240,
                ZV_ITEM_PROP_PAGE, 30, 0);
    AddGadgetZV(TallProp, beside, WideProp, ZV_GAD_VPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_HEIGHT, 140,
                ZV_ITEM_PROP_PAGE, 40, ZV_GAP_EXTRA, 1, 0);
    AddGadgetZV(TallMarkedProp, besideProp, -1, ZV_GAD_VPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_HEIGHT, 140,
                ZV_ITEM_PROP_PAGE, 10, ZV_ITEM_PROP_TRACK, 1, ZV_ITEM_EXTRA, 30, 0);
    AddGadgetZV(TallDisabledProp, besideProp, -1, ZV_GAD_VPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_HEIGHT, 140,
                ZV_ITEM_PROP_PAGE, 40, 0);
    for (unsigned short const id :
         {WideProp, MarkedProp, DisabledProp, TallProp, TallMarkedProp, TallDisabledProp})
        SetGadgetStateZV(id, 25);
    ItemEnabledZV(DisabledProp, 0);
    ItemEnabledZV(TallDisabledProp, 0);
    EndGroupZV(PropGroup, first, 0, "Proportional gadgets", ZV_GRP_BORDER, 1, 0);
}

SliderState& Slider(unsigned short id)
{
    return *static_cast<SliderState*>(FindItemZV(id)->object);
}

void Add_Sliders()
{
    InitGroupZV();
    char const* const labels[] = {"Level", "Opacity", "Exposure", "Frame", "Angle", "Disabled"};
    for (unsigned short id = PlainSlider; id <= DisabledSlider; ++id)
        AddGadgetZV(id, id == PlainSlider ? first : below, -1, ZV_GAD_SLIDER, ZV_SIZE_XLARGE,
                    labels[id - PlainSlider], 0, 0);
    SetupSliderZV(PlainSlider, 0, 255, 0, 255, 0);
    SetupSliderZV(PercentSlider, 0, 100, 0, 100, 1);
    Slider(PercentSlider).Unit[0] = '%';
    SetupSliderZV(QuadraticSlider, 0, 16, 0, 16, 2);
    Slider(QuadraticSlider).Flags |= ZV_SLIDERF_QUADRATIC;
    Slider(QuadraticSlider).Step = 0.01;
    SetupSliderZV(TimeSlider, 0, 9000, 0, 9000, 0);
    Slider(TimeSlider).UseTimecode = 1;
    SetupSliderZV(RelativeSlider, -3600, 3600, -3600, 3600, 0);
    Slider(RelativeSlider).Relative = 1;
    SetupSliderZV(DisabledSlider, 0, 10, 0, 10, 1);
    ItemEnabledZV(DisabledSlider, 0);
    SetGadgetStateZV(PlainSlider, 128);
    SetGadgetStateZV(PercentSlider, 62.5);
    SetGadgetStateZV(QuadraticSlider, 4);
    SetGadgetStateZV(TimeSlider, 2250);
    SetGadgetStateZV(RelativeSlider, 45);
    SetGadgetStateZV(DisabledSlider, 5);
    EndGroupZV(SliderGroup, beside, PropGroup, "Sliders", ZV_GRP_BORDER, 1, 0);
}

constexpr char const* text =
    "A text box shows a text that nobody changes, broken at blanks where a line does not fit.\n\n"
    "Gr\u00fc\u00dfe, \u03b3\u03b5\u03b9\u03ac, \u043f\u0440\u0438\u0432\u0435\u0442: every script that the "
    "font has.\n\n"
    "The proportional gadget beside it is linked: the box tells it how many lines there are and how many of "
    "them "
    "show. When it moves, the application gives its position to the box, whose lines count from 1.\n\n"
    "The separator below shares the room between two lists. The lists do not get smaller than their least "
    "width.";

void Add_Text_Box()
{
    InitGroupZV();
    AddGadgetZV(Box, first, 0, ZV_GAD_TEXTBOX, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 300, ZV_ITEM_HEIGHT,
                110, ZV_ITEM_USER_DATA, text, ZV_ITEM_LINKED, BoxBar, 0);
    AddGadgetZV(BoxBar, beside, -1, ZV_GAD_VPROP, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_HEIGHT, 110, ZV_GAP_FIXED,
                -1, 0);
    EndGroupZV(TextGroup, beside, SliderGroup, "Text box", ZV_GRP_BORDER, 1, 0);
}

void Add_Split()
{
    static constexpr uint32_t before[] = {SplitLeft, 0}, behind[] = {SplitRight, 0};
    InitGroupZV();
    AddGadgetZV(SplitLeft, first, 0, ZV_GAD_LIST, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 110, ZV_ITEM_HEIGHT,
                90, ZV_ITEM_ENTRIES_CSV, "One,Two,Three", ZV_ITEM_GROW_WIDTH, 50, ZV_ITEM_MIN_WIDTH, 60, 0);
    AddGadgetZV(Split, beside, -1, ZV_GAD_SEPARATOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 7,
                ZV_ITEM_HEIGHT, 90, ZV_ITEM_USER_DATA, before, ZV_ITEM_LINKED, behind, 0);
    AddGadgetZV(SplitRight, beside, -1, ZV_GAD_LIST, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 110,
                ZV_ITEM_HEIGHT, 90, ZV_ITEM_ENTRIES_CSV, "Four,Five,Six", ZV_ITEM_GROW_WIDTH, 50,
                ZV_ITEM_MIN_WIDTH, 60, 0);
    EndGroupZV(SplitGroup, beside, TextGroup, "Separator", ZV_GRP_BORDER, 1, 0);
}

void Add_Labels()
{
    InitGroupZV();
    AddGadgetZV(0, first, 0, ZV_GAD_LABEL, ZV_SIZE_MEDIUM, "Centred", 0, 0);
    AddGadgetZV(0, beside, -1, ZV_GAD_LABEL, ZV_SIZE_MEDIUM, "At the left", ZV_ITEM_TEXT_LEFT, 1,
                ZV_ITEM_FONT_BOLD, 1, 0);
    AddGadgetZV(0, below, -2, ZV_GAD_LABEL, ZV_SIZE_MEDIUM, "In a colour", ZV_ITEM_TEXT_RIGHT, 1,
                ZV_ITEM_COLOR, 0xCC2200, 0);
    ItemEnabledZV(AddGadgetZV(0, beside, -1, ZV_GAD_LABEL, ZV_SIZE_MEDIUM, "Disabled", 0, 0), 0);
    EndGroupZV(LabelGroup, ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER), TextGroup, "Labels", ZV_GRP_BORDER,
               1, 0);
}

void On_Controls(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_GADGET && Event_Item(event)->node.id == BoxBar)
        SetGadgetStateZV(Box, Event_Item(event)->state + 1);
}

}  // namespace

void Show_Controls_Palette()
{
    if (ZVPalette* palette = FindPaletteZV(ControlsPalette)) {
        ActivatePaletteZV(palette, 1);
        return;
    }
    InitPaletteZV();
    Add_Props();
    Add_Sliders();
    Add_Text_Box();
    Add_Split();
    Add_Labels();
    EndPaletteZV(ControlsPalette, "Controls", ZV_PAL_CALLBACK, On_Controls, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FLOATER, ZV_PAL_RELATIVE_TO, MainPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_ALIGN_CENTER, ZV_POS_BEFORE), 0);
}
