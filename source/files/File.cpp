// Opens and closes file handles: files on disk with their transfer buffers, and blocks of memory read as
// files.

#include "ZVLibInternal.h"

#include "ZVFile.h"

namespace {

constexpr uint32_t SmallBufferSize = 4096;
constexpr uint32_t LargeBufferSize = 20480;

constexpr int64_t SecondsFrom1904To1970 = 2082844800;

uint32_t Transfer_Buffer_Size(ZVFilePermission permission)
{
    switch (permission) {
    case ZVFilePermRead: return SmallBufferSize;
    case ZVFilePermWrite:
    case ZVFilePermReadLarge: return LargeBufferSize;
    default: return 0;
    }
}

void Attach_Buffer(ZVFileInfo* file, uint8_t* buffer, ZVFilePermission permission)
{
    file->buffer = buffer;
    file->bufferSize = Transfer_Buffer_Size(permission);
    file->cursor = buffer;
    file->bufferEnd = permission == ZVFilePermWrite ? buffer + file->bufferSize : buffer;
}

ZVFileInfo* New_File(ZVFilePermission permission, ZVFileFlags flags)
{
    auto* file = static_cast<ZVFileInfo*>(AllocMemZV(sizeof(ZVFileInfo), ZV_MEM_CLEAR));
    if (!file) return nullptr;
    file->permission = permission;
    file->flags = flags;
    return file;
}

/// Null for a permission without a buffer. A transfer buffer is worth having but never worth an assertion, so
/// it is asked for in the way that may fail.
uint8_t* New_Buffer(ZVFilePermission permission)
{
    uint32_t const size = Transfer_Buffer_Size(permission);
    return size ? static_cast<uint8_t*>(Alloc_Aligned(size, alignof(std::max_align_t))) : nullptr;
}

}  // namespace

ZVFileInfo* CreateFileZV(char const* spec, ZVFilePermission permission, uint32_t type, uint32_t creator,
                         ZVFileFlags flags)
{
    if (!spec) return nullptr;
    ZVFileInfo* file = New_File(permission, flags);
    if (!file) return nullptr;
    if (!File_Create(file, spec, permission, type, creator, flags)) {
        FreeMemZV(file);
        return nullptr;
    }
    if (!Transfer_Buffer_Size(permission)) return file;

    uint8_t* buffer = New_Buffer(permission);
    if (!buffer) {
        CloseFileZV(file);
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    Attach_Buffer(file, buffer, permission);
    return file;
}

ZVFileInfo* OpenFileZV(char const* spec, ZVFilePermission permission, ZVFileFlags flags)
{
    if (!spec) return nullptr;
    ZVFileInfo* file = New_File(permission, flags);
    if (!file) return nullptr;
    if (!(flags & ZVFileFlagLargeRead)) {
        if (uint8_t* buffer = New_Buffer(permission)) Attach_Buffer(file, buffer, permission);
    }
    if (!File_Open(file, spec, permission, flags)) {
        FreeMemZV(file->buffer);
        FreeMemZV(file);
        return nullptr;
    }
    return file;
}

ZVFileInfo* OpenFileinMemoryZV(void* block, unsigned long size, ZVFilePermission permission)
{
    if (!block) return nullptr;
    ZVFileInfo* file = New_File(permission, ZVFileFlagNone);
    if (!file) return nullptr;
    file->memoryBase = static_cast<uint8_t*>(block);
    file->memoryEnd = file->memoryBase + size;
    file->memoryCursor = file->memoryBase;
    return file;
}

void CloseFileZV(ZVFileInfo* file)
{
    if (!file) return;
    if (file->buffer && file->permission == ZVFilePermWrite && file->cursor > file->buffer) {
        File_Write(file, static_cast<unsigned long>(file->cursor - file->buffer), file->buffer);
    }
    FreeMemZV(file->buffer);
    File_Close(file);
    FreeMemZV(file);
}

ZVFileInfo* OpenFolderZV(char const*)
{
    return nullptr;
}

int64_t GetFileLengthZV(ZVFileInfo* file)
{
    if (!file) return 0;
    if (file->memoryBase) return file->memoryEnd - file->memoryBase;
    // The seam counts bytes that wait in a write buffer; without one it tells the length on disk.
    ZVFileInfo bare = *file;
    bare.buffer = nullptr;
    return File_GetLength(&bare);
}

int64_t GetFileModificationDateZV(ZVFileInfo* file)
{
    if (!file || file->memoryBase) return 0;
    return File_GetModificationDate(file);
}

int64_t ConvertMacOSTimeToZVLibTime(int64_t seconds)
{
    return seconds - SecondsFrom1904To1970;
}

int64_t ConvertZVLibTimeToMacOSTime(int64_t seconds)
{
    return seconds + SecondsFrom1904To1970;
}
