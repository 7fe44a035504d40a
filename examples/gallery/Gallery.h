// What the files of the gallery share.
#pragma once

#include <ZVLib.h>

enum PaletteId : unsigned short {
    MainPalette = 100,
    ToolsPalette,
    DialogPalette,
    PopUpPalette,
    RequestersPalette,
    ControlsPalette,
    TextPalette,
    IconPalette,
    LongPalette,
    TilePalette = 120
};

enum ItemId : unsigned short {
    Push = 1,
    PushDisabled,
    PushDefault,
    ToggleOff,
    ToggleOn,
    ToggleDisabled,
    CheckFirst,
    CheckSecond,
    CheckDisabled,
    CheckBare,
    RadioFirst,
    RadioSecond,
    RadioThird,
    RadioDisabled,
    TextField,
    IntegerField,
    FloatField,
    PasswordField,
    DisabledField,
    RowList,
    DisabledList,
    Editor,
    Swatch,
    LightTheme,
    DarkTheme,
    OpenDialog,
    OpenPopUp,
    MoreRows,
    DialogName,
    DialogCopies,
    DialogAccept,
    DialogCancel,
    PopUpFirst,
    PopUpLast = PopUpFirst + 3,
    ToolFirst,
    ToolLast = ToolFirst + 7,
    TextCycle,
    MarkedCycle,
    DisabledCycle,
    IconCycle,
    MixedCycle,
    LongCycle,
    OpenChoices,
    OpenControls,
    WideProp,
    MarkedProp,
    DisabledProp,
    TallProp,
    TallMarkedProp,
    TallDisabledProp,
    PlainSlider,
    PercentSlider,
    QuadraticSlider,
    TimeSlider,
    RelativeSlider,
    DisabledSlider,
    Box,
    BoxBar,
    SplitLeft,
    Split,
    SplitRight,
    OpenRequesters,
    RequestMessage,
    RequestStop,
    RequestQuestion,
    RequestButtons,
    RequestNested,
    RequestWide,
    RequestLongText,
    RequestAnswer,
    TileAsk,
    TileQuit
};

/// The palettes, each declared and shown.
void Show_Main_Palette();
void Show_Tools_Palette();
void Show_Choices();  ///< Three in one window.
void Show_Controls_Palette();
void Show_Dialog();
void Show_Pop_Up();
void Show_Requesters_Palette();

/// Fills the root window with pseudo-windows and their palettes.
void Show_Tiles();

/// Writes an event to standard output, when the gallery was started to tell them.
void Tell(ZVEvent const* event);

/// Writes the picture that the gallery was started for. False when it was started for none.
bool Take_Screenshot();

/// The function of a custom gadget: a swatch that changes its hue by dragging.
long Swatch_Gadget(ZVCustomEvent* event);
