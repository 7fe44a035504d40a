// The menu gadget: a small button that opens a menu beside itself. The id of the entry that is chosen becomes
// its state.
#include "PressGadget.h"

#include "ZVEnvironment.h"
#include "ZVLibInternal.h"
#include "interface/PaletteTree.h"

#include <utility>

namespace {

constexpr long side = 16;

/// The arrow's pen, while the gadget is not pressed.
constexpr unsigned long ArrowPen = 0xFF00000D;

void Draw_Arrow(ZVDrawInfo* draw, ZVItem const& item)
{
    long const x = (item.width - 4) / 2, y = (item.height - 7) / 2;
    SetPenZV(draw, Shown_Color(item.pressed ? 0 : ArrowPen, Is_Disabled(item)));
    for (long i = 0; i < 4; ++i)
        DrawLineZV(draw, x + i, y + i, x + i, y + 6 - i);
}

void Draw(ZVItem* item)
{
    DrawContext const draw(DrawBeginZV(item));
    if (!draw) return;
    SetPenZV(draw.get(), Shown_Color(ZV_PEN_FACE, Is_Disabled(*item)));
    FillRectZV(draw.get(), 0, 0, item->height - 1, item->height - 1);
    Draw_Bevel(draw.get(), 0, 0, item->width, item->height, item->pressed, false);
    Draw_Arrow(draw.get(), *item);
}

/// Opens the menu at the gadget's upper right corner. The palette may be closed while it is open.
void Open_Menu(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    auto* const menu = reinterpret_cast<ZVMenu*>(item->selected);
    if (!menu) return;
    LivingPalette const watch(item->group->palette);
    long x = 0, y = 0;
    GetItemScreenPosZV(item, &x, &y);
    ZVMenu const* const chosen = Select_From_Menu(menu, x + item->width, y);
    if (!watch.Is_There()) return;
    if (chosen) {
        item->state = static_cast<int32_t>(chosen->node.id);
        item->realValue = item->state;
        Report_Use(event, ZV_MOD_RELEASE);
    }
    item->pressed = 0;
    UpdateGadgetZV(item);
}

void Press(ZVCustomEvent* event)
{
    if (Is_Disabled(*event->item)) return;
    event->item->pressed = 1;
    Draw(event->item);
    Open_Menu(event);
}

}  // namespace

long MenuGadCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    switch (event->type) {
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE:
    case ZV_CUSTOM_DRAW_DISABLED: Draw(item); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event); break;
    case ZV_CUSTOM_MOUSE_UP:
        if (std::exchange(item->pressed, 0)) Draw(item);
        break;
    case ZV_CUSTOM_SET_SIZE: item->width = item->height = side; break;
    default: break;
    }
    return 1;
}
