// The file seam: creates, opens, reads, writes and closes files by their descriptors.

#include "MacFile.h"

#include "MacChunkedRead.h"
#include "MacFileInfo.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int Access_Mode(ZVFilePermission permission)
{
    switch (permission) {
    case ZVFilePermWrite: return O_WRONLY;
    case ZVFilePermReadWrite: return O_RDWR;
    default: return O_RDONLY;
    }
}

template <typename Call> auto Retry_Interrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// Opens a file for this process alone, at a descriptor above the standard ones: 0 stands for no file, and a
/// program that closed its standard streams must not find its messages in a picture.
/// @return  the descriptor, or -1 with errno set
int Open_Descriptor(char const* path, int flags)
{
    // Not blocking, or opening a pipe by mistake would wait for its other end.
    int const always = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int const descriptor = Retry_Interrupted([&] { return open(path, flags | always, 0666); });
    if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;

    int const moved = fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    int const error = errno;
    close(descriptor);
    errno = error;
    return moved;
}

/// Takes over an open descriptor when it is one of a regular file.
/// @return  0 or an errno value, the descriptor then closed
int Adopt_Descriptor(ZVFileInfo& file, int descriptor)
{
    struct stat info;
    int error = fstat(descriptor, &info) != 0 ? errno : 0;
    if (error == 0 && !S_ISREG(info.st_mode)) error = EISDIR;
    if (error) {
        close(descriptor);
        return error;
    }
    file.forkRef = descriptor;
    file.volumeRef = static_cast<int32_t>(info.st_dev);
    return 0;
}

int Open_Existing(ZVFileInfo& file, char const* path, int flags)
{
    int const descriptor = Open_Descriptor(path, flags);
    return descriptor < 0 ? errno : Adopt_Descriptor(file, descriptor);
}

int Create_New(ZVFileInfo& file, char const* path, ZVFilePermission permission, ZVCreatorPair codes)
{
    int const descriptor = Open_Descriptor(path, Access_Mode(permission) | O_CREAT | O_EXCL);
    if (descriptor < 0) return errno;
    if (int const error = Adopt_Descriptor(file, descriptor)) {
        unlink(path);
        return error;
    }
    Mac_Write_Codes(descriptor, codes);
    return 0;
}

int Create_File(ZVFileInfo& file, char const* path, ZVFilePermission permission, ZVCreatorPair codes)
{
    struct stat info;
    bool const exists = lstat(path, &info) == 0;
    if (!exists && errno != ENOENT) return errno;
    // A locked file is not replaced, although its directory would allow it.
    if (exists && S_ISREG(info.st_mode) && faccessat(AT_FDCWD, path, W_OK, AT_EACCESS) != 0) return errno;
    if (exists && Mac_Has_Codes(path, codes)) {
        // Emptied in opening: one that cannot be opened keeps its contents, and is not ours to delete.
        return Open_Existing(file, path, Access_Mode(permission) | O_TRUNC);
    }
    if (exists && unlink(path) != 0) return errno;
    return Create_New(file, path, permission, codes);
}

int Write_All(int descriptor, uint8_t const* source, unsigned long count)
{
    unsigned long written = 0;
    while (written < count) {
        ssize_t const got = write(descriptor, source + written, count - written);
        if (got > 0) {
            written += static_cast<unsigned long>(got);
        } else if (got == 0 || errno != EINTR) {
            int const error = got == 0 ? ENOSPC : errno;
            // The caller counts the whole piece as not written.
            lseek(descriptor, -static_cast<off_t>(written), SEEK_CUR);
            return error;
        }
    }
    return 0;
}

/// Stores the error number of an errno value.
/// @return  1 for success
long Report(int error)
{
    Mac_Set_File_Error(error);
    return error == 0;
}

}  // namespace

void Mac_Set_File_Error(int error)
{
    switch (error) {
    case 0: SetError(ZV_ERR_NONE); break;
    case ENOMEM: SetError(ZV_ERR_MEMORY); break;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
    case EMLINK: SetError(ZV_ERR_DISK_FULL); break;
    case EBADF: SetError(ZV_ERR_NOT_OPEN); break;
    // Permission bits and the immutable flag are what locks a single file here.
    case EACCES:
    case EPERM: SetError(ZV_ERR_LOCKED); break;
    case EBUSY:
    case ETXTBSY:
    case EAGAIN: SetError(ZV_ERR_BUSY); break;
    case EROFS: SetError(ZV_ERR_PROTECTED); break;
    case ENOENT:
    case ENOTDIR:
    case ENODEV:
    case ENAMETOOLONG: SetError(ZV_ERR_NOT_FOUND); break;
    default: SetError(ZV_ERR_IO); break;
    }
}

long File_Create(ZVFileInfo* file, char const* spec, ZVFilePermission permission, uint32_t type,
                 uint32_t creator, ZVFileFlags)
{
    MacPath path;
    if (int const error = path.Set(spec)) return Report(error);
    return Report(Create_File(*file, path.Text(), permission, {type, creator}));
}

long File_Open(ZVFileInfo* file, char const* spec, ZVFilePermission permission, ZVFileFlags)
{
    MacPath path;
    if (int const error = path.Set(spec)) return Report(error);
    return Report(Open_Existing(*file, path.Text(), Access_Mode(permission)));
}

long File_Read(ZVFileInfo* file, unsigned long* count, void* destination, ZVPollFunc poll, long* pollResult)
{
    if (file->flags & ZVFileFlagLargeRead) {
        int const error = Mac_Read_Chunked(file->forkRef, count, destination, poll, pollResult);
        if (error != ECANCELED) return Report(error);
        // Giving up is the caller's own wish and no error.
        SetError(ZV_ERR_NONE);
        return 0;
    }
    return Report(Mac_Read_Plain(file->forkRef, count, destination));
}

long File_Write(ZVFileInfo* file, unsigned long count, void const* source)
{
    return Report(Write_All(file->forkRef, static_cast<uint8_t const*>(source), count));
}

void File_SetPos(ZVFileInfo* file, long mode, long offset)
{
    int const origins[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (mode < 0 || mode > 2) return;
    bool const moved = lseek(file->forkRef, offset, origins[mode]) >= 0;
    // Ahead of the start the position stays, which is no error.
    Report(moved || errno == EINVAL ? 0 : errno);
}

long File_GetPos(ZVFileInfo* file)
{
    off_t const position = lseek(file->forkRef, 0, SEEK_CUR);
    if (position >= 0) return position;
    Mac_Set_File_Error(errno);
    return 0;
}

int64_t File_GetLength(ZVFileInfo* file)
{
    struct stat info;
    if (fstat(file->forkRef, &info) != 0) {
        Mac_Set_File_Error(errno);
        return 0;
    }
    bool const mayWait = file->permission == ZVFilePermWrite || file->permission == ZVFilePermReadWrite;
    if (!file->buffer || !mayWait) return info.st_size;
    return std::max<int64_t>(info.st_size, File_GetPos(file) + (file->cursor - file->buffer));
}

long File_Extend(ZVFileInfo* file, int64_t length)
{
    int const result = Retry_Interrupted([&] { return ftruncate(file->forkRef, length); });
    return Report(result == 0 ? 0 : errno);
}

long File_Truncate(ZVFileInfo* file, int64_t length)
{
    return File_Extend(file, length);
}

int64_t File_GetModificationDate(ZVFileInfo* file)
{
    struct stat info;
    if (fstat(file->forkRef, &info) == 0) return info.st_mtime;
    Mac_Set_File_Error(errno);
    return 0;
}

void File_Close(ZVFileInfo* file)
{
    if (file->forkRef == 0) return;
    // Some file systems tell of a failed write only now.
    if (close(file->forkRef) != 0) Mac_Set_File_Error(errno);
    file->forkRef = 0;
}
