// Conversions between text encodings. The system encoding is UTF-8, so two of them check and copy; all of
// them deliver whole characters only.

#include "ZVFile.h"

#include <cstring>
#include <string_view>

namespace {

constexpr long ResultBadText = -108;
constexpr long ResultCut = -50;

/// Takes one character off a text.
/// @return  its code point, or -1 when the text does not begin with well-formed UTF-8
int32_t Take_Character(std::string_view& text)
{
    auto byte = [&](std::size_t i) { return static_cast<uint8_t>(text[i]); };
    uint8_t const lead = byte(0);
    std::size_t const length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || text.size() < length) return -1;

    int32_t code = length == 1 ? lead : lead & (0xFF >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return -1;
        code = code << 6 | (byte(i) & 0x3F);
    }
    bool const isSurrogate = code >= 0xD800 && code < 0xE000;
    bool const isOverlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    if (isSurrogate || isOverlong || code > 0x10FFFF) return -1;
    text.remove_prefix(length);
    return code;
}

/// Walks a whole text and hands each character to `put`, as code point and bytes, until that finds no room;
/// the rest is only checked.
template <typename Put> long Convert(char const* source, Put put)
{
    if (!source) return ResultBadText;
    std::string_view text(source);
    bool fits = true;
    while (!text.empty()) {
        char const* start = text.data();
        int32_t const code = Take_Character(text);
        if (code < 0) return ResultBadText;
        fits = fits && put(code, std::string_view(start, static_cast<std::size_t>(text.data() - start)));
    }
    return fits ? 0 : ResultCut;
}

long Copy_Text(char const* source, char* destination, unsigned long size, unsigned long* count)
{
    unsigned long used = 0;
    if (!destination) size = 0;
    long const result = Convert(source, [&](int32_t, std::string_view bytes) {
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
    long const result = Convert(source, [&](int32_t code, std::string_view) {
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
