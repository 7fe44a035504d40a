// Times in a clip, and the texts in which users read and type them.
#pragma once

#include "ZVBase.h"

/// A time in seconds as a fraction; a Scale of 0 means time 0. A frame count n at rate r is written {n, r}.
struct ZVTimeValue {
    double Value = 0.0;
    double Scale = 0.0;
};

/// Which field of a frame comes first in time. Even rows belong to the upper field, odd rows to the lower.
enum FieldOrder : uint8_t { ZV_FIELDS_NONE = 0, ZV_FIELDS_UPPER_FIRST = 1, ZV_FIELDS_LOWER_FIRST = 2 };

/// How a frame number is shown.
enum ZVTimeUnits : uint8_t {
    ZV_UNITS_TIMECODE = 1,        ///< HH:MM:SS:FF, with ';' for drop-frame; so are all values not named here
    ZV_UNITS_FRAMES = 2,          ///< the number, counted from 0
    ZV_UNITS_FRAMES_FROM_ONE = 3  ///< the number plus 1, unless the call is zero based
};

/// The text of a frame: Value is the frame, Scale the rate. A rate is drop-frame when it rounds to 30 and
/// differs from 29.97 by less than 0.0001. Dashes for a rate that rounds to 0 or less, and for a negative
/// frame; a frame field of more than two digits shows its last two.
/// @param out  12 bytes
ZV_API void TimecodeToStringZV(char* out, ZVTimeValue const* time, ZVTimeUnits units, long zeroBased);

/// The frame of a text, read from its end: "12" is twelve frames, "1:00" one second. Any other character than
/// a digit separates fields. Fields hold 199 digits; of a longer run the last 199 count, and a value beyond a
/// long is the greatest long.
ZV_API long StringToTimecodeZV(char const* text, double rate, ZVTimeUnits units, long zeroBased);

/// A duration in words: its two leading units.
/// @param out  room for two numbers and two texts of the string file
/// @return  `out`
ZV_API char* TimestampToStringZV(char* out, long milliseconds);
