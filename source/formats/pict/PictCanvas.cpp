// See PictCanvas.h.
#include "PictCanvas.h"

namespace {

constexpr long DitherFlag = 64;
constexpr long FirstPatternMode = 8;
constexpr long LastPatternMode = 15;
constexpr PictPixel Untouched{255, 255, 255, 0};

PictPixel Opposite(PictPixel pixel)
{
    return {static_cast<uint8_t>(~pixel.red), static_cast<uint8_t>(~pixel.green),
            static_cast<uint8_t>(~pixel.blue), 255};
}

/// A place in a repeated row of things, which begins at `origin`.
std::size_t Repeated(long place, long origin, long size)
{
    long const rest = (place - origin) % size;
    return static_cast<std::size_t>(rest < 0 ? rest + size : rest);
}

}  // namespace

int Pict_Mode(long stored)
{
    long const mode = stored & ~DitherFlag;
    if (mode >= FirstPatternMode && mode <= LastPatternMode) return static_cast<int>(mode - FirstPatternMode);
    bool const isKnown = (mode >= PICT_COPY && mode <= (PICT_BIC | PICT_NOT)) ||
                         (mode >= PICT_BLEND && mode <= PICT_ADD_MIN) || mode == PICT_HILITE;
    return isKnown ? static_cast<int>(mode) : PICT_COPY;
}

// ---- transfer
// -----------------------------------------------------------------------------------------------

void PictTransfer::Put(bool isInk, PictPixel& target) const
{
    if (mode_ > (PICT_BIC | PICT_NOT)) {
        Put(isInk ? colours_.fore : colours_.back, target);
        return;
    }
    if (mode_ & PICT_NOT) isInk = !isInk;
    switch (mode_ & ~PICT_NOT) {
    case PICT_OR:
        if (isInk) target = colours_.fore;
        break;
    case PICT_XOR:
        if (isInk) target = Opposite(target);
        break;
    case PICT_BIC:
        if (isInk) target = colours_.back;
        break;
    default: target = isInk ? colours_.fore : colours_.back; break;
    }
}

uint8_t PictTransfer::Channel(int source, int target, int op) const
{
    // White is paper here: it leaves what is there, and black is ink.
    if (mode_ < PICT_BLEND && mode_ & PICT_NOT) source = 255 - source;
    switch (mode_ < PICT_BLEND ? mode_ & ~PICT_NOT : mode_) {
    case PICT_OR: return static_cast<uint8_t>(source & target);
    case PICT_XOR: return static_cast<uint8_t>(~(source ^ target));
    case PICT_BIC: return static_cast<uint8_t>(target | (255 - source));
    case PICT_BLEND: return static_cast<uint8_t>((source * op + target * (255 - op)) / 255);
    case PICT_ADD_PIN: return static_cast<uint8_t>(std::min(source + target, op));
    case PICT_ADD_OVER: return static_cast<uint8_t>(source + target);
    case PICT_SUB_PIN: return static_cast<uint8_t>(std::max(target - source, op));
    case PICT_ADD_MAX: return static_cast<uint8_t>(std::max(source, target));
    case PICT_SUB_OVER: return static_cast<uint8_t>(target - source);
    case PICT_ADD_MIN: return static_cast<uint8_t>(std::min(source, target));
    default: return static_cast<uint8_t>(source);
    }
}

void PictTransfer::Put(PictPixel source, PictPixel& target) const
{
    auto const isColour = [](PictPixel pixel, PictPixel colour) {
        return pixel.red == colour.red && pixel.green == colour.green && pixel.blue == colour.blue;
    };
    switch (mode_) {
    case PICT_COPY: target = source; return;
    case PICT_TRANSPARENT:
        if (!isColour(source, colours_.back)) target = source;
        return;
    case PICT_HILITE:
        if (isColour(source, colours_.back)) return;
        if (isColour(target, colours_.back))
            target = colours_.hilite;
        else if (isColour(target, colours_.hilite))
            target = colours_.back;
        return;
    default:
        target = {Channel(source.red, target.red, colours_.op.red),
                  Channel(source.green, target.green, colours_.op.green),
                  Channel(source.blue, target.blue, colours_.op.blue), 255};
    }
}

// ---- canvas
// -------------------------------------------------------------------------------------------------

PictCanvas::PictCanvas(ZVBitmap& bitmap, PictPoint origin)
    : pixels_(reinterpret_cast<PictPixel*>(bitmap.Pixels)), bounds_{0, 0, bitmap.Width, bitmap.Height},
      origin_(origin), clip_{bounds_, {}}
{
}

void PictCanvas::Erase()
{
    std::fill_n(pixels_, bounds_.right * bounds_.bottom, Untouched);
}

void PictCanvas::Paint_Run(long y, long left, long right, PictPattern const& pattern,
                           PictTransfer const& transfer)
{
    PictPixel* const row = Row(y);
    if (PictPattern::Tile const* tile = pattern.tile.get()) {
        PictPixel const* source = tile->pixels.data() + Repeated(y, origin_.y, tile->height) *
                                                            static_cast<std::size_t>(tile->width);
        for (long x = left; x < right; ++x)
            transfer.Put(source[Repeated(x, origin_.x, tile->width)], row[x]);
        return;
    }
    uint8_t const bits = pattern.rows[Repeated(y, origin_.y, 8)];
    if (transfer.Is_Copy() && (bits == 0 || bits == 0xFF)) {
        std::fill(row + left, row + right, bits ? transfer.Ink() : transfer.Paper());
        return;
    }
    for (long x = left; x < right; ++x)
        transfer.Put((bits << Repeated(x, origin_.x, 8) & 0x80) != 0, row[x]);
}

long PictCanvas::Paint(PictShape const& shape, PictPattern const& pattern, PictTransfer const& transfer)
{
    PictRect const area = shape.Bounds().Within(clip_.bounds);
    if (area.IsEmpty()) return 0;
    long work = area.Height() * shape.Row_Work();
    for (long y = area.top; y < area.bottom; ++y) {
        spans_.clear();
        shape.Row(y, {area.left, area.right}, spans_);
        for (PictSpan const& span : spans_)
            clip_.Visit_Runs(y, span.left, span.right, [&](long left, long right) {
                Paint_Run(y, left, right, pattern, transfer);
                work += right - left;
            });
    }
    return work;
}
