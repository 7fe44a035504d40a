// Resources: blocks of bytes that a resource file holds by type, number and name. The file is a classic
// resource map, in the AppleDouble companion ._name that lies beside a file, or where there is none in the
// file itself. Each access stands for itself, so several files may be open at once, and different threads may
// use different ones.
#pragma once

#include "ZVTags.h"

/// A resource as it is shown to a callback. Data and name belong to the call that shows them and are gone
/// after it; the callback may write to the data, say to turn its byte order round.
struct ZVResource {
    void* Data;  ///< aligned for any type; never null
    char* Name;  ///< the bytes that the file has, in no particular encoding; empty without a name
    long ID;
    long Size;  ///< bytes at Data
};

using ZVResourceFunc = long (*)(ZVResource* resource, long data);  ///< The result is ignored.

/// Tags of EnumResourceIDZV. Data is a long.
enum ZVResourceTag : unsigned long {
    ZV_RESOURCE_RESERVED = 0x10000,  ///< accepted and not read
    ZV_RESOURCE_FIRST = 0x10001,     ///< first index, counted from 1; 1 when absent
    ZV_RESOURCE_LAST = 0x10002       ///< last index; that of the last resource when absent
};

class ZVResourceFile;

/// Opens a file's resources for reading. Close them with EndResourceAccessZV.
/// @return  null with the error number of the file layer; with error 7 when the file holds no resource map
/// that
///          makes sense
ZV_API ZVResourceFile* BeginResourceAccessZV(char const* spec);
ZV_API void EndResourceAccessZV(ZVResourceFile* file);

/// Number of resources of a type, which is a text of four characters. 0 for null.
ZV_API long NumResourceIDZV(ZVResourceFile* file, char const* type);

/// Shows the resources of a type to the callback one by one, in the order of the file's map. One that the
/// file cannot deliver whole is passed over.
/// @return  1; 0 for null
ZV_API long EnumResourceIDZV(ZVResourceFile* file, char const* type, ZVResourceFunc callback, long data,
                             TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest>
long EnumResourceIDZV(ZVResourceFile* file, char const* type, ZVResourceFunc callback, long data, Key first,
                      Rest... rest)
{
    return EnumResourceIDZV(file, type, callback, data, Tag_Array(first, rest...).data());
}
