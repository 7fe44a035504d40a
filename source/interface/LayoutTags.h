// The tags that groups, items and palettes share: gaps towards the reference and margins.
#pragma once

#include "interface/Records.h"

/// The gap of a thing and what free space adds to it.
struct Spacing {
    long gap;
    long growPercent = 0;  ///< of the free space
    bool isFlex = false;   ///< takes a share of the free space
    bool rounds = false;   ///< takes up what rounding left over

    /// False for a tag of another family.
    bool Take(TagItem const& tag)
    {
        ZVStyle const& style = *ZVEnv->style;
        switch (tag.tag) {
        case ZV_GAP_NORMAL:
        case ZV_GAP_NORMAL_FLEX: gap = style.gapNormal; break;
        case ZV_GAP_WIDE:
        case ZV_GAP_WIDE_FLEX: gap = style.gapWide; break;
        case ZV_GAP_EXTRA:
        case ZV_GAP_EXTRA_FLEX: gap = style.gapExtra; break;
        case ZV_GAP_FIXED:
        case ZV_GAP_FIXED_FLEX: gap = Tag_Number(tag); break;
        case ZV_GAP_NONE: gap = 0; break;
        case ZV_GAP_GROW:
        case ZV_GAP_GROW_ROUND:
            growPercent = Tag_Number(tag);
            rounds = tag.tag == ZV_GAP_GROW_ROUND;
            return true;
        default: return false;
        }
        isFlex = tag.tag < ZV_GAP_NONE && (tag.tag & 1);
        return true;
    }
};

struct Margins {
    int32_t left, right, top, bottom;

    /// False for a tag of another family.
    bool Take(TagItem const& tag)
    {
        int32_t const value = Tag_Number(tag);
        switch (tag.tag) {
        case ZV_MARGIN_ALL: *this = {value, value, value, value}; return true;
        case ZV_MARGIN_LEFT: left = value; return true;
        case ZV_MARGIN_RIGHT: right = value; return true;
        case ZV_MARGIN_TOP: top = value; return true;
        case ZV_MARGIN_BOTTOM: bottom = value; return true;
        case ZV_MARGIN_NONE: *this = {}; return true;
        default: return false;
        }
    }
};
