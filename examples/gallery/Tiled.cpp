// One window of tiles: pseudo-windows in a root window, each with a palette or two.
#include "Gallery.h"

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);
constexpr unsigned short beside = ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START);

enum Tile : unsigned short { LeftTile = 1, MiddleTile, RightTile, LowerTile };

constexpr long Margin = 20;

void On_Tile(ZVEvent* event)
{
    Tell(event);
    if (event->type != ZV_EVENT_GADGET) return;
    switch (Event_Item(event)->node.id) {
    case TileQuit: ExitZV(); break;
    case TileAsk: UserMessageZV("Palettes in tiles stay behind requesters."); break;
    case LightTheme: SetPenPresetZV(1); break;
    case DarkTheme: SetPenPresetZV(2); break;
    default: break;
    }
}

void Show(unsigned short id, char const* name, Tile tile, ZVKind kind)
{
    EndPaletteZV(id, name, ZV_PAL_CALLBACK, On_Tile, 0);
    DisplayPaletteZV(ZV_PAL_KIND, kind, ZV_PAL_PSEUDO_WINDOW_ID, tile, ZV_MARGIN_ALL, 10, 0);
}

void Show_Fields()
{
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(TextField, first, 0, ZV_GAD_STRING, ZV_SIZE_LARGE, "Text", ZV_ITEM_GROW_WIDTH, 100, 0);
    AddGadgetZV(IntegerField, below, -1, ZV_GAD_INTEGER, ZV_SIZE_SMALL, "Integer", 0, 0);
    EndGroupZV(1, first, 0, "Fields", ZV_GRP_BORDER, 1, ZV_GRP_AUTO_SIZE, 1, ZV_MARGIN_ALL, 14, 0);
    Show(TilePalette, "Fields", LeftTile, ZV_KIND_FIXED);
}

void Show_List(unsigned short id, unsigned short item, char const* name, char const* entries)
{
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(item, first, 0, ZV_GAD_LIST, ZV_SIZE_LARGE, nullptr, ZV_ITEM_ENTRIES_CSV, entries,
                ZV_ITEM_GROW_WIDTH, 100, ZV_ITEM_GROW_HEIGHT, 100, 0);
    EndGroupZV(1, first, 0, "", ZV_GRP_AUTO_SIZE, 1, 0);
    Show(id, name, MiddleTile, ZV_KIND_FLOATER);
}

void Show_Editor()
{
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(Editor, first, 0, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH, 100, ZV_ITEM_HEIGHT,
                60, ZV_ITEM_MAX_CHARS, 4000, ZV_ITEM_GROW_WIDTH, 100, ZV_ITEM_GROW_HEIGHT, 100, 0);
    SetTextGadgetStateZV(Editor, "The desktop sees one window. What lies in it is arranged by the program.");
    EndGroupZV(1, first, 0, "", ZV_GRP_AUTO_SIZE, 1, 0);
    Show(TilePalette + 3, "Editor", RightTile, ZV_KIND_FLOATER);
}

void Show_Actions()
{
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(TileAsk, first, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Message", 0, 0);
    AddGadgetZV(TileQuit, beside, -1, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, "Quit", 0, 0);
    AddGadgetZV(LightTheme, beside, -1, ZV_GAD_RADIO, ZV_SIZE_SMALL, "Light", ZV_GAP_FIXED, 40, 0);
    AddGadgetZV(DarkTheme, beside, -1, ZV_GAD_RADIO, ZV_SIZE_SMALL, "Dark", 0, 0);
    AddGadgetZV(Swatch, beside, -1, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_CUSTOM_FUNC, Swatch_Gadget,
                ZV_ITEM_WIDTH, 120, ZV_ITEM_HEIGHT, ZVEnv->style->gadgetHeight, ZV_GAP_FIXED, 40, 0);
    SetItemExclusionZV(LightTheme, DarkTheme);
    EndGroupZV(1, first, 0, "", 0, 0);
    Show(TilePalette + 4, "Actions", LowerTile, ZV_KIND_FIXED);
}

}  // namespace

void Show_Tiles()
{
    long const width = ZVEnv->rootWindow->width, height = ZVEnv->rootWindow->height;
    long const upper = height * 2 / 3, lower = height - upper - 3 * Margin;
    AddPseudoWindowZV(LeftTile, 0, 0, width / 4, upper, nullptr);
    SetPseudoWindowPosZV(LeftTile, Margin, Margin);
    AddPseudoWindowZV(MiddleTile, beside, LeftTile, width / 4, upper, nullptr);
    AddPseudoWindowZV(RightTile, beside, MiddleTile, width / 3, upper, ZV_GAP_WIDE, 1, 0);
    // The last one ends where the root window does; the others move apart evenly.
    SetPseudoWindowPosZV(RightTile, width - Margin - width / 3, Margin);
    SpreadHPseudoWindowsZV(3, LeftTile, MiddleTile, RightTile);
    AddPseudoWindowZV(LowerTile, below, LeftTile, width - 2 * Margin, lower, ZV_GAP_FIXED, Margin, 0);
    Show_Fields();
    Show_List(TilePalette + 1, RowList, "Fruit", "Apple,Banana,Cherry,Date,Elderberry,Fig,Grape");
    Show_List(TilePalette + 2, DisabledList, "Numbers", "One,Two,Three,Four,Five,Six");
    Show_Editor();
    Show_Actions();
}
