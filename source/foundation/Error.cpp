// The error number with its text, and assertions.
#include "ZVLibInternal.h"

#include <cstdio>

/// The error text of a time without environment, which tells why InitZV gave none. A plain buffer, as that
/// time may be one without memory.
static char startText[512];

unsigned long GetErrorZV()
{
    return ZVEnv ? ZVEnv->error : static_cast<unsigned long>(ZV_ERR_MEMORY);
}

char const* GetErrorStringZV()
{
    if (ZVEnv) return ZVEnv->errorString;
    return startText[0] ? startText : nullptr;
}

void SetError(unsigned long number)
{
    if (ZVEnv) ZVEnv->error = static_cast<uint32_t>(number);
}

void SetErrorString(char const* text)
{
    if (text && text == GetErrorStringZV()) return;
    if (!ZVEnv) {
        std::snprintf(startText, sizeof startText, "%s", text ? text : "");
        return;
    }
    char* copy = AllocString(text);
    FreeMemZV(ZVEnv->errorString);
    ZVEnv->errorString = copy;
}

void Assert_Fail(char const* file, long line)
{
    UserMessageZV("Assertion Failure in file \"%s\", line %d.", file, static_cast<int>(line));
    throw ZVAssertFail();
}
