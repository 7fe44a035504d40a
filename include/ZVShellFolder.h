// The file system as a tree of objects, for file browsers: volumes, directories, files, and links to them.
// What is hidden does not show: names that begin with a dot, and files that are marked invisible. Main thread
// only.
#pragma once

#include "ZVFileSpec.h"

/// Bits of ZVEnumObjectS::FinderFlags that are looked at.
enum ZVFinderFlag : uint16_t {
    ZV_FINDER_ALIAS = 0x8000,
    ZV_FINDER_INVISIBLE = 0x4000,
    ZV_FINDER_BUNDLE = 0x2000  ///< a directory that shows as one object
};

/// An object. It owns its texts. Free it with FreeEnumObjectZV.
struct ZVEnumObjectS {
    char* Volume;     ///< name of the volume
    char* Directory;  ///< spec of the directory that it lies in; of the volume itself for a volume
    char* AliasName;  ///< name of what a link leads to, or null
    long IsVolume;
    long IsAlias;    ///< a link, or a file with the alias bit
    long CanEnter;   ///< can be listed: a volume or directory, or a link to one
    long Resolved;   ///< Target has been worked out
    char* Target;    ///< spec of what a link leads to, else of the object itself
    long Time;       ///< of the last change, in seconds since 1 January 1970
    long long Size;  ///< bytes
    uint32_t Type;
    uint32_t Creator;
    uint16_t FinderFlags;
    void* Icon;         ///< kept by who draws the object; not owned
    char* DisplayName;  ///< for people, or null
    char* Name;
};

struct ZVShellFolderS;  ///< The state of a listing. It keeps no file open.

enum ZVSpecialFolder : long { ZV_FOLDER_ROOT = 0 };  ///< all volumes, then what lies on the desktop

/// Begins a listing. Free it with FreeShellFolderZV. A spec or object that cannot be listed gives the root, a
/// link what it leads to, a null object the desktop.
/// @return  null when memory runs out, and for a special folder other than the root
ZV_API ZVShellFolderS* EnumSpecialFileObjectsZV(ZVSpecialFolder folder);
ZV_API ZVShellFolderS* EnumFileObjectsZV(char const* spec);
ZV_API ZVShellFolderS* EnumFileObjectsZV(ZVEnumObjectS* object);
ZV_API void FreeShellFolderZV(ZVShellFolderS* folder);

/// The next object, or null at the end.
/// @param flags  receives 1 for something that can be entered, else 0; may be null
ZV_API ZVEnumObjectS* GetNextFileObjectZV(ZVShellFolderS* folder, unsigned long* flags);
ZV_API void FreeEnumObjectZV(ZVEnumObjectS* object);

/// Name to show; for a null object the desktop's. Buffers hold ZV_SPEC_SIZE bytes.
/// @return  1, or 0 for a null buffer
ZV_API long GetDisplayNameZV(ZVEnumObjectS const* object, char* buffer);
ZV_API long GetFullDisplayNameZV(ZVEnumObjectS* object, char* buffer);  ///< The object's spec.

/// Where an object is: for a link where it leads to, worked out at the first call; for null the desktop.
/// @return  1, or 0; a new spec, or null
ZV_API long GetFileSpecZV(ZVEnumObjectS* object, FSSpec* place);
ZV_API char* GetFileSpecZV(ZVEnumObjectS* object);

/// Each output may be null. The extension is the text behind the last dot of the name, or empty.
/// @param extension  ZV_SPEC_SIZE bytes
/// @return  0 for a null object, else 1
ZV_API long GetEnumObjectInfoZV(ZVEnumObjectS const* object, long* time, long long* size, unsigned long* type,
                                unsigned long* creator, char* extension);

ZV_API long IsShortcutZV(ZVEnumObjectS const* object);  ///< Non-zero for a link or alias.

/// 1 when both list the same directory, or both the root.
ZV_API long CompareShellFoldersZV(ZVShellFolderS const* a, ZVShellFolderS const* b);
