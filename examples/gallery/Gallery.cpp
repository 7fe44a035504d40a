// The gallery: one program that shows the kinds of palettes and all gadgets there are, in both themes.
//
//     gallery                         on the desktop
//     gallery --events                the same, and writes to standard output each event, what came of
//                                     dialogs, and where gadgets and tabs are, when that has changed
//     gallery --screenshot FILE.png   draws itself in memory and writes the picture of its desktop, which
//                                     ZV_HEADLESS_SIZE makes larger or smaller than 1600x1200
//     gallery --theme light|dark      with one of the two, the light theme being the usual one
//     gallery --tiled                 as one window, in which palettes are tiled
//     gallery --prefs NAME            keeps the arrangement of its palettes in that file of the user data
//                                     directory, from run to run
#include "Gallery.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <utility>

static bool tellsEvents = false;
static char const* screenshot = nullptr;
static bool isWritten = false;
static bool isTiled = false;
static char const* prefsName = nullptr;

/// Left, top, width and height on the screen, state and largest one, by the ids of a palette and its gadget.
using Places = std::map<std::pair<unsigned, unsigned>, std::array<long, 6>>;

/// The tab of a floater counts as gadget 0.
static void Add_Tab(Places& places, ZVPalette const& palette)
{
    ZVRectT<long> client;
    GetClientRectZV(palette.window, &client);
    if (palette.kind == ZV_KIND_FLOATER)
        places[{palette.node.id, 0}] = {client.x + palette.tabLeft, client.y, palette.tabWidth,
                                        ZVEnv->style->tabHeight,    0,        0};
}

static void Add_Gadgets(Places& places, ZVPalette const& palette)
{
    for (Node const* group = List_First(&palette.groups); group; group = List_Next(group)) {
        List const& items = reinterpret_cast<ZVGroup const*>(group)->items;
        for (Node const* node = List_First(&items); node; node = List_Next(node)) {
            auto const& item = *reinterpret_cast<ZVItem const*>(node);
            long x = 0, y = 0;
            GetItemScreenPosZV(&item, &x, &y);
            if (item.kind == ZV_ITEM_GADGET)
                places[{palette.node.id, node->id}] = {x,           y,          item.width,
                                                       item.height, item.state, item.maxInt};
        }
    }
}

/// Writes the places that have changed since the last time, those of the library's own dialogs too.
static void Tell_Places()
{
    static Places told;
    Places places;
    for (Node const* window = List_First(&ZVEnv->windows); window; window = List_Next(window)) {
        List const& palettes = reinterpret_cast<ZVWindow const*>(window)->palettes;
        for (Node const* node = List_First(&palettes); node; node = List_Next(node)) {
            auto const& palette = *reinterpret_cast<ZVPalette const*>(node);
            Add_Tab(places, palette);
            if (IsPaletteVisibleZV(&palette)) Add_Gadgets(places, palette);
        }
    }
    for (auto const& [ids, place] : told)
        if (!places.contains(ids)) std::printf("gone %u %u\n", ids.first, ids.second);
    for (auto const& [ids, place] : places)
        if (auto const old = told.find(ids); old == told.end() || old->second != place)
            std::printf("place %u %u %ld %ld %ld %ld %ld %ld\n", ids.first, ids.second, place[0], place[1],
                        place[2], place[3], place[4], place[5]);
    told = std::move(places);
    std::fflush(stdout);
}

/// On one line, whatever is in it.
static void Tell_Text(char const* text)
{
    std::printf(" text \"");
    for (char const* place = text; *place; ++place) {
        if (*place == '\n')
            std::printf("\\n");
        else
            std::putchar(*place);
    }
    std::putchar('"');
}

void Tell(ZVEvent const* event)
{
    if (!tellsEvents || event->type == ZV_EVENT_MOUSE_MOVE) return;
    // The last one of a tick goes to the application.
    bool const isTick = event->type == ZV_EVENT_TICK;
    if (event->type == ZV_EVENT_KEY || (isTick && !event->palette)) Tell_Places();
    if (isTick) return;
    unsigned const type = event->type;
    std::printf("event %u", type);
    if (event->palette) std::printf(" palette %lu", static_cast<unsigned long>(event->palette->node.id));
    if (type == ZV_EVENT_GADGET) {
        ZVItem const* const item = Event_Item(event);
        std::printf(" item %lu state %d", static_cast<unsigned long>(item->node.id), item->state);
        if (item->type == ZV_GAD_STRING || item->type == ZV_GAD_EDITOR) Tell_Text(item->editText);
        if (item->type == ZV_GAD_FLOAT) std::printf(" value %g", item->realValue);
    }
    if (type == ZV_EVENT_MENU) {
        std::printf(" menu %u action %u", Event_Menu(event)->node.id, event->key);
        Tell_Text(Event_Menu(event)->text);
        std::printf(" state %d", (Event_Menu(event)->flags & ZV_MENUF_CHECKED) != 0);
    }
    if (type == ZV_EVENT_ACTION) std::printf(" action %lu", event->item);
    if (type == ZV_EVENT_KEY) std::printf(" key %u", event->key);
    if (type == ZV_EVENT_OPEN_DOC) std::printf(" path %s", reinterpret_cast<char const*>(event->item));
    std::printf(" modifiers %x\n", event->modifiers);
    std::fflush(stdout);
}

void Show_Result(unsigned short id, char const* text)
{
    SetTextGadgetStateZV(id, text);
    if (!tellsEvents) return;
    std::printf("result %u", id);
    Tell_Text(text);
    std::printf("\n");
    std::fflush(stdout);
}

/// The desktop's wish to quit ends the program, as closing the document does; files that it hands over are
/// opened.
static void On_Event(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_CLOSE_APP) ExitZV();
    if (event->type == ZV_EVENT_OPEN_DOC) {
        Show_Media_Palette();
        Open_Media(reinterpret_cast<char const*>(event->item));
    }
    if (event->type == ZV_EVENT_MENU) On_Action(event->key);
    if (event->type == ZV_EVENT_ACTION) On_Action(event->item);
}

/// False for an option that there is not.
static bool Read_Options(int count, char** arguments, long& theme)
{
    for (int i = 1; i < count; ++i) {
        bool const hasValue = i + 1 < count;
        if (std::strcmp(arguments[i], "--events") == 0) {
            tellsEvents = true;
        } else if (std::strcmp(arguments[i], "--screenshot") == 0 && hasValue) {
            screenshot = arguments[++i];
        } else if (std::strcmp(arguments[i], "--tiled") == 0) {
            isTiled = true;
        } else if (std::strcmp(arguments[i], "--prefs") == 0 && hasValue) {
            prefsName = arguments[++i];
        } else if (std::strcmp(arguments[i], "--theme") == 0 && hasValue) {
            theme = std::strcmp(arguments[++i], "dark") == 0 ? 2 : 1;
        } else {
            return false;
        }
    }
    return true;
}

bool Take_Screenshot()
{
    if (!screenshot) return false;
    isWritten = HeadlessScreenshotZV(nullptr, screenshot);
    if (!isWritten) std::fprintf(stderr, "gallery: %s cannot be written\n", screenshot);
    return true;
}

/// The picture is taken by the dialog, whose display returns when it has been closed.
static bool Draw_Picture()
{
    HeadlessRunZV(200);
    if (isTiled) {
        Take_Screenshot();
        return isWritten;
    }
    Show_Controls_Palette();
    Show_Choices();
    Show_Pop_Up();
    Show_Dialog();
    return isWritten;
}

/// Writes the arrangement beside the old file and puts it in its place once it is whole.
static void Save_Prefs()
{
    std::string const spec = std::string(ZVEnv->userDataDir) + prefsName, written = spec + ".new";
    SetError(ZV_ERR_NONE);
    ZVFileInfo* const file = CreateFileZV(written.c_str(), ZVFilePermWrite, 0, 0, ZVFileFlagNone);
    bool const isWhole = SaveWindowPositionsZV(file);
    CloseFileZV(file);
    bool const isKept = isWhole && GetErrorZV() == ZV_ERR_NONE && RenameFileZV(written.c_str(), spec.c_str());
    if (isKept) return;
    DeleteFileZV(written.c_str());
    UserMessageZV("The arrangement of the palettes could not be saved.");
}

static void Show_Palettes(long theme)
{
    SetPenPresetZV(theme);
    if (isTiled) {
        Show_Tiles();
    } else {
        Show_Main_Palette();
        Show_Tools_Palette();
        SetCurrentPaletteZV(MainPalette);
    }
    SetGadgetStateZV(theme == 1 ? LightTheme : DarkTheme, 1);
    // A palette that was open at the end of the last run is so again.
    long isOpen = 0;
    if (GetPalettePrefsZV("Requesters", &isOpen, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr) &&
        isOpen)
        Show_Requesters_Palette();
}

int main(int count, char** arguments)
{
    long theme = 1;
    if (!Read_Options(count, arguments, theme)) {
        std::fputs("usage: gallery [--events] [--theme light|dark] [--tiled] [--prefs NAME]\n"
                   "               [--screenshot FILE.png]\n",
                   stderr);
        return 2;
    }
    if (screenshot) setenv("ZV_HOST", "headless", 1);
    if (!InitZV(On_Event, prefsName, nullptr, nullptr, ZV_INIT_APP_TITLE, "Gallery",
                isTiled ? ZV_INIT_ROOT_WINDOW : ZV_TAG_IGNORE, 1, 0))
        return 1;
    Make_Menus();
    Show_Palettes(theme);
    bool isWell = true;
    if (screenshot)
        isWell = Draw_Picture();
    else
        HandleGUIZV();
    if (prefsName) Save_Prefs();
    CleanUpWindowsZV();
    Free_Menus();
    CleanUpZV();
    return isWell ? 0 : 1;
}
