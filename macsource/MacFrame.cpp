#include "MacFrame.h"

#include "ZVLibInternal.h"

#include <array>

void Draw_Edges(ZVPort& port, HostRect const& rect, uint32_t upper, uint32_t lower)
{
    auto const [left, top, right, bottom] = rect;
    if (rect.IsEmpty()) return;
    port.surface.Fill(std::array{HostRect{left, top, left + 1, bottom}, HostRect{left, top, right, top + 1}},
                      upper);
    port.surface.Fill(
        std::array{HostRect{right - 1, top + 1, right, bottom}, HostRect{left, bottom - 1, right, bottom}},
        lower);
}

void Draw_Bevel(ZVPort& port, HostRect const& rect, uint32_t frame, uint32_t upper, uint32_t lower)
{
    Draw_Edges(port, rect, frame, frame);
    Draw_Edges(port, Outset(rect, -1), upper, lower);
}

void Draw_Raised_Edge(ZVPort& port, HostRect const& rect)
{
    Draw_Bevel(port, rect, Pen_Color(ZV_PEN_DARK_EDGE), Pen_Color(ZV_PEN_LIGHT_EDGE),
               Pen_Color(ZV_PEN_SHADOW));
}

/// The colour of a disabled frame: each component half way to the middle of its 16 bits.
static uint32_t Toward_Grey(uint32_t color)
{
    uint32_t grey = 0;
    for (int const shift : {16, 8, 0}) {
        int const component = static_cast<int>(color >> shift & 0xFF) * 257;
        grey |= static_cast<uint32_t>(component - (component - 32768) / 2) >> 8 << shift;
    }
    return grey;
}

static uint32_t Lower_Color()
{
    return Pen_Color(ZVEnv->style->flat3D ? ZV_PEN_LIGHT_EDGE : ZV_PEN_DARK_EDGE);
}

void FrameRect3D(ZVPort& port, HostRect const& rect)
{
    Draw_Edges(port, rect, Pen_Color(ZV_PEN_DARK_EDGE), Lower_Color());
}

void FrameRect3DInv(ZVPort& port, HostRect const& rect)
{
    Draw_Edges(port, rect, Toward_Grey(Pen_Color(ZV_PEN_DARK_EDGE)), Toward_Grey(Lower_Color()));
}

void EmbossRect3D(ZVPort& port, HostRect const& rect)
{
    FrameRect3D(port, Outset(rect, 1));
}

void EmbossRect3DInv(ZVPort& port, HostRect const& rect)
{
    FrameRect3DInv(port, Outset(rect, 1));
}
