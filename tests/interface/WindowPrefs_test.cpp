// Window preferences: what is written comes back in the next run, what damaged files cost, and the merge with
// what is open beside a simple model.
#include "interface/InterfaceTest.h"

#include "FailingHeap.h"
#include "interface/WindowPrefs.h"

#include <map>
#include <random>
#include <strings.h>

namespace {

constexpr char fileName[] = "Windows.prefs";

class WindowPrefs : public InterfaceTest {
protected:
    static std::string Spec(char const* name) { return std::string(ZVEnv->userDataDir) + name; }

    /// What is saved now, with line feeds; nothing when it fails.
    static std::string Saved(std::size_t room = 100000)
    {
        std::string bytes(room, 0);
        ZVFileInfo* const file = OpenFileinMemoryZV(bytes.data(), bytes.size(), ZVFilePermWrite);
        long const isWhole = SaveWindowPositionsZV(file);
        CloseFileZV(file);
        if (!isWhole) return {};
        bytes.resize(bytes.find('\0'));
        std::replace(bytes.begin(), bytes.end(), '\r', '\n');
        return bytes;
    }

    /// The same without what stands ahead of the windows.
    static std::string Windows()
    {
        std::string const text = Saved(), head = "Window Preferences\nScreen 1600 1200\n\n";
        EXPECT_EQ(text.substr(0, head.size()), head);
        return text.substr(head.size());
    }

    /// Puts a file in place of what is known.
    static long Load(std::string text)
    {
        FreeWindowPrefsZV();
        ZVFileInfo* const file = OpenFileinMemoryZV(text.data(), text.size(), ZVFilePermRead);
        long const counts = Read_WindowPrefs(file);
        CloseFileZV(file);
        return counts;
    }
    static long Load_Windows(std::string const& windows)
    {
        return Load("Window Preferences\rScreen 1600 1200\r\r" + windows);
    }

    /// Ends the run as applications do, and begins the next one.
    static void Next_Run()
    {
        std::string const written = Spec("new"), kept = Spec(fileName);
        SetError(ZV_ERR_NONE);
        ZVFileInfo* const file = CreateFileZV(written.c_str(), ZVFilePermWrite, 0, 0, ZVFileFlagNone);
        ASSERT_TRUE(SaveWindowPositionsZV(file));
        CloseFileZV(file);
        ASSERT_EQ(GetErrorZV(), ZV_ERR_NONE);
        ASSERT_TRUE(RenameFileZV(written.c_str(), kept.c_str()));
        CleanUpZV();
        ASSERT_TRUE(InitZV(nullptr, fileName, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0));
    }

    /// A resizable palette by its name, which is its title as well.
    static ZVPalette* Open(char const* name, ZVKind kind, std::vector<TagItem> tags = {})
    {
        ZVPalette* const palette = InitPaletteZV();
        InitGroupZV();
        EndGroupZV(1, 0, 0, nullptr, ZV_GRP_AUTO_SIZE, 1, 0);
        EndPaletteZV(0, name, nullptr);
        tags.insert(tags.begin(), {{ZV_PAL_KIND, kind}, {ZV_PAL_FLAGS, ZV_PALF_SIZE_BOTH}});
        tags.push_back({});
        return DisplayPaletteZV(tags.data()) ? palette : nullptr;
    }

    static long Is_Visible(char const* name)
    {
        long visible = -1;
        GetPalettePrefsZV(name, &visible, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        return visible;
    }
};

// ---- from run to run --------------------------------------------------------------------------------------

/// Every window with its place, its palettes in the order of their tabs and its active one.
std::string Arrangement()
{
    std::string text;
    for (ZVWindow const& window : All_Windows()) {
        text += std::to_string(window.node.id) + " at " + std::to_string(window.left) + "," +
                std::to_string(window.top) + ":";
        for (ZVPalette const& palette : Palettes_Of(window))
            text += std::string(" ") + (window.activePalette == &palette ? "*" : "") + palette.title + " " +
                    std::to_string(palette.width) + "x" + std::to_string(palette.height);
        text += "\n";
    }
    return text;
}

TEST_F(WindowPrefs, AnArrangementComesBackInTheNextRun)
{
    CleanUpZV();
    ASSERT_TRUE(InitZV(nullptr, fileName, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0));
    auto const openAll = [] {
        AddPseudoWindowZV(3, 0, 0, 300, 200, nullptr);
        AddPseudoWindowZV(4, ZV_Position(ZV_POS_AFTER, ZV_POS_ALIGN_START), -1, 200, 200, nullptr);
        Open("Timeline", ZV_KIND_FLOATER);
        Open("Info", ZV_KIND_FLOATER);
        Open("My Tools", ZV_KIND_FIXED);
        Open("Controls", ZV_KIND_FLOATER, {{ZV_PAL_PSEUDO_WINDOW_ID, 3}});
        Open("Keys", ZV_KIND_FIXED);
        Open("Untitled", ZV_KIND_DOCUMENT);
    };
    openAll();
    // The user moves things around: tabs together, a palette into the other pseudo-window, windows elsewhere.
    auto const drag = [](char const* name, long x, long y, long width, long height) {
        ZVRectT<long> const client{x, y, width, height};
        HeadlessDragFrameZV(FindPaletteZV(name)->window, &client);
        HeadlessRunZV(0);
    };
    NewActivePalette(FindPaletteZV("Timeline")->window, FindPaletteZV("Info"), 0, 0, 1);
    ActivatePaletteZV(FindPaletteZV("Timeline"), 0);
    drag("Timeline", -20, 400, 431, 245);
    drag("My Tools", 700, 600, 140, 90);
    drag("Untitled", 800, 100, 300, 300);
    ZVPalette* const keys = FindPaletteZV("Keys");
    keys->flags |= ZV_PALF_PSEUDO;
    NewActivePalette(Find_Record<ZVWindow>(ZVEnv->windows, 4), keys, 0, 0, 1);
    ClosePaletteZV(FindPaletteZV("Untitled"));
    std::string const before = Arrangement();
    std::string const saved = Windows();

    Next_Run();
    EXPECT_EQ(Is_Visible("MY TOOLS"), 1);
    openAll();
    ClosePaletteZV(FindPaletteZV("Untitled"));
    EXPECT_EQ(Arrangement(), before);
    EXPECT_EQ(Windows(), saved);

    ClosePaletteZV(FindPaletteZV("Info"));
    EXPECT_EQ(Is_Visible("Info"), 0) << "closed in this run";
    Next_Run();
    EXPECT_EQ(Is_Visible("Info"), 0) << "and in the last one";
    EXPECT_EQ(Is_Visible("Timeline"), 1);
    long width = 0, height = 0, active = -1;
    EXPECT_EQ(
        GetPalettePrefsZV("timeline", nullptr, nullptr, nullptr, nullptr, nullptr, &width, &height, &active),
        1);
    EXPECT_EQ(active, 1);
    CleanUpWindowsZV();
    EXPECT_EQ(Is_Visible("Timeline"), 1) << "open when the interface was taken down";
}

TEST_F(WindowPrefs, AFileOfAnotherDisplayOrOfNoneDoesNotCount)
{
    struct {
        char const *why, *text;
        long counts;
    } const rows[] = {
        {"whole", "window preferences\rSCREEN 1600 1200\rWindow 1 2\r\tPalette A 3 4\r", 1},
        {"anything ahead of the title", "x\rWindow Preferences\ry\rScreen 1600 1200\r", 1},
        {"another width", "Window Preferences\rScreen 1280 1200\rWindow 1 2\rPalette A 3 4\r", 0},
        {"another height", "Window Preferences\rScreen 1600 1024\rWindow 1 2\rPalette A 3 4\r", 0},
        {"no title", "Screen 1600 1200\rWindow 1 2\rPalette A 3 4\r", 0},
        {"cut behind the title", "Window Preferences\r", 0},
        {"cut in the size", "Window Preferences\rScreen 1600", 0},
        {"empty", "\r", 0},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(Load(row.text), row.counts) << row.why;
        EXPECT_TRUE(row.counts || List_Empty(&ZVEnv->windowPrefs)) << row.why;
    }
}

TEST_F(WindowPrefs, LinesSayWhatTheyCan)
{
    struct {
        char const *why, *read, *written;
    } const rows[] = {
        {"flags in any order, behind the numbers alone",
         "Window 1 2\rPalette \"Active Hidden\" 3 4Hidden Active",
         "Window 1 2\n\tPalette \"Active Hidden\" 3 4 Active Hidden\n\n"},
        {"a word ends at a blank", "window 1 2\rPALETTE My Tools 3 4",
         "Window 1 2\n\tPalette \"My\" 0 0 Hidden\n\n"},
        {"a comma behind the id", "PseudoWindow 3, -4 5\r  Palette A 6 7",
         "PseudoWindow 3 -4 5\n\tPalette \"A\" 6 7 Hidden\n\n"},
        {"a bad number leaves both", "Window 9 x\rPalette A 6 x\rPalette B y 7",
         "Window 0 0\n\tPalette \"A\" 0 0 Hidden\n\tPalette \"B\" 0 0 Hidden\n\n"},
        {"an open quote", "Window 1 2\rPalette \"A 3 4", "Window 1 2\n\tPalette \"A 3 4\" 0 0 Hidden\n\n"},
        {"no window for it, no name, nothing known",
         "Palette A 1 2\rAppWindow 3 4\rPalette B 1 2\rWindow 5 6\rPalette\rPalette \"\" 1 2\rOther 7 8",
         "Window 5 6\n\n"},
        {"numbers of no size", "Window 99999999999999999999 -99999999999999999999\rPalette A 5000000000 -1",
         "Window 2147483647 -2147483648\n\tPalette \"A\" 2147483647 -1 Hidden\n\n"},
        {"a name that no line can hold", "Window 1 2\rPalette 12\"disk 3 4", "Window 1 2\n\n"},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(Load_Windows(row.read), 1) << row.why;
        EXPECT_EQ(Windows(), row.written) << row.why;
    }
    std::string const longest(220, 'n'), tooLong(300, 'n');
    Load_Windows("Window 1 2\rPalette " + longest + " 3 4\rPalette " + tooLong + " 3 4\rPalette B 5 6");
    EXPECT_EQ(Windows(),
              "Window 1 2\n\tPalette \"" + longest + "\" 3 4 Hidden\n\tPalette \"B\" 5 6 Hidden\n\n");
}

TEST_F(WindowPrefs, WhatCannotBeShownDoesNotCountWhereItIsUsed)
{
    struct {
        char const *why, *file;
        ZVRectT<long> expected;  // of the window; -1 as declared
    } const rows[] = {
        {"as it was", "Window 30 40\rPalette Tools 200 100", {30, 40, 200, 100}},
        {"partly outside", "Window -150 40\rPalette Tools 200 100", {-150, 40, 200, 100}},
        {"on no monitor", "Window 1600 40\rPalette Tools 200 100", {-1, -1, 200, 100}},
        {"too large", "Window 0 0\rPalette Tools 2147483647 2147483647", {0, 0, 1600, 1200}},
        {"no size", "Window 30 40\rPalette Tools 0 -5", {30, 40, -1, -1}},
        {"a pseudo-window that is gone", "PseudoWindow 7 30 40\rPalette Tools 200 100", {-1, -1, 200, 100}},
    };
    for (auto const& row : rows) {
        FreeWindowPrefsZV();
        ZVWindow const declared = *Open("Tools", ZV_KIND_FIXED)->window;
        ClosePaletteZV(FindPaletteZV("Tools"));
        Load_Windows(row.file);
        ZVPalette const* const palette = Open("Tools", ZV_KIND_FIXED);
        ZVWindow const& window = *palette->window;
        auto const told = [](long value, long otherwise) { return value == -1 ? otherwise : value; };
        if (row.expected.x != -1) {
            EXPECT_EQ(window.left, row.expected.x) << row.why;
            EXPECT_EQ(window.top, row.expected.y) << row.why;
        } else {
            EXPECT_LT(window.left - (declared.left - window.width / 2), declared.width) << row.why;
        }
        EXPECT_EQ(window.width, told(row.expected.width, declared.width)) << row.why;
        EXPECT_EQ(window.height, told(row.expected.height, declared.height)) << row.why;
        ClosePaletteZV(FindPaletteZV("Tools"));
    }
}

TEST_F(WindowPrefs, APaletteJoinsThoseItWasWith)
{
    Load_Windows("Window 10 20\rPalette A 100 50\rPalette B 100 50 Active\rWindow 300 20\rPalette C 90 50\r");
    ZVPalette* const other = Open("C", ZV_KIND_FLOATER);
    ZVPalette* const second = Open("b", ZV_KIND_FLOATER);
    ZVPalette* const first = Open("A", ZV_KIND_FLOATER);
    EXPECT_EQ(first->window, second->window);
    EXPECT_EQ(first->window->activePalette, second) << "the one that was active";
    EXPECT_NE(other->window, first->window);
    EXPECT_EQ(other->window->left, 300);
    ZVPalette* const alone = Open("A", ZV_KIND_FLOATER, {{ZV_PAL_OVERRIDE_PREFS, 1}});
    EXPECT_NE(alone->window, first->window);
}

TEST_F(WindowPrefs, AShortFileIsToldAndLackOfMemoryCostsARecord)
{
    Open("A", ZV_KIND_FLOATER);
    Open("B", ZV_KIND_FIXED);
    std::size_t const size = Saved().size();
    for (std::size_t room = 0; room < size; ++room)
        EXPECT_EQ(Saved(room), "") << room;
    EXPECT_EQ(SaveWindowPositionsZV(nullptr), 0);
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    std::string const whole = Saved();
    for (long after = 0; after < 8; ++after) {
        {
            FailingHeap const heap(after);
            Snapshot_WindowPrefs();
        }
        EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
        EXPECT_EQ(Saved(), whole) << after;
    }
}

TEST_F(WindowPrefs, TenThousandPalettesAreNoMatter)
{
    std::string text = "Window 1 2\r";
    for (int i = 0; i < 10000; ++i)
        text += "Palette Name" + std::to_string(i) + " " + std::to_string(i) + " 7\r";
    Load_Windows(text);
    long width = 0;
    EXPECT_TRUE(
        GetPalettePrefsZV("name9999", nullptr, nullptr, nullptr, nullptr, nullptr, &width, nullptr, nullptr));
    EXPECT_EQ(width, 9999);
    ASSERT_TRUE(Open("Name5000", ZV_KIND_FLOATER));
    ClosePaletteZV(FindPaletteZV("Name5000"));
    EXPECT_EQ(Saved(1000000).size(), Saved(1000000).size());
}

// ---- the merge beside a model -----------------------------------------------------------------------------

/// The rules of the merge, on plain values.
struct PrefsModel {
    struct Entry {
        std::string name;
        long width, height;
        bool active;
    };
    struct Place {
        long pseudoId, x, y;
        std::vector<Entry> entries;
    };
    std::vector<Place> places;

    static std::string Name_Of(ZVPalette const& palette)
    {
        return palette.prefName ? palette.prefName : palette.title;
    }

    void Forget(std::string const& name)
    {
        for (Place& place : places) {
            auto const found = std::find_if(place.entries.begin(), place.entries.end(), [&](Entry const& e) {
                return strcasecmp(e.name.c_str(), name.c_str()) == 0;
            });
            if (found == place.entries.end()) continue;
            place.entries.erase(found);
            std::erase_if(places, [](Place const& each) { return each.entries.empty(); });
            return;
        }
    }

    void Merge()
    {
        for (ZVWindow const& window : All_Windows())
            for (ZVPalette const& palette : Palettes_Of(window))
                if (!(palette.flags & ZV_PALF_NO_PREFS)) Forget(Name_Of(palette));
        for (ZVWindow const& window : All_Windows()) {
            long const id = window.node.id;
            auto place = std::find_if(places.begin(), places.end(), [&](Place const& each) {
                return each.pseudoId == id && each.x == window.left && each.y == window.top;
            });
            if (place == places.end()) place = places.insert(places.end(), {id, window.left, window.top, {}});
            for (ZVPalette const& palette : Palettes_Of(window)) {
                if (palette.flags & ZV_PALF_NO_PREFS || palette.kind == ZV_KIND_DOCUMENT) continue;
                long const bar = palette.kind == ZV_KIND_FLOATER ? ZVEnv->style->tabHeight : 0;
                place->entries.push_back({Name_Of(palette), palette.width, palette.height + bar,
                                          window.activePalette == &palette});
            }
            std::erase_if(places, [](Place const& each) { return each.entries.empty(); });
        }
    }

    std::string Text() const
    {
        std::string text;
        for (Place const& place : places) {
            text += place.pseudoId ? "PseudoWindow " + std::to_string(place.pseudoId) : "Window";
            text += " " + std::to_string(place.x) + " " + std::to_string(place.y) + "\n";
            for (Entry const& entry : place.entries) {
                bool isOpen = false;
                for (ZVWindow& window : All_Windows())
                    for (ZVPalette const& palette : Palettes_Of(window))
                        isOpen |= !(palette.flags & ZV_PALF_NO_PREFS) &&
                                  strcasecmp(Name_Of(palette).c_str(), entry.name.c_str()) == 0;
                text += "\tPalette \"" + entry.name + "\" " + std::to_string(entry.width) + " " +
                        std::to_string(entry.height) + (entry.active ? " Active" : "") +
                        (isOpen ? "" : " Hidden") + "\n";
            }
            text += "\n";
        }
        return text;
    }
};

TEST_F(WindowPrefs, TheMergeFollowsItsRulesThroughAnySequence)
{
    CleanUpZV();
    ASSERT_TRUE(InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_ROOT_WINDOW, 1, 0));
    for (unsigned short id : std::initializer_list<unsigned short>{5, 6})
        AddPseudoWindowZV(id, 0, 0, 200, 100, nullptr);
    SetPseudoWindowPosZV(6, 300, 0);
    static char const* const names[] = {"One", "one", "Two words", "Three", "Four", "Five"};
    std::mt19937 random(11);
    auto const below = [&](unsigned long limit) { return static_cast<unsigned long>(random() % limit); };
    PrefsModel model;
    auto const some = [&]() -> ZVPalette* {
        std::vector<ZVPalette*> open;
        for (ZVWindow const& window : All_Windows())
            for (ZVPalette& palette : Palettes_Of(window))
                open.push_back(&palette);
        return open.empty() ? nullptr : open[below(open.size())];
    };
    for (int step = 0; step < 600; ++step) {
        ZVPalette* const palette = some();
        unsigned long const action = below(10);
        if (action < 4 || !palette) {
            static ZVKind const kinds[] = {ZV_KIND_FLOATER, ZV_KIND_FLOATER, ZV_KIND_FIXED, ZV_KIND_DOCUMENT};
            std::vector<TagItem> tags = {{ZV_PAL_WINDOW_X, 100 * below(3)}, {ZV_PAL_WINDOW_Y, 50}};
            if (below(3) == 0) tags.push_back({ZV_PAL_PSEUDO_WINDOW_ID, 5 + below(2)});
            if (below(8) == 0) tags.push_back({ZV_PAL_FLAGS, ZV_PALF_NO_PREFS});
            if (below(3) == 0) tags.push_back({ZV_PAL_PREF_NAME, Tag_Word(names[below(6)])});
            if (below(3) == 0) tags.push_back({ZV_PAL_OVERRIDE_PREFS, 1});
            Open(names[below(6)], kinds[below(4)], tags);
        } else if (action < 7) {
            model.Merge();
            ClosePaletteZV(palette);
        } else if (action == 7 && palette->window->sysWindow) {
            ZVRectT<long> const client{static_cast<long>(100 * below(3)), 50, 150, 80};
            HeadlessDragFrameZV(palette->window, &client);
            HeadlessRunZV(0);
        } else {
            ActivatePaletteZV(palette, 0);
        }
        if (below(4)) continue;
        model.Merge();
        ASSERT_EQ(Windows(), model.Text()) << "step " << step;
    }
}

}  // namespace
