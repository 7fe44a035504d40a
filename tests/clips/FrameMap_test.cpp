// The frame map: what edits leave in the table of runs.
#include "ZVLibInternal.h"
#include "clips/FrameMap.h"
#include "clips/FrameRuns.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

namespace {

constexpr long newScratch = -9;

/// A clip that is nothing but a map.
class MapClip {
public:
    explicit MapClip(long rawFrames)
    {
        clip.RawFrames = rawFrames;
        EXPECT_TRUE(Make_Frame_Map(clip));
    }
    /// A map of runs as they stand, joined or not.
    explicit MapClip(Runs const& runs) : MapClip(0)
    {
        clip.FrameMapUsed = 0;
        for (ZVFrameRun const& run : runs) {
            clip.FrameMap[clip.FrameMapUsed++] = run;
            clip.RawFrames += run.Count;
        }
    }
    ~MapClip() { FreeMemZV(clip.FrameMap); }

    Runs Table() const { return {clip.FrameMap, clip.FrameMap + clip.FrameMapUsed}; }

    /// The frame at each place.
    std::vector<long> Frames() const
    {
        std::vector<long> frames;
        for (long run = 0; run < clip.FrameMapUsed; ++run) {
            auto const [start, count] = clip.FrameMap[run];
            for (long i = 0; i < count; ++i)
                frames.push_back(start < 0 ? start - i : start + i);
        }
        return frames;
    }

    ZVClip clip{};
};

enum class Edit { Replace, Insert, Delete };

bool Apply(ZVClip& clip, Edit edit, long frame, long scratch)
{
    switch (edit) {
    case Edit::Replace: return Replace_Mapped_Frame(clip, frame, scratch);
    case Edit::Insert: return Insert_Mapped_Frame(clip, frame, scratch);
    default: return Delete_Mapped_Frame(clip, frame);
    }
}

struct {
    char const* why;
    Runs before;
    Edit edit;
    long frame;
    Runs after;
} const mapCases[] = {
    {"replacing inside a run leaves three", {{0, 10}}, Edit::Replace, 4, {{0, 4}, {-9, 1}, {5, 5}}},
    {"replacing the first frame leaves two", {{0, 10}}, Edit::Replace, 0, {{-9, 1}, {1, 9}}},
    {"replacing the last frame leaves two", {{0, 10}}, Edit::Replace, 9, {{0, 9}, {-9, 1}}},
    {"a run of one changes in place, and does not join its neighbours",
     {{0, 5}, {-8, 1}, {6, 1}, {-10, 1}, {8, 2}},
     Edit::Replace,
     6,
     {{0, 5}, {-8, 1}, {-9, 1}, {-10, 1}, {8, 2}}},
    {"a scratch number that continues a run joins it",
     {{0, 5}, {-8, 1}, {6, 4}},
     Edit::Replace,
     6,
     {{0, 5}, {-8, 2}, {7, 3}}},
    {"a scratch number one above does not continue a run",
     {{0, 5}, {-10, 1}, {6, 4}},
     Edit::Replace,
     6,
     {{0, 5}, {-10, 1}, {-9, 1}, {7, 3}}},
    {"joining walks past RawFrames to the end of the table",
     {{0, 5}, {3, 20}, {23, 2}, {30, 1}},
     Edit::Replace,
     4,
     {{0, 4}, {-9, 1}, {3, 22}, {30, 1}}},
    {"inserting at the start goes first", {{0, 10}}, Edit::Insert, 0, {{-9, 1}, {0, 10}}},
    {"inserting splits a source run", {{0, 10}}, Edit::Insert, 3, {{0, 3}, {-9, 1}, {3, 7}}},
    {"inserting splits a scratch run",
     {{0, 2}, {-3, 4}},
     Edit::Insert,
     4,
     {{0, 2}, {-3, 2}, {-9, 1}, {-5, 2}}},
    {"inserting at a boundary splits nothing", {{0, 2}, {7, 2}}, Edit::Insert, 2, {{0, 2}, {-9, 1}, {7, 2}}},
    {"inserting at the end of the map goes last", {{0, 10}}, Edit::Insert, 10, {{0, 10}, {-9, 1}}},
    {"an empty map takes a frame", {}, Edit::Insert, 0, {{-9, 1}}},
    {"deleting inside a run of three leaves two", {{4, 3}}, Edit::Delete, 1, {{4, 1}, {6, 1}}},
    {"deleting inside a scratch run", {{-2, 3}}, Edit::Delete, 1, {{-2, 1}, {-4, 1}}},
    {"deleting the first frame of a source run", {{0, 1}, {5, 3}}, Edit::Delete, 1, {{0, 1}, {6, 2}}},
    {"deleting the first frame of a scratch run", {{0, 1}, {-5, 3}}, Edit::Delete, 1, {{0, 1}, {-6, 2}}},
    {"deleting the last frame of a run", {{0, 3}, {5, 3}}, Edit::Delete, 2, {{0, 2}, {5, 3}}},
    {"deleting a run of one moves later runs down",
     {{0, 3}, {-1, 1}, {7, 2}},
     Edit::Delete,
     3,
     {{0, 3}, {7, 2}}},
    {"deleting a run of one at the end shortens the table", {{0, 3}, {-1, 1}}, Edit::Delete, 3, {{0, 3}}},
    {"the last frame of all leaves an empty map", {{3, 1}}, Edit::Delete, 0, {}},
};

TEST(FrameMap, EditsSplitAndJoinRuns)
{
    for (auto const& row : mapCases) {
        MapClip map(row.before);
        EXPECT_TRUE(Apply(map.clip, row.edit, row.frame, newScratch)) << row.why;
        EXPECT_EQ(map.Table(), row.after) << row.why;
    }
}

TEST(FrameMap, FramesOutsideAreRefused)
{
    std::pair<Edit, long> const rows[] = {{Edit::Replace, 5}, {Edit::Replace, -1}, {Edit::Insert, 6},
                                          {Edit::Insert, -1}, {Edit::Delete, 5},   {Edit::Delete, LONG_MIN}};
    for (auto const& [edit, frame] : rows) {
        MapClip map(Runs{{0, 4}, {-1, 1}});
        EXPECT_FALSE(Apply(map.clip, edit, frame, newScratch)) << frame;
        EXPECT_EQ(map.Table(), (Runs{{0, 4}, {-1, 1}})) << frame;
    }
}

TEST(FrameMap, TableGrowsAndShrinksInSteps)
{
    MapClip map(1000);
    EXPECT_EQ(map.clip.FrameMapSize, 32);
    for (long i = 0; i < 16; ++i)  // each replaced frame stands alone, and adds two runs
        ASSERT_TRUE(Replace_Mapped_Frame(map.clip, 3 * i + 1, -2 * i - 1));
    EXPECT_EQ(map.clip.FrameMapUsed, 33);
    EXPECT_EQ(map.clip.FrameMapSize, 64);
    for (long i = 0; i < 40; ++i)
        ASSERT_TRUE(Insert_Mapped_Frame(map.clip, 0, -100 - 2 * i));
    EXPECT_EQ(map.clip.FrameMapUsed, 73);
    EXPECT_EQ(map.clip.FrameMapSize, 96);

    for (long i = 0; i < 40; ++i)
        ASSERT_TRUE(Delete_Mapped_Frame(map.clip, 0));
    EXPECT_EQ(map.clip.FrameMapSize, 96) << "only joining looks for room to give back";
    ASSERT_TRUE(Replace_Mapped_Frame(map.clip, 500, -1000));
    EXPECT_EQ(map.clip.FrameMapUsed, 35);
    EXPECT_EQ(map.clip.FrameMapSize, 35);
    ASSERT_TRUE(Replace_Mapped_Frame(map.clip, 600, -2000));
    EXPECT_EQ(map.clip.FrameMapSize, 67);
}

TEST(FrameMap, AMapThatCannotGrowStaysAsItIs)
{
    // Full, and too large to be had once more; the frames looked for stand in its first runs.
    MapClip map(Runs{{0, 4}, {-1, 1}});
    map.clip.FrameMapUsed = map.clip.FrameMapSize = PTRDIFF_MAX / sizeof(ZVFrameRun) - 1;
    EXPECT_FALSE(Replace_Mapped_Frame(map.clip, 1, newScratch));
    EXPECT_FALSE(Insert_Mapped_Frame(map.clip, 1, newScratch));
    EXPECT_FALSE(Delete_Mapped_Frame(map.clip, 1));
    map.clip.FrameMapUsed = 2;
    EXPECT_EQ(map.Table(), (Runs{{0, 4}, {-1, 1}}));
}

TEST(FrameMap, AgreesWithAListOfFramesUnderRandomEdits)
{
    std::mt19937 random(7);
    for (long rawFrames : {1L, 2L, 10L, 300L}) {
        MapClip map(rawFrames);
        std::vector<long> model = map.Frames();
        for (long step = 1; step <= 3000; ++step) {
            auto const size = static_cast<long>(model.size());
            auto const edit = static_cast<Edit>(random() % 3);
            long const frame = static_cast<long>(random()) % (size + 1);
            bool const isEdited = Apply(map.clip, edit, frame, -step);
            ASSERT_EQ(isEdited, frame < size || edit == Edit::Insert);
            if (isEdited && edit == Edit::Replace) model[static_cast<size_t>(frame)] = -step;
            if (isEdited && edit == Edit::Insert) model.insert(model.begin() + frame, -step);
            if (isEdited && edit == Edit::Delete) model.erase(model.begin() + frame);
            ASSERT_EQ(map.Frames(), model) << "step " << step;
            ASSERT_LE(map.clip.FrameMapUsed, map.clip.FrameMapSize);
            for (long run = 0; run < map.clip.FrameMapUsed; ++run)
                ASSERT_GT(map.clip.FrameMap[run].Count, 0);
        }
        Compact_Frame_Map(map.clip);
        ASSERT_EQ(map.Frames(), model);
    }
}

}  // namespace
