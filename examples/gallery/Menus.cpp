// The gallery's menus: every form of entry in the bar, and a contextual menu. A key section ties shortcuts to
// them.
#include "Gallery.h"

namespace {

enum MenuId : long { ViewLeft = 10, ViewCenter, ViewRight, ShowGrid, SwatchRed, SwatchGreen, SwatchBlue };

// Key, action and parameter of each.
// clang-format off
constexpr unsigned short bindings[] = {
    ZV_MOD_CONTROL | 'n', ActionNew, 0,
    ZV_MOD_CONTROL | 'o', ActionOpen, 0,
    ZV_MOD_CONTROL | ZV_MOD_SHIFT | 's', ActionSave, 0,
    ZV_MOD_CONTROL | 'q', ActionQuit, 0,
    ZV_MOD_CONTROL | 'g', ActionGrid, 0,
    ZV_KEY_F1, ActionHelp, 0,
    ZV_MOD_SHIFT | (ZV_KEY_F1 + 2), ActionPreferences, 0,
    0,
};
// clang-format on
ZVKeySection keys{.name = "Gallery", .bindings = bindings};

ZVMenu* swatchMenu = nullptr;

/// The swatch's states for its colours.
void On_Swatch_Menu(ZVEvent* event)
{
    Tell(event);
    constexpr double hueStep = 85;
    SetCurrentPaletteZV(MainPalette);
    SetGadgetStateZV(Swatch, static_cast<double>(Event_Menu(event)->node.id - SwatchRed) * hueStep);
}

void Add_File_Menu()
{
    InitMenuZV();
    AddMenuItemZV(0, "&New", ActionNew, 0);
    AddMenuItemZV(0, "&Open", ActionOpen, ZV_MENU_ELLIPSIS, 1, 0);
    InitMenuZV();
    for (char const* name :
         {"harbour.mov", "R&&D.eidi", "a name of more than fifty characters, which no menu shows.mov"})
        AddMenuItemZV(0, name, 0, 0);
    InitMenuZV();
    AddMenuItemZV(0, "Older ones", 0, 0);
    AddMenuItemZV(0, "Even older ones", 0, ZV_MENU_ENABLED, 0, 0);
    EndMenuZV(0, "More", 0);
    EndMenuZV(0, "Open &recent", 0);
    AddMenuItemZV(0, "&Save as...", ActionSave, 0);
    AddMenuItemZV(0, "-", 0, 0);
    AddMenuItemZV(0, "Preferences", ActionPreferences, ZV_MENU_PREFERENCES, 1, ZV_MENU_ELLIPSIS, 1, 0);
    AddMenuItemZV(0, "About the gallery", 0, ZV_MENU_ABOUT, 1, 0);
    AddMenuItemZV(0, "&Quit", ActionQuit, ZV_MENU_QUIT, 1, 0);
    EndMenuZV(0, "&File", 0);
}

void Add_View_Menu()
{
    InitMenuZV();
    AddMenuItemZV(ViewLeft, "Left", 0, ZV_MENU_CHECKABLE, 1, 0);
    AddMenuItemZV(ViewCenter, "Centre", 0, ZV_MENU_CHECKABLE, 1, ZV_MENU_CHECKED, 1, 0);
    AddMenuItemZV(ViewRight, "Right", 0, ZV_MENU_CHECKABLE, 1, 0);
    AddMenuItemZV(0, "-", 0, 0);
    AddMenuItemZV(ShowGrid, "Grid", ActionGrid, ZV_MENU_CHECKABLE, 1, ZV_MENU_CHECKED, 1, 0);
    AddMenuItemZV(0, "Rulers", 0, ZV_MENU_CHECKABLE, 1, ZV_MENU_ENABLED, 0, 0);
    AddMenuItemZV(0, "-", 0, 0);
    AddMenuItemZV(0, "Bold", 0, ZV_MENU_STYLE, ZV_MENUF_BOLD, 0);
    AddMenuItemZV(0, "Italic", 0, ZV_MENU_STYLE, ZV_MENUF_ITALIC, 0);
    AddMenuItemZV(0, "Underlined", 0, ZV_MENU_STYLE, ZV_MENUF_UNDERLINED, 0);
    AddMenuItemZV(0, "All of them", 0, ZV_MENU_STYLE, ZV_MENUF_STYLES, 0);
    AddMenuItemZV(0, "Keys of the gallery", ActionHelp, ZV_MENU_HELP, 1, 0);
    EndMenuZV(0, "&View", 0);
    SetMenuExclusionZV(ViewLeft, ViewCenter, ViewRight);
}

void Add_Long_Menu()
{
    InitMenuZV();
    for (int i = 1; i <= 100; ++i) {
        char label[] = "Entry 000";
        ItoStr(i, label + 6);
        AddMenuItemZV(0, label, 0, 0);
    }
    EndMenuZV(0, "&Long", 0);
}

void Make_Swatch_Menu()
{
    InitMenuZV();
    AddMenuItemZV(SwatchRed, "Red", 0, 0);
    AddMenuItemZV(SwatchGreen, "Green", 0, 0);
    AddMenuItemZV(SwatchBlue, "Blue", 0, 0);
    swatchMenu = EndMenuZV(0, "Swatch", ZV_MENU_POPUP, 1, ZV_MENU_CALLBACK, On_Swatch_Menu, 0);
}

}  // namespace

ZVMenu* Swatch_Menu()
{
    return swatchMenu;
}

void On_Action(unsigned long action)
{
    if (action == ActionQuit) ExitZV();
    if (action == ActionPreferences) Show_Dialog();
}

void Make_Menus()
{
    ZVEnv->keySection = &keys;
    Add_File_Menu();
    Add_View_Menu();
    Add_Long_Menu();
    MakeMenuBarZV();
    Make_Swatch_Menu();
}

void Free_Menus()
{
    DelMenuZV(swatchMenu);
    swatchMenu = nullptr;
}
