// The file system as a tree of objects: volumes, directories, files and links.
#include "FileSpecText.h"
#include "SpecText.h"

#include "ZVLibInternal.h"

#include "Locale/ZVLibStr.h"

#include "foundation/HeapBlock.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::string_view ApplicationEnding = ".app";

/// What a listing comes to by and by.
struct ListedName {
    std::string directory;  ///< spec with a closing separator; that of the volume itself for a volume
    std::string name;
    bool isVolume = false;
    bool isDirectory = false;
    bool isLink = false;
};

using ObjectPtr = std::unique_ptr<ZVEnumObjectS, Released_By<FreeEnumObjectZV>>;

struct Collection {
    std::string directory;
    std::vector<ListedName>& names;
};

bool Take_Entry(OSDirectoryEntry const& entry, void* data)
{
    auto& collection = *static_cast<Collection*>(data);
    if (entry.name[0] != '.')
        collection.names.push_back(
            {collection.directory, entry.name, false, entry.kind == OSEntryKind::Directory, entry.isLink});
    return true;
}

bool Take_Volume(char const* name, void* data)
{
    static_cast<std::vector<ListedName>*>(data)->push_back(
        {std::string(name) + ":\\", name, true, true, false});
    return true;
}

/// Spec of the user's desktop folder, with a closing separator; empty when it cannot be had.
SpecText Desktop_Spec()
{
    FSSpec place;
    char spec[ZV_SPEC_SIZE];
    if (!OS_Get_Desktop_Dir(place.path, sizeof place.path) || GetDOSPathZV(spec, &place) != 0) return {};
    return SpecText(spec);
}

/// The spec of a directory in one spelling, with a closing separator; empty when it is no directory that is
/// there.
SpecText Directory_Spec(char const* spec)
{
    FSSpec place;
    char spelled[ZV_SPEC_SIZE];
    if (!spec || GetFSSpecZV(spec, &place) != 0 || GetDOSPathZV(spelled, &place) != 0) return {};
    return std::string_view(spelled).ends_with('\\') ? SpecText(spelled) : SpecText();
}

/// A copy on the heap; null for an empty text.
char* Copy_Of(std::string_view text)
{
    if (text.empty()) return nullptr;
    auto* const copy = static_cast<char*>(AllocMemZV(text.size() + 1, ZV_MEM_CLEAR));
    return static_cast<char*>(std::memcpy(copy, text.data(), text.size()));
}

/// The object's own spec. A link stays itself.
SpecText Own_Spec(ZVEnumObjectS const& object)
{
    return object.IsVolume ? SpecText(object.Directory) : SpecText(object.Directory, object.Name);
}

/// What an object shows: a bundle is one thing, and named without its ending.
void Name_For_People(ZVEnumObjectS& object, std::string_view name)
{
    if (object.FinderFlags & ZV_FINDER_BUNDLE) object.CanEnter = 0;
    if (name.ends_with(ApplicationEnding) && name.size() > ApplicationEnding.size()) {
        name.remove_suffix(ApplicationEnding.size());
        object.CanEnter = 0;
    }
    object.DisplayName = Copy_Of(name);
}

ObjectPtr Make_Object(ListedName const& listed)
{
    ObjectPtr object(static_cast<ZVEnumObjectS*>(AllocMemZV(sizeof(ZVEnumObjectS), ZV_MEM_CLEAR)));
    object->Volume = Copy_Of(std::string_view(listed.directory).substr(0, listed.directory.find(':')));
    object->Directory = Copy_Of(listed.directory);
    object->Name = Copy_Of(listed.name);
    object->IsVolume = listed.isVolume;
    object->IsAlias = listed.isLink;
    object->CanEnter = listed.isDirectory;
    object->Type = object->Creator = ZV_BLANK_CODE;
    SpecText const spec = Own_Spec(*object);
    OSFileStatus status;
    if (OS_Get_Status(spec.Text(), &status)) {
        object->Time = status.modified;
        object->Size = listed.isDirectory ? 0 : status.size;
        object->FinderFlags = status.finderFlags;
    }
    if (!listed.isDirectory) Get_FileInfo(spec.Text(), &object->Creator, &object->Type);
    if (object->FinderFlags & ZV_FINDER_ALIAS) object->IsAlias = 1;
    Name_For_People(*object, listed.name);
    char target[ZV_SPEC_SIZE];
    if (listed.isLink && OS_Resolve_Link(spec.Text(), target)) {
        std::string_view text(target);
        if (text.ends_with('\\')) text.remove_suffix(1);
        object->AliasName = Copy_Of(text.substr(text.find_last_of(":\\") + 1));
    }
    return object;
}

/// The spec of what an object stands for: of a link's target, worked out once.
char const* Target_Of(ZVEnumObjectS& object)
{
    if (object.Resolved) return object.Target;
    SpecText const own = Own_Spec(object);
    char target[ZV_SPEC_SIZE];
    bool const isLink = object.IsAlias && OS_Resolve_Link(own.Text(), target);
    object.Target = Copy_Of(isLink ? std::string_view(target) : own.View());
    object.Resolved = 1;
    return object.Target;
}

bool Copy_Text(char* buffer, char const* text)
{
    return text && Copy_Spec_Text(buffer, text);
}

}  // namespace

struct ZVShellFolderS {
    std::string directory;  ///< with a closing separator; empty for the root
    std::vector<ListedName> names;
    std::size_t next = 0;

    /// Reads the names of the directory, or of the volumes and the desktop.
    void Read()
    {
        if (directory.empty()) OS_List_Volumes(Take_Volume, &names);
        Collection collection{directory.empty() ? std::string(Desktop_Spec().View()) : directory, names};
        if (!collection.directory.empty())
            OS_List_Directory(collection.directory.c_str(), false, Take_Entry, &collection);
    }
};

/// A listing of a directory, or of the root for an empty text.
static ZVShellFolderS* Make_Folder(SpecText const& directory)
{
    try {
        auto folder = std::make_unique<ZVShellFolderS>();
        folder->directory = directory.View();
        folder->Read();
        return folder.release();
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
}

ZVShellFolderS* EnumSpecialFileObjectsZV(ZVSpecialFolder folder)
{
    return folder == ZV_FOLDER_ROOT ? Make_Folder({}) : nullptr;
}

ZVShellFolderS* EnumFileObjectsZV(char const* spec)
{
    return Make_Folder(Directory_Spec(spec));
}

ZVShellFolderS* EnumFileObjectsZV(ZVEnumObjectS* object)
{
    return Make_Folder(Directory_Spec(object ? Target_Of(*object) : Desktop_Spec().Text()));
}

void FreeShellFolderZV(ZVShellFolderS* folder)
{
    delete folder;
}

ZVEnumObjectS* GetNextFileObjectZV(ZVShellFolderS* folder, unsigned long* flags)
{
    if (flags) *flags = 0;
    if (!folder) return nullptr;
    try {
        while (folder->next < folder->names.size()) {
            ObjectPtr object = Make_Object(folder->names[folder->next++]);
            if (object->FinderFlags & ZV_FINDER_INVISIBLE) continue;
            if (flags) *flags = object->CanEnter ? 1 : 0;
            return object.release();
        }
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
    }
    return nullptr;
}

void FreeEnumObjectZV(ZVEnumObjectS* object)
{
    if (!object) return;
    for (char* text : {object->Volume, object->Directory, object->AliasName, object->Target,
                       object->DisplayName, object->Name})
        FreeMemZV(text);
    FreeMemZV(object);
}

long GetDisplayNameZV(ZVEnumObjectS const* object, char* buffer)
{
    if (!buffer) return 0;
    if (!object) return Copy_Text(buffer, GetStringZV(ZVSTR_DESKTOP));
    for (char const* name : {object->DisplayName, object->AliasName, object->Name})
        if (name) return Copy_Text(buffer, name);
    buffer[0] = 0;
    return 0;
}

long GetFullDisplayNameZV(ZVEnumObjectS* object, char* buffer)
{
    if (!buffer) return 0;
    return Copy_Text(buffer, object ? Target_Of(*object) : Desktop_Spec().Text());
}

long GetFileSpecZV(ZVEnumObjectS* object, FSSpec* place)
{
    if (!place) return 0;
    SpecText const desktop = object ? SpecText() : Desktop_Spec();
    char const* const spec = object ? Target_Of(*object) : desktop.Text();
    return spec && GetFSSpecZV(spec, place) == 0;
}

char* GetFileSpecZV(ZVEnumObjectS* object)
{
    SpecText const desktop = object ? SpecText() : Desktop_Spec();
    return MakeFileSpecZV(object ? Target_Of(*object) : desktop.Text());
}

long GetEnumObjectInfoZV(ZVEnumObjectS const* object, long* time, long long* size, unsigned long* type,
                         unsigned long* creator, char* extension)
{
    if (!object) return 0;
    if (time) *time = object->Time;
    if (size) *size = object->Size;
    if (type) *type = object->Type;
    if (creator) *creator = object->Creator;
    if (extension) GetExtensionZV(object->Name, extension);
    return 1;
}

long IsShortcutZV(ZVEnumObjectS const* object)
{
    return object && object->IsAlias;
}

long CompareShellFoldersZV(ZVShellFolderS const* a, ZVShellFolderS const* b)
{
    if (!a || !b) return a == b;
    return a->directory == b->directory;
}
