// Check boxes, and round radios for gadgets that name the function. A press arms the gadget, and a release on
// it acts.
#include "PressGadget.h"

#include "ZVEnvironment.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <utility>

namespace {

/// Of a box with a label, whose area begins on the box's last column.
constexpr long boxWidth = 13;
constexpr long labelLeft = boxWidth - 1;

struct Look {
    bool isSunken;
    bool isDisabled;

    unsigned long Pen(unsigned long colour) const { return Shown_Color(colour, isDisabled); }
};

void Draw_Check_Mark(ZVDrawInfo* draw, long box, long height)
{
    long const x = (box - 11) / 2 + 2, top = (height - 11) / 2 + 2;
    for (long y = top; y < top + 3; ++y) {
        DrawLineZV(draw, x, y + 2, x + 2, y + 4);
        DrawLineZV(draw, x + 2, y + 4, x + 6, y);
    }
}

void Draw_Check_Label(ZVDrawInfo* draw, ZVItem const& item, Look look)
{
    bool const isColored = item.state && FindTagItem(ZV_ITEM_COLOR, item.tags);
    unsigned long const face = look.Pen(Face_Color(item, isColored));
    Draw_Bevel(draw, labelLeft, 0, item.width - labelLeft, item.height, look.isSunken, look.isDisabled);
    SetPenZV(draw, face);
    FillRectZV(draw, labelLeft + 2, 2, item.width - 3, item.height - 3);

    SetClipRectZV(draw, labelLeft + 2, 2, item.width - labelLeft - 4, item.height - 4);
    SetPenZV(draw, look.Pen(ZV_PEN_TEXT));
    SetBGPenZV(draw, face);
    SetFontZV(draw, GetItemFont(&item));
    SetTextTransparencyZV(draw, 1);
    long x = 0;
    CenterTextZV(draw, item.text, labelLeft + 2, 2, item.width - 16, item.height - 4, &x, nullptr);
    DrawTextZV(draw, item.text, std::clamp(x, 14L, 18L), 2 + Text_Top(draw, item.height - 4));
}

void Draw_Check(ZVDrawInfo* draw, ZVItem const& item, Look look)
{
    long const box = item.text ? boxWidth : item.width;
    Draw_Bevel(draw, 0, 0, box, item.height, look.isSunken, look.isDisabled);
    SetPenZV(draw, look.Pen(Face_Color(item, item.state)));
    FillRectZV(draw, 2, 2, box - 3, item.height - 3);
    if (item.state) {
        SetPenZV(draw, look.Pen(ZV_PEN_TEXT));
        Draw_Check_Mark(draw, box, item.height);
    }
    if (item.text) Draw_Check_Label(draw, item, look);
}

/// The ring inside the outline: one arc to the left and top, the other where 85 percent of the size end.
void Draw_Ring(ZVDrawInfo* draw, long size, Look look)
{
    auto const [upper, lower] = look.isSunken ? std::pair(ZV_PEN_SHADOW, ZV_PEN_LIGHT_EDGE)
                                              : std::pair(ZV_PEN_LIGHT_EDGE, ZV_PEN_SHADOW);
    ZVPortRect const clip = draw->Clip;
    SetPenZV(draw, look.Pen(lower));
    DrawEllipseZV(draw, 1, 1, size - 2, size - 2);
    SetClipRectZV(draw, 0, 0, size * 85 / 100, size * 85 / 100);
    SetPenZV(draw, look.Pen(upper));
    DrawEllipseZV(draw, 1, 1, size - 2, size - 2);
    draw->Clip = clip;
}

void Draw_Radio(ZVDrawInfo* draw, ZVItem const& item, Look look, bool withLabel)
{
    long const size = item.height;
    SetPenZV(draw, look.Pen(ZV_PEN_FACE));
    FillEllipseZV(draw, 0, 0, size - 1, size - 1);
    SetPenZV(draw, look.Pen(ZV_PEN_DARK_EDGE));
    DrawEllipseZV(draw, 0, 0, size - 1, size - 1);
    Draw_Ring(draw, size, look);
    SetPenZV(draw, look.Pen(ZV_PEN_TEXT));
    if (item.state && size > 8) FillEllipseZV(draw, 4, 4, size - 5, size - 5);
    if (!withLabel || !item.text) return;
    SetFontZV(draw, GetItemFont(&item));
    SetTextTransparencyZV(draw, 1);
    DrawTextZV(draw, item.text, size + 8, Text_Top(draw, size));
}

/// @param isWhole  the gadget's rectangle is erased first, and what never changes is drawn too
void Draw(ZVItem* item, Look look, bool isWhole)
{
    DrawContext const draw(DrawBeginZV(item));
    if (!draw) return;
    if (isWhole) EraseRectZV(draw.get(), 0, 0, item->width - 1, item->height - 1);
    if (item->type == ZV_GAD_RADIO)
        Draw_Radio(draw.get(), *item, look, isWhole);
    else
        Draw_Check(draw.get(), *item, look);
}

void Draw_Armed(ZVItem* item, bool isArmed)
{
    Draw(item, {isArmed, Is_Disabled(*item)}, false);
}

void Press(ZVCustomEvent* event)
{
    if (Is_Disabled(*event->item)) return;
    event->item->pressed = 1;
    Draw_Armed(event->item, true);
}

void Release(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    if (!std::exchange(item->pressed, 0)) return;
    if (Is_Inside(*item) && !Holds_Its_State(*item)) {
        Set_State(*item, !item->state);
        Report_Use(event, ZV_MOD_RELEASE);
    }
    Draw_Armed(item, false);
}

}  // namespace

long CheckRadioCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    switch (event->type) {
    case ZV_CUSTOM_DRAW: Draw(item, {false, Is_Disabled(*item)}, true); break;
    case ZV_CUSTOM_DRAW_STATE: Draw_Armed(item, false); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw(item, {false, true}, true); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event); break;
    case ZV_CUSTOM_MOUSE_IN:
    case ZV_CUSTOM_MOUSE_OUT:
        if (item->pressed) Draw_Armed(item, event->type == ZV_CUSTOM_MOUSE_IN);
        break;
    default: break;
    }
    return 1;
}
