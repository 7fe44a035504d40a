// Rows from and to the alpha conventions of files, compiled for each instruction set.

// Included once for each target, hence no #pragma once.
#if defined(ZV_ALPHA_MATH_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_ALPHA_MATH_INL
#undef ZV_ALPHA_MATH_INL
#else
#define ZV_ALPHA_MATH_INL
#endif

#include "RowStages-inl.h"

#include <algorithm>
#include <array>
#include <cmath>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

/// Channel maximum, as a channel.
template <typename Format>
inline constexpr auto channelMax = static_cast<typename Format::Channel>(
    Format::bits == 32 ? 1.0 : static_cast<double>((uint64_t{1} << Format::bits) - 1));

/// Calls `work` with each pixel of a row that it changes, as four channels.
template <typename Format, typename Work> void Change_Pixels(void* row, long pixels, Work&& work)
{
    Work_On<Format>(
        pixels,
        [&work](long count, auto* rgba) {
            for (long i = 0; i < count; ++i)
                work(rgba + 4 * i);
        },
        ChangedRow<Format>(row));
}

template <typename Format> void Set_Alpha(void* row, bool isOpaque, long pixels)
{
    auto const alpha = isOpaque ? channelMax<Format> : typename Format::Channel{0};
    Change_Pixels<Format>(row, pixels, [alpha](auto* rgba) { rgba[3].value = alpha; });
}

template <typename T> T Inverted(T value, T max)
{
    return static_cast<T>(max - value);
}

template <typename Format> void Invert_Alpha(void* row, long pixels)
{
    Change_Pixels<Format>(row, pixels,
                          [](auto* rgba) { rgba[3].value = Inverted(rgba[3].value, channelMax<Format>); });
}

// ---- luminance --------------------------------------------------------------------------------------------

/// A component of the colour word on the scale of the channels, rounded. No quotient lies halfway.
template <typename Format> typename Format::Channel Scaled_Component(uint32_t component)
{
    if constexpr (Format::bits == 32)
        return static_cast<float>(component / 255.0);
    else
        return static_cast<typename Format::Channel>((component * channelMax<Format> + 127U) / 255);
}

template <typename Format> void Take_Luminance(void* row, uint32_t background, bool isInverted, long pixels)
{
    using T = typename Format::Channel;
    T const red = Scaled_Component<Format>(background >> 16 & 0xFF);
    T const green = Scaled_Component<Format>(background >> 8 & 0xFF);
    T const blue = Scaled_Component<Format>(background & 0xFF);
    Change_Pixels<Format>(row, pixels, [=](auto* rgba) {
        if constexpr (Format::bits == 32) {
            double const mean = (static_cast<double>(rgba[0].value) + rgba[1].value + rgba[2].value) / 3.0;
            rgba[3].value = static_cast<T>(isInverted ? 1.0 - mean : mean);
        } else {
            // Thirds are never halves, so 1 more before the division rounds, and the complement rounds alike.
            uint32_t const sum = uint32_t{rgba[0].value} + rgba[1].value + rgba[2].value;
            auto const mean = static_cast<T>((sum + 1) / 3);
            rgba[3].value = isInverted ? Inverted(mean, channelMax<Format>) : mean;
        }
        rgba[0].value = red;
        rgba[1].value = green;
        rgba[2].value = blue;
    });
}

template <typename Format> void Show_Alpha(void* row, bool isInverted, long pixels)
{
    using T = typename Format::Channel;
    Change_Pixels<Format>(row, pixels, [isInverted](auto* rgba) {
        constexpr T max = channelMax<Format>;
        T const alpha = rgba[3].value;
        rgba[0].value = rgba[1].value = rgba[2].value = isInverted ? Inverted(alpha, max) : alpha;
        rgba[3].value = max;
    });
}

// ---- a matte taken out ------------------------------------------------------------------------------------

/// A matte on the scale of the channels. One that was a channel value once is that value again: the way
/// through a fraction may have cost it its last bit, which would decide halves by chance.
template <typename Format> std::array<double, 3> Scaled_Matte(double const* matte)
{
    std::array<double, 3> scaled;
    for (std::size_t i = 0; i < 3; ++i) {
        double const exact = matte[i] * static_cast<double>(channelMax<Format>);
        double const whole = std::round(exact);
        scaled[i] = Format::bits != 32 && std::abs(exact - whole) < 1e-6 ? whole : exact;
    }
    return scaled;
}

inline bool Is_Whole(std::array<double, 3> const& matte)
{
    return std::all_of(matte.begin(), matte.end(),
                       [](double m) { return m >= 0 && m <= 255 && m == std::round(m); });
}

/// Bytes against a matte of whole numbers, in single precision: v = (c * 255 - m * (255 - t)) / t rounded is
/// (510 * c - 2 * m * (255 - t) + t) / (2 * t) rounded down. The dividend is exact, and half a unit more
/// keeps the rounding of the reciprocal from mattering.
inline uint8_t Unmatted_Byte(uint8_t value, float matte, float alpha, float reciprocal)
{
    float const dividend =
        static_cast<float>(value) * 510.0F - 2.0F * matte * (255.0F - alpha) + alpha + 0.5F;
    float const quotient = dividend * reciprocal;
    return static_cast<uint8_t>(static_cast<int32_t>(quotient > 0.0F ? std::min(quotient, 255.0F) : 0.0F));
}

/// The same in double precision for every integer type and matte. 2^-32 is more than the errors of the
/// product, and less than the distance of any quotient from the next half but that of a matte chosen for it.
template <typename T> T Unmatted(T value, double matte, double alpha, double reciprocal, double max)
{
    constexpr double toRound = 0.5 + 0x1p-32;
    double const quotient = (value * max - matte * (max - alpha)) * reciprocal + toRound;
    return static_cast<T>(static_cast<int32_t>(quotient > 0.0 ? std::min(quotient, max) : 0.0));
}

inline float Unmatted_Float(float value, double matte, double alpha)
{
    double const quotient = (value - matte * (1.0 - alpha)) / alpha;
    return static_cast<float>(quotient > 0.0 ? std::min(quotient, 1.0) : 0.0);
}

/// Changes pixels with their true alpha: `unmatte` makes the function of a colour and its matte, for an alpha
/// that is not 0. The selections let the compiler vectorise.
template <typename Format, typename Unmatte>
void Unmatte_Pixels(void* row, std::array<double, 3> const& matte, bool isInverted, long pixels,
                    Unmatte unmatte)
{
    using T = typename Format::Channel;
    Change_Pixels<Format>(row, pixels, [=](auto* rgba) {
        T const stored = rgba[3].value;
        T const alpha = isInverted ? Inverted(stored, channelMax<Format>) : stored;
        bool const isClear = !(alpha > 0);
        auto const value = unmatte(isClear ? channelMax<Format> : alpha);
        for (std::size_t i = 0; i < 3; ++i) {
            T const mixed = rgba[i].value;
            T const pure = value(mixed, matte[i]);
            rgba[i].value = isClear ? mixed : pure;
        }
        rgba[3].value = alpha;
    });
}

template <typename Format> void Remove_Matte(void* row, double const* matte, bool isInverted, long pixels)
{
    using T = typename Format::Channel;
    std::array<double, 3> const scaled = Scaled_Matte<Format>(matte);
    if constexpr (Format::bits == 32) {
        Unmatte_Pixels<Format>(row, scaled, isInverted, pixels, [](double alpha) {
            return [=](float value, double m) { return Unmatted_Float(value, m, alpha); };
        });
        return;
    }
    if constexpr (Format::bits == 8) {
        if (Is_Whole(scaled)) {
            Unmatte_Pixels<Format>(row, scaled, isInverted, pixels, [](float alpha) {
                return [=, reciprocal = 0.5F / alpha](uint8_t value, double m) {
                    return Unmatted_Byte(value, static_cast<float>(m), alpha, reciprocal);
                };
            });
            return;
        }
    }
    if constexpr (Format::bits != 32) {
        Unmatte_Pixels<Format>(row, scaled, isInverted, pixels, [](double alpha) {
            return [=, reciprocal = 1.0 / alpha](T value, double m) {
                return Unmatted<T>(value, m, alpha, reciprocal, static_cast<double>(channelMax<Format>));
            };
        });
    }
}

// ---- a matte put in ---------------------------------------------------------------------------------------

template <typename Format> void Add_Matte(void* row, double const* matte, long pixels)
{
    using T = typename Format::Channel;
    if constexpr (Format::bits == 32) {
        std::array const added = {matte[0], matte[1], matte[2]};
        Change_Pixels<Format>(row, pixels, [=](auto* rgba) {
            double const alpha = rgba[3].value;
            for (std::size_t i = 0; i < 3; ++i)
                rgba[i].value = static_cast<float>(rgba[i].value * alpha + added[i] * (1.0 - alpha));
        });
    } else {
        constexpr uint32_t max = channelMax<Format>;
        auto const channel = [](double fraction) {
            return static_cast<uint32_t>(std::clamp(fraction * max, 0.0, static_cast<double>(max)));
        };
        std::array const added = {channel(matte[0]), channel(matte[1]), channel(matte[2])};
        Change_Pixels<Format>(row, pixels, [=](auto* rgba) {
            uint32_t const alpha = rgba[3].value;
            for (std::size_t i = 0; i < 3; ++i)
                rgba[i].value = static_cast<T>((rgba[i].value * alpha + added[i] * (max - alpha)) / max);
        });
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
