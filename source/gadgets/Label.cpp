// The label: a text in a colour of its own, with nothing to press.
#include "PressGadget.h"
#include "ZVControl.h"
#include "ZVLibInternal.h"

namespace {

constexpr long leftMargin = 3, rightMargin = 2;

unsigned long Text_Color(ZVItem const& item)
{
    TagItem const* const tag = FindTagItem(ZV_ITEM_COLOR, item.tags);
    return tag ? tag->data : static_cast<unsigned long>(ZV_PEN_TEXT);
}

void Draw(ZVItem* item, bool isDisabled)
{
    DrawContext const context(DrawBeginZV(item));
    ZVDrawInfo* const draw = context.get();
    if (!draw) return;
    SetPenZV(draw, Shown_Color(ZV_PEN_PALETTE, isDisabled));
    FillRectZV(draw, 0, 0, item->width - 1, item->height - 1);
    if (!item->text) return;
    SetPenZV(draw, Shown_Color(Text_Color(*item), isDisabled));
    SetFontZV(draw, GetItemFont(item));
    SetTextTransparencyZV(draw, 1);
    long x = 0, y = 0;
    CenterTextZV(draw, item->text, 0, 0, item->width, item->height, &x, &y);
    if (FindTagItem(ZV_ITEM_TEXT_LEFT, item->tags)) x = leftMargin;
    if (FindTagItem(ZV_ITEM_TEXT_RIGHT, item->tags))
        x = item->width - GetTextWidthZV(draw, item->text) - rightMargin;
    DrawTextZV(draw, item->text, x, y);
}

}  // namespace

long ZVLib_LabelCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    bool const isDraw = event->type == ZV_CUSTOM_DRAW || event->type == ZV_CUSTOM_DRAW_STATE;
    if (event->type == ZV_CUSTOM_DRAW_DISABLED || (isDraw && !Is_Disabled(*item)))
        Draw(item, event->type == ZV_CUSTOM_DRAW_DISABLED);
    return 1;
}
