// Runs a test in a child process with mounts of its own, which the rest of the machine does not see.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

inline constexpr int CannotMount = 77;

/// Empty file systems, at directories that are made below a fresh /mnt.
inline bool Mount_Privately(std::initializer_list<char const*> directories)
{
    std::string const user = std::to_string(geteuid());
    if (unshare(geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0) return false;
    if (user != "0") std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    if (mount("none", "/mnt", "tmpfs", 0, nullptr) != 0) return false;
    for (std::string const directory : directories) {
        for (std::size_t at = directory.find('/', 5); at != std::string::npos;
             at = directory.find('/', at + 1))
            mkdir(directory.substr(0, at).c_str(), 0777);
        mkdir(directory.c_str(), 0777);
        if (mount("none", directory.c_str(), "tmpfs", 0, nullptr) != 0) return false;
    }
    return true;
}

/// Skips the test where nobody may mount.
template <typename Body> void With_Mounts(std::initializer_list<char const*> directories, Body body)
{
    pid_t const child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (!Mount_Privately(directories)) _exit(CannotMount);
        body();
        _exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == CannotMount) GTEST_SKIP() << "no mounts allowed here";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}
