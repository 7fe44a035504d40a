// See FileDialogText.h.
#include "FileDialogText.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>

namespace {

/// The small letter of a character of two bytes in UTF-8.
unsigned Small_Letter(unsigned c)
{
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
    if (c >= 0x100 && c <= 0x177 && c != 0x138 && c != 0x149) {
        bool const areOddCapitals = c >= 0x139 && c <= 0x148;
        return (c % 2 == 1) == areOddCapitals ? c + 1 : c;
    }
    if ((c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F)) return c + 0x20;
    if (c >= 0x400 && c <= 0x40F) return c + 0x50;
    return c;
}

bool Is_Digit(char c)
{
    return c >= '0' && c <= '9';
}

/// A number in a key: a digit, which keeps its place among the other characters, then how many digits the
/// number has, then these.
void Append_Number(std::string& key, std::string_view digits)
{
    constexpr std::size_t mostDigits = 255;  // a name has no more
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    key += '0';
    key += static_cast<char>(std::min(digits.size(), mostDigits));
    key += digits;
}

}  // namespace

std::string Small_Letters(std::string_view text)
{
    std::string small(text);
    for (std::size_t i = 0; i < small.size(); ++i) {
        auto const c = static_cast<unsigned char>(small[i]);
        if (c >= 'A' && c <= 'Z') small[i] = static_cast<char>(c + 'a' - 'A');
        bool const isPair = c >= 0xC3 && c <= 0xDF && i + 1 < small.size() && (small[i + 1] & 0xC0) == 0x80;
        if (!isPair) continue;
        unsigned const letter =
            Small_Letter((c & 0x1FU) << 6 | (static_cast<unsigned>(small[i + 1]) & 0x3FU));
        small[i] = static_cast<char>(0xC0 | letter >> 6);
        small[++i] = static_cast<char>(0x80 | (letter & 0x3F));
    }
    return small;
}

std::string Sort_Key_Of_Name(std::string_view name)
{
    std::string const small = Small_Letters(name);
    std::string key;
    key.reserve(small.size() + 4);
    for (auto place = small.begin(); place != small.end();) {
        auto const end = std::find_if_not(place, small.end(), Is_Digit);
        if (end == place) {
            key += *place++;
            continue;
        }
        Append_Number(key, {&*place, static_cast<std::size_t>(end - place)});
        place = end;
    }
    return key;
}

std::string Shown_Name(std::string_view name)
{
    constexpr std::string_view colon = "\xEF\x80\xBA", backslash = "\xEF\x81\x9C";
    std::string shown;
    shown.reserve(name.size());
    while (!name.empty()) {
        bool const isColon = name.starts_with(colon), isBackslash = name.starts_with(backslash);
        char const c = isColon ? ':' : isBackslash ? '\\' : name.front();
        shown += static_cast<unsigned char>(c) < ' ' || c == 0x7F ? '?' : c;
        name.remove_prefix(isColon || isBackslash ? colon.size() : 1);
    }
    return shown;
}

std::string Size_Text(int64_t bytes)
{
    constexpr char const* units[] = {"KB", "MB", "GB", "TB"};
    if (bytes < 1000) return std::to_string(bytes) + " bytes";
    unsigned unit = 0;
    double amount = static_cast<double>(bytes) / 1000;
    for (; amount >= 999.5 && unit < std::size(units) - 1; ++unit)
        amount /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, amount < 99.95 ? "%.1f %s" : "%.0f %s", amount, units[unit]);
    return text;
}

std::string Date_Text(int64_t seconds)
{
    auto const time = static_cast<std::time_t>(seconds);
    std::tm const* const local = std::localtime(&time);
    char text[32];
    return local && std::strftime(text, sizeof text, "%Y-%m-%d  %H:%M", local) ? text : std::string();
}
