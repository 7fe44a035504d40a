// See FileDialogText.h.
#include "FileDialogText.h"

#include "ZVLibInternal.h"
#include "foundation/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>

namespace {

/// The small letter, of Latin, Greek and Cyrillic.
char32_t Small_Letter(char32_t c)
{
    bool const isLatin = c >= 0xC0 && c <= 0xDE && c != 0xD7;
    bool const isOther = (c >= 0x391 && c <= 0x3A9) || (c >= 0x410 && c <= 0x42F);
    if ((c >= 'A' && c <= 'Z') || isLatin || isOther) return c + 0x20;
    if (c >= 0x100 && c <= 0x177 && c != 0x138 && c != 0x149) {
        bool const areOddCapitals = c >= 0x139 && c <= 0x148;
        return (c % 2 == 1) == areOddCapitals ? c + 1 : c;
    }
    return c >= 0x400 && c <= 0x40F ? c + 0x50 : c;
}

/// What letters stand for that are no letter with a mark on it, and yet belong to one or two others.
struct Spelling {
    char32_t letter;
    char const* spelling;
};
constexpr Spelling spellings[] = {{0xDF, "ss"}, {0xE6, "ae"},  {0xF0, "d"},  {0xF8, "o"},
                                  {0xFE, "th"}, {0x111, "d"},  {0x127, "h"}, {0x131, "i"},
                                  {0x142, "l"}, {0x153, "oe"}, {0x17F, "s"}, {0x3C2, "\u03c3"}};

void Append_Folded(std::string& folded, char32_t character)
{
    // Short i stands in the alphabet behind i, as its code does; it is no i with a mark.
    bool const isShortI = character == 0x419 || character == 0x439;
    char32_t const letter = Small_Letter(isShortI ? character : OS_Character_Without_Accents(character));
    if (letter == 0) return;  // an accent that follows its letter
    auto const* const known = std::ranges::find(spellings, letter, &Spelling::letter);
    if (known != std::end(spellings))
        folded += known->spelling;
    else
        Append_Character(folded, letter);
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

std::string Folded(std::string_view text)
{
    std::string folded;
    folded.reserve(text.size());
    while (!text.empty()) {
        Utf8Character const character = First_Character(text);
        if (character.size > 1)
            Append_Folded(folded, character.code);
        else
            folded += character.Is_Well_Formed() ? static_cast<char>(Small_Letter(character.code)) : text[0];
        text.remove_prefix(character.size);
    }
    return folded;
}

std::string Sort_Key_Of_Name(std::string_view name)
{
    std::string const folded = Folded(name);
    std::string key;
    key.reserve(folded.size() + 4);
    for (auto place = folded.begin(); place != folded.end();) {
        auto const end = std::find_if_not(place, folded.end(), Is_Digit);
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
