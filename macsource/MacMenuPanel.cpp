#include "MacMenuPanel.h"

#include "MacFrame.h"
#include "MacShapes.h"
#include "MacWindow.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <utility>

// The frame with its bevel, and the empty line inside it.
static constexpr int Border = 3;

// Columns: the check mark, the text, the shortcut, the arrow of a submenu.
static constexpr int MarkRoom = 20, ShortcutGap = 24, ArrowRoom = 18;

static constexpr int LineHeight = 7;
static constexpr int ScrollArrowHeight = 14;

/// A submenu lies over the edge of the menu that it belongs to.
static constexpr int Overlap = 3;

static constexpr unsigned long SelectedInk = 0x000000;

HostRect Menu_Area(int x, int y)
{
    std::vector<HostMonitor> const monitors = Display()->Monitors();
    for (HostMonitor const& monitor : monitors)
        if (monitor.bounds.Contains(x, y)) return monitor.usable;
    return monitors.front().usable;
}

MenuPanel::MenuPanel(MenuRows rows, MenuSpot const& spot) : rows_(std::move(rows))
{
    Measure();
    bounds_ = Place(spot);
    window_ = Display()->Make_Window(
        {.kind = HostWindowKind::Popup, .client = bounds_, .title = "Menu", .hasFrame = false});
    if (!window_) return;
    port_.reset(new ZVPort{window_->Surface(), {}, nullptr, nullptr});
    Draw();
    window_->Show();
}

// ---- geometry ---------------------------------------------------------------------------------------------

void MenuPanel::Measure()
{
    rowHeight_ = static_cast<int>(Text_Height(nullptr)) + 2 * MenuTextMargin;
    long text = 0, shortcut = 0;
    for (MenuRow const& row : rows_) {
        tops_.push_back(contentHeight_);
        contentHeight_ += row.Is_Line() ? LineHeight : rowHeight_;
        if (row.Is_Line()) continue;
        text = std::max(text, Find_Font(Menu_Font(*row.menu)).Width(row.text));
        shortcut = std::max(shortcut, Find_Font({}).Width(row.shortcut));
    }
    tops_.push_back(contentHeight_);
    contentWidth_ = static_cast<int>(MarkRoom + text + (shortcut ? ShortcutGap + shortcut : 0) + ArrowRoom);
}

HostRect MenuPanel::Place(MenuSpot const& spot) const
{
    HostRect const& around = spot.around;
    HostRect area = Menu_Area(around.left, around.top);
    if (spot.side == MenuSpot::Side::Below) area.top = std::clamp(around.bottom, area.top, area.bottom);
    int const width = std::min(contentWidth_ + 2 * Border, area.Width());
    int const height = std::min(contentHeight_ + 2 * Border, area.Height());
    int left = around.left, top = around.top;
    if (spot.side == MenuSpot::Side::Beside) {
        bool const fitsRight = around.right - Overlap + width <= area.right;
        left = fitsRight ? around.right - Overlap : around.left + Overlap - width;
        top -= Border;
    }
    left = std::clamp(left, area.left, area.right - width);
    top = std::clamp(top, area.top, area.bottom - height);
    return {left, top, left + width, top + height};
}

HostRect MenuPanel::Inside() const
{
    return {Border, Border, bounds_.Width() - Border, bounds_.Height() - Border};
}

HostRect MenuPanel::View() const
{
    HostRect view = Inside();
    if (!Scrolls()) return view;
    view.top += ScrollArrowHeight;
    view.bottom = std::max(view.bottom - ScrollArrowHeight, view.top);
    return view;
}

HostRect MenuPanel::Box(int row) const
{
    HostRect const view = View();
    auto const index = static_cast<std::size_t>(row);
    int const origin = view.top - scroll_;
    return {view.left, origin + tops_[index], view.right, origin + tops_[index + 1]};
}

HostRect MenuPanel::Row_Box(int row) const
{
    HostRect const box = Box(row);
    return {bounds_.left, bounds_.top + box.top, bounds_.right, bounds_.top + box.bottom};
}

int MenuPanel::Row_At(int x, int y) const
{
    HostRect const view = View();
    int const localY = y - bounds_.top;
    if (!view.Contains(x - bounds_.left, localY)) return None;
    auto const above = std::upper_bound(tops_.begin(), tops_.end(), localY - view.top + scroll_);
    int const row = static_cast<int>(above - tops_.begin()) - 1;
    return Is_Row(row) ? row : None;
}

int MenuPanel::Arrow_At(int x, int y) const
{
    if (!Scrolls() || !bounds_.Contains(x, y)) return 0;
    HostRect const view = View();
    int const localY = y - bounds_.top;
    if (localY < view.top) return -1;
    return localY >= view.bottom ? 1 : 0;
}

// ---- rows -------------------------------------------------------------------------------------------------

bool MenuPanel::Is_Live(int row) const
{
    ZVMenu const* const menu = Menu_Of(row);
    return menu && !Is_Dimmed(*menu);
}

bool MenuPanel::Opens(int row) const
{
    return Is_Live(row) && Has_Rows(*At(row).menu);
}

void MenuPanel::Select(int row)
{
    int const old = std::exchange(selected_, row);
    if (old == row) return;
    for (int const each : {old, row})
        if (Is_Row(each)) Draw_Row(each);
}

int MenuPanel::Next_Live(int row, int step) const
{
    int const count = Row_Count();
    if (!Is_Row(row)) row = step > 0 ? -1 : count;
    for (int tried = 0; tried < count; ++tried) {
        row = (row + step + count) % count;
        if (Is_Live(row)) return row;
    }
    return None;
}

void MenuPanel::Reveal(int row)
{
    if (!Is_Row(row)) return;
    HostRect const box = Box(row), view = View();
    if (box.top < view.top)
        Scroll(box.top - view.top);
    else if (box.bottom > view.bottom)
        Scroll(box.bottom - view.bottom);
}

bool MenuPanel::Scroll(int distance)
{
    int const last = std::max(contentHeight_ - View().Height(), 0);
    int const old = std::exchange(scroll_, std::clamp(scroll_ + distance, 0, last));
    if (old == scroll_) return false;
    Draw();
    return true;
}

void MenuPanel::Update(ZVMenu const& menu)
{
    for (int row = 0; row < Row_Count(); ++row) {
        if (Menu_Of(row) != &menu) continue;
        rows_[static_cast<std::size_t>(row)].text = Make_MenuString(menu);
        Draw_Row(row);
    }
}

// ---- drawing ----------------------------------------------------------------------------------------------

/// Rows of two more pixels each, from the tip on, around the middle of a box.
static void Draw_Triangle(ZVPort& port, HostRect const& box, bool isUpright, bool isForward, uint32_t color)
{
    constexpr int rows = 4;
    int const middleX = (box.left + box.right) / 2, middleY = (box.top + box.bottom) / 2;
    std::array<HostRect, rows> runs;
    for (int i = 0; i < rows; ++i) {
        int const row = isForward ? rows / 2 - 1 - i : i - rows / 2;
        runs[static_cast<std::size_t>(i)] =
            isUpright ? HostRect{middleX - i - 1, middleY + row, middleX + i + 1, middleY + row + 1}
                      : HostRect{middleX + row, middleY - i - 1, middleX + row + 1, middleY + i + 1};
    }
    port.surface.Fill(runs, color);
}

/// A member of a radio set has a dot, another entry a tick.
static void Draw_Mark(ZVPort& port, HostRect const& box, bool isRadio, uint32_t color)
{
    int const x = (box.left + box.right) / 2, y = (box.top + box.bottom) / 2;
    ShapeRuns runs;
    if (isRadio) {
        runs = Oval_Runs({x - 3, y - 3, x + 3, y + 3}, box);
    } else {
        for (int row = -2; row < 1; ++row) {
            Add_Line(runs, {x - 3, y + row}, {x - 1, y + row + 2}, box);
            Add_Line(runs, {x - 1, y + row + 2}, {x + 3, y + row - 2}, box);
        }
    }
    port.surface.Fill(runs, color);
}

void MenuPanel::Draw_Text(int row, HostRect const& box, uint32_t ink)
{
    MenuRow const& each = At(row);
    FontChoice const choice = Menu_Font(*each.menu);
    int const baseLine = box.top + MenuTextMargin + static_cast<int>(Find_Font({}).Ascent());
    int const right = box.right - ArrowRoom;
    int const shortcutWidth = static_cast<int>(Find_Font({}).Width(each.shortcut));
    int const room = right - box.left - MarkRoom - (shortcutWidth ? shortcutWidth + ShortcutGap : 0);
    FittedText const fitted(choice, each.text.c_str(), std::max(room, 0));
    int const left = box.left + MarkRoom;
    TextFont const font = Find_Font(choice);
    font.Draw(port_->surface, fitted.Text(), left, baseLine, ink);
    if (each.menu->flags & ZV_MENUF_UNDERLINED) {
        int const end = left + static_cast<int>(font.Width(fitted.Text()));
        port_->surface.Fill(HostRect{left, baseLine + 1, end, baseLine + 2}, ink);
    }
    if (shortcutWidth)
        Find_Font({}).Draw(port_->surface, each.shortcut, right - shortcutWidth, baseLine, ink);
}

/// What of it finds no memory comes when it is presented.
void MenuPanel::Draw_Row(int row)
{
    Paint(port_.get(), [&] { Draw_Whole_Row(row); });
}

void MenuPanel::Draw_Whole_Row(int row)
{
    HostRect const box = Box(row);
    PortClip const clip(*port_, View());
    bool const isSelected = row == selected_;
    uint32_t const ground = Pen_Color(isSelected ? ZV_PEN_MARKED : ZV_PEN_FACE);
    port_->surface.Fill(box, ground);
    MenuRow const& each = At(row);
    if (each.Is_Line()) {
        int const middle = (box.top + box.bottom) / 2;
        port_->surface.Fill(HostRect{box.left, middle - 1, box.right, middle}, Pen_Color(ZV_PEN_SHADOW));
        port_->surface.Fill(HostRect{box.left, middle, box.right, middle + 1}, Pen_Color(ZV_PEN_LIGHT_EDGE));
        return;
    }
    uint32_t const plain = Pen_Color(isSelected ? SelectedInk : static_cast<unsigned long>(ZV_PEN_TEXT));
    uint32_t const ink = Is_Dimmed(*each.menu) ? Dimmed_Ink(plain, ground) : plain;
    Draw_Text(row, box, ink);
    if (Is_Marked(*each.menu))
        Draw_Mark(*port_, {box.left, box.top, box.left + MarkRoom, box.bottom}, each.menu->exclusion, ink);
    if (Has_Rows(*each.menu))
        Draw_Triangle(*port_, {box.right - ArrowRoom, box.top, box.right, box.bottom}, false, true, ink);
}

void MenuPanel::Draw_Arrow(bool isDown)
{
    HostRect box = Inside();
    HostRect const view = View();
    (isDown ? box.top : box.bottom) = isDown ? view.bottom : view.top;
    bool const isAtEnd = isDown ? scroll_ >= contentHeight_ - view.Height() : scroll_ == 0;
    port_->surface.Fill(box, Pen_Color(ZV_PEN_FACE));
    Draw_Triangle(*port_, box, true, isDown, Pen_Color(ZV_PEN_TEXT, isAtEnd));
}

void MenuPanel::Present()
{
    if (std::exchange(port_->isIncomplete, false)) Draw();
    ::Present(*window_);
}

void MenuPanel::Draw()
{
    HostRect const all = port_->surface.Bounds();
    port_->surface.Fill(all, Pen_Color(ZV_PEN_FACE));
    Draw_Bevel(*port_, all, Pen_Color(ZV_PEN_DARK_EDGE), Pen_Color(ZV_PEN_LIGHT_EDGE),
               Pen_Color(ZV_PEN_SHADOW));
    HostRect const view = View();
    for (int row = 0; row < Row_Count(); ++row)
        if (!Intersection(Box(row), view).IsEmpty()) Draw_Row(row);
    if (!Scrolls()) return;
    Draw_Arrow(false);
    Draw_Arrow(true);
}
