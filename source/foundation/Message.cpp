// Messages and questions to the user: every call formats its text into one buffer and hands it to User_Req.
// Nothing here allocates, as a message may be about memory that has run out.
#include "Message.h"

#include "ZVLibInternal.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

/// Control characters become blanks: the text stays one line, and a file name in it cannot steer the
/// terminal.
static void Write_Line(std::string_view text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    if (text.empty()) return;
    flockfile(stderr);
    for (char c : text)
        putc_unlocked(std::iscntrl(static_cast<unsigned char>(c)) ? ' ' : c, stderr);
    putc_unlocked('\n', stderr);
    funlockfile(stderr);
}

static long Ask(long twoButtons, char const* first, char const* second, char const* format, va_list arguments)
{
    char text[MessageSize] = "";
    if (format) std::vsnprintf(text, sizeof text, format, arguments);
    return User_Req(0, twoButtons, text, first, second);
}

void Write_Message(char const* text)
{
    if (text) Write_Line(text);
}

void Write_Message_Lines(char const* text)
{
    while (text && *text) {
        std::size_t const length = std::strcspn(text, "\r\n");
        Write_Line({text, length});
        text += length;
        text += std::strspn(text, "\r\n");
    }
}

// The arguments behind `last`, asked with the rest: only the function that has them can begin and end them.
#define ASK(last, ...)                                                                                       \
    va_list arguments;                                                                                       \
    va_start(arguments, last);                                                                               \
    [[maybe_unused]] long const answer = Ask(__VA_ARGS__, arguments);                                        \
    va_end(arguments)

void UserMessageZV(char const* format, ...)
{
    ASK(format, 0, nullptr, nullptr, format);
}

void UserMessageZV(unsigned long id, ...)
{
    ASK(id, 0, nullptr, nullptr, GetStringZV(id));
}

void StopAlertZV(char const* format, ...)
{
    ASK(format, 0, nullptr, nullptr, format);
}

void StopAlertZV(unsigned long id, ...)
{
    ASK(id, 0, nullptr, nullptr, GetStringZV(id));
}

long AskUserZV(char const* format, ...)
{
    ASK(format, 1, nullptr, nullptr, format);
    return answer;
}

long AskUserZV(unsigned long id, ...)
{
    ASK(id, 1, nullptr, nullptr, GetStringZV(id));
    return answer;
}

long AskUser2ZV(char const* first, char const* second, char const* format, ...)
{
    ASK(format, 1, first, second, format);
    return answer;
}

long AskUser2ZV(unsigned long first, unsigned long second, unsigned long format, ...)
{
    ASK(format, 1, GetStringZV(first), GetStringZV(second), GetStringZV(format));
    return answer;
}

#undef ASK

void UserScrollMessageZV(unsigned long id, char* body)
{
    UserScrollMessageZV(GetStringZV(id), body);
}

unsigned long SetErrorModeZV(unsigned long mode)
{
    if (!ZVEnv) return 0;
    unsigned long const old = ZVEnv->errorMode;
    ZVEnv->errorMode = static_cast<uint32_t>(mode);
    return old;
}
