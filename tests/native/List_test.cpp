// Lists: rows, frame and bar as they are drawn, selecting and scrolling by mouse and by call.
#include "NativeItems.h"

#include <climits>

namespace {

class Lists : public NativeItems {
protected:
    static constexpr int left = 24, top = 24, width = 120, rows = 6;  // 105 pixels of it are for the rows
    static constexpr int right = left + width, bottom = top + rows * lineHeight;
    static constexpr uint32_t face = 0x90A0B0, marked = 0xE0C040;

    /// A list with the id 5 at that place.
    void Show_List(std::string const& entries, long state = 0)
    {
        SetStylePenZV(ZV_PEN_FACE, face);
        SetStylePenZV(ZV_PEN_MARKED, marked);
        InitGroupZV();
        item = AddGadgetZV(5, 0, 0, ZV_GAD_LIST, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_ENTRIES_CSV,
                           entries.c_str(), ZV_ITEM_WIDTH, width, ZV_ITEM_ROWS, rows);
        item->state = static_cast<int32_t>(state);
        EndGroupZV(1, 0, 0, "", nullptr);
        Show();
        list = List_Of(*item);
        ASSERT_TRUE(list);
    }

    /// "aa,aa,aa": that many rows of two blocks.
    static std::string Rows(int count)
    {
        std::string text = "aa";
        for (int i = 1; i < count; ++i)
            text += ",aa";
        return text;
    }

    void Track(int y) const { list->Track(palette->window->left + left + 5, palette->window->top + y); }
    void Finish() const
    {
        Hold_Mouse(nullptr);
        list->Finish(0, 0);
    }

    /// The rows in view that are drawn as selected, "2" or "".
    std::string Marked_Rows() const
    {
        std::string text;
        for (int i = 0; i < rows; ++i) {
            int const y = top + i * lineHeight;
            if (Is_Filled({left, y, left + 4, y + lineHeight}, marked)) text += std::to_string(i);
        }
        return text;
    }

    /// Blocks of ink in a row that is in view.
    int Blocks(int row, uint32_t color = ink) const
    {
        int count = 0, y = top + row * lineHeight + 2;
        for (int x = left + 4; x + 4 <= right - 15; x += charWidth)
            count += Is_Filled({x, y, x + 4, y + 6}, color);
        return count;
    }

    ZVItem* item = nullptr;
    ListBox* list = nullptr;
};

}  // namespace

TEST_F(Lists, RowsFrameAndBarLieWhereTheItemIs)
{
    Show_List(Rows(20), 3);
    HostRect const bounds{left, top, right, bottom};
    EXPECT_EQ(list->Bounds(), bounds);
    EXPECT_TRUE(list->Is_In_Rows(left, top) && list->Is_In_Rows(right - 16, bottom - 1));
    EXPECT_FALSE(list->Is_In_Rows(right - 15, top) || list->Is_In_Rows(left, bottom));
    EXPECT_EQ(list->Row_Count(), 20);
    EXPECT_EQ(Marked_Rows(), "2");
    EXPECT_EQ(Blocks(1), 2);
    EXPECT_EQ(Blocks(2, 0x000000), 2) << "black on the marking pen";

    uint32_t const dark = static_cast<uint32_t>(GetColorZV(ZV_PEN_DARK_EDGE));
    uint32_t const light = static_cast<uint32_t>(GetColorZV(ZV_PEN_LIGHT_EDGE));
    EXPECT_TRUE(Is_Filled({left - 1, top - 1, right, top}, dark) &&
                Is_Filled({left - 1, top, left, bottom}, dark));
    EXPECT_TRUE(Is_Filled({left, bottom, right + 1, bottom + 1}, light) &&
                Is_Filled({right, top, right + 1, bottom}, light));
    EXPECT_TRUE(Is_Filled({left - 2, top - 2, right + 2, top - 1}, paper));
    list->Set_Focus(true);
    EXPECT_TRUE(Is_Filled({left - 1, top - 1, right + 1, top}, marked));
    list->Set_Focus(false);
    EXPECT_TRUE(Is_Filled({left - 1, top - 1, right, top}, dark));
}

TEST_F(Lists, LongTextsEndWithAnEllipsisBehindAWholeCharacter)
{
    std::string wide;
    for (int i = 0; i < 40; ++i)
        wide += "\xC3\xA9";
    Show_List(std::string(16, 'a') + "," + std::string(17, 'a') + "," + wide + "," + std::string(900, 'a') +
              ",a");
    EXPECT_EQ(Blocks(0), 16) << "97 pixels hold 16 characters";
    EXPECT_EQ(Blocks(1), 16);
    EXPECT_EQ(Blocks(2), 16);
    EXPECT_EQ(Blocks(3), 16);
    EXPECT_EQ(Blocks(4), 1);
    EXPECT_EQ(Blocks(5), 0);
}

TEST_F(Lists, AHeldMouseSelectsAndTheReleaseReports)
{
    Show_List(Rows(3), 1);
    list->Press(left + 5, top + 15);
    EXPECT_EQ(Mouse_Holder(), list);
    EXPECT_EQ(Marked_Rows(), "1");
    Track(top + 5);
    EXPECT_EQ(Marked_Rows(), "0");
    Track(top + 55);
    EXPECT_EQ(Marked_Rows(), "2") << "from the rows to below the last one";
    EXPECT_EQ(item->state, 1);
    EXPECT_EQ(Log(), "");
    Finish();
    EXPECT_EQ(Log(), "E5.32");
    EXPECT_EQ(item->state, 3);

    list->Press(left + 5, top + 45);
    EXPECT_EQ(Marked_Rows(), "2");
    Track(top + 5);
    EXPECT_EQ(Marked_Rows(), "0") << "from below to the rows";
    Finish();
    EXPECT_EQ(item->state, 1);

    ModifyItemZV(item, ZV_ITEM_ENTRIES_CSV, "");
    Log();
    list->Press(left + 5, top + 5);
    Track(bottom + 50);
    Finish();
    EXPECT_EQ(Log(), "E5.32");
    EXPECT_EQ(item->state, 0) << "there is nothing to select";
}

TEST_F(Lists, TheMouseBeyondAnEdgeScrollsByItsDistanceAndInStepWithTheClock)
{
    Show_List(Rows(40));
    list->Press(left + 5, top + 35);
    struct Step {
        uint32_t tick;
        int y, selected;
    };
    for (auto const& [tick, y, selected] : {Step{0, bottom + 4, 6},
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
        ticks = 1000 + tick;
        Track(y);
        EXPECT_EQ(list->Selected_Row(), selected) << "at tick " << tick;
    }
    EXPECT_EQ(Marked_Rows(), "2");
}

TEST_F(Lists, TheBarScrollsAndReportsNothing)
{
    Show_List(Rows(20), 1);
    list->Press(right - 8, bottom - 3);
    ASSERT_TRUE(Mouse_Holder());
    EXPECT_NE(Mouse_Holder(), list);
    EXPECT_EQ(Marked_Rows(), "") << "the selected row is out of view";
    Mouse_Holder()->Finish(0, 0);
    EXPECT_EQ(list->Selected_Row(), 0);
    EXPECT_EQ(item->state, 1);
    EXPECT_EQ(Log(), "");
    EXPECT_TRUE(list->Scroll(-1));
    EXPECT_EQ(Marked_Rows(), "0");
    EXPECT_FALSE(list->Scroll(INT_MIN));
    EXPECT_TRUE(list->Scroll(INT_MAX));
    EXPECT_FALSE(list->Scroll(1));
    list->Select_Row(19);
    EXPECT_EQ(Marked_Rows(), "5");
}

TEST_F(Lists, ARowIsSelectedWithAsLittleScrollingAsItTakes)
{
    Show_List(Rows(20));
    for (auto const& [row, place] : {std::pair(4, "4"), {10, "5"}, {7, "2"}, {2, "0"}, {-1, ""}, {20, ""}}) {
        list->Select_Row(row);
        EXPECT_EQ(Marked_Rows(), place) << row;
    }
    EXPECT_EQ(list->Selected_Row(), -1);
    SetGadgetStateZV(item, 12);
    EXPECT_EQ(list->Selected_Row(), 11);
    EXPECT_EQ(Marked_Rows(), "5");
    ModifyItemZV(item, ZV_ITEM_ENTRIES_CSV, "a,b");
    EXPECT_EQ(list->Row_Count(), 2);
    EXPECT_EQ(list->Selected_Row(), -1);
    EXPECT_EQ(Blocks(1), 1);
    EXPECT_EQ(Blocks(2), 0);
    SetGadgetStateZV(item, 2);
    EXPECT_EQ(Marked_Rows(), "1");
}

TEST_F(Lists, ADisabledListIsDimAndAHiddenOneLeavesNothing)
{
    Show_List(Rows(20), 3);
    ItemEnabledZV(item, 0);
    EXPECT_EQ(Blocks(0, static_cast<uint32_t>(DisableColorZV(ZV_PEN_TEXT)) & 0xFFFFFF), 2);
    EXPECT_EQ(Marked_Rows(), "");
    list->Press(left + 5, top + 5);
    list->Press(right - 8, bottom - 3);
    EXPECT_EQ(Mouse_Holder(), nullptr);
    ItemEnabledZV(item, 1);
    EXPECT_EQ(Marked_Rows(), "2");

    ZVEnv->focusedListItem = item;
    list->Press(left + 5, top + 5);
    ItemVisibleZV(item, 0);
    EXPECT_EQ(item->native, nullptr);
    EXPECT_EQ(ZVEnv->focusedListItem, nullptr);
    EXPECT_EQ(Mouse_Holder(), nullptr);
    EXPECT_TRUE(Is_Filled({0, 0, right + 12, bottom + 12}, paper));
    ItemVisibleZV(item, 1);
    EXPECT_EQ(Marked_Rows(), "2");
}

TEST_F(Lists, WhoeverIsToldOfTheReleaseMayCloseThePalette)
{
    Show_List(Rows(20));
    onCall = [this](std::string const& entry) {
        if (entry == "E5.32") ClosePaletteZV(palette);
    };
    list->Press(left + 5, top + 5);
    Finish();
    EXPECT_EQ(Log(), "E5.32");
    EXPECT_EQ(FindPaletteZV(palette), nullptr);
}
