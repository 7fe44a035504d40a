// Locking of large pixel blocks, the memory reserve, and the blocks kept for reuse.
#include "PixelTestTools.h"

#include "TestEnvironment.h"

#include <cstdio>
#include <malloc.h>
#include <sys/resource.h>
#include <thread>

using namespace PixelTest;

namespace {

constexpr long limitBytes = 307200;

/// Bytes of this process that the kernel holds locked.
long Locked_Bytes()
{
    std::FILE* const file = std::fopen("/proc/self/status", "r");
    char line[256];
    long kib = 0;
    while (std::fgets(line, sizeof line, file))
        std::sscanf(line, "VmLck: %ld", &kib);
    std::fclose(file);
    return kib * 1024;
}

/// False under the address sanitizer, which ignores mlock.
bool Can_Lock([[maybe_unused]] rlim_t bytes)
{
#if defined(__SANITIZE_ADDRESS__)
    return false;
#else
    rlimit limit{};
    return getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur >= bytes;
#endif
}

unsigned long handlerSize = 0;
long handlerAnswer = 0;
long Answer_Handler(unsigned long size)
{
    handlerSize = size;
    return handlerAnswer;
}

class ResidentBlock : public testing::Test {
protected:
    void SetUp() override { Empty_Block_Cache(); }
    void TearDown() override { Empty_Block_Cache(); }
};

/// An environment whose reserve is larger than any memory.
class MemoryReserve : public ResidentBlock {
protected:
    MemoryReserve()
    {
        ZVEnv->residentLimit = 0xFFFFFFFF;
        handlerSize = 0;
        set_new_handler(Answer_Handler);
    }
    ~MemoryReserve() override { set_new_handler(nullptr); }

    /// What is said on standard error, and whether the block was locked, when one of this length is
    /// allocated.
    static std::pair<std::string, bool> Allocate(long length)
    {
        long const before = Locked_Bytes();
        testing::internal::CaptureStderr();
        void* const block = AllocateResidentBlock(length, false);
        std::string const said = testing::internal::GetCapturedStderr();
        bool const isLocked = Locked_Bytes() > before;
        EXPECT_NE(block, nullptr);
        DeallocateResidentBlock(block, length, false);
        EXPECT_EQ(Locked_Bytes(), before);
        return {said, isLocked};
    }

private:
    TestEnvironment environment_;
};

}  // namespace

TEST_F(ResidentBlock, IsLockedFromItsSizeOnOrWhenAsked)
{
    if (!Can_Lock(4 * limitBytes)) GTEST_SKIP() << "pages cannot be locked here";
    struct {
        long width, height;
        bool isLocked;
    } const bitmaps[] = {{640, 120, true}, {76799, 1, false}};
    for (auto const& row : bitmaps) {
        long const before = Locked_Bytes();
        BitmapPtr bitmap(AllocBitmapZV(row.width, row.height, ZV_BITMAP_RGBA8, nullptr));
        EXPECT_EQ(Locked_Bytes() > before, row.isLocked) << bitmap->Size;
        bitmap.reset();
        EXPECT_EQ(Locked_Bytes(), before);
    }
    long const before = Locked_Bytes();
    void* const small = AllocateResidentBlock(1000, true);
    void* const other = AllocateResidentBlock(1000, true);
    DeallocateResidentBlock(small, 1000, true);
    EXPECT_GE(Locked_Bytes() - before, 4096) << "releasing one block must not unlock its neighbour";
    DeallocateResidentBlock(other, 1000, true);
    EXPECT_EQ(Locked_Bytes(), before);
}

TEST_F(ResidentBlock, BeyondTheLimitIsAnOrdinaryBlock)
{
    rlimit old{};
    getrlimit(RLIMIT_MEMLOCK, &old);
    rlimit const none{0, old.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_MEMLOCK, &none), 0);
    long const before = Locked_Bytes();
    void* const block = AllocateResidentBlock(limitBytes, false);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(Locked_Bytes(), before);
    DeallocateResidentBlock(block, limitBytes, false);
    setrlimit(RLIMIT_MEMLOCK, &old);
}

TEST_F(MemoryReserve, IsOfNoConcernToSmallBlocks)
{
    EXPECT_EQ(Allocate(limitBytes - 1), std::pair(std::string(), false));
    EXPECT_EQ(handlerSize, 0U);
}

TEST_F(MemoryReserve, ReachedAndRefusedGivesAMessageAndAnUnlockedBlock)
{
    handlerAnswer = 0;
    auto const [said, isLocked] = Allocate(limitBytes);
    EXPECT_NE(said.find("Maximum available memory reached"), std::string::npos);
    EXPECT_FALSE(isLocked);
    EXPECT_EQ(handlerSize, static_cast<unsigned long>(limitBytes));
}

TEST_F(MemoryReserve, ReachedAndAllowedGivesALockedBlock)
{
    if (!Can_Lock(2 * limitBytes)) GTEST_SKIP() << "pages cannot be locked here";
    handlerAnswer = 1;
    EXPECT_EQ(Allocate(limitBytes), std::pair(std::string(), true));
    EXPECT_EQ(handlerSize, static_cast<unsigned long>(limitBytes));
}

TEST_F(MemoryReserve, IsNotReachedByAProcessLargerThanTheCappedSize)
{
    ZVEnv->physicalMemory = 1;
    Allocate(limitBytes);
    EXPECT_EQ(handlerSize, 0U);
}

#if !defined(__SANITIZE_ADDRESS__)

TEST_F(ResidentBlock, IsHadAgainByTheNextAllocationOfItsSize)
{
    constexpr long length = 3 << 20;
    void* const first = AllocateResidentBlock(length, false);
    void* const second = AllocateResidentBlock(length, false);
    EXPECT_EQ(reinterpret_cast<unsigned long>(first) % (2 << 20), 0U) << "aligned for huge pages";
    DeallocateResidentBlock(first, length, false);
    DeallocateResidentBlock(second, length, false);
    void* const other = AllocateResidentBlock(length + 1, false);
    EXPECT_NE(other, first);
    EXPECT_NE(other, second);
    EXPECT_EQ(AllocateResidentBlock(length, false), second) << "the one freed last is the warmest";
    EXPECT_EQ(AllocateResidentBlock(length, false), first);
    for (void* const block : {first, second})
        DeallocateResidentBlock(block, length, false);
    DeallocateResidentBlock(other, length + 1, false);
    EXPECT_TRUE(Empty_Block_Cache());
    EXPECT_FALSE(Empty_Block_Cache());
}

TEST_F(ResidentBlock, IsKeptWithinBoundsOfCountAndBytes)
{
    struct {
        long count, length, keptAtMost;
    } const cases[] = {{8, 8 << 20, 4 * (8 << 20)}, {3, 60 << 20, 2 * (60 << 20)}, {1, 160 << 20, 0}};
    constexpr uint64_t slack = 2 << 20;
    for (auto const& row : cases) {
        uint64_t const before = GetAppMemUsageZV();
        std::vector<void*> blocks;
        for (long i = 0; i < row.count; ++i) {
            blocks.push_back(AllocateResidentBlock(row.length, false));
            std::memset(blocks.back(), 1, static_cast<std::size_t>(row.length));
        }
        for (void* const block : blocks)
            DeallocateResidentBlock(block, row.length, false);
        malloc_trim(0);
        EXPECT_LE(GetAppMemUsageZV(), before + static_cast<uint64_t>(row.keptAtMost) + slack) << row.length;
        EXPECT_EQ(Empty_Block_Cache(), row.keptAtMost > 0);
        malloc_trim(0);
        EXPECT_LE(GetAppMemUsageZV(), before + slack) << row.length;
    }
}

#endif

TEST_F(ResidentBlock, MayBeHadAndFreedOnAnyThread)
{
    auto const work = [](unsigned seed) {
        std::mt19937 random(seed);
        std::vector<std::pair<unsigned char*, long>> held;
        for (int turn = 0; turn < 400; ++turn) {
            if (held.size() < 3) {
                long const length = limitBytes + static_cast<long>(random() % 3) * 4096;
                auto* const block = static_cast<unsigned char*>(AllocateResidentBlock(length, false));
                block[0] = block[length - 1] = static_cast<unsigned char>(seed);
                held.emplace_back(block, length);
                continue;
            }
            auto const [block, length] = held[random() % held.size()];
            EXPECT_EQ(block[0], seed);
            EXPECT_EQ(block[length - 1], seed);
            std::erase(held, std::pair(block, length));
            DeallocateResidentBlock(block, length, false);
        }
        for (auto const& [block, length] : held)
            DeallocateResidentBlock(block, length, false);
    };
    std::vector<std::thread> threads;
    for (unsigned seed = 1; seed <= 4; ++seed)
        threads.emplace_back(work, seed);
    for (std::thread& thread : threads)
        thread.join();
}
