// Row converters against the rules of conversion, one channel at a time in double precision: all values of a
// channel in all its places, on every vector path.
#include "PixelTestTools.h"

#include <cmath>
#include <limits>
#include <map>

using namespace PixelTest;

namespace {

constexpr ZVRowFormat allFormats[] = {ROW_RGBA8,     ROW_RGBA10,   ROW_RGBA12,   ROW_RGBA16,
                                      ROW_RGBAFLOAT, ROW_NATIVE16, ROW_NATIVE24, ROW_NATIVE32};

// ---- the rules --------------------------------------------------------------------------------------------

uint32_t Max_Of_Bits(long bits)
{
    return (1U << bits) - 1;
}

uint32_t Between_Integers(uint32_t value, long from, long to)
{
    if (to > from) return static_cast<uint32_t>(uint64_t{value} * Max_Of_Bits(to) / Max_Of_Bits(from));
    return value >> (from - to);
}

float To_Float(uint32_t value, long bits)
{
    switch (bits) {
    case 8: return static_cast<float>(value / 255.0);
    case 10: return static_cast<float>(value * 0.0009775171065493646);
    case 12: return static_cast<float>(value * 0.0002442002442002442);
    default: return static_cast<float>(value * 1.5259021896696422e-5);
    }
}

uint32_t From_Float(float value, long bits, bool isAlpha)
{
    if (bits == 8) {
        double const scaled = value * 255.0;
        if (!(scaled >= 0)) return 0;
        return scaled >= 256 ? 255 : static_cast<uint32_t>(scaled);
    }
    double fraction = value;
    if (!isAlpha) fraction = fraction >= 0 ? std::fmin(fraction, 1.0) : 0.0;
    double const sum = fraction * Max_Of_Bits(bits) + 4503603922337792.0;
    return static_cast<uint32_t>(std::bit_cast<uint64_t>(sum)) & Max_Of_Bits(bits);
}

/// Raw channel from one RGBA type to another; bit patterns for float.
uint32_t Convert_Raw(uint32_t raw, long from, long to, bool isAlpha)
{
    if (from == to) return raw;
    if (from == 32) return From_Float(std::bit_cast<float>(raw), to, isAlpha);
    if (to == 32) return std::bit_cast<uint32_t>(To_Float(raw, from));
    return Between_Integers(raw, from, to);
}

/// Raw channel from an 8-bit component of a native pixel, its alpha being 255.
uint32_t From_Component(uint32_t component, long bits)
{
    switch (bits) {
    case 8: return component;
    case 10: return component << 2;
    case 12: return component << 4;
    case 16: return component * 257;
    default: return std::bit_cast<uint32_t>(static_cast<float>(component * 0.00392156862745098));
    }
}

// ---- rows of one format -----------------------------------------------------------------------------------

/// A picture of one row in any format.
struct Row : Picture {
    Row(ZVRowFormat format, long count, int byte = 0)
        : Picture(format < ROW_NATIVE16 ? int{format} : format - ROW_NATIVE16 + native16, count, 1, byte)
    {
    }
    long Bits() const { return native ? 8 : GetBitsPerChannelZV(bitmap.get()); }
};

/// Channel as an 8-bit component where one side is native.
uint32_t Get_Component(Row const& row, long x, long channel)
{
    if (!row.native) {
        uint32_t const raw = Get_Raw(*row.bitmap, x, 0, channel);
        return Convert_Raw(raw, row.Bits(), 8, channel == 3);
    }
    uint32_t const word = Get_Native(*row.native, x, 0);
    if (channel == 3) return 255;
    if (row.Format() == ROW_NATIVE16) return (word >> (10 - 5 * channel) & 31) << 3;
    return word >> (16 - 8 * channel) & 255;
}

void Set_Components(Row& row, long x, uint32_t red, uint32_t green, uint32_t blue)
{
    uint32_t const pad = Get_Native(*row.native, x, 0) & 0xFF000000;
    if (row.Format() == ROW_NATIVE16)
        Set_Native(*row.native, x, 0, red >> 3 << 10 | green >> 3 << 5 | blue >> 3);
    else
        Set_Native(*row.native, x, 0, pad | red << 16 | green << 8 | blue);
}

/// The target that the rules give, over what it held.
void Convert_By_Rules(Row const& from, Row& to, long count)
{
    for (long x = 0; x < count; ++x) {
        if (to.native) {
            Set_Components(to, x, Get_Component(from, x, 0), Get_Component(from, x, 1),
                           Get_Component(from, x, 2));
            continue;
        }
        for (long channel = 0; channel < 4; ++channel) {
            uint32_t const raw = from.native ? From_Component(Get_Component(from, x, channel), to.Bits())
                                             : Convert_Raw(Get_Raw(*from.bitmap, x, 0, channel), from.Bits(),
                                                           to.Bits(), channel == 3);
            Set_Raw(*to.bitmap, x, 0, channel, raw);
        }
    }
}

// ---- sources ----------------------------------------------------------------------------------------------

void Add_Neighbours(std::vector<float>& values, double value)
{
    auto const near = static_cast<float>(value);
    values.insert(values.end(), {std::nextafter(near, -1.0F), near, std::nextafter(near, 2.0F)});
}

/// Numbers at which a conversion can go wrong: those next to where the result changes, at each depth, and
/// what is not a fraction at all.
std::vector<float> Hard_Floats()
{
    std::vector<float> values;
    for (double const magnitude :
         {0.0,         1e-45,        1e-39, 1e-30, 0.2,  0.5,      0.999,       255.0 / 256,
          256.0 / 255, 1.0 / 255,    1.5,   2.0,   3.0,  65536.0,  65537.5,     4194304.0,
          8388609.0,   2147483648.0, 3e9,   1e15,  3e38, HUGE_VAL, std::nan("")})
        values.insert(values.end(), {static_cast<float>(magnitude), static_cast<float>(-magnitude)});
    for (uint32_t const word : {0x7F800001U, 0xFFFFFFFFU, 0x7FFFFFFFU})
        values.push_back(std::bit_cast<float>(word));
    for (long const bits : {8, 10, 12, 16}) {
        for (uint32_t step = 0; step <= Max_Of_Bits(bits) + 1; ++step) {
            Add_Neighbours(values, step / static_cast<double>(Max_Of_Bits(bits)));
            Add_Neighbours(values, (step + 0.5) / Max_Of_Bits(bits));
        }
        for (uint32_t step = 0; step < 64; ++step)  // alpha wraps
            for (double const base : {-2.0, 1.0, 1000.0, 40000.0, 70000.0, 1e6})
                Add_Neighbours(values, base + (step + 0.5) / Max_Of_Bits(bits));
    }
    std::mt19937 random(7);
    for (int i = 0; i < 50000; ++i)
        values.push_back(std::bit_cast<float>(static_cast<uint32_t>(random())));
    return values;
}

/// A row that holds every value of a channel, or every hard float, in each of the four places.
Row All_Values(ZVRowFormat format)
{
    if (format >= ROW_NATIVE16) {
        Row row(format, 65536);
        Fill_Random(*row.native, 3);
        for (long x = 0; x < 65536; ++x) {
            auto const i = static_cast<uint32_t>(x);
            uint32_t const every =
                format == ROW_NATIVE16 ? i : i << 24 | i << 16 | (i * 77 & 0xFF) << 8 | (i * 5 & 0xFF);
            Set_Native(*row.native, x, 0, every);
        }
        return row;
    }
    static constexpr uint32_t factors[] = {1, 3, 77, 12345};  // odd, so that each gives a permutation
    std::vector<float> const floats = format == ROW_RGBAFLOAT ? Hard_Floats() : std::vector<float>();
    long const bits = GetBitsPerChannelZV(static_cast<ZVBitmapType>(format));
    long const count = floats.empty() ? Max_Of_Bits(bits) + 1L : static_cast<long>(floats.size());
    Row row(format, count);
    for (long x = 0; x < count; ++x) {
        for (long channel = 0; channel < 4; ++channel) {
            auto const i = static_cast<uint32_t>(x);
            if (floats.empty())
                Set_Raw(*row.bitmap, x, 0, channel, i * factors[channel] & Max_Of_Bits(bits));
            else
                Set_Float(*row.bitmap, x, 0, channel,
                          floats[static_cast<std::size_t>((x + channel * 9973) % count)]);
        }
    }
    return row;
}

/// The sources, made once.
Row const& Source(ZVRowFormat format)
{
    static std::map<ZVRowFormat, Row> rows;
    auto const found = rows.find(format);
    return found != rows.end() ? found->second : rows.emplace(format, All_Values(format)).first->second;
}

class ConvertRowsFrom : public testing::TestWithParam<ZVRowFormat> {};

}  // namespace

TEST_P(ConvertRowsFrom, FollowTheRulesForEveryValue)
{
    Row const& from = Source(GetParam());
    long const count = from.Width();
    for (ZVRowFormat const format : allFormats) {
        Row expected(format, count, 0x5A);
        Convert_By_Rules(from, expected, count);
        On_Each_Target([&] {
            Row const actual(format, count, 0x5A);
            Get_Row_Converter(GetParam(), format)(from.Pixel(0, 0), actual.Pixel(0, 0), count);
            auto const size = static_cast<std::size_t>(count * actual.Pack());
            auto const [wrong, right] =
                std::ranges::mismatch(actual.All().first(size), expected.All().first(size));
            if (wrong != actual.All().begin() + static_cast<long>(size))
                ADD_FAILURE() << "to format " << int{format} << ", byte " << wrong - actual.All().begin()
                              << ": " << int{*wrong} << " for " << int{*right};
        });
    }
}

TEST_P(ConvertRowsFrom, WorkAtAnyAddressAndTouchNothingBesideThePixels)
{
    Row const& source = Source(GetParam());
    auto const fromPack = static_cast<std::size_t>(Row_Pack_Size(GetParam()));
    for (ZVRowFormat const format : allFormats) {
        auto const toPack = static_cast<std::size_t>(Row_Pack_Size(format));
        std::vector<unsigned char> expected(250 * toPack, 0xC3);
        Get_Row_Converter(GetParam(), format)(source.Pixel(0, 0), expected.data(), 250);
        On_Each_Target([&] {
            for (std::size_t count = 1; count <= 250; count += count < 40 ? 1 : 70) {
                std::size_t const shift = count % 7;
                // Blocks of the exact size, so that the address sanitizer sees a byte too far.
                std::vector<unsigned char> from(shift + count * fromPack),
                    to(shift + count * toPack + 3, 0xC3);
                std::copy_n(source.Pixel(0, 0), count * fromPack, from.data() + shift);
                Get_Row_Converter(GetParam(), format)(from.data() + shift, to.data() + shift,
                                                      static_cast<long>(count));
                ASSERT_EQ(std::count(to.begin(), to.begin() + static_cast<long>(shift), 0xC3),
                          static_cast<long>(shift));
                ASSERT_EQ(std::count(to.end() - 3, to.end(), 0xC3), 3)
                    << count << " to format " << int{format};
                ASSERT_TRUE(std::equal(to.begin() + static_cast<long>(shift), to.end() - 3, expected.begin()))
                    << count << " to format " << int{format};
            }
        });
    }
}

INSTANTIATE_TEST_SUITE_P(All, ConvertRowsFrom, testing::ValuesIn(allFormats),
                         [](auto const& row) { return "Format" + std::to_string(row.param); });

TEST(ConvertRows, ValuesWorkedOutByHand)
{
    auto const number = [](float value) { return std::bit_cast<uint32_t>(value); };
    struct {
        ZVRowFormat from;
        uint32_t value;
        ZVRowFormat to;
        uint32_t expected;
    } const cases[] = {
        {ROW_RGBA8, 255, ROW_RGBA10, 1023},
        {ROW_RGBA8, 255, ROW_RGBA12, 4095},
        {ROW_RGBA8, 1, ROW_RGBA10, 4},
        {ROW_RGBA8, 1, ROW_RGBA12, 16},
        {ROW_RGBA8, 1, ROW_RGBA16, 257},
        {ROW_RGBA10, 512, ROW_RGBA8, 128},
        {ROW_RGBA10, 512, ROW_RGBA12, 2049},
        {ROW_RGBA12, 4095, ROW_RGBA16, 65535},
        {ROW_RGBA12, 0xABC, ROW_RGBA10, 0x2AF},
        {ROW_RGBA16, 0xABCD, ROW_RGBA8, 0xAB},
        {ROW_RGBAFLOAT, number(1.5F), ROW_RGBA8, 255},
        {ROW_RGBAFLOAT, number(-0.2F), ROW_RGBA8, 0},
        {ROW_RGBAFLOAT, number(0.999F), ROW_RGBA8, 254},
        {ROW_RGBAFLOAT, number(0.5F), ROW_RGBA8, 127},
        {ROW_RGBAFLOAT, number(0.999F), ROW_RGBA10, 1022},
        {ROW_RGBAFLOAT, number(0.5F), ROW_RGBA10, 512},
    };
    for (auto const& row : cases) {
        Row from(row.from, 1), to(row.to, 1);
        for (long channel = 0; channel < 4; ++channel)
            Set_Raw(*from.bitmap, 0, 0, channel, row.value);
        Get_Row_Converter(row.from, row.to)(from.Pixel(0, 0), to.Pixel(0, 0), 1);
        Expect_Channels(*to.bitmap, [&](long, long, long) { return row.expected; });
    }
}

TEST(ConvertRows, KnowNoMonoAndNoIndexedRows)
{
    for (ZVBitmapType const type : monoTypes)
        EXPECT_EQ(Get_Row_Converter(type, ZV_BITMAP_RGBA8), nullptr);
    EXPECT_EQ(Get_Row_Converter(ZV_BITMAP_RGBA8, ZV_BITMAP_NONE), nullptr);
    NativePtr const indexed(AllocNativeBitmapZV(1, 1, 8));
    EXPECT_EQ(Row_Format(*indexed), ROW_NONE);
}
