// The dialogs for the compression of movies, sound and pictures: what is chosen in them is what is written.
#include "DialogTest.h"

#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>

namespace {

constexpr unsigned Confirm = 17, Cancel = 18;
constexpr long Width = 64, Height = 48;
constexpr uint32_t MovieType = ZV_FourCC("MooV");

struct ClipFreer {
    void operator()(ZVClip* clip) const { FreeClipZV(clip); }
};
using ClipPtr = std::unique_ptr<ZVClip, ClipFreer>;

class MediaDialogs : public DialogTest {
protected:
    MediaDialogs()
    {
        Add_PICT_Format(nullptr);
        Add_QuickTime_Format(nullptr);
    }

    static ZVFormatDesc* Module(uint32_t type, bool isLast = false)
    {
        ZVFormatDesc* found = nullptr;
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
            auto* const desc = reinterpret_cast<ZVFormatDesc*>(node);
            if (desc->FileType == type && (!found || isLast)) found = desc;
        }
        return found;
    }

    /// A clip described for writing.
    ClipPtr Describe(ZVFormatDesc* format, unsigned long media = ZV_MEDIA_VIDEO) const
    {
        ClipPtr clip{NewClipZV()};
        clip->Format = format;
        clip->FileName = CopyFileSpecZV(files_.Spec("out.mov").c_str());
        clip->Width = Width;
        clip->Height = Height;
        clip->BitDepth = 8;
        clip->Media = media;
        clip->FrameRate = clip->FileFrameRate = 25;
        return clip;
    }
    ClipPtr Movie(unsigned long media = ZV_MEDIA_VIDEO) const { return Describe(Module(MovieType), media); }

    /// A user who does these steps and then presses a button.
    static std::function<void()> User(std::string steps, unsigned button = Confirm)
    {
        return [=] {
            Do(steps);
            Click(button);
        };
    }

    /// Writes noise or one picture many times, and a second of sound; the clip is gone then.
    static void Write(ClipPtr clip, long frames, bool isStill = false)
    {
        ASSERT_TRUE(CreateClipZV(clip.get(), 0)) << GetErrorZV();
        ASSERT_TRUE(BeginClipIOZV(clip.get(), nullptr));
        std::mt19937 random(1);
        std::unique_ptr<ZVBitmap, void (*)(ZVBitmap*)> const bitmap(
            AllocBitmapZV(Width, Height, ZV_BITMAP_RGBA8, "test"),
            [](ZVBitmap* made) { FreeBitmapZV(made); });
        for (long i = 0; i < frames && clip->Media & ZV_MEDIA_VIDEO; ++i) {
            for (long at = 0; at < bitmap->Size && (i == 0 || !isStill); ++at)
                bitmap->Pixels[at] = static_cast<uint8_t>(random() >> 24);
            ZVRectT<long> whole{0, 0, Width, Height};
            ASSERT_TRUE(clip->Format->AddFrame(clip.get(), bitmap.get(), i, &whole));
        }
        if (clip->Media & ZV_MEDIA_AUDIO) {
            std::vector<uint8_t> const samples(
                clip->AudioFormat.Rate * clip->AudioFormat.Channels * clip->AudioFormat.SampleSize, 40);
            ASSERT_TRUE(clip->Format->AddAudio(clip.get(), const_cast<uint8_t*>(samples.data()),
                                               clip->AudioFormat.Rate));
        }
        CloseClipZV(clip.get());
    }

    /// What ffprobe tells of the movie, its lines joined by blanks.
    std::string Probe(std::string const& arguments) const
    {
        std::string const command =
            "ffprobe -v error -of csv=p=0 " + arguments + " " + files_.Path("out.mov") + " 2>&1";
        std::string text;
        std::unique_ptr<FILE, int (*)(FILE*)> const pipe(popen(command.c_str(), "r"), pclose);
        for (int c; pipe && (c = std::fgetc(pipe.get())) != EOF;)
            text += c == '\n' ? ' ' : static_cast<char>(c);
        while (!text.empty() && (text.back() == ' ' || text.back() == ','))
            text.pop_back();
        return text;
    }
    std::string Video(std::string const& entries) const
    {
        return Probe("-select_streams v -show_entries stream=" + entries);
    }

    /// Numbers of the key frames.
    std::string Key_Frames() const
    {
        std::string text;
        std::istringstream packets(Probe("-select_streams v -show_entries packet=pts,duration,flags"));
        for (std::string packet; packets >> packet;) {
            long time = 0, duration = 1;
            std::sscanf(packet.c_str(), "%ld,%ld", &time, &duration);
            if (packet.find('K') != packet.npos) text += " " + std::to_string(time / duration);
        }
        return text;
    }

    ScratchDir files_;
};

std::vector<uint8_t> Bytes_Of(ZVFormatParams const* params)
{
    if (!params) return {};
    auto const* const bytes = static_cast<uint8_t const*>(params->Data);
    return {bytes, bytes + params->Size};
}

}  // namespace

TEST_F(MediaDialogs, ChosenPicturesAreWritten)
{
    struct {
        char const *steps, *entries, *written;
    } const cases[] = {
        {"", "codec_name,pix_fmt,r_frame_rate", "qtrle,rgb24,25/1"},
        {"1:PNG|2:32 Bits with Alpha", "codec_name,pix_fmt", "png,rgba"},
        {"2:32 Bits with Alpha|1:Motion JPEG", "codec_name,pix_fmt", "mjpeg,yuvj420p"},
        {"1:H.264|4:29.97", "codec_name,r_frame_rate", "h264,30000/1001"},
        {"1:MPEG-4|5=12.5", "codec_name,r_frame_rate", "mpeg4,25/2"},
    };
    for (auto const& row : cases) {
        ClipPtr clip = Movie();
        Expect_Dialogs({User(row.steps)});
        ClipOptionsZV(clip.get());
        Write(std::move(clip), 3);
        EXPECT_EQ(Video(row.entries), row.written) << row.steps;
        FreeMemZV(std::exchange(Module(MovieType)->DefaultVideoParams, nullptr));
    }
}

TEST_F(MediaDialogs, KeyFramesAndDataRateReachTheEncoder)
{
    for (char const* codec : {"Animation", "FFV1", "H.264", "H.265", "MPEG-4"}) {
        ClipPtr clip = Movie();
        Expect_Dialogs({User("1:" + std::string(codec) + "|6!|7=5")});
        ClipOptionsZV(clip.get());
        Write(std::move(clip), 13, true);
        EXPECT_EQ(Key_Frames(), " 0 5 10") << codec;
        FreeMemZV(std::exchange(Module(MovieType)->DefaultVideoParams, nullptr));
    }
    // Four seconds of noise, which would take more by far.
    for (char const* codec : {"Motion JPEG", "H.264", "H.265", "MPEG-4"})
        for (long kilobytes : {40, 60}) {
            ClipPtr clip = Movie();
            Expect_Dialogs({User("1:" + std::string(codec) + "|8!|9=" + std::to_string(kilobytes))});
            ClipOptionsZV(clip.get());
            Write(std::move(clip), 100);
            auto const size = static_cast<double>(std::filesystem::file_size(files_.Path("out.mov")));
            EXPECT_NEAR(size / 4000, static_cast<double>(kilobytes), 6.0) << codec;
            FreeMemZV(std::exchange(Module(MovieType)->DefaultVideoParams, nullptr));
        }
}

TEST_F(MediaDialogs, AQualityIsInPerCent)
{
    ClipPtr const clip = Movie();
    ZVMovieOptions options;
    for (auto const& [steps, quality] : {std::pair("3~25", 256), {"", 256}, {"3~100", 1024}}) {
        Expect_Dialogs({User(steps)});
        ClipOptionsZV(clip.get());
        ASSERT_TRUE(GetMovieOptionsZV(clip.get(), &options));
        EXPECT_EQ(options.Quality, quality) << steps;
    }
}

TEST_F(MediaDialogs, SettingsThatACodecDoesNotHeedAreDisabled)
{
    auto const enabled = [] {
        std::string ids;
        for (unsigned id : {2U, 3U, 6U, 7U, 8U, 9U})
            ids += Is_Enabled(id) ? '1' : '0';
        return ids;
    };
    Expect_Dialogs({[&] {
        EXPECT_EQ(enabled(), "101000") << "animation has alpha and key frames";
        Do("6!");
        EXPECT_EQ(enabled(), "101100");
        Do("1:H.264");
        EXPECT_EQ(enabled(), "011110");
        Do("8!");
        EXPECT_EQ(enabled(), "001111") << "a data rate takes the place of the quality";
        Do("1:ProRes 4444");
        EXPECT_EQ(enabled(), "100000");
        Press(ZV_KEY_ESCAPE);
    }});
    ClipOptionsZV(Movie().get());
}

TEST_F(MediaDialogs, GivingUpChangesNothing)
{
    ClipPtr const clip = Movie(ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO);
    Expect_Dialogs({User("1:PNG|5=10", Cancel), User("1:AAC|3=8000", Cancel)});
    ClipOptionsZV(clip.get());
    ClipAudioOptionsZV(clip.get());
    EXPECT_FALSE(clip->VideoParams || clip->AudioParams);
    EXPECT_EQ(clip->FrameRate, 25);
    EXPECT_EQ(clip->AudioFormat.Rate, 0U);

    clip->Format->Options(clip.get(), true);
    clip->Format->AudioOptions(clip.get(), true);
    auto const video = Bytes_Of(clip->VideoParams), audio = Bytes_Of(clip->AudioParams);
    Expect_Dialogs({User("1:PNG|5=10", Cancel), User("1:AAC|3=8000", Cancel), User("2=300", Cancel)});
    ClipOptionsZV(clip.get());
    ClipAudioOptionsZV(clip.get());
    EXPECT_FALSE(Quicktime_StreamingOptions(clip.get(), false));
    EXPECT_EQ(Bytes_Of(clip->VideoParams), video);
    EXPECT_EQ(Bytes_Of(clip->AudioParams), audio);
    EXPECT_EQ(GetErrorZV(), ZV_ERR_NONE);
}

TEST_F(MediaDialogs, AMovieWithoutOptionsAsks)
{
    Expect_Dialogs({User("1:PNG", Cancel)});
    ClipPtr const given = Movie();
    EXPECT_FALSE(CreateClipZV(given.get(), 0));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_SEQUENCE);
    SetError(ZV_ERR_NONE);
    EXPECT_FALSE(given->VideoParams);
    EXPECT_FALSE(std::filesystem::exists(files_.Path("out.mov")));

    Expect_Dialogs({User("1:PNG|5=10"), User("1:24 Bit Integer|3=22050|5:Mono")});
    Write(Movie(ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO), 3);
    EXPECT_EQ(Video("codec_name,r_frame_rate"), "png,10/1");
    EXPECT_EQ(Probe("-select_streams a -show_entries stream=codec_name,sample_rate,channels"),
              "pcm_s24be,22050,1");
}

TEST_F(MediaDialogs, ChosenSoundIsWritten)
{
    struct {
        char const *steps, *written;
        uint32_t stored;  // 0 for samples as they are
    } const cases[] = {
        {"", "pcm_s16le,44100,2", 0},
        {"4:8 Bits|2:8000|5:Mono", "pcm_u8,8000,1", 0},
        {"4:8 Bits|1:AAC|3=48000", "aac,48000,2", ZV_FourCC("mp4a")},
        {"1:uLaw 2:1|2:11025", "pcm_mulaw,11025,2", ZV_FourCC("ulaw")},
    };
    for (auto const& row : cases) {
        ClipPtr clip = Movie(ZV_MEDIA_AUDIO);
        Expect_Dialogs({User(row.steps)});
        ClipAudioOptionsZV(clip.get());
        uint32_t stored = 1;
        ASSERT_GE(clip->AudioParams->Size, 56);
        std::memcpy(&stored, static_cast<uint8_t const*>(clip->AudioParams->Data) + 4, sizeof stored);
        EXPECT_EQ(stored, row.stored) << row.steps;
        Write(std::move(clip), 0);
        EXPECT_EQ(Probe("-select_streams a -show_entries stream=codec_name,sample_rate,channels"),
                  row.written)
            << row.steps;
        FreeMemZV(std::exchange(Module(MovieType)->DefaultAudioParams, nullptr));
    }
}

TEST_F(MediaDialogs, StreamsAreSetUpStepByStep)
{
    long packets[2];
    for (int i = 0; i < 2; ++i) {
        ClipPtr clip = Describe(Module(MovieType, true), ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO);
        Expect_Dialogs({[] {
                            EXPECT_FALSE(Is_Enabled(3)) << "nothing to put the settings behind";
                            Do("1!");
                            EXPECT_TRUE(Is_Enabled(3));
                            Press(ZV_KEY_ESCAPE);
                        },
                        User("1:MPEG-4")});
        ClipOptionsZV(clip.get());
        Expect_Dialogs({[] { Do("2!|4!|5!"); }, User("1:AAC"), User(i ? "2=200" : "")});
        ClipAudioOptionsZV(clip.get());
        Write(std::move(clip), 3);
        EXPECT_EQ(Probe("-show_entries stream=codec_name"), "mpeg4 aac unknown unknown");
        packets[i] =
            std::atol(Probe("-select_streams 3 -count_packets -show_entries stream=nb_read_packets").c_str());
        for (ZVFormatParams** params :
             {&Module(MovieType, true)->DefaultVideoParams, &Module(MovieType, true)->DefaultAudioParams})
            FreeMemZV(std::exchange(*params, nullptr));
    }
    // With 200 ms a packet gets as many pieces of 1024 samples as its size lets it.
    EXPECT_GE(packets[0], 43);
    EXPECT_LT(packets[1], packets[0] * 2 / 3);
}

TEST_F(MediaDialogs, PicturesHaveACodecAndAQuality)
{
    ClipPtr const clip = Describe(Module(ZV_FourCC("PICT")));
    auto const options = [&] {
        ZVPICTOptions chosen{};
        if (clip->VideoParams) std::memcpy(&chosen, clip->VideoParams->Data, sizeof chosen);
        return chosen;
    };
    Expect_Dialogs({User("1:PNG", Cancel)});
    ClipOptionsZV(clip.get());
    EXPECT_FALSE(clip->VideoParams);
    Expect_Dialogs({[] {
        EXPECT_FALSE(Is_Enabled(2)) << "pictures as they are";
        Do("1:Motion JPEG");
        EXPECT_TRUE(Is_Enabled(2));
        EXPECT_EQ(Item(2)->state, 100);
        Press(ZV_KEY_RETURN);
    }});
    ClipOptionsZV(clip.get());
    EXPECT_EQ(options().Codec, ZV_FourCC("jpeg"));
    EXPECT_EQ(options().Quality, 1023U);
    Expect_Dialogs({User("1:Animation|2~50", Cancel), User("2~50")});
    ClipOptionsZV(clip.get());
    EXPECT_EQ(options().Quality, 1023U);
    ClipOptionsZV(clip.get());
    EXPECT_EQ(options().Codec, ZV_FourCC("jpeg"));
    EXPECT_EQ(options().Quality, 512U);
}
