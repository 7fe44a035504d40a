// Icons drawn in a context.
#include "MacDraw.h"
#include "ZVEnvironment.h"
#include "ZVIcon.h"

ZVNativeBitmap* Compose_Image(ZVBitmap const& picture)
{
    ZVNativeBitmap* const composed = AllocNativeBitmapZV(picture.Width, picture.Height, SuggestedDepthZV());
    if (!composed && GetErrorZV() == ZV_ERR_MEMORY) throw std::bad_alloc();
    if (!composed) return nullptr;
    FillBitmapZV(composed, ZV_PEN_PALETTE);  // for the pad bytes, which blending leaves alone
    AlphaCopyBitmapZV(&picture, composed, ZV_PEN_PALETTE, 0, 0, picture.Width, picture.Height, 0, 0);
    return composed;
}

void DrawImageZV(ZVDrawInfo* draw, unsigned short icon, long x, long y)
{
    ZVBitmap const* const picture = draw ? FindIconZV(icon) : nullptr;
    if (!picture) return;
    Paint(draw->Port, [&] {
        ZVNativeBitmap* const composed = Compose_Image(*picture);
        DrawBitmapZV(draw, composed, x, y);
        FreeBitmapZV(composed);
    });
}
