// The tab bar of a floater: a tab for each palette of its window. A click brings a palette to the front of
// its window. A tab that is dragged, or held for a while, comes off: let go of on another tab bar it joins
// that window, anywhere else it gets a window of its own. Two clicks take a palette home to its
// pseudo-window, and out of it again.
#include "PressGadget.h"
#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <optional>
#include <utility>

namespace {

constexpr int32_t firstTab = 6;  ///< left edge of the first one
constexpr int32_t overlap = 10;  ///< of neighbours
constexpr int32_t endRoom = 4;   ///< of a tab behind its text and its slope
constexpr int32_t barRoom = 20;  ///< of the bar beside the steps of its tabs, before they are pushed together
constexpr long textLeft = 5;
constexpr long firstRow = 2;       ///< that takes presses
constexpr uint32_t holdTicks = 5;  ///< after which a tab that is held comes off
constexpr double behindShade = 1.3, darkTextShade = 0.7;
constexpr unsigned long halfBright = 0x808081;  ///< texts below are dark ones
constexpr unsigned long black = 0x000000;

/// The flag of a palette whose tab stays where it is.
constexpr uint32_t fixedTab = 0x00000004;

/// The tab that was pressed last.
struct Hit {
    Hit(ZVPalette* pressed, ZVCustomEvent const& press)
        : hitPalette(pressed), watch(pressed), hitTick(press.ticks), x(press.x - pressed->tabLeft), y(press.y)
    {
    }

    ZVPalette* hitPalette;
    LivingPalette watch;
    uint32_t hitTick;
    int32_t x, y;  ///< of the press in the tab, by which it is held
};
std::optional<Hit> hit;

/// The palette that was hit; null when it is gone or has left the window.
ZVPalette* Hit_Palette(ZVWindow const* window)
{
    return hit && hit->watch.Is_There() && hit->hitPalette->window == window ? hit->hitPalette : nullptr;
}

bool Comes_Off(ZVPalette const& palette)
{
    return !(palette.flags & fixedTab);
}

}  // namespace

// ---- geometry ---------------------------------------------------------------------------------------------

/// Gives each palette of the window the place of its tab.
static void Lay_Tabs(ZVDrawInfo const* draw, ZVWindow const& window)
{
    int32_t const height = ZVEnv->style->tabHeight;
    int32_t x = firstTab, count = 0;
    for (ZVPalette& palette : Palettes_Of(window)) {
        auto const width = static_cast<int32_t>(GetTextWidthZV(draw, palette.title)) + height;
        palette.tabLeft = x;
        palette.tabWidth = width + endRoom;
        x += palette.tabWidth - overlap;
        ++count;
    }
    int32_t const excess = x - firstTab + barRoom - window.width;
    if (excess <= 0 || count < 2) return;
    int32_t index = 0;
    for (ZVPalette& palette : Palettes_Of(window))
        palette.tabLeft -= index++ * excess / (count - 1);
}

/// Whether a point is on a tab, whose right end slopes down to the bar's lower edge.
static bool Is_On_Tab(ZVPalette const& palette, ZVItem const& bar, long x, long y)
{
    long const right = palette.tabLeft + palette.tabWidth;
    if (x < palette.tabLeft || x > right || y < firstRow || y > bar.height) return false;
    return x - (right - bar.height + firstRow) < y - firstRow;
}

/// The palette whose tab lies on top at a point; null beside the tabs.
static ZVPalette* Palette_At(ZVItem const& bar, ZVWindow const& window, long x, long y)
{
    ZVPalette* const active = window.activePalette;
    if (active && Is_On_Tab(*active, bar, x, y)) return active;
    ZVPalette* found = nullptr;
    for (ZVPalette& palette : Palettes_Of(window))
        if (Is_On_Tab(palette, bar, x, y)) found = &palette;
    return found;
}

// ---- drawing ----------------------------------------------------------------------------------------------

namespace {

struct TabColors {
    unsigned long face, edge, light, text;
};

TabColors Colors_Of_Tab(bool isActive)
{
    if (isActive) return {ZV_PEN_PALETTE, black, ZV_PEN_LIGHT_EDGE, ZV_PEN_TEXT};
    // A light text would get lost among the disabled colours.
    bool const isDark = GetColorZV(ZV_PEN_TEXT) < halfBright;
    return {ShadeColorZV(ZV_PEN_PALETTE, behindShade), DisableColorZV(black),
            DisableColorZV(ZV_PEN_LIGHT_EDGE),
            isDark ? DisableColorZV(ZV_PEN_TEXT) : ShadeColorZV(ZV_PEN_TEXT, darkTextShade)};
}

}  // namespace

static void Draw_Tab(ZVDrawInfo* draw, ZVPalette const& palette, bool isActive)
{
    long const height = ZVEnv->style->tabHeight, bottom = height - 1;
    long const left = palette.tabLeft, right = left + palette.tabWidth, top = 1;
    long const shoulder = right - height + top;
    TabColors const colors = Colors_Of_Tab(isActive);
    SetPenZV(draw, colors.face);
    FillPolygonZV(draw, 5, left, top, shoulder, top, right, height, left, height, left, top);
    SetPenZV(draw, colors.light);
    DrawPolygonZV(draw, 3, left + 1, bottom - !isActive, left + 1, top + 1, shoulder - 1, top + 1);
    SetPenZV(draw, colors.edge);
    DrawPolygonZV(draw, 4, left, bottom, left, top, shoulder, top, right - 1, bottom);
    if (!isActive) {
        SetPenZV(draw, black);
        DrawLineZV(draw, left, bottom, right - 1, bottom);
    }
    SetPenZV(draw, colors.text);
    SetBGPenZV(draw, colors.face);
    SetTextTransparencyZV(draw, 1);
    DrawTextZV(draw, palette.title, left + textLeft, (height - GetAveCharHeightZV(draw)) / 2);
}

static bool Has_Floater(ZVWindow const& window)
{
    for (ZVPalette const& palette : Palettes_Of(window))
        if (palette.kind == ZV_KIND_FLOATER) return true;
    return false;
}

static void Draw_Bar(ZVItem& bar)
{
    ZVWindow const* const window = bar.group->palette->window;
    if (!window || !window->activePalette || !Has_Floater(*window)) return;
    DrawContext const context(DrawBeginZV(&bar));
    ZVDrawInfo* const draw = context.get();
    if (!draw) return;
    SetBGPenZV(draw, ZV_PEN_PALETTE);
    EraseRectZV(draw, 0, 0, bar.width - 1, bar.height - 1);
    SetPenZV(draw, black);
    DrawLineZV(draw, 0, bar.height - 1, bar.width - 1, bar.height - 1);
    SetFontZV(draw, ZV_FONT_INTERFACE_2);
    Lay_Tabs(draw, *window);
    for (ZVPalette const& palette : Palettes_Of(*window))
        if (&palette != window->activePalette) Draw_Tab(draw, palette, false);
    Draw_Tab(draw, *window->activePalette, true);
}

// ---- docking ----------------------------------------------------------------------------------------------

/// The pseudo-window where a palette is at home by its tags; null for none.
static ZVWindow* Home_Of(ZVPalette const& palette)
{
    if (TagItem const* tag = FindTagItem(ZV_PAL_PSEUDO_WINDOW, palette.tags))
        if (auto* const window = Tag_Pointer<ZVWindow*>(*tag); Is_Window(window)) return window;
    TagItem const* const tag = FindTagItem(ZV_PAL_PSEUDO_WINDOW_ID, palette.tags);
    return tag ? Find_Record<ZVWindow>(ZVEnv->windows, tag->data) : nullptr;
}

/// Lays a palette that is not on screen out for the window that it is to join; null is one of its own. In a
/// pseudo-window it fills that, unless it has a size; elsewhere it keeps the size that it has.
static void Fit_To(ZVWindow const* target, ZVPalette& palette)
{
    int32_t const tabHeight = ZVEnv->style->tabHeight;
    bool const isPseudo = target && !target->sysWindow;
    bool const isInPlace = palette.x == 0 && palette.y == tabHeight;
    palette.flags &= ~uint32_t{ZV_PALF_PSEUDO};
    palette.x = 0;
    palette.y = tabHeight;
    if (isPseudo) {
        palette.flags |= ZV_PALF_PSEUDO;
        Rebuild_SysPalette(&palette, palette.forcedWidth == -1 ? target->width : palette.forcedWidth,
                           palette.forcedHeight == -1 ? target->height : palette.forcedHeight);
    } else if (!isInPlace) {
        Rebuild_SysPalette(&palette, palette.width, Height_With_Tabs(palette, palette.height));
    }
}

/// Moves a palette to a window; a null one is a window of its own at that place. Keys go there too, and not
/// to whatever window is next when that of the palette has gone.
static void Dock(ZVPalette& palette, ZVWindow* target, long left, long top)
{
    if (target && target == palette.window) {
        NewActivePalette(target, &palette, -1, -1, 1);
        return;
    }
    LivingPalette const watch(&palette);
    // It is laid out anew only when it is off the screen, where it would erase what it leaves.
    Palette_Visible(palette, false);
    if (!watch.Is_There()) return;
    if (!Is_Window(target)) target = nullptr;
    Fit_To(target, palette);
    bool const isDocked = NewActivePalette(target, &palette, left, top, 1);
    if (!watch.Is_There() || palette.window->activePalette != &palette) return;
    if (isDocked)
        Mac_Select_Window(GetParentSysWindow(&palette, nullptr, nullptr));
    else
        Palette_Visible(palette, true);
}

/// The mouse is free again: the release was not for the bar.
static void Let_Go(ZVItem& bar)
{
    for (ZVItem** item : {&ZVEnv->trackedItem, &ZVEnv->trackingItem, &ZVEnv->tickItem})
        if (*item == &bar) *item = nullptr;
    bar.flags &= ~uint32_t{ZV_ITEMF_MOUSE_INSIDE};
    bar.pressed = 0;
}

/// The tab that was pressed comes off and follows the mouse. The bar may be gone afterwards.
static void Drag(ZVItem& bar)
{
    ZVPalette* const palette = Hit_Palette(bar.group->palette->window);
    if (!palette || !Comes_Off(*palette)) return;
    Let_Go(bar);
    LivingPalette const watch(palette);
    ZVWindow* target = Home_Of(*palette);
    long left = 0, top = 0;
    long const isDropped = Mac_Drag_Tab(&bar, palette, hit->x, hit->y, &target, &left, &top);
    if (isDropped && watch.Is_There()) Dock(*palette, target, left, top);
}

// ---- the mouse --------------------------------------------------------------------------------------------

static void Press(ZVCustomEvent const& event)
{
    ZVItem& bar = *event.item;
    ZVWindow const* const window = bar.group->palette->window;
    ZVPalette* const palette = window ? Palette_At(bar, *window, event.x, event.y) : nullptr;
    if (!palette) return;
    hit.emplace(palette, event);
    bar.pressed = 1;
    Draw_Bar(bar);
}

/// The cursor tells where a tab can be dragged.
static void Show_Cursor(ZVCustomEvent const& event)
{
    ZVItem& bar = *event.item;
    ZVPalette const* const active =
        bar.group->palette->window ? bar.group->palette->window->activePalette : nullptr;
    bool const canDrag = active && Comes_Off(*active) && Is_On_Tab(*active, bar, event.x, event.y);
    uint16_t const cursor = canDrag ? ZV_CURSOR_GRAB : ZV_CURSOR_ARROW;
    if (bar.cursor != cursor) ModifyItemZV(&bar, ZV_ITEM_CURSOR, cursor, 0);
}

/// Takes a palette to its pseudo-window, or when it is there, or has none, to a window of its own in the
/// same place.
static void Go_Home(ZVPalette& palette)
{
    ZVPlace const place = Place_On_Screen(palette.window);
    ZVWindow* home = Home_Of(palette);
    if (home == palette.window) home = nullptr;
    Dock(palette, home, place.x, place.y);
}

static void Release(ZVCustomEvent const& event)
{
    ZVItem& bar = *event.item;
    if (!std::exchange(bar.pressed, 0)) return;
    ZVWindow* const window = bar.group->palette->window;
    ZVPalette* const palette = Hit_Palette(window);
    if (!palette) return;
    if (event.modifiers & ZV_MOD_DOUBLE_CLICK) {
        Let_Go(bar);
        if (Comes_Off(*palette)) Go_Home(*palette);
    } else if (palette != window->activePalette) {
        NewActivePalette(window, palette, -1, -1, 1);
        Snapshot_WindowPrefs();
    }
}

long Tab_Gad(ZVCustomEvent* event)
{
    ZVItem& bar = *event->item;
    switch (event->type) {
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE:
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Bar(bar); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(*event); break;
    case ZV_CUSTOM_MOUSE_UP: Release(*event); break;
    case ZV_CUSTOM_MOUSE_MOVE:
        if (!bar.pressed)
            Show_Cursor(*event);
        else if (event->modifiers & ZV_MOD_DRAGGED)
            Drag(bar);
        break;
    case ZV_CUSTOM_TICK:
        if (bar.pressed && hit && event->ticks - hit->hitTick >= holdTicks) Drag(bar);
        break;
    default: break;
    }
    return 1;
}

void ClearTabs(ZVWindow*) {}
