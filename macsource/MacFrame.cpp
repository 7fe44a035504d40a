#include "MacFrame.h"

#include "ZVLibInternal.h"

#include <array>

uint32_t Toward_Grey(uint32_t color)
{
    uint32_t grey = 0;
    for (int shift : {16, 8, 0}) {
        int const component = static_cast<int>(color >> shift & 0xFF) * 257;
        grey |= static_cast<uint32_t>(component - (component - 32768) / 2) >> 8 << shift;
    }
    return grey;
}

static void Draw_Frame(ZVPort& port, HostRect const& rect, uint32_t upper, uint32_t lower)
{
    auto const [left, top, right, bottom] = rect;
    port.surface.Fill(std::array{HostRect{left, top, right, top + 1}, HostRect{left, top, left + 1, bottom}},
                      upper);
    // The light edges end below and beside the dark ones.
    port.surface.Fill(std::array{HostRect{right - 1, top + 1, right, bottom},
                                 HostRect{left + 1, bottom - 1, right, bottom}},
                      lower);
}

static unsigned long Lower_Pen()
{
    return ZVEnv->style->flat3D ? ZV_PEN_LIGHT_EDGE : ZV_PEN_DARK_EDGE;
}

void FrameRect3D(ZVPort& port, HostRect const& rect)
{
    Draw_Frame(port, rect, Pen_Color(ZV_PEN_DARK_EDGE), Pen_Color(Lower_Pen()));
}

void FrameRect3DInv(ZVPort& port, HostRect const& rect)
{
    Draw_Frame(port, rect, Toward_Grey(Pen_Color(ZV_PEN_DARK_EDGE)), Toward_Grey(Pen_Color(Lower_Pen())));
}

void EmbossRect3D(ZVPort& port, HostRect const& rect)
{
    FrameRect3D(port, Outset(rect, 1));
}

void EmbossRect3DInv(ZVPort& port, HostRect const& rect)
{
    FrameRect3DInv(port, Outset(rect, 1));
}
