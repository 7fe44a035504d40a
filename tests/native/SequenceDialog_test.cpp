// The dialog that a numbered series is opened with: how its gadgets follow one another, and what it makes of
// the clip.
#include "DialogTest.h"
#include "FailingHeap.h"
#include "clips/TestFormat.h"

#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr unsigned Confirm = 17, Cancel = 18;

struct ClipFreer {
    void operator()(ZVClip* clip) const { FreeClipZV(clip); }
};
using ClipPtr = std::unique_ptr<ZVClip, ClipFreer>;

class SequenceDialog : public DialogTest {
protected:
    SequenceDialog()
    {
        for (int i = 0; i < 10; ++i)
            files_.Write("a" + std::to_string(i) + ".tst", "x");
        for (char const* name : {"b3.tst", "b4.tst", "b7.tst", "b12.tst"})
            files_.Write(name, "x");
        format_.properties &= ~ZV_FORMAT_MULTIFRAME;
        format_.frames = 1;
    }

    /// Opens a file; the user does these steps and then presses a button.
    ClipPtr Open(std::string const& name, std::string_view steps, unsigned button = Confirm)
    {
        Expect_Dialogs({[=] {
            Do(steps);
            Click(button);
        }});
        return ClipPtr(OpenClipZV(files_.Spec(name).c_str(), nullptr));
    }

    std::string File_Of(ZVClip const* clip) const
    {
        char name[ZV_SPEC_SIZE];
        return GetFileNameZV(clip->FileName, name);
    }

    ScratchDir files_;
    TestFormat format_;
};

std::string Number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

}  // namespace

/// What shows: frames and their count, rate with its entry, aspect with its entry.
static std::string Shown()
{
    auto const field = [](unsigned short id) {
        return Number(FindItem2ZV(ZVEnv->modalPalette, id)->realValue);
    };
    auto const entry = [](unsigned short id) {
        return std::to_string(FindItem2ZV(ZVEnv->modalPalette, id)->state);
    };
    return field(5) + "-" + field(6) + "/" + field(8) + " " + field(11) + ":" + entry(10) + " " + field(14) +
           ":" + entry(13);
}

TEST_F(SequenceDialog, GadgetsFollowOneAnother)
{
    struct {
        char const *why, *steps, *shown;
    } const cases[] = {
        {"all of the series at first", "", "0-9/10 25:4 1:1"},
        {"a first frame", "5=3", "3-9/7 25:4 1:1"},
        {"a last frame", "6=4", "0-4/5 25:4 1:1"},
        {"beyond the end", "5=3|6=20", "3-9/7 25:4 1:1"},
        {"before the start", "5=-4", "0-9/10 25:4 1:1"},
        {"a first frame takes the last one along", "6=4|5=6", "6-6/1 25:4 1:1"},
        {"a last frame takes the first one along", "5=6|6=2", "2-2/1 25:4 1:1"},
        {"a count", "5=2|8=3", "2-4/3 25:4 1:1"},
        {"no count is one", "5=2|8=0", "2-2/1 25:4 1:1"},
        {"a count ends with the series", "5=4|8=99", "4-9/6 25:4 1:1"},
        {"an entry of the rates", "10:24", "0-9/10 24:3 1:1"},
        {"a usual rate that is typed", "11=29.97", "0-9/10 29.97:5 1:1"},
        {"another rate", "11=12.5", "0-9/10 12.5:8 1:1"},
        {"custom leaves the rate", "10:Custom", "0-9/10 25:8 1:1"},
        {"a rate beyond the limit", "11=500", "0-9/10 100:8 1:1"},
        {"an entry of the aspects", "13:PAL (1.067)", "0-9/10 25:4 1.06667:4"},
        {"a usual aspect on the slider", "14~2", "0-9/10 25:4 2:6"},
        {"another aspect", "14~1.5", "0-9/10 25:4 1.5:7"},
    };
    for (auto const& row : cases) {
        std::string shown;
        Expect_Dialogs({[&] {
            Do(row.steps);
            shown = Shown();
            Click(Confirm);
        }});
        EXPECT_TRUE(ClipPtr(OpenClipZV(files_.Spec("a4.tst").c_str(), nullptr))) << row.why;
        EXPECT_EQ(shown, row.shown) << row.why;
    }
}

TEST_F(SequenceDialog, OnlyASeriesHasSettings)
{
    auto const enabled = [] {
        std::string ids;
        for (unsigned id : {5U, 6U, 8U, 10U, 11U, 13U, 14U, 16U})
            ids += Is_Enabled(id) ? '1' : '0';
        return ids;
    };
    Expect_Dialogs({[&] {
        EXPECT_EQ(enabled(), "11111111");
        Do("2!");
        EXPECT_EQ(enabled(), "00000000");
        EXPECT_FALSE(Item(1)->state);
        Do("1!");
        EXPECT_EQ(enabled(), "11111111");
        Do("5=3|2!");
        Click(Confirm);
    }});
    ClipPtr const single(OpenClipZV(files_.Spec("b7.tst").c_str(), nullptr));
    ASSERT_TRUE(single);
    EXPECT_EQ(File_Of(single.get()), "b7.tst");
    EXPECT_EQ(single->RawFrames, 1);
    EXPECT_FALSE(single->SequenceNumbers);
    // The next dialog starts from that choice.
    Expect_Dialogs({[&] {
        EXPECT_EQ(enabled(), "00000000");
        Do("1!");
        Click(Confirm);
    }});
    EXPECT_EQ(ClipPtr(OpenClipZV(files_.Spec("b7.tst").c_str(), nullptr))->RawFrames, 4);
}

TEST_F(SequenceDialog, TheClipIsWhatWasChosen)
{
    struct {
        char const *why, *file, *steps, *name;
        std::vector<long> numbers;
        long frames;
        double rate, aspect;
        uint8_t fields;
    } const cases[] = {
        {"as found", "a4.tst", "", "a[#].tst", {}, 10, 25, 1, 0},
        {"its settings",
         "a4.tst",
         "10:29.97|13:Anamorphic (2.0)|16:Lower Field First",
         "a[#].tst",
         {},
         10,
         29.97,
         2,
         2},
        {"no rate is no rate", "a4.tst", "11=0", "a[#].tst", {}, 10, 0.01, 1, 0},
        {"a part without a table", "a4.tst", "5=2|6=4", "a[#].tst", {2, 3, 4}, 3, 25, 1, 0},
        {"a part from the start", "a4.tst", "8=3", "a[#].tst", {0, 1, 2}, 3, 25, 1, 0},
        {"a part of a table", "b4.tst", "5=1|6=2", "b[##].tst", {4, 7}, 2, 25, 1, 0},
        {"one frame", "a4.tst", "5=7|6=7", "a7.tst", {}, 1, 25, 1, 0},
        {"one frame of a table", "b4.tst", "5=3", "b12.tst", {}, 1, 25, 1, 0},
    };
    for (auto const& row : cases) {
        ClipPtr const clip = Open(row.file, row.steps);
        ASSERT_TRUE(clip) << row.why;
        std::vector<long> numbers;
        if (clip->SequenceNumbers)
            numbers.assign(clip->SequenceNumbers, clip->SequenceNumbers + clip->RawFrames);
        EXPECT_EQ(File_Of(clip.get()), row.name) << row.why;
        EXPECT_EQ(numbers, row.numbers) << row.why;
        EXPECT_EQ(clip->RawFrames, row.frames) << row.why;
        EXPECT_EQ(clip->Frames, row.frames) << row.why;
        EXPECT_DOUBLE_EQ(clip->FileFrameRate, row.rate) << row.why;
        EXPECT_DOUBLE_EQ(clip->FrameRate, row.rate) << row.why;
        EXPECT_DOUBLE_EQ(clip->PixelAspect, row.aspect) << row.why;
        EXPECT_EQ(clip->FieldOrder, row.fields) << row.why;
        // The module reads the file that is left, and no other one.
        if (row.frames == 1) {
            EXPECT_EQ(format_.Last("Open").fileName, files_.Spec(row.name)) << row.why;
            EXPECT_GT(format_.Count("Close"), 0) << row.why;
        }
    }
}

TEST_F(SequenceDialog, KeysAnswerToo)
{
    auto const open = [&](std::function<void()> user) {
        Expect_Dialogs({std::move(user)});
        BusyZV();
        BusyZV();
        ClipPtr const clip(OpenClipZV(files_.Spec("a4.tst").c_str(), nullptr));
        EXPECT_EQ(ZVEnv->busyLevel, 2);
        NotBusyZV();
        NotBusyZV();
        EXPECT_EQ(GetErrorZV(), clip ? ZV_ERR_NONE : ZV_ERR_SEQUENCE);
        SetError(ZV_ERR_NONE);
        return clip ? clip->RawFrames : 0;
    };
    EXPECT_EQ(open([] { Press(ZV_KEY_RETURN); }), 10);
    EXPECT_EQ(open([] { Press(ZV_KEY_ENTER); }), 10);
    EXPECT_EQ(open([] {
                  EXPECT_EQ(ZVEnv->busyLevel, 0);
                  // A number that is being typed counts.
                  Click(6);
                  Press('a', ZV_MOD_CONTROL);
                  HeadlessTypeZV("4");
                  Press(ZV_KEY_RETURN);
              }),
              5);
    EXPECT_EQ(open([] { Press(ZV_KEY_ESCAPE); }), 0);
    EXPECT_EQ(open([] { Click(Cancel); }), 0);
    EXPECT_EQ(open([] { ClosePaletteZV(ZVEnv->modalPalette); }), 0);
    EXPECT_EQ(open([] {
                  Press(ZV_KEY_RETURN, ZV_MOD_SHIFT);
                  Press(ZV_KEY_ESCAPE, ZV_MOD_CONTROL);
                  EXPECT_TRUE(ZVEnv->modalPalette) << "keys count only by themselves";
                  Click(Confirm);
              }),
              10);
}

TEST_F(SequenceDialog, StartsFromWhatIsKnown)
{
    auto const shown = [&] {
        std::string text;
        Expect_Dialogs({[&] {
            text = Shown() + " " + std::to_string(Item(16)->state);
            Click(Cancel);
        }});
        EXPECT_FALSE(OpenClipZV(files_.Spec("a4.tst").c_str(), nullptr));
        SetError(ZV_ERR_NONE);
        return text;
    };
    format_.rate = -1;
    format_.pixelAspect = 0;
    EXPECT_EQ(shown(), "0-9/10 30:6 1:1 1") << "nothing is known";
    format_.width = 720;
    format_.height = 486;
    EXPECT_EQ(shown(), "0-9/10 29.97:5 0.9:2 1") << "of the size";
    format_.pixelAspect = 1.2;
    format_.rate = 12;
    EXPECT_EQ(shown(), "0-9/10 29.97:5 1.2:3 1") << "the aspect of the file, the rate of the size";
    ZVEnv->timeUnits = ZV_UNITS_FRAMES_FROM_ONE;
    ZVEnv->seqRateSet = ZVEnv->seqAspectSet = ZVEnv->seqFieldsSet = 1;
    ZVEnv->seqRate = 60;
    ZVEnv->seqAspect = 0.5;
    ZVEnv->seqFields = ZV_FIELDS_UPPER_FIRST;
    EXPECT_EQ(shown(), "1-10/10 60:7 0.5:7 2") << "of the application";
    ClipPtr const clip = Open("a4.tst", "5=3|6=5");
    ASSERT_TRUE(clip && clip->SequenceNumbers);
    EXPECT_EQ(clip->SequenceNumbers[0], 2) << "counted from one";
}

TEST_F(SequenceDialog, IsNotShownWhereThereIsNothingToAsk)
{
    for (unsigned long tag : {ZV_OPEN_NO_SEQUENCE_DIALOG, ZV_OPEN_SINGLE_FRAME}) {
        TagItem tags[] = {{tag, 0}, {}};
        ClipPtr const clip(OpenClipZV(files_.Spec("a4.tst").c_str(), tags));
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->RawFrames, tag == ZV_OPEN_SINGLE_FRAME ? 1 : 10);
    }
    EXPECT_TRUE(ClipPtr(OpenClipZV(files_.Write("alone5.tst", "x").c_str(), nullptr)));
}

TEST_F(SequenceDialog, WithoutMemoryNothingIsHalfMade)
{
    if (!FailingHeap::Is_Available()) GTEST_SKIP();
    ZVSequenceChoice const known{true, 2, 5, 25, 1, 0};
    long after = -1;  // the first one shows that memory is all that is missing
    auto const fails = [&] {
        ZVSequenceChoice choice = known;
        Expect_Dialogs({[] {
            FailingHeap::Recover();
            Click(Confirm);
        }});
        SetError(ZV_ERR_NONE);
        FailingHeap const heap(after < 0 ? 1L << 40 : after);
        bool const isAsked = Ask_Sequence(10, &choice);
        EXPECT_TRUE(isAsked || GetErrorZV() == ZV_ERR_MEMORY) << after;
        EXPECT_EQ(choice.Last, 5) << after;
        EXPECT_FALSE(ZVEnv->buildingPalette || ZVEnv->modalPalette) << after;
        return !isAsked;
    };
    ASSERT_FALSE(fails());
    while (++after < 100000 && fails() && !HasFailure()) {
    }
    EXPECT_GT(after, 50) << "allocations";
}
