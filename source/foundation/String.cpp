// The small text helpers: copies, comma lists, shortening, length-prefixed texts and stepping by characters.
#include "ZVString.h"

#include "ZVMemory.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>

static constexpr std::size_t PrefixedSize = 255;  // what the length byte can tell

static bool Is_White_Space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

static bool Is_Separator(char c)
{
    return c == ',' || c == '|';
}

char* AllocString(char const* text)
{
    if (!text) return nullptr;
    std::size_t const size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(AllocMemZV(size, 0), text, size));
}

void StripBlankZV(char* text)
{
    if (!text) return;
    char* end = text + std::strlen(text);
    std::replace(text, end, '\t', ' ');
    char* const first = std::find_if(text, end, [](char c) { return c != ' '; });
    while (end > first && end[-1] == ' ')
        --end;
    *std::copy(first, end, text) = 0;
}

long ItoStr(double value, char* out)
{
    // A NaN has no whole number; 0 is the one that does no harm.
    double const bounded = std::isnan(value) ? 0.0 : std::clamp<double>(value, INT32_MIN, INT32_MAX);
    auto const number = static_cast<int32_t>(bounded);
    uint32_t rest = number < 0 ? 0u - static_cast<uint32_t>(number) : static_cast<uint32_t>(number);

    char digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest);

    char* end = out;
    if (number < 0) *end++ = '-';
    while (count)
        *end++ = digits[--count];
    *end = 0;
    return end - out;
}

char* strcpycsv(char* out, char const* list, long index)
{
    if (!out || !list) return nullptr;
    for (; index > 1 && *list; ++list)
        if (Is_Separator(*list)) --index;
    char* end = out;
    if (index == 1)
        while (*list && !Is_Separator(*list))
            *end++ = *list++;
    *end = 0;
    return out;
}

long CSV_Entries(char const* list)
{
    if (!list) return 0;
    return 1 + std::count_if(list, list + std::strlen(list), Is_Separator);
}

long ShortenString(char* text, long maxLength)
{
    if (!text) return 0;
    auto const length = static_cast<long>(std::strlen(text));
    if (length <= maxLength) return length;
    long const cut = (length - std::max(maxLength, 0L)) / 2;
    long const half = length / 2;
    long const left = half - cut;
    long const right = half + cut + 1;
    if (left < 2) return length;

    std::memcpy(text + left - 2, "...", 3);
    std::memmove(text + left + 1, text + right, static_cast<std::size_t>(length - right + 1));
    return left + 1 + length - right;
}

char const* GetStringWithQuotes(char* out, char const* text)
{
    while (Is_White_Space(*text))
        ++text;
    char const closing = *text == '"' ? '"' : ' ';
    if (*text == '"') ++text;
    while (*text && *text != closing)
        *out++ = *text++;
    *out = 0;
    return *text ? text + 1 : text;
}

void PtoCStr(char* text)
{
    PtoCstrcpy(text, text);
}

void CtoPStr(char* text)
{
    CtoPstrcpy(text, text);
}

void CtoPstrcpy(char* out, char const* in)
{
    std::size_t const length = strnlen(in, PrefixedSize);
    std::memmove(out + 1, in, length);
    *out = static_cast<char>(length);
}

void PtoCstrcpy(char* out, char const* in)
{
    auto const length = static_cast<unsigned char>(*in);
    std::memmove(out, in + 1, length);
    out[length] = 0;
}

long CharSize(char const* text)
{
    return *text != 0;
}

char* CharAdvance(char* text)
{
    return text + CharSize(text);
}

unsigned long GetChar(char const* text)
{
    return static_cast<unsigned char>(*text);
}

unsigned long GetCharAdvance(char** text)
{
    unsigned long const character = GetChar(*text);
    *text = CharAdvance(*text);
    return character;
}
