// See PackBits.h.
#include "PackBits.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr uint8_t Nothing = 128;
constexpr std::size_t LongestPacket = 128;
constexpr std::size_t ChunkSize = 16;

/// Whole chunks, the last of which may go beyond the bytes wanted: most packets are short, and a copy of
/// their exact length would cost more.
void Copy_Chunks(uint8_t* out, uint8_t const* in, std::size_t size)
{
    for (std::size_t i = 0; i < size; i += ChunkSize)
        std::memcpy(out + i, in + i, ChunkSize);
}

template <int Unit> void Fill_Chunks(uint8_t* out, uint8_t const* unit, std::size_t size)
{
    uint8_t chunk[ChunkSize];
    for (std::size_t i = 0; i < ChunkSize; i += Unit)
        std::memcpy(chunk + i, unit, Unit);
    for (std::size_t i = 0; i < size; i += ChunkSize)
        std::memcpy(out + i, chunk, ChunkSize);
}

template <int Unit>
void Unpack(std::span<uint8_t const> packed, std::size_t slack, uint8_t* out, std::size_t size)
{
    uint8_t const* in = packed.data();
    uint8_t const* const end = in + packed.size();
    uint8_t* const outEnd = out + size;
    while (out < outEnd && in < end) {
        uint8_t const control = *in++;
        if (control == Nothing) continue;
        std::size_t const room = static_cast<std::size_t>(outEnd - out);
        std::size_t const rest = static_cast<std::size_t>(end - in);
        if (control > Nothing) {
            if (rest < Unit) break;
            std::size_t const bytes = std::min<std::size_t>((257u - control) * Unit, room);
            Fill_Chunks<Unit>(out, in, bytes);
            in += Unit;
            out += bytes;
        } else {
            std::size_t const bytes = std::min({(control + std::size_t{1}) * Unit, room, rest});
            if (bytes + ChunkSize <= rest + slack)
                Copy_Chunks(out, in, bytes);
            else
                std::memcpy(out, in, bytes);
            in += bytes;
            out += bytes;
        }
    }
    if (out < outEnd) std::memset(out, 0, static_cast<std::size_t>(outEnd - out));
}

uint64_t Load64(uint8_t const* bytes)
{
    uint64_t word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

/// Bytes in front of the first one that is not 0 in memory.
std::size_t Zero_Bytes(uint64_t word)
{
    int const bits =
        std::endian::native == std::endian::little ? std::countr_zero(word) : std::countl_zero(word);
    return static_cast<std::size_t>(bits) / 8;
}

/// Bytes from the first one on that equal it, of at most `limit`.
std::size_t Run_Length(uint8_t const* bytes, std::size_t limit)
{
    uint64_t const wanted = bytes[0] * UINT64_C(0x0101010101010101);
    for (std::size_t i = 0; i < limit; i += 8)
        if (uint64_t const difference = Load64(bytes + i) ^ wanted)
            return std::min(i + Zero_Bytes(difference), limit);
    return limit;
}

/// A word with a mark in each byte that equals the two behind it; the marks above the lowest one may be
/// false.
uint64_t Equal_Threes(uint8_t const* bytes)
{
    uint64_t const here = Load64(bytes);
    uint64_t const unequal = (here ^ Load64(bytes + 1)) | (here ^ Load64(bytes + 2));
    return (unequal - UINT64_C(0x0101010101010101)) & ~unequal & UINT64_C(0x8080808080808080);
}

/// Bytes in front of the next run of three, of at most `limit`. Shorter runs cost nothing inside a literal.
std::size_t Literal_Length(uint8_t const* bytes, std::size_t limit)
{
    for (std::size_t i = 0; i < limit; i += 8) {
        if (Equal_Threes(bytes + i) == 0) continue;
        for (std::size_t k = i; k < std::min(i + 8, limit); ++k)
            if (k + 2 < limit && bytes[k] == bytes[k + 1] && bytes[k] == bytes[k + 2]) return k;
    }
    return limit;
}

}  // namespace

void Unpack_Bits(std::span<uint8_t const> packed, std::size_t slack, int unit, uint8_t* out, std::size_t size)
{
    if (unit == 1)
        Unpack<1>(packed, slack, out, size);
    else
        Unpack<2>(packed, slack, out, size);
}

uint8_t* Pack_Bits(uint8_t const* row, std::size_t size, uint8_t* out)
{
    for (std::size_t at = 0; at < size;) {
        std::size_t const limit = std::min(size - at, LongestPacket);
        uint8_t const* const first = row + at;
        std::size_t const run = Run_Length(first, limit);
        if (run >= 3) {
            *out++ = static_cast<uint8_t>(257 - run);
            *out++ = *first;
            at += run;
            continue;
        }
        std::size_t const length = Literal_Length(first, limit);
        *out++ = static_cast<uint8_t>(length - 1);
        Copy_Chunks(out, first, length);
        out += length;
        at += length;
    }
    return out;
}
