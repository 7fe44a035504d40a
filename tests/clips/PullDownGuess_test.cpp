// The guess of pull-down: cadences written by the library and by another tool, footage without any, how much
// of a clip is looked at, and what is left of the clip's settings.
#include "clips/ClipFixture.h"

#include <cstdlib>
#include <cstring>

namespace {

using Pixels = std::vector<unsigned char>;

constexpr long width = 40;
constexpr long height = 16;

/// The video frames that the module holds, and what was read of them.
struct VideoStore {
    static inline std::vector<Pixels> frames;
    static inline std::vector<long> reads;

    static long Add(ZVClip*, ZVBitmap* bitmap, long frame, ZVRectT<long>*)
    {
        auto const index = static_cast<std::size_t>(frame);
        if (index >= frames.size()) frames.resize(index + 1);
        frames[index].assign(bitmap->Pixels, bitmap->Pixels + bitmap->Size);
        return 1;
    }
    static long Get(ZVClip*, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*, long)
    {
        reads.push_back(frame);
        Pixels const& pixels = frames.at(static_cast<std::size_t>(frame));
        if (pixels.empty()) return 0;
        std::memcpy(bitmap->Pixels, pixels.data(), pixels.size());
        return 1;
    }
};

/// Upright stripes at a place that depends on the moment: a whole frame has no comb.
Pixels Film_Frame(long moment)
{
    Pixels pixels;
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width; ++x) {
            bool const isLight = (x + 3 * moment) / 5 % 2;
            pixels.insert(pixels.end(), {static_cast<unsigned char>(isLight ? 200 : 20), 90,
                                         static_cast<unsigned char>(x), 255});
        }
    return pixels;
}

/// A frame whose rows differ by that much in each pair.
Pixels Combed_Frame(unsigned char comb)
{
    Pixels pixels;
    for (long i = 0; i < width * height; ++i) {
        auto const value = static_cast<unsigned char>(i / width % 2 ? comb : 0);
        pixels.insert(pixels.end(), {value, value, value, 255});
    }
    return pixels;
}

class PullDownGuess : public ClipTest {
protected:
    PullDownGuess()
    {
        format.desc->AddFrame = VideoStore::Add;
        format.desc->GetFrame = VideoStore::Get;
        format.width = width;
        format.height = height;
        format.rate = 30.0;
        VideoStore::frames.clear();
        VideoStore::reads.clear();
    }

    /// Writes film frames under pull-down; nothing moves before film frame `still`.
    void Telecine(long phase, uint8_t fieldOrder, long filmFrames, long still = 0)
    {
        VideoStore::frames.clear();
        ZVClip* const out =
            Create_Output(format.desc, environment.Spec("film.tst"), width, height, 24.0, 30.0);
        out->PullDown = static_cast<uint8_t>(phase);
        out->FieldOrder = fieldOrder;
        BitmapBlock const bitmap = Make_Bitmap(width, height);
        for (long frame = 0; frame < filmFrames; ++frame) {
            Pixels const pixels = Film_Frame(std::max(frame - still, 0L));
            std::memcpy(bitmap->Pixels, pixels.data(), pixels.size());
            ZVTimeValue const time = Frame_Time(static_cast<double>(frame), 24.0);
            ASSERT_TRUE(AddFrameZV(out, bitmap.get(), &time, nullptr, nullptr));
        }
        FreeClipZV(out);
    }

    void Fill(long frames, Pixels const& pixels)
    {
        VideoStore::frames.assign(static_cast<std::size_t>(frames), pixels);
    }

    /// Opens the frames that are held, outside I/O.
    void Open_Video()
    {
        format.frames = static_cast<long>(VideoStore::frames.size());
        FreeClipZV(clip);
        clip = OpenClipZV(take.c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0);
        ASSERT_TRUE(clip);
        VideoStore::reads.clear();
    }

    long Guess()
    {
        Open_Video();
        return GuessPullDownZV(clip);
    }
};

TEST_F(PullDownGuess, WrittenFilmIsRecognisedAndReadBack)
{
    long const filmFrames = 30;
    for (long phase = 1; phase <= 5; ++phase) {
        for (uint8_t fieldOrder : {ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            SCOPED_TRACE(testing::Message() << "phase " << phase << ", field order " << int{fieldOrder});
            Telecine(phase, fieldOrder, filmFrames);
            EXPECT_EQ(Guess(), 1);
            EXPECT_EQ(clip->PullDown, phase);
            EXPECT_EQ(clip->FieldOrder, fieldOrder);
            EXPECT_EQ(clip->FileFrameRate, 30.0);
            EXPECT_EQ(clip->FrameRate, 24.0);
            EXPECT_EQ(VideoStore::reads.size(), 22u) << "20 for the comb, 2 for the field order";

            ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
            // The first film frame of phases 4 and 5 has one field on video and is not to be had back.
            long const shift = phase >= 4;
            for (long film = 0; film + shift < filmFrames - 1; ++film)
                EXPECT_EQ(Frame_Bytes(clip, static_cast<double>(film)), Film_Frame(film + shift)) << film;
        }
    }
}

TEST_F(PullDownGuess, MotionThatBeginsLateIsFoundInTheMiddleOrAtTheEnd)
{
    for (long phase = 1; phase <= 5; ++phase) {
        SCOPED_TRACE(testing::Message() << "phase " << phase);
        Telecine(phase, ZV_FIELDS_LOWER_FIRST, 41, 17);
        std::size_t const frames = VideoStore::frames.size();
        ASSERT_GE(frames, 40u);
        EXPECT_EQ(Guess(), 0) << "the first frames alone are trusted";
        EXPECT_EQ(clip->PullDown, phase) << "the middle tells";
        EXPECT_EQ(clip->FieldOrder, ZV_FIELDS_LOWER_FIRST);
        EXPECT_EQ(VideoStore::reads.size(), 44u);
        EXPECT_EQ(VideoStore::reads[22], static_cast<long>(frames / 2));

        Telecine(phase, ZV_FIELDS_UPPER_FIRST, 71, 56);
        EXPECT_EQ(Guess(), 0);
        EXPECT_EQ(clip->PullDown, phase) << "the end tells";
        EXPECT_EQ(clip->FieldOrder, ZV_FIELDS_UPPER_FIRST);
        EXPECT_EQ(VideoStore::reads.size(), 66u);
        EXPECT_EQ(VideoStore::reads[44], static_cast<long>(VideoStore::frames.size()) - 20);
    }
}

TEST_F(PullDownGuess, StillFootageIsLookedAtUpToThreeTimes)
{
    std::pair<long, std::size_t> const cases[] = {{10, 12}, {20, 22}, {39, 22}, {40, 44},
                                                  {45, 44}, {59, 44}, {60, 66}, {1000, 66}};
    for (auto const& [frames, reads] : cases) {
        Fill(frames, Film_Frame(0));
        EXPECT_EQ(Guess(), 0) << frames;
        EXPECT_EQ(clip->PullDown, 1) << frames;
        EXPECT_EQ(VideoStore::reads.size(), reads) << frames;
    }
}

/// Twenty frames of which two in five have a comb, as film has under pull-down.
void Fill_With_Cadence(unsigned char comb)
{
    VideoStore::frames.assign(20, Combed_Frame(0));
    for (std::size_t i = 0; i < 20; ++i)
        if (i % 5 >= 3) VideoStore::frames[i] = Combed_Frame(comb);
}

TEST_F(PullDownGuess, FourteenOfTwentyFramesAreTooFew)
{
    Fill_With_Cadence(100);
    for (std::size_t wrong : {0u, 6u, 12u, 15u, 11u})
        VideoStore::frames[wrong] = Combed_Frame(100);
    EXPECT_EQ(Guess(), 1) << "fifteen";
    EXPECT_EQ(clip->PullDown, 1);
    VideoStore::frames[17] = Combed_Frame(100);
    EXPECT_EQ(Guess(), 0);
    EXPECT_EQ(clip->PullDown, 1) << "stored all the same";
}

TEST_F(PullDownGuess, AFaintCombIsNotTrusted)
{
    // Two of five frames have a comb of half the difference of their rows, so the mean is a fifth of it.
    Fill_With_Cadence(2);
    EXPECT_EQ(Guess(), 0);
    Fill_With_Cadence(3);
    EXPECT_EQ(Guess(), 1);
}

TEST_F(PullDownGuess, AFrameThatCannotBeReadMakesItsSampleUnsure)
{
    Telecine(2, ZV_FIELDS_UPPER_FIRST, 50);
    VideoStore::frames[7].clear();
    EXPECT_EQ(Guess(), 0);
    EXPECT_EQ(clip->PullDown, 2) << "by the frames in the middle";

    Fill(20, {});
    EXPECT_EQ(Guess(), 0);
    EXPECT_EQ(clip->PullDown, 0);
    EXPECT_EQ(clip->FieldOrder, ZV_FIELDS_NONE);
    EXPECT_EQ(VideoStore::reads.size(), 1u);

    Fill(0, {});
    format.frames = 0;
    EXPECT_EQ(Guess(), 0) << "nothing to look at";
    EXPECT_EQ(GuessPullDownZV(nullptr), 0);
}

TEST_F(PullDownGuess, TheClipIsLeftAsItWas)
{
    Telecine(3, ZV_FIELDS_UPPER_FIRST, 30);
    enum { Closed, Outside, InIO };
    for (int state : {Closed, Outside, InIO}) {
        SCOPED_TRACE(state);
        Open_Video();
        SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, 1, ZV_CLIP_FIELD_ORDER, 2, 0);
        if (state == Closed) CloseClipZV(clip);
        if (state == InIO) {
            ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
        }
        clip->Flags |= ZV_CLIP_TIME_BLEND;
        clip->StartTime = Frame_Time(3600, 1.0);
        unsigned long const flags = clip->Flags;
        EXPECT_EQ(GuessPullDownZV(clip), 1);
        EXPECT_EQ(clip->Flags, flags);
        EXPECT_EQ(clip->ModuleData != nullptr, state != Closed);
        EXPECT_EQ(clip->StartTime.Value, 3600.0);
        EXPECT_EQ(clip->PullDown, 3);
        EXPECT_EQ(clip->FrameRate, 24.0);
        EXPECT_EQ(clip->FileFrameRate, 30.0);
        EXPECT_EQ(VideoStore::reads.front(), 0) << "wherever the clip's time begins";
    }
    format.failing = {"BeginIO"};
    Open_Video();
    SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, 5, ZV_CLIP_FIELD_ORDER, 2, 0);
    EXPECT_EQ(GuessPullDownZV(clip), 0);
    EXPECT_EQ(clip->PullDown, 5);
    EXPECT_EQ(clip->FieldOrder, 2);
}

constexpr long shotWidth = 96;
constexpr long shotHeight = 64;

bool Run_FFmpeg(std::string const& arguments)
{
    std::string const command = "ffmpeg -v error -nostdin -y " + arguments;
    return std::system(command.c_str()) == 0;  // NOLINT: a test's own command
}

TEST_F(PullDownGuess, FootageOfAnotherToolIsRecognised)
{
    if (std::system("ffmpeg -v quiet -version > /dev/null 2>&1") != 0) GTEST_SKIP() << "no ffmpeg";
    InitFormatModulesZV(nullptr);
    std::string const source =
        "-f lavfi -i testsrc2=size=96x64:rate=24:duration=2,format=rgba,scroll=h=0.03 ";
    ASSERT_TRUE(Run_FFmpeg(source + "-pix_fmt rgba -f rawvideo " + environment.Path("film.raw")));
    std::ifstream raw(environment.Path("film.raw"), std::ios::binary);
    std::vector<char> const film(std::istreambuf_iterator<char>(raw), {});
    auto const frameSize = static_cast<std::size_t>(shotWidth * shotHeight * 4);

    // The tool spreads film frames 0 to 3 over 2, 3, 2 and 3 fields. Leaving frames out at the start gives
    // the other phases.
    struct {
        long skipped, phase, firstFilm;
    } const cases[] = {{0, 2, 0}, {1, 3, 1}, {2, 4, 2}, {3, 5, 3}, {4, 1, 3}};
    for (auto const& row : cases) {
        for (uint8_t fieldOrder : {ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
            SCOPED_TRACE(testing::Message() << "phase " << row.phase << ", field order " << int{fieldOrder});
            char const* const firstField = fieldOrder == ZV_FIELDS_UPPER_FIRST ? "top" : "bottom";
            ASSERT_TRUE(Run_FFmpeg(source + "-vf telecine=first_field=" + firstField + ",trim=start_frame=" +
                                   std::to_string(row.skipped) + ",setpts=N/30/TB,format=rgba -f filmstrip " +
                                   environment.Path("video.flm")));
            FreeClipZV(clip);
            clip = OpenClipZV(environment.Spec("video.flm").c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0);
            ASSERT_TRUE(clip);
            clip->AlphaPremultiplied = 0;
            EXPECT_EQ(GuessPullDownZV(clip), 1);
            EXPECT_EQ(clip->PullDown, row.phase);
            EXPECT_EQ(clip->FieldOrder, fieldOrder);

            ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
            for (long frame = 0; frame < 40; ++frame) {
                std::size_t const at = static_cast<std::size_t>(row.firstFilm + frame) * frameSize;
                ASSERT_LE(at + frameSize, film.size());
                Pixels const pixels = Frame_Bytes(clip, static_cast<double>(frame));
                EXPECT_EQ(std::memcmp(pixels.data(), &film[at], frameSize), 0) << frame;
            }
        }
    }
}

}  // namespace
