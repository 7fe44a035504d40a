// Lists: one column of texts, one row for each entry of the item, one row selected, and a scroll bar.
#pragma once

#include "MacScrollBar.h"

#include <algorithm>
#include <vector>

class ListBox : public ZVNativeItem, public MouseTracker {
public:
    explicit ListBox(ZVItem& item);

    void Draw() override;
    void Show_State() override;
    void Set_Focus(bool hasFocus) override;

    /// The mark of the selected row is dimmed while the list is in a window that is not in front.
    void Set_Active(bool isActive);

    // Points and rectangles are in the system window, as are those of Press.
    HostRect Bounds() const;  ///< With the bar, without the frame, which lies one pixel outside.
    bool Is_In_Rows(int x, int y) const;

    /// A press inside the bounds. In the rows it selects the one under the mouse, and goes on doing so until
    /// the release, which stores the item's state and sends event 5 with ZV_MOD_RELEASE. In the bar it
    /// scrolls, and nothing is sent.
    void Press(int x, int y);
    void Track(long x, long y) override;
    void Finish(long x, long y) override;

    int Row_Count() const { return static_cast<int>(rows_.size()); }
    int Selected_Row() const { return selected_; }  ///< -1 for none.

    /// Selects a row, or none for one that there is not, scrolls it into view and draws. The item's state
    /// stays as it is.
    void Select_Row(int row);

    /// Moves the view down by so many rows, up by negative ones, as far as there are rows. False when nothing
    /// moved.
    bool Scroll(int rows);

    /// The item's state becomes what is selected.
    void Store_State();

private:
    /// Where things are at present: items move with their groups and windows.
    struct Place {
        HostRect bounds;  ///< in the system window
        HostRect rows;    ///< inside the bounds, beside the bar
        int rowHeight;

        int Whole_Rows() const { return std::max(rows.Height() / rowHeight, 1); }
    };
    Place Place_Now() const;
    int Row_At(Place const& place, int y) const;  ///< in view or not, and beyond the last one too

    void Take_Entries();
    void Take_State();
    void Take_Range(Place const& place);
    void Draw_Row(ZVPort& port, Place const& place, int row) const;
    void Draw_Rows(ZVPort& port, Place const& place) const;
    void Draw_View();  ///< The rows and the bar.
    bool Show_Row(Place const& place, int row);
    void Follow(int y);

    ZVItem& item_;
    std::vector<char const*> rows_;  ///< texts of the item's entries
    ScrollBar bar_;                  ///< its value is the first row in view
    int selected_ = -1;
    bool hasFocus_ = false;
    bool isActive_ = true;
    bool isOnRows_ = false;    ///< the mouse that is held has been on a row
    uint32_t nextScroll_ = 0;  ///< tick from which on the mouse beyond an edge scrolls again
};

/// The list of an item on screen; null for all other items.
inline ListBox* List_Of(ZVItem const& item)
{
    bool const isList = item.native && item.kind == ZV_ITEM_GADGET && item.type == ZV_GAD_LIST;
    return isList ? static_cast<ListBox*>(item.native) : nullptr;
}
