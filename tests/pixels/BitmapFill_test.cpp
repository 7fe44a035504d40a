// Fills of bitmaps: what each channel gets, and what is left alone.
#include "PixelTestTools.h"

#include "ZVEnvironment.h"

using namespace PixelTest;

namespace {

constexpr auto allTypes = [] {
    std::array<ZVBitmapType, 10> types{};
    std::copy(rgbaTypes.begin(), rgbaTypes.end(), types.begin());
    std::copy(monoTypes.begin(), monoTypes.end(), types.begin() + 5);
    return types;
}();

// Sizes around vectors and around the block that a fill repeats.
struct Size {
    long width, height;
};
constexpr Size sizes[] = {{1, 1}, {3, 1}, {17, 5}, {961, 3}};

/// A component as a raw channel, worked out in integers.
uint32_t Raw_Component(ZVBitmapType type, uint32_t component)
{
    if (GetBitsPerChannelZV(type) == 32)
        return std::bit_cast<uint32_t>(static_cast<float>(component / 255.0));
    return component * ((1U << GetBitsPerChannelZV(type)) - 1) / 255;
}

/// The raw channels that a pixel of a colour has, mono pixels by the component that they show.
std::array<uint32_t, 4> Raw_Channels(ZVBitmapType type, uint32_t color, int monoShift)
{
    if (GetChannelsZV(type) == 1) return {Raw_Component(type, color >> monoShift & 0xFF)};
    return {Raw_Component(type, color >> 16 & 0xFF), Raw_Component(type, color >> 8 & 0xFF),
            Raw_Component(type, color & 0xFF), Raw_Component(type, color >> 24)};
}

/// Counts the channels that differ from what is expected of pixel (x, y) before and after.
template <typename Expected> long Count_Wrong(ZVBitmap const& bitmap, Expected expected)
{
    long wrong = 0;
    for (long y = 0; y < bitmap.Height; ++y)
        for (long x = 0; x < bitmap.Width; ++x)
            for (long channel = 0; channel < GetChannelsZV(&bitmap); ++channel)
                wrong += Get_Raw(bitmap, x, y, channel) != expected(x, y, channel);
    return wrong;
}

/// Fills a bitmap of random pixels and compares with what each channel should then hold.
template <typename Fill, typename Expected>
void Check_Fill(ZVBitmapType type, Size const& size, Fill fill, Expected expected)
{
    SCOPED_TRACE(testing::Message() << "type " << int{type} << ", " << size.width << "x" << size.height);
    BitmapPtr const bitmap = Make_Bitmap(size.width, size.height, type),
                    before = Make_Bitmap(size.width, size.height, type);
    Fill_Random(*bitmap, 1);
    Fill_Random(*before, 1);
    fill(bitmap.get());
    EXPECT_EQ(Count_Wrong(*bitmap,
                          [&](long x, long y, long channel) {
                              return expected(Get_Raw(*before, x, y, channel), x, y, channel);
                          }),
              0);
}

}  // namespace

TEST(BitmapFill, EveryComponentIsScaledAndTruncated)
{
    for (ZVBitmapType const type : allTypes) {
        BitmapPtr const bitmap = Make_Bitmap(1, 1, type);
        for (uint32_t component = 1; component < 256; ++component) {
            FillBitmapZV(bitmap.get(), component << 24 | component << 16);
            EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 0), Raw_Component(type, component))
                << int{type} << " " << component;
        }
    }
}

TEST(BitmapFill, KnownColors)
{
    BitmapPtr const bytes = Make_Bitmap(2, 1, ZV_BITMAP_RGBA8);
    FillBitmapZV(bytes.get(), 0x80FF0000UL);
    unsigned char const expected[] = {0xFF, 0, 0, 0x80, 0xFF, 0, 0, 0x80};
    EXPECT_EQ(std::memcmp(bytes->Pixels, expected, sizeof(expected)), 0);

    BitmapPtr const packed = Make_Bitmap(1, 1, ZV_BITMAP_RGBA10);
    FillBitmapZV(packed.get(), 0x00FF8040UL);
    EXPECT_EQ(Get_Raw(*packed, 0, 0, 0), 1023U);
    EXPECT_EQ(Get_Raw(*packed, 0, 0, 1), 513U);
    EXPECT_EQ(Get_Raw(*packed, 0, 0, 2), 256U);
    EXPECT_EQ(Get_Raw(*packed, 0, 0, 3), 0U);
}

TEST(BitmapFill, ReachesEveryPixelOfEveryType)
{
    for (ZVBitmapType const type : allTypes) {
        for (Size const& size : sizes) {
            auto const pixel = Raw_Channels(type, 0x4080FF20, 16);
            Check_Fill(
                type, size, [](ZVBitmap* bitmap) { FillBitmapZV(bitmap, 0x4080FF20UL); },
                [&](uint32_t, long, long, long channel) { return pixel[static_cast<std::size_t>(channel)]; });
        }
    }
}

TEST(BitmapFill, TheWordZeroClearsAlphaToo)
{
    for (ZVBitmapType const type : allTypes)
        Check_Fill(
            type, {5, 3}, [](ZVBitmap* bitmap) { FillBitmapZV(bitmap, 0UL); },
            [](uint32_t, long, long, long) { return 0U; });
}

TEST(BitmapFill, ColorsLeaveAlphaAsItWas)
{
    for (ZVBitmapType const type : allTypes) {
        for (Size const& size : sizes) {
            auto const pixel = Raw_Channels(type, 0xFF123456, 0);  // mono shows blue here
            Check_Fill(
                type, size, [](ZVBitmap* bitmap) { FillColorZV(bitmap, 0xFF123456UL); },
                [&](uint32_t before, long, long, long channel) {
                    return channel == 3 ? before : pixel[static_cast<std::size_t>(channel)];
                });
        }
    }
}

TEST(BitmapFill, AlphaLeavesColorsAsTheyWereAndKeepsToItsRectangle)
{
    for (ZVBitmapType const type : allTypes) {
        bool const isMono = GetChannelsZV(type) == 1;
        uint32_t const alpha = Raw_Component(type, 0x80);
        for (Size const& size : sizes) {
            Check_Fill(
                type, size, [](ZVBitmap* bitmap) { FillAlphaZV(bitmap, 0x80); },
                [&](uint32_t before, long, long, long channel) {
                    return isMono || channel == 3 ? alpha : before;
                });
            ZVRectT<long> const rect{size.width / 3, size.height / 3, size.width - size.width / 2,
                                     size.height - size.height / 2};
            Check_Fill(
                type, size, [&](ZVBitmap* bitmap) { FillAlphaRectZV(bitmap, 0x80, &rect); },
                [&](uint32_t before, long x, long y, long channel) {
                    return rect.IsIn(x, y) && (isMono || channel == 3) ? alpha : before;
                });
        }
    }
}

TEST(BitmapFill, AnEmptyAlphaRectangleDoesNothing)
{
    for (ZVRectT<long> const& rect : {ZVRectT<long>{1, 1, 2, 0}, ZVRectT<long>{1, 1, 0, 2}})
        Check_Fill(
            ZV_BITMAP_RGBA12, {4, 4}, [&](ZVBitmap* bitmap) { FillAlphaRectZV(bitmap, 9, &rect); },
            [](uint32_t before, long, long, long) { return before; });
}

TEST(BitmapFill, NativePixelsTakeTheColorInTheirLayoutAndPaddingStays)
{
    struct Case {
        long depth;
        uint32_t word;
    };
    // 0xF9 is 31 in five bits, 0x80 is 16, 0x47 is 8.
    for (Case const& row : {Case{32, 0xFFF98047}, Case{24, 0xF98047}, Case{16, 31 << 10 | 16 << 5 | 8}}) {
        SCOPED_TRACE(row.depth);
        NativePtr const bitmap = Make_Native(5, 3, row.depth, 0x11);
        bitmap->Offset = static_cast<int32_t>(row.depth / 8);
        bitmap->Height = 2;  // the offset moves the last row out of the memory
        FillBitmapZV(bitmap.get(), 0x00F98047UL);
        for (long y = 0; y < bitmap->Height; ++y) {
            for (long x = 0; x < bitmap->Width; ++x)
                EXPECT_EQ(Get_Native(*bitmap, x, y), row.word);
            unsigned char const* const rowEnd =
                bitmap->Pixels + bitmap->Offset + y * bitmap->RowBytes + 5 * bitmap->PackSize;
            EXPECT_EQ(*rowEnd, 0x11);
        }
        EXPECT_EQ(bitmap->Pixels[0], 0x11);
    }
    NativePtr const index = Make_Native(5, 3, 8);
    FillBitmapZV(index.get(), 0x00F98047UL);
    EXPECT_EQ(Bytes(*index).front(), 0x47);
    EXPECT_EQ(Bytes(*index).back(), 0x47);
    NativePtr const odd = Make_Native(2, 2, 32, 0x22);
    odd->Depth = 15;
    FillBitmapZV(odd.get(), 0x00F98047UL);
    EXPECT_EQ(Bytes(*odd).front(), 0x22);
}

TEST(BitmapFill, PensAreResolved)
{
    ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0), nullptr);
    SetStylePenZV(ZV_PEN_MARKED, 0x00102030UL);
    BitmapPtr const bitmap = Make_Bitmap(1, 1, ZV_BITMAP_RGBA8);
    FillBitmapZV(bitmap.get(), ZV_PEN_MARKED);
    EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 0), 0x10U);
    EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 3), 0U);
    NativePtr const native = Make_Native(1, 1, 32);
    FillBitmapZV(native.get(), ZV_PEN_MARKED);
    EXPECT_EQ(Get_Native(*native, 0, 0), 0xFF102030U);
    SetStylePenZV(ZV_PEN_MARKED, 0UL);
    Fill_Random(*bitmap, 1);
    FillBitmapZV(bitmap.get(), ZV_PEN_MARKED);
    EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 3), 0U) << "a pen of the word 0 clears";
    CleanUpZV();
}

TEST(BitmapFill, NullDoesNothing)
{
    FillBitmapZV(static_cast<ZVBitmap*>(nullptr), 1UL);
    FillBitmapZV(static_cast<ZVNativeBitmap*>(nullptr), 1UL);
    FillColorZV(nullptr, 1UL);
    FillAlphaZV(nullptr, 1);
    FillAlphaRectZV(nullptr, 1UL, nullptr);
}
