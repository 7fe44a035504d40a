// Drawing on pixels that the caller owns, inside a clip. Colours are words 0xRRGGBB. A pixel of 32 bits holds
// the word with 0xFF on top; one of 16 bits has five bits of red, green and blue from bit 10 down, and a
// field becomes a component shifted left by 3; one of 8 bits is a grey, which a colour becomes by its
// brightness (77 red + 150 green + 29 blue, over 256, rounded). Coordinates and sizes lie within 24 bits.
#pragma once

#include "Mask.h"
#include "Region.h"

#include <cstdint>
#include <span>

class HostSurface {
public:
    /// @param pixels    kept; aligned to 4 bytes
    /// @param depth     8, 16 or 32
    /// @param rowBytes  a multiple of 4
    HostSurface(unsigned char* pixels, int width, int height, int depth, int rowBytes);

    HostRect Bounds() const { return {0, 0, width_, height_}; }

    /// What limits all drawing below, inside the bounds. A new surface has the bounds.
    HostRegion const& Clip() const { return clip_; }
    void Set_Clip(HostRegion clip);
    bool Is_Unclipped() const { return clip_.Box_Count() == 1 && clip_.Bounds() == Bounds(); }

    void Fill(HostRect const& rect, uint32_t color);

    /// Fills rectangles that belong together, the runs of one shape. They may overlap.
    void Fill(std::span<HostRect const> rects, uint32_t color);

    /// Copies a rectangle of another surface, or of this one, with its upper left corner to x, y. What of it
    /// lies outside the source is left out. Copies within one surface may overlap.
    void Blit(HostSurface const& source, HostRect const& from, int x, int y);

    /// Copies `from` scaled to `to`: a pixel takes the one in the source under its upper left corner, and
    /// stays as it is when that lies outside the source.
    void Stretch(HostSurface const& source, HostRect const& from, HostRect const& to);

    /// Blends a colour over the pixels by coverage, with the mask's origin at x, y: each component, or field
    /// of a 16-bit pixel, becomes (color * coverage + pixel * (255 - coverage)) / 255, rounded.
    void Blend(HostMask const& mask, int x, int y, uint32_t color);

    /// The pixel's colour. False outside the clip.
    bool Read(int x, int y, uint32_t& color) const;
    void Write(int x, int y, uint32_t color) { Fill(HostRect{x, y, x + 1, y + 1}, color); }

    /// While it is quiet nothing is drawn: what would be comes again anyway.
    void Set_Quiet(bool isQuiet) { isQuiet_ = isQuiet; }

    /// From now on gathers the rectangles that drawing changed, for whoever shows the surface.
    void Track_Touched() { isTracking_ = true; }
    void Touch_All() { touched_ = HostRegion(Bounds()); }

    /// What was gathered since the last call; a few pixels more when it falls into very many pieces.
    HostRegion Take_Touched();

private:
    template <typename Visit> void Visit_Clip(HostRect const& rect, Visit&& visit) const;
    void Touch(HostRect const& rect);
    void Fill_Box(HostRect const& box, uint32_t pixel);
    void Copy_Box(HostSurface const& source, HostRect const& box, int dx, int dy);
    bool Shares_Memory(HostSurface const& other) const;
    unsigned char* Address(int x, int y) const;

    unsigned char* pixels_;
    int width_, height_, depth_, rowBytes_;
    HostRegion clip_;
    HostRegion touched_;
    HostRect lastTouched_;  // a part of it
    bool isTracking_ = false;
    bool isQuiet_ = false;
};
