// The table of position codes.
#include "ZVLibInternal.h"

/// One half of a code on its axis: a reference and a parent, each with start and length, and the own size.
static long Place(unsigned long half, long reference, long length, long parent, long parentLength, long size,
                  long gap)
{
    switch (half) {
    case ZV_POS_BEFORE: return reference - gap - size;
    case ZV_POS_AFTER: return reference + length + gap;
    case ZV_POS_CENTER: return parent + (parentLength - size) / 2;
    case ZV_POS_ALIGN_CENTER: return reference + (length - size) / 2;
    case ZV_POS_ALIGN_END: return reference + length - size;
    case ZV_POS_ON_START: return reference - size / 2;
    case ZV_POS_ON_END: return reference + length - size / 2;
    case ZV_POS_PARENT_START: return parent;
    case ZV_POS_PARENT_END: return parent + parentLength - size;
    default: return reference;
    }
}

void GetElementPlacement(unsigned long code, ZVRectT<long> const* own, ZVRectT<long> const* reference,
                         ZVRectT<long> const* parent, long gap, long* x, long* y)
{
    *x = Place(code & 0xFF, reference->x, reference->width, parent->x, parent->width, own->width, gap);
    *y =
        Place(code >> 8 & 0xFF, reference->y, reference->height, parent->y, parent->height, own->height, gap);
}
