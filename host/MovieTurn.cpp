// See MovieTurn.h.
#include "MovieTurn.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

/// Pixels on a side of the squares in which rows become columns, so that both stay in the cache.
constexpr int Tile = 32;

template <typename Pixel>
void Turn(MovieTurn const& turn, int width, int height, std::uint8_t const* stored,
          std::size_t storedRowBytes, std::uint8_t* shown, std::size_t shownRowBytes)
{
    int const shownWidth = turn.swaps ? height : width;
    int const shownHeight = turn.swaps ? width : height;
    auto const copy = [&](int x, int y) {
        int const column = turn.mirrorsX ? shownWidth - 1 - x : x;
        int const line = turn.mirrorsY ? shownHeight - 1 - y : y;
        int const fromX = turn.swaps ? line : column;
        int const fromY = turn.swaps ? column : line;
        auto const* from =
            reinterpret_cast<Pixel const*>(stored + static_cast<std::size_t>(fromY) * storedRowBytes);
        auto* to = reinterpret_cast<Pixel*>(shown + static_cast<std::size_t>(y) * shownRowBytes);
        to[x] = from[fromX];
    };
    for (int top = 0; top < shownHeight; top += Tile)
        for (int left = 0; left < shownWidth; left += Tile)
            for (int y = top; y < std::min(top + Tile, shownHeight); ++y)
                for (int x = left; x < std::min(left + Tile, shownWidth); ++x)
                    copy(x, y);
}

}  // namespace

MovieTurn Turn_Of(AVStream const& stream)
{
    std::size_t size = 0;
    auto const* bytes = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!bytes || size < 9 * sizeof(std::int32_t)) return {};
    std::int32_t m[9];
    std::memcpy(m, bytes, sizeof m);
    // A stored place (x, y) is shown at (m0 x + m3 y, m1 x + m4 y).
    auto const isZero = [](std::int64_t value) { return std::llabs(value) < 1 << 10; };  // of 1 << 16
    if (isZero(m[1]) && isZero(m[3]) && !isZero(m[0]) && !isZero(m[4])) return {false, m[0] < 0, m[4] < 0};
    if (isZero(m[0]) && isZero(m[4]) && !isZero(m[1]) && !isZero(m[3])) return {true, m[3] < 0, m[1] < 0};
    return {};
}

void Turn_Picture(MovieTurn const& turn, int width, int height, HostPixels layout, void const* stored,
                  std::size_t storedRowBytes, void* shown, std::size_t shownRowBytes)
{
    auto const copy = layout == HostPixels::RGBA8 ? Turn<std::uint32_t> : Turn<std::uint64_t>;
    copy(turn, width, height, static_cast<std::uint8_t const*>(stored), storedRowBytes,
         static_cast<std::uint8_t*>(shown), shownRowBytes);
}
