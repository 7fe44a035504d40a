// From times to frames and fields, and from presented frames to their sources.
#include "TestEnvironment.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

class FrameTime : public EnvironmentTest {
protected:
    FrameTime() : clip(NewClipZV()) {}
    ~FrameTime() override { FreeClipZV(clip); }
    ZVClip* clip;
};

struct {
    char const* why;
    double rate;
    ZVTimeValue start, time;
    long frame, field;
} const timeCases[] = {
    {"1/25 x 25 may fall short of 1", 25.0, {}, {1.0, 25.0}, 1, 2},
    {"second half of a frame", 25.0, {}, {1.5, 25.0}, 1, 3},
    {"no scale means time 0", 25.0, {}, {7.0, 0.0}, 0, 0},
    {"just before the start", 25.0, {2.0, 1.0}, {49.5, 25.0}, 0, -1},
    {"one frame before the start", 25.0, {2.0, 1.0}, {49.0, 25.0}, -1, -2},
    {"a start of its own scale", 24.0, {5.0, 24.0}, {15.0, 24.0}, 10, 20},
    {"no rate", 0.0, {}, {7.0, 1.0}, 0, 0},
    {"beyond every frame number", 1e18, {}, {1e18, 1.0}, LONG_MIN, LONG_MIN},
    {"no number", 25.0, {}, {std::numeric_limits<double>::quiet_NaN(), 1.0}, LONG_MIN, LONG_MIN},
};

TEST_F(FrameTime, ATimeFallsIntoItsFrame)
{
    for (auto const& row : timeCases) {
        clip->FrameRate = row.rate;
        clip->StartTime = row.start;
        EXPECT_EQ(Get_Frame(clip, &row.time), row.frame) << row.why;
        EXPECT_EQ(Get_Field(clip, &row.time), row.field) << row.why;
    }
}

TEST_F(FrameTime, WholeFramesBeforeTheStartCountBackwards)
{
    for (double const rate : {24000.0 / 1001, 25.0, 29.97}) {
        clip->FrameRate = rate;
        for (long start = 1; start < 60; ++start)
            for (long frame = 1; frame < 60; ++frame) {
                clip->StartTime = {static_cast<double>(start), 1.0};
                ZVTimeValue const time{static_cast<double>(start) * rate - static_cast<double>(frame), rate};
                ASSERT_EQ(Get_Frame(clip, &time), -frame) << rate << " " << start;
                ASSERT_EQ(Get_Field(clip, &time), -2 * frame) << rate << " " << start;
            }
    }
}

/// Frame and field are known from how the time is made, so the expectation needs none of the arithmetic.
TEST_F(FrameTime, TimesMadeFromFramesComeBack)
{
    std::mt19937 random(1);
    double const rates[] = {1.0,   12.5,           23.976, 24000.0 / 1001, 24.0, 25.0,
                            29.97, 30000.0 / 1001, 50.0,   59.94,          120.0};
    std::uniform_real_distribution<double> inside(1e-5, 0.5 - 1e-5);
    for (int i = 0; i < 20000; ++i) {
        double const rate = rates[random() % std::size(rates)];
        long const start = static_cast<long>(random() % 2000) - 1000;
        long const frame = static_cast<long>(random() % 200000);
        long const half = random() % 2;
        double const part = random() % 2 ? inside(random) : 0.0;
        clip->FrameRate = rate;
        clip->StartTime = {static_cast<double>(start), rate};
        ZVTimeValue const time{static_cast<double>(start + frame) + 0.5 * static_cast<double>(half) + part,
                               rate};
        ASSERT_EQ(Get_Frame(clip, &time), frame) << rate << " " << start << " " << time.Value;
        ASSERT_EQ(Get_Field(clip, &time), 2 * frame + half) << rate << " " << start << " " << time.Value;
    }
}

/// The map is compared with the plain list of frames that it stands for.
TEST_F(FrameTime, TheFrameMapStandsForAListOfFrames)
{
    EXPECT_EQ(Get_FrameMapping(clip, 7), 7) << "without a map";
    clip->RawFrames = 12;
    EXPECT_EQ(Get_ReadableFrames(clip), 12);

    std::mt19937 random(2);
    for (int i = 0; i < 300; ++i) {
        std::vector<ZVFrameRun> runs(random() % 6);
        std::vector<long> frames;
        for (ZVFrameRun& run : runs) {
            run = {static_cast<long>(random() % 40) - 20, static_cast<long>(random() % 5)};
            for (long k = 0; k < run.Count; ++k)
                frames.push_back(run.Start < 0 ? run.Start - k : run.Start + k);
        }
        clip->FrameMap = runs.data();
        clip->FrameMapUsed = static_cast<long>(runs.size());
        if (runs.empty()) continue;
        auto const count = static_cast<long>(frames.size());
        ASSERT_EQ(Get_ReadableFrames(clip), count);
        for (long frame = 0; frame < count; ++frame)
            ASSERT_EQ(Get_FrameMapping(clip, frame), frames[static_cast<std::size_t>(frame)]);
        EXPECT_EQ(Get_FrameMapping(clip, count), count) << "beyond the map a frame is itself";
        EXPECT_EQ(Get_FrameMapping(clip, -3), -3);
    }
    ZVFrameRun huge[] = {{0, LONG_MAX - 1}, {5, -4}, {0, 10}};
    clip->FrameMap = huge;
    clip->FrameMapUsed = 3;
    EXPECT_EQ(Get_ReadableFrames(clip), LONG_MAX);
    clip->FrameMap = nullptr;
}

}  // namespace
