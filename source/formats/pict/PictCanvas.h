// What a picture is drawn into: the pixels of a bitmap, a clip, and the ways in which colours are put there.
#pragma once

#include "PictShape.h"

#include "ZVBitmap.h"

#include <memory>

/// A pixel of a ZV_BITMAP_RGBA8 bitmap.
struct PictPixel {
    uint8_t red = 0, green = 0, blue = 0, alpha = 255;
    bool operator==(PictPixel const&) const = default;
};
static_assert(sizeof(PictPixel) == 4);

inline constexpr PictPixel PictBlack{0, 0, 0, 255};
inline constexpr PictPixel PictWhite{255, 255, 255, 255};

/// How a source is put on what is there. The first eight take a pattern or bitmap as ink and paper, and are
/// numbered 8 to 15 for patterns.
enum PictMode : int {
    PICT_COPY = 0,
    PICT_OR = 1,   ///< ink alone is drawn
    PICT_XOR = 2,  ///< ink turns what is there into its opposite
    PICT_BIC = 3,  ///< ink is drawn in the colour of the paper
    PICT_NOT = 4,  ///< added to one of them: ink and paper change places
    PICT_BLEND = 32,
    PICT_ADD_PIN = 33,
    PICT_ADD_OVER = 34,
    PICT_SUB_PIN = 35,
    PICT_TRANSPARENT = 36,
    PICT_ADD_MAX = 37,
    PICT_SUB_OVER = 38,
    PICT_ADD_MIN = 39,
    PICT_HILITE = 50
};

/// One of the numbers above for a mode as a picture stores it.
int Pict_Mode(long stored);

struct PictColours {
    PictPixel fore = PictBlack, back = PictWhite;
    PictPixel op = PictBlack;  ///< weights and limits of the arithmetic modes
    PictPixel hilite = PictBlack;
};

/// Puts pixels on others.
class PictTransfer {
public:
    PictTransfer(int mode, PictColours const& colours) : mode_(mode), colours_(colours) {}

    bool Is_Copy() const { return mode_ == PICT_COPY; }
    PictPixel Ink() const { return colours_.fore; }
    PictPixel Paper() const { return colours_.back; }

    /// A pixel of a source of ink and paper.
    void Put(bool isInk, PictPixel& target) const;
    /// A pixel of a source in colours.
    void Put(PictPixel source, PictPixel& target) const;

private:
    uint8_t Channel(int source, int target, int op) const;

    int mode_;
    PictColours colours_;
};

/// Eight by eight pixels of ink and paper, or a tile of pixels in colours.
struct PictPattern {
    struct Tile {
        long width, height;  ///< at least 1
        std::vector<PictPixel> pixels;
    };
    uint8_t rows[8] = {};
    std::shared_ptr<Tile const> tile;

    static PictPattern Solid(bool isInk)
    {
        PictPattern pattern;
        std::ranges::fill(pattern.rows, isInk ? 0xFF : 0);
        return pattern;
    }
};

class PictCanvas {
public:
    /// @param bitmap  of type ZV_BITMAP_RGBA8, with pixels
    /// @param origin  where patterns begin
    PictCanvas(ZVBitmap& bitmap, PictPoint origin);

    PictRect const& Bounds() const { return bounds_; }
    PictMask const& Clip() const { return clip_; }
    void Set_Clip(PictMask clip) { clip_ = std::move(clip); }
    PictPixel* Row(long y) const { return pixels_ + y * bounds_.right; }

    void Erase();  ///< White where nothing was drawn, with alpha 0.
    /// @return  the work that it took, in pixels
    long Paint(PictShape const& shape, PictPattern const& pattern, PictTransfer const& transfer);

private:
    void Paint_Run(long y, long left, long right, PictPattern const& pattern, PictTransfer const& transfer);

    PictPixel* pixels_;
    PictRect bounds_;
    PictPoint origin_;
    PictMask clip_;
    PictSpans spans_;
};
