#include "MacTextSteps.h"

#include "host/Characters.h"

#include <algorithm>

namespace {

struct Character {
    char32_t code;
    std::size_t size;
};

constexpr char32_t Replacement = 0xFFFD;
constexpr char32_t Joiner = 0x200D;
constexpr std::size_t LongestCharacter = 4;

/// What a double click takes together.
enum class WordPart { Letters, Blanks, Signs, Break };

}  // namespace

static Character Decode(std::string_view text, std::size_t at)
{
    static constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    auto const lead = static_cast<unsigned char>(text[at]);
    if (lead < 0x80) return {lead, 1};
    std::size_t const size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - at < size) return {Replacement, 1};
    char32_t code = lead & 0x7F >> size;
    for (std::size_t i = 1; i < size; ++i) {
        auto const byte = static_cast<unsigned char>(text[at + i]);
        if ((byte & 0xC0) != 0x80) return {Replacement, 1};
        code = code << 6 | (byte & 0x3F);
    }
    bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < least[size] || code > 0x10FFFF || isSurrogate) return {Replacement, 1};
    return {code, size};
}

/// The character that ends there; `at` is above 0.
static Character Decode_Before(std::string_view text, std::size_t at)
{
    for (std::size_t size = std::min(LongestCharacter, at); size > 1; --size)
        if (Character const found = Decode(text, at - size); found.size == size) return found;
    return Decode(text, at - 1);
}

static bool Is_Inside_Character(std::string_view text, std::size_t at)
{
    for (std::size_t back = 1; back < LongestCharacter && back <= at; ++back)
        if (Decode(text, at - back).size > back) return true;
    return false;
}

static bool Is_Regional(char32_t code)
{
    return code >= 0x1F1E6 && code <= 0x1F1FF;
}

/// Two regional indicators make a flag: between them there is no place.
static bool Is_Inside_Flag(std::string_view text, std::size_t at)
{
    long count = 0;
    while (at > 0) {
        Character const before = Decode_Before(text, at);
        if (!Is_Regional(before.code)) break;
        ++count;
        at -= before.size;
    }
    return count % 2 != 0;
}

/// Whether a character goes with the one ahead of it.
static bool Is_Attached(char32_t code)
{
    bool const isSkinTone = code >= 0x1F3FB && code <= 0x1F3FF;
    return code == Joiner || isSkinTone || Character_Kind(code) == HostCharacterKind::Mark;
}

static bool Is_Place(std::string_view text, std::size_t at)
{
    if (at == 0 || at >= text.size()) return true;
    if (Is_Inside_Character(text, at)) return false;
    char32_t const next = Decode(text, at).code, before = Decode_Before(text, at).code;
    if (before == '\r' && next == '\n') return false;
    if (before < ' ') return true;  // what stands behind a line break stands by itself
    if (next < 0x80) return true;
    if (before == Joiner || Is_Attached(next)) return false;
    return !(Is_Regional(before) && Is_Regional(next) && Is_Inside_Flag(text, at));
}

std::size_t Next_Place(std::string_view text, std::size_t at)
{
    if (at >= text.size()) return text.size();
    do
        at += Decode(text, at).size;
    while (!Is_Place(text, at));
    return at;
}

std::size_t Previous_Place(std::string_view text, std::size_t at)
{
    at = std::min(at, text.size());
    return at == 0 ? 0 : Place_At(text, at - 1);
}

std::size_t Place_At(std::string_view text, std::size_t at)
{
    at = std::min(at, text.size());
    while (!Is_Place(text, at))
        --at;
    return at;
}

long Count_Places(std::string_view text)
{
    long count = 0;
    for (std::size_t at = 0; at < text.size(); at = Next_Place(text, at))
        ++count;
    return count;
}

std::size_t Characters_Size(std::string_view text, long count)
{
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count)
        at += Decode(text, at).size;
    return at;
}

bool Is_Right_To_Left(std::string_view text)
{
    auto direction = HostDirection::Neutral;
    for (std::size_t at = 0; at < text.size() && direction == HostDirection::Neutral;) {
        if (Is_Line_Break(text[at])) break;
        Character const next = Decode(text, at);
        direction = Character_Direction(next.code);
        at += next.size;
    }
    return direction == HostDirection::RightToLeft;
}

// ---- words ------------------------------------------------------------------------------------------------

/// Of the place's character; a mark without one ahead of it is part of a word.
static WordPart Part_At(std::string_view text, std::size_t at)
{
    if (Is_Line_Break(text[at])) return WordPart::Break;
    if (Is_Blank(text[at])) return WordPart::Blanks;
    switch (Character_Kind(Decode(text, at).code)) {
    case HostCharacterKind::Letter:
    case HostCharacterKind::Mark: return WordPart::Letters;
    case HostCharacterKind::Space: return WordPart::Blanks;
    default: return WordPart::Signs;
    }
}

TextRange Word_At(std::string_view text, std::size_t at)
{
    at = Place_At(text, at);
    bool const isEnd = at == text.size() || Is_Line_Break(text[at]);
    if (isEnd && at > 0 && !Is_Line_Break(text[at - 1])) at = Previous_Place(text, at);
    if (at == text.size()) return {at, at};
    WordPart const part = Part_At(text, at);
    TextRange word{at, Next_Place(text, at)};
    if (part == WordPart::Break) return word;
    while (word.end < text.size() && Part_At(text, word.end) == part)
        word.end = Next_Place(text, word.end);
    for (std::size_t before; word.start > 0; word.start = before) {
        before = Previous_Place(text, word.start);
        if (Part_At(text, before) != part) break;
    }
    return word;
}

std::size_t Next_Word_End(std::string_view text, std::size_t at)
{
    while (at < text.size() && Part_At(text, at) != WordPart::Letters)
        at = Next_Place(text, at);
    return at < text.size() ? Word_At(text, at).end : at;
}

std::size_t Previous_Word_Start(std::string_view text, std::size_t at)
{
    for (std::size_t before; at > 0; at = before) {
        before = Previous_Place(text, at);
        if (Part_At(text, before) == WordPart::Letters) return Word_At(text, before).start;
    }
    return 0;
}

/// Characters of which each is as good as a word.
static bool Is_Ideograph(char32_t code)
{
    return (code >= 0x2E80 && code <= 0x9FFF) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0x20000 && code <= 0x3FFFD);
}

bool Is_Wrap_Place(std::string_view text, std::size_t at)
{
    if (at == 0 || at >= text.size()) return true;
    if (Is_Blank(text[at])) return false;
    if (Is_Blank(text[at - 1])) return true;
    char32_t const before = Decode_Before(text, at).code, next = Decode(text, at).code;
    if (!Is_Ideograph(before) && !Is_Ideograph(next)) return false;
    // Closing marks stay with what they close, opening ones with what follows: no sign begins or ends a line.
    return Character_Kind(before) != HostCharacterKind::Sign &&
           Character_Kind(next) != HostCharacterKind::Sign && Is_Place(text, at);
}
