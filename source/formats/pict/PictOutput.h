// A picture as it is being written.
#pragma once

#include "PictOpcodes.h"

inline constexpr std::size_t PictHeaderSize = 52;  ///< With the clip behind it.
inline constexpr uint32_t Dots72 = 72u << 16;

/// Puts numbers where there is room for them.
class PictOutput {
public:
    explicit PictOutput(uint8_t* out) : out_(out) {}

    PictOutput& Put16(long value)
    {
        Store_Big16(out_, static_cast<uint32_t>(value));
        out_ += 2;
        return *this;
    }
    PictOutput& Put32(uint32_t value)
    {
        Store_Big32(out_, value);
        out_ += 4;
        return *this;
    }
    PictOutput& Put_Rect(PictRect const& rect)
    {
        return Put16(rect.top).Put16(rect.left).Put16(rect.bottom).Put16(rect.right);
    }
    PictOutput& Put(std::span<uint8_t const> bytes)
    {
        out_ = std::copy(bytes.begin(), bytes.end(), out_);
        return *this;
    }
    PictOutput& Put_Zeros(std::size_t count)
    {
        out_ = std::fill_n(out_, count, uint8_t{0});
        return *this;
    }

    /// What a picture begins with, and a clip that leaves all of it. Its size is put by End_Picture.
    PictOutput& Put_Header(long width, long height)
    {
        PictRect const frame{0, 0, width, height};
        return Put16(0)
            .Put_Rect(frame)
            .Put16(PICT_OP_VERSION)
            .Put16(0x02FF)
            .Put16(PICT_OP_HEADER)
            .Put16(-2)
            .Put16(0)
            .Put32(Dots72)
            .Put32(Dots72)
            .Put_Rect(frame)
            .Put32(0)
            .Put16(PICT_OP_CLIP)
            .Put16(10)
            .Put_Rect(frame);
    }

    /// Ends the picture that begins there, and tells its size.
    std::size_t End_Picture(uint8_t* picture)
    {
        if ((out_ - picture) & 1) Put_Zeros(1);
        Put16(PICT_OP_END);
        auto const size = static_cast<std::size_t>(out_ - picture);
        Store_Big16(picture, static_cast<uint32_t>(size));
        return size;
    }
    uint8_t* End() const { return out_; }

private:
    uint8_t* out_;
};
