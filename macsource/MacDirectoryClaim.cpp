// A directory taken by one process alone, by a lock on the directory itself. The lock ends with the process,
// so a crash leaves no directory taken for ever.
#include "ZVLibInternal.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Whether the path still names the open directory: its last owner may have deleted it before we had the
/// lock.
bool Is_Same_Directory(int descriptor, char const* path)
{
    struct stat opened, named;
    return fstat(descriptor, &opened) == 0 && stat(path, &named) == 0 && opened.st_dev == named.st_dev &&
           opened.st_ino == named.st_ino;
}

}  // namespace

long OS_Claim_Directory(char const* spec)
{
    char path[ZV_SPEC_SIZE];
    if (!spec || std::strlen(spec) >= sizeof path) return -1;
    std::strcpy(path, spec);
    ConvertDOStoPathZV(path, true);
    if (path[0] != '/') return -1;
    for (;;) {
        bool const isNew = mkdir(path, 0777) == 0;
        if (!isNew && errno != EEXIST) return -1;
        int const descriptor = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) {
            if (errno == ENOENT) continue;
            return -1;
        }
        bool const isLocked = flock(descriptor, LOCK_EX | LOCK_NB) == 0;
        bool const isBusy = !isLocked && errno == EWOULDBLOCK;
        if (isLocked && !Is_Same_Directory(descriptor, path)) {
            close(descriptor);
            continue;
        }
        // Some network file systems lock no directories; there it belongs to whoever made it.
        if (isLocked || (isNew && !isBusy)) return descriptor + 1L;
        close(descriptor);
        return 0;
    }
}

void OS_Release_Directory(long claim)
{
    if (claim > 0) close(static_cast<int>(claim - 1));
}
