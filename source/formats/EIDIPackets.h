// The run-length packets of EIDI pixel data, on memory alone. A packet is a control byte c with, below 128,
// one coding unit that stands for c + 1 repetitions, and from 128 up c - 127 units as they are. A unit has 1
// to 4 bytes.
//
// Wide loads and stores are what makes this fast: every buffer handed in here, for reading or writing, must
// be accessible for EIDISlack bytes behind the part that counts. What is written there has no meaning.
#pragma once

#include "ZVBase.h"

constexpr long EIDISlack = 64;

/// Unpacks a stream that arrives in pieces. What a piece leaves over of a packet is carried into the next
/// call, so neither the ends of rows nor those of a read buffer matter to it.
class ZV_API EIDIUnpacker {
public:
    explicit EIDIUnpacker(long unitBytes) : unitBytes_(unitBytes) {}

    /// Unpacks up to `count` units. Stops early in front of a unit or packet that is not whole before `end`.
    /// @param in  moves behind what was used up
    /// @return  units written
    long Unpack(uint8_t const*& in, uint8_t const* end, uint8_t* out, long count);

private:
    template <int Unit> long Unpack_Units(uint8_t const*& in, uint8_t const* end, uint8_t* out, long count);

    long unitBytes_;
    long rest_ = 0;  ///< units left of the packet at hand
    bool isRun_ = false;
    uint32_t unit_ = 0;  ///< what a run repeats, in its first bytes
};

/// Most bytes that a packed row can take.
constexpr int64_t EIDI_Packed_Bound(int64_t width, long unitBytes)
{
    // Runs save more than the literal packet that they may split off, so plain literals are the longest form.
    return width * unitBytes + width / 128 + 2;
}

/// Packs a row of units of 1, 3 or 4 bytes; no packet crosses its end. Runs of 3- and 4-byte units start at
/// two equal units. Those of single bytes need four, and none starts in the last four bytes of a row.
/// @param out  at least EIDI_Packed_Bound bytes
/// @return  the end of what was written
ZV_API uint8_t* Pack_EIDI_Row(uint8_t const* units, long width, long unitBytes, uint8_t* out);
