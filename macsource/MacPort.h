// Ports: what windows and native bitmaps are painted through. All primitives have one implementation on top
// of them.
#pragma once

#include "MacText.h"
#include "ZVDraw.h"
#include "ZVEnvironment.h"
#include "foundation/Guard.h"
#include "foundation/HeapBlock.h"
#include "host/Surface.h"

#include <memory>

struct ZVRegion {
    HostRegion region;
};

/// What a primitive sets for itself and puts back.
struct PortState {
    uint32_t foreColor = 0;
    uint32_t backColor = 0xFFFFFF;
    FontChoice font;
    bool isTextTransparent = false;
};

struct ZVPort {
    HostSurface& surface;  ///< its clip is the port's
    PortState state;
    // Of a port that owns them: that of a native bitmap. A window's belong to the host.
    std::unique_ptr<HostSurface> ownSurface;
    HeapBlock<unsigned char> pixels;
    bool isIncomplete = false;  ///< something of it found no memory: all of it has to be drawn again

    void Fill(HostRect const& rect) { surface.Fill(rect, state.foreColor); }
    void Fill(std::span<HostRect const> rects) { surface.Fill(rects, state.foreColor); }
    void Erase(HostRect const& rect) { surface.Fill(rect, state.backColor); }
    void Frame(HostRect const& rect);  ///< An outline of one pixel inside the rectangle.

    /// Draws a text whose line begins at x with its ascent below y, on its background unless text is
    /// transparent.
    void Draw_Text(std::string_view text, int x, int y);
};

/// Does what is to be seen through a port. When memory runs out the rest is left out: false with error 1, and
/// the port is incomplete.
/// @param port  may be null
template <typename Work> bool Paint(ZVPort* port, Work&& work)
{
    bool const isWhole = Guarded([&] {
        work();
        return true;
    });
    if (!isWhole && port) port->isIncomplete = true;
    return isWhole;
}

/// Limits what is painted through a port to a rectangle, as long as it exists.
class PortClip {
public:
    PortClip(ZVPort& port, HostRect const& rect) : surface_(port.surface), saved_(surface_.Clip())
    {
        HostRegion narrowed = saved_;
        narrowed.Intersect(rect);
        surface_.Set_Clip(std::move(narrowed));
    }
    ~PortClip() { surface_.Set_Clip(std::move(saved_)); }
    PortClip(PortClip const&) = delete;
    PortClip& operator=(PortClip const&) = delete;

private:
    HostSurface& surface_;
    HostRegion saved_;
};

/// The colour that a pen has now, or a colour itself, as a port takes it; dimmed for what is disabled.
inline uint32_t Pen_Color(unsigned long colour, bool isDisabled = false)
{
    return static_cast<uint32_t>(isDisabled ? DisableColorZV(colour) : GetColorZV(colour)) & 0xFFFFFF;
}

/// The colour of a text that is out of use: half way from its own to that of its ground. The disabled colour
/// of a light text would get lost on a dark ground.
inline uint32_t Dimmed_Ink(uint32_t ink, uint32_t ground)
{
    return (ink & ground) + ((ink ^ ground) >> 1 & 0x7F7F7F);
}

/// The port that the platform draws in at present, or null.
ZVPort* Current_Port();
void Make_Current(ZVPort* port);
