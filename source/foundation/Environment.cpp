// Start and end of the library: InitZV brings the families up in a fixed order, CleanUpZV takes them down
// again.
#include "ZVLibInternal.h"

#include "Style.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

static char const messageFile[] = "Locale\\ZVLibStr.txt";

/// What the pixels read while there is no environment with a table of its own.
static constexpr auto byteToFraction = [] {
    std::array<double, 256> table{};
    for (int i = 0; i < 256; ++i)
        table[static_cast<std::size_t>(i)] = i / 255.0;
    return table;
}();
constinit double const* ZVPixelBase::_byteToFracTbl = byteToFraction.data();

ZVEnvironment* ZVEnv = nullptr;
ZVEnvironment* ZVEnvOS = nullptr;

/// A block that may be missing: AllocMemZV would not return without memory.
template <typename Record> static Record* Make_Record()
{
    void* block = Alloc_Aligned(sizeof(Record), alignof(Record));
    return block ? new (block) Record{} : nullptr;
}

static char* Copy_Text(char const* text)
{
    std::size_t const size = std::strlen(text) + 1;
    void* block = Alloc_Aligned(size, 1);
    return block ? static_cast<char*>(std::memcpy(block, text, size)) : nullptr;
}

/// The record with what InitZV cannot do without. False when memory runs out; what was had is in the record.
static bool Make_Environment(void (*callback)(ZVEvent*), char const* prefsName, TagItem* tags)
{
    ZVEnv = ZVEnvOS = Make_Record<ZVEnvironment>();
    if (!ZVEnv) return false;
    for (List* list : {&ZVEnv->menus, &ZVEnv->windows, &ZVEnv->jobs, &ZVEnv->threads, &ZVEnv->icons,
                       &ZVEnv->windowPrefs, &ZVEnv->stringFiles, &ZVEnv->formats})
        NewList(list);
    ZVEnv->style = Make_Record<ZVStyle>();
    if (!ZVEnv->style || !Init_MouseQueue()) return false;
    if (prefsName && !(ZVEnv->prefsFile = Copy_Text(prefsName))) return false;

    ZVEnv->callback = callback;
    ZVEnv->initTags = CloneTagItems(tags);
    ZVEnv->eraseOnDestroy = 1;
    ZVEnv->toolTipsOn = 1;
    ZVEnv->tablet.pressure = 65535;
    Init_Style(*ZVEnv->style);
    std::ranges::copy(byteToFraction, ZVEnv->fracTable);
    ZVPixelBase::_byteToFracTbl = ZVEnv->fracTable;
    return true;
}

static void Take_Init_Tags()
{
    TagItem* cursor = ZVEnv->initTags;
    while (TagItem const* tag = NextTagItem(&cursor)) {
        switch (tag->tag) {
        case ZV_INIT_ROOT_WINDOW:
            ZVEnv->hasRootTag = 1;
            SetStylePenZV(ZV_PEN_PALETTE, GetColorZV(ZV_PEN_ROOT));
            break;
        case ZV_INIT_MONITOR_COUNT: ZVEnv->monitorCount = static_cast<int32_t>(tag->data); break;
        default: break;
        }
    }
}

static ZVMonitor Monitor_From(ZVRectT<long> const& area)
{
    return {static_cast<int32_t>(area.x), static_cast<int32_t>(area.y), static_cast<int32_t>(area.width),
            static_cast<int32_t>(area.height)};
}

/// Adds a pair behind the last of the tags of InitZV, so that one the application gave is found first.
static void Append_Init_Tag(unsigned long tag, unsigned long data)
{
    TagItem pair[] = {{tag, data}, {}};
    *FindTagDone(ZVEnv->initTags) = {ZV_TAG_MORE, Tag_Word(&pair[0])};
    FreeMemZV(std::exchange(ZVEnv->initTags, CloneTagItems(ZVEnv->initTags)));
}

/// Settles the monitors: those of the tags, and where a tag is missing those of the platform.
static void Settle_Monitors()
{
    ZVRectT<long> areas[4];
    long count = 0;
    GetMonitorInfoZV(&count, &areas[0], &areas[1], &areas[2], &areas[3]);
    for (unsigned long i = 0; i < 4; ++i) {
        TagItem const* tag = FindTagItem(ZV_INIT_MONITOR_1 + i, ZVEnv->initTags);
        if (auto const* edges = tag ? reinterpret_cast<long const*>(tag->data) : nullptr)
            areas[i].Set(edges[0], edges[1], edges[2], edges[3]);
        ZVEnv->monitors[i] = Monitor_From(areas[i]);
    }
    if (ZVEnv->monitorCount == 0) {
        ZVEnv->monitorCount = static_cast<int32_t>(count);
        ZVMonitor const* end = ZVEnv->monitors + std::clamp(count, 1L, 4L);
        auto const* narrowest = std::ranges::min_element(ZVEnv->monitors, end, {}, &ZVMonitor::width);
        Append_Init_Tag(ZV_INIT_MONITOR, static_cast<unsigned long>(narrowest - ZVEnv->monitors));
    }
    if (ZVEnv->monitorCount < 1 || ZVEnv->monitorCount > 4) ZVEnv->monitorCount = 1;
}

/// Frees the record with all that it owns directly.
static void Free_Environment()
{
    Free_MouseQueue();
    FreeFileSpecZV(ZVEnv->homeDir);
    FreeFileSpecZV(ZVEnv->userDataDir);
    FreeMemZV(ZVEnv->initTags);
    FreeMemZV(ZVEnv->style);
    FreeMemZV(ZVEnv->prefsFile);
    FreeMemZV(ZVEnv->appTitle);
    CleanupIconList();
    FreeWindowPrefsZV();
    FreeStringTable(ZVEnv->stringTable);
    SetErrorString(nullptr);
    ZVPixelBase::_byteToFracTbl = byteToFraction.data();
    FreeMemZV(ZVEnv);
    ZVEnv = ZVEnvOS = nullptr;
}

namespace {
/// Releases a start that ends early, also by an assertion.
struct UnfinishedStart {
    bool isFinished = false;
    ~UnfinishedStart()
    {
        if (!isFinished) CleanUpZV();
    }
};
}  // namespace

/// Ends a start; the reason stays as the error text of the time without environment.
static ZVEnvironment* Give_Up()
{
    char* reason = ZVEnv ? std::exchange(ZVEnv->errorString, nullptr) : nullptr;
    CleanUpZV();
    SetErrorString(reason ? reason : "ZVLib: out of memory");
    FreeMemZV(reason);
    std::fprintf(stderr, "%s\n", GetErrorStringZV());
    return nullptr;
}

ZVEnvironment* InitZV(void (*callback)(ZVEvent*), char const* prefsName, char const* keyFile, void*,
                      TagItem* tags)
{
    if (ZVEnvironment* present = GetEnvironmentZV()) return ZVEnv = ZVEnvOS = present;

    SetErrorString(nullptr);
    UnfinishedStart start;
    if (!Make_Environment(callback, prefsName, tags)) return Give_Up();
    ZVEnv->isStarting = 1;
    SetHomeDir();
    SetUserDataDir();
    Take_Init_Tags();
    Settle_Monitors();
    // The display is there by now, whose size tells whether the preferences count.
    Load_WindowPrefs();
    if (!Init_OS(ZVEnv->hasRootTag)) return Give_Up();
    AppendStringFileZV(messageFile);
    ZVEnv->isStarting = 0;
    Init_MP();
    Init_Threads();
    ZVEnv->region = CreateCriticalRegionZV();
    ZVEnv->hasMovies = OS_Enter_Movies();
    TagItem const* section = keyFile ? FindTagItem(ZV_INIT_KEY_SECTION, ZVEnv->initTags) : nullptr;
    if (section) {
        ZVEnv->keySection = reinterpret_cast<ZVKeySection*>(section->data);
        Parse_Home_KeyFile(keyFile, ZVEnv->keySection);
    }
    SetError(ZV_ERR_NONE);
    start.isFinished = true;
    return ZVEnv;
}

void CleanUpZV()
{
    ZVEnv = ZVEnvOS = GetEnvironmentZV();
    if (!ZVEnv) return;
    StopAudioPlaybackZV();
    if (ZVEnv->hasMovies) OS_Exit_Movies();
    Cleanup_Threads();
    Cleanup_Jobs();
    FreeCriticalRegionZV(ZVEnv->region);
    Cleanup_OS();
    Free_Format_Modules();
    CleanUpWindowsZV();
    ClearMenuBarZV();
    Mac_Close_Display();
    CleanupKeySectionZV(ZVEnv->keySection);
    Cleanup_Clip();
    Free_Environment();
}

void ExitZV()
{
    if (!ZVEnv) return;
    ZVEnv->exitRequested = 1;
    Mac_End_Application_Loop();
}

ZVEnvironment* GetEnvironmentZV()
{
    return ZVEnv ? ZVEnv : ZVEnvOS;
}
