// Pictures made opcode by opcode, and what is drawn, as text.
#pragma once

#include "FormatTest.h"

/// A picture of version 2.
class PictureBytes : public ByteWriter {
public:
    PictureBytes(long width, long height)
    {
        Put16(0).Put16(0).Put16(0).Put16(height).Put16(width);
        Put32(0x001102FF).Put16(0x0C00).Put16(-2).Put16(0).Put32(72 << 16).Put32(72 << 16);
        Put16(0).Put16(0).Put16(height).Put16(width).Put32(0);
    }

    PictureBytes& Opcode(long opcode, Bytes const& data = {})
    {
        PutZeros(bytes.size() & 1).Put16(opcode).Put(data);
        return *this;
    }
    PictureBytes& Rect(long opcode, long left, long top, long right, long bottom)
    {
        Opcode(opcode).Put16(top).Put16(left).Put16(bottom).Put16(right);
        return *this;
    }
    Bytes const& End() { return Opcode(0x00FF).bytes; }
};

/// One letter for each pixel, for nothing drawn, the eight pure colours and any other; rows are parted by
/// slashes.
inline std::string Art(ZVBitmap const& bitmap)
{
    std::string text;
    for (long y = 0; y < bitmap.Height; ++y) {
        if (y > 0) text += '/';
        for (long x = 0; x < bitmap.Width; ++x) {
            unsigned char const* p = bitmap.Pixels + y * bitmap.RowBytes + 4 * x;
            int const lit = (p[0] == 255) | (p[1] == 255) << 1 | (p[2] == 255) << 2;
            bool const isPure = p[0] % 255 == 0 && p[1] % 255 == 0 && p[2] % 255 == 0;
            text += !p[3] ? '.' : isPure && p[3] == 255 ? "#rgybmco"[lit] : '?';
        }
    }
    return text;
}
