// Vectors of bytes as Highway 1.0 does not offer them, compiled for each instruction set.

// Included once for each target, hence no #pragma once.
#if defined(ZV_VECTOR_BYTES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_VECTOR_BYTES_INL
#undef ZV_VECTOR_BYTES_INL
#else
#define ZV_VECTOR_BYTES_INL
#endif

#include "VectorTargets.h"

#include <cstdint>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

#if ZV_HAS_VECTORS

using ByteTag = hn::ScalableTag<uint8_t>;
using ByteVector = hn::VFromD<ByteTag>;
using SignedByteVector = hn::VFromD<hn::RebindToSigned<ByteTag>>;
using WordTag = hn::Repartition<uint16_t, ByteTag>;
using WordVector = hn::VFromD<WordTag>;
using SignedWordTag = hn::RebindToSigned<WordTag>;
using SignedWordVector = hn::VFromD<SignedWordTag>;

/// weight * value of two neighbouring bytes, added; the weights of a pair add up to 255 at most, so that no
/// sum leaves 16 bits.
HWY_INLINE WordVector Weighted_Pairs(ByteVector weights, SignedByteVector values)
{
#if HWY_TARGET == HWY_AVX2
    return WordVector{_mm256_maddubs_epi16(weights.raw, values.raw)};
#elif HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_SSSE3
    return WordVector{_mm_maddubs_epi16(weights.raw, values.raw)};
#else
    WordTag const d16;
    SignedWordTag const di16;
    auto const weightPairs = hn::BitCast(d16, weights);
    auto const valuePairs = hn::BitCast(di16, values);
    auto const even = hn::Mul(hn::BitCast(di16, hn::And(weightPairs, hn::Set(d16, 0xFF))),
                              hn::ShiftRight<8>(hn::ShiftLeft<8>(valuePairs)));
    auto const odd =
        hn::Mul(hn::BitCast(di16, hn::ShiftRight<8>(weightPairs)), hn::ShiftRight<8>(valuePairs));
    return hn::BitCast(d16, hn::Add(even, odd));
#endif
}

/// Words as bytes, held within 0 to 255, block by block: in the order in which interleaving took them apart.
HWY_INLINE ByteVector Packed_Bytes(SignedWordVector lower, SignedWordVector upper)
{
#if HWY_TARGET == HWY_AVX2
    return ByteVector{_mm256_packus_epi16(lower.raw, upper.raw)};
#elif HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_SSSE3
    return ByteVector{_mm_packus_epi16(lower.raw, upper.raw)};
#else
    hn::Half<ByteTag> const half;  // one block
    return hn::Combine(ByteTag(), hn::DemoteTo(half, upper), hn::DemoteTo(half, lower));
#endif
}
HWY_INLINE ByteVector Packed_Bytes(WordVector lower, WordVector upper)
{
    return Packed_Bytes(hn::BitCast(SignedWordTag(), lower), hn::BitCast(SignedWordTag(), upper));
}

/// Floats cut to integers, which they must fit: Highway would spend as much again on those that do not.
HWY_INLINE hn::VFromD<hn::FixedTag<int32_t, 4>> Truncated(hn::VFromD<hn::FixedTag<float, 4>> values)
{
#if HWY_ARCH_X86
    return hn::VFromD<hn::FixedTag<int32_t, 4>>{_mm_cvttps_epi32(values.raw)};
#else
    return hn::ConvertTo(hn::FixedTag<int32_t, 4>(), values);
#endif
}

#endif

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
