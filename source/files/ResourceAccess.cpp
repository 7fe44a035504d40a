// Resources as applications and plug-in scans see them: counted, and shown one by one.
#include "ResourceFile.h"

#include "ZVLibInternal.h"
#include "ZVResource.h"

#include "foundation/HeapBlock.h"

#include <algorithm>

static uint32_t Type_Code(char const* type)
{
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(*type ? *type++ : ' ');
    return code;
}

static long Number_Of(unsigned long tag, TagItem* tags, long absent)
{
    TagItem const* const item = FindTagItem(tag, tags);
    return item ? static_cast<long>(item->data) : absent;
}

/// Shows one resource. It is passed over when its bytes cannot be had.
static void Show_Resource(ZVResourceFile& file, ResourceEntry const& entry, ZVResourceFunc callback,
                          long data)
{
    int64_t const size = file.Size(entry);
    if (size < 0) return;
    HeapBlock<char> const bytes(static_cast<char*>(Alloc_Aligned(
        std::max<unsigned long>(static_cast<unsigned long>(size), 1), alignof(std::max_align_t))));
    if (!bytes || !file.Read(entry, bytes.get())) return;
    char name[256];
    name[entry.name.copy(name, sizeof name - 1)] = 0;
    ZVResource resource = {bytes.get(), name, entry.id, static_cast<long>(size)};
    callback(&resource, data);
}

ZVResourceFile* BeginResourceAccessZV(char const* spec)
{
    return ZVResourceFile::Open(spec, ZVFilePermRead).release();
}

void EndResourceAccessZV(ZVResourceFile* file)
{
    delete file;
}

long NumResourceIDZV(ZVResourceFile* file, char const* type)
{
    return file && type ? file->Count(Type_Code(type)) : 0;
}

long EnumResourceIDZV(ZVResourceFile* file, char const* type, ZVResourceFunc callback, long data,
                      TagItem* tags)
{
    if (!file || !type || !callback) return 0;
    uint32_t const code = Type_Code(type);
    long const count = file->Count(code);
    long const first = std::max(Number_Of(ZV_RESOURCE_FIRST, tags, 1), 1L);
    long const last = std::min(Number_Of(ZV_RESOURCE_LAST, tags, count), count);
    for (long index = first; index <= last; ++index)
        Show_Resource(*file, *file->Find(code, index), callback, data);
    return 1;
}
