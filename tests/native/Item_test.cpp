// Items and groups on screen: what gadgets are told, what is drawn, and what is left when they go.
#include "NativeItems.h"

namespace {

class ScreenItems : public NativeItems {
protected:
    /// A custom gadget of 30 by 20 beside the one before.
    static ZVItem* Add(unsigned short id, uint32_t flags = 0)
    {
        ZVItem* const item =
            AddGadgetZV(id, id == 1 ? 0 : 0x0402, -1, ZV_GAD_CUSTOM, ZV_SIZE_DEFAULT, nullptr, ZV_ITEM_WIDTH,
                        30, ZV_ITEM_HEIGHT, 20, ZV_ITEM_CUSTOM_FUNC, &On_Custom);
        item->flags |= flags;
        return item;
    }
    static long On_Custom(ZVCustomEvent* event)
    {
        if (event->type > ZV_CUSTOM_SETUP && event->type <= ZV_CUSTOM_DRAW_DISABLED &&
            event->type != ZV_CUSTOM_CLEANUP)
            Note("C" + std::to_string(event->item->node.id) + ":" + std::to_string(event->type));
        return 1;
    }
    static HostRect Box(ZVItem const* item)
    {
        return {left + item->x, top + item->y, left + item->x + item->width, top + item->y + item->height};
    }
};

constexpr uint32_t stain = 0x00FF7F;

}  // namespace

TEST_F(ScreenItems, GadgetsAreToldHowTheyComeChangeAndGo)
{
    ZVItem *const one = Add(1, ZV_ITEMF_ON_TOP), *const two = Add(2, ZV_ITEMF_DISABLED),
                  *const three = Add(3, ZV_ITEMF_HIDDEN);
    ZVItem* const unknown =
        AddGadgetZV(4, 0x0402, -1, static_cast<ZVGadgetType>(12), ZV_SIZE_TINY, nullptr, nullptr);
    Show();
    EXPECT_EQ(Log(), "C2:101 C2:106 C1:101 C1:104") << "what lies on top comes last";
    EXPECT_FALSE(three->native || unknown->native);
    ItemVisibleZV(three, 1);
    ItemEnabledZV(two, 1);
    ItemEnabledZV(one, 0);
    UpdateGadgetZV(one);
    EXPECT_EQ(Log(), "C3:101 C3:104 C2:104 C1:106 C1:105");

    ZVEnv->trackingItem = one;
    Mac_Window_Port(palette->window)->surface.Fill(Box(one), stain);
    ItemVisibleZV(one, 0);
    Destroy_SysItem(one);
    EXPECT_EQ(Log(), "C1:102") << "once";
    EXPECT_EQ(ZVEnv->trackingItem, nullptr);
    EXPECT_TRUE(Is_Filled(Box(one), paper));
    ZVEnv->eraseOnDestroy = 0;
    Mac_Window_Port(palette->window)->surface.Fill(Box(two), stain);
    GroupVisibleZV(1, 0);
    EXPECT_EQ(Log(), "C2:102 C3:102");
    EXPECT_TRUE(Is_Filled(Box(two), stain));
}

TEST_F(ScreenItems, AWalkEndsWhenAGadgetClosesThePalette)
{
    for (std::string const at : {"C2:101", "C2:104", "C2:102", "C2:106"}) {
        Add(1);
        Add(2);
        Add(3);
        Show();
        onCall = [&](std::string const& entry) {
            if (entry == at) ClosePaletteZV(palette);
        };
        GroupEnabledZV(1, at != "C2:106");
        for (long const isVisible : {0, 1})
            if (FindPaletteZV(palette)) GroupVisibleZV(1, isVisible);
        EXPECT_EQ(FindPaletteZV(palette), nullptr) << at;
        for (auto const call : {+[](ZVPalette* gone) { RebuildPaletteZV(gone); },
                                +[](ZVPalette* gone) { ActivatePaletteZV(gone, 1); },
                                +[](ZVPalette* gone) { SetPaletteNameZV(gone, "gone"); }})
            call(palette);
        palette = InitPaletteZV();
        InitGroupZV();
    }
}

TEST_F(ScreenItems, TextsLinesAndImagesShowAreDimmedAndGo)
{
    ZVBitmap* const picture = AllocBitmapZV(4, 3, ZV_BITMAP_RGBA8, nullptr);
    FillBitmapZV(picture, 0xFF4080C0);
    ZVItem* const text = AddTextZV(1, 0, 0, "abc", nullptr);
    ZVItem* const line = AddLineZV(2, 0x0204, -1, ZV_SIZE_MEDIUM, 1, nullptr);
    ZVItem* const image = AddImageZV(3, 0x0204, -1, 0, nullptr);
    image->image = picture;
    Set_Item_Size(image);
    Show();
    EXPECT_EQ(Box(text), (HostRect{left, top, left + 20, top + 10})) << "three blocks and 2 pixels";
    for (bool const isDisabled : {false, true}) {
        GroupEnabledZV(1, !isDisabled);
        uint32_t const textInk = isDisabled ? Dimmed_Ink(ink, paper) : ink;
        for (int x = left + 1; x < left + 19; x += 6)
            EXPECT_TRUE(Is_Filled({x, top + 2, x + 4, top + 8}, textInk)) << x;
        EXPECT_TRUE(Is_Filled({left + 5, top, left + 7, top + 10}, paper));
        EXPECT_TRUE(Is_Filled(Box(line), Pen_Color(ink, isDisabled)));
        EXPECT_TRUE(Is_Filled(Box(image), Pen_Color(0x4080C0, isDisabled)));
    }
    // The layout has moved it since, but what is erased is what was drawn.
    text->x += 40;
    GroupVisibleZV(1, 0);
    EXPECT_TRUE(Is_Filled({0, 0, 100, 50}, paper));
    GroupVisibleZV(1, 1);
    EXPECT_TRUE(Is_Filled({left + 41, top + 2, left + 45, top + 8}, Dimmed_Ink(ink, paper)))
        << "and shows again";
    FreeBitmapZV(picture);
}

TEST_F(ScreenItems, AGroupsFrameCarriesItsTitleAndGoesWithoutATrace)
{
    Add(1);
    Show("ab");
    int const right = 12 + palette->contentWidth, bottom = 12 + palette->contentHeight;
    EXPECT_TRUE(Is_Filled({12, 12, 19, 13}, ink) && Is_Filled({37, 12, right, 13}, ink));
    EXPECT_TRUE(Is_Filled({19, 12, 22, 13}, paper) && Is_Filled({34, 12, 37, 13}, paper));
    EXPECT_TRUE(Is_Filled({12, bottom - 1, right, bottom}, ink));
    EXPECT_TRUE(Is_Filled({right - 1, 12, right, bottom}, ink));
    // The base line is 12 + (8 + 2) / 2 - 2.
    EXPECT_TRUE(Is_Filled({22, 9, 26, 15}, ink) && Is_Filled({28, 9, 32, 15}, ink));
    EXPECT_TRUE(Is_Filled({26, 7, 28, 17}, paper)) << "the line does not run through the title";
    GroupVisibleZV(1, 0);
    EXPECT_TRUE(Is_Filled({0, 0, right + 12, bottom + 12}, paper));
}

TEST_F(ScreenItems, OnlyWhatARegionTouchesIsDrawnAgain)
{
    ZVItem *const one = Add(1), *const two = Add(2), *const three = Add(3, ZV_ITEMF_DISABLED);
    Add(4);
    Show();
    HostRegion region({Box(two).left, Box(two).top, Box(two).left + 1, Box(two).top + 1});
    region.Unite(HostRect{Box(three).left + 5, top, Box(three).left + 6, top + 1});
    Log();
    Refresh_Items(*one->group, region);
    EXPECT_EQ(Log(), "C2:104 C3:106");
    Refresh_Items(*one->group, HostRegion({500, 500, 600, 600}));
    EXPECT_EQ(Log(), "");
}
