// Places that can be told by hand.
#include "interface/InterfaceTest.h"

namespace {

struct HalfCase {
    ZVPosition half;
    long expected;  ///< reference 100 wide at 50, parent 400 wide at 10, own width 31, gap 7
};

constexpr HalfCase halves[] = {{ZV_POS_DEFAULT, 50},      {ZV_POS_BEFORE, 12},      {ZV_POS_AFTER, 157},
                               {ZV_POS_CENTER, 194},      {ZV_POS_ALIGN_START, 50}, {ZV_POS_ALIGN_CENTER, 84},
                               {ZV_POS_ALIGN_END, 119},   {ZV_POS_ON_START, 35},    {ZV_POS_ON_END, 135},
                               {ZV_POS_PARENT_START, 10}, {ZV_POS_PARENT_END, 379}};

ZVItem* Add(unsigned short id, unsigned short position, short reference, long width = 50, long height = 10)
{
    return AddGadgetZV(id, position, reference, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, width,
                       ZV_ITEM_HEIGHT, height);
}

using Placement = InterfaceTest;

}  // namespace

TEST(PositionCodes, BothHalvesFollowTheSameTable)
{
    ZVRectT<long> const own{0, 0, 31, 31}, reference{50, 50, 100, 100}, parent{10, 10, 400, 400};
    for (HalfCase const& column : halves)
        for (HalfCase const& row : halves) {
            long x = 0, y = 0;
            GetElementPlacement(ZV_Position(column.half, row.half), &own, &reference, &parent, 7, &x, &y);
            EXPECT_EQ(x, column.expected) << column.half;
            EXPECT_EQ(y, row.expected) << row.half;
        }
}

TEST_F(Placement, TheFirstItemOfAGroupHasNothingToStandBeside)
{
    InitPaletteZV();
    InitGroupZV();
    EXPECT_EQ(Add(1, 0x0A02, 0)->position, 0x0A00);
    EXPECT_EQ(Add(2, 0x0A02, -1)->position, 0x0A02);
    EXPECT_EQ(ZVEnv->currentGroup->items.tailPred->id, 2U);
}

TEST_F(Placement, NegativeReferencesCountBackPastLabels)
{
    ZVPalette* const palette = InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    Add(5, 0, 0);
    AddGadgetZV(6, 2, -1, ZV_GAD_STRING, ZV_SIZE_SMALL, "label", nullptr);
    EXPECT_EQ(GetItemRefID(group, -1), 6);
    EXPECT_EQ(GetItemRefID(group, -2), 5);
    EXPECT_EQ(GetItemRefID(group, -3), 0);
    EXPECT_EQ(GetItemRefID(group, 77), 77);
    EndGroupZV(11, 0, 0, "", nullptr);
    InitGroupZV();
    EXPECT_EQ(GetGroupRefID(palette, -1), 11);
    EXPECT_EQ(GetGroupRefID(palette, -3), 0);
}

TEST_F(Placement, AReferenceWithoutAPlaceLeavesWhatFollowsUnplaced)
{
    InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    Add(1, ZV_POS_CENTER, 0);
    ZVItem const* const beside = Add(2, ZV_POS_AFTER, 1);
    EXPECT_EQ(SetUp_Gadgets(group), 0);
    EXPECT_EQ(beside->x, INT32_MIN);
}

TEST_F(Placement, FlexGapsOnBothAxesAreRefused)
{
    InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    Add(1, 0, 0);
    for (unsigned short position : std::initializer_list<unsigned short>{0x0002, 0x0200})
        AddGadgetZV(2, position, 1, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_GAP_NORMAL_FLEX, 0);
    EXPECT_EQ(SetUp_Gadgets(group), 1);
    EXPECT_EQ(Build_Gadgets(group), 0);
}

TEST_F(Placement, FlexGapsSpreadARowOverTheGroup)
{
    InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    Add(1, 0, 0);
    for (unsigned short id : std::initializer_list<unsigned short>{2, 3})
        AddGadgetZV(id, 2, -1, ZV_GAD_CUSTOM, ZV_SIZE_CUSTOM, "", ZV_ITEM_WIDTH, 50, ZV_GAP_FIXED_FLEX, 4);
    SetUp_Gadgets(group);
    EXPECT_EQ(group->naturalWidth, 158);
    group->innerWidth = 259;
    group->innerHeight = group->naturalHeight;
    ASSERT_EQ(Build_Gadgets(group), 1);
    EXPECT_EQ(FindItemZV(2)->x, 104);
    EXPECT_EQ(FindItemZV(3)->x, 208);
}

TEST_F(Placement, LabelsStandBesideTheirGadgetOneBeyondTheOther)
{
    InitPaletteZV();
    ZVGroup* const group = InitGroupZV();
    ZVItem* const field = AddGadgetZV(1, 0, 0, ZV_GAD_STRING, ZV_SIZE_CUSTOM, "own label", ZV_ITEM_WIDTH, 60);
    ZVItem* const own = field->beforeLink;
    ASSERT_TRUE(own) << "the label of the first gadget of a group too";
    ZVItem* const second = AddTextZV(ZV_LABEL_ID, 0x0501, 1, "second", nullptr);
    ZVItem* const told = AddTextZV(ZV_LABEL_ID, 0x0404, 1, "on top", nullptr);
    ZVItem* const right = AddTextZV(ZV_LABEL_ID, 0x0502, 1, "right", nullptr);
    ZVItem* const next = Add(2, 2, 1);
    EXPECT_EQ(own->beforeLink, second);
    EXPECT_EQ(told->position, 0x0401) << "a label never lies on its gadget";
    ASSERT_EQ(SetUp_Gadgets(group), 1);
    EXPECT_EQ(told->x, 0);
    EXPECT_EQ(second->x, told->width + 2);
    EXPECT_EQ(own->x, second->x + second->width + 2);
    EXPECT_EQ(field->x, own->x + own->width + 2);
    EXPECT_EQ(right->x, field->x + 62);
    EXPECT_EQ(next->x, right->x + right->width + 2) << "past the label on the right";
}

TEST_F(Placement, GroupsWithoutIdsStandBesideTheOneBefore)
{
    ZVPalette const* const palette = InitPaletteZV();
    for (int i = 0; i < 3; ++i) {
        InitGroupZV();
        Add(0, 0, 0, 40);
        EndGroupZV(0, 0x0402, -1, "", ZV_MARGIN_NONE, 0);
    }
    DisplayPaletteZV(nullptr);
    int32_t const step = 40 + ZVEnv->style->groupGap;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(reinterpret_cast<ZVGroup*>(List_Entry(&palette->groups, i))->x, i * step);
}

TEST_F(Placement, ConformedGroupsAgree)
{
    InitPaletteZV();
    for (unsigned short id : std::initializer_list<unsigned short>{1, 2, 3}) {
        InitGroupZV();
        Add(id, 0, 0, 40L * id);
        EndGroupZV(static_cast<short>(id), 0x0402, -1, "", ZV_MARGIN_NONE, 0);
    }
    ConformGroupWidthZV(1, 1, 99, 2);
    auto const forced = [](long position) {
        return reinterpret_cast<ZVGroup*>(List_Entry(&ZVEnv->currentPalette->groups, position))->forcedWidth;
    };
    EXPECT_EQ(forced(0), 80);
    EXPECT_EQ(forced(1), 80);
    EXPECT_EQ(forced(2), -1);
    ConformGroupWidthZV(2, 3, 1, 2);
    EXPECT_EQ(forced(2), 80 + ZVEnv->style->groupGap + 80);
    ConformGroupWidthZV(2, 77, 1, 2);
}
