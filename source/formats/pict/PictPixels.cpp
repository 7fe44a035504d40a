// See PictPixels.h.
//   bitmap      0 bytes of a row, 2   2 bounds
//   pixel map   the same with the top bit set in the first word, behind 4 bytes in a direct one;
//               10 version   12 packing, 2   14 packed size   18 resolutions   26 pixel type   28 depth, 2
//               30 components, 2   32 bits of one   34 three reserved words of 4
//   colours     0 seed   4 flags   6 last index, 2   8 entries: index, red, green, blue, each 2
#include "PictPixels.h"

#include "PackBits.h"

namespace {

constexpr unsigned PixelMapFlag = 0x8000;
constexpr unsigned IndexedInOrder = 0x8000;
constexpr std::size_t LargestByteCount = 250;  // rows of more bytes tell their packed size in two

PictPixel Read_Colour(PictBytes& bytes)
{
    auto const take = [&] { return static_cast<uint8_t>(bytes.U16() >> 8); };
    uint8_t const red = take(), green = take(), blue = take();
    return {red, green, blue, 255};
}

void Read_Colours(PictBytes& bytes, std::array<PictPixel, 256>& colours)
{
    colours.fill(PictBlack);
    bytes.Skip(4);
    bool const isInOrder = bytes.U16() & IndexedInOrder;
    long const count = bytes.U16() + 1L;
    if (count > 256) bytes.Fail();
    for (long i = 0; i < count && !bytes.Has_Failed(); ++i) {
        long const index = bytes.U16();
        PictPixel const colour = Read_Colour(bytes);
        long const place = isInOrder ? i : index;
        if (place < 256) colours[static_cast<std::size_t>(place)] = colour;
    }
}

/// Whether the numbers of a bitmap go together.
bool Is_Sensible(PictPixelMap const& map, bool isDirect)
{
    if (map.bounds.IsEmpty()) return false;
    if (!isDirect) {
        bool const isDepth = map.depth == 1 || map.depth == 2 || map.depth == 4 || map.depth == 8;
        return isDepth && map.Width() * map.depth <= map.rowBytes * 8;
    }
    if (map.depth == 16)
        return (map.packing == PICT_PACK_NONE || map.packing == PICT_PACK_WORDS) &&
               map.Width() * 2 <= map.rowBytes;
    if (map.depth != 32 || (map.components != 3 && map.components != 4)) return false;
    // The bytes of a row are two short for wide pictures, and rows of planes do not need them.
    if (map.packing == PICT_PACK_PLANES && !map.Is_Narrow()) return true;
    return map.packing <= PICT_PACK_PLANES && map.packing != PICT_PACK_WORDS &&
           map.Width() * 4 <= map.rowBytes;
}

// ---- rows to pixels
// -----------------------------------------------------------------------------------------

/// Values of 1, 2, 4 or 8 bits.
template <int Depth, typename Out, typename Convert>
void Take_Values(uint8_t const* row, long first, long count, Out* out, Convert&& convert)
{
    constexpr long perByte = 8 / Depth;
    for (long i = 0; i < count; ++i) {
        long const x = first + i;
        unsigned const shift = static_cast<unsigned>((perByte - 1 - x % perByte) * Depth);
        out[i] = convert(row[x / perByte] >> shift & ((1u << Depth) - 1));
    }
}

void Take_Words(uint8_t const* row, long count, PictPixel* out)
{
    auto const spread = [](unsigned five) { return static_cast<uint8_t>(five << 3 | five >> 2); };
    for (long i = 0; i < count; ++i) {
        unsigned const word = Load_Big16(row + 2 * i);
        out[i] = {spread(word >> 10 & 31), spread(word >> 5 & 31), spread(word & 31), 255};
    }
}

/// Of colours one behind the other in a row of `width` pixels.
void Take_Planes(uint8_t const* red, long width, uint8_t const* alpha, long count, PictPixel* out)
{
    uint8_t const* const green = red + width;
    uint8_t const* const blue = green + width;
    for (long i = 0; i < count; ++i)
        out[i] = {red[i], green[i], blue[i], alpha[i]};
}

void Take_Triples(uint8_t const* row, long count, PictPixel* out)
{
    for (long i = 0; i < count; ++i)
        out[i] = {row[3 * i], row[3 * i + 1], row[3 * i + 2], 255};
}

void Take_Quads(uint8_t const* row, bool hasAlpha, long count, PictPixel* out)
{
    for (long i = 0; i < count; ++i)
        out[i] = {row[4 * i + 1], row[4 * i + 2], row[4 * i + 3], hasAlpha ? row[4 * i] : uint8_t{255}};
}

}  // namespace

void Read_Pixel_Map(PictBytes& bytes, bool isDirect, PictPixelMap& map)
{
    if (isDirect) bytes.Skip(4);
    unsigned const rowWord = bytes.U16();
    map.rowBytes = rowWord & ~PixelMapFlag;
    map.bounds = bytes.Rect();
    map.isMono = !isDirect && !(rowWord & PixelMapFlag);
    if (map.isMono) {
        map.packing = PICT_PACK_DEFAULT;
        map.depth = map.components = 1;
        map.colours.fill(PictBlack);
    } else {
        bytes.Skip(2);
        map.packing = bytes.U16();
        bytes.Skip(4 + 4 + 4 + 2);
        map.depth = bytes.U16();
        map.components = bytes.U16();
        bytes.Skip(2 + 4 + 4 + 4);
        if (!isDirect) Read_Colours(bytes, map.colours);
    }
    if (isDirect && map.packing == PICT_PACK_DEFAULT)
        map.packing = map.depth == 16 ? PICT_PACK_WORDS : PICT_PACK_PLANES;
    if (!Is_Sensible(map, isDirect)) bytes.Fail();
}

PictStoredRows::PictStoredRows(PictBytes& bytes, PictPixelMap const& map, bool isPacked)
    : bytes_(bytes), map_(map),
      packing_(map.depth < 16 ? (isPacked ? PICT_PACK_DEFAULT : PICT_PACK_NONE) : map.packing)
{
    // A narrow row is stored as it is, and so is every row that the bitmap says is not packed.
    if (map.Is_Narrow() || map.packing == PICT_PACK_NONE) packing_ = PICT_PACK_NONE;
    size_ = Row_Size();
    unpacked_.resize(size_ + PackBitsSlack);
    if (packing_ == PICT_PACK_PLANES && map.components == 3)
        opaque_.assign(static_cast<std::size_t>(map.Width()), 255);
}

std::size_t PictStoredRows::Row_Size() const
{
    long const width = map_.Width();
    switch (packing_) {
    case PICT_PACK_NO_PAD: return static_cast<std::size_t>(3 * width);
    case PICT_PACK_PLANES: return static_cast<std::size_t>(map_.components * width);
    default: return static_cast<std::size_t>(map_.rowBytes);
    }
}

std::span<uint8_t const> PictStoredRows::Take_Row()
{
    bool const isPlain = packing_ == PICT_PACK_NONE || packing_ == PICT_PACK_NO_PAD;
    bool const isLong = static_cast<std::size_t>(map_.rowBytes) > LargestByteCount;
    std::size_t const size = isPlain ? size_ : isLong ? bytes_.U16() : bytes_.U8();
    return bytes_.Take(size);
}

bool PictStoredRows::Skip()
{
    Take_Row();
    return !bytes_.Has_Failed();
}

bool PictStoredRows::Next()
{
    auto const stored = Take_Row();
    if (bytes_.Has_Failed()) return false;
    if (packing_ == PICT_PACK_NONE || packing_ == PICT_PACK_NO_PAD) {
        row_ = stored.data();
        return true;
    }
    Unpack_Bits(stored, bytes_.Rest(), packing_ == PICT_PACK_WORDS ? 2 : 1, unpacked_.data(), size_);
    row_ = unpacked_.data();
    return true;
}

void PictStoredRows::To_Pixels(long first, long count, PictPixel* out) const
{
    auto const colour = [&](unsigned value) { return map_.colours[value]; };
    long const width = map_.Width();
    switch (map_.depth) {
    case 1: Take_Values<1>(row_, first, count, out, colour); return;
    case 2: Take_Values<2>(row_, first, count, out, colour); return;
    case 4: Take_Values<4>(row_, first, count, out, colour); return;
    case 8: Take_Values<8>(row_, first, count, out, colour); return;
    case 16: Take_Words(row_ + 2 * first, count, out); return;
    default: break;
    }
    bool const hasAlpha = map_.components == 4;
    if (packing_ == PICT_PACK_PLANES)
        Take_Planes(row_ + (hasAlpha ? width : 0) + first, width, hasAlpha ? row_ + first : opaque_.data(),
                    count, out);
    else if (packing_ == PICT_PACK_NO_PAD)
        Take_Triples(row_ + 3 * first, count, out);
    else
        Take_Quads(row_ + 4 * first, hasAlpha, count, out);
}

void PictStoredRows::To_Bits(long first, long count, uint8_t* out) const
{
    Take_Values<1>(row_, first, count, out, [](unsigned value) { return static_cast<uint8_t>(value); });
}
