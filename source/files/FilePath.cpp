// Specs in a buffer to the forms of the platform.

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstring>

namespace {

void Convert_To_Classic(char* text)
{
    char const* found = std::strpbrk(text, "\\|");
    if (!found || *found == '|') return;
    if (char* colon = std::strchr(text, ':')) std::memmove(colon, colon + 1, std::strlen(colon));
    std::replace(text, text + std::strlen(text), '\\', ':');
}

}  // namespace

void ConvertDOStoPathZV(char* buffer, bool native)
{
    if (!buffer) return;
    if (native)
        OS_Native_Path(buffer, buffer, ZV_SPEC_SIZE);
    else
        Convert_To_Classic(buffer);
}
