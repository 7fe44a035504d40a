// Draws the timecode and the number of a frame in a font of its own: seven columns by eight rows, the same on
// every machine.
#include "FilmstripLeader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

constexpr unsigned long LeaderGrey = 0xFF808080;
constexpr long DigitWidth = 7;
constexpr long ColonWidth = 3;
constexpr long DigitTop = 4;
constexpr long TimecodeLeft = 10;
constexpr long NumberFromRight = 45;

/// Eight rows of each digit from the top; bit 6 is the leftmost column.
constexpr uint8_t Font[10][8] = {
    {0x1C, 0x22, 0x22, 0x22, 0x22, 0x22, 0x22, 0x1C}, {0x08, 0x18, 0x28, 0x08, 0x08, 0x08, 0x08, 0x3E},
    {0x1C, 0x22, 0x02, 0x04, 0x08, 0x10, 0x20, 0x3E}, {0x1C, 0x22, 0x02, 0x0C, 0x02, 0x02, 0x22, 0x1C},
    {0x04, 0x0C, 0x14, 0x24, 0x3E, 0x04, 0x04, 0x0E}, {0x3E, 0x20, 0x20, 0x3C, 0x02, 0x02, 0x22, 0x1C},
    {0x0C, 0x10, 0x20, 0x3C, 0x22, 0x22, 0x22, 0x1C}, {0x3E, 0x22, 0x02, 0x04, 0x04, 0x08, 0x08, 0x08},
    {0x1C, 0x22, 0x22, 0x1C, 0x22, 0x22, 0x22, 0x1C}, {0x1C, 0x22, 0x22, 0x22, 0x1E, 0x02, 0x04, 0x18},
};

using LeaderText = std::array<char, 16>;

/// The number under which drop-frame timecode shows a frame: two numbers are left out at each full minute but
/// the tenth.
long Drop_Frame_Number(long frame)
{
    constexpr long minute = 1798;  // frames in a minute that drops two numbers
    constexpr long tenMinutes = 10 * minute + 2;
    frame %= 360 * tenMinutes;  // hours are shown up to 59, and no number overflows
    long const rest = frame % tenMinutes;
    return frame + 18 * (frame / tenMinutes) + (rest > 1 ? 2 * ((rest - 2) / minute) : 0);
}

LeaderText Timecode_Text(long frame, double rate)
{
    long const perSecond = f_round(rate);
    if (perSecond < 1) return {"--:--:--:--"};
    if (perSecond == 30 && std::fabs(rate - 29.97) <= 0.0001) frame = Drop_Frame_Number(frame);
    long const seconds = frame / perSecond;
    LeaderText text;
    std::snprintf(text.data(), text.size(), "%02ld:%02ld:%02ld:%02ld", seconds / 3600 % 60, seconds / 60 % 60,
                  seconds % 60, frame % perSecond % 100);
    return text;
}

LeaderText Number_Text(long frame)
{
    LeaderText text;
    std::snprintf(text.data(), text.size(), "%05ld", frame % 100000);
    return text;
}

void Draw_Pixel(ZVBitmap* leader, long x, long y)
{
    ZVFloatRGB const black{};  // its alpha is 0 as well, so the text is a hole in the strip
    WriteFloatPixelZV(leader, x, y, &black);
}

/// @return  how far the pen moves
long Draw_Character(ZVBitmap* leader, long x, char character)
{
    switch (character) {
    case ':':
        Draw_Pixel(leader, x + 1, DigitTop + 1);
        Draw_Pixel(leader, x + 1, DigitTop + 6);
        return ColonWidth;
    case '-':
        for (long column = 1; column < DigitWidth - 1; ++column)
            Draw_Pixel(leader, x + column, DigitTop + 4);
        return DigitWidth;
    default:
        for (long row = 0; row < 8; ++row) {
            for (long column = 0; column < DigitWidth; ++column) {
                if (Font[character - '0'][row] & 0x40 >> column)
                    Draw_Pixel(leader, x + column, DigitTop + row);
            }
        }
        return DigitWidth;
    }
}

void Draw_Text(ZVBitmap* leader, long x, LeaderText const& text)
{
    for (char const* character = text.data(); *character; ++character)
        x += Draw_Character(leader, x, *character);
}

}  // namespace

void Draw_Leader(ZVBitmap* leader, long frame, double rate)
{
    frame = std::max(frame, 0L);
    FillBitmapZV(leader, LeaderGrey);
    Draw_Text(leader, TimecodeLeft, Timecode_Text(frame, rate));
    Draw_Text(leader, leader->Width - NumberFromRight, Number_Text(frame));
}
