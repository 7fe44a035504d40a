// Reading frames: placement and scaling, fields, sequences, scratch frames, frame data, pull-down, and what a
// read that fails leaves behind.
#include "clips/ClipFixture.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned long background = 0xFF204060;

/// A place for a frame: the point of it that falls on pixel (0, 0), and the size it is scaled to.
struct Place {
    ZVRectT<long> offset;
    long width, height;
};

/// What a bitmap should hold: the whole frame scaled on a canvas of its own, looked at through the bitmap.
Bytes Placed(BitmapBlock const& frame, BitmapBlock const& bitmap, Place const& place)
{
    BitmapBlock const canvas = Make_Bitmap(place.width, place.height, bitmap->Type);
    ScaleBitmapZV(frame.get(), canvas.get(), nullptr, nullptr);
    Bytes bytes(static_cast<std::size_t>(bitmap->Size), 0);
    long const pack = bitmap->PackSize;
    for (long y = 0; y < bitmap->Height; ++y)
        for (long x = 0; x < bitmap->Width; ++x) {
            long const sourceX = x + place.offset.x, sourceY = y + place.offset.y;
            if (sourceX < 0 || sourceY < 0 || sourceX >= place.width || sourceY >= place.height) continue;
            std::memcpy(&bytes[static_cast<std::size_t>(y * bitmap->RowBytes + x * pack)],
                        canvas->Pixels + sourceY * canvas->RowBytes + sourceX * pack,
                        static_cast<std::size_t>(pack));
        }
    return bytes;
}

class FrameRead : public ClipTest {
protected:
    long Read(BitmapBlock const& bitmap, double frame) { return Read_Frame(clip, bitmap, frame); }
    long Read(BitmapBlock const& bitmap, double frame, Place const& place)
    {
        return Read_Frame(clip, bitmap, frame, ZV_FRAME_RECT, &place.offset, ZV_FRAME_WIDTH, place.width,
                          ZV_FRAME_HEIGHT, place.height);
    }
    /// A bitmap that holds what a read should not leave there.
    BitmapBlock Used_Bitmap(long width, long height, ZVBitmapType type = ZV_BITMAP_RGBA8)
    {
        BitmapBlock bitmap = Make_Bitmap(width, height, type);
        std::memset(bitmap->Pixels, 0xA5, static_cast<std::size_t>(bitmap->Size));
        return bitmap;
    }
    void Open_Sized(long width, long height, long depth = 8)
    {
        format.width = width;
        format.height = height;
        format.bitDepth = depth;
        ASSERT_TRUE(Open());
        clip->Background = background;
    }
};

TEST_F(FrameRead, AFrameIsPlacedScaledAndConverted)
{
    std::mt19937 random(1);
    auto const below = [&](long limit) {
        return static_cast<long>(random() % static_cast<unsigned long>(limit));
    };
    for (ZVBitmapType const type : rgbaTypes) {
        for (int i = 0; i < 120; ++i) {
            ZVBitmapType const clipType = i % 3 ? type : rgbaTypes[random() % 5];
            Open_Sized(1 + below(12), 1 + below(12), GetBitsPerChannelZV(clipType));
            BitmapBlock const bitmap = Used_Bitmap(1 + below(12), 1 + below(12), type);
            Place place{{below(30) - 15, below(30) - 15, 0, 0}, 1 + below(20), 1 + below(20)};
            if (i % 4 == 0) place = {{}, bitmap->Width, bitmap->Height};
            if (i % 8 == 0) place = {{below(3) - 1, below(3) - 1, 0, 0}, clip->Width, clip->Height};
            BitmapBlock const frame = Make_Bitmap(clip->Width, clip->Height, clipType);
            Draw_Test_Picture(frame.get(), 4);
            ASSERT_EQ(Read(bitmap, 4, place), 1);
            ASSERT_EQ(Bytes_Of(bitmap), Placed(frame, bitmap, place))
                << "types " << clipType << " to " << type << ", frame " << clip->Width << " x "
                << clip->Height << " as " << place.width << " x " << place.height << " at " << place.offset.x
                << ", " << place.offset.y << " in " << bitmap->Width << " x " << bitmap->Height;
        }
    }
}

TEST_F(FrameRead, AModuleThatScalesIsGivenTheCallersPlaceAndAnotherItsBitmap)
{
    format.properties |= ZV_FORMAT_SELF_SCALE;
    Open_Sized(8, 6);
    Place const place{{2, -1, 0, 0}, 11, 5};
    BitmapBlock const bitmap = Used_Bitmap(7, 7);
    BitmapBlock const frame = Make_Bitmap(8, 6);
    Draw_Test_Picture(frame.get(), 3);
    ASSERT_TRUE(Read(bitmap, 3, place));
    EXPECT_EQ(format.Last("GetFrame").bitmap, bitmap.get());
    EXPECT_EQ(format.Last("GetFrame").rect, (ZVRectT<long>{2, -1, 11, 5}));
    EXPECT_EQ(Bytes_Of(bitmap), Placed(frame, bitmap, place));

    BitmapBlock const deep = Used_Bitmap(7, 7, ZV_BITMAP_RGBA16);
    ASSERT_TRUE(Read(deep, 3, place));
    EXPECT_NE(format.Last("GetFrame").bitmap, deep.get()) << "it scales within its own pixel type only";
    EXPECT_EQ(Bytes_Of(deep), Placed(frame, deep, place));

    format.properties &= ~ZV_FORMAT_SELF_SCALE;
    for (Place const& each : {Place{{}, 8, 6}, Place{{}, 9, 6}, Place{{0, 1, 0, 0}, 8, 6}}) {
        BitmapBlock const same = Used_Bitmap(8, 6);
        bool const fits = each.width == 8 && each.offset.y == 0;
        ASSERT_TRUE(Read(same, 0, each));
        EXPECT_EQ(format.Last("GetFrame").bitmap == same.get(), fits) << "only what fits goes straight in";
    }
}

TEST_F(FrameRead, WhatIsNotCoveredIsZeroAndWhatIsNotThereIsBackground)
{
    Open_Sized(8, 6);
    Bytes const zero(8 * 6 * 4, 0), filled = Filled_Bytes(background, 8, 6);
    struct {
        char const* why;
        double frame;
        Place place;
        Bytes const& result;
    } const cases[] = {
        {"left of the bitmap", 0, {{8, 0, 0, 0}, 8, 6}, zero},
        {"right of it", 0, {{-8, 0, 0, 0}, 8, 6}, zero},
        {"above", 0, {{0, 6, 0, 0}, 8, 6}, zero},
        {"below", 0, {{0, -6, 0, 0}, 8, 6}, zero},
        {"far away", 0, {{LONG_MIN, LONG_MAX, 0, 0}, 8, 6}, zero},
        {"no size", 0, {{}, 0, 6}, zero},
        {"before the first frame", -1, {{}, 8, 6}, filled},
        {"behind the last", 10, {{}, 8, 6}, filled},
        {"a size beyond all bounds covers", 10, {{-1, -1, 0, 0}, LONG_MAX, LONG_MAX}, filled},
    };
    for (auto const& row : cases) {
        BitmapBlock const bitmap = Used_Bitmap(8, 6);
        EXPECT_EQ(Read(bitmap, row.frame, row.place), 1) << row.why;
        EXPECT_EQ(Bytes_Of(bitmap), row.result) << row.why;
    }
    EXPECT_EQ(format.Count("GetFrame"), 0);
}

TEST_F(FrameRead, AReadThatFailsLeavesBackground)
{
    Open_Sized(8, 6);
    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    format.failing = {"GetFrame"};
    format.errors["GetFrame"] = ZV_ERR_IO;
    EXPECT_EQ(Read(bitmap, 1), 0);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
    EXPECT_EQ(Bytes_Of(bitmap), Filled_Bytes(background, 8, 6));

    format.failing.clear();
    clip->Width = clip->Height = 1L << 40;
    BitmapBlock const other = Used_Bitmap(8, 6);
    EXPECT_EQ(Read(other, 1), 0) << "no memory for the whole frame";
    EXPECT_EQ(Bytes_Of(other), Filled_Bytes(background, 8, 6));
    clip->Width = 8;
    clip->Height = 6;

    EndClipIOZV(clip, nullptr);
    BitmapBlock const untouched = Used_Bitmap(8, 6);
    EXPECT_EQ(Read(untouched, 1), 0);
    EXPECT_EQ(Bytes_Of(untouched), Bytes(8 * 6 * 4, 0xA5)) << "outside I/O";
}

TEST_F(FrameRead, TheRequestChoosesFrameOrField)
{
    enum class Kept { All, Upper, Lower };
    struct {
        char const* why;
        uint8_t order;
        double frame;   // time
        double fields;  // duration; 0 for none given
        Kept kept;
    } const cases[] = {
        {"no fields", ZV_FIELDS_NONE, 3.5, 1.0, Kept::All},
        {"no duration means a frame", ZV_FIELDS_UPPER_FIRST, 3.0, 0.0, Kept::All},
        {"upper first, first field", ZV_FIELDS_UPPER_FIRST, 3.0, 1.0, Kept::Upper},
        {"upper first, second field", ZV_FIELDS_UPPER_FIRST, 3.5, 1.0, Kept::Lower},
        {"lower first, first field", ZV_FIELDS_LOWER_FIRST, 3.0, 1.0, Kept::Lower},
        {"lower first, second field", ZV_FIELDS_LOWER_FIRST, 3.5, 1.0, Kept::Upper},
        {"just a field", ZV_FIELDS_UPPER_FIRST, 3.0, 1.01, Kept::Upper},
        {"just a frame", ZV_FIELDS_UPPER_FIRST, 3.0, 1.02, Kept::All},
    };
    Open_Sized(8, 7);
    for (double const rate : {25.0, 30000.0 / 1001}) {
        for (auto const& row : cases) {
            clip->FrameRate = rate;
            clip->FieldOrder = row.order;
            ZVTimeValue const time = Frame_Time(row.frame, rate);
            ZVTimeValue const duration{row.fields * 10.0, 20.0 * rate};
            BitmapBlock const bitmap = Used_Bitmap(8, 7), expected = Make_Bitmap(8, 7);
            ASSERT_TRUE(GetFrameZV(clip, bitmap.get(), &time, row.fields > 0 ? &duration : nullptr, nullptr));
            Draw_Test_Picture(expected.get(), 3);
            if (row.kept == Kept::Upper) Interpolate_Lower_Field(expected.get());
            if (row.kept == Kept::Lower) Interpolate_Upper_Field(expected.get());
            EXPECT_EQ(Bytes_Of(bitmap), Bytes_Of(expected)) << row.why << " at " << rate;
        }
    }
}

TEST_F(FrameRead, ASkippedFrameSucceedsUnread)
{
    Open_Sized(8, 6);
    uint8_t skip[10] = {};
    skip[3] = 1;
    clip->FrameSkip = skip;
    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    EXPECT_EQ(Read(bitmap, 3), 1);
    EXPECT_EQ(clip->LastFrame, 3);
    EXPECT_EQ(Bytes_Of(bitmap), Bytes(8 * 6 * 4, 0xA5));
    for (double const outside : {-5.0, 10.0, 1e15})
        EXPECT_EQ(Read(bitmap, outside), 1);
    EXPECT_EQ(Read(bitmap, 4), 1);
    EXPECT_EQ(Bytes_Of(bitmap), Picture_Bytes(4, 8, 6));
}

TEST_F(FrameRead, AFilteredFrameOwesNothingToWhatTheBitmapHeld)
{
    Open_Sized(4, 4);
    AsyncParams async;
    ZVRectT<long> const offset{0, -1, 0, 0};
    for (unsigned long const flag : {FRAME_INTERPOLATE_LOWER, FRAME_INTERPOLATE_UPPER, FRAME_BLEND_FIELDS}) {
        BitmapBlock const used = Used_Bitmap(4, 8), clean = Make_Bitmap(4, 8);
        std::memset(clean->Pixels, 0, static_cast<std::size_t>(clean->Size));
        ASSERT_TRUE(Get_Frame(clip, 2, used.get(), flag, &offset, 4, 4, async));
        ASSERT_TRUE(Get_Frame(clip, 2, clean.get(), flag, &offset, 4, 4, async));
        EXPECT_EQ(Bytes_Of(used), Bytes_Of(clean));
        EXPECT_TRUE(
            std::all_of(used->Pixels, used->Pixels + used->RowBytes, [](int byte) { return byte == 0; }));
    }
}

TEST_F(FrameRead, AFrameOfASequenceIsReadByTheNameOfItsFile)
{
    format.properties &= ~ZV_FORMAT_MULTIFRAME;
    format.desc->GetFrameDataReference = TestFormat::GetFrameDataReference;
    format.desc->GetFrameData = TestFormat::GetFrameData;
    environment.Write("s1.tst", "1");
    environment.Write("s10.tst", "10");
    std::string const mask = environment.Spec("s[##].tst"), third = environment.Spec("s10.tst");
    Open_Sized(8, 6);
    FreeFileSpecZV(clip->FileName);
    clip->FileName = CopyFileSpecZV(mask.c_str());
    clip->Frames = clip->RawFrames = 3;
    clip->SequenceNumbers = static_cast<long*>(AllocMemZV(3 * sizeof(long), 0));
    std::copy_n(std::initializer_list<long>{1, 2, 10}.begin(), 3, clip->SequenceNumbers);
    clip->FrameDataMask = 6;

    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    EXPECT_EQ(Read(bitmap, 1), 0) << "a hole";
    EXPECT_EQ(Bytes_Of(bitmap), Filled_Bytes(background, 8, 6));
    EXPECT_EQ(Read(bitmap, 2), 1) << "reading goes on behind it";
    TestCall const& read = format.Last("GetFrame");
    EXPECT_TRUE(read.fileName == third && read.frame == 0 && read.data == (Bytes{'1', '0'}));

    Bytes buffer(4);
    ZVTimeValue const last = Frame_Time(2), hole = Frame_Time(1);
    EXPECT_EQ(GetFrameDataZV(clip, &last, 2, buffer.data(), 4), 1);
    EXPECT_TRUE(format.Last("GetFrameData").fileName == third && format.Last("GetFrameData").frame == 0);
    EXPECT_EQ(GetFrameDataZV(clip, &hole, 2, buffer.data(), 4), 0);

    format.throwing = {"GetFrame"};
    EXPECT_ANY_THROW(Read(bitmap, 0));
    EXPECT_EQ(clip->FileName, mask) << "the name comes back on every way out";
    format.throwing.clear();
    clip->Frames = 1;
    EXPECT_EQ(Read(bitmap, 0), 1) << "also when editing has left one frame";
    EXPECT_EQ(format.Last("GetFrame").fileName, environment.Spec("s1.tst"));
    FreeMemZV(std::exchange(clip->SequenceNumbers, nullptr));
    EXPECT_EQ(Read(bitmap, 0), 0) << "without a table frame i is file i";
}

/// A single picture into which frames were inserted is still the one file.
TEST_F(FrameRead, AnEditedSinglePictureIsNoSequence)
{
    format.properties &= ~ZV_FORMAT_MULTIFRAME;
    Open_Sized(8, 6);
    ASSERT_EQ(clip->RawFrames, 1);
    ZVTimeValue const start{};
    ASSERT_TRUE(InsertFrameBeforeZV(clip, &start));
    EXPECT_EQ(Frame_Bytes(clip, 1), Picture_Bytes(0, 8, 6));
}

long pollAnswer;
long Poll()
{
    return pollAnswer;
}

TEST_F(FrameRead, TheFileIsReadForAModuleThatAsks)
{
    format.desc->GetFrameDataReference = TestFormat::GetFrameDataReference;
    std::string content(5000, 'x');
    content[4998] = 'y';
    environment.Write("take.tst", content);
    Open_Sized(8, 6);
    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    for (long const asked : {0L, 1L, 4096L, 4999L, 5000L, 5001L, 1L << 40}) {
        format.dataSize = asked;
        ASSERT_EQ(Read(bitmap, 7), 1);
        std::size_t const size = asked == 0 || asked > 5000 ? 5000 : static_cast<std::size_t>(asked);
        EXPECT_EQ(format.Last("GetFrame").data,
                  Bytes(content.begin(), content.begin() + static_cast<long>(size)));
        EXPECT_EQ(format.Last("GetFrameDataReference").frame, 7);
    }
    Bytes own(8192, 0);
    format.dataBuffer = own.data();
    format.dataSize = 4000;
    ASSERT_EQ(Read(bitmap, 7), 1);
    EXPECT_EQ(format.Last("GetFrame").data.size(), 4000u);
    EXPECT_EQ(own[3999], 'x');
    EXPECT_EQ(own[4000], 0) << "no byte beyond what was asked for";
    format.dataBuffer = nullptr;

    format.failing = {"GetFrameDataReference"};
    ASSERT_EQ(Read(bitmap, 7), 1);
    EXPECT_TRUE(format.Last("GetFrame").data.empty()) << "not wanted for this frame";
    format.failing.clear();

    environment.Write("take.tst", "");
    EXPECT_EQ(Read(bitmap, 7), 0) << "an empty file";
    std::filesystem::remove(environment.Path("take.tst"));
    EXPECT_EQ(Read(bitmap, 7), 1) << "a file that is gone leaves the module without data";
    EXPECT_TRUE(format.Last("GetFrame").data.empty());
}

TEST_F(FrameRead, ACallerWhoGivesUpFindsTheBitmapAsItWas)
{
    format.desc->GetFrameDataReference = TestFormat::GetFrameDataReference;
    Open_Sized(8, 6);
    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    pollAnswer = 1;
    EXPECT_EQ(Read_Frame(clip, bitmap, 0, ZV_FRAME_POLL, &Poll), 0);
    EXPECT_EQ(format.Count("GetFrame"), 0);
    EXPECT_EQ(Bytes_Of(bitmap), Bytes(8 * 6 * 4, 0xA5));
    pollAnswer = 0;
    EXPECT_EQ(Read_Frame(clip, bitmap, 0, ZV_FRAME_POLL, &Poll), 1);
    EXPECT_EQ(format.Last("GetFrame").data.size(), 4u);
}

TEST_F(FrameRead, DataOfAFrameComesFromTheModule)
{
    format.desc->GetFrameData = TestFormat::GetFrameData;
    Open_Sized(8, 6);
    clip->FrameDataMask = 6;
    Bytes buffer(3);
    struct {
        char const* why;
        double frame;
        unsigned long what;
        long answer;
    } const cases[] = {{"a kind that it has", 4, 2, 1},
                       {"one of two", 4, 3, 1},
                       {"a kind that it has not", 4, 1, 0},
                       {"before the clip", -1, 2, 0},
                       {"behind it", 10, 2, 0}};
    for (auto const& row : cases) {
        ZVTimeValue const time = Frame_Time(row.frame);
        EXPECT_EQ(GetFrameDataZV(clip, &time, row.what, buffer.data(), 3), row.answer) << row.why;
    }
    EXPECT_EQ(buffer, Bytes(3, 4));

    // Frame 0 is a scratch frame now, and the source's first frame comes after it.
    ZVFrameRun runs[] = {{-1, 1}, {0, 10}};
    clip->FrameMap = runs;
    clip->FrameMapUsed = 2;
    ZVTimeValue const first = Frame_Time(0), last = Frame_Time(10);
    EXPECT_EQ(GetFrameDataZV(clip, &first, 2, buffer.data(), 3), 0);
    EXPECT_EQ(GetFrameDataZV(clip, &last, 2, buffer.data(), 3), 1);
    EXPECT_EQ(buffer, Bytes(3, 9));
    clip->FrameMap = nullptr;

    format.desc->GetFrameData = nullptr;
    EXPECT_EQ(GetFrameDataZV(clip, &last, 2, buffer.data(), 3), 0);
}

class ScratchRead : public FrameRead {
protected:
    ScratchRead() { Open_Sized(8, 6); }
    ~ScratchRead() override { clip->FrameMap = nullptr; }

    /// Puts scratch frame -1 first, with a file of those bytes.
    void Write_Scratch(Bytes const& bytes)
    {
        clip->FrameMap = runs;
        clip->FrameMapUsed = 2;
        char const* name = Make_TempName(clip->ClipID, -1, 0);
        ZVFileInfo* file = CreateFileZV(name, ZVFilePermWrite, ZV_BLANK_CODE, ZV_BLANK_CODE, ZVFileFlagNone);
        ASSERT_TRUE(file);
        WriteFileZV(file, bytes.data(), bytes.size());
        CloseFileZV(file);
    }
    ZVFrameRun runs[2] = {{-1, 1}, {0, 10}};
};

TEST_F(ScratchRead, ScratchFramesAreReadAsTheyWereStored)
{
    clip->AlphaInvert = 1;  // holds for the source alone
    for (ZVBitmapType const stored : rgbaTypes) {
        Write_Scratch(Picture_Bytes(50, 8, 6, stored));
        BitmapBlock const frame = Make_Bitmap(8, 6, stored);
        Draw_Test_Picture(frame.get(), 50);
        for (ZVBitmapType const type : rgbaTypes) {
            for (Place const& place : {Place{{}, 8, 6}, Place{{-2, 1, 0, 0}, 13, 5}}) {
                BitmapBlock const bitmap = Used_Bitmap(8, 6, type);
                EXPECT_EQ(Read(bitmap, 0, place), 1);
                EXPECT_EQ(Bytes_Of(bitmap), Placed(frame, bitmap, place)) << stored << " into " << type;
            }
        }
    }
    BitmapBlock const bitmap = Used_Bitmap(8, 6);
    EXPECT_EQ(Read(bitmap, 10), 1);
    EXPECT_EQ(format.Last("GetFrame").frame, 9) << "the map's own end counts";
}

TEST_F(ScratchRead, AScratchFrameThatIsNotThereReadsAsBackgroundUnlessItIsGivenUp)
{
    for (std::size_t size : {8 * 6 * 4 - 1, 8 * 6 * 4 + 1, 0, -1}) {
        Write_Scratch(Bytes(size + 1 ? size : 0, 1));
        if (size + 1 == 0) DeleteFileZV(Make_TempName(clip->ClipID, -1, 0));
        EXPECT_EQ(Frame_Bytes(clip, 0), Filled_Bytes(background, 8, 6)) << size;
    }
    Write_Scratch(Picture_Bytes(50, 8, 6));
    BitmapBlock const bitmap = Used_Bitmap(16, 6);
    pollAnswer = 1;
    EXPECT_EQ(Read_Frame(clip, bitmap, 0, ZV_FRAME_POLL, &Poll), 0);
    EXPECT_EQ(Bytes_Of(bitmap), Bytes(16 * 6 * 4, 0xA5));
}

/// Video frames of film frames 0 to 3, by phase; the second is -1 where the film frame stands whole. The next
/// four film frames lie five video frames on.
constexpr long filmFrames[5][4][2] = {
    {{0, -1}, {1, -1}, {2, -1}, {3, 4}}, {{0, -1}, {1, -1}, {2, 3}, {4, -1}},
    {{0, -1}, {1, 2}, {3, -1}, {4, -1}}, {{0, 1}, {2, -1}, {3, -1}, {4, -1}},
    {{1, -1}, {2, -1}, {3, -1}, {4, 5}},
};

TEST_F(FrameRead, AFilmFrameIsGatheredFromItsVideoFrames)
{
    format.frames = 40;
    Open_Sized(4, 6);
    for (uint8_t phase = 1; phase <= 5; ++phase) {
        for (uint8_t order : {ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, phase, ZV_CLIP_FIELD_ORDER, order);
            for (long film = 0; film < 20; ++film) {
                long const* const video = filmFrames[phase - 1][film % 4];
                long const first = video[0] + film / 4 * 5, second = video[1] + film / 4 * 5;
                Bytes expected = Picture_Bytes(first, 4, 6);
                if (video[1] >= 0) {
                    Bytes const other = Picture_Bytes(second, 4, 6);
                    for (std::size_t row = order == ZV_FIELDS_UPPER_FIRST ? 0 : 1; row < 6; row += 2)
                        std::copy_n(other.begin() + static_cast<long>(row) * 16, 16,
                                    expected.begin() + static_cast<long>(row) * 16);
                }
                ASSERT_EQ(Frame_Bytes(clip, static_cast<double>(film)), expected)
                    << "phase " << int{phase} << ", film frame " << film;
            }
            for (double const outside : {-2.0, phase == 1 ? -1.0 : -2.0, 33.0, 1e12})
                EXPECT_EQ(Frame_Bytes(clip, outside), Filled_Bytes(background, 4, 6)) << outside;
        }
    }
}

}  // namespace
