// What kinds of characters there are, by the tables of Unicode.
#pragma once

#include <cstdint>
#include <string>

enum class HostCharacterKind : uint8_t {
    Letter,  ///< digits too, and all that words are made of
    Mark,    ///< stands on or around the character ahead of it
    Space,
    Sign,  ///< punctuation and symbols
    Control
};

/// @param character  code point; one that is none is a Control
HostCharacterKind Character_Kind(char32_t character);

/// How a character runs, or a line as a whole.
enum class HostDirection : uint8_t {
    Neutral,  ///< a character that goes with those around it; a line that runs as its first other one does
    LeftToRight,
    RightToLeft
};

HostDirection Character_Direction(char32_t character);

std::string Utf8_Of(char32_t character);

/// The letter below its accents, as the e of an é. 0 for an accent that is a character of its own, and every
/// other character itself.
char32_t Character_Without_Accents(char32_t character);
