// Items and groups on screen: what gadgets are told, what is drawn, and what is left when they go.
#include "NativeItems.h"

namespace {

class ScreenItems : public NativeItems {
protected:
    static constexpr int left = 24, top = 24;  // of the first item

    /// Custom gadgets in a row, 30 by 20 each, with ids from 1 on.
    void Add_Custom(int count, uint32_t flags = 0)
    {
        for (int i = 0; i < count; ++i) {
            unsigned short const id = ++lastId;
            ZVItem* const item = AddGadgetZV(id, id == 1 ? 0 : 0x0402, -1, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT,
                                             nullptr, ZV_ITEM_WIDTH, 30, ZV_ITEM_HEIGHT, 20,
                                             ZV_ITEM_CUSTOM_FUNC, &NativeItems::On_Custom);
            item->flags |= flags;
        }
    }
    void End_And_Show(char const* title = "", bool hasBorder = false)
    {
        TagItem border[] = {{ZV_GRP_BORDER, 0}, {}};
        EndGroupZV(1, 0, 0, title, hasBorder ? border : nullptr);
        Show();
    }
    static ZVItem* Item(int id) { return FindItemZV(static_cast<unsigned short>(id)); }
    HostRect Box(ZVItem const& item) const
    {
        long x = 0, y = 0;
        GetItemScreenPosZV(&item, &x, &y);
        int const boxLeft = static_cast<int>(x - palette->window->left);
        int const boxTop = static_cast<int>(y - palette->window->top);
        return {boxLeft, boxTop, boxLeft + item.width, boxTop + item.height};
    }
    ZVPort& Port() const { return *Mac_Window_Port(palette->window); }

    unsigned short lastId = 0;
};

constexpr uint32_t stain = 0x00FF7F;

}  // namespace

TEST_F(ScreenItems, GadgetsAreToldHowTheyComeChangeAndGo)
{
    InitGroupZV();
    Add_Custom(1, ZV_ITEMF_ON_TOP);
    Add_Custom(1, ZV_ITEMF_DISABLED);
    Add_Custom(1, ZV_ITEMF_HIDDEN);
    End_And_Show();
    EXPECT_EQ(Log(), "C2:101 C2:106 C1:101 C1:104") << "what lies on top comes last";
    EXPECT_EQ(Item(3)->native, nullptr);
    ItemVisibleZV(Item(3), 1);
    ItemEnabledZV(Item(2), 1);
    ItemEnabledZV(Item(1), 0);
    UpdateGadgetZV(Item(1));
    EXPECT_EQ(Log(), "C3:101 C3:104 C2:104 C1:106 C1:105");

    ZVEnv->trackingItem = Item(1);
    Port().surface.Fill(Box(*Item(1)), stain);
    ItemVisibleZV(Item(1), 0);
    Destroy_SysItem(Item(1));
    EXPECT_EQ(Log(), "C1:102") << "once";
    EXPECT_EQ(ZVEnv->trackingItem, nullptr);
    EXPECT_TRUE(Is_Filled(Box(*Item(1)), paper));

    ZVEnv->eraseOnDestroy = 0;
    Port().surface.Fill(Box(*Item(2)), stain);
    GroupVisibleZV(1, 0);
    EXPECT_EQ(Log(), "C2:102 C3:102");
    EXPECT_TRUE(Is_Filled(Box(*Item(2)), stain));
    ZVEnv->eraseOnDestroy = 1;
}

TEST_F(ScreenItems, TypesThatNobodyKnowsAreNotOnScreen)
{
    InitGroupZV();
    for (int const type : {11, 12, 20, 200})
        AddGadgetZV(static_cast<unsigned short>(type), 0, 0, static_cast<ZVGadgetType>(type), ZV_SIZE_SMALL,
                    nullptr, nullptr);
    AddGadgetZV(15, 0, 0, ZV_GAD_CUSTOM, ZV_SIZE_SMALL, nullptr, nullptr);
    End_And_Show();
    for (int const type : {11, 12, 20, 200})
        EXPECT_EQ(Item(type)->native, nullptr) << type;
    EXPECT_NE(Item(15)->native, nullptr) << "without a function it is on screen and shows nothing";
}

TEST_F(ScreenItems, AWalkEndsWhenAGadgetClosesThePalette)
{
    struct Closing {
        char const* at;
        bool isHiddenFirst;
        std::function<void()> walk;
    };
    for (auto const& [at, isHiddenFirst, walk] : {Closing{"C2:101", true, [] { GroupVisibleZV(1, 1); }},
                                                  Closing{"C2:104", true, [] { GroupVisibleZV(1, 1); }},
                                                  Closing{"C2:102", false, [] { GroupVisibleZV(1, 0); }},
                                                  Closing{"C2:106", false, [] { GroupEnabledZV(1, 0); }}}) {
        lastId = 0;
        InitGroupZV();
        Add_Custom(3);
        End_And_Show();
        if (isHiddenFirst) GroupVisibleZV(1, 0);
        onCall = [&, place = at](std::string const& entry) {
            if (entry == place) ClosePaletteZV(palette);
        };
        walk();
        onCall = nullptr;
        EXPECT_EQ(FindPaletteZV(palette), nullptr) << at;
        palette = InitPaletteZV();
    }
}

TEST_F(ScreenItems, ATextStandsInTheMiddleOfItsBox)
{
    InitGroupZV();
    ZVItem* const text = AddTextZV(1, 0, 0, "abc", nullptr);
    End_And_Show();
    HostRect const box = Box(*text);
    EXPECT_EQ(box, (HostRect{left, top, left + 20, top + 10})) << "three blocks and 2 pixels";
    for (uint32_t const color : {ink, static_cast<uint32_t>(DisableColorZV(ZV_PEN_TEXT)) & 0xFFFFFF}) {
        for (int i = 0; i < 3; ++i)
            EXPECT_TRUE(Is_Filled({left + 1 + 6 * i, top + 2, left + 5 + 6 * i, top + 8}, color)) << i;
        EXPECT_TRUE(Is_Filled({left + 5, top, left + 7, top + 10}, paper));
        ItemEnabledZV(text, 0);
    }
    // The layout has moved it since, but what is erased is what was drawn.
    text->x += 40;
    ItemVisibleZV(text, 0);
    EXPECT_TRUE(Is_Filled(box, paper));
    EXPECT_EQ(text->native, nullptr);
}

TEST_F(ScreenItems, ImagesLieOverThePaletteAndLinesFillTheirBox)
{
    ZVBitmap* const picture = AllocBitmapZV(4, 3, ZV_BITMAP_RGBA8, nullptr);
    FillBitmapZV(picture, 0xFF4080C0);
    InitGroupZV();
    ZVItem* const image = AddImageZV(1, 0, 0, 0, ZV_ITEM_OFFSET_X, 0);
    image->image = picture;
    Set_Item_Size(image);
    ZVItem* const line = AddLineZV(2, 0x0204, -1, ZV_SIZE_MEDIUM, 1, nullptr);
    End_And_Show();
    EXPECT_TRUE(Is_Filled(Box(*image), 0x4080C0));
    EXPECT_EQ(line->height, 1);
    EXPECT_TRUE(Is_Filled(Box(*line), ink));
    ItemEnabledZV(image, 0);
    ItemEnabledZV(line, 0);
    auto const dim = [](unsigned long color) {
        return static_cast<uint32_t>(DisableColorZV(color)) & 0xFFFFFF;
    };
    EXPECT_TRUE(Is_Filled(Box(*image), dim(0x4080C0)));
    EXPECT_TRUE(Is_Filled(Box(*line), dim(ink)));
    ItemVisibleZV(image, 0);
    ItemVisibleZV(line, 0);
    EXPECT_TRUE(Is_Filled({0, 0, 60, 40}, paper));
    FreeBitmapZV(picture);
}

TEST_F(ScreenItems, AGroupsFrameCarriesItsTitleAndGoesWithoutATrace)
{
    InitGroupZV();
    Add_Custom(2);
    End_And_Show("ab", true);
    int const right = 12 + palette->contentWidth, bottom = 12 + palette->contentHeight;
    EXPECT_TRUE(Is_Filled({12, 12, 22, 13}, ink) && Is_Filled({34, 12, right, 13}, ink));
    EXPECT_TRUE(Is_Filled({12, bottom - 1, right, bottom}, ink) &&
                Is_Filled({right - 1, 12, right, bottom}, ink));
    EXPECT_TRUE(Is_Filled({13, 18, right - 1, top}, paper)) << "nothing inside";
    // The base line is 12 + (8 + 2) / 2 - 2.
    EXPECT_TRUE(Is_Filled({22, 9, 26, 15}, ink) && Is_Filled({28, 9, 32, 15}, ink));
    EXPECT_TRUE(Is_Filled({26, 7, 28, 17}, paper)) << "the line does not run through the title";
    GroupVisibleZV(1, 0);
    EXPECT_TRUE(Is_Filled({0, 0, right + 12, bottom + 12}, paper));
    GroupVisibleZV(1, 1);
    EXPECT_EQ(At(12, 12), ink);
}

TEST_F(ScreenItems, OnlyWhatARegionTouchesIsDrawnAgain)
{
    InitGroupZV();
    Add_Custom(4);
    End_And_Show();
    ItemEnabledZV(Item(3), 0);
    HostRect const second = Box(*Item(2)), third = Box(*Item(3));
    Log();
    HostRegion region({second.left + 5, second.top + 5, second.left + 6, second.top + 6});
    region.Unite(HostRect{third.left + 5, third.top + 5, third.left + 6, third.top + 6});
    ZVGroup& group = *Item(1)->group;
    Refresh_Items(group, region);
    EXPECT_EQ(Log(), "C2:104 C3:106");
    Refresh_Items(group, HostRegion({500, 500, 600, 600}));
    EXPECT_EQ(Log(), "");
    GroupVisibleZV(&group, 0);
    Log();
    Refresh_Items(group, region);
    EXPECT_EQ(Log(), "");
}
