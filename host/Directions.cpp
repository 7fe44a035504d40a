#include "Directions.h"

#include <fribidi.h>

#include <algorithm>
#include <new>
#include <numeric>

/// Hebrew begins here, and there is no character that runs from right to left ahead of it.
static constexpr uint32_t FirstOtherWay = 0x590;

/// Whether a line stands just as it is written.
static bool Is_Plain(std::span<uint32_t const> characters, HostDirection direction)
{
    return direction != HostDirection::RightToLeft &&
           std::ranges::none_of(characters, [](uint32_t character) {
               return character >= FirstOtherWay && FRIBIDI_IS_RTL(fribidi_get_bidi_type(character));
           });
}

static FriBidiParType Base_Of(HostDirection direction)
{
    switch (direction) {
    case HostDirection::LeftToRight: return FRIBIDI_PAR_LTR;
    case HostDirection::RightToLeft: return FRIBIDI_PAR_RTL;
    default: return FRIBIDI_PAR_ON;
    }
}

std::vector<DirectionRun> Direction_Runs(std::span<uint32_t const> characters, HostDirection direction)
{
    if (characters.empty()) return {};
    if (Is_Plain(characters, direction)) return {{0, characters.size(), false}};
    auto const count = static_cast<FriBidiStrIndex>(characters.size());
    std::vector<FriBidiCharType> types(characters.size());
    std::vector<FriBidiBracketType> brackets(characters.size());
    std::vector<FriBidiLevel> levels(characters.size());
    std::vector<FriBidiStrIndex> order(characters.size());
    std::iota(order.begin(), order.end(), 0);
    fribidi_get_bidi_types(characters.data(), count, types.data());
    fribidi_get_bracket_types(characters.data(), count, types.data(), brackets.data());
    FriBidiParType base = Base_Of(direction);
    bool const isOrdered =
        fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &base, levels.data()) !=
            0 &&
        fribidi_reorder_line(0, types.data(), count, 0, base, levels.data(), nullptr, order.data()) != 0;
    if (!isOrdered) throw std::bad_alloc();

    std::vector<DirectionRun> runs;
    for (FriBidiStrIndex const index : order) {
        auto const at = static_cast<std::size_t>(index);
        bool const isRightToLeft = FRIBIDI_LEVEL_IS_RTL(levels[at]);
        DirectionRun* const last = runs.empty() ? nullptr : &runs.back();
        if (last && last->isRightToLeft == isRightToLeft &&
            at == (isRightToLeft ? last->start - 1 : last->end))
            (isRightToLeft ? last->start : last->end) = isRightToLeft ? at : at + 1;
        else
            runs.push_back({at, at + 1, isRightToLeft});
    }
    return runs;
}
