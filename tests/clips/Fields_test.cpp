// Field filters and weighted sums: each row by the told rule, worked out channel by channel, on every vector
// path.
#include "clips/TypedBitmaps.h"

#include "FailingHeap.h"
#include "ZVLibInternal.h"

#include <cmath>
#include <functional>

using namespace PixelTest;

namespace {

// Widths around vectors and around the pixels that packed rows go through at a time.
constexpr long widths[] = {1, 7, 70, 301};

/// Random pixels; floats are multiples of 2^-10, so that no sum of theirs rounds.
BitmapPtr Make_Picture(long width, long height, ZVBitmapType type, unsigned seed)
{
    BitmapPtr bitmap = Make_Bitmap(width, height, type);
    Fill_Random(*bitmap, seed);
    if (type == ZV_BITMAP_RGBAFLOAT)
        for (long i = 0; i < bitmap->Size / 4; ++i)
            reinterpret_cast<float*>(bitmap->Pixels)[i] =
                static_cast<float>(reinterpret_cast<uint32_t*>(bitmap->Pixels)[i] % 1025) / 1024.0F;
    return bitmap;
}

/// Whole numbers for the integer types.
double Truncated(ZVBitmap const& bitmap, double value)
{
    return Is_Float(bitmap.Type) ? value : std::trunc(value);
}

/// Compares every channel with what is expected of it: `expected` gets a function of rows of the picture as
/// it was.
using Rows = std::function<double(long y)>;
template <typename Expected>
void Expect_Rows(ZVBitmap const& bitmap, ZVBitmap const& before, Expected expected)
{
    for (long y = 0; y < bitmap.Height; ++y) {
        for (long x = 0; x < bitmap.Width; ++x) {
            for (long channel = 0; channel < 4; ++channel) {
                Rows const row = [&](long other) { return Number_Of(before, x, other, channel); };
                double const number = Number_Of(bitmap, x, y, channel);
                double const wanted = expected(row, y, number);
                if (Is_Float(bitmap.Type))
                    ASSERT_EQ(static_cast<float>(number), static_cast<float>(wanted)) << x << ", " << y;
                else
                    ASSERT_EQ(number, wanted) << x << ", " << y;
            }
        }
    }
}

template <typename Work> void For_Pictures(std::initializer_list<long> heights, Work work)
{
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes) {
            for (long const width : widths) {
                for (long const height : heights) {
                    SCOPED_TRACE(testing::Message()
                                 << "type " << int{type} << ", " << width << "x" << height);
                    work(type, width, height);
                }
            }
        }
    });
}

/// Calls a template operation with the class of a bitmap.
#define CALL_TYPED(operation, bitmap, ...)                                                                   \
    Visit_Typed(bitmap, [&]<typename Buffer>(Buffer* typed) {                                                \
        operation<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(typed __VA_OPT__(, )     \
                                                                                        __VA_ARGS__);        \
    })
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

/// A bitmap one pixel wide whose red rows are given, after some work on it.
template <typename Work> std::vector<uint32_t> Reds_After(std::vector<uint32_t> const& reds, Work work)
{
    BitmapPtr const bitmap = Make_Bitmap(1, static_cast<long>(reds.size()), ZV_BITMAP_RGBA8);
    for (std::size_t y = 0; y < reds.size(); ++y)
        Set_Raw(*bitmap, 0, static_cast<long>(y), 0, reds[y]);
    work(bitmap.get());
    std::vector<uint32_t> result;
    for (std::size_t y = 0; y < reds.size(); ++y)
        result.push_back(Get_Raw(*bitmap, 0, static_cast<long>(y), 0));
    return result;
}

void Blend(ZVBitmap* bitmap)
{
    CALL_TYPED(Blend_Fields, bitmap);
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
             Case{"of three, an average", Interpolate_Lower_Field, {10, 99, 21}, {10, 15, 21}},
             Case{
                 "of four, an average and a copy", Interpolate_Lower_Field, {10, 0, 20, 0}, {10, 15, 20, 20}},
             Case{"the upper field of two rows is a copy", Interpolate_Upper_Field, {99, 10}, {10, 10}},
             Case{"of three, two copies", Interpolate_Upper_Field, {99, 10, 98}, {10, 10, 10}},
             Case{"of four, a copy and an average",
                  Interpolate_Upper_Field,
                  {0, 10, 0, 255},
                  {10, 10, 132, 255}},
             Case{"one row stays", Interpolate_Upper_Field, {77}, {77}},
             Case{"one row stays", Interpolate_Lower_Field, {77}, {77}},
             Case{"one row stays", Blend, {77}, {77}},
             Case{"two rows meet", Blend, {10, 21}, {15, 15}},
             Case{"three rows", Blend, {0, 100, 255}, {50, 113, 177}},
             Case{"rows that alternate", Blend, {0, 254, 0, 254, 0}, {127, 127, 127, 127, 127}},
             Case{"a uniform frame stays", Blend, {200, 200, 200, 200}, {200, 200, 200, 200}},
             Case{"full sums keep their range", Blend, {255, 255, 255}, {255, 255, 255}},
         })
        EXPECT_EQ(Reds_After(row.before, row.filter), row.after) << row.why;
}

TEST(Fields, OneFieldIsRebuiltFromTheOther)
{
    For_Pictures({2, 3, 6, 9}, [](ZVBitmapType type, long width, long height) {
        for (long const rebuilt : {0, 1}) {
            BitmapPtr const bitmap = Make_Picture(width, height, type, 1),
                            before = Make_Picture(width, height, type, 1);
            rebuilt ? Interpolate_Lower_Field(bitmap.get()) : Interpolate_Upper_Field(bitmap.get());
            Expect_Rows(*bitmap, *before, [&](Rows const& row, long y, double) {
                if (y % 2 != rebuilt) return row(y);
                if (y == 0) return row(1);
                if (y == height - 1) return row(y - 1);
                return Truncated(*before, (row(y - 1) + row(y + 1)) / 2);
            });
        }
    });
}

TEST(Fields, BlendingFiltersEveryColumn)
{
    For_Pictures({2, 3, 8}, [](ZVBitmapType type, long width, long height) {
        BitmapPtr const bitmap = Make_Picture(width, height, type, 2),
                        before = Make_Picture(width, height, type, 2);
        Blend(bitmap.get());
        Expect_Rows(*bitmap, *before, [&](Rows const& row, long y, double) {
            if (y == 0) return Truncated(*before, (row(0) + row(1)) / 2);
            if (y == height - 1) return Truncated(*before, (row(y - 1) + row(y)) / 2);
            return Truncated(*before, (row(y - 1) + 2 * row(y) + row(y + 1)) / 4);
        });
    });
}

// Weights whose products stand on whole numbers, just below them, and beyond 1; no fixed-point factor gives
// the products of the ones just below.
TEST(Fields, EveryValueIsWeighedAsToldAndTruncated)
{
    static double const weights[] = {0.0,
                                     1.0,
                                     0.5,
                                     1.0 / 3,
                                     std::nextafter(0.2, 0.0),
                                     0.7,
                                     1.0 / 255,
                                     254.0 / 255,
                                     0.99,
                                     1.5,
                                     1.0 / 65535,
                                     1e-9,
                                     std::nextafter(1.0, 0.0),
                                     std::nextafter(0.1, 0.0)};
    On_Each_Target([&] {
        for (ZVBitmapType const type : rgbaTypes) {
            bool const isFloat = Is_Float(type);
            uint32_t const count = isFloat ? 1024 : 1U << GetBitsPerChannelZV(type);
            BitmapPtr const source = Make_Bitmap(count / 4, 1, type), sum = Make_Bitmap(count / 4, 1, type);
            for (uint32_t value = 0; value < count; ++value)
                Set_Raw(*source, value / 4, 0, value % 4,
                        isFloat ? std::bit_cast<uint32_t>(static_cast<float>(value) / 1000.0F) : value);
            for (double const weight : weights) {
                for (bool const isAdded : {false, true}) {
                    Fill_Random(*sum, 9);
                    if (isFloat) FillBitmapZV(sum.get(), 0x20406080UL);
                    BitmapPtr const before = Copy_Of(*sum);
                    Weigh(source.get(), sum.get(), weight, isAdded);
                    auto const total = [&](long x, long channel) {
                        double const product = Truncated(*source, Number_Of(*source, x, 0, channel) * weight);
                        return product + (isAdded ? Number_Of(*before, x, 0, channel) : 0.0);
                    };
                    // No sum is above the maximum in use; in a packed pixel one would reach into its
                    // neighbours.
                    auto const spills = [&](long x) {
                        bool any = false;
                        for (long channel = 0; channel < 4; ++channel)
                            any = any || total(x, channel) >= count;
                        return any && (type == ZV_BITMAP_RGBA10 || type == ZV_BITMAP_RGBA12);
                    };
                    long wrong = 0;
                    for (uint32_t value = 0; value < count; ++value) {
                        long const x = value / 4, channel = value % 4;
                        if (spills(x)) continue;
                        uint32_t const expected =
                            isFloat ? std::bit_cast<uint32_t>(static_cast<float>(total(x, channel)))
                                    : static_cast<uint32_t>(total(x, channel)) & (count - 1);
                        wrong += Get_Raw(*sum, x, 0, channel) != expected;
                    }
                    EXPECT_EQ(wrong, 0)
                        << "type " << int{type} << ", weight " << weight << ", added " << isAdded;
                }
            }
        }
    });
}

TEST(Fields, BothFieldsAreWeighedAtTheirTimes)
{
    For_Pictures({2, 3, 8}, [](ZVBitmapType type, long width, long height) {
        for (uint8_t const order : {ZV_FIELDS_NONE, ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            for (bool const isAdded : {false, true}) {
                double const first = 0.3, second = std::nextafter(0.2, 0.0);
                double const upper = order == ZV_FIELDS_LOWER_FIRST ? second : first;
                double const lower = order == ZV_FIELDS_LOWER_FIRST ? first : second;
                BitmapPtr const source = Make_Picture(width, height, type, 3),
                                sum = Make_Picture(width, height, type, 4);
                // Half of the range, so that no sum leaves it.
                Weigh(Make_Picture(width, height, type, 4).get(), sum.get(), 0.5, false);
                BitmapPtr const before = Copy_Of(*sum);
                Weigh_Fields(source.get(), sum.get(), order, first, second, isAdded);
                for (long y = 0; y < height; ++y) {
                    long const above = y > 0 ? y - 1 : 1, below = y < height - 1 ? y + 1 : y - 1;
                    double const own = y % 2 ? lower : upper, other = y % 2 ? upper : lower;
                    for (long x = 0; x < width; ++x) {
                        for (long channel = 0; channel < 4; ++channel) {
                            double const average =
                                Truncated(*source, (Number_Of(*source, x, above, channel) +
                                                    Number_Of(*source, x, below, channel)) /
                                                       2);
                            double const sumOfBoth =
                                Truncated(*source, Number_Of(*source, x, y, channel) * own) +
                                Truncated(*source, average * other);
                            double const expected =
                                (isAdded ? Number_Of(*before, x, y, channel) : 0.0) + sumOfBoth;
                            ASSERT_EQ(static_cast<float>(Number_Of(*sum, x, y, channel)),
                                      static_cast<float>(expected))
                                << x << ", " << y << ", order " << int{order} << ", added " << isAdded;
                        }
                    }
                }
            }
        }
    });
}

TEST(Fields, OneWeightOf1ShowsOneField)
{
    std::vector<uint32_t> const rows = {10, 200, 30, 220, 50};
    auto const shown = [&](uint8_t order) {
        return Reds_After({0, 0, 0, 0, 0}, [&](ZVBitmap* sum) {
            BitmapPtr const source = Make_Bitmap(1, 5, ZV_BITMAP_RGBA8);
            for (long y = 0; y < 5; ++y)
                Set_Raw(*source, 0, y, 0, rows[static_cast<std::size_t>(y)]);
            Weigh_Fields(source.get(), sum, order, 1.0, 0.0, true);
        });
    };
    EXPECT_EQ(shown(ZV_FIELDS_UPPER_FIRST), (std::vector<uint32_t>{10, 20, 30, 40, 50}));
    EXPECT_EQ(shown(ZV_FIELDS_LOWER_FIRST), (std::vector<uint32_t>{200, 200, 210, 220, 220}));
}

TEST(Fields, WhatHasNoRuleStaysAsItIs)
{
    for (ZVBitmapType const type : monoTypes) {
        BitmapPtr const bitmap = Make_Bitmap(5, 4, type), before = Make_Bitmap(5, 4, type);
        Fill_Random(*bitmap, 5);
        Fill_Random(*before, 5);
        Interpolate_Lower_Field(bitmap.get());
        Interpolate_Upper_Field(bitmap.get());
        Blend(bitmap.get());
        Weigh(before.get(), bitmap.get(), 0.5, false);
        Weigh_Fields(before.get(), bitmap.get(), 1, 0.5, 0.5, true);
        EXPECT_TRUE(std::ranges::equal(Bytes(*bitmap), Bytes(*before))) << int{type};
    }
    BitmapPtr const bitmap = Make_Bitmap(5, 4, ZV_BITMAP_RGBA8, 0x44);
    Weigh(Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 0x88).get(), bitmap.get(), 0.5, false);
    Weigh(Make_Bitmap(5, 4, ZV_BITMAP_RGBA16, 0x88).get(), bitmap.get(), 0.5, false);
    Weigh_Fields(Make_Bitmap(5, 3, ZV_BITMAP_RGBA8, 0x88).get(), bitmap.get(), 1, 0.5, 0.5, true);
    EXPECT_EQ(Bytes(*bitmap).front(), 0x44) << "sizes and types must be alike";
    Interpolate_Lower_Field(nullptr);
    Interpolate_Upper_Field(nullptr);
    Blend_Fields<ZVBufferRGBA8, ZVPixelRGBA8, unsigned char>(nullptr);
}

TEST(Fields, BlendingWithoutMemoryLeavesThePicture)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    BitmapPtr const bitmap = Make_Picture(64, 8, ZV_BITMAP_RGBA8, 6),
                    before = Make_Picture(64, 8, ZV_BITMAP_RGBA8, 6);
    {
        FailingHeap const heap(0);
        Blend(bitmap.get());
    }
    EXPECT_TRUE(std::ranges::equal(Bytes(*bitmap), Bytes(*before)));
}
