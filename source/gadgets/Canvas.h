// Drawing a gadget off-screen, so that it comes on screen in one piece.
#pragma once

#include "foundation/HeapBlock.h"

#include "ZVBitmap.h"
#include "ZVDraw.h"
#include "ZVItem.h"

/// A bitmap of a gadget's size with a context on it. The context is null when there is no memory for it, and
/// for a gadget that cannot be drawn.
class GadgetCanvas {
public:
    explicit GadgetCanvas(ZVItem& item)
        : item_(item), bitmap_(AllocNativeBitmapZV(item.width, item.height, SuggestedDepthZV())),
          draw_(bitmap_ ? DrawBeginZV(bitmap_.get()) : nullptr)
    {
    }

    ZVDrawInfo* Context() const { return draw_.get(); }

    /// Copies what was drawn to the gadget.
    void Show()
    {
        ZVDrawInfo* const target = DrawBeginZV(&item_);
        DrawBitmapZV(target, bitmap_.get(), 0, 0);
        DrawEndZV(target);
    }

private:
    struct Free_Bitmap {
        void operator()(ZVNativeBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    };

    ZVItem& item_;
    std::unique_ptr<ZVNativeBitmap, Free_Bitmap> bitmap_;
    std::unique_ptr<ZVDrawInfo, Released_By<DrawEndZV>> draw_;
};
