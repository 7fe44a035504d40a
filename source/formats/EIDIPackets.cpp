// See EIDIPackets.h.
#include "EIDIPackets.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace {

constexpr long LongestPacket = 128;
constexpr uint8_t FirstLiteral = 128;
constexpr long ChunkSize = 16;
static_assert(EIDISlack >= ChunkSize);

uint32_t Load32(uint8_t const* bytes)
{
    uint32_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

/// Whole chunks, the last of which may go beyond the bytes wanted: most packets are short, and a copy of
/// their exact length would cost more than the pixels.
void Copy_Chunks(uint8_t* out, uint8_t const* in, long size)
{
    for (long i = 0; i < size; i += ChunkSize)
        std::memcpy(out + i, in + i, ChunkSize);
}

/// Repeats the first Unit bytes of a word.
template <int Unit> void Fill_Units(uint8_t* out, uint32_t unit, long count)
{
    if constexpr (Unit == 3) {
        // The fourth byte of each store is overwritten by the next.
        for (long i = 0; i < count; ++i)
            std::memcpy(out + 3 * i, &unit, sizeof(unit));
    } else {
        uint8_t chunk[ChunkSize];
        for (long i = 0; i < ChunkSize; i += Unit)
            std::memcpy(chunk + i, &unit, Unit);
        for (long i = 0; i < count * Unit; i += ChunkSize)
            std::memcpy(out + i, chunk, ChunkSize);
    }
}

}  // namespace

template <int Unit>
long EIDIUnpacker::Unpack_Units(uint8_t const*& in, uint8_t const* end, uint8_t* out, long count)
{
    long rest = rest_;
    bool isRun = isRun_;
    uint32_t unit = unit_;
    uint8_t const* from = in;
    long wanted = count;
    while (wanted > 0) {
        if (rest == 0) {
            if (end - from < 1 + Unit) break;
            uint8_t const control = *from++;
            isRun = control < FirstLiteral;
            rest = isRun ? control + 1 : control - (FirstLiteral - 1);
            if (isRun) {
                unit = Load32(from);
                from += Unit;
            }
        }
        long units = std::min(rest, wanted);
        if (isRun) {
            Fill_Units<Unit>(out, unit, units);
        } else {
            if (units * Unit > end - from) units = (end - from) / Unit;
            if (units == 0) break;
            Copy_Chunks(out, from, units * Unit);
            from += units * Unit;
        }
        out += units * Unit;
        rest -= units;
        wanted -= units;
    }
    in = from;
    rest_ = rest;
    isRun_ = isRun;
    unit_ = unit;
    return count - wanted;
}

long EIDIUnpacker::Unpack(uint8_t const*& in, uint8_t const* end, uint8_t* out, long count)
{
    switch (unitBytes_) {
    case 1: return Unpack_Units<1>(in, end, out, count);
    case 2: return Unpack_Units<2>(in, end, out, count);
    case 3: return Unpack_Units<3>(in, end, out, count);
    default: return Unpack_Units<4>(in, end, out, count);
    }
}

namespace {

template <int Unit> bool Equals_Next(uint8_t const* unit)
{
    constexpr uint32_t mask =
        std::bit_cast<uint32_t>(std::array<uint8_t, 4>{255, 255, 255, Unit == 4 ? 255 : 0});
    return ((Load32(unit) ^ Load32(unit + Unit)) & mask) == 0;
}

/// Whether a run starts at unit x of a row of `width` units.
template <int Unit> bool Starts_Run(uint8_t const* units, long x, long width)
{
    if constexpr (Unit == 1) {
        uint32_t const four = Load32(units + x);
        return x < width - 4 && std::rotl(four, 8) == four;
    } else {
        return x < width - 1 && Equals_Next<Unit>(units + x * Unit);
    }
}

/// Units from the first one on that equal it, of at most `limit`.
template <int Unit> long Run_Length(uint8_t const* units, long limit)
{
    // A run is bytes that equal the ones a unit further on, and those are counted eight at a time.
    long const size = (limit - 1) * Unit;
    for (long i = 0; i < size; i += 8) {
        uint64_t here, next;
        std::memcpy(&here, units + i, 8);
        std::memcpy(&next, units + i + Unit, 8);
        if (uint64_t const difference = here ^ next) {
            int const zeros = std::endian::native == std::endian::little ? std::countr_zero(difference)
                                                                         : std::countl_zero(difference);
            return std::min(i + zeros / 8, size) / Unit + 1;
        }
    }
    return limit;
}

template <int Unit> uint8_t* Pack_Row(uint8_t const* units, long width, uint8_t* out)
{
    for (long x = 0; x < width;) {
        uint8_t const* first = units + x * Unit;
        long const limit = std::min(width - x, LongestPacket);
        if (Starts_Run<Unit>(units, x, width)) {
            long const length = Run_Length<Unit>(first, limit);
            *out++ = static_cast<uint8_t>(length - 1);
            std::memcpy(out, first, Unit);
            out += Unit;
            x += length;
        } else {
            long length = 1;
            while (length < limit && !Starts_Run<Unit>(units, x + length, width))
                ++length;
            *out++ = static_cast<uint8_t>(FirstLiteral - 1 + length);
            Copy_Chunks(out, first, length * Unit);
            out += length * Unit;
            x += length;
        }
    }
    return out;
}

}  // namespace

uint8_t* Pack_EIDI_Row(uint8_t const* units, long width, long unitBytes, uint8_t* out)
{
    switch (unitBytes) {
    case 1: return Pack_Row<1>(units, width, out);
    case 3: return Pack_Row<3>(units, width, out);
    default: return Pack_Row<4>(units, width, out);
    }
}
