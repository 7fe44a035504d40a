// Movies: every frame as the ffmpeg command shows it, in any order; sound to the sample; written movies and
// the stored options; and files that are damaged.
#include "FieldMovie.h"
#include "FormatTest.h"
#include "PlanarFrame.h"

#include <array>
#include <cmath>
#include <numeric>
#include <random>

ZV_API long Quicktime_StreamingOptions(ZVClip* clip, bool silent);

namespace {

/// The settings that frames are converted with which have no brightness and colour differences in planes.
char const* const scalerFlags = "-sws_flags bicubic+accurate_rnd+full_chroma_int+full_chroma_inp+bitexact";

class Movie : public FormatTest {
protected:
    Movie() { Add_QuickTime_Format(nullptr); }

    /// The second entry, behind the first one.
    static ZVFormatDesc* Streams()
    {
        return reinterpret_cast<ZVFormatDesc*>(List_Next(&Module(ZV_FourCC("MooV"))->Node));
    }

    /// Runs a command line; its output goes to a log in the test's directory.
    bool Run(std::string const& command) const
    {
        return std::system((command + " >" + environment.Path("log") + " 2>&1 </dev/null").c_str()) == 0;
    }

    /// What a command prints.
    std::string Output_Of(std::string const& command) const
    {
        if (std::system((command + " >" + environment.Path("out") + " 2>/dev/null </dev/null").c_str()) != 0)
            return "";
        Bytes const text = Read("out");
        return std::string(text.begin(), text.end());
    }

    /// Makes a file by ffmpeg, once for each name; its spec.
    std::string Make(std::string const& name, std::string const& arguments) const
    {
        EXPECT_TRUE(Run("cd " + environment.Path("") + "; ffmpeg -v error -y " + arguments + " " +
                        environment.Path(name)))
            << name;
        return environment.Spec(name);
    }

    /// All frames of a file by ffmpeg.
    std::vector<Bytes> Decoded(std::string const& name, std::string const& layout,
                               std::size_t frameBytes) const
    {
        Run("ffmpeg -v error -y -i " + environment.Path(name) + " " + scalerFlags +
            " -vsync passthrough -pix_fmt " + layout + " -f rawvideo " + environment.Path("raw"));
        Bytes const all = Read("raw");
        std::vector<Bytes> frames;
        for (std::size_t at = 0; at + frameBytes <= all.size(); at += frameBytes)
            frames.emplace_back(all.begin() + static_cast<long>(at),
                                all.begin() + static_cast<long>(at + frameBytes));
        return frames;
    }

    /// All frames of a file as ffmpeg decodes them, in channels of RGBA.
    std::vector<Values> Expected(std::string const& name, long width, long height, bool isDeep) const
    {
        std::string layout = Probe(name, "pix_fmt");
        layout.resize(
            std::min(layout.size(), layout.find_first_of(",\n")));  // transport streams tell it twice
        std::string const colours = Probe(name, "color_range,color_space");
        std::vector<Values> frames;
        if (layout.starts_with("yuv")) {
            PlanarFrame const planes(width, height, layout, colours.find("pc") != colours.npos,
                                     colours.find("bt709") != colours.npos);
            for (Bytes const& frame : Decoded(name, layout, planes.Frame_Bytes()))
                frames.push_back(planes.To_RGBA(frame.data(), isDeep ? 65535 : 255));
            return frames;
        }
        std::size_t const channels = static_cast<std::size_t>(width * height) * 4;
        for (Bytes const& frame : Decoded(name, isDeep ? "rgba64le" : "rgba", channels * (isDeep ? 2 : 1))) {
            Values values(channels);
            for (std::size_t i = 0; i < channels; ++i)
                values[i] = isDeep ? frame[2 * i] | frame[2 * i + 1] << 8 : frame[i];
            frames.push_back(std::move(values));
        }
        return frames;
    }

    static Bytes Frame(ZVClip* clip, long frame, ZVBitmapType type)
    {
        BitmapPtr const bitmap = Make_Bitmap(clip->Width, clip->Height, {}, type);
        ZVRectT<long> rect;
        if (!clip->Format->GetFrame(clip, bitmap.get(), frame, &rect, clip->Width, clip->Height, 0, nullptr,
                                    0))
            return {};
        return Pixels_Of(*bitmap);
    }

    std::string Probe(std::string const& name, std::string const& entries) const
    {
        std::string text = Output_Of("ffprobe -v error -select_streams v -show_entries stream=" + entries +
                                     " -of csv=p=0 " + environment.Path(name));
        while (!text.empty() && (text.back() == '\n' || text.back() == ','))
            text.pop_back();
        return text;
    }

    /// A clip described for writing, not yet created.
    ClipPtr Describe(std::string const& name, long width, long height, double rate, long depth = 8,
                     uint8_t alphaType = ZV_ALPHA_CHANNEL) const
    {
        ClipPtr clip{NewClipZV()};
        clip->Format = Module(ZV_FourCC("MooV"));
        clip->FileName = CopyFileSpecZV(environment.Spec(name).c_str());
        clip->Width = width;
        clip->Height = height;
        clip->BitDepth = depth;
        clip->Media = ZV_MEDIA_VIDEO;
        clip->FrameRate = clip->FileFrameRate = rate;
        clip->AlphaType = alphaType;
        clip->AlphaPremultiplied = 0;
        clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
        return clip;
    }

    static void Choose_Codec(ZVClip* clip, uint32_t codec, long depth, uint32_t quality = 1024)
    {
        clip->Format->Options(clip, true);
        auto* bytes = static_cast<uint8_t*>(clip->VideoParams->Data);
        auto const put = [&](long offset, uint32_t value) { std::memcpy(bytes + offset, &value, 4); };
        put(4, codec);
        put(14, quality);
        put(46, 86);  // a chosen block has an image description
        auto const narrow = static_cast<uint16_t>(depth);
        std::memcpy(bytes + 12, &narrow, 2);
    }

    static Bytes Random_Pixels(long width, long height, unsigned seed, std::size_t pixelBytes = 4)
    {
        std::mt19937 random(seed);
        Bytes pixels(static_cast<std::size_t>(width * height) * pixelBytes);
        for (uint8_t& byte : pixels)
            byte = static_cast<uint8_t>(random() >> 24);
        return pixels;
    }

    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(environment.Path()))
            if (entry.is_regular_file()) names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }
};

/// Forward, backward and in a random order.
std::array<std::vector<long>, 3> Orders(long frames)
{
    std::vector<long> forward(static_cast<std::size_t>(frames));
    std::iota(forward.begin(), forward.end(), 0);
    std::vector<long> const backward(forward.rbegin(), forward.rend());
    std::vector<long> random = forward;
    std::ranges::shuffle(random, std::mt19937(1));
    random.insert(random.end(), random.begin(), random.begin() + frames / 2);
    return {forward, backward, random};
}

}  // namespace

// ---- reading ----------------------------------------------------------------------------------------------

struct ReadCase {
    char const* file;
    char const* rate;
    char const* size;
    char const* codec;
    long depth;
    bool hasAlpha;
};

TEST_F(Movie, EveryFrameIsThatOfFfmpegInAnyOrder)
{
    ReadCase const cases[] = {
        {"rle24.mov", "25", "64x48", "-c:v qtrle -pix_fmt rgb24 -g 7", 8, false},
        {"rle32.mov", "30000/1001", "35x21", "-c:v qtrle -pix_fmt argb", 8, true},
        {"png.mov", "24000/1001", "35x21", "-c:v png -pix_fmt rgba", 8, true},
        {"png48.mov", "25", "34x20", "-c:v png -pix_fmt rgb48be", 16, false},
        {"png64.mov", "25", "35x21", "-c:v png -pix_fmt rgba64be", 16, true},
        {"ffv1.mkv", "30000/1001", "35x21", "-c:v ffv1 -pix_fmt bgra -g 8", 8, true},
        {"ffv1_10.mkv", "24000/1001", "34x20", "-c:v ffv1 -pix_fmt gbrp10le", 10, false},
        {"ffv1_16.mkv", "25", "35x21", "-c:v ffv1 -pix_fmt gray16le", 16, false},
        {"grey.mkv", "25", "35x21", "-c:v ffv1 -pix_fmt gray", 8, false},
        {"raw24.mov", "25", "35x21", "-c:v rawvideo -pix_fmt rgb24", 8, false},
        {"raw32.mov", "25", "34x20", "-c:v rawvideo -pix_fmt argb", 8, true},
        {"pal.mov", "25", "34x20", "-c:v rawvideo -pix_fmt pal8", 8, false},
        {"prores.mov", "25", "64x48", "-c:v prores_ks -pix_fmt yuv422p10le", 10, false},
        {"prores4.mov", "25", "64x48", "-c:v prores_ks -profile:v 4 -pix_fmt yuva444p10le", 16, true},
        {"h264.mov", "24000/1001", "66x50", "-c:v libx264 -pix_fmt yuv420p -bf 3 -g 12", 8, false},
        {"open.mp4", "25", "66x50", "-c:v libx264 -pix_fmt yuv420p -bf 3 -g 12 -x264-params open-gop=1", 8,
         false},
        {"h264.mkv", "30000/1001", "66x50", "-c:v libx264 -pix_fmt yuv420p -bf 2 -g 12", 8, false},
        {"h264.avi", "25", "66x50", "-c:v libx264 -pix_fmt yuv420p -bf 2 -g 12", 8, false},
        {"fragments.mp4", "25", "66x50",
         "-c:v libx264 -pix_fmt yuv420p -g 12 -movflags frag_keyframe+empty_moov", 8, false},
        {"mpeg2.mpg", "25", "64x48", "-c:v mpeg2video -bf 2 -g 12", 8, false},
        {"mpeg2.ts", "30000/1001", "64x48", "-c:v mpeg2video -bf 2 -g 12", 8, false},
        {"jpeg.avi", "25", "35x21", "-c:v mjpeg -pix_fmt yuvj420p", 8, false},
        {"jpeg422.mov", "25", "35x21", "-c:v mjpeg -pix_fmt yuvj422p", 8, false},
        {"high.mov", "25", "64x48", "-c:v libx264 -pix_fmt yuv444p10le -colorspace bt709 -color_range pc", 10,
         false},
        {"turned.mov", "25", "66x50", "-c:v libx264 -pix_fmt yuv420p -bf 2 -metadata:s:v rotate=90", 8,
         false},
        {"over.mov", "25", "35x21", "-c:v png -pix_fmt rgba -metadata:s:v rotate=180", 8, true},
        {"cut.mov", "25", "copy", "-ss 0.3 -i open.mp4 -c copy", 8, false},
        {"late.mov", "24000/1001", "copy", "-itsoffset 0.4 -ss 0.3 -i h264.mov -t 0.7 -c copy", 8, false},
        {"fields.ts", "25", "copy", "-f h264 -framerate 25 -i fields.264 -c copy", 8, false},
        {"fields.mov", "25", "copy", "-f h264 -framerate 25 -i fields.264 -c copy", 8, false},
        {"alpha.mkv", "25", "35x21", "-c:v ffv1 -pix_fmt yuva420p", 8, true},
    };
    Write("fields.264", FieldMovie::Make(12));
    for (ReadCase const& row : cases) {
        SCOPED_TRACE(row.file);
        bool const isDeep = row.depth > 8;
        bool const isCopy = row.size == std::string("copy");
        std::string const spec =
            Make(row.file, isCopy ? row.codec
                                  : std::string("-f lavfi -i nullsrc=s=") + row.size + ":r=" + row.rate +
                                        ":d=1.2,format=rgba,geq=r='mod(X*5+N*9\\,256)':g='mod(Y*7+N*3\\,256)'"
                                        ":b='mod(X+Y+N\\,256)'"
                                        ":a='mod(X*3+Y*11+N*17\\,256)' " +
                                        row.codec);
        ClipPtr const clip = Open(spec);
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->BitDepth, row.depth);
        EXPECT_EQ(clip->AlphaType, row.hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
        int numerator = 0, denominator = 1;
        std::sscanf(row.rate, "%d/%d", &numerator, &denominator);
        EXPECT_DOUBLE_EQ(clip->FrameRate, static_cast<double>(numerator) / denominator);
        EXPECT_EQ(clip->FrameRate, clip->FileFrameRate);
        std::vector<Values> const expected = Expected(row.file, clip->Width, clip->Height, isDeep);
        ASSERT_EQ(clip->RawFrames, static_cast<long>(expected.size()));
        for (std::vector<long> const& order : Orders(clip->RawFrames)) {
            ClipPtr const fresh = Open(spec);  // with nothing at hand of what was read before
            for (long frame : order)
                ASSERT_TRUE(
                    Are_Nearest(Frame(fresh.get(), frame, isDeep ? ZV_BITMAP_RGBA16 : ZV_BITMAP_RGBA8),
                                expected[static_cast<std::size_t>(frame)], isDeep))
                    << frame;
        }
        EXPECT_EQ(Frame(clip.get(), clip->RawFrames, ZV_BITMAP_RGBA8), Bytes());
    }
}

TEST_F(Movie, TenBitFramesComeThroughSixteen)
{
    ClipPtr const clip =
        Open(Make("ten.mkv", "-f lavfi -i testsrc2=s=34x20:r=25:d=0.4 -c:v ffv1 -pix_fmt gbrp10le"));
    ASSERT_TRUE(clip);
    ASSERT_EQ(GetBitmapTypeZV(clip.get()), ZV_BITMAP_RGBA10);
    std::vector<Bytes> const expected = Decoded("ten.mkv", "rgba64le", 34 * 20 * 8);
    BitmapPtr const wide = Make_Bitmap(34, 20, expected[3], ZV_BITMAP_RGBA16);
    BitmapPtr const ten = Make_Bitmap(34, 20, {}, ZV_BITMAP_RGBA10);
    CopyBitmapZV(wide.get(), ten.get(), 0, 0, -1, -1, 0, 0);
    EXPECT_EQ(Frame(clip.get(), 3, ZV_BITMAP_RGBA10), Pixels_Of(*ten));
}

TEST_F(Movie, FramesOfUnevenLengthAreShownAtTheirTimes)
{
    Make("even.mov", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.4 -c:v png");
    // Frames 0 to 9 at 0, 1, 2, 4, 6, 9 ... twenty-fifths.
    std::string const spec =
        Make("uneven.mov", "-i " + environment.Path("even.mov") +
                               " -vf setpts='if(lt(N\\,3)\\,N\\,2*N-2)/25/TB' -vsync vfr -c:v png");
    ClipPtr const clip = Open(spec);
    ASSERT_TRUE(clip);
    EXPECT_DOUBLE_EQ(clip->FrameRate, 25.0);
    Run("ffmpeg -v error -y -i " + environment.Path("uneven.mov") +
        " -vsync cfr -r 25 -pix_fmt rgba -f rawvideo " + environment.Path("raw"));
    Bytes const all = Read("raw");
    std::size_t const size = 32 * 24 * 4;
    ASSERT_GE(static_cast<std::size_t>(clip->RawFrames), all.size() / size);
    for (std::size_t i = 0; i < all.size() / size; ++i)
        EXPECT_TRUE(std::equal(all.begin() + static_cast<long>(i * size),
                               all.begin() + static_cast<long>((i + 1) * size),
                               Frame(clip.get(), static_cast<long>(i), ZV_BITMAP_RGBA8).begin()))
            << i;
}

TEST_F(Movie, ADamagedFrameFailsAlone)
{
    Make("whole.mov", "-f lavfi -i testsrc2=s=64x48:r=25:d=0.4 -c:v png");
    std::vector<Bytes> const expected = Decoded("whole.mov", "rgba", 64 * 48 * 4);
    Bytes file = Read("whole.mov");
    std::array<uint8_t, 8> const signature = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    auto at = file.begin();
    for (int i = 0; i <= 4; ++i)
        at = std::search(at + 1, file.end(), signature.begin(), signature.end());
    ASSERT_NE(at, file.end());
    std::fill(at, at + 64, uint8_t{0});
    ClipPtr const clip = Open(Write("damaged.mov", file));
    ASSERT_TRUE(clip);
    for (long frame : {0L, 1L, 4L, 5L, 3L, 4L, 9L}) {
        Bytes const wanted = frame == 4 ? Bytes() : expected[static_cast<std::size_t>(frame)];
        EXPECT_EQ(Frame(clip.get(), frame, ZV_BITMAP_RGBA8), wanted) << frame;
    }
}

TEST_F(Movie, TruncatedAndTwistedFilesNeverHarm)
{
    Make("a.mov", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.2 -f lavfi -i sine=d=0.2 -c:v png -c:a pcm_s16le "
                  "-movflags faststart");
    Make("b.mp4", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.4 -f lavfi -i sine=d=0.4 -c:v libx264 -c:a aac "
                  "-movflags faststart");
    std::mt19937 random(7);
    for (char const* name : {"a.mov", "b.mp4"}) {
        Bytes const whole = Read(name);
        for (unsigned i = 0; i < 60; ++i) {
            Bytes file = whole;
            if (i % 2) file.resize(random() % file.size());
            for (unsigned k = 0; k < i % 7 && !file.empty(); ++k)
                file[random() % std::min<std::size_t>(file.size(), 2000)] = static_cast<uint8_t>(random());
            ClipPtr const clip = Open(Write("twisted.mov", file));
            if (!clip) {
                EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
                continue;
            }
            if (clip->Width * clip->Height > 4000000) continue;
            for (long frame = 0; frame < std::min(clip->RawFrames, 12L); ++frame)
                Frame(clip.get(), frame, ZV_BITMAP_RGBA8);
            std::array<int16_t, 512> samples;
            if (clip->Media & ZV_MEDIA_AUDIO) clip->Format->GetAudio(clip.get(), samples.data(), 100, 200);
        }
    }
}

TEST_F(Movie, FilesThatAreNoMoviesAreRefused)
{
    EXPECT_FALSE(Open(Write("no.mov", Bytes(1000, 'x'))));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP_EXCEPTION);

    // A table that tells of samples by the billion in a file of some thousand bytes.
    Make("lying.mov", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.2 -c:v rawvideo -pix_fmt rgb24");
    Bytes lying = Read("lying.mov");
    std::array<uint8_t, 4> const sizes = {'s', 't', 's', 'z'};
    auto const table = std::search(lying.begin(), lying.end(), sizes.begin(), sizes.end());
    ASSERT_LT(table + 16, lying.end());
    std::fill(table + 12, table + 16, uint8_t{0x7F});
    EXPECT_FALSE(Open(Write("lying.mov", lying)));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP_EXCEPTION);

    Make("known.mov", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.2 -c:v png");
    Bytes file = Read("known.mov");
    std::array<uint8_t, 4> const code = {'p', 'n', 'g', ' '};
    auto const at = std::search(file.begin(), file.end(), code.begin(), code.end());
    ASSERT_NE(at, file.end());
    std::copy_n("zQ7!", 4, at);
    EXPECT_FALSE(Open(Write("unknown.mov", file)));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_MOVIE_FRAME);
    ASSERT_TRUE(GetErrorStringZV());
    EXPECT_STREQ(GetErrorStringZV(), "zQ7!");
}

// ---- sound ------------------------------------------------------------------------------------------------

TEST_F(Movie, SoundIsExactFromAnySample)
{
    struct {
        char const *file, *codec;
        unsigned long rate, channels, sampleSize;
    } const cases[] = {
        {"pcm.mov", "-c:a pcm_s16le -ac 2 -ar 48000", 48000, 2, 2},
        {"pcm8.mov", "-c:a pcm_u8 -ac 1 -ar 22050", 22050, 1, 1},
        {"pcm24.mov", "-c:a pcm_s24be -ac 2 -ar 44100", 44100, 2, 2},
        {"aac.mp4", "-c:a aac -ac 2 -ar 44100", 44100, 2, 2},
        {"aac.mkv", "-c:a aac -ac 1 -ar 48000", 48000, 1, 2},
        {"wave.wav", "-c:a pcm_s16le -ac 2 -ar 44100", 44100, 2, 2},
        {"mp3.mp3", "-c:a libmp3lame -ac 2 -ar 44100", 44100, 2, 2},
        {"flac.flac", "-c:a flac -ac 1 -ar 44100", 44100, 1, 2},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(row.file);
        ClipPtr const clip = Open(
            Make(row.file,
                 std::string("-f lavfi -i aevalsrc='0.4*sin(t*t*2500)|0.3*sin(t*3000)':d=2.5 ") + row.codec));
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->Width, 1);
        EXPECT_EQ(clip->Height, 1);
        EXPECT_EQ(clip->FrameRate, 30.0);
        EXPECT_NEAR(static_cast<double>(clip->RawFrames), 75, 2);
        EXPECT_EQ(clip->Media, ZV_MEDIA_AUDIO);
        EXPECT_EQ(clip->AudioFormat, (ZVAudioFormat{row.rate, row.sampleSize, row.channels,
                                                    row.sampleSize == 1 ? ZV_AUDIO_UNSIGNED : 0}));
        Run("ffmpeg -v error -y -i " + environment.Path(row.file) + " -f " +
            (row.sampleSize == 1 ? "u8 " : "s16le ") + environment.Path("sound"));
        Bytes const expected = Read("sound");
        std::size_t const frame = row.sampleSize * row.channels;
        std::size_t const all = expected.size() / frame;
        std::size_t const starts[] = {0, 1000, 1001, 40000, 777, all - 500, 3, 50000};
        for (std::size_t first : starts) {
            std::size_t const count = std::min<std::size_t>(3000, all - std::min(all, first));
            Bytes got(count * frame, 0xEE);
            ASSERT_TRUE(clip->Format->GetAudio(clip.get(), got.data(), first, count));
            EXPECT_TRUE(
                std::equal(got.begin(), got.end(), expected.begin() + static_cast<long>(first * frame)))
                << first;
        }
        Bytes beyond(100 * frame, 0xEE);
        EXPECT_TRUE(clip->Format->GetAudio(clip.get(), beyond.data(), all + 100000, 100));
        EXPECT_EQ(beyond, Bytes(100 * frame, row.sampleSize == 1 ? 128 : 0));
    }
}

TEST_F(Movie, SoundOfMoreThanTwoChannelsIsLeftOut)
{
    std::string const sound =
        "-f lavfi -i anoisesrc=d=0.4 -af pan=3.0\\|c0=c0\\|c1=c0\\|c2=c0 -c:a pcm_s16le ";
    EXPECT_FALSE(Open(Make("three.mov", sound)));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP_EXCEPTION);
    ClipPtr const clip =
        Open(Make("silent.mov", "-f lavfi -i testsrc2=s=32x24:r=25:d=0.4 " + sound + "-c:v png"));
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Media, ZV_MEDIA_VIDEO);
}

// ---- writing ----------------------------------------------------------------------------------------------

TEST_F(Movie, LosslessCodecsGiveBackWhatWasWritten)
{
    struct {
        uint32_t codec;
        long depth, bits;
        char const* probe;
    } const cases[] = {
        {ZV_FourCC("rle "), 32, 8, "qtrle,argb"},         {ZV_FourCC("rle "), 24, 8, "qtrle,rgb24"},
        {ZV_FourCC("raw "), 32, 8, "rawvideo,argb"},      {ZV_FourCC("raw "), 24, 8, "rawvideo,rgb24"},
        {ZV_FourCC("raw "), 32, 16, "rawvideo,rgba64be"}, {ZV_FourCC("png "), 32, 8, "png,rgba"},
        {ZV_FourCC("png "), 32, 16, "png,rgba64be"},      {ZV_FourCC("png "), 24, 16, "png,rgb48be"},
        {ZV_FourCC("FFV1"), 32, 8, "ffv1,bgra"},          {ZV_FourCC("FFV1"), 24, 8, "ffv1,bgr0"},
        {ZV_FourCC("FFV1"), 32, 16, "ffv1,gbrap16le"},    {ZV_FourCC("FFV1"), 24, 16, "ffv1,gbrp16le"},
    };
    for (auto const& row : cases) {
        SCOPED_TRACE(row.probe);
        bool const hasAlpha = row.depth == 32;
        ZVBitmapType const type = row.bits == 16 ? ZV_BITMAP_RGBA16 : ZV_BITMAP_RGBA8;
        std::vector<Bytes> frames;
        ClipPtr const clip =
            Describe("out.mov", 37, 22, 29.97, row.bits, hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
        Choose_Codec(clip.get(), row.codec, row.depth);
        ASSERT_TRUE(CreateClipZV(clip.get(), 0));
        ASSERT_TRUE(BeginClipIOZV(clip.get(), nullptr));
        for (unsigned i = 0; i < 6; ++i) {
            Bytes pixels = Random_Pixels(37, 22, i, row.bits == 16 ? 8 : 4);
            std::size_t const pixelBytes = row.bits == 16 ? 8 : 4;
            for (std::size_t at = 0; !hasAlpha && at < pixels.size(); ++at)
                if (at % pixelBytes >= pixelBytes / 4 * 3) pixels[at] = 255;
            frames.push_back(pixels);
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, Make_Bitmap(37, 22, pixels, type).get()));
        }
        EXPECT_EQ(clip->RawFrames, 6);
        Close(clip);
        EXPECT_EQ(Probe("out.mov", "codec_name,pix_fmt"), row.probe);
        EXPECT_EQ(Probe("out.mov", "r_frame_rate,time_base"), "30000/1001,1/30000");
        ClipPtr const back = Open(environment.Spec("out.mov"));
        ASSERT_TRUE(back);
        EXPECT_EQ(back->BitDepth, row.bits);
        ASSERT_EQ(back->RawFrames, 6);
        for (long i : {5L, 0L, 3L})
            EXPECT_TRUE(Frame(back.get(), i, type) == frames[static_cast<std::size_t>(i)]) << i;
    }
}

TEST_F(Movie, LossyCodecsStayNearWhatWasWritten)
{
    struct {
        uint32_t codec;
        long depth, bits;
        char const* name;
        double worst;
    } const cases[] = {
        {ZV_FourCC("apcn"), 24, 8, "prores", 6},  {ZV_FourCC("apch"), 24, 16, "prores", 6},
        {ZV_FourCC("ap4h"), 32, 16, "prores", 6}, {ZV_FourCC("avc1"), 24, 8, "h264", 6},
        {ZV_FourCC("avc1"), 24, 16, "h264", 6},   {ZV_FourCC("jpeg"), 24, 8, "mjpeg", 6},
        {ZV_FourCC("v210"), 24, 16, "v210", 6},
    };
    for (auto const& row : cases)
        for (long width : {64L, 65L}) {
            if (width == 65 && row.codec == ZV_FourCC("v210")) continue;
            SCOPED_TRACE(std::string(row.name) + " " + std::to_string(row.bits) + " " +
                         std::to_string(width));
            ClipPtr const clip = Describe("out.mov", width, 48, 25, row.bits,
                                          row.depth == 32 ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
            Choose_Codec(clip.get(), row.codec, row.depth);
            ASSERT_TRUE(CreateClipZV(clip.get(), 0));
            ASSERT_TRUE(BeginClipIOZV(clip.get(), nullptr));
            Bytes pixels(static_cast<std::size_t>(width * 48 * 4), 255);
            for (std::size_t i = 0; i < pixels.size(); i += 4) {
                pixels[i] = static_cast<uint8_t>(i / 4 % static_cast<std::size_t>(width) * 3);
                pixels[i + 1] = static_cast<uint8_t>(i / 4 / static_cast<std::size_t>(width) * 4);
                pixels[i + 2] = 90;
                if (row.depth == 32)
                    pixels[i + 3] = static_cast<uint8_t>(255 - i / 4 / static_cast<std::size_t>(width) * 5);
            }
            for (long i = 0; i < 5; ++i)
                ASSERT_TRUE(Add_Frame_At(clip.get(), i, pixels));
            Close(clip);
            EXPECT_EQ(Probe("out.mov", "codec_name"), row.name);
            ClipPtr const back = Open(environment.Spec("out.mov"));
            ASSERT_TRUE(back);
            ASSERT_EQ(back->RawFrames, 5);
            EXPECT_DOUBLE_EQ(back->FrameRate, 25.0);
            Bytes const got = Frame(back.get(), 4, ZV_BITMAP_RGBA8);
            ASSERT_EQ(got.size(), pixels.size());
            double sum = 0;
            for (std::size_t i = 0; i < got.size(); ++i)
                sum += std::abs(got[i] - pixels[i]);
            EXPECT_LT(sum / static_cast<double>(got.size()), row.worst);
        }
}

TEST_F(Movie, TimeScalesAreAsTold)
{
    struct {
        double rate;
        char const* base;
        char const* shown;
    } const cases[] = {{29.97, "1/30000", "30000/1001"},          {25.0, "1/25", "25/1"},
                       {23.976, "1/23976", "2997/125"},           {12.5, "1/125", "25/2"},
                       {30000.0 / 1001, "1/30000", "30000/1001"}, {12.34567, "1/1234567", "1234567/100000"}};
    for (auto const& row : cases) {
        ClipPtr const clip = Describe("rate.mov", 16, 16, row.rate);
        ASSERT_TRUE(CreateClipZV(clip.get(), 0));
        BeginClipIOZV(clip.get(), nullptr);
        for (long i = 0; i < 4; ++i)
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(16, 16, 1)));
        Close(clip);
        EXPECT_EQ(Probe("rate.mov", "time_base"), row.base) << row.rate;
        EXPECT_EQ(Probe("rate.mov", "avg_frame_rate"), row.shown) << row.rate;
    }
}

TEST_F(Movie, SoundAndPicturesAreWrittenTogether)
{
    for (char const* codec : {"NONE", "mp4a"})
        for (unsigned long sampleSize : {1UL, 2UL}) {
            SCOPED_TRACE(codec);
            ClipPtr const clip = Describe("both.mov", 32, 24, 25);
            clip->Media |= ZV_MEDIA_AUDIO;
            clip->AudioFormat = {48000, sampleSize, 2, sampleSize == 1 ? ZV_AUDIO_UNSIGNED : 0};
            clip->Format->AudioOptions(clip.get(), true);
            uint32_t const code = static_cast<uint32_t>(static_cast<uint8_t>(codec[0]) << 24 |
                                                        codec[1] << 16 | codec[2] << 8 | codec[3]);
            std::memcpy(static_cast<uint8_t*>(clip->AudioParams->Data) + 4, &code, 4);
            ASSERT_TRUE(CreateClipZV(clip.get(), 0));
            ASSERT_TRUE(BeginClipIOZV(clip.get(), nullptr));
            ZVAudioFormat const native{48000, 2, 2, 0};
            std::unique_ptr<ZVAudioBuffer, void (*)(ZVAudioBuffer*)> const buffer{
                AllocAudioBufferZV(&native, 1920UL), FreeAudioBufferZV};
            auto* samples = static_cast<int16_t*>(buffer->Data);
            std::vector<int16_t> all;
            for (long i = 0; i < 20; ++i) {
                ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(32, 24, static_cast<unsigned>(i))));
                for (int k = 0; k < 1920 * 2; ++k)
                    samples[k] = static_cast<int16_t>(
                                     8000 * std::sin((static_cast<double>(i) * 1920 + k / 2) * 0.05)) &
                                 ~0xFF;
                all.insert(all.end(), samples, samples + 1920 * 2);
                ASSERT_TRUE(AddAudioZV(clip.get(), buffer.get()));
            }
            Close(clip);
            ClipPtr const back = Open(environment.Spec("both.mov"));
            ASSERT_TRUE(back);
            EXPECT_EQ(back->Media, ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO);
            EXPECT_EQ(back->RawFrames, 20);
            ASSERT_TRUE(GetAudioZV(back.get(), buffer.get(), 7UL));
            double worst = 0;
            for (std::size_t k = 0; k < 1920 * 2; ++k)
                worst = std::max(worst, std::fabs(static_cast<double>(samples[k]) - all[7 * 1920 * 2 + k]));
            EXPECT_LE(worst, std::string(codec) == "NONE" ? 0 : 600);
        }
}

TEST_F(Movie, OnlyAFinishedMovieReplacesTheOldFile)
{
    Bytes const old = {'o', 'l', 'd'};
    Write("target.mov", old);
    {
        ClipPtr const first = Describe("target.mov", 256, 256, 25);
        ClipPtr const second = Describe("other.mov", 256, 256, 25);
        ASSERT_TRUE(CreateClipZV(first.get(), 0));
        ASSERT_TRUE(CreateClipZV(second.get(), 0));
        EXPECT_EQ(Read("target.mov"), old);
        for (ClipPtr const* clip : {&first, &second}) {
            BeginClipIOZV(clip->get(), nullptr);
            EXPECT_TRUE(Add_Frame_At(clip->get(), 0, Random_Pixels(256, 256, 1)));
        }
        Close(second);
        EXPECT_EQ(Read("target.mov"), old);
        Close(first);
        EXPECT_NE(Read("target.mov"), old);
        uint32_t type, creator;
        Get_FileInfo(environment.Spec("target.mov").c_str(), &creator, &type);
        EXPECT_EQ(type, ZV_FourCC("MooV"));
    }
    Write("target.mov", old);
    std::vector<std::string> const files = Files();
    {
        ClipPtr const clip = Describe("target.mov", 256, 256, 25);
        ASSERT_TRUE(CreateClipZV(clip.get(), 0));
        BeginClipIOZV(clip.get(), nullptr);
        FileSizeLimit const limit(1000000);
        long added = 0;
        while (added < 40 &&
               Add_Frame_At(clip.get(), added, Random_Pixels(256, 256, static_cast<unsigned>(added))))
            ++added;
        EXPECT_LT(added, 40);
        EXPECT_EQ(GetErrorZV(), ZV_ERR_DISK_FULL);
        EXPECT_FALSE(Add_Frame_At(clip.get(), added, Random_Pixels(256, 256, 1)));
        Close(clip);
    }
    EXPECT_EQ(Read("target.mov"), old);
    EXPECT_EQ(Files(), files);
    {
        ClipPtr const clip = Describe("target.mov", 256, 256, 25);
        ASSERT_TRUE(CreateClipZV(clip.get(), 0));  // and nothing is written into it
    }
    EXPECT_EQ(Read("target.mov"), old);
    EXPECT_EQ(Files(), files);
}

TEST_F(Movie, MoviesForStreamingHaveHintsAndTheirIndexInFront)
{
    ClipPtr const clip = Describe("stream.mov", 64, 48, 25, 8, ZV_ALPHA_NONE);
    clip->Format = Streams();
    ASSERT_TRUE(clip->Format);
    ASSERT_TRUE(CreateClipZV(clip.get(), 0));
    BeginClipIOZV(clip.get(), nullptr);
    for (long i = 0; i < 10; ++i)
        ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(64, 48, 1)));
    Close(clip);
    Bytes const file = Read("stream.mov");
    std::string const text(file.begin(), file.end());
    ASSERT_NE(text.find("moov"), text.npos);
    EXPECT_LT(text.find("moov"), text.find("mdat"));
    EXPECT_NE(text.find("hint"), text.npos);
    EXPECT_EQ(Open(environment.Spec("stream.mov"))->RawFrames, 10);
}

// ---- options, registration --------------------------------------------------------------------------------

TEST_F(Movie, OldBlocksOfOptionsAreUpgraded)
{
    auto const make = [](std::vector<uint8_t> const& bytes) {
        ZVFormatParams source{const_cast<uint8_t*>(bytes.data()), static_cast<long>(bytes.size())};
        return Copy_Format_Params(&source);
    };
    std::vector<uint8_t> old(60);
    std::iota(old.begin(), old.end(), 1);
    ClipPtr const clip = Describe("x.mov", 16, 16, 25);
    for (std::size_t size : {60UL, 46UL, 20UL, 0UL}) {
        clip->VideoParams = make({old.begin(), old.begin() + static_cast<long>(size)});
        clip->AudioParams = make({old.begin(), old.begin() + static_cast<long>(size)});
        clip->Format->ConvertEndianOptions(clip.get());
        clip->Format->ConvertEndianOptions(clip.get());  // twice is back again
        ASSERT_EQ(clip->VideoParams->Size, 144);
        ASSERT_EQ(clip->AudioParams->Size, 56);
        auto const* video = static_cast<uint8_t const*>(clip->VideoParams->Data);
        auto const* audio = static_cast<uint8_t const*>(clip->AudioParams->Data);
        uint32_t mark;
        std::memcpy(&mark, video, 4);
        EXPECT_EQ(mark, 0xFFFF0200);
        for (std::size_t i = 4; i < 144; ++i)
            EXPECT_EQ(video[i], i < 46 && i < size ? old[i] : 0) << i;
        for (std::size_t i = 4; i < 56; ++i)
            EXPECT_EQ(audio[i], i < 8 && i < size ? old[i] : 0) << i;
        FreeMemZV(std::exchange(clip->VideoParams, nullptr));
        FreeMemZV(std::exchange(clip->AudioParams, nullptr));
    }
}

TEST_F(Movie, SettingsOfStreamingGoBehindBothBlocks)
{
    ClipPtr const clip = Describe("x.mov", 16, 16, 25);
    EXPECT_FALSE(Quicktime_StreamingOptions(clip.get(), true));  // no block to put them behind
    Streams()->Options(clip.get(), true);
    struct {
        ZVFormatParams* params;
        long size, flag;
    } const blocks[] = {{clip->VideoParams, 144, 132}, {clip->AudioParams, 56, 44}};
    for (auto const& block : blocks) {
        ASSERT_TRUE(block.params);
        uint32_t fields[2];
        std::memcpy(fields, static_cast<uint8_t const*>(block.params->Data) + block.flag, 8);
        EXPECT_NE(fields[0], 0u);
        EXPECT_EQ(static_cast<long>(fields[1]), block.params->Size - block.size);
    }
    Streams()->AudioOptions(clip.get(), true);
    EXPECT_EQ(clip->VideoParams, blocks[0].params);  // what is there stays
    EXPECT_EQ(clip->AudioParams, blocks[1].params);
}

TEST_F(Movie, OldSystemsRefuseWhatWouldNotFitIntoAFile)
{
    std::pair<long, bool> const cases[] = {{498, true}, {499, false}};  // of 4096000 bytes each
    for (auto const& [frames, fits] : cases) {
        ClipPtr const clip = Describe("big.mov", 2048, 500, 25);
        ASSERT_TRUE(CreateClipZV(clip.get(), 0));
        clip->Frames = frames;
        SetError(ZV_ERR_NONE);
        uint32_t const system = std::exchange(ZVEnv->systemVersion, 0x0FFFu);
        EXPECT_EQ(clip->Format->BeginIO(clip.get(), 1) != 0, fits);
        EXPECT_EQ(GetErrorZV(), fits ? ZV_ERR_NONE : ZV_ERR_MOVIE_SIZE);
        ZVEnv->systemVersion = system;
        EXPECT_TRUE(clip->Format->BeginIO(clip.get(), 1));
    }
}

TEST_F(Movie, DefaultsAreAnimationWithTheClipsAlphaAndRate)
{
    for (uint8_t alpha : {ZV_ALPHA_NONE, ZV_ALPHA_CHANNEL}) {
        ClipPtr const clip = Describe("x.mov", 16, 16, 25, 16, alpha);
        clip->Format->Options(clip.get(), true);
        ASSERT_TRUE(clip->VideoParams);
        auto const* bytes = static_cast<uint8_t const*>(clip->VideoParams->Data);
        uint32_t codec, quality, rate;
        uint16_t depth;
        std::memcpy(&codec, bytes + 4, 4);
        std::memcpy(&depth, bytes + 12, 2);
        std::memcpy(&quality, bytes + 14, 4);
        std::memcpy(&rate, bytes + 22, 4);
        EXPECT_EQ(codec, ZV_FourCC("rle "));
        EXPECT_EQ(depth, alpha ? 32 : 24);
        EXPECT_EQ(quality, 512u);
        EXPECT_EQ(rate, 25u << 16);
    }
    // A block of defaults takes its alpha from the clip that it is used for, not from the one it was made
    // for.
    ClipPtr const clip = Describe("x.mov", 16, 16, 0, 8, ZV_ALPHA_NONE);
    clip->Format->Options(clip.get(), true);
    clip->AlphaType = ZV_ALPHA_CHANNEL;
    clip->FrameRate = 25;
    ASSERT_TRUE(CreateClipZV(clip.get(), 0));
    EXPECT_EQ(static_cast<uint8_t const*>(clip->VideoParams->Data)[12], 32);
}

TEST_F(Movie, MoviesAndSoundsAreClaimedByTheirExtensions)
{
    ZVFormatDesc* format = Module(ZV_FourCC("MooV"));
    ASSERT_TRUE(format);
    auto const claims = [&](char const* name) {
        return format->CanLoad(format, name, ZV_BLANK_CODE, ZV_BLANK_CODE, Extension_Code(name));
    };
    for (char const* name :
         {"a.mov", "a.MP4", "a.avi", "a.mkv", "a.mpg", "a.ts", "a.wav", "a.mp3", "a.m4a", "a.mxf", "a.aif"})
        EXPECT_TRUE(claims(name)) << name;
    for (char const* name :
         {"a", "a.txt", "a.srt", "a.png", "a.jpg", "a.tif", "a.flm", "a.pict", "a.m3u8", "a.yuv"})
        EXPECT_FALSE(claims(name)) << name;
    EXPECT_EQ(format->ReadExtensions[0], ZV_FourCC("mov\0"));
    std::vector<uint32_t> codes(format->ReadExtensions, format->ReadExtensions + format->ReadExtensionCount);
    std::ranges::sort(codes);
    EXPECT_EQ(std::ranges::adjacent_find(codes), codes.end());
    ZVFormatDesc const* streams = Streams();
    ASSERT_TRUE(streams);
    EXPECT_EQ(streams->ReadExtensionCount, 1);
    EXPECT_EQ(streams->CachedProperties, 1);
    EXPECT_EQ(GetImportPropertiesZV(format), 0xB234F);
    EXPECT_EQ(GetExportPropertiesZV(format), 0xB234F);
}

TEST(MovieCodecs, TheListOfDeepCodecsDecidesForWhatItNames)
{
    TestEnvironment environment(TestEnvironment::Home::Directory);
    ASSERT_TRUE(Add_QuickTime_Format(nullptr));
    std::ifstream made(environment.Path("data/QuickTimeCodecs.txt"));
    std::string const text{std::istreambuf_iterator<char>(made), {}};
    EXPECT_NE(text.find("v210"), text.npos);
    std::string const source =
        "ffmpeg -v error -y -f lavfi -i testsrc2=s=32x24:r=25:d=0.2 -c:v png -pix_fmt rgb24 ";
    ASSERT_EQ(std::system((source + environment.Path("a.mov")).c_str()), 0);
    std::pair<char const*, long> const cases[] = {
        {"QuickTime 64-bit codecs\npng \n", 16},
        {"quicktime 10-BIT codecs\r\npng \r\n", 10},
        {"QuickTime 64-bit codecs\npng\nxpng \nQuickTime 10-bit codecs\n", 8},
        {"png \nQuickTime 10-bit codecs\npng \n", 16}};
    for (auto const& [list, depth] : cases) {
        environment.Write("data/QuickTimeCodecs.txt", list);
        Free_Format_Modules();
        ASSERT_TRUE(Add_QuickTime_Format(nullptr));
        ClipPtr const clip{OpenClipZV(environment.Spec("a.mov").c_str(), nullptr)};
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->BitDepth, depth) << list;
    }
}
