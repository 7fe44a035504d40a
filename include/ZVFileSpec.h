// File specs: the one way of naming a file, a heap text of the form Volume:\dir\file with a closing backslash
// on a directory. The volume Root is the root file system, so Root:\srv\a.mov is /srv/a.mov; mounts below
// /media, /run/media and /mnt are volumes under their own last name. A colon or backslash inside a native
// name stands in a spec as U+F03A or U+F05C. Work buffers for specs hold 1024 bytes: a longer name is not
// found. The pure text calls may run on any thread, the searches belong to the main thread.
#pragma once

#include "ZVFile.h"
#include "ZVTags.h"

inline constexpr long ZV_SPEC_SIZE = 1024;  ///< bytes of a buffer that takes a spec, a path or a name

/// A place in the file system, by its absolute native path.
struct FSSpec {
    char path[4096];
};
using FSRef = FSSpec;

/// Tags of MakeFileSpecValidateZV and ReadFileSpecZV.
enum ZVFileSpecTag : unsigned long {
    ZVFSV_AskUser = 2816,      ///< ask the user when the file cannot be found; data ignored
    ZVFSV_IsSequence = 2817,   ///< long*: receives whether the name is a sequence name
    ZVFSV_Frames = 2818,       ///< long*: the frame numbers that a sequence must have
    ZVFSV_DataValid = 2819,    ///< long*: receives whether all those frames exist
    ZVFSV_FrameCount = 2820,   ///< number of entries of ZVFSV_Frames
    ZVFSV_SearchPaths = 2821,  ///< char**: null-terminated array of specs to look in
    ZVFSV_UserLocated = 2822,  ///< long*: receives 1 when the user picked the file, else 0
    ZVFSV_SearchTree = 2823,   ///< search the trees below the paths; data ignored
    ZVFSV_NoCheck = 2824,      ///< make the spec and return it; data ignored
    ZVFSV_StoredPath = 2825    ///< char*, 512 bytes: receives the path as stored (ReadFileSpecZV only)
};

enum ZVIncFileSpec : uint8_t { ZVIncFileSpecUp = 0, ZVIncFileSpecDown = 1 };

/// Type and creator of a file.
struct ZVCreatorPair {
    uint32_t type;
    uint32_t creator;
};

/// A wanted extension, for mode 0 of MakeValidExtensionZV.
struct ZVExtension {
    char const* description;
    char const* extension;  ///< without dot
};

/// A spec from a spec or from a classic path such as Volume:dir:file. A text without a colon, or with a bar
/// ahead of it, stays as it is. Free it with FreeFileSpecZV. Null with error 1 when memory runs out, null for
/// null.
ZV_API char* MakeFileSpecZV(char const* path);
ZV_API char* CopyFileSpecZV(char const* spec);
ZV_API void FreeFileSpecZV(char* spec);

/// A new spec with an extension of up to four characters replaced, or the extension appended. A dot in the
/// name of a directory begins none.
ZV_API char* MakeNewFileSpecZV(char const* spec, char const* extension);

ZV_API char* GetFileNameZV(char const* spec, char* buffer);  ///< Text behind the last colon or backslash.

/// Text behind the last dot of the file name; an empty buffer and a null result without a dot.
ZV_API char* GetExtensionZV(char const* spec, char* buffer);

/// The directory part with its last separator; a text without any is copied whole. This call and the others
/// that fill a buffer of ZV_SPEC_SIZE leave it empty, with error 12 and a result of 0 or null, when the text
/// does not fit.
ZV_API long GetPathZV(char const* spec, char* buffer);

/// Cuts the text at its last dot, unless that is its first character.
ZV_API void TruncateExtensionZV(char* text);

ZV_API long FileSpecCompareZV(char const* a, char const* b);   ///< 1 when equal without case; 0 for null.
ZV_API char* FileSpecToDosZV(char* buffer, char const* spec);  ///< Copies the spec.
ZV_API void ConvertPathtoDOSZV(char* path);  ///< Classic path to spec in place; needs room for one more byte.

/// A spec in a buffer of ZV_SPEC_SIZE to its native path (`native` true) or its classic path, in place. A
/// result that does not fit leaves the text as it was.
ZV_API void ConvertDOStoPathZV(char* buffer, bool native);

/// The spec of a place, existing or not, with a closing backslash for a directory. Links, dots and doubled
/// slashes are taken out of the directory part; a link in the last place stays itself.
/// @param buffer  ZV_SPEC_SIZE bytes
/// @return  0; -1 for null, for a path that is not absolute and for one too long for a spec
ZV_API long GetDOSPathZV(char* buffer, FSSpec const* place);

/// The place that a spec names. 0 when it exists; -43 when only its directory does; -120 when that does not
/// either; -35 for an unknown volume; -1 for null, and for GetFSRefZV also when there is no colon.
ZV_API long GetFSSpecZV(char const* spec, FSSpec* out);
ZV_API long GetFSRefZV(char const* spec, FSRef* out);

ZV_API long FileExistsZV(char const* spec);  ///< 1 for a file or directory that is there.
ZV_API long DeleteFileZV(char const* spec);

/// Moves or renames a file; one that has the new name is replaced in one step. Between file systems the file
/// is copied with its attributes; a directory cannot be moved there.
ZV_API long RenameFileZV(char const* oldSpec, char const* newSpec);
ZV_API long CreateDirZV(char const* spec);  ///< 1 also for a directory that exists.

/// Removes the directory with all in it; links are not followed. The root of a file system is refused, with
/// nothing removed.
ZV_API long DeleteDirZV(char const* spec);

/// Type and creator of a file; four blanks each when they cannot be had.
/// From the attribute user.com.apple.FinderInfo, or by a small table of extensions without it.
ZV_API void Get_FileInfo(char const* spec, uint32_t* creator, uint32_t* type);

/// A new spec with a fitting extension. Mode 0: `what` is null (a copy) or a ZVExtension that is appended
/// unless the name has it. Any other mode: `what` is a ZVFormatDesc whose first extension replaces that of a
/// format the name belongs to; with `stripSequence` and a format of many frames, sequence numbering goes
/// first.
ZV_API char* MakeValidExtensionZV(char const* spec, long mode, void const* what, void* reserved,
                                  long stripSequence);

/// Makes a spec, tests that the file (or every frame of a sequence) is there, and searches for it by the
/// tags.
/// @return  the spec, that of the first frame for a sequence; null with error 12 when it is not found
ZV_API char* MakeFileSpecValidateZV(char const* spec, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
char* MakeFileSpecValidateZV(char const* spec, Key first, Rest... rest)
{
    return MakeFileSpecValidateZV(spec, Tag_Array(first, rest...).data());
}

/// Writes the stored form of an existing file's spec: length, path, and a zero byte that makes it even. A
/// path of more than 509 bytes, which could not be read back, is refused with error 12.
ZV_API long WriteFileSpecZV(ZVFileInfo* file, char const* spec);

/// Reads a stored spec and searches as MakeFileSpecValidateZV does. The file stands behind the record
/// afterwards, whatever happened; at its end when it holds less than the record claims. A stored alias cannot
/// be resolved here: such a record gives no spec of its own.
ZV_API char* ReadFileSpecZV(ZVFileInfo* file, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> char* ReadFileSpecZV(ZVFileInfo* file, Key first, Rest... rest)
{
    return ReadFileSpecZV(file, Tag_Array(first, rest...).data());
}

/// Takes a numbered name apart: the digits ahead of the last `delimiter` counted on (not below 0, width
/// kept), what stands before them and what follows. Buffers hold ZV_SPEC_SIZE bytes.
/// @return  `suffix`
ZV_API char* GetFileSpecNextNumber(char const* spec, char delimiter, ZVIncFileSpec direction, char* number,
                                   char* prefix, char* suffix);

/// Counting down over a power of ten (1000 to 0999): takes the leading zero off `name` unless that file
/// exists in `directory`.
ZV_API void ValidateFilenameNumber(char* name, ZVIncFileSpec direction, char const* number,
                                   char const* directory, char const* prefix, char const* suffix);

/// A new spec of the next name alone, by both of the above.
ZV_API char* ManageIncrementFileSpecZV(char const* spec, char delimiter, ZVIncFileSpec direction,
                                       char const* directory);

ZV_API long
isPondgateZV(char const* spec);  ///< 1 for a path on remote media storage: its extension is "pgt".

/// Directory part of a remote path: abc/def/ghi/jkl gives abcdef\ as the result.
ZV_API long GetPondGatePath(char* const& spec, char* buffer);
