// The sample formats of sound, each seen as signed 16-bit values, and the cursor over samples of one of them.
#pragma once

#include "ZVAudio.h"

#include <algorithm>

struct AudioSigned8 {
    using Stored = int8_t;
    static long Load(Stored stored) { return stored * 256L; }
    static Stored Store(long value) { return static_cast<Stored>(value >> 8); }
};

struct AudioUnsigned8 {
    using Stored = uint8_t;
    static long Load(Stored stored) { return (stored - 128L) * 256L; }
    static Stored Store(long value) { return static_cast<Stored>((value >> 8) + 128); }
};

struct AudioSigned16 {
    using Stored = int16_t;
    static long Load(Stored stored) { return stored; }
    static Stored Store(long value) { return static_cast<Stored>(value); }
};

struct AudioSwapped16 {
    using Stored = int16_t;
    static Stored Swap(Stored value)
    {
        return static_cast<Stored>(__builtin_bswap16(static_cast<uint16_t>(value)));
    }
    static long Load(Stored stored) { return Swap(stored); }
    static Stored Store(long value) { return Swap(static_cast<Stored>(value)); }
};

/// Final, so that a loop that knows the format calls nothing through a table.
template <typename Format> class T_stream final : public conversion_stream {
public:
    using Stored = typename Format::Stored;

    void Init(void* data, long sampleCount, long channelCount) override
    {
        channels = channelCount;
        samples = sampleCount;
        first_ = static_cast<Stored*>(data);
        current = data;
        last = first_ + std::max(sampleCount * channelCount - 1, 0L);
    }

    void Advance() override { current = static_cast<Stored*>(current) + channels; }

    long Get(unsigned long index, unsigned long channel) const override
    {
        auto const* const end = static_cast<Stored const*>(last);
        long const lastPlace = end - first_;
        long const place = static_cast<Stored const*>(current) - first_ +
                           static_cast<long>(index) * channels + static_cast<long>(channel);
        if (place <= lastPlace) return Format::Load(first_[place]);
        return Format::Load(first_[std::clamp(lastPlace + static_cast<long>(channel) - 1, 0L, lastPlace)]);
    }

    /// Whether the frame of sound behind the one at the cursor lies in the buffer.
    bool HasNext() const
    {
        return static_cast<Stored const*>(last) - static_cast<Stored*>(current) >= 2 * channels - 1;
    }

    /// What Get answers there.
    long GetInside(unsigned long index, unsigned long channel) const
    {
        return Format::Load(static_cast<Stored const*>(
            current)[static_cast<long>(index) * channels + static_cast<long>(channel)]);
    }

    void Set(unsigned long offset, long value) override
    {
        static_cast<Stored*>(current)[offset] = Format::Store(value);
    }

private:
    Stored* first_ = nullptr;
};
