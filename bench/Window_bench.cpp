// A window of a thousand buttons in a grid, on the desktop's real windows, beside the same in FLTK: time
// until it is shown and drawn, for drawing all of it again, and for a new size with layout and drawing. It
// needs a display, such as that of xvfb-run.
#include "BenchTools.h"

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Double_Window.H>
#include <FL/x.H>

#include <ZVLib.h>

#include <cstring>
#include <memory>
#include <thread>

namespace {

constexpr int Columns = 25, Rows = 40, ButtonWidth = 44, ButtonHeight = 22, Gap = 2;
constexpr int WindowWidth = Columns * (ButtonWidth + Gap), WindowHeight = Rows * (ButtonHeight + Gap);

// ---- FLTK -------------------------------------------------------------------------------------------------

/// All that was drawn has reached the display.
void Finish_Drawing()
{
    Fl::flush();
    XSync(fl_display, False);
}

std::unique_ptr<Fl_Double_Window> Make_Peer()
{
    auto window = std::make_unique<Fl_Double_Window>(WindowWidth, WindowHeight, "peer");
    for (int row = 0; row < Rows; ++row)
        for (int column = 0; column < Columns; ++column)
            new Fl_Button(column * (ButtonWidth + Gap), row * (ButtonHeight + Gap), ButtonWidth, ButtonHeight,
                          "button");
    window->end();
    window->resizable(window.get());
    return window;
}

void Show_Peer(Fl_Double_Window& window)
{
    window.show();
    window.wait_for_expose();
    Finish_Drawing();
}

// ---- the library ------------------------------------------------------------------------------------------

class Interface {
public:
    Interface() { InitZV(nullptr, nullptr, nullptr, nullptr, nullptr); }
    ~Interface() { CleanUpZV(); }
    Interface(Interface const&) = delete;
    Interface& operator=(Interface const&) = delete;
};

/// Declares the palette, shows it, and handles events until it is drawn.
ZVPalette* Show_Buttons()
{
    ZVPalette* const palette = InitPaletteZV();
    InitGroupZV();
    for (int i = 0; i < Rows * Columns; ++i) {
        bool const beginsRow = i % Columns == 0;
        AddGadgetZV(0,
                    i == 0      ? 0
                    : beginsRow ? 0x0204
                                : 0x0402,
                    beginsRow ? -Columns : -1, ZV_GAD_BUTTON, ZV_SIZE_CUSTOM, "button", ZV_ITEM_WIDTH,
                    ButtonWidth, ZV_ITEM_HEIGHT, ButtonHeight, ZV_ITEM_GROW_WIDTH, 4, ZV_GAP_FIXED, Gap);
    }
    EndGroupZV(1, 0, 0, "", ZV_GRP_GROW_WIDTH, 100, 0);
    EndPaletteZV(1, "buttons", nullptr);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_DOCUMENT, ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH, 0);
    AdvanceGUIZV(0);
    return palette;
}

// ---- the desktop ------------------------------------------------------------------------------------------

/// The window of that title below another one; 0 when there is none.
Window Find_Window(Display* display, Window parent, char const* title)
{
    Window root = 0, above = 0, *children = nullptr, found = 0;
    unsigned count = 0;
    if (!XQueryTree(display, parent, &root, &above, &children, &count)) return 0;
    for (unsigned i = 0; i < count && !found; ++i) {
        XTextProperty name;
        if (XGetWMName(display, children[i], &name) && name.value) {
            if (std::strcmp(reinterpret_cast<char const*>(name.value), title) == 0) found = children[i];
            XFree(name.value);
        }
        if (!found) found = Find_Window(display, children[i], title);
    }
    if (children) XFree(children);
    return found;
}

/// Gives a window a size that is larger by a step, and waits until the event is on its way to the program.
void Give_Size(char const* title, int step)
{
    static Display* const display = XOpenDisplay(nullptr);
    Window const window = Find_Window(display, DefaultRootWindow(display), title);
    XResizeWindow(display, window, static_cast<unsigned>(WindowWidth + 120 + step),
                  static_cast<unsigned>(WindowHeight + 120 + step));
    XSync(display, False);
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
}

// ---- both -------------------------------------------------------------------------------------------------

void Register_All()
{
    Bench::Register("Window/show/1000", 1.0, [] {
        auto const interface = std::make_shared<Interface>();
        auto const peer = std::make_shared<std::unique_ptr<Fl_Double_Window>>();
        return std::tuple([interface] { Show_Buttons(); },
                          [peer] {
                              *peer = Make_Peer();
                              Show_Peer(**peer);
                          },
                          [peer] {
                              CleanUpWindowsZV();
                              *peer = nullptr;
                              if (fl_display) Finish_Drawing();
                          });
    });
    Bench::Register("Window/redraw/1000", 0.5, [] {
        auto const interface = std::make_shared<Interface>();
        std::shared_ptr<Fl_Double_Window> const peer = Make_Peer();
        Show_Buttons();
        Show_Peer(*peer);
        return std::pair(
            [interface] {
                RefreshUIZV();
                AdvanceGUIZV(0);
            },
            [peer] {
                peer->redraw();
                Finish_Drawing();
            });
    });
    Bench::Register("Window/resize/1000", 0.5, [] {
        auto const interface = std::make_shared<Interface>();
        std::shared_ptr<Fl_Double_Window> const peer = Make_Peer();
        Show_Buttons();
        Show_Peer(*peer);
        auto const size = std::make_shared<int>(0);
        // The desktop gives both windows their size, as it does while an edge is dragged; each program then
        // handles what waits for it.
        return std::tuple([interface] { AdvanceGUIZV(0); },
                          [peer] {
                              Fl::check();
                              Finish_Drawing();
                          },
                          [peer, size] {
                              ++*size;
                              Give_Size("buttons", *size % 20);
                              Give_Size("peer", *size % 20);
                          });
    });
}

void Measure_Start(benchmark::State& state)
{
    for (auto _ : state)
        state.SetIterationTime(Bench::Time([] { Interface const interface; }));
    state.counters["limit_ms"] = 60;
}
BENCHMARK(Measure_Start)
    ->Name("Window/start_and_end")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);

[[maybe_unused]] bool const areRegistered = (Register_All(), true);

}  // namespace
