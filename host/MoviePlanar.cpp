// See MoviePlanar.h.
#include "MoviePlanar.h"

#include "MoviePlanarRows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace {

/// The shares of red and blue in the brightness.
struct Matrix {
    double red, blue;
};

std::optional<Matrix> Matrix_Of(AVFrame const& picture)
{
    switch (Colour_Matrix(picture)) {
    case AVCOL_SPC_UNSPECIFIED:
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M: return Matrix{0.299, 0.114};
    case AVCOL_SPC_BT709: return Matrix{0.2126, 0.0722};
    case AVCOL_SPC_FCC: return Matrix{0.30, 0.11};
    case AVCOL_SPC_SMPTE240M: return Matrix{0.212, 0.087};
    case AVCOL_SPC_BT2020_NCL: return Matrix{0.2627, 0.0593};
    default: return {};
    }
}

/// How the parts of a pixel become its channels.
struct Mixture {
    double luma;
    double redV, greenU, greenV, blueU;
    double black, grey;  ///< zero points of brightness and colour differences
};

/// @param chromaScale  by which the interpolated colour differences are too large
Mixture Mix(Matrix const& matrix, int depth, bool isFullRange, int chromaScale, double largest)
{
    double const unit = isFullRange ? (1 << depth) - 1 : 1 << (depth - 8);
    double const chroma = 2 * largest / (isFullRange ? unit : 224 * unit) / chromaScale;
    double const green = 1 - matrix.red - matrix.blue;
    double const redV = chroma * (1 - matrix.red);
    double const blueU = chroma * (1 - matrix.blue);
    return {largest / (isFullRange ? unit : 219 * unit),
            redV,
            -blueU * matrix.blue / green,
            -redV * matrix.red / green,
            blueU,
            isFullRange ? 0 : 16 * unit,
            static_cast<double>(1 << (depth - 1)) * chromaScale};
}

PlanarWeights Make_Weights(Mixture const& mixture, double alpha)
{
    double const base = 0.5 - mixture.luma * mixture.black;
    auto const narrow = [](double value) { return static_cast<float>(value); };
    return {narrow(mixture.luma),
            narrow(mixture.redV),
            narrow(mixture.greenU),
            narrow(mixture.greenV),
            narrow(mixture.blueU),
            narrow(base - mixture.redV * mixture.grey),
            narrow(base - (mixture.greenU + mixture.greenV) * mixture.grey),
            narrow(base - mixture.blueU * mixture.grey),
            narrow(alpha)};
}

/// A channel in whole numbers.
struct FixedChannel {
    long luma, u, v, offset;
    bool isExact;  ///< no result is further than a hundredth from the exact one
};

/// Rounded weights are off by nothing at the middle of the range, so that the ends, half a range away, are
/// off by as little as can be.
FixedChannel Fix_Channel(Mixture const& m, double u, double v, int lumaBits, int chromaBits, int shift)
{
    constexpr double middle = 1 << (FixedPlanarWeights::Bits - 1);
    double const one = std::ldexp(1.0, shift);
    double const exact[] = {std::ldexp(m.luma * one, -lumaBits), std::ldexp(u * one, -chromaBits),
                            std::ldexp(v * one, -chromaBits)};
    FixedChannel channel{std::lround(exact[0]), std::lround(exact[1]), std::lround(exact[2]), 0, false};
    long const fixed[] = {channel.luma, channel.u, channel.v};
    double offset = (0.5 - m.luma * m.black - (u + v) * m.grey) * one, error = 0;
    channel.isExact = true;
    for (int i = 0; i < 3; ++i) {
        double const rounding = exact[i] - static_cast<double>(fixed[i]);
        offset += rounding * middle;
        error += std::fabs(rounding) * middle / one;
        if (std::labs(fixed[i]) > INT16_MAX) channel.isExact = false;
    }
    channel.offset = std::lround(offset);
    if (error + 0.5 / one >= 0.01) channel.isExact = false;
    return channel;
}

/// Weights in whole numbers, for pictures whose bytes they give exactly.
std::optional<FixedPlanarWeights> Fix_Weights(Mixture const& m, int depth, int chromaScale)
{
    int const lumaBits = FixedPlanarWeights::Bits - depth;
    int const chromaBits = lumaBits - (chromaScale == 16 ? 4 : chromaScale == 4 ? 2 : 0);
    if (chromaBits < 0) return {};
    FixedChannel const red = Fix_Channel(m, 0, m.redV, lumaBits, chromaBits, FixedPlanarWeights::Shift);
    FixedChannel const green =
        Fix_Channel(m, m.greenU, m.greenV, lumaBits, chromaBits, FixedPlanarWeights::Shift);
    FixedChannel const blue = Fix_Channel(m, m.blueU, 0, lumaBits, chromaBits, FixedPlanarWeights::BlueShift);
    if (!red.isExact || !green.isExact || !blue.isExact) return {};
    auto const narrow = [](long value) { return static_cast<std::int16_t>(value); };
    auto const word = [](long value) { return static_cast<std::int32_t>(value); };
    return FixedPlanarWeights{narrow(red.luma),  narrow(blue.luma), narrow(red.v),    narrow(green.u),
                              narrow(green.v),   narrow(blue.u),    word(red.offset), word(green.offset),
                              word(blue.offset), lumaBits,          chromaBits};
}

/// Planes of bytes, or of words with the low byte first, whose numbers begin at the lowest bit.
bool Is_Covered(AVPixFmtDescriptor const& layout)
{
    constexpr std::uint64_t others = AV_PIX_FMT_FLAG_BE | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_RGB |
                                     AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_HWACCEL |
                                     AV_PIX_FMT_FLAG_BITSTREAM;
    if (layout.flags & others || !(layout.flags & AV_PIX_FMT_FLAG_PLANAR) || layout.nb_components < 3)
        return false;
    int const depth = layout.comp[0].depth;
    for (int i = 0; i < layout.nb_components; ++i) {
        AVComponentDescriptor const& part = layout.comp[i];
        if (part.plane != i || part.offset || part.shift || part.depth != depth) return false;
        if (part.step != (depth > 8 ? 2 : 1)) return false;
    }
    bool const isKnownSize = layout.log2_chroma_w <= 1 && layout.log2_chroma_h <= layout.log2_chroma_w;
    // Sixteen times the largest number of 12 bits still fits into a word.
    return isKnownSize && depth >= 8 && depth <= 12;
}

std::uint8_t const* Line_Of(AVFrame const& picture, int plane, int y)
{
    return picture.data[plane] + static_cast<std::ptrdiff_t>(y) * picture.linesize[plane];
}

}  // namespace

bool PlanarConverter::To_RGBA(AVFrame const& picture, void* pixels, std::size_t rowBytes, HostPixels layout,
                              MovieBands& bands)
{
    AVPixFmtDescriptor const* planes = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    std::optional<Matrix> const matrix = Matrix_Of(picture);
    if (!planes || !matrix || !Is_Covered(*planes)) return false;
    bool const isDeep = layout == HostPixels::RGBA16;
    bool const hasAlpha = planes->nb_components == 4;
    int const depth = planes->comp[0].depth;
    int const chromaScale = (planes->log2_chroma_w ? 4 : 1) * (planes->log2_chroma_h ? 4 : 1);
    double const largest = isDeep ? 65535 : 255;
    Mixture const mixture = Mix(*matrix, depth, Is_Full_Range(picture), chromaScale, largest);
    std::optional<FixedPlanarWeights> fixed;
    if (!isDeep && !hasAlpha) fixed = Fix_Weights(mixture, depth, chromaScale);
    PlanarFunctions const convert = Planar_Functions(depth > 8, fixed.has_value(), isDeep, hasAlpha);
    std::size_t const lineSize = static_cast<std::size_t>(picture.width) + 2;
    lines_.resize(std::max(lines_.size(), 3 * lineSize * bands.Workers()));
    int const samples = AV_CEIL_RSHIFT(picture.width, planes->log2_chroma_w);
    int const lastLine = AV_CEIL_RSHIFT(picture.height, planes->log2_chroma_h) - 1;
    PlanarRow shape{};
    shape.width = picture.width;
    shape.weights = Make_Weights(mixture, largest / ((1 << depth) - 1));
    if (fixed) shape.fixed = *fixed;
    bands.Run(picture.width, picture.height, [&](int top, int bottom, std::size_t worker) {
        std::uint16_t* const uLine = &lines_[3 * lineSize * worker];
        std::uint16_t* const vLine = uLine + lineSize;
        std::uint16_t* const blended = vLine + lineSize + 1;
        PlanarRow row = shape;
        row.u = uLine;
        row.v = vLine;
        for (int y = top; y < bottom; ++y) {
            int const near = y >> planes->log2_chroma_h;
            int const far = std::clamp(y & 1 ? near + 1 : near - 1, 0, lastLine);
            for (int plane : {1, 2}) {
                void const* other = planes->log2_chroma_h ? Line_Of(picture, plane, far) : nullptr;
                convert.line({Line_Of(picture, plane, near), other, blended, plane == 1 ? uLine : vLine,
                              samples, planes->log2_chroma_w != 0});
            }
            row.luma = Line_Of(picture, 0, y);
            if (hasAlpha) row.alpha = Line_Of(picture, 3, y);
            row.out = reinterpret_cast<std::uint32_t*>(static_cast<std::uint8_t*>(pixels) +
                                                       static_cast<std::size_t>(y) * rowBytes);
            convert.row(row);
        }
    });
    return true;
}
