// All files of some directories, and of the trees below them.
#include "EnumFiles.h"

#include "FileSpecText.h"
#include "SpecText.h"

#include "ZVLibInternal.h"

#include <cstring>
#include <new>
#include <set>
#include <utility>

namespace {

constexpr long DepthLimit = 20;

using Identity = std::pair<uint64_t, uint64_t>;

struct Enumeration {
    bool wantsTypes;
    char const* const* types;
    ZVEnumFilesFunc callback;
    long data;
    long recurse;
    long maxDirectories;
    long visited = 0;
    long depth = 0;
    long stop = 0;
    SpecText directory = {};         ///< the one being walked, with a closing separator
    std::set<Identity> walked = {};  ///< directories that were entered; a link does not lead into one again
};

bool Is_Passed_Over(char const* name)
{
    return name[0] == '.' || name[0] == '\xC2';
}

/// The first character in the lowest byte.
unsigned long In_Memory_Order(uint32_t code)
{
    return (code & 0xFF) << 24 | (code & 0xFF00) << 8 | (code >> 8 & 0xFF00) | code >> 24;
}

bool Is_Wanted(char const* const* types, uint32_t type)
{
    if (!types) return true;
    char const text[] = {static_cast<char>(type >> 24), static_cast<char>(type >> 16),
                         static_cast<char>(type >> 8), static_cast<char>(type)};
    for (; *types; ++types)
        if (std::strncmp(*types, text, sizeof text) == 0) return true;
    return false;
}

void Walk(Enumeration& walk, bool isLink);

void Show_File(Enumeration& walk, OSDirectoryEntry const& entry)
{
    if (!Is_Wanted(walk.types, entry.type)) return;
    SpecText const spec(walk.directory.View(), entry.name);
    if (spec.Fits()) walk.callback(spec.Text(), In_Memory_Order(entry.type), walk.data, &walk.stop);
}

bool Visit_Entry(OSDirectoryEntry const& entry, void* data)
{
    auto& walk = *static_cast<Enumeration*>(data);
    if (Is_Passed_Over(entry.name)) return true;
    if (entry.kind == OSEntryKind::File) Show_File(walk, entry);
    if (entry.kind == OSEntryKind::Directory && walk.recurse) {
        std::size_t const length = walk.directory.Length();
        if (length + std::strlen(entry.name) + 1 < static_cast<std::size_t>(ZV_SPEC_SIZE)) {
            walk.directory.Append(entry.name).Append("\\");
            Walk(walk, entry.isLink);
            walk.directory.Cut(length);
        }
    }
    return walk.stop == 0;
}

/// Visits the directory that `walk` names.
void Walk(Enumeration& walk, bool isLink)
{
    if (++walk.visited > walk.maxDirectories && walk.maxDirectories > 0) {
        walk.stop = 1;
        return;
    }
    OSFileStatus status;
    if (walk.depth + 1 >= DepthLimit || !OS_Get_Status(walk.directory.Text(), &status)) return;
    bool const isNew = walk.walked.insert({status.device, status.file}).second;
    if (isLink && !isNew) return;
    ++walk.depth;
    OS_List_Directory(walk.directory.Text(), walk.wantsTypes, Visit_Entry, &walk);
    --walk.depth;
}

/// The spec of a directory as callers may give it, with a closing separator; an empty text for one that is
/// passed over.
SpecText Named_Directory(char const* spec)
{
    SpecText directory(spec);
    while (directory.View().ends_with('\\') && !directory.View().ends_with(":\\"))
        directory.Cut(directory.Length() - 1);
    if (Is_Passed_Over(File_Name(directory.Text())) || !FileExistsZV(directory.Text())) return {};
    if (!directory.View().ends_with('\\')) directory.Append("\\");
    return directory;
}

void Run(Enumeration& walk, char const* const* directories)
{
    if (!directories || !walk.callback) return;
    try {
        for (; *directories && !walk.stop; ++directories) {
            walk.directory = Named_Directory(*directories);
            if (walk.directory.Length() > 0) Walk(walk, false);
        }
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
    }
}

}  // namespace

void Enum_Files_Of_Any_Type(char const* const* directories, ZVEnumFilesFunc callback, long data, long recurse,
                            long maxDirectories)
{
    Enumeration walk{false, nullptr, callback, data, recurse, maxDirectories};
    Run(walk, directories);
}

long EnumFilesZV(char const* const* directories, char const* const* types, ZVEnumFilesFunc callback,
                 long data, long recurse, long maxDirectories)
{
    Enumeration walk{true, types, callback, data, recurse, maxDirectories};
    Run(walk, directories);
    return 1;
}
