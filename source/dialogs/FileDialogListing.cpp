// See FileDialogListing.h.
#include "FileDialogListing.h"

#include "FileDialogText.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

/// Milliseconds that an ordinary directory may take before the dialog goes on without it.
constexpr unsigned long WaitTime = 100;

/// Microseconds for looking at entries, as a module can have to open a file for it, and how many are looked
/// at before the clock is.
constexpr uint64_t FilterTime = 30000;
constexpr std::size_t FilterStep = 16;

/// The name's bytes settle what is the same but for case, accents and leading zeros.
int Compare_Names(FileEntry const& a, FileEntry const& b)
{
    int const order = a.key.compare(b.key);
    return order ? order : a.name.compare(b.name);
}

int Compare(int64_t a, int64_t b)
{
    return a < b ? -1 : a > b;
}

}  // namespace

void FileListing::Open(std::string const& path)
{
    DirectoryReader::Retire(std::exchange(reader_, nullptr));
    entries_.clear();
    rows_.clear();
    filtered_ = 0;
    state_ = FileReading::Running;
    reader_ = new DirectoryReader(path);
    reader_->Wait_For_End(WaitTime);
    Advance();
}

bool FileListing::Advance()
{
    FileReading const oldState = State();
    std::size_t const oldRows = rows_.size();
    DirectoryReader::News news;
    if (reader_) {
        news = reader_->Take(entries_);
        state_ = news.names;
        if (news.isEverything) DirectoryReader::Retire(std::exchange(reader_, nullptr));
    }
    uint64_t const start = OS_Microseconds();
    for (; filtered_ < entries_.size(); ++filtered_) {
        if (filtered_ % FilterStep == 0 && OS_Microseconds() - start > FilterTime) break;
        if (filter_(entries_[filtered_])) rows_.push_back(static_cast<uint32_t>(filtered_));
    }
    bool const isOrderNew = news.areMeasured && order_.column != FileColumn::Name;
    Sort_From(isOrderNew ? 0 : oldRows);
    return rows_.size() != oldRows || State() != oldState || news.areMeasured;
}

void FileListing::Filter_Again()
{
    rows_.clear();
    filtered_ = 0;
    Advance();
}

// ---- order ------------------------------------------------------------------------------------------------

bool FileListing::Goes_Before(uint32_t first, uint32_t second) const
{
    FileEntry const &a = entries_[first], &b = entries_[second];
    if (a.isDirectory != b.isDirectory) return a.isDirectory;
    int order = 0;
    // The size of a directory tells nothing, and is not shown.
    if (order_.column == FileColumn::Size && !a.isDirectory) order = Compare(a.size, b.size);
    if (order_.column == FileColumn::Date) order = Compare(a.modified, b.modified);
    if (order == 0) order = Compare_Names(a, b);
    return order_.isDescending ? order > 0 : order < 0;
}

/// Sorts the rows, those ahead of `first` being sorted.
void FileListing::Sort_From(std::size_t first)
{
    auto const goesBefore = [this](uint32_t a, uint32_t b) { return Goes_Before(a, b); };
    auto const middle = rows_.begin() + static_cast<std::ptrdiff_t>(first);
    std::sort(middle, rows_.end(), goesBefore);
    std::inplace_merge(rows_.begin(), middle, rows_.end(), goesBefore);
}

void FileListing::Set_Order(FileOrder order)
{
    order_ = order;
    Sort_From(0);
}

// ---- finding ----------------------------------------------------------------------------------------------

long FileListing::Row_Of_Entry(long entry) const
{
    auto const found = std::find(rows_.begin(), rows_.end(), static_cast<uint32_t>(entry));
    return found == rows_.end() ? -1 : found - rows_.begin();
}

long FileListing::Row_Of_Name(std::string_view name) const
{
    for (long row = 0; row < Row_Count(); ++row)
        if (Row(row).name == name) return row;
    return -1;
}

long FileListing::Row_Of_Prefix(std::string_view typed) const
{
    std::string const wanted = Folded(typed);
    for (long row = 0; row < Row_Count(); ++row)
        if (Folded(Shown_Name(Row(row).name)).starts_with(wanted)) return row;
    return -1;
}
