// Moves files between file systems: a copy under a temporary name beside the target takes the target's place
// once it is safe on disk.

#include "MacFileCopy.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t CopyBufferSize = 1 << 18;

struct Descriptor {
    int number;
    explicit Descriptor(int opened) : number(opened) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor()
    {
        if (number >= 0) close(number);
    }
};

int Write_Piece(int to, uint8_t const* bytes, std::size_t count)
{
    while (count > 0) {
        ssize_t const written = write(to, bytes, count);
        if (written < 0 && errno != EINTR) return errno;
        if (written == 0) return ENOSPC;
        if (written < 0) continue;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

int Copy_Contents(int from, int to)
{
    std::vector<uint8_t> buffer(CopyBufferSize);
    for (;;) {
        ssize_t const got = read(from, buffer.data(), buffer.size());
        if (got == 0) return 0;
        if (got < 0 && errno != EINTR) return errno;
        if (got < 0) continue;
        if (int const error = Write_Piece(to, buffer.data(), static_cast<std::size_t>(got))) return error;
    }
}

/// Type, creator and whatever else hangs on the file. A target that cannot hold one of them goes without it.
void Copy_Extended_Attributes(int from, int to)
{
    ssize_t const size = flistxattr(from, nullptr, 0);
    if (size <= 0) return;
    std::vector<char> names(static_cast<std::size_t>(size));
    ssize_t const used = flistxattr(from, names.data(), names.size());
    for (ssize_t at = 0; at < used;) {
        char const* name = &names[static_cast<std::size_t>(at)];
        at += static_cast<ssize_t>(std::strlen(name)) + 1;
        ssize_t const length = fgetxattr(from, name, nullptr, 0);
        if (length < 0) continue;
        std::vector<uint8_t> value(static_cast<std::size_t>(length));
        if (fgetxattr(from, name, value.data(), value.size()) == length)
            fsetxattr(to, name, value.data(), value.size(), 0);
    }
}

int Copy_File(int from, int to, struct stat const& info)
{
    if (int const error = Copy_Contents(from, to)) return error;
    Copy_Extended_Attributes(from, to);
    timespec const times[] = {info.st_atim, info.st_mtim};
    futimens(to, times);
    // The owner changes only for a privileged user; setting it clears bits of the mode, so the mode comes
    // last.
    [[maybe_unused]] int const owned = fchown(to, info.st_uid, info.st_gid);
    if (fchmod(to, info.st_mode & 07777) != 0) return errno;
    return fsync(to) == 0 ? 0 : errno;
}

/// A name that is given up unless the file under it has taken its final one.
struct TemporaryName {
    std::string path;
    bool isTaken = false;
    ~TemporaryName()
    {
        if (isTaken) unlink(path.c_str());
    }
};

std::string Directory(std::string const& path)
{
    std::size_t const slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

}  // namespace

int Mac_Move_Across(std::string const& from, std::string const& to)
{
    // Only a regular file, and never what a link leads to.
    Descriptor source(open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (source.number < 0) return errno;
    struct stat info;
    if (fstat(source.number, &info) != 0) return errno;
    if (!S_ISREG(info.st_mode)) return EXDEV;
    // Better to find out now than with a second copy in place that the first cannot be deleted.
    if (access(Directory(from).c_str(), W_OK) != 0) return errno;

    TemporaryName temporary{Directory(to) + ".zvmove-XXXXXX"};
    Descriptor target(mkostemp(temporary.path.data(), O_CLOEXEC));
    if (target.number < 0) return errno;
    temporary.isTaken = true;
    if (int const error = Copy_File(source.number, target.number, info)) return error;
    if (rename(temporary.path.c_str(), to.c_str()) != 0) return errno;
    temporary.isTaken = false;
    return unlink(from.c_str()) == 0 ? 0 : errno;
}
