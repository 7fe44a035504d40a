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

DirectoryReader::DirectoryReader(std::string path) : path_(std::move(path))
{
    if (path_.empty() || path_.back() != '/') Assert_Fail(__FILE__, __LINE__);
    if (Start()) return;
    Tell(FileReading::Failed, true);
    end_.Set();
}

void DirectoryReader::Wait_For_End(unsigned long milliseconds)
{
    end_.WaitFor(milliseconds);
}

DirectoryReader::News DirectoryReader::Take(std::vector<FileEntry>& entries)
{
    std::lock_guard const lock(mutex_);
    entries.insert(entries.end(), std::make_move_iterator(ready_.begin()),
                   std::make_move_iterator(ready_.end()));
    ready_.clear();
    for (Measure const& measure : readyMeasures_) {
        FileEntry& entry = entries[measure.index];
        entry.isMeasured = true;
        entry.size = measure.size;
        entry.modified = measure.modified;
    }
    News news = state_;
    news.areMeasured = !readyMeasures_.empty();
    readyMeasures_.clear();
    return news;
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

/// Names first, as these can be shown at once and measures cost a call of the system each.
/// @return  0, which ends the thread
long DirectoryReader::Run()
{
    FileReading const names = Read_Names();
    Tell(names, names != FileReading::Done);
    if (names == FileReading::Done) Measure_Files();
    Tell(names, true);
    end_.Set();
    return 0;
}

void DirectoryReader::Tell(FileReading names, bool isEverything)
{
    std::lock_guard const lock(mutex_);
    state_.names = names;
    state_.isEverything = isEverything;
}

FileReading DirectoryReader::Read_Names()
try {
    auto const visit = [](OSBrowsedEntry const& entry, void* data) {
        return static_cast<DirectoryReader*>(data)->Visit(entry);
    };
    batchStart_ = GetTimeZV();
    OSBrowseResult const result = OS_Browse_Directory(path_.c_str(), visit, this);
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
    nativeNames_.emplace_back(entry.nativeName);
    batch_.push_back({entry.name, Sort_Key_Of_Name(entry.name), entry.type, entry.creator, entry.isDirectory,
                      entry.isHidden});
    Hand_Over_Late();
    return true;
}

/// A file that has vanished meanwhile stays without measures, and so do all without memory.
void DirectoryReader::Measure_Files()
try {
    for (std::size_t i = 0; i < nativeNames_.size() && isWanted_; ++i) {
        Measure measure{i, 0, 0};
        if (!OS_Measure_File((path_ + nativeNames_[i]).c_str(), &measure.size, &measure.modified)) continue;
        measures_.push_back(measure);
        Hand_Over_Late();
    }
    Hand_Over();
} catch (std::bad_alloc const&) {
    return;
}

void DirectoryReader::Hand_Over_Late()
{
    if (GetTimeZV() - batchStart_ >= BatchTime) Hand_Over();
}

void DirectoryReader::Hand_Over()
{
    std::lock_guard const lock(mutex_);
    ready_.insert(ready_.end(), std::make_move_iterator(batch_.begin()),
                  std::make_move_iterator(batch_.end()));
    readyMeasures_.insert(readyMeasures_.end(), measures_.begin(), measures_.end());
    batch_.clear();
    measures_.clear();
    batchStart_ = GetTimeZV();
}
