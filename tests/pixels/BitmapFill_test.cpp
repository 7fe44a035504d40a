// Fills of bitmaps: what each channel gets, and what is left alone.
#include "PixelTestTools.h"

#include "TestEnvironment.h"

using namespace PixelTest;

namespace {

/// A component as a raw channel, worked out in integers.
uint32_t Raw_Component(ZVBitmapType type, uint32_t component)
{
    if (Is_Float(type)) return std::bit_cast<uint32_t>(static_cast<float>(component / 255.0));
    return component * static_cast<uint32_t>(Max_Of(type)) / 255;
}

/// A channel of a colour; a mono pixel shows the component at `monoShift`.
uint32_t Raw_Channel(ZVBitmapType type, uint32_t color, long channel, int monoShift)
{
    static constexpr int shifts[] = {16, 8, 0, 24};
    return Raw_Component(type, color >> (GetChannelsZV(type) == 1 ? monoShift : shifts[channel]) & 0xFF);
}

bool Is_Alpha(ZVBitmapType type, long channel)
{
    return channel == 3 || GetChannelsZV(type) == 1;
}

/// Fills random pixels of all types, in sizes around vectors and around the block that a fill repeats, and
/// compares with `expected` of what each channel held.
template <typename Fill, typename Expected> void Check_Fill(Fill fill, Expected expected)
{
    for (ZVBitmapType const type : allTypes) {
        for (auto const& [width, height] : {std::pair(1L, 1L), {3, 1}, {17, 5}, {961, 3}}) {
            BitmapPtr const before = Make_Random(width, height, type, 1), bitmap = Copy_Of(*before);
            fill(bitmap.get());
            Expect_Channels(*bitmap, [&](long x, long y, long channel) {
                return expected(*before, x, y, channel, Get_Raw(*before, x, y, channel));
            });
        }
    }
}

}  // namespace

TEST(BitmapFill, EveryComponentIsScaledAndTruncated)
{
    for (ZVBitmapType const type : allTypes) {
        BitmapPtr const bitmap = Make_Bitmap(1, 1, type);
        for (uint32_t component = 1; component < 256; ++component) {
            FillBitmapZV(bitmap.get(), component << 24 | component << 16);
            EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 0), Raw_Component(type, component)) << int{type};
        }
    }
}

TEST(BitmapFill, KnownColors)
{
    BitmapPtr const bytes = Make_Bitmap(1, 1, ZV_BITMAP_RGBA8), packed = Make_Bitmap(1, 1, ZV_BITMAP_RGBA10);
    FillBitmapZV(bytes.get(), 0x80FF0000UL);
    EXPECT_TRUE(std::ranges::equal(Bytes(*bytes), std::array{0xFF, 0, 0, 0x80}));
    FillBitmapZV(packed.get(), 0x00FF8040UL);
    Expect_Channels(*packed, [](long, long, long channel) {
        return std::array{1023U, 513U, 256U, 0U}[static_cast<std::size_t>(channel)];
    });
}

TEST(BitmapFill, ReachesEveryPixelOfEveryType)
{
    for (uint32_t const color : {0x4080FF20U, 0U})
        Check_Fill([=](ZVBitmap* bitmap) { FillBitmapZV(bitmap, color); },
                   [=](ZVBitmap const& before, long, long, long channel, uint32_t) {
                       return Raw_Channel(before.Type, color, channel, 16);
                   });
}

TEST(BitmapFill, ColorsLeaveAlphaAsItWas)
{
    Check_Fill([](ZVBitmap* bitmap) { FillColorZV(bitmap, 0xFF123456UL); },
               [](ZVBitmap const& before, long, long, long channel, uint32_t raw) {
                   return channel == 3 ? raw : Raw_Channel(before.Type, 0x123456, channel, 0);
               });
}

TEST(BitmapFill, AlphaLeavesColorsAsTheyWereAndKeepsToItsRectangle)
{
    Check_Fill([](ZVBitmap* bitmap) { FillAlphaZV(bitmap, 0x80); },
               [](ZVBitmap const& before, long, long, long channel, uint32_t raw) {
                   return Is_Alpha(before.Type, channel) ? Raw_Component(before.Type, 0x80) : raw;
               });
    auto const part = [](ZVBitmap const& bitmap) {
        long const w = bitmap.Width, h = bitmap.Height;
        return ZVRectT<long>{w / 3, h / 3, w - w / 2, h - h / 2};
    };
    Check_Fill(
        [&](ZVBitmap* bitmap) {
            ZVRectT<long> const rect = part(*bitmap), flat{0, 0, 1, 0}, narrow{0, 0, 0, 1};
            FillAlphaRectZV(bitmap, 0x80, &rect);
            FillAlphaRectZV(bitmap, 9, &flat);
            FillAlphaRectZV(bitmap, 9, &narrow);
        },
        [&](ZVBitmap const& before, long x, long y, long channel, uint32_t raw) {
            bool const isFilled = part(before).IsIn(x, y) && Is_Alpha(before.Type, channel);
            return isFilled ? Raw_Component(before.Type, 0x80) : raw;
        });
}

TEST(BitmapFill, NativePixelsTakeTheColorInTheirLayoutAndPaddingStays)
{
    // 0xF9 is 31 in five bits, 0x80 is 16, 0x47 is 8.
    for (auto const& [depth, word] :
         {std::pair(32L, 0xFFF98047), {24L, 0xF98047}, {16L, 31 << 10 | 16 << 5 | 8}}) {
        NativePtr const bitmap = Make_Native(5, 3, depth, 0x11);
        bitmap->Offset = static_cast<int32_t>(depth / 8);
        bitmap->Height = 2;  // the offset moves the last row out of the memory
        FillBitmapZV(bitmap.get(), 0x00F98047UL);
        Expect_Words(*bitmap, [=](long, long) { return word; });
        EXPECT_EQ(bitmap->Pixels[0], 0x11);
        for (long y = 0; y < 2; ++y)
            EXPECT_EQ(bitmap->Pixels[bitmap->Offset + y * bitmap->RowBytes + 5 * bitmap->PackSize], 0x11);
    }
    NativePtr const indexed = Make_Native(5, 3, 8), odd = Make_Native(2, 2, 32, 0x22);
    FillBitmapZV(indexed.get(), 0x00F98047UL);
    EXPECT_TRUE(Is_All(*indexed, 0x47));
    odd->Depth = 15;
    FillBitmapZV(odd.get(), 0x00F98047UL);
    EXPECT_TRUE(Is_All(*odd, 0x22));
}

TEST(BitmapFill, PensAreResolved)
{
    TestEnvironment const environment;
    BitmapPtr const bitmap = Make_Bitmap(1, 1, ZV_BITMAP_RGBA8, 0x33);
    NativePtr const native = Make_Native(1, 1, 32);
    SetStylePenZV(ZV_PEN_MARKED, 0x00102030UL);
    FillBitmapZV(bitmap.get(), ZV_PEN_MARKED);
    FillBitmapZV(native.get(), ZV_PEN_MARKED);
    EXPECT_TRUE(std::ranges::equal(Bytes(*bitmap), std::array{0x10, 0x20, 0x30, 0}));
    EXPECT_EQ(Get_Native(*native, 0, 0), 0xFF102030U);
    SetStylePenZV(ZV_PEN_MARKED, 0UL);
    FillBitmapZV(bitmap.get(), ZV_PEN_MARKED);
    EXPECT_TRUE(Is_All(*bitmap, 0)) << "a pen of the word 0 clears";
}

TEST(BitmapFill, NullDoesNothing)
{
    FillBitmapZV(static_cast<ZVBitmap*>(nullptr), 1UL);
    FillBitmapZV(static_cast<ZVNativeBitmap*>(nullptr), 1UL);
    FillColorZV(nullptr, 1UL);
    FillAlphaZV(nullptr, 1);
    FillAlphaRectZV(nullptr, 1UL, nullptr);
}
