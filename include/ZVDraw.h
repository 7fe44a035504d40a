// Drawing: a short-lived context binds a target, an origin, two pens, a font and a clip rectangle, and the
// primitives paint through it. A context lives within one event or callback; several may exist on one target.
// Main thread only. What finds no memory is left out with error 1; a window is drawn again for it later.
//
// Every call accepts a null context and does nothing then, so painting code needs no checks. Coordinates are
// those of the target; a primitive adds the context's origin and holds the sums within 16 signed bits.
// Painting is limited by the context's clip rectangle and by the target. A target of 16 bits keeps the upper
// five bits of each component, one of 8 bits is grey: a colour becomes its brightness.
#pragma once

#include "ZVBitmap.h"
#include "ZVTags.h"

struct ZVFont;
struct ZVDevice;  ///< the display that a window is on
struct ZVRegion;  ///< a set of pixels

/// A colour of a port, its bytes in both halves of each word.
struct ZVPortColor {
    uint16_t red, green, blue;
};

/// A rectangle of a port; right and bottom are excluded.
struct ZVPortRect {
    int16_t top, left, bottom, right;
};

/// Values of `Font`.
enum ZVStandardFont : uint32_t {
    ZV_FONT_INTERFACE = 0,
    ZV_FONT_SMALL = 1,
    ZV_FONT_ITALIC = 2,
    ZV_FONT_BOLD = 3,
    ZV_FONT_BOLD_ITALIC = 4,
    ZV_FONT_INTERFACE_2 = 5,  ///< the same as ZV_FONT_INTERFACE
    ZV_FONT_EXPLICIT = 6      ///< the one of FontObject
};

/// A draw context, made by DrawBeginZV and released by DrawEndZV.
struct ZVDrawInfo {
    int32_t OriginX;  ///< added to all coordinates
    int32_t OriginY;
    uint32_t Font;  ///< ZVStandardFont
    ZVPort* Port;
    ZVDevice* Device;  ///< null off-screen
    ZVPortColor ForeColor;
    ZVPortColor BackColor;
    int32_t TextTransparent;  ///< non-zero: text is drawn without its background
    ZVPortRect Clip;          ///< in coordinates of the port
    ZVRegion* SavedClip;      ///< the port's own clip while a primitive runs, else null
    ZVFont* FontObject;       ///< not owned; null unless Font is ZV_FONT_EXPLICIT
};

// ---- contexts ---------------------------------------------------------------------------------------------

/// A context with pen 7 on pen 1, font 0 and no clip. It keeps the colours that pens have now.
/// @return  null when nothing can be drawn: without an environment, in a hidden palette, on an item that has
///          no system control, on a bitmap that did not come from AllocNativeBitmapZV; and without memory
ZV_API ZVDrawInfo* DrawBeginZV(ZVWindow* window);    ///< Null is the main window.
ZV_API ZVDrawInfo* DrawBeginZV(ZVPalette* palette);  ///< Null is the main window.
ZV_API ZVDrawInfo* DrawBeginZV(ZVGroup* group);
ZV_API ZVDrawInfo* DrawBeginZV(ZVItem* item);
ZV_API ZVDrawInfo* DrawBeginZV(unsigned long id);  ///< The main window, whatever the number.
ZV_API ZVDrawInfo* DrawBeginZV(ZVNativeBitmap* bitmap);

/// Puts the port's font and text mode back to those of the interface and frees the context.
ZV_API void DrawEndZV(ZVDrawInfo* draw);

/// Store a colour, a pen as the colour that it has now.
ZV_API void SetPenZV(ZVDrawInfo* draw, unsigned long colour);
ZV_API void SetBGPenZV(ZVDrawInfo* draw, unsigned long colour);

/// Limits painting to a rectangle, from the next primitive on. Without width or height nothing is painted.
ZV_API void SetClipRectZV(ZVDrawInfo* draw, long x, long y, long w, long h);

ZV_API void SetTextTransparencyZV(ZVDrawInfo* draw, long isTransparent);

/// Chooses a standard font, or an explicit one, which has to outlive the context. The standard fonts are all
/// of the interface's family: 0 and 5 in the style's font size, 1 in its small size, 2 italic, 3 bold, 4 bold
/// italic. A size of 0 or below is 12.
ZV_API void SetFontZV(ZVDrawInfo* draw, unsigned short font);
ZV_API void SetFontZV(ZVDrawInfo* draw, ZVFont* font);  ///< Null chooses font 0.
template <std::integral Number> void SetFontZV(ZVDrawInfo* draw, Number font)
{
    SetFontZV(draw, static_cast<unsigned short>(font));
}

// ---- rectangles, lines, ovals, polygons -------------------------------------------------------------------
//
// Corners are inclusive, and reversed ones are swapped: (10, 10, 5, 5) is (5, 5, 10, 10), 6 by 6 pixels.

ZV_API void EraseRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);  ///< In the background pen.
ZV_API void FillRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);
ZV_API void DrawRectZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);  ///< A frame, one pixel wide.

/// A line with both end points, the same in either direction. Along its longer extent it has one pixel for
/// each place, whose other coordinate is the exact one, rounded; halves go right and down.
ZV_API void DrawLineZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);

/// The oval inscribed in the corners: the pixels whose centres lie in it, and the middle row and column, or
/// the two middle ones of an even extent, in full, so that it reaches its corners' rectangle everywhere.
ZV_API void FillEllipseZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);

/// Those pixels of the filled oval that have a neighbour to a side outside of it.
ZV_API void DrawEllipseZV(ZVDrawInfo* draw, long x1, long y1, long x2, long y2);

/// Lines from each point to the next; there is none back to the first. One point is nothing.
/// @param count   of points
/// @param points  x and y of each
ZV_API void DrawPolygonZV(ZVDrawInfo* draw, long count, long const* points);

/// The pixels whose centres lie inside by the even-odd rule, with the last point joined to the first. A point
/// is the upper left corner of its pixel, so an outline's right and lower edges are not filled. A centre on
/// an edge belongs to what is right of the edge.
ZV_API void FillPolygonZV(ZVDrawInfo* draw, long count, long const* points);

/// The same with the coordinates as arguments, at least `count` pairs of them.
template <std::integral... Coordinates>
requires(sizeof...(Coordinates) >= 2 &&
         sizeof...(Coordinates) % 2 == 0) void DrawPolygonZV(ZVDrawInfo* draw, long count,
                                                             Coordinates... coordinates)
{
    long const points[] = {static_cast<long>(coordinates)...};
    assert(count <= static_cast<long>(sizeof...(Coordinates) / 2));
    DrawPolygonZV(draw, count, points);
}
template <std::integral... Coordinates>
requires(sizeof...(Coordinates) >= 2 &&
         sizeof...(Coordinates) % 2 == 0) void FillPolygonZV(ZVDrawInfo* draw, long count,
                                                             Coordinates... coordinates)
{
    long const points[] = {static_cast<long>(coordinates)...};
    assert(count <= static_cast<long>(sizeof...(Coordinates) / 2));
    FillPolygonZV(draw, count, points);
}

/// Bevel borders of `w` by `h` pixels: a frame in pen 3, inside it light (pen 4) along the left and top and
/// dark (pen 5) along the right and bottom. The I forms look sunken, light and dark being exchanged; the 2
/// forms are disabled.
ZV_API void DrawShineBorderZV(ZVDrawInfo* draw, long x, long y, long w, long h);
ZV_API void DrawIShineBorderZV(ZVDrawInfo* draw, long x, long y, long w, long h);
ZV_API void DrawShineBorder2ZV(ZVDrawInfo* draw, long x, long y, long w, long h);
ZV_API void DrawIShineBorder2ZV(ZVDrawInfo* draw, long x, long y, long w, long h);

// ---- pixels and bitmaps -----------------------------------------------------------------------------------

/// The colour of a pixel, with bytes in both halves of a word and the fourth word 1; at 16 bits a field is
/// shifted left by 3. Outside the clip it stays as it is.
ZV_API void ReadPixelZV(ZVDrawInfo* draw, long x, long y, ZVRGB* out);
ZV_API void WritePixelZV(ZVDrawInfo* draw, long x, long y, ZVRGB const* in);

/// Copies a bitmap of depth 8, 16 or 32 with its upper left corner to x, y; other depths do nothing. Depths
/// are converted. It may be the target itself.
ZV_API void DrawBitmapZV(ZVDrawInfo* draw, ZVNativeBitmap const* bitmap, long x, long y);

/// Copies a rectangle of a bitmap scaled into another one by point sampling, as ScaleBitmapZV does. What lies
/// outside the source is left out; a rectangle without width or height is nothing.
ZV_API void StretchBitmapZV(ZVDrawInfo* draw, ZVNativeBitmap const* bitmap, long sx, long sy, long sw,
                            long sh, long dx, long dy, long dw, long dh);

/// Draws an icon over pen 1. A number without an icon is nothing.
ZV_API void DrawImageZV(ZVDrawInfo* draw, unsigned short icon, long x, long y);

// ---- text -------------------------------------------------------------------------------------------------
//
// A text is UTF-8, on one line. A form with a number takes the string of that id. Measures are whole pixels.
// The metric calls take a null context for standard font 0.

/// Draws a text with the upper left corner of its line at x, y: the base line lies the font's ascent below.
/// Unless text is transparent the line's area is filled with the background pen. Of a text longer than 255
/// bytes the whole characters within them are drawn.
ZV_API void DrawTextZV(ZVDrawInfo* draw, char const* text, long x, long y);
ZV_API void DrawTextZV(ZVDrawInfo* draw, unsigned long stringId, long x, long y);

/// Width of the text and ASCENT of the font; both are 0 for a null text. Outputs may be null.
ZV_API void GetTextSizeZV(ZVDrawInfo const* draw, char const* text, long* width, long* height);
ZV_API void GetTextSizeZV(ZVDrawInfo const* draw, unsigned long stringId, long* width, long* height);
ZV_API long GetTextWidthZV(ZVDrawInfo const* draw, char const* text);
ZV_API long GetTextWidthZV(ZVDrawInfo const* draw, unsigned long stringId);
ZV_API long GetTextHeightZV(ZVDrawInfo const* draw, char const* text);
ZV_API long GetTextHeightZV(ZVDrawInfo const* draw, unsigned long stringId);

/// Where a text of that size stands centred in a rectangle. Outputs may be null.
ZV_API void CenterTextZV(ZVDrawInfo const* draw, char const* text, long x, long y, long w, long h, long* outX,
                         long* outY);
ZV_API void CenterTextZV(ZVDrawInfo const* draw, unsigned long stringId, long x, long y, long w, long h,
                         long* outX, long* outY);

/// Shortens a text that is wider than `width` from its end, in place, by whole characters: as many as fit in
/// front of "..." stay. One character stays in any case, without the dots when `width` does not hold them.
/// @param text  room for four bytes more than its first character takes
ZV_API void ShortenStringZV(ZVDrawInfo const* draw, char* text, int width);

/// Width of an "x"; ascent and descent of the font together.
ZV_API long GetAveCharWidthZV(ZVDrawInfo const* draw);
ZV_API long GetAveCharHeightZV(ZVDrawInfo const* draw);
ZV_API void GetAveCharSizeZV(ZVDrawInfo const* draw, long* width, long* height);
