// Allocation and single pixels of native bitmaps.
#include "PixelTestTools.h"

#include "TestEnvironment.h"

#include <limits>

using namespace PixelTest;

namespace {

class NativeBitmap : public EnvironmentTest {};

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
        EXPECT_TRUE(Is_All(*bitmap, 0));
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
        ZVFloatRGB fractions{7, 7, 7, 7};
        ReadPixelZV(bitmap.get(), 2, 1, &out);
        ReadFloatPixelZV(bitmap.get(), 2, 1, &fractions);
        auto const fraction = [](unsigned word) { return word == 7 ? 7 : (word >> 8) / 255.0; };
        EXPECT_EQ((std::array{out.red, out.green, out.blue, out.extra}),
                  (std::array{row.expected.red, row.expected.green, row.expected.blue, row.expected.extra}));
        EXPECT_EQ(fractions.red, fraction(row.expected.red));
        EXPECT_EQ(fractions.green, fraction(row.expected.green));
        EXPECT_EQ(fractions.blue, fraction(row.expected.blue));
        EXPECT_EQ(fractions.alpha, row.depth == 24 ? 7 : 65535.0) << "no single pixels of 24 bits";
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
    NativePtr const bitmap(AllocNativeBitmapZV(1, 1, 32));
    ZVFloatRGB const wild{1e30, -1.0, std::numeric_limits<double>::quiet_NaN(), 0.0};
    WriteFloatPixelZV(bitmap.get(), 0, 0, &wild);
    EXPECT_EQ(Get_Native(*bitmap, 0, 0), 0xFFFF0000U) << "what is outside becomes the nearer end";
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
    ReadPixelZV(static_cast<ZVNativeBitmap*>(nullptr), 0, 0, &color);
    EXPECT_EQ(color.extra, 4);
    EXPECT_TRUE(Is_All(*bitmap, 0));
}
