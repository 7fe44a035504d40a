// Lists: one column of texts, one row for each entry of the item, one row selected, and a scroll bar.
#pragma once

#include "MacScrollBar.h"

#include <vector>

class ListBox : public ZVNativeItem, public MouseTracker {
public:
    explicit ListBox(ZVItem& item);

    void Draw() override;
    void Show_State() override;
    void Set_Focus(bool hasFocus) override;

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

private:
    HostRect Rows_Area() const;
    int Row_At(int y) const;  ///< Of the window's y, whether it is in view or not.

    ZVItem& item_;
    std::vector<char const*> rows_;  ///< texts of the item's entries, null for none
    ScrollBar bar_;
    int selected_ = -1;
    bool hasFocus_ = false;
};

/// The list of an item on screen; null for all other items.
inline ListBox* List_Of(ZVItem const& item)
{
    bool const isList = item.native && item.kind == ZV_ITEM_GADGET && item.type == ZV_GAD_LIST;
    return isList ? static_cast<ListBox*>(item.native) : nullptr;
}
