// Field filters and weighted sums: each row by the told rule, worked out channel by channel, on every vector
// path.
#include "pixels/PixelTestTools.h"

#include "FailingHeap.h"
#include "ZVLibInternal.h"
#include "pixels/BitmapVisit.h"

#include <cmath>
#include <functional>

using namespace PixelTest;

namespace {

/// Calls a template operation with the class of a bitmap.
#define CALL_TYPED(operation, bitmap, ...)                                                                   \
    Visit_RGBA(*(bitmap), [&]<typename Buffer>(Buffer& typed) {                                              \
        operation<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(&typed __VA_OPT__(, )    \
                                                                                        __VA_ARGS__);        \
    })

void Blend(ZVBitmap* bitmap)
{
    CALL_TYPED(Blend_Fields, bitmap);
}

void Weigh(ZVBitmap* source, ZVBitmap* destination, double weight, bool isAdded)
{
    if (isAdded)
        CALL_TYPED(Merge_Opacity, source, destination, weight);
    else
        CALL_TYPED(Copy_Opacity, source, destination, weight);
}

void Weigh_Fields(ZVBitmap* source, ZVBitmap* destination, uint8_t fieldOrder, double first, double second,
                  bool isAdded)
{
    ZVClip clip{};
    clip.FieldOrder = fieldOrder;
    if (isAdded)
        CALL_TYPED(Merge_Fields_With_Opacity, source, static_cast<Buffer*>(destination), &clip, first,
                   second);
    else
        CALL_TYPED(Copy_Fields_With_Opacity, source, static_cast<Buffer*>(destination), &clip, first, second);
}

/// Random pixels; floats are multiples of 2^-10, so that no sum of theirs rounds.
BitmapPtr Make_Picture(long width, long height, ZVBitmapType type, unsigned seed)
{
    BitmapPtr bitmap = Make_Random(width, height, type, seed);
    if (Is_Float(type))
        for (long i = 0; i < bitmap->Size / 4; ++i)
            reinterpret_cast<float*>(bitmap->Pixels)[i] =
                static_cast<float>(reinterpret_cast<uint32_t*>(bitmap->Pixels)[i] % 1025) / 1024.0F;
    return bitmap;
}

/// One channel of a column of a picture as it was, by row, and what becomes of sums: whole numbers in the
/// integer types.
struct Column {
    ZVBitmap const& picture;
    long x, channel;

    double operator[](long y) const { return Number_Of(picture, x, y, channel); }
    double Told(double sum) const { return Is_Float(picture.Type) ? sum : std::trunc(sum); }
};

/// Compares every channel with `told(column, y)` of the picture.
template <typename Told> void Expect_Columns(ZVBitmap const& bitmap, ZVBitmap const& picture, Told told)
{
    Expect_Channels(bitmap, [&](long x, long y, long channel) {
        double const number = told(Column{picture, x, channel}, y);
        return Is_Float(bitmap.Type) ? std::bit_cast<uint32_t>(static_cast<float>(number))
                                     : static_cast<uint32_t>(number);
    });
}

/// Runs a check on all types, in widths around vectors and around the pixels that packed rows go through at a
/// time.
template <typename Check> void For_Sizes(std::initializer_list<long> heights, Check check)
{
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes)
            for (long const width : {1L, 7L, 70L, 301L})
                for (long const height : heights)
                    check(type, width, height);
    });
}

/// A bitmap one pixel wide whose red rows are given, after some work on it.
template <typename Work> std::vector<uint32_t> Reds_After(std::vector<uint32_t> const& reds, Work work)
{
    auto const height = static_cast<long>(reds.size());
    BitmapPtr const bitmap = Make_Bitmap(1, height, ZV_BITMAP_RGBA8);
    for (long y = 0; y < height; ++y)
        Set_Raw(*bitmap, 0, y, 0, reds[static_cast<std::size_t>(y)]);
    work(bitmap.get());
    std::vector<uint32_t> result;
    for (long y = 0; y < height; ++y)
        result.push_back(Get_Raw(*bitmap, 0, y, 0));
    return result;
}

}  // namespace

TEST(Fields, FiltersOnFewRows)
{
    struct Case {
        char const* why;
        void (*filter)(ZVBitmap*);
        std::vector<uint32_t> before, after;
    };
    for (Case const& row : {
             Case{"the lower field of two rows is a copy", Interpolate_Lower_Field, {10, 99}, {10, 10}},
             {"of three, an average", Interpolate_Lower_Field, {10, 99, 21}, {10, 15, 21}},
             {"of four, an average and a copy", Interpolate_Lower_Field, {10, 0, 20, 0}, {10, 15, 20, 20}},
             {"the upper field of two rows is a copy", Interpolate_Upper_Field, {99, 10}, {10, 10}},
             {"of three, two copies", Interpolate_Upper_Field, {99, 10, 98}, {10, 10, 10}},
             {"of four, two of each", Interpolate_Upper_Field, {0, 10, 0, 255}, {10, 10, 132, 255}},
             {"one row stays", Interpolate_Upper_Field, {77}, {77}},
             {"one row stays", Interpolate_Lower_Field, {77}, {77}},
             {"one row stays", Blend, {77}, {77}},
             {"two rows meet", Blend, {10, 21}, {15, 15}},
             {"three rows", Blend, {0, 100, 255}, {50, 113, 177}},
             {"rows that alternate", Blend, {0, 254, 0, 254, 0}, {127, 127, 127, 127, 127}},
             {"full sums keep their range", Blend, {255, 255, 255}, {255, 255, 255}},
         })
        EXPECT_EQ(Reds_After(row.before, row.filter), row.after) << row.why;
}

TEST(Fields, FiltersWorkOnEveryColumn)
{
    For_Sizes({2, 3, 6, 9}, [](ZVBitmapType type, long width, long height) {
        BitmapPtr const picture = Make_Picture(width, height, type, 1);
        for (long const rebuilt : {0, 1}) {
            BitmapPtr const bitmap = Copy_Of(*picture);
            rebuilt ? Interpolate_Lower_Field(bitmap.get()) : Interpolate_Upper_Field(bitmap.get());
            Expect_Columns(*bitmap, *picture, [&](Column const& r, long y) {
                if (y % 2 != rebuilt) return r[y];
                if (y == 0) return r[1];
                return y == height - 1 ? r[y - 1] : r.Told((r[y - 1] + r[y + 1]) / 2);
            });
        }
        BitmapPtr const bitmap = Copy_Of(*picture);
        Blend(bitmap.get());
        Expect_Columns(*bitmap, *picture, [&](Column const& r, long y) {
            if (y == 0) return r.Told((r[0] + r[1]) / 2);
            return r.Told(y == height - 1 ? (r[y - 1] + r[y]) / 2 : (r[y - 1] + 2 * r[y] + r[y + 1]) / 4);
        });
    });
}

// Weights whose products stand on whole numbers, just below them, and beyond 1; no fixed-point factor gives
// the products of the ones just below.
TEST(Fields, EveryValueIsWeighedAsToldAndTruncated)
{
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes) {
            long const count = Is_Float(type) ? 1024 : Max_Of(type) + 1;
            BitmapPtr const source = Make_Bitmap(count / 4, 1, type),
                            before = Make_Bitmap(count / 4, 1, type);
            for (long value = 0; value < count; ++value)
                Set_Number(*source, value / 4, 0, value % 4,
                           static_cast<double>(value) / (Is_Float(type) ? 1000 : 1));
            if (Is_Float(type))
                FillBitmapZV(before.get(), 0x20406080UL);
            else
                Fill_Random(*before, 9);
            for (double const weight :
                 {0.0, 1.0, 0.5, 1.0 / 3, std::nextafter(0.2, 0.0), 0.7, 1.0 / 255, 254.0 / 255, 0.99, 1.5,
                  1.0 / 65535, 1e-9, std::nextafter(1.0, 0.0), std::nextafter(0.1, 0.0)}) {
                for (bool const isAdded : {false, true}) {
                    auto const sum = [&](long x, long channel) {
                        double const product = Number_Of(*source, x, 0, channel) * weight;
                        return Column{*source, x, channel}.Told(product) +
                               (isAdded ? Number_Of(*before, x, 0, channel) : 0.0);
                    };
                    // No sum is above the maximum in use; in a packed pixel one would reach into its
                    // neighbours.
                    auto const spills = [&](long x) {
                        auto const isBeyond = [&](long channel) {
                            return sum(x, channel) > static_cast<double>(Max_Of(type));
                        };
                        return Is_Packed(type) && (isBeyond(0) || isBeyond(1) || isBeyond(2) || isBeyond(3));
                    };
                    BitmapPtr const bitmap = Copy_Of(*before);
                    Weigh(source.get(), bitmap.get(), weight, isAdded);
                    SCOPED_TRACE(testing::Message() << "weight " << weight << ", added " << isAdded);
                    Expect_Channels(*bitmap, [&](long x, long, long channel) {
                        if (spills(x)) return Get_Raw(*bitmap, x, 0, channel);
                        return Is_Float(type) ? std::bit_cast<uint32_t>(static_cast<float>(sum(x, channel)))
                                              : static_cast<uint32_t>(sum(x, channel)) &
                                                    static_cast<uint32_t>(Max_Of(type));
                    });
                }
            }
        }
    });
}

TEST(Fields, BothFieldsAreWeighedAtTheirTimes)
{
    double const first = 0.3, second = std::nextafter(0.2, 0.0);
    For_Sizes({2, 3, 8}, [&](ZVBitmapType type, long width, long height) {
        BitmapPtr const source = Make_Picture(width, height, type, 3),
                        before = Make_Bitmap(width, height, type);
        // Half of the range, so that no sum leaves it.
        Weigh(Make_Picture(width, height, type, 4).get(), before.get(), 0.5, false);
        for (uint8_t const order : {ZV_FIELDS_NONE, ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            for (bool const isAdded : {false, true}) {
                BitmapPtr const bitmap = Copy_Of(*before);
                Weigh_Fields(source.get(), bitmap.get(), order, first, second, isAdded);
                Expect_Columns(*bitmap, *source, [&](Column const& r, long y) {
                    bool const isFirst = (y % 2 == 0) != (order == ZV_FIELDS_LOWER_FIRST);
                    double const average =
                        r.Told((r[y > 0 ? y - 1 : 1] + r[y < height - 1 ? y + 1 : y - 1]) / 2);
                    double const sum = r.Told(r[y] * (isFirst ? first : second)) +
                                       r.Told(average * (isFirst ? second : first));
                    return sum + (isAdded ? Number_Of(*before, r.x, y, r.channel) : 0.0);
                });
            }
        }
    });
}

TEST(Fields, OneWeightOf1ShowsOneField)
{
    BitmapPtr const source = Make_Bitmap(1, 5, ZV_BITMAP_RGBA8);
    for (long y = 0; y < 5; ++y)
        Set_Raw(*source, 0, y, 0, std::array{10U, 200U, 30U, 220U, 50U}[static_cast<std::size_t>(y)]);
    auto const shown = [&](uint8_t order) {
        return Reds_After({0, 0, 0, 0, 0},
                          [&](ZVBitmap* sum) { Weigh_Fields(source.get(), sum, order, 1.0, 0.0, true); });
    };
    EXPECT_EQ(shown(ZV_FIELDS_UPPER_FIRST), (std::vector<uint32_t>{10, 20, 30, 40, 50}));
    EXPECT_EQ(shown(ZV_FIELDS_LOWER_FIRST), (std::vector<uint32_t>{200, 200, 210, 220, 220}));
}

TEST(Fields, WhatHasNoRuleStaysAsItIs)
{
    for (ZVBitmapType const type : monoTypes) {
        BitmapPtr const before = Make_Random(5, 4, type, 5), bitmap = Copy_Of(*before);
        Interpolate_Lower_Field(bitmap.get());
        Interpolate_Upper_Field(bitmap.get());
        EXPECT_TRUE(Are_Equal(*bitmap, *before)) << int{type};
    }
    BitmapPtr const bitmap = Make_Bitmap(5, 4, ZV_BITMAP_RGBA8, 0x44);
    Weigh(Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 0x88).get(), bitmap.get(), 0.5, false);
    Weigh(Make_Bitmap(5, 4, ZV_BITMAP_RGBA16, 0x88).get(), bitmap.get(), 0.5, false);
    Weigh_Fields(Make_Bitmap(5, 3, ZV_BITMAP_RGBA8, 0x88).get(), bitmap.get(), 1, 0.5, 0.5, true);
    EXPECT_TRUE(Is_All(*bitmap, 0x44)) << "sizes and types must be alike";
    Interpolate_Lower_Field(nullptr);
    Interpolate_Upper_Field(nullptr);
    Blend_Fields<ZVBufferRGBA8, ZVPixelRGBA8, unsigned char>(nullptr);
}

TEST(Fields, BlendingWithoutMemoryLeavesThePicture)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    BitmapPtr const before = Make_Picture(64, 8, ZV_BITMAP_RGBA8, 6), bitmap = Copy_Of(*before);
    {
        FailingHeap const heap(0);
        Blend(bitmap.get());
    }
    EXPECT_TRUE(Are_Equal(*bitmap, *before));
}
