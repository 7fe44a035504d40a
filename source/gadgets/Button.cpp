// Buttons, toggles and radios. A press arms the gadget, moving off it disarms it, and a release on it acts.
// A member of an exclusion set acts on the press.
#include "PressGadget.h"

#include "ZVEnvironment.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <utility>

namespace {

/// A toggle with this user data opens something: a triangle at its right edge tells so.
constexpr unsigned long opensSomething = 1;

constexpr long textMargin = 6;  ///< of a text at the left

/// An icon and what shows through it.
struct Face {
    ZVBitmap const* icon;
    unsigned long background;
};

Face Icon_Face(ZVItem const& item)
{
    if (!item.state) return {item.image, ZV_PEN_FACE};
    if (item.imageOff) return {item.imageOff, ZV_PEN_FACE};
    return {item.image, Face_Color(item, true)};
}

/// Where a picture of a size lies along a room: centred, or with its middle in sight when it is larger.
struct Fit {
    long from, to, length;

    Fit(long room, long size)
        : from(size > room ? (size - room) / 2 : 0), to(size > room ? 0 : (room - size + 1) / 2),
          length(std::min(room, size))
    {
    }
};

void Draw_Icon(ZVDrawInfo* draw, ZVItem const& item, bool isDisabled)
{
    auto const [icon, background] = Icon_Face(item);
    long const width = item.width - 4, height = item.height - 4;
    if (width < 1 || height < 1) return;
    Bitmap const colored = item.hasImageColor ? Colored_Icon(*icon, item.imageColor) : nullptr;
    ZVBitmap const& shown = colored ? *colored : *icon;
    NativeBitmap const picture(AllocNativeBitmapZV(width, height, 32));
    if (!picture) return;

    Fit const x(width, shown.Width), y(height, shown.Height);
    if (shown.Width != width || shown.Height != height) FillBitmapZV(picture.get(), GetColorZV(background));
    AlphaCopyBitmapZV(&shown, picture.get(), background, x.from, y.from, x.length, y.length, x.to, y.to);
    if (isDisabled) DisableBitmapZV(picture.get(), nullptr);
    DrawBitmapZV(draw, picture.get(), 2, 2);
}

/// Width of the strip that marks a radio at its right edge.
long Strip_Width(ZVItem const& item)
{
    return item.type == ZV_GAD_RADIO ? ZVEnv->style->gadgetSizes.size3 / 10 : 0;
}

unsigned long Strip_Color(unsigned long face)
{
    unsigned long const colour = GetColorZV(face);
    auto const darker = [&](int shift) { return (colour >> shift & 0xFF) * 800 / 1000 << shift; };
    return darker(16) | darker(8) | darker(0);
}

void Draw_Face(ZVDrawInfo* draw, ZVItem const& item, unsigned long face, bool isDisabled)
{
    long const right = item.width - 1, bottom = item.height - 1;
    SetPenZV(draw, face);
    FillRectZV(draw, 0, 0, right, bottom);
    long const strip = Strip_Width(item);
    if (strip > 0) {
        SetPenZV(draw, Strip_Color(face));
        FillRectZV(draw, item.width - strip, 0, right, bottom);
    }
    Draw_Bevel(draw, 0, 0, item.width, item.height, item.state, isDisabled);
    if (strip > 0) {
        SetPenZV(draw, Shown_Color(ZV_PEN_DARK_EDGE, isDisabled));
        DrawLineZV(draw, item.width - strip, 0, item.width - strip, bottom);
    }
}

bool Opens_Something(ZVItem const& item)
{
    return item.type == ZV_GAD_TOGGLE && item.userData == opensSomething;
}

void Draw_Triangle(ZVDrawInfo* draw, ZVItem const& item)
{
    for (long i = 0; i < 5; ++i) {
        long const x = item.width - 10 + i, middle = item.height / 2;
        DrawLineZV(draw, x, middle - 4 + i, x, middle + 4 - i);
    }
}

long Text_Left(ZVDrawInfo const* draw, ZVItem const& item, long centred)
{
    long x = centred;
    if (Opens_Something(item) || FindTagItem(ZV_ITEM_TEXT_LEFT, item.tags))
        x = textMargin;
    else if (FindTagItem(ZV_ITEM_TEXT_RIGHT, item.tags))
        x = item.width - GetTextWidthZV(draw, item.text) - 2;
    if (item.type == ZV_GAD_RADIO) x = std::min(x, textMargin);
    return std::max(x, 4L);
}

void Draw_Label(ZVDrawInfo* draw, ZVItem const& item, unsigned long face, bool isDisabled)
{
    SetPenZV(draw, Shown_Color(ZV_PEN_TEXT, isDisabled));
    SetBGPenZV(draw, face);
    SetFontZV(draw, GetItemFont(&item));
    if (Opens_Something(item)) {
        Draw_Triangle(draw, item);
        if (item.state) SetFontZV(draw, ZV_FONT_ITALIC);
    }
    if (!item.text) return;
    long const strip = Strip_Width(item), right = strip > 0 ? item.width - strip : item.width - 2;
    long x = 0;
    CenterTextZV(draw, item.text, 0, 0, item.width - strip, item.height, &x, nullptr);
    long const top = Text_Top(draw, item.height);
    SetTextTransparencyZV(draw, 1);
    // Most texts have room enough, and a clip costs time.
    if (x < textMargin || top < 2) SetClipRectZV(draw, 2, 2, right - 2, item.height - 4);
    DrawTextZV(draw, item.text, Text_Left(draw, item, x), top);
}

void Draw_Button(ZVItem* item, bool isDisabled)
{
    DrawContext const draw(DrawBeginZV(item));
    if (!draw) return;
    if (item->image && !item->text) {
        Draw_Bevel(draw.get(), 0, 0, item->width, item->height, item->state, isDisabled);
        Draw_Icon(draw.get(), *item, isDisabled);
        return;
    }
    unsigned long const face = Shown_Color(Face_Color(*item, item->state), isDisabled);
    Draw_Face(draw.get(), *item, face, isDisabled);
    Draw_Label(draw.get(), *item, face, isDisabled);
}

/// The border alone: of the state, or armed, which looks like the state that a release would bring.
void Draw_Border(ZVItem* item, bool isArmed)
{
    DrawContext const draw(DrawBeginZV(item));
    Draw_Bevel(draw.get(), 0, 0, item->width, item->height, isArmed != (item->state != 0), false);
}

void Press(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    if (Is_Disabled(*item)) return;
    if (item->type == ZV_GAD_BUTTON || !(item->flags & ZV_ITEMF_EXCLUSIVE)) {
        item->pressed = 1;
        Draw_Border(item, true);
        return;
    }
    if (!Holds_Its_State(*item)) {
        Set_State(*item, true);
        Report_Use(event, ZV_MOD_PRESS);
        Draw_Button(item, false);
    } else if (event->modifiers & ZV_MOD_DOUBLE_CLICK) {
        Report_Use(event, ZV_MOD_PRESS);
    }
}

void Release(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    if (!std::exchange(item->pressed, 0) || !Is_Inside(*item)) return;
    Report_Use(event, ZV_MOD_RELEASE);
    if (item->type == ZV_GAD_BUTTON) {
        Draw_Border(item, false);
        return;
    }
    if (!FindTagItem(ZV_ITEM_MOMENTARY, item->tags)) Set_State(*item, !item->state);
    Draw_Button(item, Is_Disabled(*item));
}

}  // namespace

long ButtonCustomFunc(ZVCustomEvent* event)
{
    ZVItem* const item = event->item;
    if (item->type != ZV_GAD_BUTTON && item->type != ZV_GAD_TOGGLE && item->type != ZV_GAD_RADIO) return 1;
    if (item->type == ZV_GAD_BUTTON) item->state = 0;
    switch (event->type) {
    case ZV_CUSTOM_DRAW:
    case ZV_CUSTOM_DRAW_STATE: Draw_Button(item, Is_Disabled(*item)); break;
    case ZV_CUSTOM_DRAW_DISABLED: Draw_Button(item, true); break;
    case ZV_CUSTOM_MOUSE_DOWN: Press(event); break;
    case ZV_CUSTOM_MOUSE_UP: Release(event); break;
    case ZV_CUSTOM_MOUSE_IN:
    case ZV_CUSTOM_MOUSE_OUT:
        if (item->pressed) Draw_Border(item, event->type == ZV_CUSTOM_MOUSE_IN);
        break;
    default: break;
    }
    return 1;
}
