// Types, layouts and single pixels of bitmaps.
#include "PixelTestTools.h"

#include "TestEnvironment.h"
#include "pixels/BitmapVisit.h"

#include <limits>

using namespace PixelTest;

namespace {

struct TypeCase {
    ZVBitmapType type;
    long channels, bitsPerChannel, bitsPerPixel, packSize;
};
TypeCase const typeCases[] = {
    {ZV_BITMAP_NONE, 0, 0, 0, 0},        {ZV_BITMAP_RGBA8, 4, 8, 32, 4},
    {ZV_BITMAP_RGBA10, 4, 10, 40, 5},    {ZV_BITMAP_RGBA12, 4, 12, 48, 6},
    {ZV_BITMAP_RGBA16, 4, 16, 64, 8},    {ZV_BITMAP_RGBAFLOAT, 4, 32, 128, 16},
    {ZV_BITMAP_MONO8, 1, 8, 8, 1},       {ZV_BITMAP_MONO10, 1, 10, 10, 2},
    {ZV_BITMAP_MONO12, 1, 12, 12, 2},    {ZV_BITMAP_MONO16, 1, 16, 16, 2},
    {ZV_BITMAP_MONOFLOAT, 1, 32, 32, 4},
};

class BitmapFailure : public EnvironmentTest {};

/// The bytes of a bitmap of one pixel with these raw channels.
template <typename Buffer, typename... Channels>
std::vector<int> Pixel_Image(ZVBitmapType type, Channels... channels)
{
    BitmapPtr const bitmap = Make_Bitmap(1, 1, type, 0x55);
    using Channel = typename Buffer::ChannelType;
    static_cast<Buffer&>(*bitmap).GetIterator(0, 0)->SetRGBA(static_cast<Channel>(channels)...);
    auto const bytes = Bytes(*bitmap);
    return {bytes.begin(), bytes.end()};
}

}  // namespace

TEST(BitmapTypes, AreMadeOfTheirChannels)
{
    for (TypeCase const& row : typeCases) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ((std::array{GetChannelsZV(row.type), GetBitsPerChannelZV(row.type),
                              GetBitsPerPixelZV(row.type), GetPackSizeZV(row.type)}),
                  (std::array{row.channels, row.bitsPerChannel, row.bitsPerPixel, row.packSize}));
        BitmapPtr const bitmap(AllocBitmapZV(7, 3, row.type, "label"));
        ASSERT_EQ(bitmap != nullptr, row.type != ZV_BITMAP_NONE);
        ZVBitmap const* const its = bitmap.get();
        EXPECT_EQ((std::array{GetChannelsZV(its), GetBitsPerChannelZV(its), GetBitsPerPixelZV(its),
                              GetPackSizeZV(its)}),
                  (std::array{row.channels, row.bitsPerChannel, row.bitsPerPixel, row.packSize}));
        if (!bitmap) continue;
        EXPECT_EQ(bitmap->Type, row.type);
        EXPECT_EQ(bitmap->PackSize, row.packSize);
        EXPECT_EQ(bitmap->RowBytes, 7 * row.packSize);
        EXPECT_EQ(bitmap->Size, 21 * row.packSize);
        EXPECT_EQ(bitmap->ByteToFrac[51], 0.2);
    }
    EXPECT_EQ(AllocBitmapNoPixelsZV(7, 3, static_cast<ZVBitmapType>(11)), nullptr);
}

TEST(BitmapTypes, VisitsReachTheClassOfEachType)
{
    for (TypeCase const& row : typeCases) {
        if (row.type == ZV_BITMAP_NONE) continue;
        BitmapPtr const bitmap = Make_Bitmap(1, 1, row.type);
        long seen = 0;
        auto const note = [&](auto const& buffer) {
            seen = static_cast<long>(sizeof(*buffer.GetIterator(0, 0)));
        };
        bool const isMono = row.channels == 1;
        EXPECT_EQ(Visit_RGBA(*bitmap, note), !isMono);
        EXPECT_EQ(Visit_Mono(*bitmap, note), isMono);
        EXPECT_EQ(seen, row.packSize);
        seen = 0;
        EXPECT_TRUE(Visit_All(std::as_const(*bitmap), note));
        EXPECT_EQ(seen, row.packSize);
    }
}

TEST_F(BitmapFailure, SizesBeyond31BitsOfBytesAreRefused)
{
    struct {
        long width, height;
        ZVBitmapType type;
    } const cases[] = {
        {-1, 4, ZV_BITMAP_MONO8},
        {4, -1, ZV_BITMAP_MONO8},
        {65536, 32768, ZV_BITMAP_MONO8},
        {1L << 31, 1, ZV_BITMAP_MONO8},
        {1, 1L << 31, ZV_BITMAP_MONO8},
        {1L << 29, 1, ZV_BITMAP_RGBA8},
        {1L << 33, 1L << 33, ZV_BITMAP_RGBAFLOAT},
        {std::numeric_limits<long>::max(), 2, ZV_BITMAP_RGBA10},
        {1L << 29, 0, ZV_BITMAP_RGBA8},
        {1L << 31, 1L << 31, ZV_BITMAP_RGBAFLOAT},
    };
    for (auto const& row : cases) {
        SetError(ZV_ERR_NONE);
        EXPECT_EQ(AllocBitmapZV(row.width, row.height, row.type, nullptr), nullptr)
            << row.width << " " << row.height;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_MEMORY);
    }
    SetError(ZV_ERR_NONE);
    BitmapPtr const largest(AllocBitmapNoPixelsZV(65535, 32768, ZV_BITMAP_MONO8));
    EXPECT_EQ(largest->Size, 65535 * 32768);
    BitmapPtr const empty(AllocBitmapZV(0, 5, ZV_BITMAP_RGBA8, nullptr));
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
}

TEST(Bitmap, KeepsThePixelsItHas)
{
    unsigned char own[5 * 4];
    BitmapPtr const bitmap(AllocBitmapNoPixelsZV(5, 1, ZV_BITMAP_RGBA8));
    EXPECT_EQ(bitmap->Pixels, nullptr);
    bitmap->Pixels = own;
    EXPECT_EQ(AllocBitmapPixelsZV(bitmap.get(), nullptr), own);
    bitmap->Pixels = nullptr;
    void* const pixels = AllocBitmapPixelsZV(bitmap.get(), nullptr);
    EXPECT_NE(pixels, nullptr);
    EXPECT_EQ(AllocBitmapPixelsZV(bitmap.get(), nullptr), pixels);
    FreeBitmapZV(static_cast<ZVBitmap*>(nullptr));
}

TEST(PixelLayout, ChannelsStandInMemoryAsTold)
{
    EXPECT_EQ(Pixel_Image<ZVBufferRGBA8>(ZV_BITMAP_RGBA8, 1, 2, 3, 4), (std::vector{1, 2, 3, 4}));
    EXPECT_EQ(Pixel_Image<ZVBufferRGBA10>(ZV_BITMAP_RGBA10, 1023, 0, 1023, 0),
              (std::vector{0xFF, 0xC0, 0x0F, 0xFC, 0x00}));
    EXPECT_EQ(Pixel_Image<ZVBufferRGBA12>(ZV_BITMAP_RGBA12, 0xABC, 0x123, 0x456, 0x789),
              (std::vector{0xAB, 0xC1, 0x23, 0x45, 0x67, 0x89}));
    EXPECT_EQ(Pixel_Image<ZVBufferRGBA16>(ZV_BITMAP_RGBA16, 0x0102, 0x0304, 0x0506, 0x0708),
              (std::vector{2, 1, 4, 3, 6, 5, 8, 7}));
}

TEST(PixelLayout, WritingOneChannelKeepsTheOthers)
{
    for (ZVBitmapType const type : rgbaTypes) {
        SCOPED_TRACE(type);
        BitmapPtr const actual = Make_Random(64, 4, type, 1), expected = Copy_Of(*actual);
        Visit_RGBA(*actual, [&](auto& buffer) {
            std::mt19937 random(2);
            for (long i = 0; i < 256; ++i) {
                using Pixel = typename std::remove_reference_t<decltype(buffer)>::PixelType;
                using Channel = typename Pixel::Channel;
                auto* const pixel = buffer.GetIterator(i % 64, i / 64);
                auto const value =
                    static_cast<Channel>(random() & std::min<unsigned long>(Pixel::max, 0xFFFF));
                void (Pixel::*const setters[])(Channel) = {&Pixel::Red, &Pixel::Green, &Pixel::Blue,
                                                           &Pixel::Alpha};
                (pixel->*setters[i % 4])(value);
                if constexpr (Pixel::isFloat)
                    Set_Float(*expected, i % 64, i / 64, i % 4, value);
                else
                    Set_Raw(*expected, i % 64, i / 64, i % 4, value);
                EXPECT_EQ(std::memcmp(pixel, Pixel_Bytes(*expected, i % 64, i / 64), Pixel::packSize), 0);
            }
        });
        EXPECT_TRUE(Are_Equal(*actual, *expected));
    }
}

TEST(PixelFractions, RoundHalvesToEvenAndAnySign)
{
    for (auto const& [value, rounded] : {std::pair(2.5, 2L),
                                         {3.5, 4L},
                                         {-0.4, 0L},
                                         {-1.6, -2L},
                                         {-2.5, -2L},
                                         {0.5, 0L},
                                         {2147483647.0, 2147483647L},
                                         {-2147483648.0, -2147483648L}})
        EXPECT_EQ(f_round(value), rounded) << value;
}

TEST(PixelFractions, AreTheValueTimesTheToldConstant)
{
    struct {
        ZVBitmapType type;
        uint32_t max;
        double constant;
    } const cases[] = {{ZV_BITMAP_RGBA10, 1023, 0.0009775171065493646},
                       {ZV_BITMAP_RGBA12, 4095, 0.0002442002442002442},
                       {ZV_BITMAP_RGBA16, 65535, 1.5259021896696422e-5},
                       {ZV_BITMAP_MONO10, 1023, 0.0009775171065493646},
                       {ZV_BITMAP_RGBA8, 255, 0}};
    for (auto const& row : cases) {
        SCOPED_TRACE(row.type);
        BitmapPtr const bitmap = Make_Bitmap(2, 1, row.type);
        long const last = GetChannelsZV(row.type) - 1;
        for (uint32_t value = 0; value <= row.max; ++value) {
            double const expected = row.constant != 0 ? value * row.constant : value / 255.0;
            Set_Raw(*bitmap, 0, 0, 0, value);
            Set_Raw(*bitmap, 0, 0, last, row.max - value);
            ZVFloatRGB pixel{};
            ReadFloatPixelZV(bitmap.get(), 0, 0, &pixel);
            ASSERT_EQ(pixel.red, last > 0 ? expected : (row.max - value) * row.constant);
            WriteFloatPixelZV(bitmap.get(), 1, 0, &pixel);
            ASSERT_EQ(std::memcmp(Pixel_Bytes(*bitmap, 0, 0), Pixel_Bytes(*bitmap, 1, 0),
                                  static_cast<std::size_t>(bitmap->PackSize)),
                      0);
        }
    }
}

TEST(PixelFractions, OneIsTheMaximumAndBeyondItWraps)
{
    for (ZVBitmapType const type : {ZV_BITMAP_RGBA8, ZV_BITMAP_RGBA10, ZV_BITMAP_RGBA12, ZV_BITMAP_RGBA16}) {
        BitmapPtr const bitmap = Make_Bitmap(1, 1, type);
        uint32_t const max = (1U << GetBitsPerChannelZV(type)) - 1;
        ZVFloatRGB const in{1.0, 0.0, 2.0, -1.0 / max};
        WriteFloatPixelZV(bitmap.get(), 0, 0, &in);
        Expect_Channels(*bitmap, [=](long, long, long channel) {
            return std::array{max, 0U, max - 1, max}[static_cast<std::size_t>(channel)];
        });
    }
    BitmapPtr const bitmap = Make_Bitmap(1, 1, ZV_BITMAP_RGBA10);
    auto* const pixel = static_cast<ZVBufferRGBA10&>(*bitmap).GetIterator(0, 0);
    pixel->BlueDenorm(1.0);
    pixel->GreenDenorm(700.5);
    EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 2), 1U);
    EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 1), 700U);
}

TEST(SinglePixels, OfFloatAndMonoBitmaps)
{
    BitmapPtr const wide = Make_Bitmap(2, 2, ZV_BITMAP_RGBAFLOAT);
    ZVFloatRGB const in{-7.0, 0.1, 2.0, 1e6};
    WriteFloatPixelZV(wide.get(), 1, 1, &in);
    ZVFloatRGB out{};
    ReadFloatPixelZV(wide.get(), 1, 1, &out);
    EXPECT_EQ(out.red, -7.0);
    EXPECT_EQ(out.green, static_cast<double>(0.1F));
    EXPECT_EQ(out.alpha, 1e6);
    BitmapPtr const mono = Make_Bitmap(2, 2, ZV_BITMAP_MONO12);
    ZVFloatRGB const grey{1.0, 0.0, 0.0, 0.0};
    WriteFloatPixelZV(mono.get(), 0, 1, &grey);
    ReadFloatPixelZV(mono.get(), 0, 1, &out);
    EXPECT_EQ(Get_Raw(*mono, 0, 1, 0), 4095U);
    EXPECT_EQ((std::vector{out.red, out.green, out.blue, out.alpha}), (std::vector{1.0, 1.0, 1.0, 1.0}));
}

TEST(SinglePixels, OutsideTheBitmapDoNothing)
{
    BitmapPtr const bitmap = Make_Bitmap(3, 2, ZV_BITMAP_RGBA8),
                    none(AllocBitmapNoPixelsZV(3, 2, ZV_BITMAP_RGBA8));
    ZVFloatRGB pixel{1.0, 1.0, 1.0, 1.0};
    long const places[][2] = {{-1, 0}, {3, 0}, {0, -1}, {0, 2}, {1L << 40, 0}};
    for (auto const& [x, y] : places) {
        WriteFloatPixelZV(bitmap.get(), x, y, &pixel);
        ReadFloatPixelZV(bitmap.get(), x, y, &pixel);
    }
    WriteFloatPixelZV(none.get(), 0, 0, &pixel);
    ReadFloatPixelZV(static_cast<ZVBitmap*>(nullptr), 0, 0, &pixel);
    EXPECT_EQ(pixel.red, 1.0);
    EXPECT_TRUE(Is_All(*bitmap, 0));
}
