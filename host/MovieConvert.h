// Decoded pictures to and from rows of red, green, blue and alpha.
#pragma once

#include "MoviePacked.h"
#include "MoviePlanar.h"

/// Converts with fixed settings, so that a picture comes out the same on every machine: accurate rounding,
/// full chroma interpolation, and no machine's own short cuts. Colour matrix and range are those of the
/// picture; the matrix of BT.601 stands in where it does not say. One that is not of the wanted size is
/// scaled to it.
class PictureConverter {
public:
    bool To_RGBA(AVFrame const& picture, int width, int height, void* pixels, std::size_t rowBytes,
                 HostPixels layout);
    bool From_RGBA(void const* pixels, std::size_t rowBytes, HostPixels layout, AVFrame& picture);

private:
    struct Shape {
        int width, height, format;
        int matrix;
        bool isFullRange;
        bool operator==(Shape const&) const = default;
    };
    bool Prepare(Shape const& source, Shape const& target);

    PlanarConverter planar_;
    std::shared_ptr<MovieBands> bands_;  ///< null until a picture is read
    MovieOwner<SwsContext> context_;
    Shape source_{}, target_{};
    MovieOwner<AVFrame> from_, to_;
};

AVPixelFormat Pixel_Format(HostPixels layout);
