// Items: ids, tags, entries, state, sizes, what shows, and memory running out.
#include "interface/InterfaceTest.h"

#include "FailingHeap.h"
#include "pixels/IconList.h"

namespace {

class Items : public InterfaceTest {
protected:
    Items()
    {
        palette = InitPaletteZV();
        InitGroupZV();
    }

    static ZVItem* Add(ZVGadgetType type, unsigned short id = 0, TagItem* tags = nullptr,
                       ZVGadgetSize size = ZV_SIZE_DEFAULT)
    {
        return AddGadgetZV(id, 0x0402, -1, type, size, "label", tags);
    }
    template <typename... Tags> static ZVItem* Add(ZVGadgetType type, unsigned short id, Tags... tags)
    {
        return Add(type, id, Tag_Array(tags...).data());
    }
    void Display()
    {
        EndGroupZV(1, 0, 0, "", nullptr);
        ASSERT_TRUE(DisplayPaletteZV(nullptr));
        SetCurrentPaletteZV(palette);
        log.clear();
    }

    /// Logs when the gadget comes on screen and leaves it.
    static long Note_Screen(ZVCustomEvent* event)
    {
        std::string const id = std::to_string(event->item->node.id);
        if (event->type == ZV_CUSTOM_CREATE) log.push_back("make " + id);
        if (event->type == ZV_CUSTOM_DESTROY) log.push_back("destroy " + id);
        return 1;
    }

    ZVPalette* palette;
};

long textUpdates;
long Answer_Change(ZVCustomEvent* event)
{
    if (event->type == ZV_CUSTOM_SET_STATE) event->replyData = event->item->userData;
    if (event->type == ZV_CUSTOM_DRAW_STATE) ++textUpdates;
    if (event->type == ZV_CUSTOM_SET_SIZE) event->item->width += 5;
    return 1;
}

std::string Entry_List(ZVItem const& item)
{
    std::string text;
    for (Node const* entry = item.entries.head; entry->next; entry = entry->next)
        text += std::to_string(entry->id) + "=" + entry->name + " ";
    return text;
}

}  // namespace

TEST_F(Items, AutomaticIdsAreTheHighestFreeOnes)
{
    EXPECT_EQ(Add(ZV_GAD_BUTTON)->node.id, 32767U);
    Add(ZV_GAD_BUTTON, 32766);
    Add(ZV_GAD_BUTTON, 32764);
    ZVItem* const clash = Add(ZV_GAD_BUTTON, 32767);
    EXPECT_EQ(Add(ZV_GAD_BUTTON)->node.id, 32765U);
    EXPECT_NE(FindItemZV(32767), clash) << "the earlier one is found";
    ZVItem* const third = Add(ZV_GAD_BUTTON);
    EXPECT_EQ(third->node.id, 32763U);
    ModifyItemZV(third, ZV_ITEM_ID, 3);
    EndGroupZV(1, 0, 0, "", nullptr);
    InitGroupZV();
    EXPECT_EQ(Add(ZV_GAD_BUTTON)->node.id, 32763U) << "free again, in another group of the palette";
}

TEST_F(Items, WithoutAnOpenGroupThereIsNoItem)
{
    EndGroupZV(1, 0, 0, "", nullptr);
    EXPECT_EQ(Add(ZV_GAD_BUTTON), nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NO_GROUP);
    EXPECT_EQ(InitGroupZV(), nullptr) << "an error is pending";
}

TEST_F(Items, TagsBehindTheLabelTagAreTheLabels)
{
    ZVItem* const item = Add(ZV_GAD_INTEGER, 5, ZV_ITEM_MIN, 3, ZV_ITEM_CURSOR, 9, ZV_ITEM_LABEL_TAGS, 0,
                             ZV_ITEM_CURSOR, 4, ZV_ITEM_POSITION, 0x0105, ZV_ITEM_IGNORE_IF_HIDDEN, 0);
    ASSERT_TRUE(item->aboveLink);
    EXPECT_EQ(item->cursor, 9);
    EXPECT_EQ(item->minInt, 3);
    EXPECT_EQ(item->flags, 0U);
    EXPECT_TRUE(FindTagItem(ZV_ITEM_IGNORE_IF_HIDDEN, item->tags)) << "but stay in its clone";
    EXPECT_EQ(item->aboveLink->cursor, 4);
    EXPECT_EQ(item->aboveLink->node.id, ZV_LABEL_ID);
    EXPECT_EQ(item->aboveLink->flags, ZV_ITEMF_ATTACHED | ZV_ITEMF_IGNORE_IF_HIDDEN);
}

TEST_F(Items, ArgumentsGiveWayToTags)
{
    double const low = -2.75, high = 1e12;
    ZVItem* const item =
        Add(ZV_GAD_BUTTON, 1, ZV_ITEM_TYPE, ZV_GAD_SLIDER, ZV_ITEM_SIZE, ZV_SIZE_LARGE, ZV_ITEM_ID, 44,
            ZV_ITEM_MIN_REAL, &low, ZV_ITEM_MAX_REAL, &high, ZV_ITEM_TEXT, "other");
    EXPECT_EQ(item->type, ZV_GAD_SLIDER);
    EXPECT_EQ(item->width, ZVEnv->style->gadgetSizes.size4);
    EXPECT_EQ(FindItemZV(44), item);
    EXPECT_EQ(item->minInt, -2);
    EXPECT_EQ(item->maxInt, INT32_MAX);
    EXPECT_STREQ(item->text, "other");
    ZVItem* const field = Add(ZV_GAD_STRING, 2, ZV_ITEM_MAX_CHARS, 6, ZV_ITEM_MAX, 9);
    EXPECT_EQ(field->maxChars, 6) << "a text has a capacity in place of an upper limit";
}

TEST_F(Items, EntriesComeFromTextsAndListsAndChange)
{
    ZVItem* const list = Add(ZV_GAD_LIST, 1, ZV_ITEM_ENTRIES_CSV, "one,(-,three|four");
    EXPECT_EQ(Entry_List(*list), "1=one 2=_ 3=three ");
    ZVItem* const cycle = Add(ZV_GAD_CYCLE, 2, ZV_ITEM_ENTRIES, &list->entries);
    EXPECT_EQ(cycle->type, ZV_GAD_CUSTOM);
    ModifyItemZV(FindItemZV(1), ZV_ITEM_REMOVE_ENTRY, 2, ZV_ITEM_ADD_ENTRY, "new");
    EXPECT_EQ(Entry_List(*list), "1=one 2=three 3=new ") << "a list numbers its rows";
    EXPECT_TRUE(list->flags & ZV_ITEMF_ENTRIES_CHANGED);
    ModifyItemZV(FindItemZV(2), ZV_ITEM_REMOVE_ENTRY, 2, ZV_ITEM_ADD_ENTRY, "new");
    EXPECT_EQ(Entry_List(*cycle), "1=one 3=three 4=new ");
    ModifyItemZV(FindItemZV(2), ZV_ITEM_ENTRIES_CSV, "a|b,");
    EXPECT_EQ(Entry_List(*cycle), "1=a 2=b 3= ");
    ModifyItemZV(FindItemZV(2), ZV_ITEM_ENTRIES_CSV, "");
    EXPECT_EQ(Entry_List(*cycle), "");
}

TEST_F(Items, StateFollowsTheTypeOfTheGadget)
{
    struct {
        ZVGadgetType type;
        double value;
        int32_t state;
        bool changes, repeats;
    } const rows[] = {{ZV_GAD_BUTTON, 5, 0, false, false},
                      {ZV_GAD_CHECK, -3.5, 1, true, false},
                      {ZV_GAD_INTEGER, 7.9, 7, true, false},
                      {ZV_GAD_LIST, 2, 2, true, false},
                      {ZV_GAD_CYCLE, 4, 4, true, false},
                      {ZV_GAD_FLOAT, 2.5, 2, true, false},
                      {ZV_GAD_FLOAT, 1e-8, 0, false, false},
                      {ZV_GAD_TEXTBOX, 99, 10, true, false},
                      {ZV_GAD_INTEGER, 1e30, INT32_MAX, true, false},
                      {ZV_GAD_LABEL, 1, 0, true, true}};
    ZVItem* const witness = Add(ZV_GAD_CHECK, 1);
    for (auto const& row : rows) {
        ZVItem* const item = Add(row.type, 0, ZV_ITEM_MAX, 10);
        auto const id = static_cast<unsigned short>(item->node.id);
        AddGadgetDependencyZV(id, ZV_DEP_ALWAYS, 0, ZV_DEP_SET_ON, 1);
        for (bool const again : {false, true}) {
            witness->state = 0;
            SetGadgetStateZV(item, row.value);
            EXPECT_EQ(item->state, row.state) << int(row.type);
            EXPECT_EQ(witness->state, again ? row.repeats : row.changes) << int(row.type) << again;
        }
    }
}

TEST_F(Items, ACustomFunctionDecidesOnItsSizeAndWhatIsAChange)
{
    ZVItem* const item =
        Add(ZV_GAD_CUSTOM, 1, ZV_ITEM_CUSTOM_FUNC, Answer_Change, ZV_ITEM_USER_DATA, 0, ZV_ITEM_HEIGHT, 33);
    EXPECT_EQ(item->baseWidth, ZVEnv->style->gadgetSizes.size3 + 5);
    EXPECT_EQ(item->baseHeight, 33);
    Display();
    textUpdates = 0;
    SetGadgetStateZV(1UL, 4.5);
    EXPECT_EQ(textUpdates, 0);
    ModifyItemZV(FindItemZV(1), ZV_ITEM_USER_DATA, 1);
    SetGadgetStateZV(1UL, 4.5);
    EXPECT_EQ(textUpdates, 1);
    EXPECT_EQ(item->state, 4);
    EXPECT_EQ(item->realValue, 4.5);
    ModifyItemZV(FindItemZV(1), ZV_ITEM_TEXT, "LABEL");
    EXPECT_EQ(textUpdates, 1) << "the same text but for its case";
    EXPECT_STREQ(item->text, "LABEL");
    ModifyItemZV(FindItemZV(1), ZV_ITEM_TEXT, "other");
    EXPECT_EQ(textUpdates, 2);
}

TEST_F(Items, TextsAreCutAtWholeCharacters)
{
    Add(ZV_GAD_STRING, 1, ZV_ITEM_MAX_CHARS, 4);
    SetTextGadgetStateZV(1, "ab\xC3\xA9\xC3\xA9");
    EXPECT_STREQ(reinterpret_cast<char const*>(GetGadgetStateZV(1)), "ab\xC3\xA9");
    SetTextGadgetStateZV(1, "abc\xC3\xA9");
    EXPECT_STREQ(reinterpret_cast<char const*>(GetGadgetStateZV(1)), "abc");
    EXPECT_EQ(GetGadgetStateZV(99), 0U);
}

TEST_F(Items, SizesComeFromTypeSizeFontAndTags)
{
    Add_Icon(500, AllocBitmapZV(30, 12, ZV_BITMAP_RGBA8, "icon"));
    ZVDrawInfo font{};
    long const cw = GetAveCharWidthZV(&font), ch = GetAveCharHeightZV(&font);
    ZVStyle const& style = *ZVEnv->style;
    EXPECT_EQ(GetGadgetWidthZV(ZV_GAD_BUTTON, ZV_SIZE_XLARGE), style.gadgetSizes.size5);
    EXPECT_EQ(GetGadgetHeightZV(ZV_GAD_LIST, ZV_SIZE_TINY), 5 * ch);
    EXPECT_EQ(GetGadgetWidthZV(ZV_GAD_HPROP, ZV_SIZE_SMALL), 10 * cw);
    EXPECT_EQ(GetGadgetHeightZV(ZV_GAD_VPROP, ZV_SIZE_LARGE), 15 * ch);
    EXPECT_EQ(GetGadgetWidthZV(ZV_GAD_MENU, ZV_SIZE_LARGE), 16);
    EXPECT_EQ(GetGadgetHeightZV(ZV_GAD_TEXTBOX, ZV_SIZE_MEDIUM), 20 * ch);
    EXPECT_EQ(Add(ZV_GAD_LIST, 0, ZV_ITEM_ROWS, 1)->height, 3 * ch);
    EXPECT_EQ(Add(ZV_GAD_STRING, 0, ZV_ITEM_CHARS, 12)->width, GetTextWidthZV(&font, "012345678901"));
    EXPECT_EQ(Add(ZV_GAD_STRING, 0, ZV_ITEM_CHARS, 0)->width, 0);
    EXPECT_EQ(AddLineZV(0, 0, 0, ZV_SIZE_SMALL, 2, nullptr)->width, 1);
    EXPECT_EQ(AddLineZV(0, 0, 0, ZV_SIZE_SMALL, 1, nullptr)->width, 5 * cw);
    EXPECT_EQ(AddTextZV(0, 0, 0, "text", nullptr)->width, GetTextWidthZV(&font, "text") + 2);
    EXPECT_EQ(AddImageZV(0, 0, 0, 500, nullptr)->height, 12);
    EXPECT_EQ(Add(ZV_GAD_BUTTON, 0, ZV_ITEM_IMAGE, 500)->width, 34);
    ZVDrawInfo small{};
    small.Font = ZV_FONT_SMALL;
    ZVItem const* const item = Add(ZV_GAD_TOGGLE, 0, ZV_ITEM_SMALL_FONT, 0, ZV_ITEM_BOLD, 0);
    EXPECT_EQ(item->height, GetAveCharHeightZV(&small) * 7 / 4 - 4);
    EXPECT_EQ(item->width, style.gadgetSizes.size3 * 2 / 3);
}

TEST_F(Items, LabelsShowAndEnableWithTheirGadget)
{
    ZVItem* const field = Add(ZV_GAD_STRING, 1);
    AddTextZV(ZV_LABEL_ID, 0x0501, 1, "second", nullptr);
    Display();
    ZVItem* const own = field->beforeLink;
    ZVItem* const second = own->beforeLink;
    auto const shown = [&] {
        std::string text;
        for (ZVItem* item : {second, own, field})
            text += !item->native ? '-' : item->flags & ZV_ITEMF_DISABLED ? 'd' : 'e';
        return text;
    };
    EXPECT_EQ(shown(), "eee");
    ItemVisibleZV(1, 0);
    EXPECT_EQ(shown(), "---");
    ItemEnabledZV(1, 0);
    EXPECT_EQ(shown(), "---");
    ItemVisibleZV(field, 1);
    EXPECT_EQ(shown(), "ddd");
    ItemEnabledZV(field, 1);
    EXPECT_EQ(shown(), "eee");
    ItemVisibleZV(field->beforeLink, 0);
    EXPECT_EQ(shown(), "e-e") << "a label passes nothing on";
    GroupVisibleZV(1, 0);
    ItemVisibleZV(field->beforeLink, 1);
    EXPECT_EQ(shown(), "---") << "not while the group is hidden";
    GroupVisibleZV(1, 1);
    EXPECT_EQ(shown(), "eee");
    MarkItemZV(1, 0);
    ItemVisibleIfMarkedZV(1);
    EXPECT_FALSE(field->native);
}

TEST_F(Items, OnlyWhatHasMovedIsMadeAgain)
{
    for (unsigned short id : std::initializer_list<unsigned short>{1, 2, 3})
        Add(ZV_GAD_CUSTOM, id, ZV_ITEM_CUSTOM_FUNC, Note_Screen, ZV_ITEM_IGNORE_IF_HIDDEN, 0);
    Display();
    ItemVisibleZV(2, 0);
    log.clear();
    RebuildPaletteZV(palette);
    EXPECT_EQ(log, (Strings{"destroy 3", "make 3"}));
    long x = 0, y = 0;
    GetItemScreenPosZV(FindItemZV(3), &x, &y);
    EXPECT_EQ(x, palette->window->left + 2 * ZVEnv->style->paletteMargin + FindItemZV(3)->x);
}

TEST_F(Items, MemoryThatRunsOutLeavesNothingBehind)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    for (long after = 0; after < 100; ++after) {
        SetError(ZV_ERR_NONE);
        ZVItem* item = nullptr;
        {
            FailingHeap const heap(after);
            item = AddGadgetZV(0, 0, 0, ZV_GAD_CYCLE, ZV_SIZE_CUSTOM, "label", ZV_ITEM_ENTRIES_CSV, "a,b",
                               ZV_ITEM_LABEL_TAGS, 0, ZV_ITEM_CURSOR, 1);
        }
        if (item) {
            EXPECT_GT(after, 8);
            return;
        }
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY) << after;
        EXPECT_TRUE(List_Empty(&ZVEnv->currentGroup->items)) << after;
    }
    FAIL() << "never succeeds";
}
