// The pixels of a Photoshop format plug-in, which come and go in tiles: rectangles of one or more planes.
#pragma once

#include "ZVBitmap.h"
#include "ZVFormatRecord.h"

/// One direction of a picture that is placed in a bitmap.
struct TileAxis {
    long start, end;  ///< pixels of the bitmap that the picture covers
    int64_t source;   ///< position in the picture of the first of them, 16.16
    int64_t step;     ///< from one to the next, 16.16

    int64_t Position(long pixel) const { return source + (pixel - start) * step; }
};

/// Where a picture goes in a bitmap.
struct TilePlacement {
    TileAxis x, y;
};

/// Pixel by pixel from the top left corner.
TilePlacement Place_Unscaled(ZVBitmap const& bitmap);

/// The picture of the clip's size as one of the given size, of which the offset lies at the bitmap's corner.
/// @param size  x and y are the offset, width and height 1 to INT32_MAX
TilePlacement Place_Scaled(ZVBitmap const& bitmap, long pictureWidth, long pictureHeight,
                           ZVRectT<long> const& size);

/// Takes tiles into a bitmap. A tile whose mode does not go with the bitmap's type is passed over, and so is
/// what lies outside.
class TileReader {
public:
    TileReader(ZVBitmap& bitmap, TilePlacement const& placement) : bitmap_(bitmap), placement_(placement) {}

    void Take(FormatRecord const& tile);

private:
    ZVBitmap& bitmap_;
    TilePlacement placement_;
    bool hasAlpha_ = false;  ///< a tile with alpha has come; until then pictures are opaque
};

/// Fills the part of a tile that lies in the bitmap.
void Fill_Tile(FormatRecord const& tile, ZVBitmap const& bitmap);

/// Bounds the tiles of a picture, so that a plug-in that goes round in circles comes to an end.
class TileBudget {
public:
    explicit TileBudget(PIPoint size);

    bool Spend(FormatRecord const& tile);  ///< False when there have been too many.

private:
    long width_, height_;
    int64_t left_;  ///< samples, of which a tile has at least one
};
