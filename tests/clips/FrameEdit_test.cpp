// Editing frames: what a clip shows after its frames were replaced, inserted and deleted, and what becomes of
// the scratch files.
#include "FailingHeap.h"
#include "FileSizeLimit.h"
#include "clips/ClipFixture.h"
#include "clips/FrameRuns.h"

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <utility>

namespace {

using Pixels = std::vector<unsigned char>;

constexpr long width = 8;
constexpr long height = 6;
constexpr unsigned long background = 0xFF204060;
constexpr long backgroundPicture = -1;

class FrameEdit : public ClipTest {
protected:
    FrameEdit() { Open_Frames(10); }

    void Open_Frames(long frames)
    {
        format.frames = frames;
        Open()->Background = background;
    }

    /// The pixels of a picture, which no source frame shows from 100 on.
    Pixels const& Picture(long number)
    {
        Pixels& pixels = pictures[number];
        if (pixels.empty())
            pixels = number == backgroundPicture ? Filled_Bytes(background, width, height)
                                                 : Picture_Bytes(number, width, height);
        return pixels;
    }

    long Modify(long frame, long picture)
    {
        std::memcpy(bitmap->Pixels, Picture(picture).data(), Picture(picture).size());
        ZVTimeValue const time = Frame_Time(static_cast<double>(frame), clip->FrameRate);
        return ModifyFrameZV(clip, bitmap.get(), &time, nullptr, nullptr);
    }
    long At(long (*edit)(ZVClip*, ZVTimeValue const*), long frame)
    {
        ZVTimeValue const time = Frame_Time(static_cast<double>(frame));
        return edit(clip, &time);
    }
    long Insert_Before(long frame) { return At(InsertFrameBeforeZV, frame); }
    long Insert_After(long frame) { return At(InsertFrameAfterZV, frame); }
    long Delete(long frame) { return At(DeleteFrameZV, frame); }

    Pixels Read(long frame) { return Frame_Bytes(clip, static_cast<double>(frame)); }

    Runs Map() const { return {clip->FrameMap, clip->FrameMap + clip->FrameMapUsed}; }

    /// Names in the scratch directory.
    static std::set<std::string> Scratch_Files()
    {
        std::set<std::string> names;
        if (!ZVEnv->scratchPath) return names;
        auto const note = [](char const* name, bool, void* set) {
            static_cast<std::set<std::string>*>(set)->insert(name);
            return true;
        };
        OS_Walk_Directory(ZVEnv->scratchPath, note, &names);
        return names;
    }

    BitmapBlock bitmap = Make_Bitmap(width, height);
    std::map<long, Pixels> pictures;
};

TEST_F(FrameEdit, ReplacingKeepsTheMapInRunsAndUsesAScratchFrameAgain)
{
    EXPECT_FALSE(clip->FrameMap);
    EXPECT_TRUE(Modify(4, 100) && Modify(6, 101) && Modify(5, 102) && Modify(5, 103));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_EQ(Map(), (Runs{{0, 4}, {-1, 1}, {-3, 1}, {-2, 1}, {7, 3}}));
    EXPECT_EQ(Scratch_Files().size(), 3u);
    EXPECT_EQ(Read(5), Picture(103));
    EXPECT_TRUE(Insert_Before(0));
    EXPECT_EQ(Map(), (Runs{{-4, 1}, {0, 4}, {-1, 1}, {-3, 1}, {-2, 1}, {7, 3}}));
    EXPECT_EQ(Scratch_Files().size(), 3u) << "Background needs no file";
}

TEST_F(FrameEdit, TimesOutsideTheClip)
{
    auto const modify = [](ZVClip* c, ZVBitmap* b, ZVTimeValue const* t) {
        return ModifyFrameZV(c, b, t, nullptr, nullptr);
    };
    auto const modify2 = [](ZVClip* c, ZVBitmap* b, ZVTimeValue const* t) {
        return ModifyFrame2(c, static_cast<unsigned long>(t->Value), b, nullptr);
    };
    auto const before = [](ZVClip* c, ZVBitmap*, ZVTimeValue const* t) { return InsertFrameBeforeZV(c, t); };
    auto const after = [](ZVClip* c, ZVBitmap*, ZVTimeValue const* t) { return InsertFrameAfterZV(c, t); };
    auto const remove = [](ZVClip* c, ZVBitmap*, ZVTimeValue const* t) { return DeleteFrameZV(c, t); };
    struct {
        char const* why;
        std::function<long(ZVClip*, ZVBitmap*, ZVTimeValue const*)> edit;
        double frame;
        bool isDone;
    } const rows[] = {
        {"modify the last frame", modify, 9, true},
        {"modify behind the end", modify, 10, false},
        {"modify far behind the end", modify, 1e300, false},
        {"modify ahead of the start", modify, -1, false},
        {"modify by number behind the end", modify2, 10, false},
        {"insert ahead of the start counts as frame 0", before, -5, true},
        {"insert before the end", before, 9, true},
        {"insert at the end", before, 10, false},
        {"insert after the last frame", after, 9, true},
        {"insert after the end", after, 10, false},
        {"delete ahead of the start counts as frame 0", remove, -5, true},
        {"delete the last frame", remove, 9, true},
        {"delete behind the end", remove, 10, false},
        {"insert far behind the end", before, 1e300, false},
        {"delete far behind the end", remove, 1e300, false},
    };
    for (auto const& row : rows) {
        Open_Frames(10);
        ZVTimeValue const time{row.frame, 25.0};
        EXPECT_EQ(row.edit(clip, bitmap.get(), &time) != 0, row.isDone) << row.why;
        EXPECT_EQ(row.edit(nullptr, bitmap.get(), &time), 0) << row.why;
        if (row.isDone) continue;
        EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP) << row.why;
        EXPECT_TRUE(!clip->FrameMap && clip->Frames == 10 && Scratch_Files().empty()) << row.why;
    }
    EXPECT_FALSE(ModifyFrame2(clip, 0, nullptr, nullptr));
}

TEST_F(FrameEdit, AClipCanLoseAllItsFrames)
{
    for (long left = 10; left > 0; --left)
        EXPECT_TRUE(Delete(left / 2));
    EXPECT_TRUE(clip->Frames == 0 && clip->FrameMapUsed == 0);
    EXPECT_FALSE(Delete(0) || Insert_Before(0) || Modify(0, 100));
    EXPECT_EQ(Read(0), Picture(backgroundPicture));
}

TEST_F(FrameEdit, AThousandRandomEditsAgreeWithAList)
{
    std::vector<long> model;
    for (long frame = 0; frame < 10; ++frame)
        model.push_back(frame);
    std::mt19937 random(11);
    for (long step = 0; step < 1000; ++step) {
        auto const size = static_cast<long>(model.size());
        long const frame = static_cast<long>(random()) % (size + 2);  // now and then behind the end
        bool const isInside = frame < size;
        auto const place = model.begin() + std::min(frame, size);
        // Deleting as often as inserting, and held near ten frames so that all of them can be read each time.
        switch (size > 16 ? 3 : size < 5 ? 1 : random() % 4) {
        case 0:
            ASSERT_EQ(Modify(frame, 100 + step) != 0, isInside);
            if (isInside) *place = 100 + step;
            break;
        case 1:
            ASSERT_EQ(Insert_Before(frame) != 0, isInside);
            if (isInside) model.insert(place, backgroundPicture);
            break;
        case 2:
            ASSERT_EQ(Insert_After(frame) != 0, isInside);
            if (isInside) model.insert(place + 1, backgroundPicture);
            break;
        default:
            ASSERT_EQ(Delete(frame) != 0, isInside);
            if (isInside) model.erase(place);
            break;
        }
        ASSERT_EQ(clip->Frames, static_cast<long>(model.size()));
        for (std::size_t i = 0; i < model.size(); ++i)
            ASSERT_EQ(Read(static_cast<long>(i)), Picture(model[i])) << "step " << step << " frame " << i;
        ASSERT_EQ(Read(clip->Frames), Picture(backgroundPicture));
    }
    std::set<std::string> const all = Scratch_Files();
    long inMap = 0;
    for (ZVFrameRun const& run : Map())
        for (long i = 0; run.Start < 0 && i < run.Count; ++i)
            inMap += FileExistsZV(Make_TempName(clip->ClipID, run.Start - i, 0));
    ASSERT_GT(inMap, 0);
    FreeClipZV(std::exchange(clip, nullptr));
    EXPECT_EQ(Scratch_Files().size(), all.size() - static_cast<std::size_t>(inMap));
    std::string const directory = ZVEnv->scratchPath;
    Cleanup_Clip();
    EXPECT_FALSE(FileExistsZV(directory.c_str()));
}

TEST_F(FrameEdit, AFailedWriteLosesNothing)
{
    EXPECT_TRUE(Modify(3, 100));
    Runs const map = Map();
    std::set<std::string> const files = Scratch_Files();
    {
        FileSizeLimit const limit(100);
        EXPECT_FALSE(Modify(3, 101)) << "rewriting";
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL);
        EXPECT_FALSE(Modify(7, 102)) << "a new frame";
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL);
    }
    EXPECT_EQ(Map(), map);
    EXPECT_EQ(Scratch_Files(), files);
    EXPECT_EQ(Read(3), Picture(100));
    EXPECT_EQ(Read(7), Picture(7));
    EXPECT_TRUE(Modify(7, 102));
    EXPECT_EQ(Read(7), Picture(102));
}

TEST_F(FrameEdit, AScratchFileOfAnotherClipIsNotTaken)
{
    // Ids that differ by 10000 have the same scratch names.
    EXPECT_TRUE(Modify(0, 100));
    ZVClip* other = CloneClipZV(clip, nullptr);
    FreeMemZV(std::exchange(other->FrameMap, nullptr));
    other->FrameMapUsed = other->FrameMapSize = other->ScratchCount = 0;
    other->ClipID = clip->ClipID + 10000;
    std::memcpy(bitmap->Pixels, Picture(101).data(), Picture(101).size());
    EXPECT_TRUE(ModifyFrame2(other, 0, bitmap.get(), nullptr));
    EXPECT_EQ(Read(0), Picture(100));
    FreeClipZV(other);
    EXPECT_EQ(Read(0), Picture(100));
}

TEST_F(FrameEdit, MemoryThatRunsOutLosesNothing)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    SetErrorModeZV(ZV_ERRORMODE_YES);
    Picture(200);
    std::function<long()> const edits[] = {[this] { return Modify(50, 200); },
                                           [this] { return Insert_Before(50); },
                                           [this] { return Delete(50); }};
    for (std::size_t edit = 0; edit < std::size(edits); ++edit) {
        for (long after = 0;; ++after) {
            SCOPED_TRACE(testing::Message() << "edit " << edit << " after " << after << " allocations");
            Open_Frames(100);
            for (long i = 0; i < 15; ++i)
                Modify(2 * i + 1, 100 + i);
            Insert_Before(0);
            ASSERT_EQ(clip->FrameMapUsed, clip->FrameMapSize) << "any edit must let the table grow";
            Runs const map = Map();
            long answer = 0;
            bool isThrown = false;
            try {
                FailingHeap const heap(after);
                answer = edits[edit]();
            } catch (...) {  // by the file layer, for want of a few bytes
                isThrown = true;
            }
            if (answer) break;
            EXPECT_TRUE(isThrown || GetErrorZV() == ZV_ERR_MEMORY);
            EXPECT_EQ(Map(), map);
            EXPECT_EQ(clip->Frames, 101);
            EXPECT_EQ(Read(50), Picture(49));
        }
    }
}

TEST_F(FrameEdit, FilmFramesAreReplacedUnderPullDown)
{
    std::mt19937 random(3);
    for (long phase = 1; phase <= 5; ++phase) {
        for (uint8_t fieldOrder : {ZV_FIELDS_NONE, ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            SCOPED_TRACE(testing::Message() << "phase " << phase << " field order " << int{fieldOrder});
            Open_Frames(25);
            SetClipOptionsZV(clip, ZV_CLIP_FIELD_ORDER, fieldOrder, ZV_CLIP_PULLDOWN, phase);
            std::vector<Pixels> model;
            for (long film = 0; film < 20; ++film)
                model.push_back(Read(film));
            for (long step = 0; step < 20; ++step) {
                auto const film = static_cast<long>(random() % 19);  // the last one may lack its second field
                ASSERT_TRUE(Modify(film, 100 + step));
                model[static_cast<std::size_t>(film)] = Picture(100 + step);
                for (long i = 0; i < 19; ++i)
                    ASSERT_EQ(Read(i), model[static_cast<std::size_t>(i)])
                        << "step " << step << " film " << i;
            }
        }
    }
}

TEST_F(FrameEdit, MixedVideoFramesFollowTheirFilmFrames)
{
    // Phase 1, upper field first: film 2, 3 and 4 are video 2, 3 + 4 and 5; video 3 mixes 2 and 3, video 4
    // mixes 3 and 4.
    struct {
        char const* why;
        std::vector<std::pair<long, long>> edits;  ///< film frame, picture
        std::pair<long, long> video3, video4;      ///< pictures in the upper and lower field
    } const rows[] = {
        {"whole neighbours leave untouched mixed frames to the source", {{2, 102}, {4, 104}}, {3, 3}, {4, 4}},
        {"a split frame takes its fields of both", {{3, 103}}, {3, 103}, {103, 4}},
        {"neighbours edited later show in both", {{3, 103}, {2, 102}, {4, 104}}, {102, 103}, {103, 104}},
    };
    for (auto const& row : rows) {
        Open_Frames(10);
        SetClipOptionsZV(clip, ZV_CLIP_FIELD_ORDER, ZV_FIELDS_UPPER_FIRST, ZV_CLIP_PULLDOWN, 1);
        for (auto const& [film, picture] : row.edits)
            ASSERT_TRUE(Modify(film, picture));
        SetClipOptionsZV(clip, ZV_CLIP_FIELD_ORDER, ZV_FIELDS_NONE, ZV_CLIP_PULLDOWN, 0);
        for (long video : {3L, 4L}) {
            auto const& [upper, lower] = video == 3 ? row.video3 : row.video4;
            Pixels expected = Picture(upper);
            for (std::size_t y = 1; y < height; y += 2)
                std::memcpy(&expected[y * width * 4], &Picture(lower)[y * width * 4], width * 4);
            EXPECT_EQ(Read(video), expected) << row.why << ", video " << video;
        }
    }
}

TEST_F(FrameEdit, AFilmFrameIsReplacedWholeOrNotAtAll)
{
    SetClipOptionsZV(clip, ZV_CLIP_FIELD_ORDER, ZV_FIELDS_UPPER_FIRST, ZV_CLIP_PULLDOWN, 1);
    ASSERT_TRUE(Modify(3, 103));
    // Film frame 3 lies in two video frames; the second one's new pixels find a directory in their way.
    std::string blocked = Make_TempName(clip->ClipID, -2, 0);
    blocked.back() = 'W';
    ASSERT_TRUE(CreateDirZV(blocked.c_str()));
    EXPECT_FALSE(Modify(3, 104));
    EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
    EXPECT_EQ(Read(3), Picture(103));
    EXPECT_EQ(Scratch_Files().size(), 3u);
    DeleteDirZV(blocked.c_str());
    EXPECT_TRUE(Modify(3, 104));
    EXPECT_EQ(Read(3), Picture(104));
}

}  // namespace
