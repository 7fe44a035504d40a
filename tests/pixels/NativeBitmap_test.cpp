// Allocation and single pixels of native bitmaps.
#include "PixelTestTools.h"

#include "ZVLibInternal.h"

#include <limits>

using namespace PixelTest;

namespace {

class NativeBitmap : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0), nullptr);
    }
    void TearDown() override { CleanUpZV(); }
};

}  // namespace

TEST_F(NativeBitmap, AllocationKnowsFourDepths)
{
    struct {
        long asked, depth, packSize;
    } const cases[] = {{8, 8, 1}, {16, 16, 2}, {24, 32, 4}, {32, 32, 4}, {15, 0, 0}, {0, 0, 0}, {64, 0, 0}};
    for (auto const& row : cases) {
        SCOPED_TRACE(row.asked);
        SetError(ZV_ERR_NONE);
        NativePtr const bitmap(AllocNativeBitmapZV(13, 5, row.asked)),
            twin(AllocDDBitmapZV(13, 5, row.asked));
        ASSERT_EQ(bitmap != nullptr, row.depth != 0);
        ASSERT_EQ(twin != nullptr, row.depth != 0);
        EXPECT_EQ(GetErrorZV(), row.depth ? ZV_ERR_NONE : ZV_ERR_DEPTH);
        if (!bitmap) continue;
        EXPECT_EQ(bitmap->Width, 13);
        EXPECT_EQ(bitmap->Height, 5);
        EXPECT_EQ(bitmap->Depth, row.depth);
        EXPECT_EQ(bitmap->PackSize, row.packSize);
        EXPECT_GE(bitmap->RowBytes, 13 * row.packSize);
        EXPECT_EQ(bitmap->Size, bitmap->RowBytes * 5);
        EXPECT_EQ(bitmap->Offset, 0);
        EXPECT_TRUE(std::ranges::all_of(Bytes(*bitmap), [](unsigned char byte) { return byte == 0; }));
        EXPECT_EQ(ConvertDDBitmapZV(bitmap.get()), 1);
    }
}

TEST_F(NativeBitmap, SizesThatCannotBeHadAreOutOfMemory)
{
    long const sizes[][2] = {{-1, 1}, {1, -1}, {1 << 16, 1 << 15}, {std::numeric_limits<long>::max(), 1}};
    for (auto const& [width, height] : sizes) {
        SetError(ZV_ERR_NONE);
        EXPECT_EQ(AllocNativeBitmapZV(width, height, 32), nullptr) << width;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
    }
    FreeBitmapZV(static_cast<ZVNativeBitmap*>(nullptr));
}

TEST_F(NativeBitmap, ReadsComponentsInBothHalvesOfAWord)
{
    struct {
        long depth;
        uint32_t word;
        ZVRGB expected;
    } const cases[] = {
        {32, 0x7F112233, {0x1111, 0x2222, 0x3333, 1}},
        {16, 0x7FFF, {0xF8F8, 0xF8F8, 0xF8F8, 1}},
        {16, 0x8000 | 1 << 10 | 2 << 5 | 3, {0x0808, 0x1010, 0x1818, 1}},
        {8, 0xA5, {0xA5A5, 7, 7, 1}},
        {24, 0x112233, {7, 7, 7, 7}},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(row.depth);
        NativePtr const bitmap =
            row.depth == 8 ? NativePtr(AllocNativeBitmapZV(3, 3, 8)) : Make_Native(3, 3, row.depth);
        Set_Native(*bitmap, 2, 1, row.word);
        ZVRGB out{7, 7, 7, 7};
        ReadPixelZV(bitmap.get(), 2, 1, &out);
        EXPECT_EQ(out.red, row.expected.red);
        EXPECT_EQ(out.green, row.expected.green);
        EXPECT_EQ(out.blue, row.expected.blue);
        EXPECT_EQ(out.extra, row.expected.extra);
        ZVFloatRGB fractions{7, 7, 7, 7};
        ReadFloatPixelZV(bitmap.get(), 2, 1, &fractions);
        bool const isRead = row.depth != 24;
        EXPECT_EQ(fractions.red, isRead ? (row.expected.red >> 8) / 255.0 : 7);
        EXPECT_EQ(fractions.green, row.expected.green == 7 ? 7 : (row.expected.green >> 8) / 255.0);
        EXPECT_EQ(fractions.blue, row.expected.blue == 7 ? 7 : (row.expected.blue >> 8) / 255.0);
        EXPECT_EQ(fractions.alpha, isRead ? 65535.0 : 7);
    }
}

TEST_F(NativeBitmap, WritesTheHighBitsOfEachComponent)
{
    ZVRGB const color{0x12FF, 0xF7FF, 0x8000, 9};
    ZVFloatRGB const fractions{0.1, 1.0, 0.5, 0.0};
    struct {
        long depth;
        uint32_t fromWords, fromFractions;
    } const cases[] = {
        {32, 0xFF12F780, 0xFF000000 | 26 << 16 | 255 << 8 | 128},  // 25.5 + 0.5, 127.5 + 0.5
        {16, 2 << 10 | 30 << 5 | 16, 3 << 10 | 31 << 5 | 16},      // 3.1 + 0.5, 15.5 + 0.5
        {8, 0x12, 26},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(row.depth);
        NativePtr const bitmap(AllocNativeBitmapZV(3, 2, row.depth));
        WritePixelZV(bitmap.get(), 1, 1, &color);
        EXPECT_EQ(Get_Native(*bitmap, 1, 1), row.fromWords);
        WriteFloatPixelZV(bitmap.get(), 1, 1, &fractions);
        EXPECT_EQ(Get_Native(*bitmap, 1, 1), row.fromFractions);
        EXPECT_EQ(Get_Native(*bitmap, 0, 1), 0U);
        EXPECT_EQ(Get_Native(*bitmap, 2, 1), 0U);
    }
}

TEST_F(NativeBitmap, FractionsOutsideTheRangeAreStoredAsTheNearerEnd)
{
    NativePtr const bitmap(AllocNativeBitmapZV(1, 1, 32));
    ZVFloatRGB const wild{1e30, -1.0, std::numeric_limits<double>::quiet_NaN(), 0.0};
    WriteFloatPixelZV(bitmap.get(), 0, 0, &wild);
    EXPECT_EQ(Get_Native(*bitmap, 0, 0), 0xFFFF0000U);
}

TEST_F(NativeBitmap, PixelsOutsideDoNothing)
{
    NativePtr const bitmap(AllocNativeBitmapZV(3, 2, 32));
    ZVRGB color{1, 2, 3, 4};
    ZVFloatRGB fractions{};
    long const places[][2] = {{-1, 0}, {3, 0}, {0, -1}, {0, 2}};
    for (auto const& [x, y] : places) {
        WritePixelZV(bitmap.get(), x, y, &color);
        ReadPixelZV(bitmap.get(), x, y, &color);
        WriteFloatPixelZV(bitmap.get(), x, y, &fractions);
        ReadFloatPixelZV(bitmap.get(), x, y, &fractions);
    }
    ReadPixelZV(nullptr, 0, 0, &color);
    EXPECT_EQ(color.extra, 4);
    EXPECT_TRUE(std::ranges::all_of(Bytes(*bitmap), [](unsigned char byte) { return byte == 0; }));
}
