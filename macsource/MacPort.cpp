#include "MacPort.h"

#include "ZVLibInternal.h"

#include <array>
#include <new>

static ZVPort* currentPort;

ZVPort* Current_Port()
{
    return currentPort;
}

void Make_Current(ZVPort* port)
{
    currentPort = port;
}

ZVPort* Make_SysPort(unsigned char* pixels, long width, long height, long depth, long rowBytes)
{
    std::unique_ptr<HostSurface> surface(
        new (std::nothrow) HostSurface(pixels, static_cast<int>(width), static_cast<int>(height),
                                       static_cast<int>(depth), static_cast<int>(rowBytes)));
    auto* const port = surface ? new (std::nothrow) ZVPort{*surface, {}, nullptr, nullptr} : nullptr;
    if (!port) return nullptr;
    port->ownSurface = std::move(surface);
    port->pixels.reset(pixels);
    return port;
}

void Free_SysPort(ZVPort* port)
{
    delete port;
}

void ZVPort::Frame(HostRect const& rect)
{
    if (rect.IsEmpty()) return;
    Fill(std::array{HostRect{rect.left, rect.top, rect.right, rect.top + 1},
                    HostRect{rect.left, rect.bottom - 1, rect.right, rect.bottom},
                    HostRect{rect.left, rect.top, rect.left + 1, rect.bottom},
                    HostRect{rect.right - 1, rect.top, rect.right, rect.bottom}});
}

void ZVPort::Draw_Text(std::string_view text, int x, int y)
{
    TextFont const font = Find_Font(state.font);
    int const baseLine = y + static_cast<int>(font.Ascent());
    if (!state.isTextTransparent) {
        int const right = x + static_cast<int>(font.Width(text));
        Erase({x, y, right, baseLine + static_cast<int>(font.Descent())});
    }
    font.Draw(surface, text, x, baseLine, state.foreColor);
}
