// Pictures in the resources of the application: those of its program file.
#include "ZVLibInternal.h"

#include "clips/BitmapBlock.h"
#include "files/ResourceFile.h"
#include "foundation/HeapBlock.h"

#include <climits>
#include <cstdint>
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

/// The picture in its own size, in a native bitmap of 32 bits.
ZVNativeBitmap* Draw_Image(ResourceBytes const& picture)
{
    BitmapBlock const drawn(Decode_Picture(picture.bytes.get(), static_cast<unsigned long>(picture.size)));
    ZVNativeBitmap* const image = drawn ? AllocNativeBitmapZV(drawn->Width, drawn->Height, 32) : nullptr;
    if (image) CopyBitmapZV(drawn.get(), image, 0, 0, -1, -1, 0, 0);
    return image;
}

}  // namespace

ZVNativeBitmap* GetImageZV(unsigned long id)
{
    auto const number = static_cast<long>(id);
    if (number < INT16_MIN || number > INT16_MAX) return nullptr;  // no resource has such an id
    ResourceBytes const picture = Read_Resource(pictureType, number);
    return picture.size > 0 ? Draw_Image(picture) : nullptr;
}
