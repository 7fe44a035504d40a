// A custom gadget: a swatch whose hue follows the mouse while it is dragged. It shows what a gadget of an
// application's own has to do: draw itself, enabled and disabled, answer a press, and report.
#include "Gallery.h"

#include <algorithm>
#include <utility>

/// Position 0 to 255 along the colours from red through green and blue.
static unsigned long Hue(long place)
{
    auto const ramp = [](long value) { return static_cast<unsigned long>(std::clamp(value, 0L, 255L)); };
    unsigned long const red = ramp(std::max(255 - 3 * place, 3 * place - 510));
    unsigned long const green = ramp(place < 128 ? 3 * place : 3 * (170 - place));
    unsigned long const blue = ramp(place < 170 ? 3 * (place - 85) : 3 * (255 - place));
    return red << 16 | green << 8 | blue;
}

static void Draw(ZVItem* item, bool isDisabled)
{
    ZVDrawInfo* const draw = DrawBeginZV(item);
    DrawIShineBorderZV(draw, 0, 0, item->width, item->height);
    SetPenZV(draw, isDisabled ? 0x808080 : Hue(item->state));
    FillRectZV(draw, 2, 2, item->width - 3, item->height - 3);
    DrawEndZV(draw);
}

/// Takes the place of the mouse over as the state. The event that follows tells the application.
static void Follow(ZVCustomEvent* event, uint32_t report)
{
    ZVItem* const item = event->item;
    long const last = std::max(item->width - 1, 1);
    SetGadgetStateZV(item, static_cast<double>(std::clamp<long>(event->x, 0, last) * 255 / last));
    event->replyType = ZV_EVENT_GADGET;
    event->replyData = Tag_Word(item);
    event->replyFlags = report;
}

long Swatch_Gadget(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    bool const isDisabled = item->flags & ZV_ITEMF_DISABLED;
    switch (event->type) {
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE: Draw(item, isDisabled); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw(item, true); break;
    case ZV_CUSTOM_MOUSE_DOWN:
        // The other button asks for the menu.
        if (isDisabled || ZVEnv->buttonState & ZV_MOD_CONTEXTUAL) break;
        item->pressed = 1;
        Follow(event, ZV_MOD_PRESS);
        break;
    case ZV_CUSTOM_MOUSE_MOVE:
        if (item->pressed) Follow(event, ZV_MOD_CHANGE);
        break;
    case ZV_CUSTOM_MOUSE_UP:
        if (std::exchange(item->pressed, 0)) Follow(event, ZV_MOD_RELEASE);
        break;
    case ZV_CUSTOM_MENU:
        if (!isDisabled) DisplayContextualMenuZV(Swatch_Menu());
        break;
    default: break;
    }
    return 1;
}
