// The small text helpers: copies, comma lists, shortening, length-prefixed texts and stepping by characters.
#include "ZVString.h"

#include "ZVMemory.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>

char* AllocString(char const* text)
{
    if (!text) return nullptr;
    std::size_t const size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(AllocMemZV(size, 0), text, size));
}
