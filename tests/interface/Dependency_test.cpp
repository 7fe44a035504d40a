// Gadgets wired to one another: conditions, actions, copied values, exclusion.
#include "interface/InterfaceTest.h"

namespace {

class Dependencies : public InterfaceTest {
protected:
    Dependencies()
    {
        InitPaletteZV();
        InitGroupZV();
    }

    static ZVItem* Add(unsigned short id, ZVGadgetType type = ZV_GAD_CHECK, TagItem* tags = nullptr)
    {
        return AddGadgetZV(id, 0x0402, -1, type, ZV_SIZE_CUSTOM, "", tags);
    }
    static int32_t State(unsigned short id) { return FindItemZV(id)->state; }
};

/// A gadget of each type with a value, in the order of the copy table.
ZVItem* Add_Source(ZVGadgetType type)
{
    ZVItem* const item = AddGadgetZV(0, 0, 0, type, ZV_SIZE_CUSTOM, "", ZV_ITEM_ENTRIES_CSV, "first,second");
    item->state = 2;
    item->realValue = 3.75;
    if (item->editText && type == ZV_GAD_STRING) SetTextGadgetStateZV(item->node.id, "words");
    return item;
}

/// All that a gadget keeps, as one text.
std::string Value_Of(ZVItem const& item)
{
    char text[100];
    std::snprintf(text, sizeof text, "%d %.2f %s", item.state, item.realValue,
                  item.type == ZV_GAD_STRING ? item.editText : "");
    return text;
}

}  // namespace

TEST_F(Dependencies, EachConditionIsTestedByItsRule)
{
    struct {
        ZVGadgetType type;
        double value;
        unsigned long condition, data;
        bool fires;
    } const rows[] = {
        {ZV_GAD_INTEGER, 5, ZV_DEP_ON, 0, true},
        {ZV_GAD_INTEGER, 0, ZV_DEP_ON, 0, false},
        {ZV_GAD_INTEGER, 0, ZV_DEP_OFF, 0, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_ENABLED, 0, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_DISABLED, 0, false},
        {ZV_GAD_INTEGER, 5, ZV_DEP_EQUAL, 5, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_NOT_EQUAL, 5, false},
        {ZV_GAD_INTEGER, 5, ZV_DEP_LESS, 6, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_GREATER, 5, false},
        {ZV_GAD_INTEGER, 5, ZV_DEP_LESS_EQUAL, 5, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_GREATER_EQUAL, 6, false},
        {ZV_GAD_INTEGER, -1, ZV_DEP_EQUAL, Tag_Word(-1), false},  // the data is unsigned
        {ZV_GAD_FLOAT, 2.5, ZV_DEP_EQUAL, Tag_Word("2.5"), true},
        {ZV_GAD_FLOAT, 2.5, ZV_DEP_GREATER, Tag_Word("2.6"), false},
        {ZV_GAD_FLOAT, 2.5, ZV_DEP_GREATER, 0, true},  // no text before: 0
        {ZV_GAD_INTEGER, 5, ZV_DEP_MOUSE_DOWN, 0, true},
        {ZV_GAD_INTEGER, 5, ZV_DEP_MOUSE_UP, 0, false},
        {ZV_GAD_INTEGER, 5, ZV_DEP_MOUSE_MOVE, 0, false},
        {ZV_GAD_INTEGER, 5, ZV_DEP_ALWAYS, 0, true},
        {ZV_GAD_INTEGER, 5, 999, 0, false},
    };
    ZVItem* const witness = Add(1);
    ZVEnv->modifiers = ZV_MOD_PRESS;
    for (auto const& row : rows) {
        ZVItem* const item = Add(2, row.type);
        SetGadgetStateZV(item, row.value);
        item->node.id = 3;
        AddGadgetDependencyZV(3, row.condition, row.data, ZV_DEP_SET_ON, 1);
        item->node.id = 4;
        witness->state = 0;
        Process_Dependencies(item);
        EXPECT_EQ(witness->state, row.fires) << row.condition << " " << row.data;
    }
    ZVEnv->modifiers = 0;
}

TEST_F(Dependencies, AConditionWithoutTextTakesTheValueBefore)
{
    ZVItem* const item = Add(2, ZV_GAD_FLOAT);
    Add(1);
    item->realValue = 3;
    AddGadgetDependencyZV(2, ZV_DEP_EQUAL, "4");
    AddGadgetDependencyZV(2, ZV_DEP_LESS, nullptr, ZV_DEP_SET_ON, 1);
    Process_Dependencies(item);
    EXPECT_EQ(State(1), 1) << "3 is less than the 4 of the first";
}

TEST_F(Dependencies, ActionsReachItemsAndGroupsOfThePalette)
{
    Add(1);
    Add(7)->flags |= ZV_ITEMF_DISABLED;
    ZVGroup* const group = ZVEnv->currentGroup;
    EndGroupZV(7, 0, 0, "", nullptr);
    AddGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_HIDE, 7, ZV_DEP_ENABLE, 7, ZV_DEP_HIDE_GROUP, 7,
                          ZV_DEP_SHOW, 99, ZV_DEP_HIDE_GROUP, 99);
    AddGadgetDependencyZV(1, ZV_DEP_OFF, 0, ZV_DEP_SHOW, 7, ZV_DEP_DISABLE, 7, ZV_DEP_SHOW_GROUP, 7);
    AddGadgetDependencyZV(1, ZV_DEP_ALWAYS, 0);
    SetGadgetStateZV(1UL, 1);
    EXPECT_EQ(FindItemZV(7)->flags & 3, 2U);
    EXPECT_TRUE(group->flags & ZV_GRPF_HIDDEN);
    SetGadgetStateZV(1UL, 0);
    EXPECT_EQ(FindItemZV(7)->flags & 3, 1U);
    EXPECT_FALSE(group->flags & ZV_GRPF_HIDDEN);
}

TEST_F(Dependencies, ChainsRunAndLoopsEnd)
{
    for (unsigned short id : std::initializer_list<unsigned short>{1, 2, 3})
        Add(id);
    AddGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_SET_ON, 2);
    AddGadgetDependencyZV(2, ZV_DEP_ON, 0, ZV_DEP_SET_ON, 3);
    AddGadgetDependencyZV(3, ZV_DEP_ON, 0, ZV_DEP_SET_ON, 1, ZV_DEP_SET_OFF, 3);
    SetGadgetStateZV(1UL, 1);
    EXPECT_EQ(State(2), 1);
    EXPECT_EQ(State(3), 1) << "what turns itself off stays";
}

TEST_F(Dependencies, AnActionMayClearTheDependenciesThatRun)
{
    static auto const clear = [](ZVCustomEvent* event) -> long {
        if (event->type == ZV_CUSTOM_DRAW_STATE) ClearGadgetDependenciesZV(1);
        return 1;
    };
    Add(1);
    Add(2, ZV_GAD_CUSTOM)->customFunc = clear;
    Add(3);
    AddGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_COPY_VALUE, 2, ZV_DEP_SET_ON, 3);
    EndGroupZV(1, 0, 0, "", nullptr);
    DisplayPaletteZV(nullptr);
    SetGadgetStateZV(1UL, 1);
    EXPECT_EQ(State(3), 1) << "the list lives until it has run";
    EXPECT_TRUE(List_Empty(&FindItemZV(1)->dependencies));
}

TEST_F(Dependencies, CopiedValuesBecomeWhatTheTargetKeeps)
{
    struct {
        ZVGadgetType target, source;
        char const* expected;
    } const rows[] = {
        {ZV_GAD_CUSTOM, ZV_GAD_FLOAT, "3 3.75 "},      {ZV_GAD_CUSTOM, ZV_GAD_INTEGER, "2 3.75 "},
        {ZV_GAD_FLOAT, ZV_GAD_FLOAT, "0 3.75 "},       {ZV_GAD_FLOAT, ZV_GAD_SLIDER, "0 2.00 "},
        {ZV_GAD_STRING, ZV_GAD_FLOAT, "0 0.00 3.75"},  {ZV_GAD_STRING, ZV_GAD_CYCLE, "0 0.00 second"},
        {ZV_GAD_STRING, ZV_GAD_LIST, "0 0.00 second"}, {ZV_GAD_STRING, ZV_GAD_STRING, "0 0.00 words"},
        {ZV_GAD_STRING, ZV_GAD_INTEGER, "0 0.00 2"},   {ZV_GAD_CHECK, ZV_GAD_FLOAT, "1 0.00 "},
        {ZV_GAD_RADIO, ZV_GAD_INTEGER, "1 0.00 "},     {ZV_GAD_LIST, ZV_GAD_FLOAT, "4 0.00 "},
        {ZV_GAD_LIST, ZV_GAD_INTEGER, "2 0.00 "},      {ZV_GAD_INTEGER, ZV_GAD_FLOAT, "4 0.00 "},
        {ZV_GAD_SLIDER, ZV_GAD_SLIDER, "2 3.75 "},     {ZV_GAD_SLIDER, ZV_GAD_INTEGER, "2 2.00 "},
    };
    for (auto const& row : rows) {
        ZVItem* const source = Add_Source(row.source);
        ZVItem* const target = Add(0, row.target);
        target->state = 0;
        AddGadgetDependencyZV(static_cast<unsigned short>(source->node.id), ZV_DEP_ALWAYS, 0,
                              ZV_DEP_COPY_VALUE, target->node.id);
        Process_Dependencies(source);
        EXPECT_EQ(Value_Of(*target), row.expected) << int(row.source) << " to " << int(row.target);
    }
    ZVItem* const list = Add_Source(ZV_GAD_LIST);
    list->state = 0;
    Add(1, ZV_GAD_STRING);
    SetTextGadgetStateZV(1, "old");
    AddGadgetDependencyZV(static_cast<unsigned short>(list->node.id), ZV_DEP_ALWAYS, 0, ZV_DEP_COPY_VALUE, 1);
    Process_Dependencies(list);
    EXPECT_STREQ(FindItemZV(1)->editText, "") << "no row is chosen";
}

TEST_F(Dependencies, LinkedGadgetsFollowEachOtherWithinTheirLimits)
{
    TagItem limits[] = {{ZV_ITEM_MIN, 0}, {ZV_ITEM_MAX, 10}, {}};
    Add(1, ZV_GAD_INTEGER, limits);
    Add(2, ZV_GAD_SLIDER);
    SetSliderLinkZV(1, 2);
    SetGadgetStateZV(2UL, 25.5);
    EXPECT_EQ(State(1), 10);
    EXPECT_EQ(FindItemZV(2)->realValue, 25.5) << "nothing comes back";
    SetGadgetStateZV(1UL, 4);
    EXPECT_EQ(FindItemZV(2)->realValue, 4);
}

TEST_F(Dependencies, RemovalComparesTheBeginningOfTheList)
{
    Add(1);
    AddGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_HIDE, 5, ZV_DEP_HIDE, 6);
    AddGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_HIDE, 7);
    List const& list = FindItemZV(1)->dependencies;
    RemoveGadgetDependencyZV(1, nullptr);
    RemoveGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_HIDE, 6);
    EXPECT_EQ(List_Entries(&list), 2);
    RemoveGadgetDependencyZV(1, ZV_DEP_ON, 0, ZV_DEP_HIDE, 5);
    EXPECT_EQ(List_Entries(&list), 1);
    RemoveGadgetDependencyZV(1, ZV_DEP_ON, 0);
    EXPECT_EQ(List_Entries(&list), 0);
}

TEST_F(Dependencies, ExcludedGadgetsTurnEachOtherOff)
{
    for (unsigned short id : std::initializer_list<unsigned short>{1, 2, 4})
        Add(id, ZV_GAD_RADIO);
    SetItemExclusionRangeZV(3, 2);
    EXPECT_FALSE(FindItemZV(2)->flags & ZV_ITEMF_EXCLUSIVE);
    SetItemExclusionRangeZV(1, 4);
    EXPECT_TRUE(FindItemZV(4)->flags & ZV_ITEMF_EXCLUSIVE);
    SetGadgetStateZV(1UL, 1);
    SetGadgetStateZV(4UL, 1);
    EXPECT_EQ(State(1), 0);
    EXPECT_EQ(State(4), 1);
    ClearGadgetDependenciesZV(1);
    SetGadgetStateZV(2UL, 1);
    EXPECT_EQ(State(4), 0) << "the list lives as long as a member has it";
    SetItemExclusionZV(77, 78);
}
