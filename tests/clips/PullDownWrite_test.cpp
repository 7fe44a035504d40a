// Writing under pull-down: which fields of which film frames the video frames show.
#include "clips/ClipFixture.h"

#include <cstring>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr long width = 6;
constexpr long height = 8;
constexpr long filmFrames = 10;
constexpr unsigned long background = 0xFF204060;
constexpr long backgroundPicture = -1;

/// A video frame: its number, the film frame in its carried field and the one in its other field.
struct VideoFrame {
    long number, carried, other;
    bool operator==(VideoFrame const&) const = default;
};

void PrintTo(VideoFrame const& frame, std::ostream* out)
{
    *out << '#' << frame.number << '(' << frame.carried << ',' << frame.other << ')';
}

using Pixels = std::vector<unsigned char>;

long completions;

void Count_Completion(void*, unsigned long)
{
    ++completions;
}

class PullDownWrite : public EnvironmentTest {
protected:
    PullDownWrite()
    {
        for (long i = 0; i < filmFrames; ++i)
            pictures.push_back(Picture_Bytes(i, width, height));
        pictures.push_back(Filled_Bytes(background, width, height));
    }

    ~PullDownWrite() override { FreeClipZV(clip); }

    void Begin(long phase, uint8_t fieldOrder)
    {
        format.calls.clear();
        FreeClipZV(clip);
        clip = Create_Output(format.desc, environment.Spec("film.tst"), width, height, 24.0, 30.0);
        clip->PullDown = static_cast<uint8_t>(phase);
        clip->FieldOrder = fieldOrder;
        clip->Background = background;
        completions = 0;
    }

    template <typename... Tags> long Add(long frame, Tags... tags)
    {
        ZVTimeValue const time{static_cast<double>(frame), 24.0};
        Draw_Test_Picture(bitmap.get(), frame);
        long const answer = AddFrameZV(clip, bitmap.get(), &time, nullptr, completionTag, Count_Completion,
                                       tags..., static_cast<unsigned long>(ZV_TAG_END));
        EXPECT_EQ(Bytes_Of(bitmap), pictures.at(static_cast<std::size_t>(frame))) << "the caller's pixels";
        return answer;
    }

    /// The picture that all rows of a field show.
    long Picture_In_Field(Pixels const& frame, long top) const
    {
        std::size_t const rowBytes = frame.size() / height;
        for (std::size_t picture = 0; picture < pictures.size(); ++picture) {
            bool isEqual = true;
            for (auto row = static_cast<std::size_t>(top); row < height; row += 2)
                isEqual &=
                    std::memcmp(&frame[row * rowBytes], &pictures[picture][row * rowBytes], rowBytes) == 0;
            if (isEqual) return picture == filmFrames ? backgroundPicture : static_cast<long>(picture);
        }
        return -2;
    }

    std::vector<VideoFrame> Written(uint8_t fieldOrder) const
    {
        long const carriedTop = fieldOrder == ZV_FIELDS_LOWER_FIRST;
        std::vector<VideoFrame> frames;
        for (TestCall const& call : format.calls)
            if (call.entry == "AddFrame")
                frames.push_back({call.frame, Picture_In_Field(call.data, carriedTop),
                                  Picture_In_Field(call.data, 1 - carriedTop)});
        return frames;
    }

    TestFormat format;
    ZVClip* clip = nullptr;
    unsigned long completionTag = ZV_ADD_COMPLETION;  ///< ignored, a frame is waited for
    BitmapBlock bitmap = Make_Bitmap(width, height);
    std::vector<Pixels> pictures;  ///< of the film frames, then Background
};

struct CadenceCase {
    long phase;
    std::vector<VideoFrame> video;  ///< of film frames 0 to 6
};

// Film frame 0 of phases 4 and 5 begins in the middle of a mixed frame, so only its field is seen.
CadenceCase const cadences[] = {
    {1, {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {3, 2, 3}, {4, 3, 4}, {5, 4, 4}, {6, 5, 5}, {7, 6, 6}}},
    {2, {{0, 0, 0}, {1, 1, 1}, {2, 1, 2}, {3, 2, 3}, {4, 3, 3}, {5, 4, 4}, {6, 5, 5}, {7, 5, 6}}},
    {3, {{0, 0, 0}, {1, 0, 1}, {2, 1, 2}, {3, 2, 2}, {4, 3, 3}, {5, 4, 4}, {6, 4, 5}, {7, 5, 6}, {8, 6, 6}}},
    {4, {{0, 0, 1}, {1, 1, 2}, {2, 2, 2}, {3, 3, 3}, {4, 4, 4}, {5, 4, 5}, {6, 5, 6}, {7, 6, 6}}},
    {5, {{0, 0, 1}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {4, 3, 4}, {5, 4, 5}, {6, 5, 5}, {7, 6, 6}}},
};

TEST_F(PullDownWrite, FieldsOfNeighboursAreMixedByTheCadence)
{
    for (CadenceCase const& row : cadences) {
        for (uint8_t fieldOrder : {ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            SCOPED_TRACE(testing::Message() << "phase " << row.phase << " field order " << int{fieldOrder});
            Begin(row.phase, fieldOrder);
            for (long frame = 0; frame < 7; ++frame)
                EXPECT_TRUE(Add(frame));
            EXPECT_EQ(Written(fieldOrder), row.video);
            EXPECT_EQ(completions, 7);
            EXPECT_TRUE(clip->FieldBitmap);
            CloseClipZV(clip);
            EXPECT_FALSE(clip->FieldBitmap);
        }
    }
}

TEST_F(PullDownWrite, ARunBeginsAnywhereAndIsCompletedOverBackground)
{
    Begin(1, ZV_FIELDS_UPPER_FIRST);
    for (long frame = 7; frame < 10; ++frame)
        EXPECT_TRUE(Add(frame, ZV_ADD_FIRST_FRAME, 7));
    EXPECT_EQ(Written(ZV_FIELDS_UPPER_FIRST), (std::vector<VideoFrame>{{9, 7, 8}, {10, 8, 8}, {11, 9, 9}}));
    EXPECT_EQ(completions, 3);

    Begin(2, ZV_FIELDS_LOWER_FIRST);
    for (long frame = 0; frame <= 2; ++frame)
        EXPECT_TRUE(Add(frame, ZV_ADD_LAST_FRAME, 2));
    EXPECT_EQ(Written(ZV_FIELDS_LOWER_FIRST),
              (std::vector<VideoFrame>{{0, 0, 0}, {1, 1, 1}, {2, 1, 2}, {3, 2, backgroundPicture}}));
    EXPECT_EQ(completions, 3);
}

TEST_F(PullDownWrite, AFailureLeavesTheCallersPixels)
{
    Begin(1, ZV_FIELDS_UPPER_FIRST);
    for (long frame = 0; frame < 3; ++frame)
        EXPECT_TRUE(Add(frame));
    format.failing.insert("AddFrame");
    EXPECT_FALSE(Add(3, ZV_ADD_LAST_FRAME, 3));
    EXPECT_EQ(completions, 4);
    EXPECT_EQ(format.Count("AddFrame"), 4) << "nothing is owed for a frame that was refused";
    EXPECT_FALSE(Add(4));
    EXPECT_EQ(format.Count("AddFrame"), 5) << "without its mixed frame the whole one is not tried";

    BitmapBlock other = Make_Bitmap(width, height, ZV_BITMAP_RGBA16);
    EXPECT_FALSE(AddFrameZV(clip, other.get(), nullptr, nullptr, ZV_ADD_FIRST_FRAME, 1))
        << "type changed in a run";
    EXPECT_TRUE(clip->FieldBitmap && clip->FieldBitmap->Type == ZV_BITMAP_RGBA8);
    format.failing.clear();
    EXPECT_TRUE(AddFrameZV(clip, other.get(), nullptr, nullptr, nullptr)) << "a new run may have another";
    other = Make_Bitmap(width + 1, height);
    EXPECT_FALSE(AddFrameZV(clip, other.get(), nullptr, nullptr, nullptr)) << "not the clip's size";
}

/// Takes its time, and looks at the frame only then.
struct SlowWriter {
    static inline std::vector<std::thread> threads;
    static inline std::vector<Pixels> frames;

    static long Add(ZVClip*, ZVBitmap* frame, long number, ZVRectT<long>*, ZVFrameCompletion completion,
                    ZVCompletionParams* params, long)
    {
        threads.emplace_back([=] {
            Delay(1);
            Pixels& seen = frames.at(static_cast<std::size_t>(number));
            seen.assign(frame->Pixels, frame->Pixels + frame->Size);
            completion(params, 1);
        });
        return 1;
    }
};

using PullDownWriteThreads = PullDownWrite;

TEST_F(PullDownWriteThreads, AModuleThatFinishesLaterSeesTheMixedFrame)
{
    SlowWriter::frames.assign(8, {});
    format.desc->AddFrameAsync = SlowWriter::Add;
    completionTag = ZV_TAG_IGNORE;
    Begin(1, ZV_FIELDS_UPPER_FIRST);
    for (long frame = 0; frame < 7; ++frame)
        EXPECT_TRUE(Add(frame));
    for (std::thread& thread : SlowWriter::threads)
        thread.join();
    SlowWriter::threads.clear();
    for (VideoFrame const& expected : cadences[0].video) {
        Pixels const& seen = SlowWriter::frames[static_cast<std::size_t>(expected.number)];
        EXPECT_EQ(Picture_In_Field(seen, 0), expected.carried) << expected.number;
        EXPECT_EQ(Picture_In_Field(seen, 1), expected.other) << expected.number;
    }
}

}  // namespace
