// The list of a file dialog, a custom gadget: rows of names with sizes and dates under a head by which they
// are sorted. It draws what is in view alone, so a directory of any length scrolls alike. It
// reports a row that was pressed, and one that is to be opened.
#pragma once

#include "FileDialogGadget.h"
#include "FileDialogListing.h"

#include <algorithm>
#include <utility>

class FileRows : public FileDialogGadget {
public:
    /// @param barId  id of the proportional gadget beside the list
    FileRows(FileListing& listing, unsigned short barId) : listing_(listing), barId_(barId) {}

    void Show_New_Listing();   ///< Of another directory: nothing is selected.
    void Show_Listing();       ///< The rows have changed.
    void Show_From(long row);  ///< The bar was moved.
    void Show_Keyboard(bool hasKeyboard);

    /// Keys that move the selection, and characters, which look for a name. False for others.
    bool Key(unsigned code, unsigned long character);

    void Select_Row(long row);  ///< And brings it into view. -1 is none.
    long Selected_Row() const { return selected_ < 0 ? -1 : listing_.Row_Of_Entry(selected_); }

    /// Whether the report was that of a double click. Asked once.
    bool Take_Opening() { return std::exchange(isOpening_, false); }

private:
    struct Columns {
        long sizeLeft, dateLeft, right;
    };
    struct Area {
        long left, top, right, bottom, rowHeight;  ///< of the rows; right and bottom are outside

        long Whole_Rows() const { return std::max((bottom - top) / rowHeight, 1L); }
    };

    Area Rows_Area() const;
    Columns Columns_Of(ZVDrawInfo const* draw) const;
    FileColumn Column_At(long x) const;
    long Row_At(long y) const;  ///< Also beyond both ends of the list.
    long Last_Top() const;
    std::string Message() const;

    void Draw_All() override { Show_Listing(); }
    void Take_Event(ZVCustomEvent* event) override;
    void Draw();
    void Draw_Head(ZVDrawInfo* draw, Area const& area) const;
    void Draw_Rows(ZVDrawInfo* draw, Area const& area) const;
    void Draw_Row(ZVDrawInfo* draw, Area const& area, Columns const& columns, long row) const;
    void Redraw_Rows(long first, long second);
    void Update_Bar();
    void Set_Top(long top);
    bool Find_Typed(unsigned long character);

    void Press(ZVCustomEvent* event);
    void Follow(ZVCustomEvent* event);
    void Release(ZVCustomEvent* event);

    FileListing& listing_;
    unsigned short const barId_;
    long top_ = 0;        ///< first row in view
    long selected_ = -1;  ///< an entry of the listing
    bool hasKeyboard_ = false;
    bool isPressedTwice_ = false, isOpening_ = false;
    bool isHeadPressed_ = false;
    std::string typed_;
    uint32_t typedAt_ = 0;
};
