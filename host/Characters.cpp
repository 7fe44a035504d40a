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
