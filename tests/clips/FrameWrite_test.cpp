// Writing frames: numbers, names, pixel types, and when the caller's bitmap is free again.
#include "clips/ClipFixture.h"

#include <atomic>
#include <cstring>
#include <numeric>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Pixels = std::vector<unsigned char>;

/// A clip under way to a directory of the test's own.
class FrameWrite : public EnvironmentTest {
protected:
    ~FrameWrite() override { FreeClipZV(clip); }

    std::string Spec(std::string const& name) const { return environment.Spec(name); }

    static BitmapBlock New_Bitmap(ZVBitmapType type, long picture = 0)
    {
        BitmapBlock made = Make_Bitmap(8, 6, type);
        Draw_Test_Picture(made.get(), picture);
        return made;
    }

    template <typename... Tags> long Add(long frame, Tags... tags)
    {
        ZVTimeValue const time = Frame_Time(static_cast<double>(frame));
        return AddFrameZV(clip, bitmap.get(), &time, nullptr, ZV_TAG_IGNORE, 0, tags...);
    }

    std::string Written_Name() const { return format.Last("AddFrame").fileName; }

    TestFormat format{"tst", ZV_FORMAT_READ | ZV_FORMAT_WRITE};
    ZVClip* clip = Create_Output(format.desc, Spec("shot[###].tst"), 8, 6, 25.0, 25.0);
    BitmapBlock bitmap = New_Bitmap(ZV_BITMAP_RGBA8);
};

/// Counts its calls, and how many frames the module had seen at the last one.
struct Completion {
    TestFormat const* format;
    long count = 0;
    unsigned long argument = 0;
    long framesBefore = -1;

    static void Run(void* self, unsigned long argument)
    {
        auto* completion = static_cast<Completion*>(self);
        ++completion->count;
        completion->argument = argument;
        completion->framesBefore =
            completion->format->Count("AddFrame") + completion->format->Count("AddFrameAsync");
    }
};

TEST_F(FrameWrite, TheTimeNamesTheFrame)
{
    struct {
        char const* why;
        ZVTimeValue time, start;
        std::vector<TagItem> tags;
        long frame;
    } rows[] = {
        {"a product a hair under a whole number counts as that", {1, 25}, {}, {}, 1},
        {"no scale is time 0", {7, 0}, {}, {}, 0},
        {"inside a frame", {2.9, 25}, {}, {}, 2},
        {"counted from the clip's start", {10, 25}, {4, 25}, {}, 6},
        {"divided", {11, 25}, {}, {{ZV_ADD_FRAME_DIVISOR, 4}}, 2},
        {"a divisor of 0 is 1", {11, 25}, {}, {{ZV_ADD_FRAME_DIVISOR, 0}}, 11},
        {"divided toward zero", {1, 25}, {4, 25}, {{ZV_ADD_FRAME_DIVISOR, 2}}, -1},
        {"the divisor can be switched off",
         {11, 25},
         {},
         {{ZV_ADD_USE_DIVISOR, 0}, {ZV_ADD_FRAME_DIVISOR, 4}},
         11},
    };
    for (auto& row : rows) {
        clip->StartTime = row.start;
        row.tags.push_back({});
        EXPECT_TRUE(AddFrameZV(clip, bitmap.get(), &row.time, nullptr, row.tags.data())) << row.why;
        EXPECT_EQ(format.Last("AddFrame").frame, row.frame) << row.why;
    }
}

TEST_F(FrameWrite, WhatCannotBeWrittenIsRefused)
{
    EXPECT_FALSE(AddFrameZV(nullptr, bitmap.get(), nullptr, nullptr, nullptr) ||
                 AddFrameZV(clip, nullptr, nullptr, nullptr, nullptr));
    EXPECT_FALSE(Add(0, ZV_ADD_TO_BITMAP, nullptr)) << "neither a target nor a writer";
    ZVTimeValue const never{1e300, 1.0};
    EXPECT_FALSE(AddFrameZV(clip, bitmap.get(), &never, nullptr, ZV_ADD_FRAME_DIVISOR, -1));

    format.properties = ZV_FORMAT_READ;
    EXPECT_FALSE(Add(0)) << "a module that only reads";
    format.properties = ZV_FORMAT_WRITE;
    clip->Format = nullptr;
    EXPECT_FALSE(Add(0));
    clip->Format = format.desc;
    auto const addFrame = std::exchange(format.desc->AddFrame, nullptr);
    EXPECT_FALSE(Add(0)) << "a module without an entry for it";
    format.desc->AddFrame = addFrame;
    EXPECT_EQ(format.Count("AddFrame"), 0);

    format.failing.insert("AddFrame");
    EXPECT_FALSE(Add(0));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    format.errors["AddFrame"] = ZV_ERR_DISK_FULL;
    EXPECT_FALSE(Add(0));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL) << "the module knows better";
    format.failing.clear();
    EXPECT_TRUE(Add(1)) << "a lost frame does not end the clip";
}

TEST_F(FrameWrite, ASequenceHasAFileForEachFrame)
{
    struct {
        char const* why;
        long frames;
        unsigned long flags;
        long properties;
        char const* name;
    } const rows[] = {
        {"one planned frame has the clip's own name", 1, 0, ZV_FORMAT_WRITE, "shot[###].tst"},
        {"numbered because the caller says so", 1, ZV_CLIP_NUMBERED, ZV_FORMAT_WRITE, "shot007.tst"},
        {"two planned frames are a sequence", 2, 0, ZV_FORMAT_WRITE, "shot007.tst"},
        {"one file holds them all", 2, ZV_CLIP_NUMBERED, ZV_FORMAT_WRITE | ZV_FORMAT_MULTIFRAME,
         "shot[###].tst"},
    };
    for (auto const& row : rows) {
        clip->Frames = row.frames;
        clip->Flags = (clip->Flags & ~ZV_CLIP_NUMBERED) | row.flags;
        format.properties = row.properties;
        EXPECT_TRUE(Add(7)) << row.why;
        EXPECT_EQ(Written_Name(), Spec(row.name)) << row.why;
        EXPECT_EQ(clip->FileName, Spec("shot[###].tst")) << row.why;
    }
    clip->Frames = 2;
    clip->SequenceStart = 100;
    clip->SequenceStep = 2;
    format.properties = ZV_FORMAT_WRITE;
    EXPECT_TRUE(Add(7));
    EXPECT_EQ(Written_Name(), Spec("shot114.tst"));
}

TEST_F(FrameWrite, AFileWithDataIsKeptOnRequest)
{
    environment.Write("shot001.tst", "keep");
    environment.Write("shot002.tst", "");
    EXPECT_FALSE(Add(1, ZV_ADD_NO_OVERWRITE, 1));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE) << "a refusal is told apart from a failure";
    EXPECT_EQ(clip->FileName, Spec("shot[###].tst"));
    EXPECT_EQ(format.Count("AddFrame"), 0);
    ZVRectT<long> region{1, 2, 3, 4};
    EXPECT_TRUE(Add(2, ZV_ADD_NO_OVERWRITE, 1, ZV_ADD_RECT, &region)) << "an empty file is no frame";
    EXPECT_EQ(format.Last("AddFrame").rect, region);
    EXPECT_TRUE(Add(3, ZV_ADD_NO_OVERWRITE, 1)) << "no file";
    EXPECT_TRUE(Add(1, ZV_ADD_NO_OVERWRITE, 0));
    EXPECT_EQ(format.Last("AddFrame").rect, (ZVRectT<long>{0, 0, 8, 6}));
}

TEST_F(FrameWrite, FramesAreConvertedToTheClipsType)
{
    bitmap = New_Bitmap(ZV_BITMAP_RGBA16, 5);
    BitmapBlock const expected = Make_Bitmap(8, 6);
    CopyBitmapZV(bitmap.get(), expected.get(), 0, 0, 8, 6, 0, 0);

    Completion done{&format};
    EXPECT_TRUE(Add(0, ZV_ADD_COMPLETION, Completion::Run, ZV_ADD_COMPLETION_DATA, &done));
    EXPECT_EQ(format.Last("AddFrame").type, ZV_BITMAP_RGBA8);
    EXPECT_EQ(format.Last("AddFrame").data, Bytes_Of(expected));
    EXPECT_EQ(done.count, 1);
    EXPECT_EQ(done.framesBefore, 0) << "the caller's bitmap is free as soon as it was copied";

    format.properties |= ZV_FORMAT_ANY_TYPE;
    EXPECT_TRUE(Add(0, ZV_ADD_COMPLETION, Completion::Run, ZV_ADD_COMPLETION_DATA, &done));
    EXPECT_EQ(format.Last("AddFrame").bitmap, bitmap.get());
    EXPECT_EQ(done.count, 2);
    EXPECT_EQ(done.framesBefore, 2) << "without a copy it is free when the module has done with it";

    format.properties &= ~ZV_FORMAT_ANY_TYPE;
    bitmap = Make_Bitmap(8, 6, ZV_BITMAP_MONO8);
    EXPECT_FALSE(Add(0)) << "there is no conversion from mono";
}

TEST_F(FrameWrite, FramesGoToABitmapOrAFunctionInstead)
{
    BitmapBlock const target = New_Bitmap(ZV_BITMAP_RGBA8, 1);
    Completion done{&format};
    EXPECT_TRUE(Add(3, ZV_ADD_TO_BITMAP, target.get(), ZV_ADD_COMPLETION, Completion::Run,
                    ZV_ADD_COMPLETION_DATA, &done));
    EXPECT_EQ(Bytes_Of(target), Bytes_Of(bitmap));
    EXPECT_EQ(done.count, 1);

    ZVFrameWriter const writer = [](ZVClip*, ZVBitmap*, long frame, ZVRectT<long>* region, long noOverwrite,
                                    void (*completion)(void*, unsigned long), void* data,
                                    unsigned long argument) {
        completion(data, argument);
        return frame * 1000 + region->width * 10 + noOverwrite;
    };
    EXPECT_EQ(Add(3, ZV_ADD_TO_BITMAP, target.get(), ZV_ADD_FUNCTION, writer, ZV_ADD_NO_OVERWRITE, 2,
                  ZV_ADD_COMPLETION, Completion::Run, ZV_ADD_COMPLETION_DATA, &done,
                  ZV_ADD_COMPLETION_ARGUMENT, 77),
              3082);
    EXPECT_EQ(done.argument, 77u);
    EXPECT_EQ(format.Count("AddFrame"), 0);
}

TEST_F(FrameWrite, AnAsynchronousFrameCompletesWhenTheModuleSaysSo)
{
    format.desc->AddFrameAsync = TestFormat::AddFrameAsync;
    format.completesAtOnce = false;
    Completion done{&format};
    EXPECT_TRUE(Add(4, ZV_ADD_COMPLETION, Completion::Run, ZV_ADD_COMPLETION_DATA, &done,
                    ZV_ADD_COMPLETION_ARGUMENT, 9));
    EXPECT_EQ(format.Last("AddFrameAsync").bitmap, bitmap.get())
        << "no copy: the caller keeps the bitmap until then";
    EXPECT_EQ(format.Last("AddFrameAsync").fileName, Spec("shot004.tst"));
    EXPECT_EQ(clip->FileName, Spec("shot[###].tst"));
    EXPECT_EQ(done.count, 0);
    format.Complete_Pending();
    EXPECT_EQ(done.count, 1);
    EXPECT_EQ(done.argument, 9u);
}

TEST_F(FrameWrite, AConvertedFrameOutlivesTheCallersBitmap)
{
    format.desc->AddFrameAsync = TestFormat::AddFrameAsync;
    format.completesAtOnce = false;
    for (unsigned long tag : {static_cast<unsigned long>(ZV_TAG_IGNORE), +ZV_ADD_COMPLETION}) {
        bitmap = New_Bitmap(ZV_BITMAP_RGBA16);
        Completion done{&format};
        bool const isCalled = tag == ZV_ADD_COMPLETION;
        EXPECT_TRUE(Add(0, tag, Completion::Run, ZV_ADD_COMPLETION_DATA, &done));
        EXPECT_EQ(done.count, isCalled);
        bitmap.reset();
        ZVBitmap const* copy = format.pending.at(0).params->Bitmap;
        EXPECT_EQ(Pixels(copy->Pixels, copy->Pixels + copy->Size), format.Last("AddFrameAsync").data);
        format.Complete_Pending();
        EXPECT_EQ(done.count, isCalled) << "it ran already";
    }
}

/// Sums up the pixels of each frame on a thread of its own and completes it from there.
struct Worker {
    std::thread thread;
    unsigned long sum = 0;

    static inline std::vector<Worker*> workers;

    static long Add(ZVClip*, ZVBitmap* frame, long number, ZVRectT<long>*, ZVFrameCompletion completion,
                    ZVCompletionParams* params, long)
    {
        Worker* worker = workers.at(static_cast<std::size_t>(number));
        worker->thread = std::thread([=] {
            for (long i = 0; i < frame->Size; ++i)
                worker->sum += frame->Pixels[i];
            completion(params, 1);
        });
        return 1;
    }
};

using FrameWriteThreads = FrameWrite;

TEST_F(FrameWriteThreads, FramesCompleteOnOtherThreads)
{
    constexpr long frameCount = 12;
    format.desc->AddFrameAsync = Worker::Add;
    std::vector<Worker> workers(frameCount);
    Worker::workers.clear();
    for (Worker& worker : workers)
        Worker::workers.push_back(&worker);

    static std::atomic<long> completed;
    completed = 0;
    auto const complete = [](void* data, unsigned long) {
        FreeBitmapZV(static_cast<ZVBitmap*>(data));
        ++completed;
    };
    std::vector<unsigned long> sums;
    for (long i = 0; i < frameCount; ++i) {
        // In turn: waited for, converted first, and completed by the caller's function.
        bitmap = New_Bitmap(i % 3 == 1 ? ZV_BITMAP_RGBA16 : ZV_BITMAP_RGBA8, i);
        BitmapBlock frame = Make_Bitmap(8, 6);
        CopyBitmapZV(bitmap.get(), frame.get(), 0, 0, 8, 6, 0, 0);
        Pixels const pixels = Bytes_Of(frame);
        sums.push_back(std::accumulate(pixels.begin(), pixels.end(), 0ul));
        if (i % 3 == 2) {
            ZVTimeValue const time = Frame_Time(static_cast<double>(i));
            EXPECT_TRUE(AddFrameZV(clip, frame.get(), &time, nullptr, ZV_ADD_COMPLETION, +complete,
                                   ZV_ADD_COMPLETION_DATA, frame.get()));
            frame.release();
        } else {
            EXPECT_TRUE(Add(i));
            std::memset(bitmap->Pixels, 0, static_cast<std::size_t>(bitmap->Size));
        }
    }
    for (std::size_t i = 0; i < workers.size(); ++i) {
        workers[i].thread.join();
        EXPECT_EQ(workers[i].sum, sums[i]) << i;
    }
    EXPECT_EQ(completed, frameCount / 3);
}

}  // namespace
