// The words of the command line: values that several commands take, read with a clear answer for wrong ones.
#pragma once

#include <ZVLib.h>

#include <optional>
#include <stdexcept>
#include <string>

/// Wrong words on the command line; the program ends with status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Size {
    long width;
    long height;
};

/// A place in a clip, in the unit that it was given in.
struct Position {
    double value;
    bool isFrames;  ///< else seconds

    double Seconds(double rate) const { return isFrames ? value / rate : value; }
};

/// "#RRGGBB", "#AARRGGBB", the same after 0x, or the name of one of the basic colours; opaque when no alpha
/// is given.
std::optional<ZVLONGCOLOR> Parse_Colour(std::string const& text);

// Each of these throws a UsageError that names the option when the text is not what it takes.

ZVLONGCOLOR Read_Colour(char const* option, std::string const& text);
Size Read_Size(char const* option, std::string const& text);               ///< "640x480"
double Read_Rate(char const* option, std::string const& text);             ///< "25", "29.97", "30000/1001"
long Read_Count(char const* option, std::string const& text, long least);  ///< a whole number
Position Read_Position(char const* option, std::string const& text,
                       bool inFrames);                           ///< "12f", "1.5s", or bare
long Read_Percent(char const* option, std::string const& text);  ///< 0 to 100
long Read_Depth(char const* option, std::string const& text);    ///< 8, 10, 12, 16, "float"
