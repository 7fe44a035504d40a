// The display: which one it is, its monitors, and what an application asks of it. Without an interface there
// is one monitor in memory.
#include "MacInput.h"
#include "MacWindow.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

static constexpr ZVRectT<long> headlessMonitor{0, 0, 1600, 1200};
static constexpr long headlessDepth = 32;

static std::unique_ptr<HostDisplay> display;
static std::thread::id displayThread;

HostDisplay* Display()
{
    return display.get();
}

static bool Is_Set(char const* variable)
{
    char const* const value = std::getenv(variable);
    return value && *value;
}

/// The monitor in memory, of the size that ZV_HEADLESS_SIZE tells. Null with the reason.
static std::unique_ptr<HostDisplay> Make_Headless_Display(std::string& reason)
{
    constexpr int smallest = 320, largest = 16384;
    int width = static_cast<int>(headlessMonitor.width), height = static_cast<int>(headlessMonitor.height);
    if (Is_Set("ZV_HEADLESS_SIZE")) {
        char const* const wanted = std::getenv("ZV_HEADLESS_SIZE");
        char rest = 0;
        bool const isSize = std::sscanf(wanted, "%5dx%5d%c", &width, &height, &rest) == 2;
        if (!isSize || std::min(width, height) < smallest || std::max(width, height) > largest) {
            reason = std::string("ZV_HEADLESS_SIZE is \"") + wanted +
                     "\"; it can be a width and a height as in 1280x1024, each from 320 to 16384";
            return nullptr;
        }
    }
    return Make_Memory_Display(width, height);
}

/// Null with the reason.
static std::unique_ptr<HostDisplay> Make_Display(std::string& reason)
{
    char const* const wanted = Is_Set("ZV_HOST") ? std::getenv("ZV_HOST") : nullptr;
    if (wanted && std::strcmp(wanted, "headless") == 0) return Make_Headless_Display(reason);
    if (wanted && std::strcmp(wanted, "sdl") != 0) {
        reason = std::string("ZV_HOST is \"") + wanted + "\"; it can be \"sdl\" or \"headless\"";
        return nullptr;
    }
    if (!wanted && !Is_Set("DISPLAY") && !Is_Set("WAYLAND_DISPLAY")) {
        reason = "there is no display; set ZV_HOST=headless to run in memory, or start with ZV_INIT_NO_GUI";
        return nullptr;
    }
    return Make_SDL_Display(reason);
}

bool Open_Display()
{
    if (display) return true;
    std::string reason;
    display = Make_Display(reason);
    displayThread = std::this_thread::get_id();
    if (!display) SetErrorString(("ZVLib: the interface cannot start: " + reason).c_str());
    return display != nullptr;
}

bool Mac_Is_Interface_Thread()
{
    return display && displayThread == std::this_thread::get_id();
}

void Close_Display()
{
    Forget_Input();
    display = nullptr;
}

// ---- monitors ---------------------------------------------------------------------------------------------

template <typename T> static void Store(T* place, T const& value)
{
    if (place) *place = value;
}

static ZVRectT<long> Long_Rect(HostRect const& rect)
{
    return {rect.left, rect.top, rect.Width(), rect.Height()};
}

void GetMonitorInfoZV(long* count, ZVRectT<long>* first, ZVRectT<long>* second, ZVRectT<long>* third,
                      ZVRectT<long>* fourth)
{
    // The monitors are asked for before the interface starts.
    bool const hasInterface = ZVEnv && !FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags);
    std::vector<HostMonitor> const monitors =
        hasInterface && Open_Display() ? display->Monitors() : std::vector<HostMonitor>();
    ZVRectT<long>* const places[] = {first, second, third, fourth};
    std::size_t const found = std::min(monitors.size(), std::size(places));
    for (std::size_t i = 0; i < std::size(places); ++i)
        Store(places[i], i < found ? Long_Rect(monitors[i].bounds) : ZVRectT<long>{});
    if (found == 0) Store(first, headlessMonitor);
    Store(count, found == 0 ? 1L : static_cast<long>(found));
}

static ZVRectT<long> Main_Monitor()
{
    return display ? Long_Rect(display->Monitors().front().bounds) : headlessMonitor;
}

void GetScreenRectZV(ZVRectT<long>* rect)
{
    ZVRectT<long> const monitor = Main_Monitor();
    Store(rect, {0, Menu_Bar_Height(), monitor.width, monitor.height - Menu_Bar_Height()});
}

void GetDisplayFormatZV(long* width, long* height, long* depth)
{
    Store(width, Main_Monitor().width);
    Store(height, Main_Monitor().height);
    Store(depth, display ? static_cast<long>(display->Depth()) : headlessDepth);
}

long GetWheelScrollLinesZV()
{
    constexpr long usualLines = 3;
    return display ? display->Wheel_Lines() : usualLines;
}
