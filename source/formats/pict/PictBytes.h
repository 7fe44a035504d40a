// A picture's bytes, taken one after the other. What is not there reads as 0 and sets a flag, so that a
// record is read whole and tested once.
#pragma once

#include "PictGeometry.h"

#include "foundation/BigEndian.h"

#include <cstddef>
#include <span>

class PictBytes {
public:
    explicit PictBytes(std::span<uint8_t const> bytes) : bytes_(bytes) {}

    bool Has_Failed() const { return hasFailed_; }
    std::size_t Rest() const { return bytes_.size() - position_; }
    void Fail() { hasFailed_ = true; }

    /// Empty when so many bytes are not there.
    std::span<uint8_t const> Take(std::size_t size)
    {
        if (size > Rest()) {
            position_ = bytes_.size();
            hasFailed_ = true;
            return {};
        }
        position_ += size;
        return bytes_.subspan(position_ - size, size);
    }
    void Skip(std::size_t size) { Take(size); }
    void Align() { position_ = std::min(position_ + (position_ & 1), bytes_.size()); }  ///< To a word.

    uint8_t U8()
    {
        auto const bytes = Take(1);
        return bytes.empty() ? uint8_t{0} : bytes[0];
    }
    uint16_t U16()
    {
        auto const bytes = Take(2);
        return bytes.empty() ? uint16_t{0} : Load_Big16(bytes.data());
    }
    uint32_t U32()
    {
        auto const bytes = Take(4);
        return bytes.empty() ? 0 : Load_Big32(bytes.data());
    }
    int8_t S8() { return static_cast<int8_t>(U8()); }
    int16_t S16() { return static_cast<int16_t>(U16()); }
    int32_t S32() { return static_cast<int32_t>(U32()); }

    PictPoint Point()
    {
        long const y = S16();
        return {S16(), y};
    }
    PictRect Rect()
    {
        PictPoint const first = Point();
        PictPoint const last = Point();
        return {first.x, first.y, last.x, last.y};
    }

private:
    std::span<uint8_t const> bytes_;
    std::size_t position_ = 0;
    bool hasFailed_ = false;
};
