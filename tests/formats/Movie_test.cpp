// Movies: every frame as the ffmpeg command shows it, in any order; sound to the sample; and files that are
// damaged.
#include "FieldMovie.h"
#include "MovieTest.h"

#include <array>
#include <cmath>
#include <fstream>
#include <numeric>
#include <unistd.h>

namespace {

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
                                        ":d=1,format=rgba,geq=r='mod(X*5+N*9\\,256)':g='mod(Y*7+N*3\\,256)'"
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

#ifndef ZV_SANITIZED
TEST_F(Movie, MemoryStaysTheSameOverTenThousandFrames)
{
    constexpr long frames = 10000;
    ClipPtr const clip = Open(Make("long.mov", "-f lavfi -i testsrc2=s=64x48:r=25:d=400 -c:v mpeg4"));
    ASSERT_TRUE(clip);
    ASSERT_EQ(clip->RawFrames, frames);
    auto const resident = [] {
        long pages = 0;
        std::ifstream("/proc/self/statm") >> pages >> pages;
        return pages * sysconf(_SC_PAGESIZE);
    };
    long early = 0;
    for (long frame = 0; frame < frames; ++frame) {
        ASSERT_FALSE(Frame(clip.get(), frame, ZV_BITMAP_RGBA8).empty());
        if (frame == frames / 10) early = resident();
    }
    EXPECT_LT(resident() - early, 2L << 20);  // the pictures have 110 MB
}
#endif

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
