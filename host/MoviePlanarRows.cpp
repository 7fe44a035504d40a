// See MoviePlanarRows.h. No version contracts multiplications, so all give the same bits.
#include "MoviePlanarRows.h"

#include <algorithm>
#include <bit>

static_assert(std::endian::native == std::endian::little, "pixels are put together as words");

#if defined(__x86_64__)
#include <immintrin.h>
#define ZV_WIDE_TARGET [[gnu::target("avx2")]]
#endif

namespace {

inline std::uint32_t Clamp(float value, int largest)
{
    // Cutting off rounds, since a half was added; below 0 it does not matter where to.
    return static_cast<std::uint32_t>(std::clamp(static_cast<int>(value), 0, largest));
}

template <typename Sample, bool isDeep, bool hasAlpha>
[[gnu::always_inline]] inline void Convert_Row(PlanarRow const& row)
{
    constexpr int largest = isDeep ? 0xFFFF : 0xFF;
    PlanarWeights const w = row.weights;
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

template <typename Sample> [[gnu::always_inline]] inline void Blend_Lines(ChromaLine const& line)
{
    auto const* __restrict near = static_cast<Sample const*>(line.near);
    auto const* __restrict far = static_cast<Sample const*>(line.far);
    auto* __restrict blended = line.isHalf ? line.blended : line.out;
    int const count = line.samples;
    if (far)
        for (int i = 0; i < count; ++i)
            blended[i] = static_cast<std::uint16_t>(3 * near[i] + far[i]);
    else
        for (int i = 0; i < count; ++i)
            blended[i] = near[i];
}

template <typename Sample> [[gnu::always_inline]] inline void Spread_Line(ChromaLine const& line)
{
    Blend_Lines<Sample>(line);
    if (!line.isHalf) return;
    int const count = line.samples;
    // The pixels at the ends have no neighbour on one side, and take four times the one sample.
    line.blended[-1] = line.blended[0];
    line.blended[count] = line.blended[count - 1];
    auto const* __restrict blended = line.blended;
    auto* __restrict out = line.out;
    for (int i = 0; i < count; ++i) {
        out[2 * i] = static_cast<std::uint16_t>(3 * blended[i] + blended[i - 1]);
        out[2 * i + 1] = static_cast<std::uint16_t>(3 * blended[i] + blended[i + 1]);
    }
}

/// What makes a pixel of the parts at a place, by whole numbers.
template <typename Sample>
[[gnu::always_inline]] inline std::uint32_t Fixed_Pixel(PlanarRow const& row, int x)
{
    FixedPlanarWeights const& w = row.fixed;
    // In words, as registers hold them, since samples can have more bits than they should.
    auto const part = [](int value, int bits) { return static_cast<std::int16_t>(value << bits); };
    int const y = part(static_cast<Sample const*>(row.luma)[x], w.lumaBits);
    int const u = part(row.u[x], w.chromaBits);
    int const v = part(row.v[x], w.chromaBits);
    auto const byte = [](int value) { return static_cast<std::uint32_t>(std::clamp(value, 0, 0xFF)); };
    return byte((y * w.luma + v * w.redV + w.red) >> FixedPlanarWeights::Shift) |
           byte((y * w.luma + v * w.greenV + u * w.greenU + w.green) >> FixedPlanarWeights::Shift) << 8 |
           byte((y * w.blueLuma + u * w.blueU + w.blue) >> FixedPlanarWeights::BlueShift) << 16 | 0xFF000000;
}

template <typename Sample, bool isDeep, bool hasAlpha> void Plain_Row(PlanarRow const& row)
{
    Convert_Row<Sample, isDeep, hasAlpha>(row);
}

template <typename Sample> void Plain_Fixed_Row(PlanarRow const& row)
{
    for (int x = 0; x < row.width; ++x)
        row.out[x] = Fixed_Pixel<Sample>(row, x);
}

template <typename Sample> void Plain_Line(ChromaLine const& line)
{
    Spread_Line<Sample>(line);
}

#ifdef ZV_WIDE_TARGET
template <typename Sample, bool isDeep, bool hasAlpha> ZV_WIDE_TARGET void Wide_Row(PlanarRow const& row)
{
    Convert_Row<Sample, isDeep, hasAlpha>(row);
}

template <typename Sample> ZV_WIDE_TARGET void Wide_Line(ChromaLine const& line)
{
    Spread_Line<Sample>(line);
}

ZV_WIDE_TARGET inline __m256i Load(void const* from)
{
    return _mm256_loadu_si256(static_cast<__m256i const*>(from));
}

/// Two weights for the neighbouring numbers of a register.
ZV_WIDE_TARGET inline __m256i Two(std::int16_t first, std::int16_t second)
{
    return _mm256_set1_epi32(static_cast<std::uint16_t>(first) |
                             static_cast<int>(static_cast<std::uint32_t>(second) << 16));
}

/// 16 pixels at once. Pairs of numbers are multiplied and added up in one step, and what comes out of order
/// in the halves of a register is put back by the packing.
template <typename Sample> ZV_WIDE_TARGET void Wide_Fixed_Row(PlanarRow const& row)
{
    FixedPlanarWeights const& w = row.fixed;
    __m256i const redWeights = Two(w.luma, w.redV), greenWeights = Two(w.luma, w.greenV);
    __m256i const greenU = Two(0, w.greenU), blueWeights = Two(w.blueLuma, w.blueU);
    __m256i const red = _mm256_set1_epi32(w.red), green = _mm256_set1_epi32(w.green);
    __m256i const blue = _mm256_set1_epi32(w.blue), opaque = _mm256_set1_epi16(0xFF);
    __m128i const lumaBits = _mm_cvtsi32_si128(w.lumaBits), chromaBits = _mm_cvtsi32_si128(w.chromaBits);
    auto const* const luma = static_cast<Sample const*>(row.luma);
    int x = 0;
    for (; x + 16 <= row.width; x += 16) {
        __m256i y;
        if constexpr (sizeof(Sample) == 1)
            y = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<__m128i const*>(luma + x)));
        else
            y = Load(luma + x);
        y = _mm256_sll_epi16(y, lumaBits);
        __m256i const u = _mm256_sll_epi16(Load(row.u + x), chromaBits);
        __m256i const v = _mm256_sll_epi16(Load(row.v + x), chromaBits);
        __m256i const yv0 = _mm256_unpacklo_epi16(y, v), yv1 = _mm256_unpackhi_epi16(y, v);
        __m256i const yu0 = _mm256_unpacklo_epi16(y, u), yu1 = _mm256_unpackhi_epi16(y, u);
        __m256i const r0 = _mm256_add_epi32(_mm256_madd_epi16(yv0, redWeights), red);
        __m256i const r1 = _mm256_add_epi32(_mm256_madd_epi16(yv1, redWeights), red);
        __m256i const g0 = _mm256_add_epi32(_mm256_madd_epi16(yv0, greenWeights),
                                            _mm256_add_epi32(_mm256_madd_epi16(yu0, greenU), green));
        __m256i const g1 = _mm256_add_epi32(_mm256_madd_epi16(yv1, greenWeights),
                                            _mm256_add_epi32(_mm256_madd_epi16(yu1, greenU), green));
        __m256i const b0 = _mm256_add_epi32(_mm256_madd_epi16(yu0, blueWeights), blue);
        __m256i const b1 = _mm256_add_epi32(_mm256_madd_epi16(yu1, blueWeights), blue);
        __m256i const r = _mm256_packs_epi32(_mm256_srai_epi32(r0, w.Shift), _mm256_srai_epi32(r1, w.Shift));
        __m256i const g = _mm256_packs_epi32(_mm256_srai_epi32(g0, w.Shift), _mm256_srai_epi32(g1, w.Shift));
        __m256i const b =
            _mm256_packs_epi32(_mm256_srai_epi32(b0, w.BlueShift), _mm256_srai_epi32(b1, w.BlueShift));
        __m256i const rb = _mm256_packus_epi16(r, b), ga = _mm256_packus_epi16(g, opaque);
        __m256i const rg = _mm256_unpacklo_epi8(rb, ga), ba = _mm256_unpackhi_epi8(rb, ga);
        __m256i const even = _mm256_unpacklo_epi16(rg, ba), odd = _mm256_unpackhi_epi16(rg, ba);
        auto* const out = reinterpret_cast<__m256i*>(row.out + x);
        _mm256_storeu_si256(out, _mm256_permute2x128_si256(even, odd, 0x20));
        _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(even, odd, 0x31));
    }
    for (; x < row.width; ++x)
        row.out[x] = Fixed_Pixel<Sample>(row, x);
}

bool Is_Wide()
{
    static bool const isWide = __builtin_cpu_supports("avx2");
    return isWide;
}
#endif

template <typename Sample, bool isDeep, bool hasAlpha> PlanarFunctions Choose()
{
#ifdef ZV_WIDE_TARGET
    if (Is_Wide()) return {Wide_Row<Sample, isDeep, hasAlpha>, Wide_Line<Sample>};
#endif
    return {Plain_Row<Sample, isDeep, hasAlpha>, Plain_Line<Sample>};
}

template <typename Sample> PlanarFunctions Choose_Fixed()
{
#ifdef ZV_WIDE_TARGET
    if (Is_Wide()) return {Wide_Fixed_Row<Sample>, Wide_Line<Sample>};
#endif
    return {Plain_Fixed_Row<Sample>, Plain_Line<Sample>};
}

template <typename Sample> PlanarFunctions Choose(bool isDeep, bool hasAlpha)
{
    if (isDeep) return hasAlpha ? Choose<Sample, true, true>() : Choose<Sample, true, false>();
    return hasAlpha ? Choose<Sample, false, true>() : Choose<Sample, false, false>();
}

}  // namespace

PlanarFunctions Planar_Functions(bool isWide, bool isFixed, bool isDeep, bool hasAlpha)
{
    if (isFixed) return isWide ? Choose_Fixed<std::uint16_t>() : Choose_Fixed<std::uint8_t>();
    return isWide ? Choose<std::uint16_t>(isDeep, hasAlpha) : Choose<std::uint8_t>(isDeep, hasAlpha);
}
