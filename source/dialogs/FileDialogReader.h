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
    uint32_t type, creator;
    bool isDirectory, isHidden;
    bool isMeasured = false;  ///< size and time are there, which come behind all names
    int64_t size = 0, modified = 0;
};

enum class FileReading : uint8_t { Running, Done, Missing, Denied, Failed };

/// A directory on its way in. Its owner hands it to Retire when it is done with it.
class DirectoryReader : public ZVCThread {
public:
    explicit DirectoryReader(std::string path);  ///< Native.

    /// Waits at most so long for the whole directory.
    void Wait_For_End(unsigned long milliseconds);

    /// What has come since the last call.
    struct News {
        FileReading names = FileReading::Running;
        bool areMeasured = false;   ///< entries have been
        bool isEverything = false;  ///< nothing more is to come
    };
    /// Moves what has been read behind `entries`, which are all that came so far, and enters measures in
    /// them.
    News Take(std::vector<FileEntry>& entries);

    /// Ends the reading. A file system that hangs can keep the thread: then the reader is freed by a later
    /// call, when it has come back.
    static void Retire(DirectoryReader* reader);

private:
    /// Size and time of an entry, by its place.
    struct Measure {
        std::size_t index;
        int64_t size, modified;
    };

    long Run() override;
    FileReading Read_Names();
    void Measure_Files();
    bool Visit(OSBrowsedEntry const& entry);
    void Hand_Over();
    void Hand_Over_Late();
    void Tell(FileReading names, bool isEverything);

    std::string const path_;
    std::atomic<bool> isWanted_ = true;

    // of the thread
    std::vector<FileEntry> batch_;
    std::vector<Measure> measures_;
    std::vector<std::string> nativeNames_;
    unsigned long batchStart_ = 0;
    ZVCEvent end_;

    std::mutex mutex_;  ///< guards the rest
    std::vector<FileEntry> ready_;
    std::vector<Measure> readyMeasures_;
    News state_;
};
