// Reading a directory for a file dialog: on a thread, so that the dialog goes on while a slow one is read.
#pragma once

#include "ZVLibInternal.h"
#include "ZVThread.h"

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

/// A directory or file.
struct FileEntry {
    std::string name;  ///< as in a spec
    std::string key;   ///< of Sort_Key_Of_Name
    int64_t size, modified;
    uint32_t type, creator;
    bool isDirectory, isHidden;
};

enum class FileReading : uint8_t { Running, Done, Missing, Denied, Failed };

/// A directory on its way in. Its owner hands it to Retire when it is done with it.
class DirectoryReader : public ZVCThread {
public:
    /// @param path  native
    DirectoryReader(std::string path, bool wantsCodes);

    /// Waits at most so long for the whole directory.
    void Wait_For_End(unsigned long milliseconds);

    /// Moves what has been read since the last call behind `entries`.
    FileReading Take(std::vector<FileEntry>& entries);

    /// Ends the reading. A file system that hangs can keep the thread: then the reader is freed by a later
    /// call, when it has come back.
    static void Retire(DirectoryReader* reader);

private:
    long Run() override;
    FileReading Read();
    bool Visit(OSBrowsedEntry const& entry);
    void Hand_Over();

    std::string const path_;
    bool const wantsCodes_;
    std::atomic<bool> isWanted_ = true;
    std::vector<FileEntry> batch_;  ///< of the thread
    unsigned long batchStart_ = 0;
    ZVCEvent end_;

    std::mutex mutex_;  ///< guards the rest
    std::vector<FileEntry> ready_;
    FileReading state_ = FileReading::Running;
};
