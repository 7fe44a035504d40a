// Icons: found in the environment's list, or taken into it from the application's resources.
#include "IconList.h"

#include "ZVLibInternal.h"

#include "foundation/HeapBlock.h"

#include <new>

namespace {

/// An icon; the node's id is its number.
struct Icon {
    ::Node Node;
    ZVBitmap* Bitmap;  ///< owned
};

using NativeBlock =
    std::unique_ptr<ZVNativeBitmap, Released_By<static_cast<void (*)(ZVNativeBitmap*)>(FreeBitmapZV)>>;

Icon* First_Icon()
{
    return reinterpret_cast<Icon*>(List_First(&ZVEnv->icons));
}

Icon* Next_Icon(Icon const* icon)
{
    return reinterpret_cast<Icon*>(List_Next(&icon->Node));
}

}  // namespace

ZVBitmap* Add_Icon(unsigned long id, ZVBitmap* bitmap)
{
    void* const block = Alloc_Aligned(sizeof(Icon), alignof(Icon));
    if (!block) {
        FreeBitmapZV(bitmap);
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    auto* const icon = new (block) Icon{{}, bitmap};
    icon->Node.id = static_cast<uint32_t>(id);
    AddTail(&ZVEnv->icons, &icon->Node);
    return bitmap;
}

ZVBitmap* FindIconZV(unsigned long id)
{
    if (id == 0 || !ZVEnv) return nullptr;
    for (Icon const* icon = First_Icon(); icon; icon = Next_Icon(icon))
        if (icon->Node.id == id && icon->Bitmap) return icon->Bitmap;
    NativeBlock const image(GetImageZV(id));
    if (!image) return nullptr;
    ZVBitmap* const bitmap = AllocBitmapZV(image->Width, image->Height, ZV_BITMAP_RGBA8, "icon");
    if (!bitmap) return nullptr;
    CopyBitmapZV(image.get(), bitmap, 0, 0, -1, -1, 0, 0);
    return Add_Icon(id, bitmap);
}

void CleanupIconList()
{
    while (Icon* const icon = First_Icon()) {
        FreeBitmapZV(icon->Bitmap);
        FreeNode(&icon->Node);
    }
}
