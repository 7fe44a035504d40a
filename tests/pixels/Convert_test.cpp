// Row converters against the rules of conversion, one channel at a time in double precision: all values of a
// channel in all its places, on every vector path.
#include "PixelTestTools.h"

#include "pixels/ConvertRows.h"

#include <cmath>
#include <limits>
#include <map>

using namespace PixelTest;

namespace {

constexpr ZVRowFormat allFormats[] = {ROW_RGBA8,     ROW_RGBA10,   ROW_RGBA12,   ROW_RGBA16,
                                      ROW_RGBAFLOAT, ROW_NATIVE16, ROW_NATIVE24, ROW_NATIVE32};

bool Is_Native(ZVRowFormat format)
{
    return format >= ROW_NATIVE16;
}

// ---- the rules --------------------------------------------------------------------------------------------

uint32_t Max_Of(long bits)
{
    return (1U << bits) - 1;
}

uint32_t Between_Integers(uint32_t value, long from, long to)
{
    if (to > from) return static_cast<uint32_t>(uint64_t{value} * Max_Of(to) / Max_Of(from));
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
    double const sum = fraction * Max_Of(bits) + 4503603922337792.0;
    return static_cast<uint32_t>(std::bit_cast<uint64_t>(sum)) & Max_Of(bits);
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

/// A bitmap of one row in any format.
struct Row {
    ZVRowFormat format;
    BitmapPtr bitmap;
    NativePtr native;

    Row(ZVRowFormat rowFormat, long count, int byte = 0) : format(rowFormat)
    {
        if (Is_Native(format))
            native = Make_Native(count, 1,
                                 format == ROW_NATIVE16   ? 16
                                 : format == ROW_NATIVE24 ? 24
                                                          : 32,
                                 byte);
        else
            bitmap = Make_Bitmap(count, 1, static_cast<ZVBitmapType>(format), byte);
    }
    unsigned char* Pixels() const { return native ? native->Pixels : bitmap->Pixels; }
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
    if (row.format == ROW_NATIVE16) return (word >> (10 - 5 * channel) & 31) << 3;
    return word >> (16 - 8 * channel) & 255;
}

void Set_Components(Row& row, long x, uint32_t red, uint32_t green, uint32_t blue)
{
    uint32_t const pad = Get_Native(*row.native, x, 0) & 0xFF000000;
    if (row.format == ROW_NATIVE16)
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
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> values = {0.0F,
                                 -0.0F,
                                 1e-45F,
                                 -1e-45F,
                                 1e-39F,
                                 -1e-39F,
                                 1e-30F,
                                 -1e-30F,
                                 0.5F,
                                 -0.2F,
                                 1.5F,
                                 0.999F,
                                 255.0F / 256,
                                 256.0F / 255,
                                 -1.0F / 255,
                                 2.0F,
                                 -3.0F,
                                 65536.0F,
                                 65537.5F,
                                 -65537.5F,
                                 4194304.0F,
                                 8388609.0F,
                                 2147483648.0F,
                                 -2147483648.0F,
                                 3e9F,
                                 -3e9F,
                                 1e15F,
                                 -1e15F,
                                 3e38F,
                                 -3e38F,
                                 infinity,
                                 -infinity,
                                 nan,
                                 -nan,
                                 std::bit_cast<float>(0x7F800001),
                                 std::bit_cast<float>(0xFFFFFFFF),
                                 std::bit_cast<float>(0x7FFFFFFF)};
    for (long const bits : {8, 10, 12, 16}) {
        for (uint32_t step = 0; step <= Max_Of(bits) + 1; ++step) {
            Add_Neighbours(values, step / static_cast<double>(Max_Of(bits)));
            Add_Neighbours(values, (step + 0.5) / Max_Of(bits));
        }
        for (uint32_t step = 0; step < 64; ++step)  // alpha wraps
            for (double const base : {-2.0, 1.0, 1000.0, 40000.0, 70000.0, 1e6})
                Add_Neighbours(values, base + (step + 0.5) / Max_Of(bits));
    }
    std::mt19937 random(7);
    for (int i = 0; i < 50000; ++i)
        values.push_back(std::bit_cast<float>(static_cast<uint32_t>(random())));
    return values;
}

/// A row that holds every value of a channel, or every hard float, in each of the four places.
Row All_Values(ZVRowFormat format)
{
    if (Is_Native(format)) {
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
    long const count = floats.empty() ? Max_Of(bits) + 1L : static_cast<long>(floats.size());
    Row row(format, count);
    for (long x = 0; x < count; ++x) {
        for (long channel = 0; channel < 4; ++channel) {
            auto const i = static_cast<uint32_t>(x);
            if (floats.empty())
                Set_Raw(*row.bitmap, x, 0, channel, i * factors[channel] & Max_Of(bits));
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

long Count(Row const& row)
{
    return row.native ? row.native->Width : row.bitmap->Width;
}

class ConvertRowsFrom : public testing::TestWithParam<ZVRowFormat> {};

}  // namespace

TEST_P(ConvertRowsFrom, FollowTheRulesForEveryValue)
{
    Row const& from = Source(GetParam());
    long const count = Count(from);
    for (ZVRowFormat const format : allFormats) {
        Row actual(format, count, 0x5A), expected(format, count, 0x5A);
        auto const size = static_cast<std::size_t>(count * Row_Pack_Size(format));
        Convert_By_Rules(from, expected, count);
        On_Each_Target([&] {
            std::memset(actual.Pixels(), 0x5A, size);
            Get_Row_Converter(from.format, format)(from.Pixels(), actual.Pixels(), count);
            auto const [wrong, right] =
                std::mismatch(actual.Pixels(), actual.Pixels() + size, expected.Pixels());
            EXPECT_EQ(wrong, actual.Pixels() + size)
                << "to format " << int{format} << ", pixel "
                << (wrong - actual.Pixels()) / Row_Pack_Size(format) << ", byte "
                << (wrong - actual.Pixels()) % Row_Pack_Size(format) << ": " << int{*wrong} << " for "
                << int{*right};
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
        Get_Row_Converter(GetParam(), format)(source.Pixels(), expected.data(), 250);
        On_Each_Target([&] {
            for (std::size_t count = 1; count <= 250; count += count < 40 ? 1 : 70) {
                std::size_t const shift = count % 7;
                // Blocks of the exact size, so that the address sanitizer sees a byte too far.
                std::vector<unsigned char> from(shift + count * fromPack),
                    to(shift + count * toPack + 3, 0xC3);
                std::copy_n(source.Pixels(), count * fromPack, from.data() + shift);
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
    struct {
        ZVRowFormat from;
        uint32_t value;
        ZVRowFormat to;
        uint32_t expected;
    } const cases[] = {
        {ROW_RGBA8, 255, ROW_RGBA10, 1023},    {ROW_RGBA8, 255, ROW_RGBA12, 4095},
        {ROW_RGBA8, 255, ROW_RGBA16, 65535},   {ROW_RGBA8, 1, ROW_RGBA10, 4},
        {ROW_RGBA8, 1, ROW_RGBA12, 16},        {ROW_RGBA8, 1, ROW_RGBA16, 257},
        {ROW_RGBA10, 1023, ROW_RGBA8, 255},    {ROW_RGBA10, 1023, ROW_RGBA12, 4095},
        {ROW_RGBA10, 512, ROW_RGBA8, 128},     {ROW_RGBA10, 512, ROW_RGBA12, 2049},
        {ROW_RGBA12, 4095, ROW_RGBA16, 65535}, {ROW_RGBA12, 0xABC, ROW_RGBA10, 0x2AF},
        {ROW_RGBA16, 0xABCD, ROW_RGBA8, 0xAB},
    };
    for (auto const& row : cases) {
        Row from(row.from, 1), to(row.to, 1);
        for (long channel = 0; channel < 4; ++channel)
            Set_Raw(*from.bitmap, 0, 0, channel, row.value);
        Get_Row_Converter(row.from, row.to)(from.Pixels(), to.Pixels(), 1);
        for (long channel = 0; channel < 4; ++channel)
            EXPECT_EQ(Get_Raw(*to.bitmap, 0, 0, channel), row.expected)
                << row.value << " channel " << channel;
    }
    struct {
        float value;
        uint32_t in8, in10;
    } const floats[] = {
        {1.5F, 255, 1023}, {-0.2F, 0, 0}, {0.999F, 254, 1022}, {1.0F, 255, 1023}, {0.5F, 127, 512}};
    for (auto const& row : floats) {
        Row from(ROW_RGBAFLOAT, 1), to8(ROW_RGBA8, 1), to10(ROW_RGBA10, 1);
        Set_Float(*from.bitmap, 0, 0, 0, row.value);
        Get_Row_Converter(ROW_RGBAFLOAT, ROW_RGBA8)(from.Pixels(), to8.Pixels(), 1);
        Get_Row_Converter(ROW_RGBAFLOAT, ROW_RGBA10)(from.Pixels(), to10.Pixels(), 1);
        EXPECT_EQ(Get_Raw(*to8.bitmap, 0, 0, 0), row.in8) << row.value;
        EXPECT_EQ(Get_Raw(*to10.bitmap, 0, 0, 0), row.in10) << row.value;
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
