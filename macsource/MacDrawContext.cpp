// Draw contexts: begun, set up and ended, and what stands around every primitive.
#include "MacDraw.h"
#include "ZVLibInternal.h"

#include "interface/Records.h"

#include <new>

// ---- contexts ---------------------------------------------------------------------------------------------

static ZVPortColor To_Port_Color(unsigned long colour)
{
    auto const word = static_cast<uint32_t>(GetColorZV(colour));
    auto const wide = [word](int shift) { return static_cast<uint16_t>((word >> shift & 0xFF) * 257); };
    return {wide(16), wide(8), wide(0)};
}

static uint32_t To_Color(ZVPortColor const& color)
{
    return (color.red >> 8 << 16) | (color.green >> 8 << 8) | color.blue >> 8;
}

ZVDrawInfo* Begin_Drawing(ZVPort* port, ZVDevice* device, long originX, long originY)
{
    if (!ZVEnv || !port) return nullptr;
    auto* const draw = New_Record<ZVDrawInfo>();
    if (!draw) {
        port->isIncomplete = true;
        return nullptr;
    }
    draw->OriginX = static_cast<int32_t>(originX);
    draw->OriginY = static_cast<int32_t>(originY);
    draw->Port = port;
    draw->Device = device;
    draw->Clip = {-32767, -32767, 32767, 32767};
    SetBGPenZV(draw, ZV_PEN_PALETTE);
    SetPenZV(draw, ZV_PEN_TEXT);
    return draw;
}

ZVDrawInfo* DrawBeginZV(ZVNativeBitmap* bitmap)
{
    return bitmap ? Begin_Drawing(bitmap->World, nullptr, 0, 0) : nullptr;
}

void DrawEndZV(ZVDrawInfo* draw)
{
    if (!draw) return;
    draw->Port->state = {};
    RevertDraw(draw);
    FreeMemZV(draw);
}

void SetPenZV(ZVDrawInfo* draw, unsigned long colour)
{
    if (draw) draw->ForeColor = To_Port_Color(colour);
}

void SetBGPenZV(ZVDrawInfo* draw, unsigned long colour)
{
    if (draw) draw->BackColor = To_Port_Color(colour);
}

void SetTextTransparencyZV(ZVDrawInfo* draw, long isTransparent)
{
    if (draw) draw->TextTransparent = isTransparent ? 1 : 0;
}

static void Choose_Font(ZVDrawInfo* draw, FontChoice const& choice)
{
    if (!draw) return;
    draw->Font = choice.number;
    draw->FontObject = choice.object;
    draw->Port->state.font = choice;
}

void SetFontZV(ZVDrawInfo* draw, unsigned short font)
{
    Choose_Font(draw, {font, nullptr});
}

void SetFontZV(ZVDrawInfo* draw, ZVFont* font)
{
    Choose_Font(draw, {font ? ZV_FONT_EXPLICIT : ZV_FONT_INTERFACE, font});
}

void SetClipRectZV(ZVDrawInfo* draw, long x, long y, long w, long h)
{
    if (!draw) return;
    HostRect const rect = Placed(*draw).Box(x, y, w, h);
    auto const narrow = [](int value) { return static_cast<int16_t>(value); };
    draw->Clip = {narrow(rect.top), narrow(rect.left), narrow(rect.bottom), narrow(rect.right)};
}

// ---- ports ------------------------------------------------------------------------------------------------

void ReadyDraw(ZVDrawInfo* draw)
{
    if (!draw) return;
    ZVEnv->savedPort = Current_Port();
    Make_Current(draw->Port);
}

void RevertDraw(ZVDrawInfo* draw)
{
    if (draw) Make_Current(static_cast<ZVPort*>(ZVEnv->savedPort));
}

static void Clip_Port(ZVDrawInfo& draw)
{
    HostSurface& surface = draw.Port->surface;
    HostRect const clip{draw.Clip.left, draw.Clip.top, draw.Clip.right, draw.Clip.bottom};
    bool const isWhole = Intersection(clip, surface.Bounds()) == surface.Bounds();
    if (isWhole && surface.Is_Unclipped()) return;  // as most contexts are
    if (!draw.SavedClip) draw.SavedClip = new ZVRegion{surface.Clip()};
    surface.Set_Clip(HostRegion(clip));
}

void Set_ClipRegion(ZVDrawInfo* draw)
{
    if (draw) Guarded([=] { Clip_Port(*draw); });
}

void Revert_ClipRegion(ZVDrawInfo* draw)
{
    if (!draw || !draw->SavedClip) return;
    draw->Port->surface.Set_Clip(std::move(draw->SavedClip->region));
    delete draw->SavedClip;
    draw->SavedClip = nullptr;
}

// ---- the frame of a primitive -----------------------------------------------------------------------------

PrimitiveFrame::PrimitiveFrame(ZVDrawInfo* draw) : Placed(*draw), draw_(draw), saved_(draw->Port->state)
{
    Clip_Port(*draw);  // ahead of what the end puts back, as it may find no memory
    ReadyDraw(draw);
    draw->Port->state = {To_Color(draw->ForeColor),
                         To_Color(draw->BackColor),
                         {draw->Font, draw->FontObject},
                         draw->TextTransparent != 0};
}

PrimitiveFrame::~PrimitiveFrame()
{
    Revert_ClipRegion(draw_);
    draw_->Port->state = saved_;
    RevertDraw(draw_);
}
