// Icons drawn in a context.
#include "ZVDraw.h"
#include "ZVEnvironment.h"
#include "ZVIcon.h"

void DrawImageZV(ZVDrawInfo* draw, unsigned short icon, long x, long y)
{
    ZVBitmap const* const picture = draw ? FindIconZV(icon) : nullptr;
    if (!picture) return;
    ZVNativeBitmap* const composed = AllocNativeBitmapZV(picture->Width, picture->Height, SuggestedDepthZV());
    if (!composed) return;
    AlphaCopyBitmapZV(picture, composed, ZV_PEN_PALETTE, 0, 0, picture->Width, picture->Height, 0, 0);
    DrawBitmapZV(draw, composed, x, y);
    FreeBitmapZV(composed);
}
