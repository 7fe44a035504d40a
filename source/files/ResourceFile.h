// An open resource file: finds, reads, adds and removes resources. Bytes are read when they are asked for, so
// that a file costs no more memory than its map.
//
// Changes are safe against a crash: new bytes go behind everything that the present map names, and the header
// is turned to the new map last. A file that has gathered much that nothing names any more is packed on the
// way, in place, so that it keeps its attributes.
#pragma once

#include "ResourceMap.h"

#include "ZVFile.h"

#include "foundation/HeapBlock.h"

#include <memory>
#include <string_view>

/// Where a new resource file has its map.
enum class ResourcePlace {
    File,      ///< in the file itself, which holds nothing else
    Companion  ///< in ._name beside the file, whose own contents stay
};

/// A resource file. Entries that it gives stay valid until it is changed.
class ZV_API ZVResourceFile {
public:
    /// Opens for reading or, with ZVFilePermReadWrite, for changes too. The companion counts when it holds
    /// resources, else the file itself.
    /// @return  null with the error number of the file layer, or error 7 for what is no resource file
    static std::unique_ptr<ZVResourceFile> Open(char const* spec, ZVFilePermission permission);

    /// The same for an open file, which is taken over.
    static std::unique_ptr<ZVResourceFile> Open(ZVFileInfo* file);

    /// Creates a file without resources and opens it for changes. Resources that were there are gone.
    static std::unique_ptr<ZVResourceFile> Create(char const* spec, ResourcePlace place, uint32_t type,
                                                  uint32_t creator);

    ~ZVResourceFile();  ///< Forgets what was not saved.
    ZVResourceFile(ZVResourceFile const&) = delete;
    ZVResourceFile& operator=(ZVResourceFile const&) = delete;

    std::span<ResourceEntry const> Entries() const { return entries_; }  ///< In the order of the map.
    long Count(uint32_t type) const;
    ResourceEntry const* Find(uint32_t type, long index) const;  ///< Counted from 1; null when there is none.
    ResourceEntry const* Find_ID(uint32_t type, long id) const;
    ResourceEntry const* Find_Name(uint32_t type, std::string_view name) const;

    /// Bytes of a resource; -1 with error 7 when they do not all lie in the file.
    int64_t Size(ResourceEntry const& entry);
    bool Read(ResourceEntry const& entry, void* destination);  ///< Size bytes.

    /// An id from 128 up that no resource of the type has; 0 when all are taken.
    int16_t Unique_ID(uint32_t type) const;

    /// Adds a resource behind those of its type, or puts it in the place of the one with its id. Its bytes
    /// are in the file then, but only Save names them. A name is cut at 255 bytes.
    /// @return  false with the error number set and nothing changed; error 6 when the form has no room
    bool Add(uint32_t type, int16_t id, std::string_view name, std::span<uint8_t const> bytes);

    void Remove(ResourceEntry const& entry);

    /// Makes the changes last. False with the error number set; the file is then as it was at the last
    /// success.
    bool Save();

private:
    using FilePtr = std::unique_ptr<ZVFileInfo, Released_By<CloseFileZV>>;

    explicit ZVResourceFile(FilePtr file);

    static std::unique_ptr<ZVResourceFile> Open_File(FilePtr file, bool isCompanion);
    static std::unique_ptr<ZVResourceFile> Open_Spec(char const* spec, ZVFilePermission permission);
    static FilePtr Create_Companion(char const* spec, uint32_t type, uint32_t creator);
    static FilePtr Create_Plain(char const* spec, uint32_t type, uint32_t creator);

    bool Find_Fork();
    bool Read_Map();
    bool Begin_Change();
    bool Move_To_End();
    bool Append(ResourceEntry& entry, std::span<uint8_t const> bytes);
    bool Write_Map(int64_t position, std::span<ResourceEntry const> entries, ResourceHeader& header);
    bool Append_Map();
    bool Turn_Header(ResourceHeader const& header);
    bool Pack();
    bool Write_Packed(int64_t position);
    bool Cut_Off(int64_t length);
    void Forget_Changes();
    bool Store_Place();

    FilePtr file_;
    int64_t entryOffset_ = 0;  ///< of the fork's entry in a companion; 0 in a file that is all resources
    int64_t base_ = 0;         ///< of the fork, where its header lies
    int64_t length_ = 0;       ///< of the fork
    int64_t savedLength_ = 0;  ///< the same without changes that are not saved
    ResourceHeader header_ = {};
    std::vector<ResourceEntry> entries_;
    bool isChanged_ = false;
};
