// Looks that the plain gadgets share.
#include "PressGadget.h"

#include "ZVEnvironment.h"

Bitmap Colored_Icon(ZVBitmap const& icon, unsigned long colour)
{
    Bitmap copy(AllocBitmapZV(icon.Width, icon.Height, icon.Type, nullptr));
    if (!copy) return copy;
    CopyBitmapZV(&icon, copy.get(), 0, 0, icon.Width, icon.Height, 0, 0);
    FillColorZV(copy.get(), colour);
    return copy;
}

unsigned long Face_Color(ZVItem const& item, bool isOn)
{
    if (!isOn) return ZV_PEN_FACE;
    TagItem const* tag = FindTagItem(ZV_ITEM_COLOR, item.tags);
    return tag ? tag->data : static_cast<unsigned long>(ZV_PEN_FACE_ON);
}

void Draw_Bevel(ZVDrawInfo* draw, long x, long y, long w, long h, bool isSunken, bool isDisabled)
{
    if (isSunken)
        (isDisabled ? DrawIShineBorder2ZV : DrawIShineBorderZV)(draw, x, y, w, h);
    else
        (isDisabled ? DrawShineBorder2ZV : DrawShineBorderZV)(draw, x, y, w, h);
}
