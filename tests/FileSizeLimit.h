// A disk that runs full on demand.
#pragma once

#include <csignal>

#include <sys/resource.h>

/// While this lives, files of this process cannot grow beyond a size.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &old_);
        rlimit const limit{size, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, SIG_DFL);
    }
    FileSizeLimit(FileSizeLimit const&) = delete;
    FileSizeLimit& operator=(FileSizeLimit const&) = delete;

private:
    rlimit old_;
};
