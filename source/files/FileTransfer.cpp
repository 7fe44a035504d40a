// Reads, writes and seeks through the transfer buffer of a handle, and in the block of a file in memory.
//
// A transfer that fails keeps the logical position where the bytes really are: bytes that were read stay in
// the buffer, and a failed write leaves the position where it was before the call, so that trying again
// writes nothing twice.

#include "ZVLibInternal.h"

#include "ZVFile.h"

#include <algorithm>
#include <cstring>

namespace {

bool Has_Read_Buffer(ZVFileInfo const& file)
{
    return file.buffer && file.permission != ZVFilePermWrite;
}

bool Has_Write_Buffer(ZVFileInfo const& file)
{
    return file.buffer && file.permission == ZVFilePermWrite;
}

std::size_t Buffered_Bytes(ZVFileInfo const& file)
{
    return static_cast<std::size_t>(file.bufferEnd - file.cursor);
}

std::size_t Waiting_Bytes(ZVFileInfo const& file)
{
    return static_cast<std::size_t>(file.cursor - file.buffer);
}

void Drop_Buffer(ZVFileInfo& file)
{
    file.cursor = file.bufferEnd = file.buffer;
}

long Read_Memory(ZVFileInfo& file, void* destination, unsigned long count)
{
    if (count > static_cast<unsigned long>(file.memoryEnd - file.memoryCursor)) return 0;
    std::memcpy(destination, file.memoryCursor, count);
    file.memoryCursor += count;
    return 1;
}

long Write_Memory(ZVFileInfo& file, void const* source, unsigned long count)
{
    if (count > static_cast<unsigned long>(file.memoryEnd - file.memoryCursor)) return 0;
    std::memcpy(file.memoryCursor, source, count);
    file.memoryCursor += count;
    return 1;
}

/// Fills an empty buffer; false when not one byte came or the read failed.
bool Fill_Buffer(ZVFileInfo& file)
{
    unsigned long got = file.bufferSize;
    long const read = File_Read(&file, &got, file.buffer, nullptr, nullptr);
    file.cursor = file.buffer;
    file.bufferEnd = file.buffer + got;
    return read && got > 0;
}

long Read_Buffered(ZVFileInfo& file, uint8_t* destination, unsigned long count)
{
    if (file.cursor == file.bufferEnd && !Fill_Buffer(file)) return 0;
    std::size_t const ready = Buffered_Bytes(file);
    if (count < ready) {
        std::memcpy(destination, file.cursor, count);
        file.cursor += count;
        return 1;
    }
    std::memcpy(destination, file.cursor, ready);
    Drop_Buffer(file);
    unsigned long rest = count - ready;
    if (rest == 0) return 1;
    return File_Read(&file, &rest, destination + ready, nullptr, nullptr);
}

/// Undoes a buffered write of which `written` bytes of the buffer and the source have reached the file.
void Take_Back_Write(ZVFileInfo& file, std::size_t waiting, unsigned long written)
{
    if (written == 0) {
        file.cursor = file.buffer + waiting;
        return;
    }
    unsigned long const failure = GetErrorZV();
    file.cursor = file.buffer;
    File_SetPos(&file, 1, static_cast<long>(waiting) - static_cast<long>(written));
    SetError(failure);
}

long Write_Buffered(ZVFileInfo& file, uint8_t const* source, unsigned long count)
{
    std::size_t const room = Buffered_Bytes(file);
    if (count < room) {
        std::memcpy(file.cursor, source, count);
        file.cursor += count;
        return 1;
    }

    std::size_t const waiting = Waiting_Bytes(file);
    unsigned long written = 0;
    if (waiting > 0) {
        std::memcpy(file.cursor, source, room);
        if (!File_Write(&file, file.bufferSize, file.buffer)) {
            Take_Back_Write(file, waiting, written);
            return 0;
        }
        written = file.bufferSize;
        source += room;
        count -= room;
        file.cursor = file.buffer;
    }

    // Whole buffers go out as they lie in the caller's memory: the same bytes reach the file at the same
    // time.
    unsigned long const whole = count - count % file.bufferSize;
    if (whole > 0 && !File_Write(&file, whole, source)) {
        Take_Back_Write(file, waiting, written);
        return 0;
    }
    std::memcpy(file.buffer, source + whole, count - whole);
    file.cursor = file.buffer + (count - whole);
    return 1;
}

long Seek_Memory(ZVFileInfo& file, long offset, unsigned short mode)
{
    long const size = file.memoryEnd - file.memoryBase;
    long const position = file.memoryCursor - file.memoryBase;
    long origin = 0;
    switch (mode) {
    case 0: break;
    case 1: origin = position; break;
    case 2: origin = size - 1; break;
    default: return position;
    }
    long target;
    if (__builtin_add_overflow(origin, offset, &target)) target = offset < 0 ? 0 : size;
    file.memoryCursor = file.memoryBase + std::clamp(target, 0L, size);
    return position;
}

long Logical_Position(ZVFileInfo& file)
{
    long const position = File_GetPos(&file);
    if (Has_Write_Buffer(file)) return position + static_cast<long>(Waiting_Bytes(file));
    if (Has_Read_Buffer(file)) return position - static_cast<long>(Buffered_Bytes(file));
    return position;
}

/// Drops a read buffer, writes out a write buffer.
/// @return  0, or the error number of the write
unsigned long Empty_Buffer(ZVFileInfo& file)
{
    if (Has_Read_Buffer(file)) Drop_Buffer(file);
    if (!Has_Write_Buffer(file) || Waiting_Bytes(file) == 0) return ZV_ERR_NONE;
    long const written = File_Write(&file, Waiting_Bytes(file), file.buffer);
    file.cursor = file.buffer;
    return written ? ZV_ERR_NONE : GetErrorZV();
}

bool Is_Read_Only(ZVFileInfo const& file)
{
    return file.permission == ZVFilePermRead || file.permission == ZVFilePermReadLarge;
}

}  // namespace

long ReadFileZV(ZVFileInfo* file, void* destination, unsigned long count, ZVPollFunc poll, long* pollResult)
{
    if (!file || !destination) return 0;
    if (file->memoryBase) return Read_Memory(*file, destination, count);
    if (file->permission == ZVFilePermWrite) {
        SetError(ZV_ERR_IO);
        return 0;
    }
    if (file->buffer) return Read_Buffered(*file, static_cast<uint8_t*>(destination), count);
    return File_Read(file, &count, destination, poll, pollResult) && count > 0;
}

long WriteFileZV(ZVFileInfo* file, void const* source, unsigned long count)
{
    if (!file || !source) return 0;
    if (file->memoryBase) return Write_Memory(*file, source, count);
    if (Is_Read_Only(*file)) {
        SetError(ZV_ERR_IO);
        return 0;
    }
    if (file->buffer) return Write_Buffered(*file, static_cast<uint8_t const*>(source), count);
    return File_Write(file, count, source);
}

long SeekFileZV(ZVFileInfo* file, long offset, unsigned short mode)
{
    if (!file) return 0;
    if (file->memoryBase) return Seek_Memory(*file, offset, mode);

    long const position = Logical_Position(*file);
    if (mode > 2 || (mode == 1 && offset == 0)) return position;

    unsigned long failure = Empty_Buffer(*file);
    File_SetPos(file, 0, position);
    int64_t const length = File_GetLength(file);
    int64_t const origins[] = {0, position, length};
    int64_t target;
    if (__builtin_add_overflow(origins[mode], static_cast<int64_t>(offset), &target)) {
        SetError(failure ? failure : ZV_ERR_IO);
        return position;
    }
    if (!Is_Read_Only(*file) && target > length && !File_Extend(file, target)) {
        SetError(failure ? failure : GetErrorZV());
        return position;
    }
    File_SetPos(file, mode, offset);
    if (failure) SetError(failure);
    return position;
}
