// The palettes of the gallery, declared without a coordinate.
#include "Gallery.h"

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
constexpr unsigned short beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

enum GroupId : short {
    ButtonGroup = 1,
    ToggleGroup,
    CheckGroup,
    RadioGroup,
    FieldGroup,
    ListGroup,
    EditorGroup,
    ActionGroup,
    ThemeGroup
};

void Add_Buttons()
{
    InitGroupZV();
    AddGadgetZV(Push, first, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Push me", ZV_ITEM_TOOLTIP, "A plain button",
                0);
    AddGadgetZV(PushDisabled, below, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Not me", 0, 0);
    AddGadgetZV(PushDefault, below, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Bold, left", ZV_ITEM_FONT_BOLD, 1,
                ZV_ITEM_TEXT_LEFT, 1, 0);
    ItemEnabledZV(PushDisabled, 0);
    EndGroupZV(ButtonGroup, first, 0, "Buttons", ZV_GRP_BORDER, 1, 0);

    InitGroupZV();
    AddGadgetZV(ToggleOff, first, 0, ZV_GAD_TOGGLE, ZV_SIZE_MEDIUM, "Off", 0, 0);
    AddGadgetZV(ToggleOn, below, -1, ZV_GAD_TOGGLE, ZV_SIZE_MEDIUM, "On", 0, 0);
    AddGadgetZV(ToggleDisabled, below, -1, ZV_GAD_TOGGLE, ZV_SIZE_MEDIUM, "On, disabled", 0, 0);
    SetGadgetStateZV(ToggleOn, 1);
    SetGadgetStateZV(ToggleDisabled, 1);
    ItemEnabledZV(ToggleDisabled, 0);
    EndGroupZV(ToggleGroup, beside, ButtonGroup, "Toggles", ZV_GRP_BORDER, 1, 0);
}

void Add_Choices()
{
    InitGroupZV();
    AddGadgetZV(CheckFirst, first, 0, ZV_GAD_CHECK, ZV_SIZE_MEDIUM, "Off", 0, 0);
    AddGadgetZV(CheckSecond, below, -1, ZV_GAD_CHECK, ZV_SIZE_MEDIUM, "On", 0, 0);
    AddGadgetZV(CheckDisabled, below, -1, ZV_GAD_CHECK, ZV_SIZE_MEDIUM, "Disabled", 0, 0);
    SetGadgetStateZV(CheckSecond, 1);
    SetGadgetStateZV(CheckDisabled, 1);
    ItemEnabledZV(CheckDisabled, 0);
    EndGroupZV(CheckGroup, below, ButtonGroup, "Checks", ZV_GRP_BORDER, 1, 0);

    InitGroupZV();
    AddGadgetZV(RadioFirst, first, 0, ZV_GAD_RADIO, ZV_SIZE_MEDIUM, "One", 0, 0);
    AddGadgetZV(RadioSecond, below, -1, ZV_GAD_RADIO, ZV_SIZE_MEDIUM, "Two", 0, 0);
    AddGadgetZV(RadioThird, below, -1, ZV_GAD_RADIO, ZV_SIZE_MEDIUM, "Three", 0, 0);
    SetItemExclusionZV(RadioFirst, RadioSecond, RadioThird);
    SetGadgetStateZV(RadioSecond, 1);
    EndGroupZV(RadioGroup, beside, CheckGroup, "Radios", ZV_GRP_BORDER, 1, 0);
}

void Add_Fields()
{
    InitGroupZV();
    AddGadgetZV(TextField, first, 0, ZV_GAD_STRING, ZV_SIZE_XLARGE, "Text", ZV_ITEM_GROW_WIDTH, 100, 0);
    AddGadgetZV(IntegerField, below, -1, ZV_GAD_INTEGER, ZV_SIZE_SMALL, "Integer", ZV_ITEM_MIN, -1000,
                ZV_ITEM_MAX, 1000, 0);
    AddGadgetZV(FloatField, below, -1, ZV_GAD_FLOAT, ZV_SIZE_SMALL, "Float", 0, 0);
    AddGadgetZV(PasswordField, below, -1, ZV_GAD_STRING, ZV_SIZE_MEDIUM, "Password", ZV_ITEM_PASSWORD, 1, 0);
    AddGadgetZV(DisabledField, below, -1, ZV_GAD_STRING, ZV_SIZE_XLARGE, "Disabled", ZV_ITEM_GROW_WIDTH, 100,
                0);
    SetTextGadgetStateZV(TextField, "Gr\u00fc\u00dfe, \u03b3\u03b5\u03b9\u03ac, hello");
    SetGadgetStateZV(IntegerField, 42);
    SetGadgetStateZV(FloatField, 2.5);
    SetTextGadgetStateZV(PasswordField, "secret");
    SetTextGadgetStateZV(DisabledField, "cannot be changed");
    ItemEnabledZV(DisabledField, 0);
    EndGroupZV(FieldGroup, beside, ToggleGroup, "Fields", ZV_GRP_BORDER, 1, ZV_GRP_AUTO_WIDTH, 1,
               ZV_GRP_ALIGN_BOTTOM, RadioGroup, 0);
}

void Add_Lists()
{
    InitGroupZV();
    AddGadgetZV(
        RowList, first, 0, ZV_GAD_LIST, ZV_SIZE_LARGE, nullptr, ZV_ITEM_ENTRIES_CSV,
        "Apple,Banana,Cherry,Date,Elderberry,Fig,Grape,Honeydew melon of considerable length,Iris,Jasmine",
        ZV_ITEM_ROWS, 6, ZV_ITEM_GROW_HEIGHT, 100, 0);
    AddGadgetZV(DisabledList, beside, -1, ZV_GAD_LIST, ZV_SIZE_MEDIUM, nullptr, ZV_ITEM_ENTRIES_CSV,
                "One,Two,Three", ZV_ITEM_ROWS, 6, ZV_ITEM_GROW_HEIGHT, 100, ZV_GAP_WIDE, 1, 0);
    SetGadgetStateZV(RowList, 3);
    ItemEnabledZV(DisabledList, 0);
    EndGroupZV(ListGroup, below, CheckGroup, "Lists", ZV_GRP_BORDER, 1, ZV_GRP_GROW_HEIGHT, 100, 0);

    InitGroupZV();
    AddGadgetZV(Editor, first, 0, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 340, ZV_ITEM_HEIGHT,
                96, ZV_ITEM_MAX_CHARS, 4000, ZV_ITEM_GROW_WIDTH, 100, ZV_ITEM_GROW_HEIGHT, 100, 0);
    SetTextGadgetStateZV(Editor, "Text of several lines, broken at words where it does not fit.\n\n"
                                 "Everything here is drawn by the library itself.");
    EndGroupZV(EditorGroup, beside, ListGroup, "Editor", ZV_GRP_BORDER, 1, ZV_GRP_AUTO_WIDTH, 1,
               ZV_GRP_GROW_HEIGHT, 100, 0);
}

void Add_Actions()
{
    InitGroupZV();
    AddGadgetZV(OpenDialog, first, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Dialog...", 0, 0);
    AddGadgetZV(OpenPopUp, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Pop-up", 0, 0);
    AddGadgetZV(MoreRows, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "More rows", 0, 0);
    AddTextZV(0, beside, -1, "Theme", ZV_GAP_EXTRA, 1, ZV_ITEM_CENTER_TEXT, 1, 0);
    AddGadgetZV(LightTheme, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), MoreRows, ZV_GAD_RADIO,
                ZV_SIZE_SMALL, "Light", ZV_GAP_FIXED, 80, 0);
    AddGadgetZV(DarkTheme, beside, -1, ZV_GAD_RADIO, ZV_SIZE_SMALL, "Dark", 0, 0);
    SetItemExclusionZV(LightTheme, DarkTheme);
    AddGadgetZV(Swatch, beside, -1, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_CUSTOM_FUNC, Swatch_Gadget,
                ZV_ITEM_WIDTH, 60, ZV_ITEM_HEIGHT, ZVEnv->style->gadgetHeight, ZV_GAP_EXTRA, 1, 0);
    AddGadgetZV(MenuButton, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_CENTER), -1, ZV_GAD_MENU, ZV_SIZE_DEFAULT,
                nullptr, ZV_ITEM_SELECTED, Swatch_Menu(), 0);
    AddGadgetZV(OpenRequesters, below, OpenDialog, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Requesters", 0, 0);
    AddGadgetZV(OpenControls, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Controls", 0, 0);
    AddGadgetZV(OpenChoices, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Choices", 0, 0);
    AddGadgetZV(OpenMedia, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Media", 0, 0);
    AddGadgetZV(OpenFiles, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "File dialogs", 0, 0);
    EndGroupZV(ActionGroup, below, ListGroup, "", 0, 0);
}

/// What the main palette's gadgets do.
void On_Main(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_ASK_CLOSE) ExitZV();
    if (event->type != ZV_EVENT_GADGET) return;
    switch (Event_Item(event)->node.id) {
    case OpenDialog: Show_Dialog(); break;
    case OpenPopUp: Show_Pop_Up(); break;
    case OpenRequesters: Show_Requesters_Palette(); break;
    case OpenFiles: Show_Files_Palette(); break;
    case OpenControls: Show_Controls_Palette(); break;
    case OpenChoices: Show_Choices(); break;
    case OpenMedia: Show_Media_Palette(); break;
    case LightTheme: SetPenPresetZV(1); break;
    case DarkTheme: SetPenPresetZV(2); break;
    case MoreRows: ModifyItemZV(RowList, ZV_ITEM_ADD_ENTRY, "Another row", 0); break;
    default: break;
    }
}

void On_Other(ZVEvent* event)
{
    Tell(event);
}

/// Accept and cancel close the dialog; Return and Escape do the same. For a picture nobody is there to do so.
void On_Dialog(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_TICK && Take_Screenshot()) ClosePaletteZV(DialogPalette);
    bool const isGadget = event->type == ZV_EVENT_GADGET;
    unsigned long const id = isGadget ? Event_Item(event)->node.id : 0;
    bool const isKey = event->type == ZV_EVENT_KEY && !(event->modifiers & ZV_MOD_KEY_UP);
    bool const accepts = id == DialogAccept || (isKey && event->key == ZV_KEY_RETURN);
    bool const cancels = id == DialogCancel || (isKey && event->key == ZV_KEY_ESCAPE);
    if (accepts) SetTextGadgetStateZV(DialogName, "accepted");
    if (accepts || cancels) ClosePaletteZV(DialogPalette);
}

void On_Pop_Up(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_GADGET) ClosePaletteZV(PopUpPalette);
}

}  // namespace

void Show_Main_Palette()
{
    InitPaletteZV();
    Add_Buttons();
    Add_Choices();
    Add_Fields();
    Add_Lists();
    Add_Actions();
    ConformGroupHeightZV(2, EditorGroup, ListGroup);
    EndPaletteZV(MainPalette, "Gallery", ZV_PAL_CALLBACK, On_Main, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_DOCUMENT, ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH | ZV_PALF_ZOOM, 0);
}

void Show_Tools_Palette()
{
    InitPaletteZV();
    InitGroupZV();
    for (unsigned short id = ToolFirst; id <= ToolLast; ++id) {
        int const place = id - ToolFirst;
        unsigned short const position = place == 0 ? first : place % 2 ? beside : below;
        short const reference = place % 2 || place == 0 ? -1 : -2;
        char const label[] = {static_cast<char>('A' + place), 0};
        AddGadgetZV(id, position, reference, ZV_GAD_TOGGLE, ZV_SIZE_TINY, label, 0, 0);
    }
    SetItemExclusionRangeZV(ToolFirst, ToolLast);
    SetGadgetStateZV(ToolFirst, 1);
    EndGroupZV(1, first, 0, "", 0, 0);
    EndPaletteZV(ToolsPalette, "Tools", ZV_PAL_CALLBACK, On_Other, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FIXED, ZV_PAL_RELATIVE_TO, MainPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), 0);
}

void Show_Dialog()
{
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(DialogName, first, 0, ZV_GAD_STRING, ZV_SIZE_XLARGE, "Name", 0, 0);
    AddGadgetZV(DialogCopies, below, -1, ZV_GAD_INTEGER, ZV_SIZE_SMALL, "Copies", ZV_ITEM_MIN, 1, ZV_ITEM_MAX,
                99, 0);
    SetGadgetStateZV(DialogCopies, 1);
    EndGroupZV(1, first, 0, "", 0, 0);
    InitGroupZV();
    AddGadgetZV(DialogCancel, first, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Cancel", 0, 0);
    AddGadgetZV(DialogAccept, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Accept", 0, 0);
    EndGroupZV(2, ZV_Position(ZV_POS_PARENT_END, ZV_POS_AFTER), 1, "", 0, 0);
    EndPaletteZV(DialogPalette, "A modal palette", ZV_PAL_CALLBACK, On_Dialog, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_MODAL, ZV_PAL_RELATIVE_TO, MainPalette, ZV_PAL_POSITION,
                     ZV_Position(ZV_POS_BEFORE, ZV_POS_ALIGN_START), 0);
}

/// It opens below its button.
void Show_Pop_Up()
{
    ZVItem const* const button = FindItem2ZV(FindPaletteZV(MainPalette), OpenPopUp);
    long x = 0, y = 0;
    GetItemScreenPosZV(button, &x, &y);
    InitPaletteZV();
    InitGroupZV();
    for (unsigned short id = PopUpFirst; id <= PopUpLast; ++id) {
        char const label[] = {static_cast<char>('A' + id - PopUpFirst), 0};
        AddGadgetZV(id, id == PopUpFirst ? first : below, -1, ZV_GAD_BUTTON, ZV_SIZE_SMALL, label, 0, 0);
    }
    EndGroupZV(1, first, 0, "", ZV_MARGIN_ALL, 4, 0);
    EndPaletteZV(PopUpPalette, "Pop-up", ZV_PAL_CALLBACK, On_Pop_Up, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_TRANSIENT, ZV_PAL_WINDOW_X, x, ZV_PAL_WINDOW_Y, y + button->height,
                     0);
    HilitePaletteZV(FindPaletteZV(PopUpPalette), 1);
}
