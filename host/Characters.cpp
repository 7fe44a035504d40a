#include "Characters.h"

#include <fribidi.h>
#include <hb.h>

HostCharacterKind Character_Kind(char32_t character)
{
    switch (hb_unicode_general_category(hb_unicode_funcs_get_default(), character)) {
    case HB_UNICODE_GENERAL_CATEGORY_ENCLOSING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK:
    case HB_UNICODE_GENERAL_CATEGORY_SPACING_MARK: return HostCharacterKind::Mark;
    case HB_UNICODE_GENERAL_CATEGORY_SPACE_SEPARATOR: return HostCharacterKind::Space;
    case HB_UNICODE_GENERAL_CATEGORY_LINE_SEPARATOR:
    case HB_UNICODE_GENERAL_CATEGORY_PARAGRAPH_SEPARATOR:
    case HB_UNICODE_GENERAL_CATEGORY_CONTROL:
    case HB_UNICODE_GENERAL_CATEGORY_FORMAT:
    case HB_UNICODE_GENERAL_CATEGORY_SURROGATE:
    case HB_UNICODE_GENERAL_CATEGORY_UNASSIGNED: return HostCharacterKind::Control;
    case HB_UNICODE_GENERAL_CATEGORY_CONNECT_PUNCTUATION:
    case HB_UNICODE_GENERAL_CATEGORY_DECIMAL_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_LETTER_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_LOWERCASE_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_MODIFIER_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_OTHER_NUMBER:
    case HB_UNICODE_GENERAL_CATEGORY_PRIVATE_USE:
    case HB_UNICODE_GENERAL_CATEGORY_TITLECASE_LETTER:
    case HB_UNICODE_GENERAL_CATEGORY_UPPERCASE_LETTER: return HostCharacterKind::Letter;
    default: return HostCharacterKind::Sign;
    }
}

HostDirection Character_Direction(char32_t character)
{
    FriBidiCharType const type = fribidi_get_bidi_type(character);
    if (!FRIBIDI_IS_LETTER(type)) return HostDirection::Neutral;
    return FRIBIDI_IS_RTL(type) ? HostDirection::RightToLeft : HostDirection::LeftToRight;
}

/// A mark that leaves the letter below it the same one, as an accent does. Those of other scripts can be
/// vowels.
static bool Is_Accent(char32_t character)
{
    return (character >= 0x300 && character <= 0x36F) || character == 0x3099 || character == 0x309A;
}

char32_t Character_Without_Accents(char32_t character)
{
    hb_unicode_funcs_t* const tables = hb_unicode_funcs_get_default();
    hb_codepoint_t letter = 0, mark = 0;
    while (hb_unicode_decompose(tables, character, &letter, &mark) && (mark == 0 || Is_Accent(mark)))
        character = letter;
    return Is_Accent(character) ? 0 : character;
}

std::string Utf8_Of(char32_t character)
{
    auto const tail = [&](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
    auto const head = [&](unsigned mark, int shift) { return static_cast<char>(mark | character >> shift); };
    if (character < 0x80) return {head(0, 0)};
    if (character < 0x800) return {head(0xC0, 6), tail(0)};
    if (character < 0x10000) return {head(0xE0, 12), tail(6), tail(0)};
    return {head(0xF0, 18), tail(12), tail(6), tail(0)};
}
