// What the library asks of the machine: memory, locked pages, regions, waiting and text measures.
#include "StartTest.h"

#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

using PlatformTest = StartTest;

unsigned long const pageSize = static_cast<unsigned long>(sysconf(_SC_PAGESIZE));

/// Pages straight from the system.
class Pages {
public:
    explicit Pages(unsigned long count)
        : size_(count * pageSize),
          base_(mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
    }
    ~Pages() { munmap(base_, size_); }
    Pages(Pages const&) = delete;
    Pages& operator=(Pages const&) = delete;

    char* Base() const { return static_cast<char*>(base_); }
    unsigned long Size() const { return size_; }

private:
    unsigned long size_;
    void* base_;
};

/// The soft limit of locked memory for as long as this lives.
class LockLimit {
public:
    explicit LockLimit(unsigned long bytes)
    {
        getrlimit(RLIMIT_MEMLOCK, &old_);
        rlimit const lowered{bytes, old_.rlim_max};
        setrlimit(RLIMIT_MEMLOCK, &lowered);
    }
    ~LockLimit() { setrlimit(RLIMIT_MEMLOCK, &old_); }
    LockLimit(LockLimit const&) = delete;
    LockLimit& operator=(LockLimit const&) = delete;

private:
    rlimit old_{};
};

TEST_F(PlatformTest, TheReserveFollowsTheSizeOfTheMachine)
{
    Start();
    constexpr uint64_t MiB = 1024 * 1024;
    struct {
        uint64_t machine;
        uint32_t physical, reserve;
    } const rows[] = {
        {64 * MiB, 67108864, 20132659},
        {512 * MiB, 536870912, 161061273},
        {1000 * MiB, 1048576000, 314572800},
        {1024 * MiB, 1073741824, 314572800},
        {4096 * MiB - 1, 0xFFFFFFFF, 314572800},
        {4096 * MiB, 0xC9999999, 0},
        {65536 * MiB, 0xC9999999, 0},
    };
    for (auto const& row : rows) {
        Set_Memory_Limits(row.machine);
        EXPECT_EQ(ZVEnv->physicalMemory, row.physical) << row.machine;
        EXPECT_EQ(ZVEnv->residentLimit, row.reserve) << row.machine;
    }
}

TEST_F(PlatformTest, MemoryIsCountedInBytes)
{
    EXPECT_GT(OS_Free_Memory(), 0U);
    EXPECT_LE(OS_Free_Memory(), OS_Total_Memory());
    uint64_t const before = GetAppMemUsageZV();
    Pages const pages(8192);
    std::memset(pages.Base(), 1, pages.Size());
    EXPECT_GE(GetAppMemUsageZV(), before + pages.Size() / 2);
    EXPECT_LT(GetAppMemUsageZV(), OS_Total_Memory());
}

TEST_F(PlatformTest, PagesAreLockedUpToTheLimitAndGivenBackExactly)
{
    LockLimit const limit(10 * pageSize);
    Pages const first(6), second(4), third(2);
    EXPECT_EQ(OS_Lock_Pages(first.Base(), first.Size()), 1);
    EXPECT_EQ(OS_Lock_Pages(second.Base(), second.Size() - 5), 1) << "a part of a page takes all of it";
    EXPECT_EQ(OS_Lock_Pages(third.Base(), 1), 0) << "the limit is reached";
    EXPECT_TRUE(OS_Unlock_Pages(third.Base(), 1)) << "a block that was not locked";
    EXPECT_EQ(OS_Lock_Pages(third.Base(), 1), 0) << "and nothing was given back for it";
    EXPECT_TRUE(OS_Unlock_Pages(first.Base(), first.Size()));
    EXPECT_TRUE(OS_Unlock_Pages(second.Base(), second.Size() - 5));
    Pages const all(10), more(11);
    EXPECT_EQ(OS_Lock_Pages(more.Base(), more.Size()), 0);
    EXPECT_EQ(OS_Lock_Pages(all.Base(), all.Size() - pageSize), 1);
    EXPECT_EQ(OS_Lock_Pages(third.Base() + pageSize - 1, 2), 0)
        << "a block across a boundary takes both pages";
    EXPECT_EQ(OS_Lock_Pages(third.Base() + pageSize - 1, 1), 1);
    EXPECT_TRUE(OS_Unlock_Pages(third.Base() + pageSize - 1, 1));
    EXPECT_TRUE(OS_Unlock_Pages(all.Base(), all.Size() - pageSize));
}

TEST_F(PlatformTest, ALockThatFailsInsideTheLimitIsReported)
{
    // Two blocks do not fit the limit; one does, beside what other libraries lock for themselves.
    constexpr unsigned long pageCount = 33;
    LockLimit const limit(64 * pageSize);
    void* gone = nullptr;
    {
        Pages const pages(pageCount);
        gone = pages.Base();
    }
    if (mlock(gone, pageSize) == 0) GTEST_SKIP() << "this build locks nothing";
    EXPECT_EQ(OS_Lock_Pages(gone, pageCount * pageSize), -1);
    Pages const pages(pageCount);
    EXPECT_EQ(OS_Lock_Pages(pages.Base(), pages.Size()), 1) << "nothing stays accounted for it";
    EXPECT_TRUE(OS_Unlock_Pages(pages.Base(), pages.Size()));
}

TEST_F(PlatformTest, ThreadsShareOneAccountOfLockedPages)
{
    LockLimit const limit(4 * pageSize);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            Pages const pages(1);
            for (int turn = 0; turn < 200; ++turn) {
                EXPECT_EQ(OS_Lock_Pages(pages.Base(), pageSize), 1);
                EXPECT_TRUE(OS_Unlock_Pages(pages.Base(), pageSize));
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    Pages const pages(4);
    EXPECT_EQ(OS_Lock_Pages(pages.Base(), pages.Size()), 1);
    EXPECT_TRUE(OS_Unlock_Pages(pages.Base(), pages.Size()));
}

TEST_F(PlatformTest, ARegionKeepsOthersOutAndLetsItsOwnerInAgain)
{
    ZVCriticalRegion* region = CreateCriticalRegionZV();
    ASSERT_NE(region, nullptr);
    long counter = 0;
    auto const count = [&] {
        for (int i = 0; i < 5000; ++i) {
            EnterCriticalRegionZV(region);
            EXPECT_EQ(EnterCriticalRegionZV(region), 0);
            ++counter;
            EXPECT_EQ(ExitCriticalRegionZV(region), 0);
            ExitCriticalRegionZV(region);
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 10000);
    FreeCriticalRegionZV(region);
    EXPECT_EQ(EnterCriticalRegionZV(nullptr), 0);
    EXPECT_EQ(ExitCriticalRegionZV(nullptr), 0);
    FreeCriticalRegionZV(nullptr);
}

TEST_F(PlatformTest, ADelayIsCountedInSixtiethsOfASecond)
{
    auto const start = std::chrono::steady_clock::now();
    Delay(0);
    Delay(-100);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    Delay(3);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
}

TEST_F(PlatformTest, TextIsMeasuredInTheInterfaceFont)
{
    Start(ZV_INIT_FONT_SIZE, 20);
    long const height = Text_Height("");
    EXPECT_GE(height, 20);
    EXPECT_LE(height, 40);
    EXPECT_EQ(Text_Height("Height does not depend on the text"), height);
    EXPECT_EQ(Text_Width(""), 0);
    EXPECT_EQ(Text_Width(nullptr), 0);
    EXPECT_LT(Text_Width("iiii"), Text_Width("WWWW"));
    EXPECT_EQ(Text_Width("\xC3\xA9"), Text_Width("e")) << "one accented character, not two bytes";
    EXPECT_GT(Text_Width("\xFF\xC3"), 0) << "not UTF-8";

    std::string const line(1000, 'n');
    long const width = Text_Width(line.c_str());
    EXPECT_GT(width, 5000);
    ZVEnv->style->fontSize = 40;
    EXPECT_NEAR(static_cast<double>(Text_Width(line.c_str())), 2.0 * static_cast<double>(width), 1500.0)
        << "each of 1000 glyphs is a whole number of pixels wide at either size";
    EXPECT_NEAR(static_cast<double>(Text_Height("")), 2.0 * static_cast<double>(height), 3.0);
}

TEST_F(PlatformTest, AMachineWithoutFontsGetsPlainMeasures)
{
    dir.Write("fonts.conf", "<?xml version=\"1.0\"?><fontconfig></fontconfig>\n");
    ScopedVariable const config("FONTCONFIG_FILE", dir.Path("fonts.conf").c_str());
    Start(ZV_INIT_FONT_SIZE, 14);
    EXPECT_EQ(Text_Height("any"), 17);
    EXPECT_EQ(Text_Width("abc"), 21);
    EXPECT_EQ(Text_Width("\xC3\xA9t\xC3\xA9"), 21);
    EXPECT_EQ(ZVEnv->style->gadgetHeight, 17 * 7 / 4 + 3);
}

}  // namespace
