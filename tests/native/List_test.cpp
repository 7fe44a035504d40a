// Lists: rows, frame and bar as they are drawn, selecting and scrolling by mouse and by call.
#include "NativeItems.h"

#include <climits>

namespace {

class Lists : public NativeItems {
protected:
    static constexpr int rows = 6, right = left + 120, bottom = top + 10 * rows;  // 105 wide are the rows
    static constexpr uint32_t face = 0x90A0B0, marked = 0xE0C040;

    void Show_List(std::string const& entries, int state = 0)
    {
        SetStylePenZV(ZV_PEN_FACE, face);
        SetStylePenZV(ZV_PEN_MARKED, marked);
        item = AddGadgetZV(5, 0, 0, ZV_GAD_LIST, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_ENTRIES_CSV,
                           entries.c_str(), ZV_ITEM_WIDTH, right - left, ZV_ITEM_ROWS, rows);
        item->state = state;
        Show();
        ASSERT_TRUE(list = List_Of(*item));
    }
    void Show_Rows(int count, int state = 0)
    {
        std::string text = "aa";
        while (--count > 0)
            text += ",aa";
        Show_List(text, state);
    }
    void Track(int y) const { list->Track(palette->window->left + left, palette->window->top + y); }
    void Finish() const
    {
        Hold_Mouse(nullptr);
        list->Finish(0, 0);
    }
    /// The row of the view that is drawn as selected, or -1.
    int Marked_Row() const
    {
        for (int i = 0; i < rows; ++i)
            if (Is_Filled({left, top + 10 * i, left + 4, top + 10 * i + 10}, marked)) return i;
        return -1;
    }
    /// Blocks of ink in a row of the view.
    int Blocks(int row, uint32_t color = ink) const
    {
        int count = 0;
        for (int x = left + 4, y = top + 10 * row + 2; x + 4 <= right - 15; x += 6)
            count += Is_Filled({x, y, x + 4, y + 6}, color);
        return count;
    }

    ZVItem* item = nullptr;
    ListBox* list = nullptr;
};

}  // namespace

TEST_F(Lists, RowsFrameAndBarLieWhereTheItemIs)
{
    Show_Rows(20, 3);
    EXPECT_EQ(list->Bounds(), (HostRect{left, top, right, bottom}));
    EXPECT_TRUE(list->Is_In_Rows(left, top) && list->Is_In_Rows(right - 16, bottom - 1));
    EXPECT_FALSE(list->Is_In_Rows(right - 15, top) || list->Is_In_Rows(left, bottom));
    EXPECT_EQ(Marked_Row(), 2);
    EXPECT_EQ(Blocks(1), 2);
    EXPECT_EQ(Blocks(2, 0x000000), 2) << "black on the marking pen";
    HostRect const upper{left - 1, top - 1, right, top}, lower{left, bottom, right + 1, bottom + 1};
    EXPECT_TRUE(Is_Filled(upper, Pen_Color(ZV_PEN_DARK_EDGE)) &&
                Is_Filled(lower, Pen_Color(ZV_PEN_LIGHT_EDGE)));
    list->Set_Focus(true);
    EXPECT_TRUE(Is_Filled(upper, marked) && Is_Filled(lower, marked));
}

TEST_F(Lists, LongTextsEndWithAnEllipsisBehindAWholeCharacter)
{
    std::string wide;
    for (int i = 0; i < 40; ++i)
        wide += "\xC3\xA9";
    // 97 pixels hold 16 characters.
    Show_List(std::string(16, 'a') + "," + std::string(17, 'a') + "," + wide + "," + std::string(900, 'a') +
              ",a");
    for (int row = 0; row < rows; ++row)
        EXPECT_EQ(Blocks(row), row < 4 ? 16 : row == 4 ? 1 : 0) << row;
}

TEST_F(Lists, AHeldMouseSelectsAndTheReleaseReports)
{
    Show_Rows(3, 1);
    list->Press(left + 5, top + 15);
    EXPECT_EQ(Marked_Row(), 1);
    Track(top + 5);
    EXPECT_EQ(Marked_Row(), 0);
    Track(top + 55);
    EXPECT_EQ(Marked_Row(), 2) << "from the rows to below the last one";
    EXPECT_EQ(item->state, 1);
    EXPECT_EQ(Log(), "");
    Finish();
    EXPECT_EQ(Log(), "E5.32");
    EXPECT_EQ(item->state, 3);
    list->Press(left + 5, top + 45);
    EXPECT_EQ(Marked_Row(), 2);
    Track(top + 5);
    EXPECT_EQ(Marked_Row(), 0) << "from below to the rows";

    ModifyItemZV(item, ZV_ITEM_ENTRIES_CSV, "");
    list->Press(left + 5, top + 5);
    Track(bottom + 50);
    Finish();
    EXPECT_EQ(item->state, 0) << "there is nothing to select";
}

TEST_F(Lists, TheMouseBeyondAnEdgeScrollsByItsDistanceAndInStepWithTheClock)
{
    struct Tick {
        uint32_t at;
        int y, selected;
    };
    Show_Rows(40);
    list->Press(left + 5, top + 35);
    for (auto const& [at, y, selected] : {Tick{0, bottom + 4, 6},
                                          {1, bottom + 9, 6},
                                          {3, bottom + 4, 7},
                                          {6, bottom + 24, 10},
                                          {9, bottom - 5, 10},
                                          {12, bottom + 9999, 39},
                                          {13, top - 1, 34},
                                          {15, top - 1, 33},
                                          {18, top - 12, 31},
                                          {21, top - 9999, 0},
                                          {24, top + 25, 2}}) {
        ticks = 1000 + at;
        Track(y);
        EXPECT_EQ(list->Selected_Row(), selected) << "at tick " << at;
    }
    EXPECT_EQ(Marked_Row(), 2);
}

TEST_F(Lists, TheBarScrollsAndReportsNothing)
{
    Show_Rows(20, 1);
    list->Press(right - 8, bottom - 3);
    ASSERT_TRUE(Mouse_Holder() && Mouse_Holder() != list);
    EXPECT_EQ(Marked_Row(), -1) << "the selected row is out of view";
    Mouse_Holder()->Finish(0, 0);
    EXPECT_EQ(Log(), "");
    EXPECT_TRUE(list->Scroll(-1) && !list->Scroll(INT_MIN) && list->Scroll(INT_MAX) && !list->Scroll(1));
}

TEST_F(Lists, ARowIsSelectedWithAsLittleScrollingAsItTakes)
{
    Show_Rows(20);
    for (auto const& [row, place] : {std::pair(4, 4), {10, 5}, {7, 2}, {2, 0}, {-1, -1}, {20, -1}, {19, 5}}) {
        list->Select_Row(row);
        EXPECT_EQ(Marked_Row(), place) << row;
    }
    SetGadgetStateZV(item, 12);
    EXPECT_EQ(list->Selected_Row(), 11);
    EXPECT_EQ(Marked_Row(), 0);
    ModifyItemZV(item, ZV_ITEM_ENTRIES_CSV, "a,b");
    EXPECT_EQ(list->Row_Count(), 2);
    EXPECT_EQ(list->Selected_Row(), -1);
    EXPECT_EQ(Blocks(1) * 10 + Blocks(2), 10);
}

TEST_F(Lists, ADisabledListIsDimAndAHiddenOneLeavesNothing)
{
    Show_Rows(20, 3);
    ItemEnabledZV(item, 0);
    EXPECT_EQ(Blocks(0, Dimmed_Ink(Pen_Color(ZV_PEN_TEXT), Pen_Color(ZV_PEN_FACE, true))), 2);
    list->Press(left + 5, top + 5);
    list->Press(right - 8, bottom - 3);
    EXPECT_EQ(Mouse_Holder(), nullptr);
    ItemEnabledZV(item, 1);
    EXPECT_EQ(Marked_Row(), 2);
    ZVEnv->focusedListItem = item;
    list->Press(left + 5, top + 5);
    ItemVisibleZV(item, 0);
    EXPECT_FALSE(item->native || ZVEnv->focusedListItem || Mouse_Holder());
    EXPECT_TRUE(Is_Filled({0, 0, right + 12, bottom + 12}, paper));
}

TEST_F(Lists, WhoeverIsToldOfTheReleaseMayCloseThePalette)
{
    Show_Rows(20);
    onCall = [this](std::string const&) { ClosePaletteZV(palette); };
    list->Press(left + 5, top + 5);
    Finish();
    EXPECT_EQ(FindPaletteZV(palette), nullptr);
}
