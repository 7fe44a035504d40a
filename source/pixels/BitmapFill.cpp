// Fills of bitmaps with a colour, with its colour channels alone, or of their alpha. All are one thing: a
// pixel, worked out once, whose bytes repeat, and for some of them a mask of the bits that it replaces.
#include "BitmapVisit.h"
#include "ChannelByte.h"
#include "ConvertRows.h"
#include "ZVEnvironment.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

// A whole number of pixels of every size and of vectors, and small enough to stay in the first-level cache.
constexpr long blockSize = 3840;

/// The bytes of one pixel, and the bits of them that a fill replaces.
struct FillPixel {
    unsigned char bytes[16] = {};
    unsigned char mask[16] = {};
    long size = 0;
};

/// Repeats the first `size` bytes over `total` bytes, from a block that grows as it is copied.
void Repeat(unsigned char* bytes, long size, long total)
{
    for (long done = std::min(size, total); done < total;) {
        long const count = std::min({done, blockSize, total - done});
        std::memcpy(bytes + done, bytes, static_cast<std::size_t>(count));
        done += count;
    }
}

/// Fills `total` bytes, whole pixels.
void Fill_Bytes(unsigned char* target, FillPixel const& pixel, long total)
{
    if (total < pixel.size) return;
    std::memcpy(target, pixel.bytes, static_cast<std::size_t>(pixel.size));
    Repeat(target, pixel.size, total);
}

/// A fill through the mask, for runs of whole pixels: both repeated far enough for the longest run.
class MaskedFill {
public:
    MaskedFill(FillPixel const& pixel, long longestRun)
    {
        long const total = std::min(longestRun, blockSize);
        for (long i = 0; i < pixel.size; ++i) {
            bytes_[i] = pixel.bytes[i] & pixel.mask[i];
            kept_[i] = static_cast<unsigned char>(~pixel.mask[i]);
        }
        Repeat(bytes_, pixel.size, total);
        Repeat(kept_, pixel.size, total);
    }

    void Fill(unsigned char* target, long total) const
    {
        for (; total > 0; target += blockSize, total -= blockSize) {
            long const count = std::min(total, blockSize);
            for (long i = 0; i < count; ++i)
                target[i] = static_cast<unsigned char>((target[i] & kept_[i]) | bytes_[i]);
        }
    }

private:
    alignas(64) unsigned char bytes_[blockSize];
    alignas(64) unsigned char kept_[blockSize];
};

/// A pixel of a colour word, of which a fill replaces the channels `first` to `last`.
template <typename Buffer> FillPixel Make_Fill_Pixel(uint32_t colour, int first, int last)
{
    using Pixel = typename Buffer::PixelType;
    using Channel = typename Buffer::ChannelType;
    static constexpr int shifts[] = {16, 8, 0, 24};
    FillPixel fill;
    fill.size = Pixel::packSize;
    auto* const pixel = reinterpret_cast<Pixel*>(fill.bytes);
    auto* const mask = reinterpret_cast<Pixel*>(fill.mask);
    for (int channel = first; channel <= last; ++channel) {
        pixel->Set(channel, Channel_From_Byte<Pixel>(colour >> shifts[channel] & 0xFF));
        if constexpr (Pixel::isFloat)
            mask->Set(channel, std::bit_cast<float>(~0U));
        else
            mask->Set(channel, static_cast<Channel>(~Channel{0}));
    }
    return fill;
}

/// A mono pixel of an 8-bit component.
template <typename Buffer> FillPixel Make_Mono_Pixel(uint32_t component)
{
    return Make_Fill_Pixel<Buffer>((component & 0xFF) << 16, 0, 0);
}

/// A native pixel of a colour word; its size is 0 for a depth without a layout.
FillPixel Make_Native_Pixel(uint32_t colour, ZVRowFormat format)
{
    uint32_t word = colour | 0xFF000000;
    if (format == ROW_NATIVE16) word = (colour >> 9 & 0x7C00) | (colour >> 6 & 0x3E0) | (colour >> 3 & 0x1F);
    FillPixel fill;
    std::memcpy(fill.bytes, &word, sizeof(word));  // 24 bits are the low bytes of a little-endian word
    fill.size = Row_Pack_Size(format);
    return fill;
}

}  // namespace

void FillBitmapZV(ZVBitmap* bitmap, unsigned long colour)
{
    if (!bitmap || !bitmap->Pixels) return;
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    if (word == 0) {
        std::memset(bitmap->Pixels, 0, static_cast<std::size_t>(bitmap->Size));
        return;
    }
    FillPixel fill;
    Visit_RGBA(*bitmap, [&]<typename Buffer>(Buffer&) { fill = Make_Fill_Pixel<Buffer>(word, 0, 3); });
    Visit_Mono(*bitmap, [&]<typename Buffer>(Buffer&) { fill = Make_Mono_Pixel<Buffer>(word >> 16); });
    Fill_Bytes(bitmap->Pixels, fill, bitmap->Size);
}

void FillColorZV(ZVBitmap* bitmap, unsigned long colour)
{
    if (!bitmap || !bitmap->Pixels) return;
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    Visit_RGBA(*bitmap, [&]<typename Buffer>(Buffer& buffer) {
        MaskedFill(Make_Fill_Pixel<Buffer>(word, 0, 2), buffer.Size).Fill(buffer.Pixels, buffer.Size);
    });
    Visit_Mono(*bitmap, [&]<typename Buffer>(Buffer& buffer) {
        Fill_Bytes(buffer.Pixels, Make_Mono_Pixel<Buffer>(word), buffer.Size);
    });
}

void FillAlphaZV(ZVBitmap* bitmap, unsigned char alpha)
{
    FillAlphaRectZV(bitmap, alpha, nullptr);
}

void FillAlphaRectZV(ZVBitmap* bitmap, unsigned long alpha, ZVRectT<long> const* rect)
{
    if (!bitmap || !bitmap->Pixels) return;
    ZVRectT<long> area{0, 0, bitmap->Width, bitmap->Height};
    if (rect && !area.Intersect(*rect)) return;
    auto const byte = static_cast<uint32_t>(alpha & 0xFF);
    bool const isWhole = area.width == bitmap->Width;  // its rows then are one run
    long const runs = isWhole ? 1 : area.height;
    long const runBytes = area.width * bitmap->PackSize * (isWhole ? area.height : 1);
    unsigned char* const first = bitmap->Pixels + area.y * bitmap->RowBytes + area.x * bitmap->PackSize;
    Visit_RGBA(*bitmap, [&]<typename Buffer>(Buffer&) {
        MaskedFill const fill(Make_Fill_Pixel<Buffer>(byte << 24, 3, 3), runBytes);
        for (long y = 0; y < runs; ++y)
            fill.Fill(first + y * bitmap->RowBytes, runBytes);
    });
    Visit_Mono(*bitmap, [&]<typename Buffer>(Buffer&) {
        FillPixel const fill = Make_Mono_Pixel<Buffer>(byte);
        for (long y = 0; y < runs; ++y)
            Fill_Bytes(first + y * bitmap->RowBytes, fill, runBytes);
    });
}

void FillBitmapZV(ZVNativeBitmap* bitmap, unsigned long colour)
{
    if (!bitmap || !bitmap->Pixels) return;
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    unsigned char* const pixels = bitmap->Pixels + bitmap->Offset;
    if (bitmap->Depth == 8) {
        std::memset(pixels, static_cast<int>(word & 0xFF), static_cast<std::size_t>(bitmap->Size));
        return;
    }
    FillPixel const fill = Make_Native_Pixel(word, Row_Format(*bitmap));
    for (long y = 0; y < bitmap->Height; ++y)
        Fill_Bytes(pixels + y * bitmap->RowBytes, fill, bitmap->Width * fill.size);
}
