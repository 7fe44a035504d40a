#include "MacTextOrder.h"

#include <algorithm>

/// Number of the gap that a caret stands in, from 0 left of all cells.
std::size_t TextOrder::Gap_Of(TextPlace const& place) const
{
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        TextCell const& cell = cells_[i];
        if ((place.isBesideNext ? cell.start : cell.end) == place.at)
            return place.isBesideNext == cell.isRightToLeft ? i + 1 : i;
    }
    return place.isBesideNext == isRightToLeft_ ? 0 : cells_.size();
}

int TextOrder::X_Of(TextPlace const& place) const
{
    std::size_t const gap = Gap_Of(place);
    return gap == 0 ? 0 : cells_[gap - 1].right;
}

static TextPlace Edge_Of(TextCell const& cell, bool isRight)
{
    bool const isStart = isRight == cell.isRightToLeft;
    return {isStart ? cell.start : cell.end, isStart};
}

/// What a point beside the line means: that it begins there, or ends.
TextPlace TextOrder::End_Of_Line(bool isRight) const
{
    bool const isEnd = isRight != isRightToLeft_;
    return isEnd ? TextPlace{std::ranges::max(cells_, {}, &TextCell::end).end, true} : TextPlace{};
}

TextPlace TextOrder::Place_Near(int x) const
{
    if (cells_.empty()) return {};
    if (x < 0 || x >= Width()) return End_Of_Line(x >= 0);
    auto const cell = std::ranges::find_if(cells_, [x](TextCell const& one) { return x < one.right; });
    return Edge_Of(*cell, 2 * x > cell->left + cell->right);
}

std::vector<TextSpan> TextOrder::Spans(TextRange const& range) const
{
    std::vector<TextSpan> spans;
    for (TextCell const& cell : cells_) {
        if (cell.end <= range.start || cell.start >= range.end) continue;
        if (!spans.empty() && spans.back().right == cell.left)
            spans.back().right = cell.right;
        else
            spans.push_back({cell.left, cell.right});
    }
    return spans;
}

std::optional<TextPlace> TextOrder::Step(TextPlace const& from, bool isRight) const
{
    std::size_t const gap = Gap_Of(from);
    if (gap == (isRight ? cells_.size() : 0)) return std::nullopt;
    return Edge_Of(cells_[isRight ? gap : gap - 1], isRight);
}
