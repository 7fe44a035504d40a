// What the files of the gallery share.
#pragma once

#include <ZVLib.h>

enum PaletteId : unsigned short {
    MainPalette = 100,
    ToolsPalette,
    DialogPalette,
    PopUpPalette,
    RequestersPalette,
    FilesPalette,
    ControlsPalette,
    TextPalette,
    IconPalette,
    LongPalette,
    MediaPalette,
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
    RequestAgain,
    RequestNested,
    RequestWide,
    RequestLongText,
    RequestAnswer,
    TileAsk,
    TileQuit,
    OpenFiles,
    AskOpen,
    AskOpenTable,
    AskOpenFormats,
    AskOpenBoth,
    AskSave,
    AskSaveTable,
    AskSaveFormats,
    AskSaveBoth,
    AskDirectory,
    AskResult,
    OpenMedia,
    OpenSeries,
    VideoSettings,
    SoundSettings,
    StreamSettings,
    PictureSettings,
    MediaResult,
    MenuButton
};

/// Actions of menus and keys.
enum ActionId : unsigned short {
    ActionNew = 1,
    ActionOpen,
    ActionSave,
    ActionPreferences,
    ActionQuit,
    ActionGrid,
    ActionHelp
};

/// The palettes, each declared and shown.
void Show_Main_Palette();
void Show_Tools_Palette();
void Show_Choices();  ///< Three in one window.
void Show_Controls_Palette();
void Show_Dialog();
void Show_Pop_Up();
void Show_Requesters_Palette();
void Show_Files_Palette();
void Show_Media_Palette();

/// Opens a file of pictures, and tells in the palette of media what it holds.
void Open_Media(char const* spec);

/// Fills the root window with pseudo-windows and their palettes.
void Show_Tiles();

/// The menu bar, and the menu of the swatch and of the menu gadget.
void Make_Menus();
void Free_Menus();
ZVMenu* Swatch_Menu();

/// What menus and their keys do.
void On_Action(unsigned long action);

/// Writes an event to standard output, when the gallery was started to tell them.
void Tell(ZVEvent const* event);

/// Shows what came of a dialog, in a text gadget of the current palette, and writes it out likewise.
void Show_Result(unsigned short id, char const* text);

/// Writes the picture that the gallery was started for. False when it was started for none.
bool Take_Screenshot();

/// The function of a custom gadget: a swatch that changes its hue by dragging.
long Swatch_Gadget(ZVCustomEvent* event);
