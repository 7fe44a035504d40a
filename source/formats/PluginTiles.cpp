// See PluginTiles.h.
#include "PluginTiles.h"

#include "pixels/BitmapVisit.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr int64_t One = 1 << 16;  // in 16.16
constexpr int LastPlane = 4;
constexpr int AlphaChannel = 3;

/// How often a plug-in may give or ask for a whole picture, and how many tiles it has beyond that.
constexpr int64_t MostPasses = 16;
constexpr int64_t SpareTiles = 4096;

struct Range {
    long begin, end;
};

/// Steps from the first position of an axis to the first one at or behind a place of the picture.
long Steps_To(TileAxis const& axis, long place)
{
    int64_t const distance = place * One - axis.source;
    if (distance <= 0) return 0;
    long const most = axis.end - axis.start;
    return axis.step == 0 ? most : std::min<int64_t>((distance + axis.step - 1) / axis.step, most);
}

/// Pixels of the bitmap that show places from `first` up to and without `end`.
Range Pixels_Of(TileAxis const& axis, long first, long end)
{
    return {axis.start + Steps_To(axis, first), axis.start + Steps_To(axis, end)};
}

Range Planes_Of(FormatRecord const& tile)
{
    return {std::clamp<long>(tile.loPlane, 0, LastPlane), std::min<long>(tile.hiPlane, LastPlane) + 1};
}

/// Channel of a plane, or -1 for one that is not kept.
int Channel_Of(FormatRecord const& tile, long plane)
{
    int const channel = tile.planeMap[plane];
    return channel >= 0 && channel <= AlphaChannel ? channel : -1;
}

bool Has_Alpha(FormatRecord const& tile)
{
    Range const planes = Planes_Of(tile);
    for (long plane = planes.begin; plane < planes.end; ++plane)
        if (Channel_Of(tile, plane) == AlphaChannel) return true;
    return false;
}

/// Where the samples of a row of the picture begin in a tile.
uint8_t* Samples_Of_Row(FormatRecord const& tile, int64_t row)
{
    return static_cast<uint8_t*>(tile.data) + (row - tile.theRect.top) * tile.rowBytes;
}

/// Calls `moveRow` for each row that the tile and the bitmap share, with the row's pixels, the samples, and
/// the pixels that they share.
template <typename Buffer, typename MoveRow>
void For_Rows(Buffer& buffer, FormatRecord const& tile, TilePlacement const& placement, MoveRow moveRow)
{
    Range const rows = Pixels_Of(placement.y, tile.theRect.top, tile.theRect.bottom);
    Range const columns = Pixels_Of(placement.x, tile.theRect.left, tile.theRect.right);
    if (columns.begin >= columns.end) return;
    for (long y = rows.begin; y < rows.end; ++y)
        moveRow(buffer.GetIterator(0, y), Samples_Of_Row(tile, placement.y.Position(y) >> 16), columns);
}

/// Calls `move` for each pixel of a row with the pixel and its column in the tile.
template <typename Pixel, typename Move>
void For_Pixels(Pixel* pixels, Range columns, FormatRecord const& tile, TileAxis const& axis, Move move)
{
    int64_t position = axis.Position(columns.begin) - tile.theRect.left * One;
    for (long x = columns.begin; x < columns.end; ++x, position += axis.step)
        move(pixels[x], position >> 16);
}

/// A tile of a picture that stands in plane 0 alone, in a bitmap of 8 bits a channel.
/// @param show  sets a pixel from the samples of its row and its column
template <typename Show>
void Take_First_Plane(ZVBitmap& bitmap, FormatRecord const& tile, TilePlacement const& placement, Show show)
{
    Range const planes = Planes_Of(tile);
    if (bitmap.Type != ZV_BITMAP_RGBA8 || planes.begin > 0 || planes.end < 1) return;
    For_Rows(static_cast<ZVBufferRGBA8&>(bitmap), tile, placement,
             [&](ZVPixelRGBA8* pixels, uint8_t const* samples, Range columns) {
                 For_Pixels(pixels, columns, tile, placement.x,
                            [&](ZVPixelRGBA8& pixel, int64_t column) { show(pixel, samples, column); });
             });
}

/// Samples of a row by channel, each as if the tile began at it; null for a channel that has no plane.
using ChannelSamples = std::array<uint8_t const*, AlphaChannel + 1>;

ChannelSamples Sort_Planes(FormatRecord const& tile, uint8_t const* samples)
{
    ChannelSamples sorted = {};
    Range const planes = Planes_Of(tile);
    for (long plane = planes.begin; plane < planes.end; ++plane)
        if (int const channel = Channel_Of(tile, plane); channel >= 0)
            sorted[static_cast<std::size_t>(channel)] = samples + plane * int64_t{tile.planeBytes};
    return sorted;
}

/// A sample as the pixel stores it: what goes beyond its bits is left out.
template <typename Pixel> typename Pixel::Channel Load_Sample(uint8_t const* bytes)
{
    typename Pixel::Channel sample;
    std::memcpy(&sample, bytes, sizeof sample);
    if constexpr (Pixel::isPacked) sample &= Pixel::max;
    return sample;
}

template <typename Buffer>
void Take_Planes(Buffer& buffer, FormatRecord const& tile, TilePlacement const& placement, bool isOpaque)
{
    using Pixel = typename Buffer::PixelType;
    constexpr auto full = static_cast<typename Pixel::Channel>(Pixel::max);
    For_Rows(buffer, tile, placement, [&](Pixel* pixels, uint8_t const* samples, Range columns) {
        ChannelSamples const sorted = Sort_Planes(tile, samples);
        uint8_t const *const red = sorted[0], *const green = sorted[1], *const blue = sorted[2],
                             *const alpha = sorted[AlphaChannel];
        if (red && green && blue && (alpha || isOpaque)) {
            For_Pixels(pixels, columns, tile, placement.x, [&](Pixel& pixel, int64_t column) {
                int64_t const at = column * tile.colBytes;
                pixel.SetRGBA(Load_Sample<Pixel>(red + at), Load_Sample<Pixel>(green + at),
                              Load_Sample<Pixel>(blue + at), alpha ? Load_Sample<Pixel>(alpha + at) : full);
            });
            return;
        }
        if (isOpaque)
            for (long x = columns.begin; x < columns.end; ++x)
                pixels[x].Alpha(full);
        for (int channel = 0; channel <= AlphaChannel; ++channel)
            if (uint8_t const* const first = sorted[static_cast<std::size_t>(channel)])
                For_Pixels(pixels, columns, tile, placement.x, [&](Pixel& pixel, int64_t column) {
                    pixel.Set(channel, Load_Sample<Pixel>(first + column * tile.colBytes));
                });
    });
}

TileAxis Scaled_Axis(long pictureSize, long offset, long size, long bitmapSize)
{
    int64_t const step = pictureSize * One / size;
    if (offset >= size || offset <= -bitmapSize) return {0, 0, 0, step};
    if (offset < 0) return {-offset, std::min(size - offset, bitmapSize), 0, step};
    return {0, std::min(size - offset, bitmapSize), offset * step, step};
}

}  // namespace

TilePlacement Place_Unscaled(ZVBitmap const& bitmap)
{
    return {{0, bitmap.Width, 0, One}, {0, bitmap.Height, 0, One}};
}

TilePlacement Place_Scaled(ZVBitmap const& bitmap, long pictureWidth, long pictureHeight,
                           ZVRectT<long> const& size)
{
    return {Scaled_Axis(pictureWidth, size.x, size.width, bitmap.Width),
            Scaled_Axis(pictureHeight, size.y, size.height, bitmap.Height)};
}

void TileReader::Take(FormatRecord const& tile)
{
    switch (tile.imageMode) {
    case plugInModeBitmap:
        Take_First_Plane(bitmap_, tile, placement_,
                         [](ZVPixelRGBA8& pixel, uint8_t const* bits, int64_t column) {
                             uint8_t const value = bits[column >> 3] & 0x80 >> (column & 7) ? 255 : 0;
                             pixel.SetBytes(value, value, value, 255);
                         });
        break;
    case plugInModeGrayScale:
        Take_First_Plane(bitmap_, tile, placement_,
                         [&](ZVPixelRGBA8& pixel, uint8_t const* samples, int64_t column) {
                             uint8_t const gray = samples[column * tile.colBytes];
                             pixel.SetBytes(gray, gray, gray, 255);
                         });
        break;
    case plugInModeIndexedColor:
        Take_First_Plane(
            bitmap_, tile, placement_, [&](ZVPixelRGBA8& pixel, uint8_t const* samples, int64_t column) {
                uint8_t const index = samples[column * tile.colBytes];
                pixel.SetBytes(tile.redLUT[index], tile.greenLUT[index], tile.blueLUT[index], 255);
            });
        break;
    case plugInModeRGBColor:
    case plugInModeRGB48:
        hasAlpha_ = hasAlpha_ || Has_Alpha(tile);
        Visit_RGBA(bitmap_, [&](auto& buffer) { Take_Planes(buffer, tile, placement_, !hasAlpha_); });
        break;
    default: break;
    }
}

void Fill_Tile(FormatRecord const& tile, ZVBitmap const& bitmap)
{
    bool const isKnown = tile.imageMode == plugInModeGrayScale || tile.imageMode == plugInModeIndexedColor ||
                         tile.imageMode == plugInModeRGBColor || tile.imageMode == plugInModeRGB48;
    if (!isKnown) return;
    Range const planes = Planes_Of(tile);
    TilePlacement const placement = Place_Unscaled(bitmap);
    Visit_RGBA(bitmap, [&]<typename Buffer>(Buffer const& buffer) {
        using Pixel = typename Buffer::PixelType;
        For_Rows(buffer, tile, placement, [&](Pixel const* pixels, uint8_t* samples, Range columns) {
            for (long plane = planes.begin; plane < planes.end; ++plane) {
                int const channel = Channel_Of(tile, plane);
                if (channel < 0) continue;
                uint8_t* const first = samples + plane * int64_t{tile.planeBytes};
                For_Pixels(pixels, columns, tile, placement.x, [&](Pixel const& pixel, int64_t column) {
                    auto const sample = pixel.Get(channel);
                    std::memcpy(first + column * tile.colBytes, &sample, sizeof sample);
                });
            }
        });
    });
}

TileBudget::TileBudget(PIPoint size)
    : width_(std::max<long>(size.h, 0)), height_(std::max<long>(size.v, 0)),
      left_(MostPasses * (LastPlane + 1) * width_ * height_ + SpareTiles)
{
}

bool TileBudget::Spend(FormatRecord const& tile)
{
    Range const planes = Planes_Of(tile);
    PIRect const& rect = tile.theRect;
    int64_t const width = std::min<long>(rect.right, width_) - std::max<long>(rect.left, 0);
    int64_t const height = std::min<long>(rect.bottom, height_) - std::max<long>(rect.top, 0);
    bool const isOutside = width <= 0 || height <= 0 || planes.begin >= planes.end;
    left_ -= isOutside ? 1 : width * height * (planes.end - planes.begin);
    return left_ >= 0;
}
