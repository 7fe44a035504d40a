// Other programs, started through the desktop.
#include "ZVLibInternal.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <thread>

extern char** environ;

/// Waits for a program that nobody else waits for, lest it stays in the table of processes when it has ended.
static void Wait_For(pid_t program)
{
    while (waitpid(program, nullptr, 0) < 0 && errno == EINTR) {
    }
}

bool OS_Open_URL(char const* url)
{
    char launcher[] = "xdg-open";
    char* const arguments[] = {launcher, const_cast<char*>(url), nullptr};
    pid_t program = 0;
    if (posix_spawnp(&program, launcher, nullptr, nullptr, arguments, environ) != 0) return false;
    try {
        std::thread(Wait_For, program).detach();
    } catch (std::system_error const&) {
        // Without a thread to wait, the entry stays until this process ends.
    }
    return true;
}
