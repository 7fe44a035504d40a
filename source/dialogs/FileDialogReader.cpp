// See FileDialogReader.h.
#include "FileDialogReader.h"

#include "FileDialogText.h"

#include <iterator>
#include <new>

namespace {

/// Milliseconds after which what has been read is handed over.
constexpr unsigned long BatchTime = 30;

/// The readers that a file system keeps. It stands to the end of the process: what hangs then still uses it.
std::vector<DirectoryReader*>& Retired()
{
    static auto* const readers = new std::vector<DirectoryReader*>;
    return *readers;
}

}  // namespace

DirectoryReader::DirectoryReader(std::string path, bool wantsCodes)
    : path_(std::move(path)), wantsCodes_(wantsCodes)
{
    if (Start()) return;
    state_ = FileReading::Failed;
    end_.Set();
}

void DirectoryReader::Wait_For_End(unsigned long milliseconds)
{
    end_.WaitFor(milliseconds);
}

FileReading DirectoryReader::Take(std::vector<FileEntry>& entries)
{
    std::lock_guard const lock(mutex_);
    entries.insert(entries.end(), std::make_move_iterator(ready_.begin()),
                   std::make_move_iterator(ready_.end()));
    ready_.clear();
    return state_;
}

void DirectoryReader::Retire(DirectoryReader* reader)
{
    if (reader) {
        reader->isWanted_ = false;
        try {
            Retired().push_back(reader);
        } catch (std::bad_alloc const&) {
            // It ends all the same, and is lost.
        }
    }
    std::erase_if(Retired(), [](DirectoryReader* each) {
        if (each->Started) return false;
        delete each;
        return true;
    });
}

// ---- on the thread ----------------------------------------------------------------------------------------

/// @return  0, which ends the thread
long DirectoryReader::Run()
{
    FileReading const state = Read();
    {
        std::lock_guard const lock(mutex_);
        state_ = state;
    }
    end_.Set();
    return 0;
}

FileReading DirectoryReader::Read()
try {
    auto const visit = [](OSBrowsedEntry const& entry, void* data) {
        return static_cast<DirectoryReader*>(data)->Visit(entry);
    };
    batchStart_ = GetTimeZV();
    OSBrowseResult const result = OS_Browse_Directory(path_.c_str(), wantsCodes_, visit, this);
    if (result == OSBrowseResult::Done) Hand_Over();
    switch (result) {
    case OSBrowseResult::Done: return FileReading::Done;
    case OSBrowseResult::Missing: return FileReading::Missing;
    case OSBrowseResult::Denied: return FileReading::Denied;
    default: return FileReading::Failed;
    }
} catch (std::bad_alloc const&) {
    return FileReading::Failed;
}

bool DirectoryReader::Visit(OSBrowsedEntry const& entry)
{
    if (!isWanted_) return false;
    batch_.push_back({entry.name, Sort_Key_Of_Name(entry.name), entry.size, entry.modified, entry.type,
                      entry.creator, entry.isDirectory, entry.isHidden});
    if (GetTimeZV() - batchStart_ >= BatchTime) Hand_Over();
    return true;
}

void DirectoryReader::Hand_Over()
{
    std::lock_guard const lock(mutex_);
    ready_.insert(ready_.end(), std::make_move_iterator(batch_.begin()),
                  std::make_move_iterator(batch_.end()));
    batch_.clear();
    batchStart_ = GetTimeZV();
}
