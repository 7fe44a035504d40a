// What a file dialog lists: the entries of a directory that are wanted, in order, while they are still coming
// in.
#pragma once

#include "FileDialogReader.h"

#include <cstdint>
#include <functional>

enum class FileColumn : uint8_t { Name, Size, Date };

/// The order of the rows; directories come first in any.
struct FileOrder {
    FileColumn column = FileColumn::Name;
    bool isDescending = false;

    bool operator==(FileOrder const&) const = default;
};

class FileListing {
public:
    using Filter = std::function<bool(FileEntry const&)>;

    explicit FileListing(Filter filter) : filter_(std::move(filter)) {}
    ~FileListing() { DirectoryReader::Retire(reader_); }
    FileListing(FileListing const&) = delete;
    FileListing& operator=(FileListing const&) = delete;

    /// Begins to read a directory, and waits a moment for it, so that an ordinary one is there at once.
    /// @param path  native, with a closing slash
    void Open(std::string const& path);

    /// Takes what has been read meanwhile, as far as the time for it goes. True when there is more to see.
    bool Advance();

    void Filter_Again();  ///< What is wanted has changed.
    void Set_Order(FileOrder order);
    FileOrder Order() const { return order_; }

    /// Running until all names are in the rows.
    FileReading State() const { return filtered_ < entries_.size() ? FileReading::Running : state_; }
    bool Is_Busy() const { return reader_ || State() == FileReading::Running; }  ///< There is more to come.
    bool Has_Entries() const { return !entries_.empty(); }

    long Row_Count() const { return static_cast<long>(rows_.size()); }
    FileEntry const& Row(long row) const { return entries_[rows_[static_cast<std::size_t>(row)]]; }
    long Entry_Of_Row(long row) const { return static_cast<long>(rows_[static_cast<std::size_t>(row)]); }

    /// The row of an entry, or of a name; -1 when it is not shown.
    long Row_Of_Entry(long entry) const;
    long Row_Of_Name(std::string_view name) const;

    /// The first row whose name begins so, without case and accents; -1 when there is none.
    long Row_Of_Prefix(std::string_view typed) const;

private:
    bool Goes_Before(uint32_t a, uint32_t b) const;
    void Sort_From(std::size_t first);

    Filter const filter_;
    DirectoryReader* reader_ = nullptr;
    FileReading state_ = FileReading::Done;
    std::vector<FileEntry> entries_;  ///< as read
    std::size_t filtered_ = 0;        ///< entries that have been looked at
    std::vector<uint32_t> rows_;      ///< of those, what is shown
    FileOrder order_;
};
