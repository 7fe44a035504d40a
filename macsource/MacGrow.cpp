#include "MacGrow.h"

#include "MacInput.h"
#include "MacNativeItem.h"
#include "MacWindow.h"

#include <algorithm>

namespace {

/// The window lets go of the mouse when it is gone.
class GrowTracker : public MouseTracker {
public:
    void Hold(ZVWindow& window, long x, long y)
    {
        window_ = &window;
        HostRect const client = window.sysWindow->host->Client();
        toRight_ = client.right - x;
        toBottom_ = client.bottom - y;
        Hold_Mouse(this);
    }

    void Track(long x, long y) override
    {
        HostWindow& host = *window_->sysWindow->host;
        WindowLimits const limits = Limits_Of(*window_);
        HostRect client = host.Client();
        int const width = static_cast<int>(x + toRight_) - client.left;
        int const height = static_cast<int>(y + toBottom_) - client.top;
        client.right = client.left + std::min(std::max(width, limits.minWidth), limits.maxWidth);
        client.bottom = client.top + std::min(std::max(height, limits.minHeight), limits.maxHeight);
        if (client == host.Client()) return;
        host.Set_Client(client);
        Window_Bounds_Changed(*window_);
    }

    void Finish(long x, long y) override { Track(x, y); }

private:
    ZVWindow* window_ = nullptr;
    long toRight_ = 0, toBottom_ = 0;  // from the press to the corner
};

GrowTracker tracker;

}  // namespace

bool Press_Grow_Box(ZVWindow& window, long x, long y)
{
    HostRect const client = window.sysWindow->host->Client();
    HostRect const box = Grow_Box(window);
    if (!box.Contains(static_cast<int>(x) - client.left, static_cast<int>(y) - client.top)) return false;
    tracker.Hold(window, x, y);
    return true;
}
