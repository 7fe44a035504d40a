// A menu that is open: a window of its own with the rows of one menu, which scroll when they find no room.
#pragma once

#include "MacMenuRows.h"
#include "MacPort.h"
#include "host/Display.h"

#include <memory>

/// Where a menu opens.
struct MenuSpot {
    enum class Side {
        Below,   ///< of a title: it goes no higher
        Beside,  ///< of a row: to the right, or where there is no room to the left
        At       ///< a point: the rectangle's corner
    };
    Side side;
    HostRect around;  ///< on the desktop
};

class MenuPanel {
public:
    static constexpr int None = -1;

    MenuPanel(MenuRows rows, MenuSpot const& spot);  ///< Throws without memory.

    bool Is_Made() const { return window_ != nullptr; }
    HostRect const& Bounds() const { return bounds_; }  ///< On the desktop, as all points here.

    int Row_Count() const { return static_cast<int>(rows_.size()); }
    ZVMenu* Menu_Of(int row) const { return Is_Row(row) ? At(row).menu : nullptr; }

    /// Whether it can be chosen, or opened.
    bool Is_Live(int row) const;
    bool Opens(int row) const;

    /// The row at a point, lines and disabled ones as well; None beside them.
    int Row_At(int x, int y) const;
    HostRect Row_Box(int row) const;

    int Selected() const { return selected_; }
    void Select(int row);  ///< None for none.

    /// The next live row in that direction, round at the ends; from None on the first or last one. None
    /// without any.
    int Next_Live(int row, int step) const;
    void Reveal(int row);  ///< Scrolls as little as it takes.

    /// -1 or 1 over the arrow that scrolls that way, 0 elsewhere.
    int Arrow_At(int x, int y) const;
    bool Scroll(int distance);  ///< Down, in pixels. False at the end.

    /// The text or state of an entry has changed.
    void Update(ZVMenu const& menu);
    void Draw();
    void Present();

private:
    bool Is_Row(int row) const { return row >= 0 && row < Row_Count(); }
    MenuRow const& At(int row) const { return rows_[static_cast<std::size_t>(row)]; }

    void Measure();
    HostRect Place(MenuSpot const& spot) const;
    HostRect Inside() const;      ///< The rows and the arrows, in the window.
    HostRect View() const;        ///< Of the rows that show, in the window.
    HostRect Box(int row) const;  ///< In the window.
    bool Scrolls() const { return contentHeight_ > Inside().Height(); }
    void Draw_Row(int row);
    void Draw_Whole_Row(int row);
    void Draw_Text(int row, HostRect const& box, uint32_t ink);
    void Draw_Arrow(bool isDown);

    MenuRows rows_;
    std::vector<int> tops_;  ///< of the rows, in the content; with its height behind them
    int rowHeight_ = 0, contentWidth_ = 0, contentHeight_ = 0;
    HostRect bounds_;
    int scroll_ = 0, selected_ = None;
    std::unique_ptr<HostWindow> window_;
    std::unique_ptr<ZVPort> port_;
};

/// Rows and titles have so much above and below their text.
inline constexpr int MenuTextMargin = 3;

/// The part of a monitor that menus open in, for what is opened at a point.
HostRect Menu_Area(int x, int y);
