// Reads of whole frames: in chunks, with the caller's poll function running meanwhile.
#include "TestEnvironment.h"
#include "files/FileTestTools.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

static std::vector<std::size_t>* readSizes = nullptr;
static bool isCacheCold = false;

// The library's reads come by here.
#pragma GCC visibility push(default)
extern "C" {
ssize_t read(int descriptor, void* destination, size_t count)
{
    if (readSizes) readSizes->push_back(count);
    return syscall(SYS_read, descriptor, destination, count);
}

ssize_t preadv2(int descriptor, iovec const* pieces, int count, off_t offset, int flags)
{
    if (isCacheCold) {
        errno = EAGAIN;
        return -1;
    }
    if (readSizes) readSizes->push_back(pieces->iov_len);
    // The system takes the offset in two words, of which the second does not count here.
    return syscall(SYS_preadv2, descriptor, pieces, count, offset, 0, flags);
}
}
#pragma GCC visibility pop

namespace {

long pollCalls;
long stopAfter;

long Count_Poll()
{
    return ++pollCalls > stopAfter ? 42 : 0;
}

class ChunkedRead : public ::testing::Test {
protected:
    ChunkedRead()
    {
        Write_Native(environment.Path("large"), bytes);
        file = Open_File(environment.Spec("large"), ZVFilePermRead, ZVFileFlagLargeRead);
        pollCalls = 0;
        isCacheCold = false;
        stopAfter = 1L << 40;
    }

    TestEnvironment environment;
    Bytes const bytes = Pattern(300000);
    OpenFile file;
    Bytes got = Bytes(400000);
    long answer = -1;

    /// Without polls, from the disk, and from the page cache.
    std::pair<ZVPollFunc, bool> const readings[3] = {
        {nullptr, true}, {Count_Poll, true}, {Count_Poll, false}};
};

TEST_F(ChunkedRead, GoesInPiecesOf128Kilobytes)
{
    std::vector<std::size_t> const expected = {131072, 131072, 37856};
    for (auto const& [poll, isCold] : readings) {
        isCacheCold = isCold;
        SeekFileZV(file.get(), 0, 0);
        std::vector<std::size_t> sizes;
        readSizes = &sizes;
        EXPECT_TRUE(ReadFileZV(file.get(), got.data(), 300000, poll, &answer));
        readSizes = nullptr;
        EXPECT_EQ(sizes, expected);
        EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), got.begin()));
        EXPECT_EQ(Position(file), 300000);
    }
    EXPECT_GT(pollCalls, 0);
    EXPECT_EQ(answer, 0);
}

TEST_F(ChunkedRead, EndsWithTheFileWithoutAnError)
{
    for (auto const& [poll, isCold] : readings) {
        isCacheCold = isCold;
        SeekFileZV(file.get(), 100000, 0);
        unsigned long count = 400000;
        EXPECT_TRUE(File_Read(file.get(), &count, got.data(), poll, nullptr));
        EXPECT_EQ(count, 200000U);
        EXPECT_EQ(GetErrorZV(), 0U);
        EXPECT_TRUE(std::equal(bytes.begin() + 100000, bytes.end(), got.begin()));
        EXPECT_FALSE(ReadFileZV(file.get(), got.data(), 1, poll, nullptr)) << "nothing is left";
    }
}

TEST_F(ChunkedRead, AnAbortDeliversNothingAndStaysWhereItWas)
{
    for (bool isCold : {true, false}) {
        isCacheCold = isCold;
        for (long polls = 0; polls < 4; ++polls) {
            stopAfter = polls;
            pollCalls = 0;
            SeekFileZV(file.get(), 1000, 0);
            unsigned long count = 299000;
            bool const isWhole = File_Read(file.get(), &count, got.data(), Count_Poll, &answer);
            EXPECT_TRUE(!isWhole || polls > 0);
            EXPECT_EQ(answer, isWhole ? 0 : 42);
            EXPECT_EQ(count, isWhole ? 299000U : 0U);
            EXPECT_EQ(GetErrorZV(), 0U) << "giving up is no error";
            EXPECT_EQ(Position(file), isWhole ? 300000 : 1000);
        }
    }
    stopAfter = 1L << 40;
    SeekFileZV(file.get(), 1000, 0);
    EXPECT_TRUE(ReadFileZV(file.get(), got.data(), 299000, Count_Poll, &answer));
    EXPECT_TRUE(std::equal(bytes.begin() + 1000, bytes.end(), got.begin()));
}

/// A slow disk: a pipe that is fed by hand.
class SlowDisk : public ::testing::Test {
protected:
    SlowDisk()
    {
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        file.forkRef = ends[0];
        file.flags = ZVFileFlagLargeRead;
        pollCalls = 0;
        stopAfter = 1L << 40;
    }
    ~SlowDisk() override
    {
        close(ends[0]);
        if (ends[1] >= 0) close(ends[1]);
    }
    /// Delivers three bytes and ends.
    void Deliver()
    {
        EXPECT_EQ(write(ends[1], "abc", 3), 3);
        close(ends[1]);
        ends[1] = -1;
    }

    TestEnvironment environment;
    int ends[2];
    ZVFileInfo file{};
    Bytes got = Bytes(100);
    long answer = -1;
};

TEST_F(SlowDisk, ThePollFunctionRunsWhileTheDiskWorks)
{
    std::thread disk([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        Deliver();
    });
    EXPECT_TRUE(ReadFileZV(&file, got.data(), 100, Count_Poll, &answer));
    disk.join();
    EXPECT_GE(pollCalls, 5) << "often enough to keep an interface alive";
    EXPECT_LE(pollCalls, 200) << "but with rests in between";
    EXPECT_EQ(std::string(got.begin(), got.begin() + 3), "abc");
}

TEST_F(SlowDisk, AnAbortWaitsForTheReadThatWasStarted)
{
    stopAfter = 3;
    std::atomic<bool> delivered{false};
    std::thread disk([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        delivered = true;
        Deliver();
    });
    EXPECT_FALSE(ReadFileZV(&file, got.data(), 100, Count_Poll, &answer));
    EXPECT_TRUE(delivered);
    EXPECT_EQ(answer, 42);
    EXPECT_EQ(pollCalls, 4) << "nobody is asked again";
    disk.join();
}

TEST_F(SlowDisk, APollFunctionMayThrow)
{
    Deliver();
    ZVPollFunc const poll = []() -> long { throw 1; };
    EXPECT_THROW(ReadFileZV(&file, got.data(), 100, poll, &answer), int);
}

}  // namespace
