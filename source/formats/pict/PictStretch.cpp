// See PictStretch.h.
#include "PictStretch.h"

namespace {

/// The first of `to` places whose counterpart among `from` is at or behind `place`.
long First_Showing(long place, long from, long to)
{
    return (place * to + from - 1) / from;
}

class Drawing {
public:
    Drawing(PictCanvas const& canvas, PictStretch const& stretch)
        : canvas_(canvas), stretch_(stretch), isDirect_(!stretch.isMono && stretch.transfer.Is_Copy() &&
                                                        stretch.source.Width() == stretch.target.Width())
    {
        if (stretch.source.IsEmpty() || stretch.target.IsEmpty()) return;
        visible_ = stretch.target.Within(canvas.Clip().bounds);
        if (stretch.mask) visible_ = visible_.Within(stretch.mask->bounds);
        Cut_At_Bounds();
        if (visible_.IsEmpty()) return;
        firstColumn_ = Source_Column(visible_.left);
        if (!isDirect_) Prepare_Columns();
    }

    /// Rows of the canvas that show row y of the bitmap, and nothing else.
    PictSpan Target_Rows(long y) const
    {
        if (visible_.IsEmpty()) return {0, 0};
        long const from = stretch_.source.Height(), to = stretch_.target.Height();
        long const down = y - stretch_.source.top;
        if (down < 0 || down >= from) return {0, 0};
        return {std::max(stretch_.target.top + First_Showing(down, from, to), visible_.top),
                std::min(stretch_.target.top + First_Showing(down + 1, from, to), visible_.bottom)};
    }

    void Draw(PictSpan targets, PictRows const& rows)
    {
        if (isDirect_) {
            Draw_Directly(targets, rows);
            return;
        }
        auto const count = static_cast<long>(columnCount_);
        if (stretch_.isMono)
            rows.To_Bits(firstColumn_, count, bits_.data());
        else
            rows.To_Pixels(firstColumn_, count, pixels_.data());
        for (long y = targets.left; y < targets.right; ++y)
            Visit_Runs(y, [&](long left, long right) {
                PictPixel* const out = canvas_.Row(y);
                uint32_t const* column = columns_.data() - visible_.left;
                if (stretch_.isMono)
                    for (long x = left; x < right; ++x)
                        stretch_.transfer.Put(bits_[column[x]] != 0, out[x]);
                else
                    for (long x = left; x < right; ++x)
                        stretch_.transfer.Put(pixels_[column[x]], out[x]);
            });
    }

private:
    /// From the left edge of the bitmap.
    long Source_Column(long x) const
    {
        long const from = stretch_.source.Width(), to = stretch_.target.Width();
        return stretch_.source.left - stretch_.bounds.left + (x - stretch_.target.left) * from / to;
    }

    /// Takes away what would show pixels beside the bitmap.
    void Cut_At_Bounds()
    {
        PictRect const inner = stretch_.source.Within(stretch_.bounds);
        if (inner.IsEmpty()) {
            visible_ = {};
            return;
        }
        auto const place = [](long at, long from, long to, long start) {
            return start + First_Showing(at, from, to);
        };
        PictRect const &source = stretch_.source, &target = stretch_.target;
        visible_ =
            visible_.Within({place(inner.left - source.left, source.Width(), target.Width(), target.left),
                             place(inner.top - source.top, source.Height(), target.Height(), target.top),
                             place(inner.right - source.left, source.Width(), target.Width(), target.left),
                             place(inner.bottom - source.top, source.Height(), target.Height(), target.top)});
    }

    void Prepare_Columns()
    {
        columns_.resize(static_cast<std::size_t>(visible_.Width()));
        for (long x = visible_.left; x < visible_.right; ++x)
            columns_[static_cast<std::size_t>(x - visible_.left)] =
                static_cast<uint32_t>(Source_Column(x) - firstColumn_);
        columnCount_ = columns_.back() + std::size_t{1};
        if (stretch_.isMono)
            bits_.resize(columnCount_);
        else
            pixels_.resize(columnCount_);
    }

    template <typename Take> void Visit_Runs(long y, Take&& take) const
    {
        canvas_.Clip().Visit_Runs(y, visible_.left, visible_.right, [&](long left, long right) {
            if (stretch_.mask)
                stretch_.mask->Visit_Runs(y, left, right, take);
            else
                take(left, right);
        });
    }

    void Draw_Directly(PictSpan targets, PictRows const& rows) const
    {
        for (long y = targets.left; y < targets.right; ++y)
            Visit_Runs(y, [&](long left, long right) {
                rows.To_Pixels(firstColumn_ + left - visible_.left, right - left, canvas_.Row(y) + left);
            });
    }

    PictCanvas const& canvas_;
    PictStretch const& stretch_;
    bool isDirect_;
    PictRect visible_;
    long firstColumn_ = 0;  ///< of the bitmap, under the left edge of what is visible
    std::size_t columnCount_ = 0;
    std::vector<uint32_t> columns_;  ///< from the first one, for each visible column of the canvas
    std::vector<PictPixel> pixels_;
    std::vector<uint8_t> bits_;
};

}  // namespace

bool Draw_Rows(PictCanvas const& canvas, PictStretch const& stretch, PictRows& rows)
{
    Drawing drawing(canvas, stretch);
    for (long y = stretch.bounds.top; y < stretch.bounds.bottom; ++y) {
        PictSpan const targets = drawing.Target_Rows(y);
        bool const isSeen = targets.left < targets.right;
        if (!(isSeen ? rows.Next() : rows.Skip())) return false;
        if (isSeen) drawing.Draw(targets, rows);
    }
    return true;
}
