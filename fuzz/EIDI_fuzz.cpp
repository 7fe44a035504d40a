// EIDI files: the input is the file. Its bytes are also taken as a stream of packets, which must unpack to
// the same units however it is cut, and as a row of units, which must survive being packed.
#include "ClipFuzz.h"
#include "formats/EIDIPackets.h"

#include <algorithm>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// Units of a stream of packets that comes in pieces of a given size.
static Bytes Unpack(uint8_t const* packets, std::size_t size, long unitBytes, long piece)
{
    constexpr std::size_t largest = 1 << 12;
    EIDIUnpacker unpacker{unitBytes};
    Bytes units, window;
    std::size_t taken = 0;
    while (units.size() < largest) {
        std::size_t const held = window.size();
        window.resize(held + EIDISlack);
        Bytes row(static_cast<std::size_t>(piece * unitBytes) + EIDISlack);
        uint8_t const* in = window.data();
        long const got = unpacker.Unpack(in, window.data() + held, row.data(), piece);
        units.insert(units.end(), row.data(), row.data() + got * unitBytes);
        window.resize(held);
        window.erase(window.begin(), window.begin() + (in - window.data()));
        if (got == piece) continue;
        if (taken == size) break;
        std::size_t const more = std::min(static_cast<std::size_t>(piece), size - taken);
        window.insert(window.end(), packets + taken, packets + taken + more);
        taken += more;
    }
    units.resize(std::min(units.size(), largest));
    return units;
}

static void Fuzz_Packets(uint8_t const* data, std::size_t size, long unitBytes)
{
    Bytes const whole = Unpack(data, size, unitBytes, 1 << 12);
    for (long piece : {3L, 70L})
        if (Unpack(data, size, unitBytes, piece) != whole) std::abort();

    long const width = static_cast<long>(size) / unitBytes;
    if (unitBytes == 2 || width == 0) return;
    Bytes row(data, data + width * unitBytes);
    row.resize(row.size() + EIDISlack);
    Bytes packed(static_cast<std::size_t>(EIDI_Packed_Bound(width, unitBytes)) + EIDISlack);
    uint8_t const* end = Pack_EIDI_Row(row.data(), width, unitBytes, packed.data());
    if (end - packed.data() > EIDI_Packed_Bound(width, unitBytes)) std::abort();
    EIDIUnpacker unpacker{unitBytes};
    Bytes unpacked(row.size());
    uint8_t const* in = packed.data();
    if (unpacker.Unpack(in, end, unpacked.data(), width) != width || in != end) std::abort();
    if (!std::equal(row.begin(), row.begin() + width * unitBytes, unpacked.begin())) std::abort();
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    Fuzz_Clip(ZV_FourCC("EIDI"), data, size, 2048);
    for (long unitBytes : {1L, 2L, 3L, 4L})
        Fuzz_Packets(data, std::min<std::size_t>(size, 512), unitBytes);
    return 0;
}
