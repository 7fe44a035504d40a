// Where the characters of a line stand, of which some may run from right to left: its cells from left to
// right, and the caret between them.
//
// Where the direction changes, one place in the text is at two edges on the screen, and one edge is two
// places in the text. So a caret knows which of its neighbours it stands beside. Arrow keys move it past one
// cell to their side, whatever that is in the text.
#pragma once

#include "MacTextSteps.h"

#include <optional>
#include <utility>
#include <vector>

/// A place of the caret. Beside the character ahead of it in the text, or the one behind it; what is not in
/// its line counts as the line's own edge.
struct TextPlace {
    std::size_t at = 0;
    bool isBesideNext = false;

    bool operator==(TextPlace const&) const = default;
};

/// What a step of the caret passes.
struct TextCell {
    std::size_t start, end;  ///< in the text of the line
    int left, right;
    bool isRightToLeft;
};

/// From left to right, from one edge up to the other.
struct TextSpan {
    int left, right;
};

class TextOrder {
public:
    /// @param cells  of all the line, from left to right
    TextOrder(std::vector<TextCell> cells, bool isRightToLeft)
        : cells_(std::move(cells)), isRightToLeft_(isRightToLeft)
    {
    }

    int Width() const { return cells_.empty() ? 0 : cells_.back().right; }
    int X_Of(TextPlace const& place) const;
    TextPlace Place_Near(int x) const;
    std::vector<TextSpan> Spans(TextRange const& range) const;

    /// Past the cell at that side; nothing at the edge of the line.
    std::optional<TextPlace> Step(TextPlace const& from, bool isRight) const;

private:
    std::size_t Gap_Of(TextPlace const& place) const;
    TextPlace End_Of_Line(bool isRight) const;

    std::vector<TextCell> cells_;
    bool isRightToLeft_;
};
