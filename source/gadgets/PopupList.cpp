#include "PopupList.h"

#include "CycleEntry.h"
#include "ZVControl.h"
#include "ZVKey.h"
#include "foundation/Utf8.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cstring>
#include <strings.h>
#include <utility>

namespace {

/// Items of the list's palette.
constexpr unsigned short listId = 1, scrollId = 2;

constexpr long scrollWidth = 10;
constexpr long frame = 1;     ///< around the rows
constexpr long textRoom = 6;  ///< beside the longest text
constexpr long textLeft = 5;
constexpr long fewestRows = 3;  ///< with fewer there would be no row between the arrows
constexpr long arrowHeight = 5;
constexpr long searchTicks = 3;  ///< that what was typed lasts
constexpr unsigned long frameColor = 0x000000, textOnMark = 0x000000;

/// What the one open list has beside its record.
struct OpenList {
    ZVItem* ScrollGad = nullptr;
    char typeAhead[64] = {};
    std::size_t typeAheadIndex = 0;  ///< of the next byte
    long tickCount = 0;              ///< ticks until what was typed is forgotten
    int32_t wheelRest = 0;
};
OpenList openList;

ListState& State_Of_List(ZVItem const& list)
{
    return *static_cast<ListState*>(list.object);
}

/// The entry of a row; null where there is none, and when the cycle is gone.
Node* Entry_Of_Row(ListState const& state, long row)
{
    return state.Owner ? List_Entry(&state.Owner->entries, row) : nullptr;
}

}  // namespace

// ---- drawing ----------------------------------------------------------------------------------------------

/// Settles which rows are in view, and between which arrows.
static void Lay_Rows(ZVItem const& list, ListState& state)
{
    auto rows = static_cast<int32_t>(list.linkedItem);
    state.ListTop = 0;
    state.ListBottom = list.height;
    if (rows < state.TotalRows) {
        if (state.TopRow > 0) {
            --rows;
            state.ListTop = state.RowHeight;
        }
        if (state.TopRow + rows < state.TotalRows) {
            --rows;
            state.ListBottom -= state.RowHeight + static_cast<int32_t>(2 * frame);
        }
    }
    state.VisibleRows = rows;
    state.TopRow = std::clamp(state.TopRow, 0, std::max(state.TotalRows - rows, 0));
}

static void Draw_Separator(ZVDrawInfo* draw, ZVItem const& list, long middle)
{
    SetPenZV(draw, DisableColorZV(ZV_PEN_TEXT));
    DrawLineZV(draw, frame, middle, list.width - 1 - frame, middle);
}

/// Draws a row that is in view; nothing for others.
static void DrawEntry(ZVDrawInfo* draw, ZVItem const& list, long row, bool isHighlighted)
{
    ListState const& state = State_Of_List(list);
    Node const* const entry = Entry_Of_Row(state, row);
    if (!entry || row < state.TopRow || row >= state.TopRow + state.VisibleRows) return;
    bool const isSeparator = Is_Separator(*entry);
    if (isSeparator) isHighlighted = false;
    unsigned long const background = isHighlighted ? ZV_PEN_MARKED : ZV_PEN_FACE;
    unsigned long const text = isHighlighted ? textOnMark : static_cast<unsigned long>(ZV_PEN_TEXT);
    long const width = list.width - 2 * frame, y = (row - state.TopRow) * state.RowHeight + state.ListTop + 1;
    SetClipRectZV(draw, frame, y, width, state.RowHeight);
    SetPenZV(draw, background);
    FillRectZV(draw, frame, y, frame + width - 1, y + state.RowHeight - 1);
    EntryLook const look{*state.Owner, row, background, text, false};
    if (isSeparator) {
        Draw_Separator(draw, list, y + state.RowHeight / 2);
    } else if (Has_Icon(*entry)) {
        NativeBitmap const picture = Entry_Picture(*entry, look);
        if (picture) DrawBitmapZV(draw, picture.get(), (list.width - picture->Width) / 2, y);
    } else {
        SetFontZV(draw, ZV_FONT_INTERFACE);
        Set_Entry_Pens(draw, look);
        DrawTextZV(draw, entry->name, textLeft, y);
    }
}

/// The room of an arrow, from `top` to `bottom`, with the arrow in its middle.
static void Draw_Arrow(ZVDrawInfo* draw, ZVItem const& list, long top, long bottom, bool isDown)
{
    SetPenZV(draw, ZV_PEN_FACE);
    FillRectZV(draw, frame, top, list.width - 1 - frame, bottom);
    SetPenZV(draw, ZV_PEN_TEXT);
    long const middle = list.width / 2, first = (top + bottom + 1 - arrowHeight) / 2;
    for (long i = 0; i < arrowHeight; ++i) {
        long const y = first + (isDown ? arrowHeight - 1 - i : i);
        DrawLineZV(draw, middle - i, y, middle + i, y);
    }
}

/// The scroll gadget shows which rows are in view.
static void Show_View(ListState const& state)
{
    if (!openList.ScrollGad) return;
    ModifyItemZV(openList.ScrollGad, ZV_ITEM_PROP_PAGE, state.VisibleRows, 0);
    SetGadgetStateZV(openList.ScrollGad, state.TopRow);
}

static void Draw_Rows(ZVItem& list, bool withFrame)
{
    ListState& state = State_Of_List(list);
    Lay_Rows(list, state);
    {
        DrawContext const context(DrawBeginZV(&list));
        ZVDrawInfo* const draw = context.get();
        if (!draw) return;
        if (withFrame) {
            SetPenZV(draw, ZV_PEN_FACE);
            FillRectZV(draw, 0, 0, list.width - 1, list.height - 1);
            SetPenZV(draw, frameColor);
            DrawRectZV(draw, 0, 0, list.width - 1, list.height - 1);
        }
        if (state.ListTop > 0) Draw_Arrow(draw, list, frame, state.ListTop, false);
        if (state.ListBottom < list.height)
            Draw_Arrow(draw, list, state.ListBottom + 1, list.height - 1 - frame, true);
        for (long row = state.TopRow; row < state.TopRow + state.VisibleRows; ++row)
            DrawEntry(draw, list, row, row == state.CurrentRow);
    }
    Show_View(state);
}

static void Highlight_Row(ZVItem& list, int32_t row)
{
    ListState& state = State_Of_List(list);
    int32_t const old = std::exchange(state.CurrentRow, row);
    list.state = row;
    if (old == row) return;
    DrawContext const draw(DrawBeginZV(&list));
    DrawEntry(draw.get(), list, old, false);
    DrawEntry(draw.get(), list, row, true);
}

// ---- scrolling --------------------------------------------------------------------------------------------

static void Scroll_To(ZVItem& list, long topRow)
{
    State_Of_List(list).TopRow = static_cast<int32_t>(std::max(topRow, 0L));
    UpdateGadgetZV(&list);
}

static bool Is_In_View(ListState const& state, long row)
{
    return row >= state.TopRow && row < state.TopRow + state.VisibleRows;
}

void Choose_List_Row(ZVItem& list, long row)
{
    ListState const& state = State_Of_List(list);
    Highlight_Row(list, static_cast<int32_t>(row));
    // One step at a time: where an arrow goes there is one row more.
    while (row >= 0 && !Is_In_View(state, row)) {
        int32_t const old = state.TopRow;
        Scroll_To(list, row < old ? old - 1 : old + 1);
        if (state.TopRow == old) return;
    }
}

/// Brings a row that was found by typing to the middle of the view.
static void Center_List_Row(ZVItem& list, long row)
{
    ListState const& state = State_Of_List(list);
    Highlight_Row(list, static_cast<int32_t>(row));
    if (Is_In_View(state, row)) return;
    long const last = state.TotalRows - state.VisibleRows;
    Scroll_To(list, std::min(row - state.VisibleRows / 2, last));
}

// ---- choosing ---------------------------------------------------------------------------------------------

static void Close_List(ZVItem const& list)
{
    ClosePaletteZV(list.group->palette);
}

/// Closes the list, and gives its cycle the entry that is highlighted.
/// @return  the cycle, to be reported; null when there was no entry to be had, or no cycle to take it
static ZVItem* Take_Row(ZVItem const& list)
{
    ListState const& state = State_Of_List(list);
    ZVItem* const owner = state.Owner;
    Node const* const entry = Entry_Of_Row(state, list.state);
    bool const isChoice = entry && !Is_Separator(*entry);
    uint32_t const id = isChoice ? entry->id : 0;
    if (!isChoice) {
        Close_List(list);
        return nullptr;
    }
    // Dependencies of the cycle may close palettes, so the list goes first.
    LivingPalette const watch(owner->group->palette);
    Close_List(list);
    if (watch.Is_There()) SetGadgetStateZV(owner, static_cast<int32_t>(id));
    return watch.Is_There() ? owner : nullptr;
}

// ---- the mouse --------------------------------------------------------------------------------------------

namespace {

/// Where the mouse is in the list.
struct ListPlace {
    ListPlace(ZVCustomEvent const& event, ListState const& state)
        : inside(event.x >= 0 && event.x < event.item->width && event.y >= 0 && event.y < event.item->height),
          aboveList(inside && event.y < state.ListTop), belowList(inside && event.y >= state.ListBottom),
          overRows(inside && !aboveList && !belowList)
    {
    }

    bool inside, aboveList, belowList, overRows;
};

}  // namespace

static void Follow_Mouse(ZVCustomEvent const& event)
{
    ZVItem& list = *event.item;
    ListState& state = State_Of_List(list);
    state.LowestY = std::max(state.LowestY, event.y);
    if (!list.pressed) return;
    ListPlace const place(event, state);
    if (place.overRows) {
        int32_t const row = (event.y - state.ListTop) / state.RowHeight + state.TopRow;
        Highlight_Row(list, std::min(row, state.TotalRows - 1));  // the frame below belongs to the last one
    } else if (!place.inside) {
        Highlight_Row(list, -1);
    }
}

static void Scroll_On(ZVCustomEvent const& event)
{
    ListState const& state = State_Of_List(*event.item);
    ListPlace const place(event, state);
    // On the way down from the cycle the mouse passes the upper arrow.
    if (place.aboveList && event.y < state.LowestY) Scroll_To(*event.item, state.TopRow - 1);
    if (place.belowList && state.TopRow + state.VisibleRows <= state.TotalRows)
        Scroll_To(*event.item, state.TopRow + 1);
}

static void Release(ZVCustomEvent* event)
{
    ZVItem& list = *event->item;
    if (!list.pressed) return;
    Follow_Mouse(*event);
    list.pressed = 0;
    ListPlace const place(*event, State_Of_List(list));
    if (place.overRows) {
        ZVItem* const owner = Take_Row(list);
        if (!owner) return;
        event->replyType = ZV_EVENT_GADGET;
        event->replyData = Tag_Word(owner);
    } else if (!place.inside) {
        Close_List(list);
    }
}

static void Turn_Wheel(ZVCustomEvent const& event)
{
    ZVItem const* const bar = openList.ScrollGad;
    long const steps = Wheel_Steps(event.deltaY, openList.wheelRest);
    if (!bar || steps == 0) return;
    long const lines = GetWheelScrollLinesZV(), page = bar->Page;
    long const top = bar->state + steps * (lines == -1 ? page : lines);
    Scroll_To(*event.item, std::clamp(top, 0L, std::max(bar->maxInt - page, 0L)));
}

// ---- the list's function ----------------------------------------------------------------------------------

static long Set_Up(ZVItem& list)
{
    auto* const state = New_Record<ListState>();
    list.object = state;
    if (state) state->Owner = reinterpret_cast<ZVItem*>(list.userData);
    return state != nullptr;
}

static void Clean_Up(ZVItem& list)
{
    ZVItem const* const owner = State_Of_List(list).Owner;
    if (CycleState* const cycle = owner ? State_Of_Cycle(*owner) : nullptr) {
        cycle->Popup = 0;
        cycle->ListItem = nullptr;
    }
    FreeMemZV(std::exchange(list.object, nullptr));
    openList = {};
}

static void Set_Size(ZVItem& list)
{
    ListState& state = State_Of_List(list);
    state.RowHeight = static_cast<int32_t>(std::max(GetAveCharHeightZV(nullptr), 1L));
    state.TotalRows = list.maxInt;
    state.VisibleRows = static_cast<int32_t>(list.linkedItem);
    list.height = state.RowHeight * state.VisibleRows + static_cast<int32_t>(2 * frame);
}

static void Take_State(ZVItem& list)
{
    ListState& state = State_Of_List(list);
    state.CurrentRow = list.state = std::clamp(list.state, 0, std::max(state.TotalRows - 1, 0));
}

long ListCustomFunc(ZVCustomEvent* event)
{
    ZVItem& list = *event->item;
    if (event->type == ZV_CUSTOM_SETUP) return Set_Up(list);
    if (!list.object) return 1;
    ListState& state = State_Of_List(list);
    switch (event->type) {
    case ZV_CUSTOM_CREATE:
        state.CurrentRow = list.state;
        state.LowestY = 0;
        break;
    case ZV_CUSTOM_CLEANUP: Clean_Up(list); break;
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Rows(list, true); break;
    case ZV_CUSTOM_DRAW_STATE: Draw_Rows(list, false); break;
    case ZV_CUSTOM_MOUSE_DOWN: list.pressed = 1; [[fallthrough]];
    case ZV_CUSTOM_MOUSE_MOVE: Follow_Mouse(*event); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event); break;
    case ZV_CUSTOM_TICK: Scroll_On(*event); break;
    case ZV_CUSTOM_SET_SIZE: Set_Size(list); break;
    case ZV_CUSTOM_SET_STATE: Take_State(list); break;
    case ZV_CUSTOM_WHEEL: Turn_Wheel(*event); break;
    default: break;
    }
    return 1;
}

// ---- the palette ------------------------------------------------------------------------------------------

/// Adds a character of the basic plane to what was typed, as far as there is room.
static void Add_Typed(uint32_t character)
{
    std::string utf8;
    Append_Character(utf8, character);
    if (openList.typeAheadIndex + utf8.size() >= sizeof openList.typeAhead) return;
    std::strcpy(openList.typeAhead + openList.typeAheadIndex, utf8.c_str());
    openList.typeAheadIndex += utf8.size();
}

/// The row that what was typed stands for: the first one that begins with it, or the last one before its
/// place in the alphabet; -1 for none. Separators and icons have no text to look for.
static long Typed_Row(ListState const& state)
{
    long found = -1, row = 0;
    for (Node const* entry; (entry = Entry_Of_Row(state, row)); ++row) {
        if (!entry->name || Is_Separator(*entry) || Has_Icon(*entry)) continue;
        int const order = strncasecmp(entry->name, openList.typeAhead, openList.typeAheadIndex);
        if (order <= 0) found = row;
        if (order == 0) break;
    }
    return found;
}

static void Type_Ahead(ZVItem& list, ZVEvent const& event)
{
    uint32_t const character = event.item ? static_cast<uint32_t>(event.item) : event.key;
    if (character < ' ' || character == 0x7F) return;
    Add_Typed(character);
    openList.tickCount = searchTicks;
    long const row = Typed_Row(State_Of_List(list));
    if (row >= 0) Center_List_Row(list, row);
}

static void Forget_Typed()
{
    if (openList.tickCount == 0 || --openList.tickCount > 0) return;
    openList.typeAheadIndex = 0;
    openList.typeAhead[0] = 0;
}

static void Step(ZVItem& list, long way)
{
    if (ZVItem const* const owner = State_Of_List(list).Owner)
        Choose_List_Row(list, Entry_From(*owner, list.state, way));
}

/// As by the mouse, but told by an event of its own.
static void Take_By_Key(ZVItem const& list)
{
    ZVItem* const owner = Take_Row(list);
    if (!owner) return;
    SetCurrentPaletteZV(owner->group->palette);
    Do_Event(ZV_EVENT_GADGET, Tag_Word(owner));
}

static void Take_Key(ZVItem& list, ZVEvent& event)
{
    // What is typed into a list is no shortcut of the application.
    event.result = 1;
    if (event.modifiers & ZV_MOD_KEY_UP) return;
    switch (event.key) {
    case ZV_KEY_UP: Step(list, -1); break;
    case ZV_KEY_DOWN: Step(list, 1); break;
    case ZV_KEY_ENTER:
    case ZV_KEY_RETURN: Take_By_Key(list); break;
    case ZV_KEY_ESCAPE: Close_List(list); break;
    default:
        if (event.key < ZV_KEY_F1) Type_Ahead(list, event);
        break;
    }
}

void ListPaletteHandler(ZVEvent* event)
{
    ZVItem* const list = FindItem2ZV(event->palette, listId);
    if (!list || !list->object) return;
    switch (event->type) {
    case ZV_EVENT_GADGET:
        if (Event_Item(event) == openList.ScrollGad && !(event->modifiers & ZV_MOD_RELEASE))
            Scroll_To(*list, openList.ScrollGad->state);
        break;
    case ZV_EVENT_TICK: Forget_Typed(); break;
    case ZV_EVENT_KEY: Take_Key(*list, *event); break;
    default: break;
    }
}

// ---- opening and closing ----------------------------------------------------------------------------------

namespace {

/// Measures of a list about to open.
struct Plan {
    long total, visible, width, x, y;

    bool Scrolls() const { return visible < total; }
    long Scroll_Width() const { return Scrolls() ? scrollWidth : 0; }
};

}  // namespace

static Plan Plan_List(ZVItem const& cycle)
{
    long const left = GadToScreenX(&cycle), top = GadToScreenY(&cycle), bottom = top + cycle.height;
    ZVRectT<long> const room = Free_Area_At(left + cycle.width / 2, top + cycle.height / 2);
    long const end = room.y + room.height;
    long const rowHeight = std::max(GetAveCharHeightZV(nullptr), 1L);

    Plan plan{};
    plan.total = plan.visible = List_Entries(&cycle.entries);
    // No more rows than the monitor has room for, on the side of the cycle where there is more of it.
    long mostRows = (std::max(end - bottom, top - room.y) - 2 * frame) / rowHeight;
    if (TagItem const* tag = FindTagItem(ZV_ITEM_ROWS, cycle.tags))
        mostRows = std::min<long>(mostRows, Tag_Number(*tag));
    plan.visible = std::min(plan.visible, std::max(mostRows, fewestRows));

    plan.width = cycle.width - plan.Scroll_Width();
    for (Node const& entry : Records<Node>(cycle.entries))
        if (!Is_Separator(entry)) plan.width = std::max(plan.width, Entry_Width(entry) + textRoom);

    plan.width = std::min(plan.width, room.width - plan.Scroll_Width());

    // Whole on the monitor, although the cycle may not be.
    long const width = plan.width + plan.Scroll_Width(), height = plan.visible * rowHeight + 2 * frame;
    plan.x = std::max(std::min(left + cycle.offsetX, room.x + room.width - width), room.x);
    plan.y = std::max(std::min(bottom + height > end ? top - height : bottom, end - height), room.y);
    return plan;
}

/// Declares the list's palette. Null with error 1 when memory runs out, the palette then still under
/// construction.
static ZVItem* Declare_List(ZVItem& cycle, Plan const& plan)
{
    InitGroupZV();
    ZVItem* const list =
        AddGadgetZV(listId, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_CUSTOM_FUNC,
                    ListCustomFunc, ZV_ITEM_USER_DATA, &cycle, ZV_ITEM_MAX, plan.total, ZV_ITEM_LINKED,
                    plan.visible, ZV_ITEM_WIDTH, plan.width, 0);
    if (!list || !list->object) return nullptr;
    if (plan.Scrolls())
        openList.ScrollGad = AddGadgetZV(
            scrollId, ZV_Position(ZV_POS_AFTER, ZV_POS_DEFAULT), listId, ZV_GAD_CUSTOM, ZV_SIZE_SMALL,
            nullptr, ZV_ITEM_CUSTOM_FUNC, VProp_Gad, ZV_ITEM_WIDTH, scrollWidth, ZV_ITEM_HEIGHT, list->height,
            ZV_GAP_NONE, 0, ZV_ITEM_MIN, 0, ZV_ITEM_MAX, plan.total - 1, ZV_ITEM_PROP_PAGE, plan.visible, 0);
    long const index = Chosen_Index(cycle);
    State_Of_List(*list).TopRow = static_cast<int32_t>(index);
    Lay_Rows(*list, State_Of_List(*list));
    SetGadgetStateZV(list, static_cast<double>(index));
    EndGroupZV(0, 0, 0, nullptr, ZV_MARGIN_NONE, 0, 0);
    return EndPaletteZV(CyclePopUpPalette, nullptr, ZV_PAL_CALLBACK, ListPaletteHandler, 0) ? list : nullptr;
}

void Open_Pop_Up(ZVItem& cycle)
{
    Plan const plan = Plan_List(cycle);
    if (plan.total == 0) return;
    ClosePaletteZV(CyclePopUpPalette);
    ZVPalette* const palette = InitPaletteZV();
    if (!palette) return;
    openList = {};
    ZVItem* const list = Declare_List(cycle, plan);
    if (!list) {
        Free_Palette(palette);
        return;
    }
    CycleState& state = *State_Of_Cycle(cycle);
    state.Popup = CyclePopUpPalette;
    state.ListItem = list;
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_TRANSIENT, ZV_MARGIN_NONE, 0, ZV_PAL_WINDOW_X, plan.x,
                     ZV_PAL_WINDOW_Y, plan.y, ZV_PAL_FORCE_WINDOW_WIDTH, plan.width + plan.Scroll_Width(), 0);
}

void Close_Pop_Up(ZVItem const& cycle)
{
    CycleState* const state = State_Of_Cycle(cycle);
    if (!state || !state->ListItem) return;
    ZVItem const& list = *state->ListItem;
    // If it is being closed already it is freed later, when the cycle may be gone.
    State_Of_List(list).Owner = nullptr;
    state->Popup = 0;
    state->ListItem = nullptr;
    Close_List(list);
}

ZVItem* Owner_Of_Pop_Up(ZVPalette const* palette)
{
    if (!palette || palette->callback != ListPaletteHandler) return nullptr;
    ZVItem const* const list = FindItem2ZV(const_cast<ZVPalette*>(palette), listId);
    return list && list->object ? State_Of_List(*list).Owner : nullptr;
}
