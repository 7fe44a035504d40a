// Pictures in the compression of movies.
//   0 bytes behind this, 4   4 version   6 matrix of nine 16.16 numbers   42 bytes of a matte, 4   46 its
//   rect 54 mode   56 source rect   64 accuracy   68 bytes of a mask region, 4   72 the matte's description
//   and bytes, the region, the description of the picture, its bytes
// A description tells at   0 its bytes   4 codec   32 width, height   44 bytes of the picture   82 depth
#include "PictPlayer.h"
#include "PictStretch.h"

#include "formats/MovieSeam.h"

#include <array>
#include <cmath>

namespace {

constexpr std::size_t DescriptionSize = 86;
constexpr int64_t SmallPicture = 1 << 16;   // pixels, of any number of bytes
constexpr int64_t LargestExpansion = 4096;  // pixels that a byte may stand for

struct Description {
    uint32_t codec;
    long width, height;
    std::size_t size;
    long depth;
};

Description Read_Description(PictBytes& bytes)
{
    std::size_t const size = PictBytes(bytes).U32();
    if (size < DescriptionSize) bytes.Fail();
    auto const all = bytes.Take(size);
    if (bytes.Has_Failed()) return {};
    uint8_t const* const at = all.data();
    return {Load_Big32(at + 4), Load_Big16(at + 32), Load_Big16(at + 34), Load_Big32(at + 44),
            Load_Big16(at + 82)};
}

/// Rows of a picture in memory.
class MemoryRows : public PictRows {
public:
    MemoryRows(std::vector<PictPixel> const& pixels, long width) : row_(pixels.data() - width), width_(width)
    {
    }

    bool Next() override
    {
        row_ += width_;
        return true;
    }
    bool Skip() override { return Next(); }
    void To_Pixels(long first, long count, PictPixel* out) const override
    {
        std::copy_n(row_ + first, count, out);
    }
    void To_Bits(long, long, uint8_t*) const override {}  // there is no ink in it

private:
    PictPixel const* row_;
    long width_;
};

long From_Fixed(double value)
{
    constexpr double far = 1 << 20;
    return std::lround(std::clamp(value / 65536.0, -far, far));
}

/// A rectangle scaled and moved by a matrix.
PictRect Moved(PictRect const& rect, std::span<int32_t const, 9> matrix)
{
    auto const place = [](long at, int32_t scale, int32_t offset) {
        return From_Fixed(static_cast<double>(at) * scale + offset);
    };
    return {place(rect.left, matrix[0], matrix[6]), place(rect.top, matrix[4], matrix[7]),
            place(rect.right, matrix[0], matrix[6]), place(rect.bottom, matrix[4], matrix[7])};
}

}  // namespace

void PictPlayer::Play_Compressed()
{
    PictBytes bytes(bytes_.Take(bytes_.U32()));
    if (bytes_.Has_Failed()) return;
    bytes.Skip(2);
    std::array<int32_t, 9> matrix;
    for (int32_t& number : matrix)
        number = bytes.S32();
    std::size_t const matteSize = bytes.U32();
    bytes.Rect();
    long const mode = bytes.U16();
    PictRect const source = bytes.Rect();
    bytes.Skip(4);
    std::size_t const maskSize = bytes.U32();
    if (matteSize > 0) {
        Read_Description(bytes);
        bytes.Skip(matteSize);
    }
    PictMask mask;
    if (maskSize > 0) {
        PictBytes region(bytes.Take(maskSize));
        mask = Read_Region(region, map_, canvas_ ? canvas_->Bounds() : PictRect{});
        Spend(static_cast<long>(mask.inside.size()));
        if (region.Has_Failed()) bytes.Fail();
    }
    Draw_Compressed(bytes, source, maskSize > 0 ? &mask : nullptr, mode, matrix);
    if (bytes.Has_Failed()) bytes_.Fail();
}

void PictPlayer::Draw_Compressed(PictBytes& bytes, PictRect const& source, PictMask const* mask, long mode,
                                 std::span<int32_t const, 9> matrix)
{
    Description const description = Read_Description(bytes);
    std::size_t const there = bytes.Rest();
    auto const data = bytes.Take(description.size > 0 ? std::min(description.size, there) : there);
    long const width = description.width, height = description.height;
    int64_t const most = SmallPicture + static_cast<int64_t>(data.size()) * LargestExpansion;
    if (width < 1 || height < 1 || width * height > most) bytes.Fail();
    if (bytes.Has_Failed()) return;
    depth_ = std::max(depth_, description.depth);
    Spend(width * height);
    if (!canvas_ || bytes_.Has_Failed()) return;
    std::vector<PictPixel> pixels(static_cast<std::size_t>(width * height));
    if (!OS_Movie_Read_Still({description.codec, data, width, height, description.depth}, pixels.data())) {
        isUnreadable_ = true;
        return;
    }
    PictRect const bounds{0, 0, width, height};
    MemoryRows rows(pixels, width);
    Draw(bounds, source.IsEmpty() ? bounds : source,
         map_.Rect(Moved(source.IsEmpty() ? bounds : source, matrix)), mask, false,
         {Pict_Mode(mode), colours_}, rows);
}
