// Walks through directories: all files below some directories, and the files that meet some criteria. Names
// come in alphabetical order without regard to case. A link counts as what it leads to and keeps its own
// name; a directory that a walk has seen is not entered a second time through a link. Main thread only.
#pragma once

#include "ZVBase.h"

/// Called for a file.
/// @param spec  valid for the length of the call
/// @param type  the file type with its characters in memory order: the first one in the lowest byte
/// @param stop  set to non-zero, ends the enumeration
/// @return  not used
using ZVEnumFilesFunc = long (*)(char const* spec, unsigned long type, long data, long* stop);

/// Calls back for the files of directories. Names that begin with a dot or with byte 0xC2 are passed over,
/// and so is what lies 20 levels deep and deeper.
/// @param directories      null-terminated array of specs; one that cannot be found is passed over
/// @param types            null-terminated array of texts of four characters, or null for files of all types
/// @param recurse          non-zero: the directories below as well
/// @param maxDirectories   ends the enumeration when that many have been visited; 0 or less for no limit
/// @return  1
ZV_API long EnumFilesZV(char const* const* directories, char const* const* types, ZVEnumFilesFunc callback,
                        long data, long recurse, long maxDirectories);

/// Units of ZVSearchCriteria. Any other value is hours, or megabytes.
enum ZVDateUnit : uint8_t { ZV_DATE_DAYS = 2, ZV_DATE_MONTHS = 3, ZV_DATE_YEARS = 4 };
enum ZVSizeUnit : uint8_t { ZV_SIZE_BYTES = 1, ZV_SIZE_KILOBYTES = 2, ZV_SIZE_GIGABYTES = 4 };

/// What a search looks for. A month has 2628000 seconds, a year 31536000, a kilobyte 1024 bytes.
struct ZVSearchCriteria {
    char Directory[256] = "";  ///< spec of the directory to start in
    char Pattern[256] = "";    ///< must occur in the name, without regard to case; empty fits all
    uint8_t Recursive = 0;     ///< non-zero: the directories below as well
    uint8_t UseDate = 0;
    uint8_t Before = 0;  ///< non-zero: changed at least that long ago; zero: at most
    long DateAmount = 0;
    uint8_t DateUnit = 0;
    uint8_t UseSize = 0;
    uint8_t AtMost = 0;  ///< non-zero: no larger than the size; zero: no smaller
    long SizeAmount = 0;
    uint8_t SizeUnit = 0;
};

struct ZVFileFind;  ///< The state of a search. It keeps no file open.

/// Begins a search; the limits are worked out now. End it with EndFileFindZV.
/// @return  null for null, without memory and when the directory cannot be read
ZV_API ZVFileFind* InitFileFindZV(ZVSearchCriteria const* criteria);

/// The next file that fits. Links to directories are not followed; a tree of more than 50 levels ends the
/// search.
/// @param time  receives seconds since 1 January 1970, may be null
/// @param size  receives bytes, may be null
/// @return  a new spec, to be freed with FreeFileSpecZV; null at the end
ZV_API char* FindNextFileZV(ZVSearchCriteria const* criteria, ZVFileFind* find, long* time, long long* size);
ZV_API void EndFileFindZV(ZVFileFind* find);
