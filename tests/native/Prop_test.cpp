// Proportional gadgets: their parts, the thumb, and what mouse and wheel do to them.
#include "../FailingHeap.h"
#include "ControlTest.h"

namespace {

class Props : public ControlTest {
protected:
    /// A gadget of 200 by 16, or 16 by 200: the track is 170 long.
    ZVItem* Show_Prop(ZVGadgetType type, std::vector<TagItem> tags = {})
    {
        isVertical_ = type == ZV_GAD_VPROP;
        return isVertical_ ? Show_One(type, 16, 200, std::move(tags))
                           : Show_One(type, 200, 16, std::move(tags));
    }

    void Press_At(ZVItem const* item, long along)
    {
        Press(item, isVertical_ ? 8 : along, isVertical_ ? along : 8);
    }
    void Move_To(ZVItem const* item, long along)
    {
        Move(item, isVertical_ ? 8 : along, isVertical_ ? along : 8);
    }

    /// First pixel and size of the thumb, as it is drawn.
    std::pair<long, long> Thumb() const
    {
        Picture const picture(1);
        long const length = isVertical_ ? picture.height : picture.width;
        auto const at = [&](long place) { return isVertical_ ? picture.At(8, place) : picture.At(place, 8); };
        unsigned const face = Color(ZV_PEN_FACE) & 0xFF, track = face * 100 / 160 * 0x010101;
        EXPECT_EQ(Color(ZV_PEN_FACE), face * 0x010101) << "a grey";
        long from = 1, to = length - 2;
        while (from < length && at(from) == track)
            ++from;
        while (to > 0 && at(to) == track)
            --to;
        // The outermost pixels are the track's frame, or the thumb's.
        if (from == 1) from = 0;
        if (to == length - 2) to = length - 1;
        return {from, to - from + 1};
    }

    ZVItem* First() const { return isVertical_ ? Item(1)->aboveLink : Item(1)->beforeLink; }
    ZVItem* Last() const { return isVertical_ ? Item(1)->belowLink : Item(1)->afterLink; }

    bool isVertical_ = false;
};

constexpr ZVGadgetType bothTypes[] = {ZV_GAD_HPROP, ZV_GAD_VPROP};

}  // namespace

TEST_F(Props, AreThreePartsThatActAsOne)
{
    for (ZVGadgetType const type : bothTypes) {
        ZVItem const* const track = Show_Prop(type);
        ZVItem const *const first = First(), *const last = Last();
        auto const place = [&](ZVItem const* item) { return isVertical_ ? item->y : item->x; };
        EXPECT_EQ(place(first), 0);
        EXPECT_EQ(place(track), 15) << "the borders overlap";
        EXPECT_EQ(isVertical_ ? track->height : track->width, 170);
        EXPECT_EQ(place(last), 184);
        EXPECT_EQ(first->node.id, 32767U);
        EXPECT_EQ(last->node.id, 32766U);
        EXPECT_EQ(GetItemRefID(track->group, -1), 1) << "arrows do not count";
        ItemEnabledZV(1, 0);
        ItemVisibleZV(1, 0);
        for (ZVItem const* part : {first, track, last})
            EXPECT_EQ(part->flags & 3, 3U);
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Props, StandAsAWholeWhereTheirPositionTells)
{
    struct {
        unsigned short position;
        int first;
    } const rows[] = {{ZV_Position(ZV_POS_PARENT_END, ZV_POS_AFTER), 200},
                      {ZV_Position(ZV_POS_CENTER, ZV_POS_AFTER), 100},
                      {ZV_Position(ZV_POS_ALIGN_END, ZV_POS_AFTER), 200},
                      {ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), 402},
                      {ZV_Position(ZV_POS_BEFORE, ZV_POS_ALIGN_START), 0}};
    for (auto const& row : rows) {
        Show([&] {
            InitGroupZV();
            AddGadgetZV(2, 0, 0, ZV_GAD_BUTTON, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 400, ZV_ITEM_HEIGHT, 20,
                        0);
            AddGadgetZV(1, row.position, 2, ZV_GAD_HPROP, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 200, 0);
            AddGadgetZV(3, ZV_Position(ZV_POS_DEFAULT, ZV_POS_AFTER), 1, ZV_GAD_BUTTON, ZV_SIZE_TINY, "", 0,
                        0);
            EndGroupZV(1, 0, 0, "", nullptr);
        });
        EXPECT_EQ(First()->x, row.first) << row.position;
        EXPECT_EQ(Item(1)->x, row.first + 15) << row.position;
        EXPECT_EQ(Last()->x, row.first + 184) << row.position;
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Props, ThumbShowsThePartInView)
{
    struct {
        char const* why;
        int min, max, page, state;
        std::pair<long, long> thumb;
    } const rows[] = {
        {"not smaller than the gadget is broad", 0, 100, 1, 0, {0, 16}},
        {"half of the range", 0, 100, 50, 25, {42, 85}},
        {"the end", 0, 100, 50, 50, {85, 85}},
        {"beyond the last position", 0, 100, 50, 100, {85, 85}},
        {"no range", 7, 7, 1, 7, {0, 170}},
        {"a view larger than the range", 0, 100, 200, 0, {0, 170}},
        {"a view that reaches beyond the end", 0, 100, 200, 100, {57, 113}},
        {"limits below zero", -100, 100, 100, 0, {85, 85}},
        {"limits of all numbers", INT32_MIN, INT32_MAX, 1, 0, {77, 16}},
    };
    for (ZVGadgetType const type : bothTypes) {
        Show_Prop(type);
        for (auto const& row : rows) {
            ModifyItemZV(1, ZV_ITEM_MIN, row.min, ZV_ITEM_MAX, row.max, ZV_ITEM_PROP_PAGE, row.page, 0);
            SetGadgetStateZV(1, row.state);
            EXPECT_EQ(Thumb(), row.thumb) << row.why << " of type " << +type;
            Picture const partial(1);
            Send(Item(1), ZV_CUSTOM_DRAW);
            EXPECT_EQ(partial, Picture(1)) << "drawing what has changed is drawing all: " << row.why;
        }
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Props, ThumbFollowsTheMouse)
{
    struct {
        int page, state, grab, to, stateAfter;
        Strings reports;
    } const rows[] = {
        {50, 0, 40, 82, 24, {"press 1", "change 1", "release 1"}},
        {50, 25, 50, 51, 25, {"press 1", "release 1"}},
        {50, 0, 40, 900, 50, {"press 1", "change 1", "release 1"}},
        {50, 25, 50, -900, 0, {"press 1", "change 1", "release 1"}},
        {50, 90, 100, 103, 90, {"press 1", "release 1"}},
        {200, 50, 100, -900, 0, {"press 1", "change 1", "release 1"}},
    };
    for (ZVGadgetType const type : bothTypes) {
        ZVItem const* const track = Show_Prop(type);
        for (auto const& row : rows) {
            ModifyItemZV(1, ZV_ITEM_PROP_PAGE, row.page, 0);
            SetGadgetStateZV(1, row.state);
            Events();
            Press_At(track, row.grab);
            Move_To(track, row.to);
            Release();
            EXPECT_EQ(track->state, row.stateAfter) << row.state << " to " << row.to;
            EXPECT_EQ(Events(), row.reports) << row.state << " to " << row.to;
        }
        ModifyItemZV(1, ZV_ITEM_PROP_PAGE, 10, 0);
        SetGadgetStateZV(1, 0);
        Press_At(track, 5);
        Move_To(track, 35);
        EXPECT_EQ(track->state, 17) << "90 * 30 / 153";
        Move_To(track, 33);
        EXPECT_EQ(track->state, 16) << "back to where the thumb was drawn";
        Release();
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Props, APressBesideTheThumbPagesUntilItIsThere)
{
    ZVItem const* const track = Show_Prop(ZV_GAD_VPROP, {{ZV_ITEM_PROP_PAGE, 11}});
    Press_At(track, 160);
    EXPECT_EQ(track->state, 10);
    Ticks(3);
    EXPECT_EQ(track->state, 10) << "not yet";
    Ticks(2);
    EXPECT_EQ(track->state, 30);
    Ticks(30);
    EXPECT_EQ(track->state, 89) << "no farther than the last position";
    Release();
    Press_At(track, 100);
    Ticks(30);
    EXPECT_LE(Thumb().first, 100);
    EXPECT_GE(Thumb().first + Thumb().second, 100) << "it stops under the mouse";
    Release();

    ModifyItemZV(1, ZV_ITEM_PROP_PAGE, 1, 0);
    SetGadgetStateZV(1, 5);
    Press_At(track, 160);
    EXPECT_EQ(track->state, 6) << "a view of one line";
    Release();
}

TEST_F(Props, ArrowsMoveByAStepWhileHeld)
{
    for (ZVGadgetType const type : bothTypes) {
        ZVItem const* const track = Show_Prop(type, {{ZV_ITEM_PROP_PAGE, 10}, {ZV_ITEM_PROP_STEP, 4}});
        SetGadgetStateZV(1, 50);
        Events();
        Press_At(Last(), 8);
        EXPECT_EQ(track->state, 54);
        Ticks(5);
        EXPECT_EQ(track->state, 62);
        Move(Last(), 300, 300);
        Ticks(5);
        EXPECT_EQ(track->state, 62) << "not outside";
        Move_To(Last(), 8);
        Ticks(20);
        EXPECT_EQ(track->state, 90) << "up to the last position";
        Release();
        EXPECT_EQ(events.front(), "press 1");
        EXPECT_EQ(events.back(), "release 1");
        Press_At(First(), 8);
        EXPECT_EQ(track->state, 86);
        Release();
        ItemEnabledZV(1, 0);
        Press_At(First(), 8);
        Release();
        EXPECT_EQ(track->state, 86);
        ClosePaletteZV(PaletteId);
    }
}

TEST_F(Props, WheelStopsAtTheEnds)
{
    ZVItem const* const track = Show_Prop(ZV_GAD_VPROP, {{ZV_ITEM_PROP_PAGE, 95}});
    Move(track, 8, 80);
    for (auto const& [notches, state] :
         std::initializer_list<std::pair<double, int>>{{-1, 3}, {-1, 5}, {0.34, 4}, {0.34, 3}, {9, 0}}) {
        HeadlessWheelZV(0, notches);
        HeadlessRunZV(0);
        EXPECT_EQ(track->state, state) << notches;
    }
    EXPECT_EQ(Events(), Strings(5, "change 1"));
}

TEST_F(Props, AMarkerIsDragged)
{
    ZVItem const* const track = Show_Prop(ZV_GAD_HPROP, {{ZV_ITEM_PROP_TRACK, 1}, {ZV_ITEM_EXTRA, 50}});
    constexpr uint32_t red = 0xFF0000;
    EXPECT_EQ(Picture(1).At(85, 8), red);
    EXPECT_EQ(Picture(1).At(86, 8), red);
    EXPECT_NE(Picture(1).At(87, 8), red);
    Press_At(track, 82);
    EXPECT_TRUE(track->MarkDrag);
    Move_To(track, 127);
    EXPECT_EQ(track->extra, 75U);
    EXPECT_EQ(Picture(1).At(127, 8), red);
    EXPECT_NE(Picture(1).At(85, 8), red);
    Move_To(track, 900);
    EXPECT_EQ(track->extra, 99U);
    Release();
    EXPECT_EQ(track->state, 0);
    Press_At(track, 8);
    EXPECT_FALSE(track->MarkDrag) << "the thumb";
    Release();
}

TEST_F(Props, APaletteMayCloseWhileAnArrowIsPressed)
{
    for (char const* const when : {"press 1", "change 1"}) {
        Show_Prop(ZV_GAD_VPROP);
        AddGadgetDependencyZV(1, ZV_DEP_ALWAYS, 0, 0);
        onGadgetEvent = [&](ZVEvent const&) {
            if (events.back() == when) ClosePaletteZV(PaletteId);
        };
        Press_At(Last(), 8);
        Ticks(6);
        Release();
        EXPECT_FALSE(FindPaletteZV(PaletteId));
    }
}

TEST_F(Props, WithoutMemoryNothingIsMade)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    InitPaletteZV();
    InitGroupZV();
    List const& items = ZVEnv->currentGroup->items;
    TagItem tags[] = {
        {ZV_ITEM_CURSOR, 2}, {ZV_ITEM_WIDTH, 100}, {ZV_GAP_WIDE, 1}, {ZV_ITEM_PROP_PAGE, 5}, {}};
    long after = 0;
    for (ZVItem const* made = nullptr; !made; ++after) {
        SetError(0);
        {
            FailingHeap const heap(after);
            made = AddGadgetZV(1, 0, 0, ZV_GAD_HPROP, ZV_SIZE_CUSTOM, "label", tags);
        }
        if (made) break;
        EXPECT_TRUE(List_Empty(&items)) << after;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY) << after;
        ASSERT_LT(after, 60);
    }
    EXPECT_EQ(List_Entries(&items), 3);
    EXPECT_GE(after, 8);
    EndGroupZV(1, 0, 0, "", nullptr);
    EndPaletteZV(PaletteId, "", nullptr);
    DisplayPaletteZV(nullptr);
}
