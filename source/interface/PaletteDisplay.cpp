// Displaying a palette: what the tags of the call ask for, its size, its place on the screen and its window.
#include "interface/ItemParts.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <utility>

namespace {
/// What the tags of one display ask for, and what comes of it.
struct Display {
    ZVPalette& palette;
    ZVWindow* window = nullptr;
    ZVWindow* pseudoWindow = nullptr;
    unsigned long pseudoId = 0;
    bool activates = true;
    bool overridesPrefs = false;
    long suggestedWidth = -1, suggestedHeight = -1;
    long explicitX = -1, explicitY = -1;
    long offsetX = 0, offsetY = 0;
    long width = -1, height = -1;  ///< size to fill; -1 is the natural one
    long gap = 0;                  ///< towards the reference palette

    bool Is_Pseudo() const { return palette.flags & ZV_PALF_PSEUDO; }

    /// Of a floater, above the palette.
    long Bar_Height() const { return palette.kind == ZV_KIND_FLOATER ? ZVEnv->style->tabHeight : 0; }
};
}  // namespace

/// Size of the frame around the client area of the window that the palette would have.
static ZVRectT<long> Frame_Size(ZVPalette const& palette)
{
    ZVRectT<long> frame;
    Get_SysWindowDimFromPalette(&palette, &frame);
    frame.width -= palette.width;
    frame.height -= palette.height;
    return frame;
}

/// Tags of the palette itself. False for others.
static bool Take_Palette_Tag(ZVPalette& palette, TagItem const& tag)
{
    switch (tag.tag) {
    case ZV_PAL_KIND:
        palette.kind = static_cast<uint16_t>(tag.data);
        if (palette.kind == ZV_KIND_DOCUMENT) palette.flags |= ZV_PALF_SIZE_BOTH;
        return true;
    case ZV_PAL_FLAGS: palette.flags |= static_cast<uint32_t>(tag.data); return true;
    case ZV_PAL_POSITION: palette.position = static_cast<uint16_t>(tag.data); return true;
    case ZV_PAL_RELATIVE_TO: palette.relativeTo = static_cast<uint16_t>(tag.data); return true;
    case ZV_PAL_FORCE_WIDTH: palette.forcedWidth = Tag_Number(tag); return true;
    case ZV_PAL_FORCE_HEIGHT: palette.forcedHeight = Tag_Number(tag); return true;
    case ZV_PAL_FORCE_WINDOW_WIDTH:
        palette.forcedWidth = static_cast<int32_t>(Tag_Number(tag) - Frame_Size(palette).width);
        return true;
    case ZV_PAL_FORCE_WINDOW_HEIGHT:
        palette.forcedHeight = static_cast<int32_t>(Tag_Number(tag) - Frame_Size(palette).height);
        return true;
    case ZV_PAL_PREF_NAME:
        if (tag.data) Replace_Text(palette.prefName, Tag_Pointer<char const*>(tag));
        return true;
    case ZV_PAL_TAB_PRIORITY: palette.tabPriority = Tag_Number(tag); return true;
    default: return false;
    }
}

static void Take_Display_Tag(Display& display, TagItem const& tag)
{
    if (Take_Palette_Tag(display.palette, tag)) return;
    switch (tag.tag) {
    case ZV_PAL_PSEUDO_WINDOW: display.pseudoWindow = Tag_Pointer<ZVWindow*>(tag); break;
    case ZV_PAL_PSEUDO_WINDOW_ID: display.pseudoId = tag.data; break;
    case ZV_PAL_ACTIVATE: display.activates = tag.data != 0; break;
    case ZV_PAL_WINDOW: display.window = Tag_Pointer<ZVWindow*>(tag); break;
    case ZV_PAL_WINDOW_OF:
        if (ZVPalette const* other = FindPaletteZV(static_cast<unsigned short>(tag.data)))
            display.window = other->window;
        break;
    case ZV_PAL_WINDOW_X:
    case ZV_PAL_CLIENT_X: display.explicitX = Tag_Number(tag); break;
    case ZV_PAL_WINDOW_Y:
    case ZV_PAL_CLIENT_Y: display.explicitY = Tag_Number(tag); break;
    case ZV_PAL_OFFSET_X: display.offsetX = Tag_Number(tag); break;
    case ZV_PAL_OFFSET_Y: display.offsetY = Tag_Number(tag); break;
    case ZV_PAL_SUGGEST_WIDTH: display.suggestedWidth = Tag_Number(tag); break;
    case ZV_PAL_SUGGEST_HEIGHT: display.suggestedHeight = Tag_Number(tag); break;
    case ZV_PAL_OVERRIDE_PREFS: display.overridesPrefs = true; break;
    default: break;
    }
}

/// Reads the tags of the call. False with error 1 when memory runs out.
static bool Take_Tags(Display& display, TagItem* tags)
{
    ZVPalette& palette = display.palette;
    palette.position = ZV_Position(ZV_POS_CENTER, ZV_POS_CENTER);
    palette.relativeTo = 0;
    palette.forcedWidth = palette.forcedHeight = -1;
    palette.kind = ZV_KIND_FIXED;
    palette.flags &= ZV_PALF_NO_ACTIVATE | ZV_PALF_HILITED;
    for (TagItem* cursor = tags; TagItem const* tag = NextTagItem(&cursor);)
        Take_Display_Tag(display, *tag);
    if (display.pseudoWindow || display.pseudoId) palette.flags |= ZV_PALF_PSEUDO;
    if (!ZVEnv->rootWindow) palette.flags &= ~ZV_PALF_PSEUDO;
    if (palette.kind == ZV_KIND_TRANSIENT) palette.flags |= ZV_PALF_NO_CLOSE | ZV_PALF_PLAIN;

    TagItem* const joined = Join_Tags(palette.tags, tags);
    if (!joined) return false;
    FreeMemZV(palette.tags);
    palette.tags = joined;
    return true;
}

/// The id of the palette becomes the one displayed last, which it may refer to itself.
static void Settle_Reference(ZVPalette& palette)
{
    if (palette.relativeTo == 65535) palette.relativeTo = static_cast<uint16_t>(ZVEnv->lastPaletteId);
    ZVEnv->lastPaletteId = static_cast<int32_t>(palette.node.id);
}

static bool Wants_Prefs(Display const& display)
{
    return !display.overridesPrefs && !(display.palette.flags & ZV_PALF_NO_PREFS);
}

/// A saved size as far as the desktop can show it. What is no size leaves things as they are.
static void Take_Saved_Length(long& length, long saved, long most)
{
    if (saved > 0) length = std::min(saved, most);
}

/// The size and the pseudo-window that the palette had the last time.
static void Take_Saved_Size(Display& display)
{
    ZVPalette& palette = display.palette;
    ZVWindow* window = nullptr;
    unsigned long pseudoId = 0;
    long width = 0, height = 0;
    if (!Wants_Prefs(display) ||
        !Get_Dest_Window(&palette, &window, &pseudoId, nullptr, nullptr, &width, &height, nullptr))
        return;
    ZVRectT<long> const desktop = Desktop_Area();
    if (palette.forcedWidth == -1 && (palette.flags & (ZV_PALF_SIZE_BOTH | ZV_PALF_SIZE_X)))
        Take_Saved_Length(display.width, width, desktop.width);
    if (palette.forcedHeight == -1 && (palette.flags & (ZV_PALF_SIZE_BOTH | ZV_PALF_SIZE_Y)))
        Take_Saved_Length(display.height, height, desktop.height);
    // A pseudo-window that there is no more leaves the palette the place that it is declared with.
    if (pseudoId == 0) {
        palette.flags &= ~ZV_PALF_PSEUDO;
        display.pseudoWindow = nullptr;
        display.pseudoId = 0;
    } else if (window && !display.window && ZVEnv->rootWindow) {
        palette.flags |= ZV_PALF_PSEUDO;
        display.pseudoWindow = window;
        display.pseudoId = pseudoId;
    }
}

/// The size to fill, from the tags, the preferences and the pseudo-window.
static void Settle_Size(Display& display)
{
    ZVPalette& palette = display.palette;
    display.width = palette.forcedWidth;
    display.height = palette.forcedHeight;
    if (!display.overridesPrefs) {
        if (display.suggestedWidth > 0) display.width = display.suggestedWidth;
        if (display.suggestedHeight > 0) display.height = display.suggestedHeight;
        Take_Saved_Size(display);
    }
    display.gap = Take_Palette_Spacing(palette);
    if (!display.Is_Pseudo()) return;
    if (!display.pseudoWindow && display.pseudoId)
        display.pseudoWindow = Find_Record<ZVWindow>(ZVEnv->windows, display.pseudoId);
    if (!display.pseudoWindow) return;
    if (display.width == -1) display.width = display.pseudoWindow->width;
    if (display.height == -1) display.height = display.pseudoWindow->height;
}

/// Gives a floater the bar with the tabs of its window. False when memory runs out. An error that declaring
/// the palette has left stays for its application.
static bool Add_Tab_Bar(ZVPalette& palette)
{
    CurrentPalette const current(&palette);
    unsigned long const pending = GetErrorZV();
    SetError(ZV_ERR_NONE);
    ZVGroup* const group = InitGroupZV();
    if (!group) return false;
    group->flags |= ZV_GRPF_TAB_BAR;
    ZVItem const* const bar = AddGadgetZV(0, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT, nullptr,
                                          ZV_ITEM_CUSTOM_FUNC, Function_Of_Tab_Bar(), ZV_ITEM_WIDTH, 1,
                                          ZV_ITEM_GROW_WIDTH, 100, ZV_ITEM_HEIGHT, ZVEnv->style->tabHeight);
    EndGroupZV(0, ZV_Position(ZV_POS_PARENT_START, ZV_POS_PARENT_START), 0, nullptr, ZV_GRP_FULL_WIDTH, 0,
               ZV_MARGIN_NONE, 0);
    if (GetErrorZV() == ZV_ERR_NONE) SetError(pending);
    return bar;
}

/// Lays the palette out; one that is to be smaller than it can be gets its least size.
static void Lay_Out(Display& display)
{
    ZVPalette& palette = display.palette;
    Prepare_Sub_Palettes(palette);
    Lay_Out_Palette(palette, display.width, display.height);
    bool const isNarrow = display.width > 0 && display.width < palette.minWidth;
    bool const isLow = display.height > 0 && display.height < palette.minHeight;
    if (isNarrow) display.width = palette.minWidth;
    if (isLow) display.height = palette.minHeight;
    if (isNarrow || isLow) Lay_Out_Palette(palette, display.width, display.height);
    // What it has been laid out to is what later changes of its items keep to.
    palette.forcedWidth = static_cast<int32_t>(display.width);
    palette.forcedHeight = static_cast<int32_t>(display.height);
}

// ---- places -----------------------------------------------------------------------------------------------

/// Where the palette stands in its pseudo-window, its tabs included, which stands in the root window.
static ZVRectT<long> Place_In_Pseudo_Window(Display const& display)
{
    ZVPalette const& palette = display.palette;
    ZVWindow const& root = *ZVEnv->rootWindow;
    ZVRectT<long> parent{0, 0, root.width, root.height};
    if (ZVWindow const* window = display.pseudoWindow)
        parent = {window->left, window->top, window->width, window->height};
    ZVRectT<long> reference = parent;
    if (ZVPalette const* other = palette.relativeTo ? FindPaletteZV(palette.relativeTo) : nullptr) {
        long dx = 0, dy = 0;
        GetParentSysWindow(other, &dx, &dy);
        reference = {other->x + dx, other->y + dy, other->width, other->height};
    }
    ZVRectT<long> place{0, 0, palette.width, palette.height + display.Bar_Height()};
    GetElementPlacement(palette.position, &place, &reference, &parent, display.gap, &place.x, &place.y);
    place.Offset(display.offsetX - parent.x, display.offsetY - parent.y);
    return place;
}

/// Where the client area of the palette's window stands on the screen.
static ZVRectT<long> Place_On_Screen(Display const& display)
{
    ZVPalette const& palette = display.palette;
    ZVRectT<long> const monitor = Mouse_Monitor();
    ZVRectT<long> reference = monitor;
    ZVPalette const* const other = palette.relativeTo ? FindPaletteZV(palette.relativeTo) : nullptr;
    if (other && other->window) GetWindowRectZV(GetParentSysWindow(other, nullptr, nullptr), &reference);
    ZVRectT<long> place;
    Get_SysWindowDimFromPalette(&palette, &place);
    GetElementPlacement(palette.position, &place, &reference, &monitor, 0, &place.x, &place.y);
    if (palette.kind == ZV_KIND_MODAL && (palette.position & 0x0300))
        place.y = monitor.y + (monitor.height - place.height) / 3;
    place.Offset(display.offsetX, display.offsetY);
    OffsetWindowToClient(&palette, &place.x, &place.y);
    return place;
}

// ---- windows ----------------------------------------------------------------------------------------------

/// The window and the place that the palette had the last time, and whether it was the active one there. A
/// place that is on none of the monitors does not count, and neither does one in a pseudo-window that there
/// is no more.
static void Take_Saved_Window(Display& display, long& x, long& y, long& activates)
{
    ZVPalette const& palette = display.palette;
    ZVWindow* window = nullptr;
    unsigned long pseudoId = 0;
    long savedX = 0, savedY = 0;
    if (!Get_Dest_Window(&palette, &window, &pseudoId, &savedX, &savedY, nullptr, nullptr, &activates))
        return;
    ZVRectT<long> area{savedX, savedY, palette.width, palette.height};
    if (!pseudoId && area.Intersect(Desktop_Area())) {
        x = savedX;
        y = savedY;
    }
    if (!display.window && !pseudoId) display.window = window;
}

/// Shows the palette in the window that the tags name, in the one it was in the last time, or in a new one.
static long Show(Display& display, ZVRectT<long> const& place)
{
    ZVPalette& palette = display.palette;
    long x = place.x, y = place.y, activates = display.activates;
    if (display.Is_Pseudo()) {
        if (Wants_Prefs(display))
            Get_Dest_Window(&palette, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &activates);
        ZVWindow* const window = display.pseudoWindow ? display.pseudoWindow : ZVEnv->rootWindow;
        return NewActivePalette(window, &palette, x, y, activates);
    }
    if (Wants_Prefs(display) && palette.kind != ZV_KIND_MODAL) Take_Saved_Window(display, x, y, activates);
    if (display.explicitX != -1) x = display.explicitX;
    if (display.explicitY != -1) y = display.explicitY;
    return NewActivePalette(display.window, &palette, x, y, activates);
}

/// The gadget under the mouse loses it to a modal palette.
static void Leave_Tracked_Item()
{
    ZVItem* const item = std::exchange(ZVEnv->trackedItem, nullptr);
    if (!item || !(item->flags & ZV_ITEMF_MOUSE_INSIDE)) return;
    item->flags &= ~ZV_ITEMF_MOUSE_INSIDE;
    ZVCustomEvent event{};
    event.type = ZV_CUSTOM_MOUSE_OUT;
    event.item = item;
    long left = 0, top = 0;
    GetItemScreenPosZV(item, &left, &top);
    event.x = static_cast<int32_t>(ZVEnv->pointerX - left);
    event.y = static_cast<int32_t>(ZVEnv->pointerY - top);
    Do_CustomEvent(&event);
}

/// Shows a modal palette, and runs until it is closed.
static long Show_Modal(Display& display, ZVRectT<long> const& place)
{
    ZVPalette* const palette = &display.palette;
    LivingPalette const watch(palette);
    palette->nextModal = ZVEnv->modalPalette;
    ZVEnv->modalPalette = palette;
    ++ZVEnv->modalDepth;
    int32_t const outerResult = std::exchange(ZVEnv->modalResult, 0);
    long const isShown = Show(display, place);
    if (isShown && watch.Is_There()) Leave_Tracked_Item();
    if (isShown && watch.Is_There()) HandleGUIZV();
    if (!isShown && watch.Is_There()) End_Modal(*palette);
    ZVEnv->modalResult = outerResult;
    return isShown;
}

/// The root of what is under construction, with an id for whoever has none.
static ZVPalette* Finish_Construction()
{
    ZVPalette* const root = ZVEnv ? Root_Of(ZVEnv->buildingPalette) : nullptr;
    for (ZVPalette* palette = root; palette; palette = Next_Below(root, palette))
        if (palette->node.id == 0) palette->node.id = Free_Palette_Id();
    return root;
}

/// Sets the palette up as the tags say. False when memory runs out.
static bool Build(Display& display, TagItem* tags)
{
    ZVPalette& palette = display.palette;
    if (!Take_Tags(display, tags)) return false;
    Settle_Reference(palette);
    Settle_Size(display);
    if (palette.kind == ZV_KIND_FLOATER && !(palette.flags & ZV_PALF_NO_TAB_BAR) && !Add_Tab_Bar(palette))
        return false;
    Lay_Out(display);
    return true;
}

/// Places the palette and shows it. 0 without a window, and when the palette closed itself before it had one.
static long Place_And_Show(Display& display)
{
    ZVPalette* const palette = &display.palette;
    bool const isPseudo = display.Is_Pseudo();
    ZVRectT<long> const place = isPseudo ? Place_In_Pseudo_Window(display) : Place_On_Screen(display);
    long const top = (isPseudo ? place.y : 0) + display.Bar_Height();
    Settle_Palette(*palette, isPseudo ? place.x : 0, top);
    palette->flags |= ZV_PALF_HIDDEN;

    LivingPalette const watch(palette);
    Do_Event(ZV_EVENT_SETUP, Tag_Word(palette));
    if (!watch.Is_There()) return 0;
    bool const isModal = palette->kind == ZV_KIND_MODAL, isTransient = palette->kind == ZV_KIND_TRANSIENT;
    long const isShown = isModal ? Show_Modal(display, place) : Show(display, place);
    if (isShown && isTransient && watch.Is_There()) Activate_First_Gadget(palette);
    if (!isShown && watch.Is_There()) Free_Palette(palette);
    return isShown;
}

long DisplayPaletteZV(TagItem* tags)
{
    ZVPalette* const palette = Finish_Construction();
    if (!palette) return 0;
    Display display{*palette};
    bool const isBuilt = Build(display, tags);
    // From here on callbacks run, and may declare palettes of their own.
    ZVEnv->buildingPalette = nullptr;
    ZVPalette* const outer = std::exchange(ZVEnv->displayedPalette, palette);
    long isShown = 0;
    if (isBuilt)
        isShown = Place_And_Show(display);
    else
        Free_Palette(palette);
    ZVEnv->displayedPalette = outer;
    return isShown;
}
