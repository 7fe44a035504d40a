// Rows of fields averaged, smoothed and weighed, compiled for each instruction set; plain loops for the
// compiler to vectorise.

// Included once for each target, hence no #pragma once.
#if defined(ZV_FIELD_MATH_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_FIELD_MATH_INL
#undef ZV_FIELD_MATH_INL
#else
#define ZV_FIELD_MATH_INL
#endif

#include "RowMath.h"
#include "RowStages-inl.h"

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

// ---- averages ---------------------------------------------------------------------------------------------

/// (a + b) / 2, truncated in integers, where the sum is avoided: it would take wider lanes.
template <typename T> T Average(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>)
        return (a + b) / 2;
    else
        return static_cast<T>((a & b) + ((a ^ b) >> 1));
}

/// (above + 2 * row + below) / 4. In integers truncating twice is truncating once.
template <typename T> T Smoothed(T above, T row, T below)
{
    if constexpr (std::is_floating_point_v<T>)
        return (above + 2 * row + below) / 4;
    else
        return Average(Average(above, below), row);
}

template <typename Format> void Average_Row(void const* first, void const* second, void* target, long pixels)
{
    Work_On<Format>(
        pixels,
        [](long count, auto const* HWY_RESTRICT a, auto const* HWY_RESTRICT b, auto* HWY_RESTRICT out) {
            for (long i = 0; i < 4 * count; ++i)
                out[i].value = Average(a[i].value, b[i].value);
        },
        ReadRow<Format>(first), ReadRow<Format>(second), WrittenRow<Format>(target));
}

template <typename Format>
void Smooth_Row(void* above, void const* row, void const* below, void* scratch, long pixels)
{
    Work_On<Format>(
        pixels,
        [](long count, auto* HWY_RESTRICT a, auto const* HWY_RESTRICT r, auto const* HWY_RESTRICT b,
           auto* HWY_RESTRICT held) {
            for (long i = 0; i < 4 * count; ++i) {
                auto const smoothed = Smoothed(a[i].value, r[i].value, b[i].value);
                a[i].value = held[i].value;
                held[i].value = smoothed;
            }
        },
        ChangedRow<Format>(above), ReadRow<Format>(row), ReadRow<Format>(below), ChangedRow<Format>(scratch));
}

// ---- weights ----------------------------------------------------------------------------------------------

/// Products as they are told: in double, truncated in integer types.
template <typename T> struct ToldMultiplier {
    double weight;

    explicit ToldMultiplier(ZVRowWeight const& w) : weight(w.value) {}
    auto operator()(T value) const
    {
        if constexpr (std::is_floating_point_v<T>)
            return value * weight;
        else
            return static_cast<T>(static_cast<int32_t>(value * weight));
    }
};

/// The same products by the factor, in lanes as narrow as can be.
template <typename T> struct FactorMultiplier;

template <> struct FactorMultiplier<uint8_t> {
    uint16_t factor, identity;

    explicit FactorMultiplier(ZVRowWeight const& w)
        : factor(static_cast<uint16_t>(w.factor)), identity(w.identity)
    {
    }
    uint8_t operator()(uint8_t value) const
    {
        return static_cast<uint8_t>(static_cast<uint16_t>(uint32_t{value} * factor >> 16) |
                                    (value & identity));
    }
};

template <> struct FactorMultiplier<uint16_t> {
    uint16_t high, low, identity;

    explicit FactorMultiplier(ZVRowWeight const& w)
        : high(static_cast<uint16_t>(w.factor >> 16)), low(static_cast<uint16_t>(w.factor)),
          identity(w.identity)
    {
    }
    uint16_t operator()(uint16_t value) const
    {
        auto const upper = static_cast<uint16_t>(uint32_t{value} * high >> 16);
        auto const middle = static_cast<uint16_t>(uint32_t{value} * high);
        auto const sum = static_cast<uint16_t>(middle + (uint32_t{value} * low >> 16));
        uint16_t const carry = sum < middle ? 1 : 0;
        return static_cast<uint16_t>((upper + carry) | (value & identity));
    }
};

/// Whether the factor gives the told product of every value.
template <typename T> bool Has_All_Products(ZVRowWeight const& weight, uint32_t max)
{
    ToldMultiplier<T> const told(weight);
    FactorMultiplier<T> const multiply(weight);
    T different = 0;
    for (uint32_t value = 0; value <= max; ++value)
        different |= static_cast<T>(told(static_cast<T>(value)) ^ multiply(static_cast<T>(value)));
    return different == 0;
}

/// Calls `work` with the multipliers of weights, all of one kind.
template <typename Format, typename Work, typename... Weights>
void With_Multipliers(Work&& work, Weights const&... weights)
{
    using T = typename Format::Channel;
    if constexpr (Format::bits != 32) {
        if ((weights.hasFactor && ...)) {
            work(FactorMultiplier<T>(weights)...);
            return;
        }
    }
    work(ToldMultiplier<T>(weights)...);
}

template <typename Format, bool ADDS>
void Weigh_Row(void const* source, ZVRowWeight const& weight, void* target, long pixels)
{
    using T = typename Format::Channel;
    With_Multipliers<Format>(
        [&](auto const& multiply) {
            auto const weigh = [&](long count, auto const* HWY_RESTRICT in, auto* HWY_RESTRICT out) {
                for (long i = 0; i < 4 * count; ++i) {
                    auto const product = multiply(in[i].value);
                    out[i].value = static_cast<T>(ADDS ? out[i].value + product : product);
                }
            };
            Work_On<Format>(pixels, weigh, ReadRow<Format>(source), StagedRow < Format,
                            ADDS ? RowUse::change : RowUse::write > (target));
        },
        weight);
}

template <typename Format, bool ADDS>
void Weigh_Fields(void const* row, void const* above, void const* below, ZVRowWeight const& weight,
                  ZVRowWeight const& other, void* target, long pixels)
{
    using T = typename Format::Channel;
    With_Multipliers<Format>(
        [&](auto const& multiply, auto const& multiplyOther) {
            auto const weigh = [&](long count, auto const* HWY_RESTRICT own, auto const* HWY_RESTRICT a,
                                   auto const* HWY_RESTRICT b, auto* HWY_RESTRICT out) {
                for (long i = 0; i < 4 * count; ++i) {
                    auto const sum =
                        multiply(own[i].value) + multiplyOther(Average(T{a[i].value}, T{b[i].value}));
                    out[i].value = static_cast<T>(ADDS ? out[i].value + sum : sum);
                }
            };
            Work_On<Format>(pixels, weigh, ReadRow<Format>(row), ReadRow<Format>(above),
                            ReadRow<Format>(below), StagedRow < Format,
                            ADDS ? RowUse::change : RowUse::write > (target));
        },
        weight, other);
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
