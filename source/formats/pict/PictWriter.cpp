// See PictWriter.h.
#include "PictWriter.h"

#include "PackBits.h"
#include "PictOutput.h"
#include "PictPixels.h"

#include "formats/FormatModule.h"

#include <vector>

namespace {

constexpr long WidestBitmap = 4095;  // readers take 14 bits for the bytes of a row
constexpr int64_t BitmapHeaderSize = 80;
constexpr uint32_t DirectPixels = 16;
constexpr uint32_t DirectBase = 0xFF;

int64_t Block_Size(ZVBitmap const& bitmap, int components, long strips)
{
    long const width = (bitmap.Width + strips - 1) / strips;
    auto const row = static_cast<int64_t>(Packed_Bits_Bound(static_cast<std::size_t>(components * width)));
    return int64_t{PictHeaderSize} + 2 + strips * (BitmapHeaderSize + bitmap.Height * (row + 2));
}

long Strips_For(long width)
{
    return (width + WidestBitmap - 1) / WidestBitmap;
}

/// Rows of pixels to rows of components, one after the other.
void Split_Row(uint8_t const* pixels, long width, int components, uint8_t* out)
{
    uint8_t* const alpha = components == 4 ? out : nullptr;
    uint8_t* const red = out + (alpha ? width : 0);
    uint8_t* const green = red + width;
    uint8_t* const blue = green + width;
    for (long x = 0; x < width; ++x) {
        red[x] = pixels[4 * x];
        green[x] = pixels[4 * x + 1];
        blue[x] = pixels[4 * x + 2];
    }
    if (alpha)
        for (long x = 0; x < width; ++x)
            alpha[x] = pixels[4 * x + 3];
}

}  // namespace

PictBlock::PictBlock(int64_t size)
{
    constexpr int64_t step = 1 << 20;
    int64_t const rounded = size < step ? size : (size + step - 1) / step * step;
    size_ = static_cast<long>(rounded);
    data_ = static_cast<uint8_t*>(AllocateResidentBlock(size_, false));
    if (!data_) SetError(ZV_ERR_MEMORY);
}

PictBlock::~PictBlock()
{
    if (data_) DeallocateResidentBlock(data_, size_, false);
}

PictWriter::PictWriter(ZVClip const* clip, ZVBitmap const* bitmap)
    : clip_(clip), bitmap_(bitmap), components_(clip->AlphaType == ZV_ALPHA_CHANNEL ? 4 : 3),
      strips_(Strips_For(bitmap->Width)), block_(Block_Size(*bitmap, components_, strips_))
{
}

uint8_t* PictWriter::Put_Bitmap_Header(uint8_t* out, long left, long width) const
{
    PictRect const bounds{left, 0, left + width, bitmap_->Height};
    return PictOutput(out)
        .Put16(PICT_OP_DIRECT_RECT)
        .Put32(DirectBase)
        .Put16(0x8000 | 4 * width)
        .Put_Rect(bounds)
        .Put16(0)
        .Put16(PICT_PACK_PLANES)
        .Put32(0)
        .Put32(Dots72)
        .Put32(Dots72)
        .Put16(DirectPixels)
        .Put16(32)
        .Put16(components_)
        .Put16(8)
        .Put32(0)
        .Put32(0)
        .Put32(0)
        .Put_Rect(bounds)
        .Put_Rect(bounds)
        .Put16(PICT_COPY)
        .End();
}

/// A narrow row is stored as pixels with alpha first; all others packed, behind their size.
static uint8_t* Put_Row(uint8_t const* pixels, long width, int components, uint8_t* row, uint8_t* out)
{
    constexpr long narrow = 8, longRow = 250;
    if (4 * width < narrow) {
        out[0] = components == 4 ? pixels[3] : uint8_t{0};
        std::memcpy(out + 1, pixels, 3);
        return out + 4;
    }
    Split_Row(pixels, width, components, row);
    uint8_t* const sizePlace = out;
    long const sizeBytes = 4 * width > longRow ? 2 : 1;
    out = Pack_Bits(row, static_cast<std::size_t>(components * width), out + sizeBytes);
    auto const size = static_cast<uint32_t>(out - sizePlace - sizeBytes);
    if (sizeBytes == 2)
        Store_Big16(sizePlace, size);
    else
        *sizePlace = static_cast<uint8_t>(size);
    return out;
}

bool PictWriter::Put_Bitmap(uint8_t*& out, long left, long width, ZVRectT<long> const* region) const
{
    out = Put_Bitmap_Header(out, left, width);
    std::vector<uint8_t> row(static_cast<std::size_t>(components_ * width) + PackBitsSlack);
    bool const isPut = Store_Frame(clip_, bitmap_, region, [&](uint8_t const* pixels, long rows) {
        for (long y = 0; y < rows; ++y)
            out = Put_Row(pixels + y * bitmap_->RowBytes + 4 * left, width, components_, row.data(), out);
        return true;
    });
    if ((out - block_.Data()) & 1) *out++ = 0;
    return isPut;
}

bool PictWriter::Write(ZVRectT<long> const* region)
{
    if (!block_.Data()) return false;
    uint8_t* out = PictOutput(block_.Data()).Put_Header(bitmap_->Width, bitmap_->Height).End();
    for (long i = 0; i < strips_; ++i) {
        long const left = i * bitmap_->Width / strips_;
        long const right = (i + 1) * bitmap_->Width / strips_;
        if (!Put_Bitmap(out, left, right - left, region)) return false;
    }
    size_ = PictOutput(out).End_Picture(block_.Data());
    return true;
}
