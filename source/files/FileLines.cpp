// Lines of text in files: read with any of the usual ends, written with a CR.

#include "ZVFileSpec.h"

#include "foundation/HeapBlock.h"

#include <array>
#include <cstring>

namespace {

constexpr int EndOfFile = -1;

/// The next byte as ReadFileZV would bring it, without the call for each byte of a buffer or a block.
int Next_Byte(ZVFileInfo& file)
{
    if (file.memoryBase) return file.memoryCursor < file.memoryEnd ? *file.memoryCursor++ : EndOfFile;
    bool const isReady = file.permission != ZVFilePermWrite && file.bufferEnd - file.cursor > 1;
    if (isReady) return *file.cursor++;
    uint8_t byte;
    return ReadFileZV(&file, &byte, 1) ? byte : EndOfFile;
}

bool Is_Terminator(int byte)
{
    return byte == '\n' || byte == '\r' || byte == 0;
}

}  // namespace

char* FGetStringZV(ZVFileInfo* file, char* buffer, long size)
{
    if (!file || !buffer || size < 1) return nullptr;
    long length = 0;
    while (length < size - 1) {
        int const byte = Next_Byte(*file);
        if (byte == EndOfFile) {
            if (length == 0) return nullptr;
            break;
        }
        if (!Is_Terminator(byte))
            buffer[length++] = static_cast<char>(byte);
        else if (length > 0)
            break;
    }
    buffer[length] = 0;
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
