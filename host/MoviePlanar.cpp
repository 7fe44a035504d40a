// See MoviePlanar.h. The loops are written for the vectoriser, and compiled twice where the machine may have
// wider registers. Neither version contracts multiplications, so both give the same bits.
#include "MoviePlanar.h"

#include <algorithm>
#include <bit>
#include <optional>

static_assert(std::endian::native == std::endian::little, "pixels are put together as words");

#if defined(__x86_64__)
#define ZV_WIDE_TARGET [[gnu::target("avx2")]]
#endif

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

/// What a pixel's parts are multiplied with. The zero points, and the half for rounding, are in the offsets.
struct Weights {
    float luma;
    float redV, greenU, greenV, blueU;
    float red, green, blue;
    float alpha;
};

/// @param chromaScale  by which the interpolated colour differences are too large
Weights Make_Weights(Matrix const& matrix, int depth, bool isFullRange, int chromaScale, double largest)
{
    double const unit = isFullRange ? (1 << depth) - 1 : 1 << (depth - 8);
    double const luma = largest / (isFullRange ? unit : 219 * unit);
    double const chroma = 2 * largest / (isFullRange ? unit : 224 * unit) / chromaScale;
    double const black = isFullRange ? 0 : 16 * unit;
    double const grey = static_cast<double>(1 << (depth - 1)) * chromaScale;
    double const green = 1 - matrix.red - matrix.blue;
    double const redV = chroma * (1 - matrix.red);
    double const blueU = chroma * (1 - matrix.blue);
    double const greenU = -blueU * matrix.blue / green;
    double const greenV = -redV * matrix.red / green;
    double const base = 0.5 - luma * black;
    auto const narrow = [](double value) { return static_cast<float>(value); };
    return {narrow(luma),
            narrow(redV),
            narrow(greenU),
            narrow(greenV),
            narrow(blueU),
            narrow(base - redV * grey),
            narrow(base - (greenU + greenV) * grey),
            narrow(base - blueU * grey),
            narrow(largest / ((1 << depth) - 1))};
}

/// One row of a picture, the colour differences already at full resolution.
struct Row {
    void const* luma;
    std::uint16_t const *u, *v;
    void const* alpha;  ///< null: all is opaque
    std::uint32_t* out;
    int width;
    Weights weights;
};

inline std::uint32_t Clamp(float value, int largest)
{
    // Cutting off rounds, since a half was added; below 0 it does not matter where to.
    return static_cast<std::uint32_t>(std::clamp(static_cast<int>(value), 0, largest));
}

template <typename Sample, bool isDeep, bool hasAlpha>
[[gnu::always_inline]] inline void Convert_Row(Row const& row)
{
    constexpr int largest = isDeep ? 0xFFFF : 0xFF;
    Weights const w = row.weights;
    auto const* __restrict luma = static_cast<Sample const*>(row.luma);
    auto const* __restrict alpha = static_cast<Sample const*>(row.alpha);
    auto const* __restrict uLine = row.u;
    auto const* __restrict vLine = row.v;
    auto* __restrict out = row.out;
    int const width = row.width;
    for (int x = 0; x < width; ++x) {
        auto const y = static_cast<float>(luma[x]) * w.luma;
        auto const u = static_cast<float>(uLine[x]);
        auto const v = static_cast<float>(vLine[x]);
        std::uint32_t const red = Clamp(y + (v * w.redV + w.red), largest);
        std::uint32_t const green = Clamp(y + (u * w.greenU + (v * w.greenV + w.green)), largest);
        std::uint32_t const blue = Clamp(y + (u * w.blueU + w.blue), largest);
        std::uint32_t opacity = largest;
        if constexpr (hasAlpha) opacity = Clamp(static_cast<float>(alpha[x]) * w.alpha + 0.5F, largest);
        if constexpr (isDeep) {
            out[2 * x] = red | green << 16;
            out[2 * x + 1] = blue | opacity << 16;
        } else {
            out[x] = red | green << 8 | blue << 16 | opacity << 24;
        }
    }
}

/// One line of a colour difference: from one or two lines of the picture to one number for each pixel.
struct Line {
    void const *near, *far;  ///< far: null when there is no other line to blend with
    std::uint16_t *blended, *out;
    int samples;  ///< of the picture's lines
    int width;    ///< pixels; as many as samples, or twice that
};

template <typename Sample> [[gnu::always_inline]] inline void Spread_Line(Line const& line)
{
    auto const* __restrict near = static_cast<Sample const*>(line.near);
    auto const* __restrict far = static_cast<Sample const*>(line.far);
    bool const isHalf = line.samples < line.width;
    auto* __restrict blended = isHalf ? line.blended : line.out;
    int const count = line.samples;
    if (far)
        for (int i = 0; i < count; ++i)
            blended[i] = static_cast<std::uint16_t>(3 * near[i] + far[i]);
    else
        for (int i = 0; i < count; ++i)
            blended[i] = near[i];
    if (!isHalf) return;
    auto* __restrict out = line.out;
    // The pixels at the ends have no neighbour on one side, and take four times the one sample.
    out[0] = static_cast<std::uint16_t>(4 * blended[0]);
    for (int i = 0; i + 1 < count; ++i) {
        out[2 * i + 1] = static_cast<std::uint16_t>(3 * blended[i] + blended[i + 1]);
        out[2 * i + 2] = static_cast<std::uint16_t>(blended[i] + 3 * blended[i + 1]);
    }
    if (line.width % 2 == 0) out[line.width - 1] = static_cast<std::uint16_t>(4 * blended[count - 1]);
}

using RowFunction = void (*)(Row const&);
using LineFunction = void (*)(Line const&);

template <typename Sample, bool isDeep, bool hasAlpha> void Plain_Row(Row const& row)
{
    Convert_Row<Sample, isDeep, hasAlpha>(row);
}

template <typename Sample> void Plain_Line(Line const& line)
{
    Spread_Line<Sample>(line);
}

#ifdef ZV_WIDE_TARGET
template <typename Sample, bool isDeep, bool hasAlpha> ZV_WIDE_TARGET void Wide_Row(Row const& row)
{
    Convert_Row<Sample, isDeep, hasAlpha>(row);
}

template <typename Sample> ZV_WIDE_TARGET void Wide_Line(Line const& line)
{
    Spread_Line<Sample>(line);
}

bool Is_Wide()
{
    static bool const isWide = __builtin_cpu_supports("avx2");
    return isWide;
}
#endif

struct Functions {
    RowFunction row;
    LineFunction line;
};

template <typename Sample, bool isDeep, bool hasAlpha> Functions Choose()
{
#ifdef ZV_WIDE_TARGET
    if (Is_Wide()) return {Wide_Row<Sample, isDeep, hasAlpha>, Wide_Line<Sample>};
#endif
    return {Plain_Row<Sample, isDeep, hasAlpha>, Plain_Line<Sample>};
}

template <typename Sample> Functions Choose(bool isDeep, bool hasAlpha)
{
    if (isDeep) return hasAlpha ? Choose<Sample, true, true>() : Choose<Sample, true, false>();
    return hasAlpha ? Choose<Sample, false, true>() : Choose<Sample, false, false>();
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

bool PlanarConverter::To_RGBA(AVFrame const& picture, void* pixels, std::size_t rowBytes, HostPixels layout)
{
    AVPixFmtDescriptor const* planes = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    std::optional<Matrix> const matrix = Matrix_Of(picture);
    if (!planes || !matrix || !Is_Covered(*planes)) return false;
    bool const isDeep = layout == HostPixels::RGBA16;
    bool const hasAlpha = planes->nb_components == 4;
    int const depth = planes->comp[0].depth;
    int const chromaScale = (planes->log2_chroma_w ? 4 : 1) * (planes->log2_chroma_h ? 4 : 1);
    Functions const convert =
        depth > 8 ? Choose<std::uint16_t>(isDeep, hasAlpha) : Choose<std::uint8_t>(isDeep, hasAlpha);
    auto const width = static_cast<std::size_t>(picture.width);
    if (lines_.size() < 3 * width) lines_.resize(3 * width);
    int const samples = AV_CEIL_RSHIFT(picture.width, planes->log2_chroma_w);
    int const lastLine = AV_CEIL_RSHIFT(picture.height, planes->log2_chroma_h) - 1;
    Row row{};
    row.u = &lines_[0];
    row.v = &lines_[width];
    row.width = picture.width;
    row.weights = Make_Weights(*matrix, depth, Is_Full_Range(picture), chromaScale, isDeep ? 65535 : 255);
    for (int y = 0; y < picture.height; ++y) {
        int const near = y >> planes->log2_chroma_h;
        int const far = std::clamp(y & 1 ? near + 1 : near - 1, 0, lastLine);
        for (int plane : {1, 2}) {
            void const* other = planes->log2_chroma_h ? Line_Of(picture, plane, far) : nullptr;
            convert.line({Line_Of(picture, plane, near), other, &lines_[2 * width],
                          &lines_[plane == 1 ? 0 : width], samples, picture.width});
        }
        row.luma = Line_Of(picture, 0, y);
        if (hasAlpha) row.alpha = Line_Of(picture, 3, y);
        row.out = reinterpret_cast<std::uint32_t*>(static_cast<std::uint8_t*>(pixels) +
                                                   static_cast<std::size_t>(y) * rowBytes);
        convert.row(row);
    }
    return true;
}
