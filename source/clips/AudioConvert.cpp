// Conversion of sound: one pass over the source, whose type switch stands outside the loop.
#include "AudioConvert.h"

#include "AudioStream.h"

#include <algorithm>
#include <cstring>

namespace {

/// Calls `work` with the sample format; false for a sample size that has none.
template <typename Work> bool Visit_Samples(ZVAudioFormat const& format, Work&& work)
{
    if (format.SampleSize == 1 && (format.Flags & ZV_AUDIO_UNSIGNED))
        work(AudioUnsigned8{});
    else if (format.SampleSize == 1)
        work(AudioSigned8{});
    else if (format.SampleSize == 2 && (format.Flags & ZV_AUDIO_SWAPPED))
        work(AudioSwapped16{});
    else if (format.SampleSize == 2)
        work(AudioSigned16{});
    else
        return false;
    return true;
}

long Limit(long value)
{
    return std::clamp(value, -32767L, 32767L);
}

/// Stores an output frame from sums of source frames in 8 more bits, and turns to the next.
template <typename To> void Put(T_stream<To>& target, long left, long right, long gain)
{
    long const outLeft = Limit((((left + 128) >> 8) * gain + 128) >> 8);
    long const outRight = Limit((((right + 128) >> 8) * gain + 128) >> 8);
    if (target.channels == 1) {
        target.Set(0, (outLeft + outRight) / 2);
    } else {
        target.Set(0, outLeft);
        target.Set(1, outRight);
    }
    target.Advance();
}

/// The conversion where each output frame takes `count` whole frames of the source.
template <typename From, typename To>
void Sum_Frames(T_stream<From> source, T_stream<To> target, long count, long gain)
{
    auto const lastChannel = static_cast<unsigned long>(source.channels) - 1;
    for (long rest = target.samples; rest > 0; --rest) {
        long left = 0, right = 0;
        for (long i = 0; i < count; ++i) {
            left += source.GetInside(0, 0);
            right += source.GetInside(0, lastChannel);
            source.Advance();
        }
        Put(target, left * 256, right * 256, gain);
    }
}

/// The conversion at any ratio: an output frame wants `step` parts of 256 to a source frame, which lie in
/// source frames that are followed in a straight line to the next.
template <typename From, typename To>
void Filter_Frames(T_stream<From> source, T_stream<To> target, double step, long gain)
{
    auto const lastChannel = static_cast<unsigned long>(source.channels) - 1;
    auto const whole = static_cast<long>(step);
    double const fraction = step - static_cast<double>(whole);
    long weight = 256;  // what is left of the present source frame
    long need = whole;  // what the output frame still wants
    long left = 0, right = 0;
    double carry = 0.0;
    for (long rest = target.samples; rest > 0;) {
        bool const isInside = source.HasNext();
        auto const sample = [&](unsigned long index, unsigned long channel) {
            return isInside ? source.GetInside(index, channel) : source.Get(index, channel);
        };
        auto const between = [&](unsigned long channel) {
            return (sample(0, channel) * weight + sample(1, channel) * (256 - weight) + 128) >> 8;
        };
        long const l = between(0);
        long const r = between(lastChannel);
        long const part = std::min(weight, need);
        left += part * l;
        right += part * r;
        if (weight < need) {
            need -= weight;
            source.Advance();
            weight = 256;
            continue;
        }
        weight -= need;
        Put(target, left, right, gain);
        carry += fraction;
        bool const isWhole = carry > 1.0;
        carry -= isWhole ? 1.0 : 0.0;
        need = whole + isWhole;
        left = right = 0;
        --rest;
    }
}

template <typename From, typename To> void Convert(ZVAudioBuffer const& from, ZVAudioBuffer& to)
{
    T_stream<From> source;
    T_stream<To> target;
    source.Init(from.Data, from.Samples, static_cast<long>(from.Format.Channels));
    target.Init(to.Data, to.Samples, static_cast<long>(to.Format.Channels));
    double const ratio = static_cast<double>(to.Samples) / static_cast<double>(from.Samples);
    double const step = 256.0 / ratio;
    auto const gain = static_cast<long>(ratio * 256.0);
    if (to.Samples < 1) return;
    long const count = from.Samples / to.Samples;
    if (count * to.Samples == from.Samples && step == 256.0 * static_cast<double>(count))
        Sum_Frames(source, target, count, gain);
    else
        Filter_Frames(source, target, step, gain);
}

bool Has_Samples(ZVAudioFormat const& format)
{
    return (format.SampleSize == 1 || format.SampleSize == 2) &&
           (format.Channels == 1 || format.Channels == 2);
}

}  // namespace

long Convert_Audio(ZVAudioBuffer const& source, ZVAudioBuffer& target)
{
    if (!Has_Samples(source.Format) || !Has_Samples(target.Format)) return 0;
    if (source.Samples < 1) {
        bool const isUnsigned = target.Format.SampleSize == 1 && (target.Format.Flags & ZV_AUDIO_UNSIGNED);
        auto const bytes =
            static_cast<unsigned long>(target.Samples) * target.Format.SampleSize * target.Format.Channels;
        std::memset(target.Data, isUnsigned ? 128 : 0, bytes);
        return 1;
    }
    Visit_Samples(source.Format, [&]<typename From>(From) {
        Visit_Samples(target.Format, [&]<typename To>(To) { Convert<From, To>(source, target); });
    });
    return 1;
}
