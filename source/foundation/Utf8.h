// Characters of UTF-8 texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

struct Utf8Character {
    char32_t code;     ///< the byte itself where the text is no well-formed UTF-8
    std::size_t size;  ///< bytes; 1 there

    bool Is_Well_Formed() const { return size > 1 || code < 0x80; }
};

/// The character that a text begins with, which is not empty.
inline Utf8Character First_Character(std::string_view text)
{
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    auto const lead = static_cast<uint8_t>(text[0]);
    std::size_t const size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    Utf8Character const byte{lead, 1};
    if (size == 1 || lead < 0xC2 || lead > 0xF4 || text.size() < size) return byte;
    char32_t code = lead & 0x7F >> size;
    for (std::size_t i = 1; i < size; ++i) {
        auto const next = static_cast<uint8_t>(text[i]);
        if ((next & 0xC0) != 0x80) return byte;
        code = code << 6 | (next & 0x3F);
    }
    bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < least[size] || code > 0x10FFFF || isSurrogate) return byte;
    return {code, size};
}

inline void Append_Character(std::string& text, char32_t code)
{
    auto const tail = [&](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80)
        text += static_cast<char>(code);
    else if (code < 0x800)
        text += {static_cast<char>(0xC0 | code >> 6), tail(0)};
    else if (code < 0x10000)
        text += {static_cast<char>(0xE0 | code >> 12), tail(6), tail(0)};
    else
        text += {static_cast<char>(0xF0 | code >> 18), tail(12), tail(6), tail(0)};
}
