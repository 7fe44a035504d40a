// Copies between bitmaps of both families: clipping, raw copies, conversion on the way, mono and alpha-first
// forms.
#include "PixelTestTools.h"

#include "ZVLibInternal.h"
#include "pixels/ConvertRows.h"

#include <cmath>
#include <optional>

using namespace PixelTest;

namespace {

/// A pixel of a MONO16 bitmap that tells where it came from.
uint32_t Mark(long x, long y)
{
    return static_cast<uint32_t>(1 + x + 100 * y);
}

BitmapPtr Marked(long width, long height)
{
    BitmapPtr bitmap = Make_Bitmap(width, height, ZV_BITMAP_MONO16);
    for (long i = 0; i < width * height; ++i)
        Set_Raw(*bitmap, i % width, i / width, 0, Mark(i % width, i / width));
    return bitmap;
}

NativePtr Marked_Native(long width, long height)
{
    NativePtr bitmap = Make_Native(width, height, 32);
    for (long i = 0; i < width * height; ++i)
        Set_Native(*bitmap, i % width, i / width, Mark(i % width, i / width));
    return bitmap;
}

/// What a marked target should hold: for each pixel of `covered` the mark at the same place moved by (mx,
/// my), else 0.
struct Coverage {
    ZVRectT<long> covered;
    long mx, my;

    uint32_t operator()(long x, long y) const { return covered.IsIn(x, y) ? Mark(x + mx, y + my) : 0; }
};

template <typename Expected> void Expect_Marks(ZVBitmap const& bitmap, Expected expected)
{
    Expect_Channels(bitmap, [&](long x, long y, long) { return expected(x, y); });
}

constexpr long far = 1L << 40;

struct ClipCase {
    char const* why;
    long sx, sy, w, h, dx, dy;
    Coverage expected;
};
// From 12 x 8 into 10 x 10.
ClipCase const clipCases[] = {
    {"a negative size is that of the source", 0, 0, -1, -1, 0, 0, {{0, 0, 10, 8}, 0, 0}},
    {"a size inside is copied as it is", 2, 1, 4, 3, 5, 6, {{5, 6, 4, 3}, -3, -5}},
    {"a target before the edge moves the source in", 0, 0, 8, 5, -3, -2, {{0, 0, 5, 3}, 3, 2}},
    {"a target beyond the edge is cut", 0, 0, 8, 8, 6, 7, {{6, 7, 4, 3}, -6, -7}},
    {"a target wholly before the edge", 0, 0, 5, 5, -5, 0, {}},
    {"a target wholly beyond the edge", 0, 0, 5, 5, 10, 0, {}},
    {"a target far away", 0, 0, 5, 5, -far, far, {}},
    {"no width", 0, 0, 0, 5, 0, 0, {}},
    {"no height", 0, 0, 5, 0, 0, 0, {}},
};

}  // namespace

// ---- clipping ---------------------------------------------------------------------------------------------

TEST(BitmapCopy, IsClippedAtTheTargetWhetherOrNotItConverts)
{
    BitmapPtr const marked = Marked(12, 8), source = Make_Random(12, 8, ZV_BITMAP_RGBA8, 1),
                    wide = Make_Random(12, 8, ZV_BITMAP_RGBA16, 2);
    NativePtr const native = Make_Random_Native(12, 8, 32, 3);
    for (ClipCase const& row : clipCases) {
        SCOPED_TRACE(row.why);
        auto const copied = [&](auto const& from, auto to) {
            CopyBitmapZV(from.get(), to.get(), row.sx, row.sy, row.w, row.h, row.dx, row.dy);
            return to;
        };
        auto const told = [&](long x, long y, auto value) {
            return row.expected.covered.IsIn(x, y) ? value(x + row.expected.mx, y + row.expected.my) : 0U;
        };
        Expect_Marks(*copied(marked, Make_Bitmap(10, 10, ZV_BITMAP_MONO16)), row.expected);
        Expect_Channels(
            *copied(source, Make_Bitmap(10, 10, ZV_BITMAP_RGBA16)), [&](long x, long y, long channel) {
                return told(x, y, [&](long sx, long sy) { return Get_Raw(*source, sx, sy, channel) * 257; });
            });
        Expect_Channels(
            *copied(native, Make_Bitmap(10, 10, ZV_BITMAP_RGBA8)), [&](long x, long y, long channel) {
                return told(x, y, [&](long sx, long sy) {
                    return channel == 3 ? 255U : Get_Native(*native, sx, sy) >> (16 - 8 * channel) & 0xFF;
                });
            });
        Expect_Words(*copied(wide, Make_Native(10, 10, 32)), [&](long x, long y) {
            return told(x, y, [&](long sx, long sy) {
                auto const byte = [&](long channel) { return Get_Raw(*wide, sx, sy, channel) >> 8; };
                return byte(0) << 16 | byte(1) << 8 | byte(2);
            });
        });
    }
}

TEST(BitmapCopy, OfNothingDoesNothing)
{
    BitmapPtr const bitmap = Marked(4, 4), empty(AllocBitmapNoPixelsZV(4, 4, ZV_BITMAP_MONO16));
    NativePtr const native = Marked_Native(4, 4);
    ZVBitmap* const noBitmap = nullptr;
    ZVNativeBitmap* const noNative = nullptr;
    CopyBitmapZV(noBitmap, bitmap.get(), 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(bitmap.get(), noBitmap, 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(bitmap.get(), noNative, 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(noNative, bitmap.get(), 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(noNative, native.get(), 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(native.get(), noNative, nullptr, 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(empty.get(), bitmap.get(), 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(bitmap.get(), empty.get(), 0, 0, -1, -1, 0, 0);
    Expect_Marks(*bitmap, Mark);
    Expect_Words(*native, Mark);
}

// ---- between bitmaps --------------------------------------------------------------------------------------

TEST(BitmapCopy, OfOneTypeIsRawForAllTen)
{
    for (ZVBitmapType const type : allTypes) {
        BitmapPtr const source = Make_Bitmap(9, 7, type), whole = Make_Bitmap(9, 7, type),
                        part = Make_Bitmap(11, 5, type);
        Fill_Random(Bytes(*source), 7);  // unused bits too
        CopyBitmapZV(source.get(), whole.get(), 0, 0, -1, -1, 0, 0);
        EXPECT_TRUE(Are_Equal(*source, *whole)) << int{type};
        CopyBitmapZV(source.get(), part.get(), 1, 2, 8, 4, 3, 1);
        Expect_Channels(*part, [&](long x, long y, long channel) {
            return x >= 3 && y >= 1 ? Get_Raw(*source, x - 2, y + 1, channel) : 0;
        });
    }
}

TEST(BitmapCopy, BetweenMonoAndAnythingElseDoesNothing)
{
    BitmapPtr const rgba = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 1);
    NativePtr const native = Make_Native(4, 4, 32, 2);
    for (ZVBitmapType const type : monoTypes) {
        BitmapPtr const mono = Make_Bitmap(4, 4, type, 3);
        BitmapPtr const other =
            Make_Bitmap(4, 4, type == ZV_BITMAP_MONO8 ? ZV_BITMAP_MONO16 : ZV_BITMAP_MONO8, 4);
        CopyBitmapZV(rgba.get(), mono.get(), 0, 0, -1, -1, 0, 0);
        CopyBitmapZV(other.get(), mono.get(), 0, 0, -1, -1, 0, 0);
        CopyBitmapZV(native.get(), mono.get(), 0, 0, -1, -1, 0, 0);
        CopyBitmapZV(mono.get(), rgba.get(), 0, 0, -1, -1, 0, 0);
        CopyBitmapZV(mono.get(), native.get(), 0, 0, -1, -1, 0, 0);
        EXPECT_TRUE(Is_All(*mono, 3)) << int{type};
    }
    EXPECT_TRUE(Is_All(*rgba, 1));
    EXPECT_TRUE(Is_All(*native, 2));
}

TEST(BitmapCopy, WithinOneBitmapReadsBeforeItWrites)
{
    long const moves[][2] = {{1, 0}, {-1, 0}, {0, 2}, {0, -2}, {3, 1}, {-3, -1}, {2, -1}};
    for (auto const& [mx, my] : moves) {
        SCOPED_TRACE(testing::Message() << mx << ", " << my);
        BitmapPtr const bitmap = Marked(20, 12);
        NativePtr const native = Marked_Native(20, 12);
        CopyBitmapZV(bitmap.get(), bitmap.get(), 4, 4, 10, 5, 4 + mx, 4 + my);
        CopyBitmapZV(native.get(), native.get(), 4, 4, 10, 5, 4 + mx, 4 + my);
        ZVRectT<long> const covered{4 + mx, 4 + my, 10, 5};
        auto const expected = [&, dx = mx, dy = my](long x, long y) {
            return covered.IsIn(x, y) ? Mark(x - dx, y - dy) : Mark(x, y);
        };
        Expect_Marks(*bitmap, expected);
        Expect_Words(*native, expected);
    }
}

TEST(BitmapCopy, BeyondTheCacheGivesTheSame)
{
    constexpr long width = 2041, height = 1301;  // some 10 MB at 32 bits, at odd addresses
    BitmapPtr const source = Make_Random(width, height, ZV_BITMAP_RGBA8, 5),
                    twin = Make_Bitmap(width, height, ZV_BITMAP_RGBA8);
    for (ZVBitmapType const type : rgbaTypes) {
        BitmapPtr const target = Make_Bitmap(width + 2, height, type, 0x77);
        ZVRowConverter const convert = Get_Row_Converter(ZV_BITMAP_RGBA8, type);
        std::vector<unsigned char> expected(static_cast<std::size_t>(target->RowBytes));
        On_Each_Target([&] {
            CopyBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 1, 0);
            for (long y = 0; y < height; ++y) {
                std::ranges::fill(expected, static_cast<unsigned char>(0x77));
                convert(Pixel_Bytes(*source, 0, y), expected.data() + target->PackSize, width);
                ASSERT_EQ(std::memcmp(Pixel_Bytes(*target, 0, y), expected.data(), expected.size()), 0) << y;
            }
        });
    }
    CopyBitmapZV(source.get(), twin.get(), 0, 0, -1, -1, 0, 0);
    EXPECT_TRUE(Are_Equal(*source, *twin));
}

TEST(BitmapCopy, LeavesOutTheExcludedRectangle)
{
    struct {
        char const* why;
        ZVRectT<long> area, exclude;
    } const cases[] = {
        {"a hole in the middle", {1, 1, 8, 8}, {3, 4, 2, 3}},
        {"a hole at the upper left corner", {1, 1, 8, 8}, {1, 1, 3, 3}},
        {"a hole at the lower right corner", {1, 1, 8, 8}, {6, 6, 3, 3}},
        {"a hole as wide as the area", {1, 1, 8, 8}, {1, 4, 8, 2}},
        {"the hole is all", {1, 1, 8, 8}, {1, 1, 8, 8}},
        {"an empty hole", {1, 1, 8, 8}, {4, 4, 0, 0}},
        {"area and hole reach beyond the target", {4, 4, 10, 10}, {6, 6, 8, 8}},
        {"the hole lies beyond the target", {4, 4, 20, 20}, {12, 12, 4, 4}},
        {"the area lies beyond the target", {10, 0, 5, 5}, {11, 1, 1, 1}},
    };
    BitmapPtr const source = Marked(30, 30);
    for (auto const& row : cases) {
        SCOPED_TRACE(row.why);
        BitmapPtr const target = Make_Bitmap(10, 10, ZV_BITMAP_MONO16);
        CopyBitmapExcludeZV(source.get(), target.get(), &row.area, &row.exclude);
        Expect_Marks(*target, [&](long x, long y) {
            return row.area.IsIn(x, y) && !row.exclude.IsIn(x, y) ? Mark(x, y) : 0;
        });
    }
}

// ---- native -----------------------------------------------------------------------------------------------

TEST(NativeCopy, IsKeptInsideBothBitmapsAndTheClip)
{
    struct {
        char const* why;
        long sx, sy, w, h, dx, dy;
        std::optional<ZVRectT<long>> clip;
        Coverage expected;
    } const cases[] = {
        {"inside", 2, 1, 4, 3, 5, 6, {}, {{5, 6, 4, 3}, -3, -5}},
        {"a source before its edge", -2, -1, 6, 6, 1, 1, {}, {{3, 2, 4, 5}, -3, -2}},
        {"a source beyond its edge", 9, 6, 6, 6, 0, 0, {}, {{0, 0, 3, 2}, 9, 6}},
        {"a target before its edge", 0, 0, 8, 5, -3, -2, {}, {{0, 0, 5, 3}, 3, 2}},
        {"a clip", 0, 0, 12, 8, 0, 0, {{2, 3, 4, 2}}, {{2, 3, 4, 2}, 0, 0}},
        {"a clip beside the copy", 0, 0, 2, 2, 0, 0, {{5, 5, 2, 2}}, {}},
        {"an empty clip", 0, 0, 12, 8, 0, 0, {{2, 3, 0, 2}}, {}},
        {"a clip larger than the target", 0, 0, 12, 8, 0, 0, {{-5, -5, 50, 50}}, {{0, 0, 10, 8}, 0, 0}},
        {"a size as given, so a negative one is nothing", 0, 0, -1, -1, 0, 0, {{0, 0, 10, 10}}, {}},
    };
    NativePtr const source = Marked_Native(12, 8);
    for (auto const& row : cases) {
        SCOPED_TRACE(row.why);
        NativePtr const target = Make_Native(10, 10, 32);
        CopyBitmapZV(source.get(), target.get(), row.clip ? &*row.clip : nullptr, row.sx, row.sy, row.w,
                     row.h, row.dx, row.dy);
        Expect_Words(*target, row.expected);
    }
    NativePtr const target = Make_Native(10, 10, 32);
    CopyBitmapZV(source.get(), target.get(), 0, 0, -1, -1, 1, 1);
    Expect_Words(*target, Coverage{{1, 1, 9, 8}, -1, -1});
}

TEST(NativeCopy, OfOneDepthIsRawAndOtherwiseGoesThroughBytes)
{
    struct {
        long from;
        uint32_t word;
        long to;
        uint32_t expected;  // over a target filled with 0x77
    } const cases[] = {
        {32, 0xA1B2C3D4, 32, 0xA1B2C3D4},
        {32, 0xA1B2C3D4, 24, 0xB2C3D4},
        {32, 0xA1FF80FF, 16, 31 << 10 | 16 << 5 | 31},
        {24, 0xB2C3D4, 32, 0x77B2C3D4},
        {24, 0xB2C3D4, 24, 0xB2C3D4},
        {24, 0x0810F8, 16, 1 << 10 | 2 << 5 | 31},
        {16, 0x8421, 16, 0x8421},
        {16, 0x7FFF, 32, 0x77F8F8F8},
        {16, 3 << 10 | 2 << 5 | 1, 24, 0x181008},
        {8, 0xA5, 8, 0xA5},
        {8, 0xA5, 32, 0x77777777},
        {32, 0xA1B2C3D4, 8, 0x77},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to);
        NativePtr const source = Make_Native(5, 3, row.from), target = Make_Native(5, 3, row.to, 0x77);
        Set_Native(*source, 1, 1, row.word);
        CopyBitmapZV(source.get(), target.get(), 1, 1, 1, 1, 2, 0);
        EXPECT_EQ(Get_Native(*target, 2, 0), row.expected);
        EXPECT_EQ(Get_Native(*target, 1, 0), row.to == 8 ? 0x77U : 0x77777777U >> (32 - row.to));
    }
}

TEST(NativeCopy, StepsByRowBytesAndAddsTheOffset)
{
    BitmapPtr const source = Make_Random(5, 4, ZV_BITMAP_RGBA8, 9), back = Make_Bitmap(5, 4, ZV_BITMAP_RGBA8);
    NativePtr const native = Make_Native(13, 6, 32, 0x11);
    native->Offset = static_cast<int32_t>(native->RowBytes + 3 * 4);
    native->Width = 5;
    native->Height = 4;
    CopyBitmapZV(source.get(), native.get(), 0, 0, -1, -1, 0, 0);
    CopyBitmapZV(native.get(), back.get(), 0, 0, -1, -1, 0, 0);
    Expect_Channels(*back, [&](long x, long y, long channel) {
        return channel == 3 ? 255U : Get_Raw(*source, x, y, channel);
    });
    native->Offset = 0;
    native->Width = 13;
    native->Height = 6;
    Expect_Words(*native, [&](long x, long y) {
        if (!ZVRectT<long>{3, 1, 5, 4}.IsIn(x, y)) return 0x11111111U;
        auto const byte = [&](long channel) { return Get_Raw(*source, x - 3, y - 1, channel); };
        return 0x11000000 | byte(0) << 16 | byte(1) << 8 | byte(2);
    });
}

TEST(NativeCopy, GivesEachTypeItsComponents)
{
    NativePtr const native = Make_Native(1, 1, 32), low = Make_Native(1, 1, 16);
    Set_Native(*native, 0, 0, 0x00112233);
    Set_Native(*low, 0, 0, 0x7FFF);
    struct {
        ZVBitmapType type;
        uint32_t channels[4], fromLow;
    } const cases[] = {{ZV_BITMAP_RGBA8, {0x11, 0x22, 0x33, 255}, 248},
                       {ZV_BITMAP_RGBA10, {0x44, 0x88, 0xCC, 1020}, 992},
                       {ZV_BITMAP_RGBA12, {0x110, 0x220, 0x330, 4080}, 3968},
                       {ZV_BITMAP_RGBA16, {0x1111, 0x2222, 0x3333, 65535}, 0xF8F8}};
    for (auto const& row : cases) {
        BitmapPtr const bitmap = Make_Bitmap(1, 1, row.type);
        CopyBitmapZV(native.get(), bitmap.get(), 0, 0, -1, -1, 0, 0);
        for (long channel = 0; channel < 4; ++channel)
            EXPECT_EQ(Get_Raw(*bitmap, 0, 0, channel), row.channels[channel]) << row.type << " " << channel;
        CopyBitmapZV(low.get(), bitmap.get(), 0, 0, -1, -1, 0, 0);
        EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 1), row.fromLow) << row.type;
    }
}

// ---- other forms ------------------------------------------------------------------------------------------

TEST(MonoToRGBA, RoundsEachByteIntoTheType)
{
    BitmapPtr const mono = Make_Bitmap(16, 16, ZV_BITMAP_MONO8);
    for (int i = 0; i < 256; ++i)
        mono->Pixels[i] = static_cast<unsigned char>(i);
    for (ZVBitmapType const type : rgbaTypes) {
        BitmapPtr const target = Make_Bitmap(16, 16, type, 0x55);
        ConvertMonoToRGBA(static_cast<ZVBufferMono8*>(mono.get()), target.get());
        Expect_Channels(*target, [&](long x, long y, long channel) {
            double const fraction = channel == 3 ? 1.0 : static_cast<double>(x + 16 * y) / 255.0;
            return Is_Float(type)
                       ? std::bit_cast<uint32_t>(static_cast<float>(fraction))
                       : static_cast<uint32_t>(std::lrint(fraction * static_cast<double>(Max_Of(type))));
        });
    }
}

TEST(MonoToRGBA, NeedsEqualSizesAndAMono8Source)
{
    BitmapPtr const mono = Make_Bitmap(4, 4, ZV_BITMAP_MONO8, 9), wide = Make_Bitmap(4, 4, ZV_BITMAP_MONO16);
    BitmapPtr const other = Make_Bitmap(4, 5, ZV_BITMAP_RGBA8, 1), same = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8);
    ConvertMonoToRGBA(static_cast<ZVBufferMono8*>(mono.get()), other.get());
    ConvertMonoToRGBA(nullptr, other.get());
    ConvertMonoToRGBA(static_cast<ZVBufferMono8*>(mono.get()), nullptr);
    EXPECT_TRUE(Is_All(*other, 1));
    testing::internal::CaptureStderr();
    EXPECT_THROW(ConvertMonoToRGBA(reinterpret_cast<ZVBufferMono8*>(wide.get()), same.get()), ZVAssertFail);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Bitmap"), std::string::npos);
}

TEST(AlphaFirst, RotatesTheChannelsOfEachType)
{
    for (ZVBitmapType const type : rgbaTypes) {
        BitmapPtr const source = Make_Random(7, 5, type, 4), target = Make_Bitmap(7, 5, type),
                        inPlace = Copy_Of(*source);
        ConvertRGBAToARGBZV(source.get(), target.get());
        ConvertRGBAToARGBZV(inPlace.get(), inPlace.get());
        Expect_Channels(
            *target, [&](long x, long y, long channel) { return Get_Raw(*source, x, y, (channel + 3) % 4); });
        EXPECT_TRUE(Are_Equal(*target, *inPlace)) << int{type};
        long const count = 3 * source->PackSize;
        std::vector<unsigned char> out(static_cast<std::size_t>(count) + 1, 0xEE);
        ConvertRGBAToARGBZV(source.get(), out.data(), count);
        EXPECT_TRUE(std::equal(out.begin(), out.end() - 1, target->Pixels)) << int{type};
        EXPECT_EQ(out.back(), 0xEE);
    }
    BitmapPtr const mono = Make_Bitmap(7, 5, ZV_BITMAP_MONO8, 1),
                    still = Make_Bitmap(7, 5, ZV_BITMAP_MONO8, 2);
    ConvertRGBAToARGBZV(mono.get(), still.get());
    EXPECT_TRUE(Is_All(*still, 2));
}

TEST(AlphaFirst, PackedPixelsHaveATemplateOfTheirOwn)
{
    BitmapPtr const source = Make_Bitmap(2, 1, ZV_BITMAP_RGBA10),
                    expected = Make_Bitmap(2, 1, ZV_BITMAP_RGBA10);
    auto& buffer = static_cast<ZVBufferRGBA10&>(*source);
    buffer.GetIterator(0, 0)->SetRGBA(1, 2, 3, 4);
    static_cast<ZVBufferRGBA10&>(*expected).GetIterator(0, 0)->SetRGBA(4, 1, 2, 3);
    unsigned char out[10] = {};
    RGBA_To_ARGB<ZVBufferRGBA10, ZVPixelRGBA10, unsigned short>(&buffer, out, 5);
    EXPECT_TRUE(std::ranges::equal(out, Bytes(*expected)));
}
