#include "MemoryDesk.h"

#include "Fonts.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

namespace {

constexpr uint32_t GroundColor = 0x4F6272, LineColor = 0x000000;
constexpr uint32_t FrontColor = 0xD6D6D6, BackColor = 0xEBEBEB, FrontText = 0x101010, BackText = 0x808080;
constexpr double TitleSize = 12;
constexpr int TitleMargin = 4;  ///< at an end of the bar without a box

/// The title, or as many of its characters with an ellipsis as find room.
std::string Fitted(HostFont& font, std::string title, int room)
{
    std::string const ellipsis = "\u2026";
    if (font.Shape(title).width <= room) return title;
    std::vector<std::size_t> ends;  // of its characters
    for (std::size_t i = 0; i < title.size(); ++i)
        if ((title[i] & 0xC0) != 0x80) ends.push_back(i);
    auto const end = std::ranges::partition_point(
        ends, [&](std::size_t one) { return font.Shape(title.substr(0, one) + ellipsis).width <= room; });
    title.resize(end == ends.begin() ? 0 : *std::prev(end));
    return title + ellipsis;
}

/// A title stands in the middle of its bar, or as near to it as the boxes let it.
void Draw_Title(HostSurface& desk, HostRect const& bar, HostWindowRequest const& window, uint32_t color)
{
    static std::unique_ptr<HostFont> const font = [] {
        auto const fonts = Make_Host_Fonts();
        return fonts ? fonts->Open({.family = "sans", .pixelSize = TitleSize, .bold = true}) : nullptr;
    }();
    if (!font) return;
    auto const side = [&](bool hasBox) { return hasBox ? bar.Height() : TitleMargin; };
    HostRect const room{bar.left + side(window.canClose), bar.top, bar.right - side(window.canZoom),
                        bar.bottom};
    if (room.IsEmpty()) return;
    HostTextRun const run = font->Shape(Fitted(*font, window.title, room.Width()));
    HostFontMetrics const metrics = font->Metrics();
    int const left =
        std::max(room.left, std::min((bar.left + bar.right - run.width) / 2, room.right - run.width));
    int const baseLine =
        bar.top + static_cast<int>(std::lround((bar.Height() + metrics.ascent - metrics.descent) / 2));
    desk.Set_Clip(HostRegion(room));
    for (HostTextRun::Glyph const& glyph : run.glyphs)
        desk.Blend(font->Glyph_Image(glyph.index), left + glyph.x, baseLine + glyph.y, color);
    desk.Set_Clip(HostRegion(desk.Bounds()));
}

/// A small square box with a cross, or with an outline for the zoom box.
void Draw_Box(HostSurface& desk, int left, int top, int size, bool isClose, uint32_t color)
{
    int const last = size - 1;
    for (int i = 0; i < size; ++i) {
        if (isClose) {
            desk.Write(left + i, top + i, color);
            desk.Write(left + last - i, top + i, color);
            continue;
        }
        for (auto const& [x, y] : {std::pair{i, 0}, {i, last}, {0, i}, {last, i}})
            desk.Write(left + x, top + y, color);
    }
}

}  // namespace

void Draw_Ground(HostSurface& desk)
{
    desk.Fill(desk.Bounds(), GroundColor);
}

void Draw_Frame(HostSurface& desk, DeskFrame const& frame)
{
    desk.Fill(frame.outer, LineColor);
    HostRect const bar{frame.client.left, frame.outer.top + 1, frame.client.right, frame.client.top - 1};
    uint32_t const color = frame.isFront ? FrontText : BackText;
    desk.Fill(bar, frame.isFront ? FrontColor : BackColor);
    Draw_Title(desk, bar, frame.request, color);
    constexpr int box = 9;
    int const top = bar.top + (bar.Height() - box) / 2, inset = (bar.Height() - box) / 2;
    if (frame.request.canClose) Draw_Box(desk, bar.left + inset, top, box, true, color);
    if (frame.request.canZoom) Draw_Box(desk, bar.right - inset - box, top, box, false, color);
}
