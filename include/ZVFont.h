// Fonts for setting text on pictures: the machine's families, a font opened at a size, and of its characters
// the advances, the kerning and the outlines, all in points and free of any resolution. A draw context takes
// such a font too, with a point for a pixel. Main thread only.
//
// A font is listed or created, then opened, used and closed. On a closed font, and on null, calls give zeros
// or null. A character is its Unicode number.
#pragma once

#include "ZVList.h"

struct ZVTextStyle;  ///< an open face

enum ZVFontStyleTypes : int32_t {
    ZV_FONT_STYLE_PLAIN = 0,
    ZV_FONT_STYLE_BOLD = 1,
    ZV_FONT_STYLE_ITALIC = 2,
    ZV_FONT_STYLE_BOLD_ITALIC = 3,
    ZV_FONT_STYLE_FIRST_NODE = 100  ///< this value and those above are ids of style nodes
};

inline constexpr int32_t ZV_FONT_NO_INSTANCE = 32767;  ///< as `Instance`: no named instance
inline constexpr uint32_t ZV_FONT_FLAG_BOLD = 1;       ///< of CreateFontZV
inline constexpr uint32_t ZV_FONT_FLAG_ITALIC = 2;     ///< of CreateFontZV
inline constexpr uint32_t ZV_FONT_FLAG_OPEN = 0x8000;
inline constexpr int32_t ZV_FONT_ENCODING_UNICODE = 0x100;

/// Measures of a face in points, as 16.16 fixed point.
struct ZVFontRecord {
    int32_t ascent, descent, leading, widestAdvance;
};

/// A font; the node is a link of the font list, its name the family's.
struct ZVFont {
    Node node;
    List Styles;             ///< ZVFontStyle, empty for a family of one style
    int32_t Size;            ///< points
    int32_t Style;           ///< ZVFontStyleTypes
    uint32_t Flags;          ///< ZV_FONT_FLAG_...
    int16_t WidthHint;       ///< of OpenFontZV
    int16_t HeightHint;      ///< of OpenFontZV
    float ScaleX;            ///< 1.0
    float ScaleY;            ///< 1.0
    int32_t Instance;        ///< named instance of a variable font, or ZV_FONT_NO_INSTANCE
    int32_t FontId;          ///< from 1 on, a face of this run of the library; 0 is the interface's family
    ZVFontRecord Metrics;    ///< of an open font
    ZVTextStyle* TextStyle;  ///< owned; null when closed
    int32_t Encoding;        ///< ZV_FONT_ENCODING_UNICODE in an open font
};

/// A style of a family; the node's name is the style's, its id counts up from 100.
struct ZVFontStyle {
    Node node;
    int32_t FontId;
    int32_t Instance;
};

/// All in points.
struct ZVFontMetrics {
    double Height;  ///< ascent, descent and leading
    double Ascent;
    double Descent;
    double MaxAdvance;
};

/// Commands of an outline.
inline constexpr float ZV_OUTLINE_END = 0.0F;
inline constexpr float ZV_OUTLINE_MOVE = 1.0F;   ///< x, y
inline constexpr float ZV_OUTLINE_LINE = 2.0F;   ///< x, y
inline constexpr float ZV_OUTLINE_CURVE = 3.0F;  ///< six operands, see GetFontOutlineZV
inline constexpr float ZV_OUTLINE_CLOSE = 4.0F;

/// Adds a ZVFont for each family of outline fonts, in alphabetical order; see FreeFontListZV. The plain face
/// of a family is the font's own and comes first among its styles. The last two arguments are not read.
/// @return  0; another number when there are no fonts to be had
ZV_API long GetAvailableFontsZV(List* fonts, long, long);

/// Closes, removes and frees all fonts with their style nodes. Null is accepted.
ZV_API void FreeFontListZV(List* fonts);

/// A font of a face; `Size` is ascent and descent of that face at the interface's font size. Put it on a list
/// for FreeFontListZV to free it.
/// @param fontId  as in ZVFont; a number of no face counts as 0
ZV_API ZVFont* CreateFontZV(long fontId, long bold, long italic);

/// Opens the font at a size; an open one is closed first. A style of 100 or above chooses the style node of
/// that id, and the font's own face when there is none. A bold or italic style chooses that sister of the
/// face, or makes it out of the face; a named instance stays as it is. The flags of CreateFontZV count until
/// the font is opened, and go then.
/// @param size        points, 1 to 4000
/// @param widthHint   kept in the record, low 16 bits
/// @param heightHint  likewise
/// @return  1, or 0 with the font closed
ZV_API long OpenFontZV(ZVFont* font, ZVFontStyleTypes style, long size, long widthHint, long heightHint);
ZV_API void CloseFontZV(ZVFont* font);

ZV_API void GetFontMetricsZV(ZVFont const* font, ZVFontMetrics* metrics);  ///< Nothing for a closed font.

/// How far the next character stands from this one. Outputs may be null.
ZV_API void GetCursorAdvanceZV(unsigned long character, ZVFont* font, double* x, double* y);

/// What the distance of two characters next to each other differs by. Ligatures are left aside.
ZV_API void GetKernZV(ZVFont* font, unsigned long first, unsigned long second, double* x, double* y);

/// The outline of a character with its origin at x, y, as commands with their operands, ended by the command
/// ZV_OUTLINE_END. Points are absolute, with y growing downwards. The operands of a curve are its end, three
/// times the way from its start to its first control point, and three times the way from its second control
/// point to its end: the directions of the curve in both ends. Every contour is closed.
/// @return  a block of FreeMemZV; null for a closed font. A blank character has the end command alone.
ZV_API float* GetFontOutlineZV(unsigned long character, ZVFont* font, double x, double y);

ZV_API long GetCurrentCharSetZV();  ///< 0
