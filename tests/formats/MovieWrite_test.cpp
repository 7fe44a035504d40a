// Movies that are written, the stored options, and how the module is registered.
#include "MovieTest.h"

#include <cmath>
#include <fstream>
#include <numeric>

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

TEST_F(Movie, ACopyOfACopyHasTheSamePictures)
{
    for (uint32_t codec : {ZV_FourCC("rle "), ZV_FourCC("png "), ZV_FourCC("FFV1")}) {
        std::string sums[2];
        std::string source = Make("source.mov", "-f lavfi -i testsrc2=s=66x50:r=25:d=0.5 -c:v libx264 -bf 2");
        for (std::string& sum : sums) {
            ClipPtr const from = Open(source);
            std::string const name = &sum == sums ? "first.mov" : "second.mov";
            ClipPtr const to = Describe(name, 66, 50, 25, 8, ZV_ALPHA_NONE);
            ASSERT_TRUE(from);
            Choose_Codec(to.get(), codec, 24);
            ASSERT_TRUE(CreateClipZV(to.get(), 0));
            ASSERT_TRUE(BeginClipIOZV(to.get(), nullptr));
            for (long i = 0; i < from->RawFrames; ++i)
                ASSERT_TRUE(Add_Frame_At(to.get(), i, Frame(from.get(), i, ZV_BITMAP_RGBA8)));
            Close(to);
            source = environment.Spec(name);
            sum = Output_Of("ffmpeg -v error -i " + environment.Path(name) + " -pix_fmt rgb24 -f framemd5 -");
        }
        EXPECT_FALSE(sums[0].empty());
        EXPECT_EQ(sums[0], sums[1]);
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

TEST_F(Movie, AHigherQualityTakesMoreBytes)
{
    for (uint32_t codec : {ZV_FourCC("jpeg"), ZV_FourCC("mp4v"), ZV_FourCC("avc1")}) {
        std::uintmax_t before = 0;
        for (uint32_t quality : {0u, 400u, 700u, 1024u}) {
            ClipPtr const clip = Describe("out.mov", 64, 48, 25.0, 8, ZV_ALPHA_NONE);
            Choose_Codec(clip.get(), codec, 24, quality);
            ASSERT_TRUE(CreateClipZV(clip.get(), 0) && BeginClipIOZV(clip.get(), nullptr));
            ASSERT_TRUE(Add_Frame_At(clip.get(), 0, Random_Pixels(64, 48, 1)));
            Close(clip);
            std::uintmax_t const size = std::filesystem::file_size(environment.Path("out.mov"));
            EXPECT_GT(size, before) << codec << " " << quality;
            before = size;
        }
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
