// Pictures in the resources of the application: those of its program file.
#include "ZVLibInternal.h"

#include "files/ResourceFile.h"
#include "foundation/HeapBlock.h"

#include <climits>
#include <cstdlib>

namespace {

constexpr uint32_t pictureType = ZV_FourCC("PICT");

/// The bytes of a resource.
struct ResourceBytes {
    HeapBlock<unsigned char> bytes;
    long size = 0;
};

bool Program_Spec(char* spec)
{
    FSSpec program;
    static_assert(sizeof program.path >= PATH_MAX);
    return realpath("/proc/self/exe", program.path) && GetDOSPathZV(spec, &program) == 0;
}

/// Empty when the program has no such resource.
ResourceBytes Read_Resource(uint32_t type, long id)
{
    char spec[ZV_SPEC_SIZE];
    auto const file = Program_Spec(spec) ? ZVResourceFile::Open(spec, ZVFilePermRead) : nullptr;
    ResourceEntry const* const entry = file ? file->Find_ID(type, id) : nullptr;
    int64_t const size = entry ? file->Size(*entry) : 0;
    ResourceBytes resource;
    if (size <= 0) return resource;
    resource.bytes.reset(static_cast<unsigned char*>(
        Alloc_Aligned(static_cast<unsigned long>(size), alignof(std::max_align_t))));
    if (!resource.bytes) {
        SetError(ZV_ERR_MEMORY);
        return resource;
    }
    if (file->Read(*entry, resource.bytes.get())) resource.size = static_cast<long>(size);
    return resource;
}

/// Draws a picture in its own size.
ZVNativeBitmap* Draw_Image(ResourceBytes const& /*picture*/)
{
    // FIXME: there is no picture player yet. Done when the bytes are drawn into a native bitmap of 32 bits.
    return nullptr;
}

}  // namespace

ZVNativeBitmap* GetImageZV(unsigned long id)
{
    // Ids of resources are 16 bits with a sign.
    if (id > INT16_MAX && static_cast<long>(id) < INT16_MIN) return nullptr;
    ResourceBytes const picture = Read_Resource(pictureType, static_cast<long>(id));
    return picture.size > 0 ? Draw_Image(picture) : nullptr;
}
