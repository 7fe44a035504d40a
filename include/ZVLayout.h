// What places things: the position code that palettes, groups and items share, and the tags for gaps and
// margins. Nobody gives coordinates; a thing states where it stands beside a reference or in its parent.
#pragma once

#include "ZVRect.h"

/// The low byte of a position code places horizontally, the high byte vertically; combine one of each. `R` is
/// the reference, `P` the parent, `S` the size of the thing placed, `gap` the spacing that applies. The
/// comments tell the left edge; the top edge goes likewise.
enum ZVPosition : unsigned short {
    ZV_POS_DEFAULT = 0,       ///< R.left for palettes; 0 for items and groups without a reference
    ZV_POS_BEFORE = 1,        ///< R.left - gap - S: left of, above
    ZV_POS_AFTER = 2,         ///< R.left + R.width + gap: right of, below
    ZV_POS_CENTER = 3,        ///< P.left + (P.width - S) / 2
    ZV_POS_ALIGN_START = 4,   ///< R.left
    ZV_POS_ALIGN_CENTER = 5,  ///< R.left + (R.width - S) / 2
    ZV_POS_ALIGN_END = 6,     ///< R.left + R.width - S
    ZV_POS_ON_START = 7,      ///< R.left - S / 2: centred on the near edge; not for groups
    ZV_POS_ON_END = 8,        ///< R.left + R.width - S / 2: centred on the far edge; not for groups
    ZV_POS_PARENT_START = 9,  ///< P.left
    ZV_POS_PARENT_END = 10    ///< P.left + P.width - S
};

/// A position code of a horizontal and a vertical half.
constexpr unsigned short ZV_Position(ZVPosition horizontal, ZVPosition vertical)
{
    return static_cast<unsigned short>(horizontal | vertical << 8);
}

/// The table of position codes as a function. Both outputs are stored; a half outside the table keeps the
/// reference's edge.
/// @param own  the size of the thing placed; its origin does not count
ZV_API void GetElementPlacement(unsigned long code, ZVRectT<long> const* own, ZVRectT<long> const* reference,
                                ZVRectT<long> const* parent, long gap, long* x, long* y);

/// Gap towards the reference, for groups and items. The later tag wins. "Flex" gaps of items also take a
/// share of the free space of their group, on the one axis on which such items stand before or after.
enum ZVGapTag : unsigned long {
    ZV_GAP_NORMAL = 1280,  ///< the style's gapNormal; data ignored
    ZV_GAP_NORMAL_FLEX = 1281,
    ZV_GAP_WIDE = 1282,  ///< gapWide
    ZV_GAP_WIDE_FLEX = 1283,
    ZV_GAP_EXTRA = 1284,  ///< gapExtra
    ZV_GAP_EXTRA_FLEX = 1285,
    ZV_GAP_FIXED = 1286,       ///< long: that many pixels
    ZV_GAP_FIXED_FLEX = 1287,  ///< long
    ZV_GAP_NONE = 1288,        ///< 0
    ZV_GAP_GROW = 1289,        ///< long: the default and this percentage of the free space
    ZV_GAP_GROW_ROUND = 1290   ///< the same, taking up what equal shares left by rounding; groups only
};

/// Margins of groups and palettes, in pixels.
enum ZVMarginTag : unsigned long {
    ZV_MARGIN_ALL = 1536,  ///< long
    ZV_MARGIN_LEFT = 1537,
    ZV_MARGIN_RIGHT = 1538,
    ZV_MARGIN_TOP = 1539,
    ZV_MARGIN_BOTTOM = 1540,
    ZV_MARGIN_NONE = 1541  ///< all four 0; data ignored
};
