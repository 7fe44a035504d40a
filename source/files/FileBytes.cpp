// See FileBytes.h.
#include "FileBytes.h"

#include "FileSpecText.h"

#include <algorithm>

bool Read_Bytes(ZVFileInfo* file, int64_t end, int64_t offset, void* destination, int64_t size)
{
    if (offset < 0 || size < 1 || offset > end || size > end - offset) return false;
    // A read of part of the bytes is a success of the file layer, so they are counted by the position.
    SeekFileZV(file, offset, 0);
    return ReadFileZV(file, destination, static_cast<unsigned long>(size)) &&
           SeekFileZV(file, 0, 1) == offset + size;
}

bool Write_Bytes(ZVFileInfo* file, int64_t offset, void const* source, int64_t size)
{
    SeekFileZV(file, offset, 0);
    return WriteFileZV(file, source, static_cast<unsigned long>(size)) != 0;
}

bool Copy_Bytes(ZVFileInfo* from, int64_t fromOffset, ZVFileInfo* to, int64_t toOffset, int64_t size)
{
    uint8_t buffer[1 << 14];
    for (int64_t done = 0; done < size;) {
        int64_t const piece = std::min<int64_t>(size - done, sizeof buffer);
        if (!Read_Bytes(from, fromOffset + done + piece, fromOffset + done, buffer, piece) ||
            !Write_Bytes(to, toOffset + done, buffer, piece))
            return false;
        done += piece;
    }
    return true;
}

SpecText Companion_Spec(char const* spec)
{
    char const* const name = File_Name(spec);
    return SpecText({spec, static_cast<std::size_t>(name - spec)}, "._").Append(name);
}
