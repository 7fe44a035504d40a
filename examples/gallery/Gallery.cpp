// The gallery: one program that shows the kinds of palettes and all gadgets there are, in both themes.
//
//     gallery                         on the desktop
//     gallery --events                the same, and writes each event to standard output
//     gallery --screenshot FILE.png   draws itself in memory and writes the picture of its desktop
//     gallery --theme light|dark      with one of the two, the light theme being the usual one
#include "Gallery.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

static bool tellsEvents = false;

void Tell(ZVEvent const* event)
{
    if (!tellsEvents || event->type == ZV_EVENT_TICK || event->type == ZV_EVENT_MOUSE_MOVE) return;
    unsigned const type = event->type;
    std::printf("event %u", type);
    if (event->palette) std::printf(" palette %lu", static_cast<unsigned long>(event->palette->node.id));
    if (type == ZV_EVENT_GADGET) {
        ZVItem const* const item = Event_Item(event);
        std::printf(" item %lu state %d", static_cast<unsigned long>(item->node.id), item->state);
        if (item->editText) std::printf(" text \"%s\"", item->editText);
        if (item->type == ZV_GAD_FLOAT) std::printf(" value %g", item->realValue);
    }
    if (type == ZV_EVENT_KEY) std::printf(" key %u", event->key);
    if (type == ZV_EVENT_OPEN_DOC) std::printf(" path %s", reinterpret_cast<char const*>(event->item));
    std::printf(" modifiers %x\n", event->modifiers);
    std::fflush(stdout);
}

/// The desktop's wish to quit ends the program, as closing the document does.
static void On_Event(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_CLOSE_APP) ExitZV();
}

namespace {
struct Options {
    char const* screenshot = nullptr;
    long theme = 1;
};
}  // namespace

/// False for an option that there is not.
static bool Read_Options(int count, char** arguments, Options& options)
{
    for (int i = 1; i < count; ++i) {
        bool const hasValue = i + 1 < count;
        if (std::strcmp(arguments[i], "--events") == 0) {
            tellsEvents = true;
        } else if (std::strcmp(arguments[i], "--screenshot") == 0 && hasValue) {
            options.screenshot = arguments[++i];
        } else if (std::strcmp(arguments[i], "--theme") == 0 && hasValue) {
            options.theme = std::strcmp(arguments[++i], "dark") == 0 ? 2 : 1;
        } else {
            return false;
        }
    }
    return true;
}

/// Nobody is there to close the dialog, so the picture is taken before it is asked for.
static bool Take_Screenshot(char const* path)
{
    HeadlessRunZV(200);
    if (HeadlessScreenshotZV(nullptr, path)) return true;
    std::fprintf(stderr, "gallery: %s cannot be written\n", path);
    return false;
}

int main(int count, char** arguments)
{
    Options options;
    if (!Read_Options(count, arguments, options)) {
        std::fputs("usage: gallery [--events] [--theme light|dark] [--screenshot FILE.png]\n", stderr);
        return 2;
    }
    if (options.screenshot) setenv("ZV_HOST", "headless", 1);
    if (!InitZV(On_Event, nullptr, nullptr, nullptr, nullptr)) return 1;
    SetPenPresetZV(options.theme);
    Show_Main_Palette();
    Show_Tools_Palette();
    SetCurrentPaletteZV(MainPalette);
    SetGadgetStateZV(options.theme == 1 ? LightTheme : DarkTheme, 1);
    bool isWell = true;
    if (options.screenshot)
        isWell = Take_Screenshot(options.screenshot);
    else
        HandleGUIZV();
    CleanUpZV();
    return isWell ? 0 : 1;
}
