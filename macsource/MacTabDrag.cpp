// Dragging a tab: an outline of the tab and its palette follows the mouse until the button comes up.
#include "MacInput.h"
#include "MacNativeItem.h"
#include "MacPort.h"
#include "MacWindow.h"

#include "interface/HitTest.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <vector>

namespace {

HostRect Moved(HostRect const& rect, int x, int y)
{
    return {rect.left + x, rect.top + y, rect.right + x, rect.bottom + y};
}

/// The outline is made of strips, each a window, so that what lies in it stays in sight. They run around it,
/// so that none ever lies under the mouse.
class Outline {
public:
    /// @param tab, body  what is outlined, the tab above the body; the origin is put at x, y
    Outline(HostRect const& tab, HostRect const& body, int x, int y);

    void Move_To(int x, int y);

private:
    static constexpr int Thickness = 2;

    struct Strip {
        HostRect place;  ///< from the origin
        std::unique_ptr<HostWindow> window;
    };
    void Add(HostRect const& place);

    std::vector<Strip> strips_;
    int x_, y_;
};

Outline::Outline(HostRect const& tab, HostRect const& body, int x, int y) : x_(x), y_(y)
{
    int const t = Thickness, shoulder = body.top, end = body.bottom + t;
    Add({tab.left - t, tab.top - t, tab.right + t, tab.top});
    Add({tab.left - t, tab.top, tab.left, shoulder});
    Add({tab.right, tab.top, tab.right + t, shoulder});
    Add({body.left - t, shoulder - t, tab.left - t, shoulder});
    Add({tab.right + t, shoulder - t, body.right + t, shoulder});
    Add({body.left - t, shoulder, body.left, end});
    Add({body.right, shoulder, body.right + t, end});
    Add({body.left, body.bottom, body.right, end});
}

void Outline::Add(HostRect const& place)
{
    if (place.IsEmpty()) return;
    HostWindowRequest const request{
        .kind = HostWindowKind::Popup, .client = Moved(place, x_, y_), .hasFrame = false};
    // A side that cannot be had is left out: the drag works without it.
    std::unique_ptr<HostWindow> window = Display()->Make_Window(request);
    if (!window) return;
    window->Surface().Fill(window->Surface().Bounds(), Pen_Color(ZV_PEN_MARKED));
    window->Show();
    window->Present();
    strips_.push_back({place, std::move(window)});
}

void Outline::Move_To(int x, int y)
{
    if (x == x_ && y == y_) return;
    x_ = x;
    y_ = y;
    for (Strip& strip : strips_) {
        strip.window->Set_Client(Moved(strip.place, x, y));
        strip.window->Present();
    }
}

class TabDrag : public MouseTracker {
public:
    /// @param x, y  the mouse in the tab
    TabDrag(ZVPalette const& palette, long x, long y);

    bool Run();  ///< Up to the release. False when the drag was broken off.
    void Track(long x, long y) override;
    void Finish(long x, long y) override;
    bool Break_Off() override { return true; }  ///< Nothing but the outline has moved.

    ZVPlace Mouse() const { return mouse_; }

    /// Client position of the window that would have the tab where it is.
    ZVPlace Place() const;

private:
    /// Where the tab of a window with no other stands.
    static constexpr int FirstTab = 6;

    ZVPlace mouse_, grab_;
    long highest_ = 0;  ///< place at which a title bar above it is still on the screen
    Outline outline_;
    bool isFinished_ = false;
};

/// The highest client position of a palette's window that leaves its frame below the menu bar.
long Highest_Client(ZVPalette const& palette)
{
    ZVRectT<long> screen;
    GetScreenRectZV(&screen);
    long x = screen.x, y = screen.y;
    OffsetWindowToClient(&palette, &x, &y);
    return y;
}

int Coordinate(long value)
{
    return static_cast<int>(std::clamp(value, -32768L, 32767L));
}

TabDrag::TabDrag(ZVPalette const& palette, long x, long y)
    : mouse_{ZVEnv->pointerX, ZVEnv->pointerY}, grab_{x + FirstTab, y}, highest_(Highest_Client(palette)),
      outline_({FirstTab, 0, FirstTab + palette.tabWidth, ZVEnv->style->tabHeight},
               {0, ZVEnv->style->tabHeight, palette.width, ZVEnv->style->tabHeight + palette.height},
               Coordinate(Place().x), Coordinate(Place().y))
{
}

ZVPlace TabDrag::Place() const
{
    ZVPlace const place = mouse_ - grab_;
    return {place.x, std::max(place.y, highest_)};
}

bool TabDrag::Run()
{
    Hold_Mouse(this);
    Run_While([this] { return !isFinished_ && Mouse_Holder() == this; });
    return isFinished_;
}

void TabDrag::Track(long x, long y)
{
    mouse_ = {x, y};
    outline_.Move_To(Coordinate(Place().x), Coordinate(Place().y));
}

void TabDrag::Finish(long x, long y)
{
    Track(x, y);
    isFinished_ = true;
}

// ---- where it is let go -----------------------------------------------------------------------------------

/// The library's front window at a point, by its frame too; the outline is none of them.
ZVWindow* Window_At(ZVPlace point)
{
    for (HostWindow const* host = nullptr; (host = Display()->Next_Window(host));) {
        HostRect const client = host->Client();
        HostFrame const frame = host->Frame();
        HostRect const all{client.left - frame.left, client.top - frame.top, client.right + frame.right,
                           client.bottom + frame.bottom};
        ZVWindow* const window = Window_Of(host);
        if (window && all.Contains(Coordinate(point.x), Coordinate(point.y))) return window;
    }
    return nullptr;
}

/// The tab bar in a window; empty without one.
HostRect Tab_Bar_Of(ZVWindow const& window)
{
    ZVPalette const* const palette = window.activePalette;
    if (!palette || palette->kind != ZV_KIND_FLOATER || palette->flags & ZV_PALF_NO_TAB_BAR) return {};
    return {palette->x, palette->y - ZVEnv->style->tabHeight, palette->x + palette->width, palette->y};
}

/// The window that takes a palette let go of at a point; null for none.
ZVWindow* Target_At(ZVPlace point, ZVWindow const* home)
{
    ZVWindow const* const system = Window_At(point);
    for (ZVWindow& window : All_Windows()) {
        if (!system || System_Window_Of(&window) != system) continue;
        HostRect const area =
            &window == home ? HostRect{0, 0, window.width, window.height} : Tab_Bar_Of(window);
        ZVPlace const inside = point - Place_On_Screen(&window);
        if (area.Contains(Coordinate(inside.x), Coordinate(inside.y))) return &window;
    }
    return nullptr;
}

}  // namespace

long Mac_Drag_Tab(ZVItem*, ZVPalette* palette, long x, long y, ZVWindow** target, long* left, long* top)
{
    ZVWindow const* const home = *target;
    *target = nullptr;
    if (!Display()) return 0;
    TabDrag drag(*palette, x, y);
    if (!drag.Run()) return 0;
    *target = Target_At(drag.Mouse(), home);
    *left = drag.Place().x;
    *top = drag.Place().y;
    return 1;
}
