// Drawing at 1920 x 1080 in 32 bits. The yardstick of a fill is pixman's, that of a copy one memcpy of the
// same bytes; of many small pieces it is the same pieces filled or blended by pixman alone, without contexts.
#include "BenchBitmaps.h"
#include "BenchSession.h"
#include "BenchTools.h"

#include <array>
#include <pixman.h>

namespace {

using namespace Bench;

/// The library with a bitmap and a context on it.
struct Screen {
    Session session;
    NativePtr bitmap = Make_Native(32);
    std::shared_ptr<ZVDrawInfo> draw{DrawBeginZV(bitmap.get()), DrawEndZV};

    void Fill_By_Pixman(long x, long y, long w, long h) const
    {
        pixman_fill(reinterpret_cast<uint32_t*>(bitmap->Pixels), bitmap->RowBytes / 4, 32,
                    static_cast<int>(x), static_cast<int>(y), static_cast<int>(w), static_cast<int>(h),
                    0xFF102030);
    }
};

constexpr long buttonWidth = 90, buttonHeight = 25;

template <typename Work> void For_Each_Button(Work&& work)
{
    for (long i = 0; i < 1000; ++i)
        work(i % 20 * (buttonWidth + 5), i / 20 % 36 * (buttonHeight + 4), i);
}

std::array<char const*, 8> const labels = {"Cancel", "OK",          "Apply settings", "Render",
                                           "Undo",   "Preferences", "Load ...",       "Interpret footage"};

void Draw_Buttons(Screen const& screen, bool hasLabels)
{
    ZVDrawInfo* const draw = screen.draw.get();
    SetTextTransparencyZV(draw, 1);
    For_Each_Button([&](long x, long y, long i) {
        SetPenZV(draw, ZV_PEN_FACE);
        FillRectZV(draw, x, y, x + buttonWidth - 1, y + buttonHeight - 1);
        DrawShineBorderZV(draw, x, y, buttonWidth, buttonHeight);
        if (!hasLabels) return;
        SetPenZV(draw, ZV_PEN_TEXT);
        char const* const label = labels[static_cast<std::size_t>(i) % labels.size()];
        long textX = 0, textY = 0;
        CenterTextZV(draw, label, x, y, buttonWidth, buttonHeight, &textX, &textY);
        DrawTextZV(draw, label, textX, textY);
    });
}

/// The face and the eight edges of each button.
void Fill_Buttons_By_Pixman(Screen const& screen)
{
    For_Each_Button([&](long x, long y, long) {
        screen.Fill_By_Pixman(x, y, buttonWidth, buttonHeight);
        for (long inset : {0L, 1L}) {
            long const w = buttonWidth - 2 * inset, h = buttonHeight - 2 * inset;
            screen.Fill_By_Pixman(x + inset, y + inset, w, 1);
            screen.Fill_By_Pixman(x + inset, y + inset + h - 1, w, 1);
            screen.Fill_By_Pixman(x + inset, y + inset, 1, h);
            screen.Fill_By_Pixman(x + inset + w - 1, y + inset, 1, h);
        }
    });
}

template <typename Work, typename Yardstick>
void Register_Drawing(std::string const& name, double limit, Work work, Yardstick yardstick)
{
    Bench::Register(name, limit, [=] {
        auto const screen = std::make_shared<Screen>();
        return std::pair([=] { work(*screen); }, [=] { yardstick(*screen); });
    });
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Drawing(
        "draw/fill", 1.1,
        [](Screen const& screen) { FillRectZV(screen.draw.get(), 0, 0, width - 1, height - 1); },
        [](Screen const& screen) { screen.Fill_By_Pixman(0, 0, width, height); });
    for (long depth : {32L, 16L}) {
        Bench::Register("draw/bitmap_" + std::to_string(depth), depth == 32 ? 1.1 : 0, [=] {
            auto const screen = std::make_shared<Screen>();
            NativePtr const source(AllocNativeBitmapZV(width, height, depth), Deleter());
            return std::pair([=] { DrawBitmapZV(screen->draw.get(), source.get(), 0, 0); },
                             Make_Memcpy(width * height * (4 + depth / 8)));
        });
    }
    Register_Drawing(
        "draw/ovals", 0,
        [](Screen const& screen) {
            For_Each_Button([&](long x, long y, long) {
                FillEllipseZV(screen.draw.get(), x, y, x + buttonWidth - 1, y + buttonHeight - 1);
            });
        },
        Fill_Buttons_By_Pixman);
    Register_Drawing(
        "draw/1000_bevels", 0, [](Screen const& screen) { Draw_Buttons(screen, false); },
        Fill_Buttons_By_Pixman);
    Register_Drawing(
        "draw/1000_buttons", 0, [](Screen const& screen) { Draw_Buttons(screen, true); },
        Fill_Buttons_By_Pixman);
    return true;
}();

}  // namespace
