// Bitmaps dimmed to show that a control is disabled.
#include "BitmapVisit.h"
#include "ChannelByte.h"
#include "ColorShade.h"
#include "ConvertRows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

namespace {

// ---- pixels of bytes --------------------------------------------------------------------------------------

// Bytes dimmed at a time: whole pixels of three and four bytes, and whole vectors.
constexpr long stepBytes = 48;

/// The shade of each byte of a step, and the bytes that stay as they are.
struct ByteShades {
    std::array<int16_t, stepBytes> shades;
    std::array<uint8_t, stepBytes> kept;

    /// @param order  shift within the shade of each byte of a pixel; negative for one that stays
    ByteShades(uint32_t shade, std::array<int, 4> const& order, long packSize)
    {
        for (std::size_t i = 0; i < stepBytes; ++i) {
            int const shift = order[i % static_cast<std::size_t>(packSize)];
            shades[i] = shift < 0 ? int16_t{0} : static_cast<int16_t>(shade >> shift & 0xFF);
            kept[i] = shift < 0 ? 0xFF : 0;
        }
    }
};

uint8_t Dim_Byte(uint8_t byte, int16_t shade, uint8_t kept)
{
    // In 16 bits, where a vector holds most: the distance times 3 / 10 is its size times 3 / 10, signed.
    auto const distance = static_cast<int16_t>(byte - shade);
    auto const size = static_cast<uint16_t>((distance < 0 ? -distance : distance) * 3);
    auto const step = static_cast<int16_t>(static_cast<uint16_t>(size * 6554U >> 16));
    auto const dimmed = static_cast<uint8_t>(shade + (distance < 0 ? -step : step));
    return static_cast<uint8_t>((byte & kept) | (dimmed & ~kept));
}

void Dim_Bytes(unsigned char* bytes, ByteShades const& shades, long count)
{
    for (; count >= stepBytes; bytes += stepBytes, count -= stepBytes) {
        for (std::size_t i = 0; i < stepBytes; ++i)
            bytes[i] = Dim_Byte(bytes[i], shades.shades[i], shades.kept[i]);
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        bytes[i] = Dim_Byte(bytes[i], shades.shades[i], shades.kept[i]);
}

// ---- 16-bit native pixels ---------------------------------------------------------------------------------

/// Dimmed values of the three fields, by field value.
struct FieldTables {
    std::array<std::array<uint16_t, 32>, 3> fields;

    explicit FieldTables(uint32_t shade)
    {
        for (unsigned field = 0; field < 3; ++field) {
            for (unsigned value = 0; value < 32; ++value) {
                int32_t const dimmed = Disabled_Component(static_cast<int32_t>(value << 3),
                                                          static_cast<int32_t>(shade >> 8 * field & 0xFF));
                fields[field][value] = static_cast<uint16_t>(dimmed >> 3 << 5 * field);
            }
        }
    }
};

void Dim_Words(unsigned char* bytes, FieldTables const& tables, long count)
{
    for (long i = 0; i < count; ++i, bytes += sizeof(uint16_t)) {
        uint16_t word;
        std::memcpy(&word, bytes, sizeof(word));
        word = static_cast<uint16_t>(tables.fields[2][word >> 10 & 31] | tables.fields[1][word >> 5 & 31] |
                                     tables.fields[0][word & 31]);
        std::memcpy(bytes, &word, sizeof(word));
    }
}

// ---- other pixels -----------------------------------------------------------------------------------------

template <typename Channel> Channel Dim_Channel(Channel value, Channel shade)
{
    if constexpr (std::is_floating_point_v<Channel>) {
        double const dimmed = shade + (static_cast<double>(value) - shade) * 300.0 / 1000.0;
        return static_cast<Channel>(std::clamp(dimmed, 0.0, 1.0));
    } else {
        return static_cast<Channel>(Disabled_Component(value, shade));
    }
}

template <typename Pixel> void Dim_Pixels(Pixel* pixel, uint32_t shade, long count)
{
    using Channel = typename Pixel::Channel;
    auto const redShade = Channel_From_Byte<Pixel>(shade >> 16 & 0xFF);
    auto const greenShade = Channel_From_Byte<Pixel>(shade >> 8 & 0xFF);
    auto const blueShade = Channel_From_Byte<Pixel>(shade & 0xFF);
    for (long i = 0; i < count; ++i, ++pixel) {
        if constexpr (Pixel::isMono) {
            pixel->Red(Dim_Channel(pixel->Red(), redShade));
        } else {
            Channel r, g, b, a;
            pixel->GetRGBA(r, g, b, a);
            pixel->SetRGBA(Dim_Channel(r, redShade), Dim_Channel(g, greenShade), Dim_Channel(b, blueShade),
                           a);
        }
    }
}

/// The part of a rectangle, null for all, that lies in a bitmap; empty without pixels.
template <typename Bitmap> ZVRectT<long> Area_Of(Bitmap const* bitmap, ZVRectT<long> const* rect)
{
    if (!bitmap || !bitmap->Pixels) return {};
    ZVRectT<long> area{0, 0, bitmap->Width, bitmap->Height};
    if (rect) area.Intersect(*rect);
    return area;
}

}  // namespace

void DisableBitmapZV(ZVNativeBitmap* bitmap, ZVRectT<long> const* rect)
{
    ZVRectT<long> const area = Area_Of(bitmap, rect);
    if (area.IsEmpty()) return;
    ZVRowFormat const format = Row_Format(*bitmap);
    if (format == ROW_NONE) return;
    uint32_t const shade = Disabled_Shade();
    long const packSize = Row_Pack_Size(format);
    unsigned char* row = bitmap->Pixels + bitmap->Offset + area.y * bitmap->RowBytes + area.x * packSize;
    FieldTables const tables(shade);
    ByteShades const shades(shade, {0, 8, 16, -1}, packSize);
    for (long y = 0; y < area.height; ++y, row += bitmap->RowBytes) {
        if (format == ROW_NATIVE16)
            Dim_Words(row, tables, area.width);
        else
            Dim_Bytes(row, shades, area.width * packSize);
    }
}

void DisableBitmapZV(ZVBitmap* bitmap, ZVRectT<long> const* rect)
{
    ZVRectT<long> const area = Area_Of(bitmap, rect);
    if (area.IsEmpty()) return;
    uint32_t const shade = Disabled_Shade();
    ByteShades const shades(shade, {16, 8, 0, -1}, sizeof(ZVPixelRGBA8));
    Visit_All(*bitmap, [&]<typename Buffer>(Buffer& buffer) {
        for (long y = area.y; y <= area.Bottom(); ++y) {
            auto* const pixels = buffer.GetIterator(area.x, y);
            if constexpr (std::is_same_v<Buffer, ZVBufferRGBA8>)
                Dim_Bytes(reinterpret_cast<unsigned char*>(pixels), shades, area.width * buffer.PackSize);
            else
                Dim_Pixels(pixels, shade, area.width);
        }
    });
}
