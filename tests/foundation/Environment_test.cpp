// Start and end of the library.
#include "FailingHeap.h"
#include "StartTest.h"

#include <vector>

#include <malloc.h>

namespace {

using EnvironmentStart = StartTest;

void First_Callback(ZVEvent*) {}
void Second_Callback(ZVEvent*) {}

TEST_F(EnvironmentStart, ASecondStartReturnsTheFirstEnvironmentUnchanged)
{
    ZVEnvironment* first = InitZV(First_Callback, "First.prefs", nullptr, nullptr, ZV_INIT_NO_GUI, 1);
    ASSERT_NE(first, nullptr);
    ZVEnvOS = nullptr;
    EXPECT_EQ(InitZV(Second_Callback, "Second.prefs", nullptr, nullptr, ZV_INIT_APP_TITLE, "Second"), first);
    EXPECT_EQ(first->callback, First_Callback);
    EXPECT_STREQ(first->prefsFile, "First.prefs");
    EXPECT_EQ(first->appTitle, nullptr);
    EXPECT_TRUE(ZVEnv == first && ZVEnvOS == first && GetEnvironmentZV() == first);
}

TEST_F(EnvironmentStart, StartsWithNothingButTheWishForNoInterface)
{
    Start();
    EXPECT_EQ(ZVEnv, ZVEnvOS);
    EXPECT_TRUE(GetErrorZV() == 0 && !GetErrorStringZV());
    for (List const* list :
         {&ZVEnv->menus, &ZVEnv->windows, &ZVEnv->jobs, &ZVEnv->windowPrefs, &ZVEnv->icons})
        EXPECT_TRUE(List_Empty(list));
    EXPECT_EQ(List_Entries(&ZVEnv->threads), ZVEnv->processors > 1 ? ZVEnv->processors : 0);
    EXPECT_TRUE(ZVEnv->systemVersion >= 0x1000 && ZVEnv->processors >= 1);
    auto const* base = static_cast<char*>(ZVEnv->mouseQueue.base);
    EXPECT_EQ(static_cast<char*>(ZVEnv->mouseQueue.end) - base, 1200);
    EXPECT_TRUE(ZVEnv->mouseQueue.read == base && ZVEnv->mouseQueue.write == base);
}

TEST_F(EnvironmentStart, WithoutADisplayAStartFailsAndSaysWhy)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(InitZV(First_Callback, "Window.prefs", nullptr, nullptr, ZV_INIT_APP_TITLE, "Title"), nullptr);
    std::string const said = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(!ZVEnv && !ZVEnvOS);
    EXPECT_EQ(GetErrorZV(), 1UL);
    ASSERT_NE(GetErrorStringZV(), nullptr);
    EXPECT_NE(said.find("ZV_INIT_NO_GUI"), std::string::npos);
    EXPECT_EQ(said, std::string(GetErrorStringZV()) + "\n");
    CleanUpZV();
    CleanUpWindowsZV();
    ExitZV();
    EXPECT_TRUE(!ZVEnv && !ZVEnvOS) << "nothing to end";
}

TEST_F(EnvironmentStart, ANewStartBeginsAfresh)
{
    ASSERT_NE(
        InitZV(First_Callback, "Window.prefs", nullptr, nullptr, ZV_INIT_NO_GUI, 0, ZV_INIT_APP_TITLE, "One"),
        nullptr);
    ExitZV();
    SetStylePenZV(ZV_PEN_TEXT, 0x123456);
    EXPECT_EQ(ZVEnv->exitRequested, 1);
    Start(ZV_INIT_APP_TITLE, "");
    EXPECT_EQ(ZVEnv->exitRequested, 0);
    EXPECT_EQ(ZVEnv->callback, nullptr);
    EXPECT_EQ(ZVEnv->prefsFile, nullptr);
    EXPECT_EQ(ZVEnv->appTitle, nullptr);
    EXPECT_EQ(GetColorZV(ZV_PEN_TEXT), 0UL);
}

TEST_F(EnvironmentStart, WithoutOneTheInterfaceDoesNothing)
{
    EXPECT_EQ(HandleGUIZV(), 1);
    EXPECT_EQ(AdvanceGUIZV(0), 0);
    BusyZV();
    NotBusyZV();
    TrackMouseZV(1);
    InfiniteMouseMovesZV(1);
    IgnoreContextualMenuEventZV();
    SetKeyFileZV("keys", nullptr);
    EXPECT_EQ(GetGadgetWidthZV(ZV_GAD_LIST, ZV_SIZE_SMALL), 0);
    GetWindowRectZV(nullptr, nullptr);
    GetClientRectZV(nullptr, nullptr);
    EXPECT_EQ(DisplayPaletteZV(nullptr), 0);
    EXPECT_EQ(AddGadgetZV(1, 0, 0, ZV_GAD_BUTTON, ZV_SIZE_SMALL, "", nullptr), nullptr);
    SetError(ZV_ERR_NONE);
}

TEST_F(EnvironmentStart, BytesTurnIntoFractionsBeforeDuringAndAfter)
{
    auto const check = [](char const* when) {
        for (int i = 0; i < 256; ++i)
            ASSERT_EQ(ZVPixelBase::_byteToFracTbl[i], i / 255.0) << when << ' ' << i;
    };
    check("before");
    Start();
    EXPECT_EQ(ZVPixelBase::_byteToFracTbl, ZVEnv->fracTable);
    check("during");
    CleanUpZV();
    check("after");
}

TEST_F(EnvironmentStart, TagsAreKeptAsACopyAndAKeySectionCountsOnlyWithAKeyFile)
{
    char title[] = "Title";
    long section = 0;
    {
        TagItem more[] = {{ZV_INIT_APP_TITLE, Tag_Word(&title[0])}, {}};
        TagItem tags[] = {{ZV_INIT_NO_GUI, 0},
                          {ZV_INIT_KEY_SECTION, Tag_Word(&section)},
                          {ZV_TAG_MORE, Tag_Word(&more[0])}};
        ASSERT_NE(InitZV(nullptr, nullptr, nullptr, nullptr, tags), nullptr);
        more[0].tag = tags[0].tag = ZV_TAG_IGNORE;
    }
    title[0] = 't';
    EXPECT_STREQ(ZVEnv->appTitle, "Title");
    EXPECT_NE(FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags), nullptr);
    EXPECT_NE(FindTagItem(ZV_INIT_APP_TITLE, ZVEnv->initTags), nullptr);
    EXPECT_EQ(ZVEnv->keySection, nullptr);
}

struct MonitorCase {
    char const* why;
    long count;                // of ZV_INIT_MONITOR_COUNT; -1 leaves the tag out
    std::vector<long> widths;  // of the rectangles given, 1000 high
    long chosen;               // of ZV_INIT_MONITOR; -1 leaves the tag out
    int32_t expectedCount;
    int32_t expectedWidth;  // of the first monitor
    int32_t expectedFontSize;
};
MonitorCase const monitorCases[] = {
    {"nothing told: one monitor of 1600 by 1200", -1, {}, -1, 1, 1600, 14},
    {"a count of 0 asks the platform", 0, {}, -1, 1, 1600, 14},
    {"a count without rectangles keeps the platform's", 1, {}, -1, 1, 1600, 14},
    {"five monitors become one", 5, {}, -1, 1, 1600, 14},
    {"a negative count becomes one", -5, {1024}, -1, 1, 1024, 10},
    {"a rectangle without a count", -1, {1300}, -1, 1, 1300, 12},
    {"two told: the first sets the metrics", 2, {1280, 800}, -1, 2, 1280, 12},
    {"two told, the second chosen", 2, {1280, 800}, 1, 2, 1280, 9},
    {"a choice beyond the count is the first", 2, {1280, 800}, 2, 2, 1280, 12},
    {"a negative choice is the first", 2, {1280, 800}, -7, 2, 1280, 12},
    {"four told, the last chosen", 4, {640, 800, 1000, 1600}, 3, 4, 640, 14},
};

TEST_F(EnvironmentStart, MonitorsComeFromTheTagsOrThePlatform)
{
    for (MonitorCase const& row : monitorCases) {
        SCOPED_TRACE(row.why);
        long areas[4][4];
        std::vector<TagItem> tags;
        if (row.count != -1) tags.push_back({ZV_INIT_MONITOR_COUNT, Tag_Word(row.count)});
        for (unsigned long i = 0; i < row.widths.size(); ++i) {
            long const area[] = {static_cast<long>(i) * 5000, -20, row.widths[i], 1000};
            std::copy(area, area + 4, areas[i]);
            tags.push_back({ZV_INIT_MONITOR_1 + i, Tag_Word(&areas[i][0])});
        }
        if (row.chosen != -1) tags.push_back({ZV_INIT_MONITOR, Tag_Word(row.chosen)});
        tags.push_back({});
        Start(ZV_TAG_MORE, tags.data());
        EXPECT_EQ(ZVEnv->monitorCount, row.expectedCount);
        EXPECT_EQ(ZVEnv->monitors[0].width, row.expectedWidth);
        EXPECT_EQ(ZVEnv->screenWidth, 1600) << "the display's, whatever the tags say";
        EXPECT_EQ(ZVEnv->screenHeight, 1200);
        EXPECT_EQ(ZVEnv->style->fontSize, row.expectedFontSize);
        for (std::size_t i = 0; i < row.widths.size(); ++i) {
            EXPECT_EQ(ZVEnv->monitors[i].left, static_cast<int32_t>(i) * 5000);
            EXPECT_EQ(ZVEnv->monitors[i].top, -20);
            EXPECT_EQ(ZVEnv->monitors[i].width, row.widths[i]);
        }
    }
    Start(ZV_INIT_MONITOR, 3);
    TagItem* cursor = ZVEnv->initTags;
    std::vector<unsigned long> choices;
    while (TagItem const* tag = NextTagItem(&cursor))
        if (tag->tag == ZV_INIT_MONITOR) choices.push_back(tag->data);
    EXPECT_EQ(choices, (std::vector<unsigned long>{3, 0})) << "the platform's narrowest, behind the tags";
}

TEST_F(EnvironmentStart, AStartWithoutMemoryReleasesEverything)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP() << "no heap of our own in this build";
    auto const start = [] { return InitZV(nullptr, "Window.prefs", nullptr, nullptr, ZV_INIT_NO_GUI, 0); };
    ASSERT_NE(start(), nullptr);
    CleanUpZV();
    // Record, style, mouse queue and the name of the preferences end in null, the copy of the tags in an
    // assertion.
    for (long after = 0; after <= 4; ++after) {
        SCOPED_TRACE(after);
        testing::internal::CaptureStderr();
        size_t const before = mallinfo2().uordblks;
        bool isAssertion = false;
        try {
            FailingHeap const heap(after);
            EXPECT_EQ(start(), nullptr);
            EXPECT_EQ(heap.Failures(), 1);
        } catch (ZVAssertFail const&) {
            isAssertion = true;
        }
        EXPECT_EQ(mallinfo2().uordblks, before);
        EXPECT_EQ(isAssertion, after == 4);
        EXPECT_FALSE(testing::internal::GetCapturedStderr().empty());
        EXPECT_TRUE(!ZVEnv && !ZVEnvOS);
        EXPECT_EQ(GetErrorZV(), 1UL);
        EXPECT_EQ(GetErrorStringZV() != nullptr, after < 4);
    }
    EXPECT_NE(start(), nullptr);
}

}  // namespace
