#include "MacList.h"

#include "MacFrame.h"
#include "MacItem.h"
#include "ZVLibInternal.h"

#include "interface/HitTest.h"

#include <utility>

/// Width of the rows that the bar takes; its last column lies over the frame.
static constexpr int BarRoom = ScrollBarWidth - 1;

static constexpr int TextInset = 4;

/// Of a selected row, on the bright pen that marks it.
static constexpr unsigned long SelectedInk = 0x000000;

/// Ticks of 1/60 second between two scrolls of a mouse that is held beyond an edge. The farther away it is,
/// the more rows each moves.
static constexpr uint32_t ScrollDelay = 3;

static bool Is_Disabled(ZVItem const& item)
{
    return item.flags & ZV_ITEMF_DISABLED;
}

ZVNativeItem* Make_List(ZVItem& item)
{
    return new ListBox(item);
}

ListBox::ListBox(ZVItem& item) : item_(item), bar_(true, [this] { Draw_View(); })
{
    Take_Entries();
    Take_State();
}

void ListBox::Take_Entries()
{
    rows_.clear();
    for (Node const& entry : Records<Node>(item_.entries))
        rows_.push_back(entry.name ? entry.name : "");
    item_.flags &= ~ZV_ITEMF_ENTRIES_CHANGED;
    if (selected_ >= Row_Count()) selected_ = -1;
}

// ---- geometry ---------------------------------------------------------------------------------------------

ListBox::Place ListBox::Place_Now() const
{
    HostRect const bounds = Area_Of(item_);
    TextFont const font = Find_Font({GetItemFont(&item_), nullptr});
    return {bounds,
            {bounds.left, bounds.top, std::max(bounds.right - BarRoom, bounds.left), bounds.bottom},
            static_cast<int>(std::max(font.Ascent() + font.Descent(), 1L))};
}

HostRect ListBox::Bounds() const
{
    return Place_Now().bounds;
}

bool ListBox::Is_In_Rows(int x, int y) const
{
    return Place_Now().rows.Contains(x, y);
}

int ListBox::Row_At(Place const& place, int y) const
{
    int const distance = y - place.rows.top;
    int const rows =
        distance < 0 ? -((place.rowHeight - 1 - distance) / place.rowHeight) : distance / place.rowHeight;
    return bar_.Value() + rows;
}

void ListBox::Take_Range(Place const& place)
{
    HostRect const& bounds = place.bounds;
    bar_.Place({bounds.right - BarRoom, bounds.top - 1, bounds.right + 1, bounds.bottom + 1}, bounds);
    bar_.Set_Range(Row_Count() - place.Whole_Rows(), place.Whole_Rows());
    bar_.Set_Enabled(!Is_Disabled(item_));
}

// ---- drawing ----------------------------------------------------------------------------------------------

void ListBox::Draw_Row(ZVPort& port, Place const& place, int row) const
{
    int const top = place.rows.top + (row - bar_.Value()) * place.rowHeight;
    HostRect const box{place.rows.left, top, place.rows.right, top + place.rowHeight};
    bool const isSelected = row == selected_, isDisabled = Is_Disabled(item_);
    uint32_t const ground =
        isSelected ? Pen_Color(ZV_PEN_MARKED, isDisabled || !isActive_) : Pen_Color(ZV_PEN_FACE, isDisabled);
    port.surface.Fill(box, ground);
    if (row >= Row_Count()) return;

    FontChoice const choice{GetItemFont(&item_), nullptr};
    FittedText const fitted(choice, rows_[static_cast<std::size_t>(row)], box.Width() - 2 * TextInset);
    TextFont const font = Find_Font(choice);
    uint32_t const ink = Pen_Color(isSelected ? SelectedInk : static_cast<unsigned long>(ZV_PEN_TEXT));
    font.Draw(port.surface, fitted.Text(), box.left + TextInset, top + static_cast<int>(font.Ascent()),
              isDisabled ? Dimmed_Ink(ink, ground) : ink);
}

void ListBox::Draw_Rows(ZVPort& port, Place const& place) const
{
    PortClip const clip(port, place.rows);
    int const last = Row_At(place, place.rows.bottom - 1);
    for (int row = bar_.Value(); row <= last; ++row)
        Draw_Row(port, place, row);
}

void ListBox::Draw_View()
{
    ZVPort* const port = Port_Of(item_);
    if (!port) return;
    Draw_Rows(*port, Place_Now());
    bar_.Draw(*port);
}

void ListBox::Draw()
{
    ZVPort* const port = Port_Of(item_);
    if (item_.flags & ZV_ITEMF_ENTRIES_CHANGED) Take_Entries();
    Place const place = Place_Now();
    Take_Range(place);
    if (!port) return;
    HostRect const& bounds = place.bounds;
    if (Is_Disabled(item_))
        EmbossRect3DInv(*port, bounds);
    else if (hasFocus_)
        Draw_Edges(*port, Outset(bounds, 1), Pen_Color(ZV_PEN_MARKED), Pen_Color(ZV_PEN_MARKED));
    else
        EmbossRect3D(*port, bounds);
    Draw_Rows(*port, place);
    bar_.Draw(*port);
}

void ListBox::Set_Focus(bool hasFocus)
{
    hasFocus_ = hasFocus;
    Draw();
}

void ListBox::Set_Active(bool isActive)
{
    ZVPort* const port = Port_Of(item_);
    if (std::exchange(isActive_, isActive) == isActive || !port || selected_ < 0) return;
    Place const place = Place_Now();
    PortClip const clip(*port, place.rows);
    Draw_Row(*port, place, selected_);
}

// ---- selecting and scrolling ------------------------------------------------------------------------------

void ListBox::Take_State()
{
    Place const place = Place_Now();
    Take_Range(place);
    selected_ = item_.state > 0 && item_.state <= Row_Count() ? item_.state - 1 : -1;
    Show_Row(place, selected_);
}

void ListBox::Show_State()
{
    if (item_.flags & ZV_ITEMF_ENTRIES_CHANGED) Take_Entries();
    Take_State();
    Draw_View();
}

void ListBox::Store_State()
{
    item_.state = selected_ + 1;
    item_.realValue = item_.state;
}

/// Scrolls as far as it takes to have the row in view. False when it is in view, or no row.
bool ListBox::Show_Row(Place const& place, int row)
{
    if (row < 0) return false;
    int const top = bar_.Value();
    bar_.Set_Value(std::clamp(top, row - place.Whole_Rows() + 1, row));
    return bar_.Value() != top;
}

void ListBox::Select_Row(int row)
{
    int const old = selected_;
    selected_ = row >= 0 && row < Row_Count() ? row : -1;
    Place const place = Place_Now();
    if (Show_Row(place, selected_)) {
        Draw_View();
        return;
    }
    ZVPort* const port = Port_Of(item_);
    if (!port || selected_ == old) return;
    PortClip const clip(*port, place.rows);
    for (int const changed : {old, selected_})
        if (changed >= 0) Draw_Row(*port, place, changed);
}

bool ListBox::Scroll(int rows)
{
    int const top = bar_.Value();
    auto const wanted = std::clamp<int64_t>(int64_t{top} + rows, 0, bar_.Maximum());
    bar_.Set_Value(static_cast<int>(wanted));
    if (bar_.Value() == top) return false;
    Draw_View();
    return true;
}

// ---- the mouse --------------------------------------------------------------------------------------------

void ListBox::Press(int x, int y)
{
    ZVPort* const port = Port_Of(item_);
    if (!port || Is_Disabled(item_)) return;
    Place const place = Place_Now();
    if (!place.rows.Contains(x, y)) {
        ZVPlace const origin = Place_On_Screen(System_Window_Of(item_.group->palette->window));
        bar_.Press(*port, x, y, static_cast<int>(origin.x), static_cast<int>(origin.y));
        return;
    }
    isOnRows_ = false;
    nextScroll_ = Mac_Tick_Count();
    Hold_Mouse(this);
    Follow(y);
}

/// Selects the row at a height of the window, or scrolls when that is beyond the edges.
void ListBox::Follow(int y)
{
    Place const place = Place_Now();
    int row = Row_At(place, y);
    // Below the last row there is nothing to select, unless the mouse has come there from the rows.
    isOnRows_ = isOnRows_ || row < Row_Count();
    if (!isOnRows_) return;
    int const above = place.rows.top - y, below = y - place.rows.bottom + 1;
    if (int const beyond = std::max(above, below); beyond > 0) {
        if (static_cast<int32_t>(Mac_Tick_Count() - nextScroll_) >= 0) {
            nextScroll_ = Mac_Tick_Count() + ScrollDelay;
            int const step = 1 + beyond / place.rowHeight;
            Scroll(above > 0 ? -step : step);
        }
        int const top = bar_.Value();
        row = above > 0 ? top : top + place.Whole_Rows() - 1;
    }
    Select_Row(std::clamp(row, 0, std::max(Row_Count() - 1, 0)));
}

void ListBox::Track(long /*x*/, long y)
{
    if (Is_Disabled(item_)) return;
    ZVPlace const origin = Place_On_Screen(System_Window_Of(item_.group->palette->window));
    Follow(static_cast<int>(y - origin.y));
}

void ListBox::Finish(long, long)
{
    Store_State();
    ZVEnv->modifiers |= ZV_MOD_RELEASE;
    // Nothing of the list may be touched afterwards: whoever gets the event can close its palette.
    Do_Event(ZV_EVENT_GADGET, Tag_Word(&item_));
}
