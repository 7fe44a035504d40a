// Lines of text in files: read with any of the usual ends, written with a CR.

#include "ZVFileSpec.h"

#include "foundation/HeapBlock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

bool Is_Terminator(char c)
{
    return c == '\n' || c == '\r' || c == 0;
}

/// Position of the first terminator, or the length of the text.
std::size_t Find_Terminator(std::string_view text)
{
    for (char terminator : {'\n', '\r', '\0'})
        text = text.substr(0, text.find(terminator));
    return text.size();
}

/// What can be had without reading from the file.
std::string_view Ready_Text(ZVFileInfo const& file)
{
    uint8_t const* start = file.memoryBase ? file.memoryCursor : file.cursor;
    uint8_t const* end = file.memoryBase ? file.memoryEnd : file.bufferEnd;
    if (!file.memoryBase && file.permission == ZVFilePermWrite) end = start;
    return {reinterpret_cast<char const*>(start), static_cast<std::size_t>(end - start)};
}

void Take_Ready(ZVFileInfo& file, std::size_t count)
{
    if (file.memoryBase) {
        file.memoryCursor += count;
        return;
    }
    file.cursor += count;
    if (file.cursor == file.bufferEnd) file.cursor = file.bufferEnd = file.buffer;
}

/// A line as it is put together.
struct Line {
    char* buffer;
    std::size_t room;
    std::size_t length = 0;
    bool isEnded = false;
};

void Add_Text(Line& line, std::string_view text)
{
    std::memcpy(line.buffer + line.length, text.data(), text.size());
    line.length += text.size();
}

/// Goes on with text that lies ready, past any terminators ahead of the line.
/// @return  bytes taken
std::size_t Continue_Line(Line& line, std::string_view ready)
{
    std::size_t start = 0;
    if (line.length == 0)
        start = static_cast<std::size_t>(std::find_if_not(ready.begin(), ready.end(), Is_Terminator) -
                                         ready.begin());
    std::string_view const text = ready.substr(start, line.room - line.length);
    std::size_t const end = Find_Terminator(text);
    Add_Text(line, text.substr(0, end));
    line.isEnded = end < text.size();
    return start + end + line.isEnded;
}

}  // namespace

char* FGetStringZV(ZVFileInfo* file, char* buffer, long size)
{
    if (!file || !buffer || size < 1) return nullptr;
    Line line{buffer, static_cast<std::size_t>(size - 1)};
    while (line.length < line.room && !line.isEnded) {
        std::string_view const ready = Ready_Text(*file);
        if (!ready.empty()) {
            Take_Ready(*file, Continue_Line(line, ready));
            continue;
        }
        char byte;
        if (!ReadFileZV(file, &byte, 1)) {
            if (line.length == 0) return nullptr;
            break;
        }
        Continue_Line(line, {&byte, 1});
    }
    buffer[line.length] = 0;
    SetError(ZV_ERR_NONE);
    return buffer;
}

long FPutStringZV(ZVFileInfo* file, char const* text)
{
    if (!file || !text) return 0;
    // In one piece, so that a file in memory takes all of it or nothing.
    std::size_t const length = std::strlen(text);
    std::array<char, ZV_SPEC_SIZE> shortLine;
    HeapBlock<char> longLine;
    char* line = shortLine.data();
    if (length >= shortLine.size()) {
        longLine.reset(static_cast<char*>(AllocMemZV(length + 1, 0)));
        line = longLine.get();
    }
    std::memcpy(line, text, length);
    line[length] = '\r';
    return WriteFileZV(file, line, length + 1);
}
