// Frame numbers and durations as texts.
#include "ZVTime.h"

#include "ZVString.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t maxFieldDigits = 199;

/// The rate that labels count in: 29.97 counts as 30.
long Nominal_Rate(double rate)
{
    return std::lrint(std::clamp(rate, -1.0, 1e9));
}

/// Whether labels skip two numbers at the start of nine minutes out of ten.
bool Is_Drop_Frame(double rate)
{
    return Nominal_Rate(rate) == 30 && std::abs(rate - 29.97) < 0.0001;
}

/// The label that a frame bears in drop-frame numbering.
double Drop_Frame_Label(double frame)
{
    // Ten minutes skip 18 labels; stepping over them whole keeps the walk below short. The remainder is exact
    // for a frame of any size.
    double rest = std::fmod(frame, 17982.0);
    double label = frame + (frame - rest) / 17982.0 * 18.0;
    int minute = 0;
    for (; rest >= 1800.0; rest -= 1800.0) {
        if (++minute == 10) {
            minute = 0;
        } else {
            rest += 2.0;
            label += 2.0;
        }
    }
    return label;
}

void Put_Two_Digits(char* out, double value, double modulus)
{
    long const digits = static_cast<long>(std::fmod(value, modulus)) % 100;
    out[0] = static_cast<char>('0' + digits / 10);
    out[1] = static_cast<char>('0' + digits % 10);
}

void Write_Timecode(char* out, double frame, double rate)
{
    bool const isDrop = Is_Drop_Frame(rate);
    std::strcpy(out, isDrop ? "--;--;--;--" : "--:--:--:--");
    auto const fps = static_cast<double>(Nominal_Rate(rate));
    if (!(fps > 0) || !(frame >= 0) || !std::isfinite(frame)) return;
    double const label = isDrop ? Drop_Frame_Label(frame) : frame;
    Put_Two_Digits(out + 9, label, fps);
    Put_Two_Digits(out + 6, label / fps, 60.0);
    Put_Two_Digits(out + 3, label / (fps * 60.0), 60.0);
    Put_Two_Digits(out, label / (fps * 3600.0), 60.0);
}

/// Value of the digits that a text ends with; the greatest long for one that is larger.
long Value_Of(std::string const& digits)
{
    return std::strtol(digits.c_str(), nullptr, 10);
}

/// Frames that a field of a timecode stands for, 0 being the one at the end of the text.
__int128 Frames_Of_Field(long field, long value, double rate)
{
    __int128 const v = value;
    __int128 const fps = std::max(Nominal_Rate(rate), 0L);
    bool const isDrop = Is_Drop_Frame(rate);
    switch (field) {
    case 0: return v;
    case 1: return v * fps;
    case 2: return v * fps * 60 - (isDrop ? 2 * v - 2 * (v / 10) : 0);
    case 3: return v * fps * 3600 - (isDrop ? 108 * v : 0);
    default: return 0;
    }
}

/// One unit of a duration, with the text of its singular or plural behind the number.
char* Put_Unit(char* out, long number, unsigned long singularId)
{
    out += ItoStr(static_cast<double>(number), out);
    char const* const text = GetStringZV(number == 1 ? singularId : singularId + 1);
    return static_cast<char*>(std::memcpy(out, text, std::strlen(text) + 1)) + std::strlen(text);
}

}  // namespace

void TimecodeToStringZV(char* out, ZVTimeValue const* time, ZVTimeUnits units, long zeroBased)
{
    if (units != ZV_UNITS_FRAMES && units != ZV_UNITS_FRAMES_FROM_ONE) {
        Write_Timecode(out, std::trunc(time->Value), time->Scale);
        return;
    }
    if (!(time->Scale > 0)) {
        std::strcpy(out, "-");
        return;
    }
    bool const fromOne = units == ZV_UNITS_FRAMES_FROM_ONE && !zeroBased;
    ItoStr(fromOne ? time->Value + 1 : time->Value, out);
}

long StringToTimecodeZV(char const* text, double rate, ZVTimeUnits units, long zeroBased)
{
    __int128 frames = 0;
    bool hasHigherField = false;
    long field = 0;
    std::string digits;
    auto const close_field = [&] {
        if (!digits.empty()) {
            std::ranges::reverse(digits);
            frames += Frames_Of_Field(field, Value_Of(digits), rate);
            hasHigherField = hasHigherField || field > 0;
            digits.clear();
        }
        ++field;
    };
    for (char const* c = text + std::strlen(text); c-- > text;) {
        if (!std::isdigit(static_cast<unsigned char>(*c)))
            close_field();
        else if (digits.size() < maxFieldDigits)
            digits += *c;
    }
    close_field();
    if (units == ZV_UNITS_FRAMES_FROM_ONE && !zeroBased && !hasHigherField) --frames;
    return static_cast<long>(std::min(frames, static_cast<__int128>(LONG_MAX)));
}

char* TimestampToStringZV(char* out, long milliseconds)
{
    long const hours = milliseconds / 3600000;
    long const minutes = milliseconds / 60000 % 60;
    long const seconds = milliseconds / 1000 % 60;
    if (hours != 0)
        Put_Unit(Put_Unit(out, hours, 245), minutes, 247);
    else if (minutes != 0)
        Put_Unit(Put_Unit(out, minutes, 241), seconds, 243);
    else
        Put_Unit(out, seconds, 239);
    return out;
}
