// The event loops and their timers. Each turn of a loop shows what was drawn, waits for the next event or the
// next timer, handles what has come, and runs the timers that are due. Loops nest: each runs on its own
// stack, and one that is told to end while another runs inside it does so when it has control again.
#include "MacInput.h"

#include "MacMenu.h"
#include "MacNativeItem.h"
#include "MacWindow.h"
#include "ZVJob.h"
#include "ZVLibInternal.h"
#include "foundation/Guard.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

namespace {

/// While the mouse is held it is followed so often, so that lists and bars scroll evenly beside it.
constexpr double HoldTimerInterval = 0.02;

/// The longest wait, for a loop without a timer.
constexpr uint64_t LongestWait = 1000;

void Follow_Resting_Mouse()
{
    int x = 0, y = 0;
    Display()->Pointer(x, y);
    Mouse_Holder()->Track(x, y);
}

/// The timers are those of all loops together. Times are milliseconds of the display's clock.
class Timers {
public:
    uint64_t Next_Due() const;
    bool Is_Any_Due() const { return Next_Due() <= Now(); }

    /// Runs what is due. A timer may open a loop of its own, in which all of them go on.
    void Run_Due();
    void Reset();

private:
    struct Timer {
        uint64_t interval;
        bool (*isWanted)();
        void (*run)();
        uint64_t due = 0;  ///< 0 is at once
    };

    static constexpr uint64_t Milliseconds(double seconds)
    {
        return static_cast<uint64_t>(seconds * 1000 + 0.5);
    }
    static uint64_t Now() { return Display()->Milliseconds(); }

    Timer timers_[5] = {
        {Milliseconds(TickTimerInterval), [] { return true; }, AppTickTimerProcZV},
        {Milliseconds(BusyTimerInterval), [] { return ZVEnv->cursor == ZV_CURSOR_BUSY; }, Do_VBL},
        {Milliseconds(HoldTimerInterval), [] { return Mouse_Holder() != nullptr; }, Follow_Resting_Mouse},
        {Milliseconds(MenuTimerInterval), Is_Menu_Open, Menu_Tick},
        {Milliseconds(JobTimerInterval),
         [] { return AnyJobsBusyZV() && ZVEnv->jobsBlocked == 0 && ZVEnv->guiLevel == 1; },
         AppJobTimerProcZV},
    };
};
Timers timers;

/// A loop that runs. Questions that come up while the application ends can be answered: ExitZV ends the loops
/// that run then, and a modal palette that is displayed later has a loop of its own again.
struct Loop {
    explicit Loop(ZVPalette const* modal)
        : palette(modal), isEnded(!modal && ZVEnv->exitRequested), outer(innermost)
    {
        innermost = this;
    }
    ~Loop() { innermost = outer; }
    Loop(Loop const&) = delete;
    Loop& operator=(Loop const&) = delete;

    void Run();
    void Turn();

    ZVPalette const* palette;  ///< compared, never followed; null for the application's loop
    bool isEnded;
    Loop* outer;

    static Loop* innermost;
};
Loop* Loop::innermost;

// ---- timers -----------------------------------------------------------------------------------------------

uint64_t Timers::Next_Due() const
{
    uint64_t next = Now() + LongestWait;
    for (Timer const& timer : timers_)
        if (timer.isWanted()) next = std::min(next, timer.due);
    return next;
}

void Timers::Run_Due()
{
    for (Timer& timer : timers_) {
        if (!timer.isWanted() || timer.due > Now()) continue;
        // What was missed is not made up for.
        bool const isLate = timer.due + timer.interval <= Now();
        timer.due = (timer.due == 0 || isLate ? Now() : timer.due) + timer.interval;
        Guarded(timer.run);
    }
}

void Timers::Reset()
{
    for (Timer& timer : timers_)
        timer.due = 0;
}

// ---- loops ------------------------------------------------------------------------------------------------

void Show_What_Was_Drawn()
{
    Refresh_GUI();
    Present_Windows();
}

/// An event that there is no memory for is lost.
std::optional<HostEvent> Next_Event(double seconds)
{
    return Guarded([=] { return Display()->Next_Event(seconds); });
}

void Handle_Event(HostEvent const& event)
{
    Guarded([&] { Handle_Host_Event(event); });
}

void Loop::Turn()
{
    Show_What_Was_Drawn();
    uint64_t const now = Display()->Milliseconds(), due = timers.Next_Due();
    std::optional<HostEvent> event = Next_Event(due > now ? static_cast<double>(due - now) / 1000 : 0.0);
    while (event) {
        Handle_Event(*event);
        if (isEnded || timers.Is_Any_Due()) break;
        event = Next_Event(0);
    }
    if (!isEnded) timers.Run_Due();
}

void Loop::Run()
{
    while (!isEnded)
        Turn();
    Show_What_Was_Drawn();
}

bool Is_Modal(ZVPalette const* palette)
{
    ZVPalette const* modal = ZVEnv->modalPalette;
    while (modal && modal != palette)
        modal = modal->nextModal;
    return modal;
}

}  // namespace

void Mac_Run_Application_Loop()
{
    if (Display()) Loop(nullptr).Run();
}

void Mac_Run_Modal_Loop(ZVPalette* palette)
{
    // It may have been closed before its loop begins.
    if (Display() && Is_Modal(palette)) Loop(palette).Run();
}

void Mac_End_Application_Loop()
{
    for (Loop* loop = Loop::innermost; loop; loop = loop->outer)
        loop->isEnded = true;
}

void Mac_End_Modal_Loop(ZVPalette* palette)
{
    for (Loop* loop = Loop::innermost; loop; loop = loop->outer)
        if (loop->palette == palette) loop->isEnded = true;
}

void Run_While(std::function<bool()> const& isWanted)
{
    Loop loop(nullptr);
    while (!loop.isEnded && isWanted())
        loop.Turn();
}

void Mac_Handle_Waiting_Events()
{
    if (!Display()) return;
    while (!ZVEnv->exitRequested) {
        std::optional<HostEvent> const event = Next_Event(0);
        if (!event) break;
        Handle_Event(*event);
    }
    if (!ZVEnv->exitRequested) timers.Run_Due();
    Show_What_Was_Drawn();
}

void Mac_Flush_Events()
{
    if (!Display()) return;
    Guarded([] { Display()->Flush_Input(); });
    Release_Lost_Press();
}

void Forget_Input()
{
    Forget_Press();
    timers.Reset();
}

// ---- clocks -----------------------------------------------------------------------------------------------

static constexpr uint64_t TicksPerSecond = 60;

uint32_t Mac_Tick_Count()
{
    uint64_t const milliseconds = Display() ? Display()->Milliseconds() : OS_Microseconds() / 1000;
    return static_cast<uint32_t>(milliseconds * TicksPerSecond / 1000);
}

long Mac_Double_Click_Time()
{
    constexpr uint64_t usual = 500;
    uint64_t const milliseconds = Display() ? Display()->Double_Click_Milliseconds() : usual;
    return static_cast<long>(milliseconds * TicksPerSecond / 1000);
}

long OS_Events_Waiting()
{
    return Display() && Display()->Has_Events();
}
