// Steps through a UTF-8 text: the places where a caret may stand, which are neither inside a character nor
// between one and the marks on it, and words. A byte that is no UTF-8 counts as a character of its own.
// Offsets are bytes from 0 to the text's size.
#pragma once

#include <cstddef>
#include <string_view>

struct TextRange {
    std::size_t start = 0, end = 0;

    bool IsEmpty() const { return start == end; }
    bool operator==(TextRange const&) const = default;
};

std::size_t Next_Place(std::string_view text, std::size_t at);
std::size_t Previous_Place(std::string_view text, std::size_t at);
std::size_t Place_At(std::string_view text, std::size_t at);  ///< The last one up to there.
long Count_Places(std::string_view text);                     ///< Steps from its start to its end.

/// Size of the first so many characters, marks counted.
std::size_t Characters_Size(std::string_view text, long count);

/// Whether the paragraph that a text begins with runs from right to left, going by its first character that
/// runs either way.
bool Is_Right_To_Left(std::string_view text);

/// The word, the blanks, the signs or the line break that the place lies in or begins. At the end of the
/// text, or of a line, what lies ahead of it.
TextRange Word_At(std::string_view text, std::size_t at);

std::size_t Next_Word_End(std::string_view text, std::size_t at);
std::size_t Previous_Word_Start(std::string_view text, std::size_t at);

inline bool Is_Line_Break(char byte)
{
    return byte == '\n' || byte == '\r';
}
inline bool Is_Blank(char byte)
{
    return byte == ' ' || byte == '\t';
}

/// Whether a line that is too long may end there: behind blanks, and beside the characters of scripts that
/// are written without any.
bool Is_Wrap_Place(std::string_view text, std::size_t at);
