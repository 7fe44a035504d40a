// The bitmaps of a picture: those that are stored as pixels, and tiles made of such.
#include "PictPlayer.h"
#include "PictStretch.h"

namespace {

constexpr unsigned HasRegion = 1;  // in the numbers of the bitmap opcodes
constexpr long LargestTile = 256;  // each way; patterns of pictures are much smaller

enum PatternKind : unsigned { PATTERN_PLAIN = 0, PATTERN_TILE = 1, PATTERN_COLOUR = 2 };

}  // namespace

bool PictPlayer::Play_Bits(unsigned opcode)
{
    switch (opcode) {
    case PICT_OP_BITS_RECT:
    case PICT_OP_BITS_REGION:
    case PICT_OP_PACKED_RECT:
    case PICT_OP_PACKED_REGION:
    case PICT_OP_DIRECT_RECT:
    case PICT_OP_DIRECT_REGION: Play_Bitmap(opcode); return true;
    case PICT_OP_COMPRESSED: Play_Compressed(); return true;
    default: return false;
    }
}

void PictPlayer::Play_Bitmap(unsigned opcode)
{
    PictPixelMap map;
    Read_Pixel_Map(bytes_, opcode >= PICT_OP_DIRECT_RECT, map);
    PictRect const source = bytes_.Rect();
    PictRect const target = bytes_.Rect();
    PictTransfer const transfer(Pict_Mode(bytes_.U16()), colours_);
    std::optional<PictMask> mask;
    if (opcode & HasRegion) mask = Read_Mask();
    if (bytes_.Has_Failed()) return;
    if (map.isMono) map.colours = {transfer.Paper(), transfer.Ink()};
    depth_ = std::max<long>(depth_, map.depth);
    Spend(map.rowBytes * map.bounds.Height());
    PictStoredRows rows(bytes_, map, opcode >= PICT_OP_PACKED_RECT);
    // Ink that covers all is as good as pixels in two colours.
    bool const isMono = map.isMono && !transfer.Is_Copy();
    Draw(map.bounds, source, map_.Rect(target), mask ? &*mask : nullptr, isMono, transfer, rows);
}

void PictPlayer::Draw(PictRect const& bounds, PictRect const& source, PictRect const& target,
                      PictMask const* mask, bool isMono, PictTransfer const& transfer, PictRows& rows)
{
    bool isWhole = true;
    if (canvas_) {
        PictRect const visible = target.Within(canvas_->Clip().bounds);
        if (!visible.IsEmpty()) Spend(visible.Width() * visible.Height());
    }
    if (bytes_.Has_Failed()) return;
    if (canvas_)
        isWhole = Draw_Rows(*canvas_, {bounds, source, target, mask, isMono, transfer}, rows);
    else
        for (long y = bounds.top; y < bounds.bottom && isWhole; ++y)
            isWhole = rows.Skip();
    if (!isWhole) bytes_.Fail();
}

PictPattern PictPlayer::Read_Pixel_Pattern()
{
    unsigned const kind = bytes_.U16();
    PictPattern pattern = Read_Pattern();
    if (kind == PATTERN_COLOUR) {
        PictPixel const colour = Read_RGB();
        pattern.tile = std::make_shared<PictPattern::Tile>(PictPattern::Tile{1, 1, {colour}});
    }
    if (kind != PATTERN_TILE) return pattern;
    PictPixelMap map;
    Read_Pixel_Map(bytes_, false, map);
    if (bytes_.Has_Failed()) return pattern;
    PictStoredRows rows(bytes_, map, true);
    long const width = map.Width(), height = map.bounds.Height();
    if (width > LargestTile || height > LargestTile) {
        for (long y = 0; y < height && rows.Skip(); ++y) {
        }
        return pattern;
    }
    auto tile = std::make_shared<PictPattern::Tile>(PictPattern::Tile{width, height, {}});
    tile->pixels.resize(static_cast<std::size_t>(width * height));
    for (long y = 0; y < height && rows.Next(); ++y)
        rows.To_Pixels(0, width, &tile->pixels[static_cast<std::size_t>(y * width)]);
    pattern.tile = std::move(tile);
    return pattern;
}
