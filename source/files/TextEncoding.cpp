// Conversions between text encodings. The system encoding is UTF-8, so two of them check and copy; all of
// them deliver whole characters only.

#include "ZVFile.h"
#include "foundation/Utf8.h"

#include <cstring>
#include <string_view>

namespace {

constexpr long ResultBadText = -108;
constexpr long ResultCut = -50;

/// Walks a whole text and hands each character to `put`, as code point and bytes, until that finds no room;
/// the rest is only checked.
template <typename Put> long Convert(char const* source, Put put)
{
    if (!source) return ResultBadText;
    std::string_view text(source);
    bool fits = true;
    while (!text.empty()) {
        Utf8Character const character = First_Character(text);
        if (!character.Is_Well_Formed()) return ResultBadText;
        fits = fits && put(character.code, text.substr(0, character.size));
        text.remove_prefix(character.size);
    }
    return fits ? 0 : ResultCut;
}

long Copy_Text(char const* source, char* destination, unsigned long size, unsigned long* count)
{
    unsigned long used = 0;
    if (!destination) size = 0;
    long const result = Convert(source, [&](char32_t, std::string_view bytes) {
        if (size - used < bytes.size()) return false;
        std::memcpy(destination + used, bytes.data(), bytes.size());
        used += bytes.size();
        return true;
    });
    if (result == ResultBadText) used = 0;
    if (used < size) destination[used] = 0;
    if (count) *count = used;
    return result;
}

}  // namespace

long UTF8ToSystemEncoding(char const* source, char* destination, unsigned long size, unsigned long* count)
{
    return Copy_Text(source, destination, size, count);
}

long SystemEncodingToUTF8(char const* source, char* destination, unsigned long size, unsigned long* count)
{
    return Copy_Text(source, destination, size, count);
}

long SystemEncodingToUnicode(char const* source, uint16_t* destination, unsigned long sizeBytes,
                             unsigned long* count)
{
    unsigned long const size = destination ? sizeBytes / 2 : 0;
    unsigned long used = 0;
    long const result = Convert(source, [&](char32_t code, std::string_view) {
        bool const isPair = code > 0xFFFF;
        if (size - used < (isPair ? 2U : 1U)) return false;
        if (isPair) {
            destination[used++] = static_cast<uint16_t>(0xD7C0 + (code >> 10));
            destination[used++] = static_cast<uint16_t>(0xDC00 + (code & 0x3FF));
        } else {
            destination[used++] = static_cast<uint16_t>(code);
        }
        return true;
    });
    if (result == ResultBadText) used = 0;
    if (used < size) destination[used] = 0;
    if (count) *count = used;
    return result;
}
