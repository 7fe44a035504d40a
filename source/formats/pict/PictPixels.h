// The bitmaps of pictures: what describes one, and its rows as they are unpacked one after the other.
#pragma once

#include "PictCanvas.h"

#include <array>

/// Forms of the pixels of a direct bitmap, numbered as pictures have it. Other bitmaps are packed by their
/// opcode.
enum PictPacking : int {
    PICT_PACK_DEFAULT = 0,
    PICT_PACK_NONE = 1,
    PICT_PACK_NO_PAD = 2,  ///< 32 bits without the first byte
    PICT_PACK_WORDS = 3,   ///< 16 bits in packed words
    PICT_PACK_PLANES = 4   ///< 32 bits as packed bytes, each row's components one after the other
};

struct PictPixelMap {
    PictRect bounds;
    long rowBytes;
    int packing;
    int depth;       ///< bits of a pixel: 1, 2, 4, 8, 16 or 32
    int components;  ///< of a direct bitmap: 3, or 4 with alpha in front
    bool isMono;     ///< ink and paper, without colours of its own
    std::array<PictPixel, 256> colours;

    long Width() const { return bounds.Width(); }
    /// A row this short is never packed.
    bool Is_Narrow() const { return rowBytes < 8; }
};

/// What precedes the bitmap of a BitsRect, PackBitsRect or DirectBitsRect. Sets the flag of the bytes for a
/// bitmap that makes no sense.
void Read_Pixel_Map(PictBytes& bytes, bool isDirect, PictPixelMap& map);

/// Rows of pixels, from the top.
class PictRows {
public:
    virtual ~PictRows() = default;

    virtual bool Next() = 0;  ///< Goes on to a row; false when there is none.
    virtual bool Skip() = 0;  ///< The same for a row that nobody wants to see.
    virtual void To_Pixels(long first, long count, PictPixel* out) const = 0;
    /// Of a bitmap of ink and paper, 1 and 0.
    virtual void To_Bits(long first, long count, uint8_t* out) const = 0;
};

/// The rows of a bitmap behind its description.
class PictStoredRows : public PictRows {
public:
    /// @param isPacked  as the opcode has it
    PictStoredRows(PictBytes& bytes, PictPixelMap const& map, bool isPacked);

    bool Next() override;
    bool Skip() override;
    void To_Pixels(long first, long count, PictPixel* out) const override;
    void To_Bits(long first, long count, uint8_t* out) const override;

private:
    std::size_t Row_Size() const;
    std::span<uint8_t const> Take_Row();

    PictBytes& bytes_;
    PictPixelMap const& map_;
    int packing_;
    std::size_t size_;  ///< of an unpacked row
    std::vector<uint8_t> unpacked_;
    std::vector<uint8_t> opaque_;   ///< alpha for planes without: a loop over four of them is the quickest
    uint8_t const* row_ = nullptr;  ///< the one at hand
};
