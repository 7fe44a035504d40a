// Pixels of VPB pictures, in 16.16 fixed point: the coefficients are those of ITU-R BT.601 with full range.
#include "VPBPixels.h"

#include <algorithm>

static uint8_t Clamp_Byte(int32_t value)
{
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

void VPB_Row_To_Pixels(uint8_t const* row, uint8_t* pixels, long width)
{
    int32_t chroma[2] = {0, 0};
    for (long x = 0; x < width; ++x, row += 2, pixels += 4) {
        chroma[x & 1] = row[0] - 128;
        auto const [cb, cr] = chroma;
        int32_t const y = row[1] * 65536;
        pixels[0] = Clamp_Byte((cr * 91881 + y + 32767) >> 16);
        pixels[1] = Clamp_Byte((y - cb * 22554 - cr * 46802 + 32767) >> 16);
        pixels[2] = Clamp_Byte((y + cb * 116130 + 32767) >> 16);
        pixels[3] = 255;
    }
}

void VPB_Pixels_To_Row(uint8_t const* pixels, uint8_t* row, long width)
{
    for (long x = 0; x < width; ++x, row += 2, pixels += 4) {
        int32_t const r = pixels[0], g = pixels[1], b = pixels[2];
        int32_t const chroma = x & 1 ? 32768 * r - 27439 * g - 5329 * b : -11059 * r - 21709 * g + 32768 * b;
        row[0] = static_cast<uint8_t>((chroma + 0x807FFF) >> 16);
        row[1] = static_cast<uint8_t>((19595 * r + 38470 * g + 7471 * b + 32767) >> 16);
    }
}
