// Reading the values of options.
#include "Arguments.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

struct NamedColour {
    char const* name;
    ZVLONGCOLOR colour;
};

constexpr NamedColour namedColours[] = {
    {"black", 0xFF000000},   {"white", 0xFFFFFFFF}, {"grey", 0xFF808080},   {"gray", 0xFF808080},
    {"red", 0xFFFF0000},     {"green", 0xFF008000}, {"blue", 0xFF0000FF},   {"yellow", 0xFFFFFF00},
    {"magenta", 0xFFFF00FF}, {"cyan", 0xFF00FFFF},  {"orange", 0xFFFFA500}, {"transparent", 0x00000000},
};

template <typename Number> std::optional<Number> Parse_Number(char const* begin, char const* end)
{
    Number value{};
    auto const [stop, error] = std::from_chars(begin, end, value);
    if (begin == end || error != std::errc{} || stop != end) return std::nullopt;
    return value;
}

template <typename Number> std::optional<Number> Parse_Number(std::string const& text)
{
    return Parse_Number<Number>(text.data(), text.data() + text.size());
}

[[noreturn]] void Refuse(char const* option, std::string const& text, char const* wanted)
{
    throw UsageError(std::string(option) + " takes " + wanted + ", not '" + text + "'");
}

}  // namespace

std::optional<ZVLONGCOLOR> Parse_Colour(std::string const& text)
{
    for (NamedColour const& named : namedColours)
        if (text == named.name) return named.colour;

    std::size_t const prefix = text.starts_with('#') ? 1 : text.starts_with("0x") ? 2 : 0;
    std::size_t const digits = text.size() - prefix;
    if (prefix == 0 || (digits != 6 && digits != 8)) return std::nullopt;
    ZVLONGCOLOR value = 0;
    char const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data() + prefix, end, value, 16);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return digits == 6 ? value | 0xFF000000 : value;
}

ZVLONGCOLOR Read_Colour(char const* option, std::string const& text)
{
    std::optional<ZVLONGCOLOR> const colour = Parse_Colour(text);
    if (!colour) Refuse(option, text, "a colour such as '#FF8000' or 'black'");
    return *colour;
}

Size Read_Size(char const* option, std::string const& text)
{
    char const* const wanted = "a size such as 1280x720, each side from 1 to 32767";
    std::size_t const cross = text.find('x');
    if (cross == std::string::npos) Refuse(option, text, wanted);
    std::optional<long> const width = Parse_Number<long>(text.substr(0, cross));
    std::optional<long> const height = Parse_Number<long>(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > 32767 || *height > 32767)
        Refuse(option, text, wanted);
    return {*width, *height};
}

double Read_Rate(char const* option, std::string const& text)
{
    char const* const wanted = "frames per second such as 25, 29.97 or 30000/1001, at most 10000";
    std::size_t const slash = text.find('/');
    std::optional<double> rate = Parse_Number<double>(text.substr(0, slash));
    if (rate && slash != std::string::npos) {
        std::optional<double> const divisor = Parse_Number<double>(text.substr(slash + 1));
        rate = divisor && *divisor > 0 ? std::optional(*rate / *divisor) : std::nullopt;
    }
    if (!rate || !(*rate >= 0.001) || !(*rate <= 10000)) Refuse(option, text, wanted);
    return *rate;
}

long Read_Count(char const* option, std::string const& text, long least)
{
    std::optional<long> const count = Parse_Number<long>(text);
    if (!count || *count < least || *count > INT32_MAX)
        Refuse(option, text, least > 0 ? "a whole number from 1 up" : "a whole number from 0 up");
    return *count;
}

long Read_Percent(char const* option, std::string const& text)
{
    std::optional<long> const percent = Parse_Number<long>(text);
    if (!percent || *percent < 0 || *percent > 100) Refuse(option, text, "a whole number from 0 to 100");
    return *percent;
}

Position Read_Position(char const* option, std::string const& text, bool inFrames)
{
    bool const hasUnit = !text.empty() && (text.back() == 'f' || text.back() == 's');
    bool const isFrames = hasUnit ? text.back() == 'f' : inFrames;
    std::optional<double> const value =
        Parse_Number<double>(text.data(), text.data() + text.size() - hasUnit);
    if (!value || !std::isfinite(*value) || *value < 0 || *value > 1e9)
        Refuse(option, text, "a place such as 1.5s (seconds) or 36f (frames)");
    return {*value, isFrames};
}

long Read_Depth(char const* option, std::string const& text)
{
    if (text == "float") return 32;
    std::optional<long> const depth = Parse_Number<long>(text);
    if (!depth || (*depth != 8 && *depth != 10 && *depth != 12 && *depth != 16))
        Refuse(option, text, "8, 10, 12, 16 or float");
    return *depth;
}
