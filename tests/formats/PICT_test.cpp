// PICT and PICS through their modules: files of GraphicsMagick, and ours as it reads them; animations.
#include "PictureBytes.h"
#include "files/ResourceFile.h"

#include <cstdlib>

namespace {

constexpr std::size_t headerSize = 512;

class PICT : public FormatTest {
protected:
    ZVFormatDesc* const format = Module(ZV_FourCC("PICT"));
    ZVFormatDesc* const animation = Module(ZV_FourCC("PICS"));

    /// Runs GraphicsMagick in the test's directory.
    bool Convert(std::string const& arguments) const
    {
        return std::system(("cd " + environment.Path() + "; gm convert " + arguments).c_str()) == 0;
    }
    ClipPtr Open_Picture(PictureBytes& picture) const
    {
        return Open(Write("a.pct", ByteWriter{}.PutZeros(headerSize).Put(picture.End()).bytes));
    }
    /// Writes a picture and shows it to GraphicsMagick.
    Bytes Written(long width, long height, Bytes const& pixels, uint8_t alphaType) const
    {
        {
            ClipPtr const clip = Create(format, "ours.pct", width, height, 25.0, alphaType);
            if (!clip || !Add_Frame_At(clip.get(), 0, pixels)) return {};
        }
        return Convert("ours.pct -depth 8 rgba:seen") ? Read("seen") : Bytes{};
    }
};

void Choose(ClipPtr const& clip, uint32_t codec, uint32_t quality)
{
    ZVPICTOptions const options{codec, 0, 0, quality};
    std::memcpy(clip->VideoParams->Data, &options, sizeof options);
}

/// Two gradients and waves of blue.
Bytes Shades(long width, long height)
{
    Bytes pixels;
    for (long i = 0; i < width * height; ++i) {
        long const x = i % width, y = i / width;
        for (long value : {x * 255 / width, y * 255 / height, 4 * std::abs(x % 64 - 32), 255L})
            pixels.push_back(static_cast<uint8_t>(value));
    }
    return pixels;
}

/// Mean and largest difference of two pictures.
std::pair<double, int> Differences(Bytes const& one, Bytes const& other)
{
    if (one.size() != other.size()) return {255, 255};
    long sum = 0;
    int largest = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        int const difference = std::abs(one[i] - other[i]);
        sum += difference;
        largest = std::max(largest, difference);
    }
    return {static_cast<double>(sum) / static_cast<double>(one.size()), largest};
}

Bytes With_Alpha(Bytes pixels, uint8_t alpha)
{
    for (std::size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = alpha;
    return pixels;
}

/// Flat areas and noise, of so many colours.
Bytes Patches(long width, long height, unsigned colours, unsigned seed)
{
    std::mt19937 random(seed);
    Bytes const palette = Random_Bytes(random, std::size_t{3} * colours);
    Bytes pixels;
    for (long i = 0; i < width * height; ++i) {
        unsigned const index =
            static_cast<unsigned>(i / 7 % 3 ? i / 40 : static_cast<long>(random())) % colours;
        pixels.insert(pixels.end(), &palette[3 * index], &palette[3 * index] + 3);
        pixels.push_back(255);
    }
    return pixels;
}

TEST_F(PICT, FilesOfGraphicsMagickAreReadExactly)
{
    struct {
        char const* why;
        char const* options;
        unsigned colours;
        long width, height;
        bool hasAlpha;  ///< a direct bitmap, whether it uses its alpha or not
    } const cases[] = {
        {"direct", "-type TrueColor", 5000, 120, 50, true},
        {"direct, a row of two-byte sizes", "-type TrueColor", 9000, 400, 30, true},
        {"palette", "-type Palette", 200, 300, 20, false},
        {"small palette", "-type Palette", 12, 33, 9, false},
        {"two colours", "-type Palette", 2, 17, 5, false},
    };
    for (auto const& row : cases) {
        Bytes const pixels = Patches(row.width, row.height, row.colours, 1);
        environment.Write("in.rgba", As_Text(pixels));
        ASSERT_TRUE(Convert("-depth 8 -size " + std::to_string(row.width) + "x" + std::to_string(row.height) +
                            " in.rgba +matte " + row.options + " theirs.pict"));
        ClipPtr const clip = Open(environment.Spec("theirs.pict"));
        ASSERT_TRUE(clip) << row.why;
        EXPECT_EQ(clip->Format, format);
        EXPECT_TRUE(clip->Width == row.width && clip->Height == row.height && clip->RawFrames == 1)
            << row.why;
        EXPECT_EQ(clip->AlphaType, row.hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE) << row.why;
        EXPECT_TRUE(Module_Frame(clip.get(), 0) == pixels) << row.why;
    }
    environment.Write("in.rgba", As_Text(Random_Pixels(50, 20, 1)));
    ASSERT_TRUE(Convert("-depth 8 -size 50x20 in.rgba -type TrueColorMatte theirs.pict"));
    EXPECT_TRUE(Module_Frame(Open(environment.Spec("theirs.pict")).get(), 0) == Random_Pixels(50, 20, 1));
}

TEST_F(PICT, GraphicsMagickReadsWhatIsWritten)
{
    // It takes rows of 1 and 2 pixels for packed and those of 63 to 66 for shorter than they are, and no
    // alpha.
    for (long width : {3L, 62L, 67L, 700L, 4095L, 4096L, 9000L}) {
        Bytes const pixels = Patches(width, 5, 800, 2);
        EXPECT_TRUE(Written(width, 5, pixels, ZV_ALPHA_NONE) == pixels) << width;
        if (width == 62) continue;  // with alpha it is one of them
        Bytes const noise = Random_Pixels(width, 5, 3);
        EXPECT_TRUE(Written(width, 5, noise, ZV_ALPHA_CHANNEL) == With_Alpha(noise, 255)) << width;
    }
}

TEST_F(PICT, WhatIsWrittenIsReadBackWithItsAlpha)
{
    for (long width : {1L, 2L, 3L, 62L, 63L, 4095L, 4096L, 8191L}) {
        Bytes const noise = Random_Pixels(width, 3, 1), patches = Patches(width, 3, 9, 1);
        for (Bytes const& pixels : {noise, patches}) {
            ClipPtr const clip = Create(format, "a.pct", width, 3, 25.0);
            ASSERT_TRUE(Add_Frame_At(clip.get(), 0, pixels));
            EXPECT_TRUE(Module_Frame(Open(environment.Spec("a.pct")).get(), 0) == pixels) << width;
        }
    }
}

TEST_F(PICT, AWrittenFileIsOneDirectBitmapBehindZeros)
{
    {
        ClipPtr const clip = Create(format, "a.pct", 3, 2, 25.0, ZV_ALPHA_NONE);
        EXPECT_FALSE(std::filesystem::exists(environment.Path("a.pct"))) << "it comes with its frame";
        ASSERT_EQ(clip->VideoParams->Size, 14);
        Bytes const options(static_cast<uint8_t*>(clip->VideoParams->Data),
                            static_cast<uint8_t*>(clip->VideoParams->Data) + 14);
        EXPECT_EQ(options, (Bytes{' ', 'w', 'a', 'r', 0, 0, 0, 0, 0, 0, 0xFF, 3, 0, 0}));
        ASSERT_TRUE(Add_Frame_At(clip.get(), 0, With_Alpha(Bytes(24, 9), 50)));
    }
    Bytes const file = Read("a.pct");
    EXPECT_EQ(Head(file, headerSize), Bytes(headerSize));
    PictureBytes picture(3, 2);
    picture.Opcode(0x01).Put16(10).Put({0, 0, 0, 0, 0, 2, 0, 3});
    picture.Opcode(0x9A).Put32(255).Put16(0x800C).Put({0, 0, 0, 0, 0, 2, 0, 3}).Put16(0).Put16(4).Put32(0);
    picture.Put32(72 << 16).Put32(72 << 16).Put16(16).Put16(32).Put16(3).Put16(8).PutZeros(12);
    picture.Put({0, 0, 0, 0, 0, 2, 0, 3}).Put({0, 0, 0, 0, 0, 2, 0, 3}).Put16(0);
    picture.Put({2, 0xF8, 9}).Put({2, 0xF8, 9});
    picture.End();
    picture.bytes[1] = static_cast<uint8_t>(picture.bytes.size());
    EXPECT_EQ(Bytes(file.begin() + headerSize, file.end()), picture.bytes);
    EXPECT_EQ(Type_Of("a.pct"), ZV_FourCC("PICT"));
}

TEST_F(PICT, DeepFramesAreWrittenAndReadInEightBits)
{
    Bytes const pixels = Random_Pixels(6, 5, 1);
    BitmapPtr const deep = Make_Bitmap(6, 5, {}, ZV_BITMAP_RGBA16);
    CopyBitmapZV(Make_Bitmap(6, 5, pixels).get(), deep.get(), 0, 0, -1, -1, 0, 0);
    {
        ClipPtr const clip = Create(format, "a.pct", 6, 5, 25.0);
        EXPECT_TRUE(format->AddFrame(clip.get(), deep.get(), 0, nullptr));
        EXPECT_FALSE(format->AddFrame(clip.get(), Make_Bitmap(6, 5, {}, ZV_BITMAP_MONO8).get(), 0, nullptr));
    }
    ClipPtr const clip = Open(environment.Spec("a.pct"));
    BitmapPtr const read = Make_Bitmap(6, 5, {}, ZV_BITMAP_RGBA16);
    ZVRectT<long> rect;
    ASSERT_TRUE(format->GetFrame(clip.get(), read.get(), 0, &rect, 6, 5, 0, nullptr, 0));
    EXPECT_EQ(Pixels_Of(*read), Pixels_Of(*deep));
}

TEST_F(PICT, AFrameIsDrawnAtItsSizeAndOffset)
{
    PictureBytes picture(4, 2);
    ClipPtr const clip = Open_Picture(picture.Rect(0x31, 1, 1, 3, 2));
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->AlphaType, ZV_ALPHA_NONE) << "no bitmap";
    BitmapPtr const bitmap = Make_Bitmap(4, 4);
    ZVRectT<long> offset{2, -1, 0, 0};
    ASSERT_TRUE(format->GetFrame(clip.get(), bitmap.get(), 0, &offset, 8, 2, 0, nullptr, 0));
    EXPECT_EQ(Art(*bitmap), "..../..../####/....");
}

TEST_F(PICT, ClosingLetsAClipBeOpenedAgain)
{
    PictureBytes picture(4, 2);
    ClipPtr const clip = Open_Picture(picture);
    EXPECT_EQ(clip->ModuleData, reinterpret_cast<void*>(1));
    CloseClipZV(clip.get());
    EXPECT_FALSE(clip->ModuleData);
    std::filesystem::remove(environment.Path("a.pct"));
    EXPECT_FALSE(OpenClipZV(clip.get(), nullptr));
}

TEST_F(PICT, AFileWithoutAPictureIsRefused)
{
    PictureBytes picture(4, 2);
    Bytes const whole = ByteWriter{}.PutZeros(headerSize).Put(picture.End()).bytes;
    for (std::size_t length : {0, 1, 511, 512, 513, 522, 525})
        EXPECT_FALSE(Open(Write("cut.pct", Head(whole, length)))) << length;
    EXPECT_TRUE(Open(Write("cut.pct", Head(whole, 526))));
    EXPECT_FALSE(Open(Write("other.pct", Random_Bytes(1, 2000))));
    EXPECT_FALSE(Open(Write("other.pcs", Random_Bytes(1, 2000))));
}

TEST_F(PICT, AWriteThatCannotBeDoneAnswers0)
{
    for (auto const& [module, name] : {std::pair{format, "a.pct"}, {animation, "a.pcs"}}) {
        ClipPtr const clip = Create(module, name, 40, 40, 25.0);
        Bytes const noise = Random_Pixels(40, 40, 1);
        for (rlim_t size : {400u, 520u, 3000u}) {
            FileSizeLimit const full(size);
            SetError(0);
            EXPECT_FALSE(Add_Frame_At(clip.get(), 0, noise)) << name << size;
            EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
        }
        EXPECT_EQ(clip->RawFrames, 0);
        EXPECT_TRUE(Add_Frame_At(clip.get(), 0, noise)) << "the disk has room again";
        EXPECT_TRUE(Module_Frame(clip.get(), 0) == noise);
    }
}

TEST_F(PICT, CompressedWithoutLossAFrameComesBackExactly)
{
    for (uint32_t codec : {ZV_FourCC("png "), ZV_FourCC("rle ")})
        for (auto const& [width, height] : {std::pair{1L, 1L}, {33L, 7L}, {5000L, 3L}})
            for (uint8_t alphaType : {ZV_ALPHA_CHANNEL, ZV_ALPHA_NONE}) {
                Bytes const noise = Random_Pixels(width, height, 1);
                {
                    ClipPtr const clip = Create(format, "a.pct", width, height, 25.0, alphaType);
                    Choose(clip, codec, 1023);
                    ASSERT_TRUE(Add_Frame_At(clip.get(), 0, noise));
                }
                ClipPtr const clip = Open(environment.Spec("a.pct"));
                ASSERT_TRUE(clip && clip->AlphaType == alphaType) << codec << " " << width;
                EXPECT_TRUE(Module_Frame(clip.get(), 0) == (alphaType ? noise : With_Alpha(noise, 255)))
                    << codec << " " << width;
            }
}

TEST_F(PICT, JPEGFramesAreAsGoodAsTheirQuality)
{
    long const width = 1200, height = 60;  // wide enough for movies to take other colours
    Bytes const pixels = Shades(width, height);
    std::size_t sizeBefore = 0;
    double errorBefore = 255;
    for (uint32_t quality : {0u, 256u, 512u, 768u, 1023u}) {
        for (ZVFormatDesc* module : {format, animation}) {
            ClipPtr const clip = Create(module, module == format ? "a.pct" : "a.pcs", width, height, 25.0);
            Choose(clip, ZV_FourCC("jpeg"), quality);
            ASSERT_TRUE(Add_Frame_At(clip.get(), 0, pixels));
        }
        Bytes const seen = Module_Frame(Open(environment.Spec("a.pct")).get(), 0);
        EXPECT_TRUE(Module_Frame(Open(environment.Spec("a.pcs")).get(), 0) == seen);
        auto const [error, largest] = Differences(seen, pixels);
        EXPECT_LT(error, errorBefore) << quality;
        EXPECT_LE(largest, quality == 1023 ? 6 : 90) << quality;
        errorBefore = error;

        Bytes const file = Read("a.pct");
        EXPECT_GT(file.size(), sizeBefore) << quality;
        sizeBefore = file.size();
        Bytes const start = {0xFF, 0xD8, 0xFF};
        Write("a.jpg", {std::search(file.begin(), file.end(), start.begin(), start.end()), file.end() - 2});
        ASSERT_TRUE(Convert("a.jpg -depth 8 rgba:seen"));
        EXPECT_LT(Differences(Read("seen"), pixels).first, error + 1) << quality << ", another decoder";
    }
}

TEST_F(PICT, ACodecThatCannotBeHadLeavesFilesAlone)
{
    for (char const* code : {"abcd", "avc1", "FFV1"})
        for (auto const& [module, name] : {std::pair{format, "a.pct"}, {animation, "a.pcs"}}) {
            ClipPtr const clip = Create(module, name, 8, 8, 25.0);
            Bytes const before = Read(name), noise = Random_Pixels(8, 8, 1);
            uint32_t packed = 0;
            for (int i = 0; i < 4; ++i)
                packed = packed << 8 | static_cast<unsigned char>(code[i]);
            Choose(clip, packed, 512);
            SetError(0);
            EXPECT_FALSE(Add_Frame_At(clip.get(), 0, noise));
            EXPECT_EQ(GetErrorZV(), ZV_ERR_MOVIE_FRAME);
            EXPECT_STREQ(GetErrorStringZV(), code);
            EXPECT_EQ(Read(name), before);
            EXPECT_EQ(clip->RawFrames, 0);
            Choose(clip, ZV_FourCC("raw "), 0);
            EXPECT_TRUE(Add_Frame_At(clip.get(), 0, noise) && Module_Frame(clip.get(), 0) == noise);
            std::filesystem::remove(environment.Path(name));
        }
}

TEST_F(PICT, AnimationsAreResourcesInOrder)
{
    environment.Write("a.pcs", "an older file");
    {
        ClipPtr const clip = Create(animation, "a.pcs", 30, 20, 25.0);
        ASSERT_TRUE(clip);
        for (unsigned i = 0; i < 3; ++i) {
            ASSERT_TRUE(Add_Frame_At(clip.get(), i, Random_Pixels(30, 20, i)));
            EXPECT_EQ(clip->RawFrames, i + 1);
        }
    }
    std::string const spec = environment.Spec("a.pcs");
    auto file = ZVResourceFile::Open(spec.c_str(), ZVFilePermReadWrite);
    ASSERT_TRUE(file);
    for (long i = 0; i < 3; ++i) {
        ResourceEntry const& entry = file->Entries()[static_cast<std::size_t>(i)];
        EXPECT_TRUE(entry.type == ZV_FourCC("PICT") && entry.id == 128 + i && entry.name.empty()) << i;
    }
    ClipPtr const clip = Open(spec);
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Format, animation);
    EXPECT_TRUE(clip->Width == 30 && clip->Height == 20 && clip->RawFrames == 3);
    EXPECT_EQ(clip->AlphaType, ZV_ALPHA_CHANNEL);
    for (unsigned i : {2u, 0u, 1u})
        EXPECT_EQ(Clip_Frame(clip.get(), i), Random_Pixels(30, 20, i));
    EXPECT_EQ(Module_Frame(clip.get(), 3), Bytes{});
    EXPECT_EQ(Module_Frame(clip.get(), -1), Bytes{});
    EXPECT_EQ(Type_Of("a.pcs"), ZV_FourCC("PICS"));

    // The order is that of the map, whatever the numbers are; other types do not count.
    Bytes const sound = {1, 2, 3};
    PictureBytes other(30, 20);
    ASSERT_TRUE(file->Add(ZV_FourCC("snd "), 128, "boing", sound));
    ASSERT_TRUE(file->Add(ZV_FourCC("PICT"), 5, "", other.Rect(0x31, 0, 0, 30, 20).End()));
    ASSERT_TRUE(file->Save());
    file.reset();
    ClipPtr const longer = Open(spec);
    EXPECT_EQ(longer->RawFrames, 4);
    EXPECT_EQ(Clip_Frame(longer.get(), 3), With_Alpha(Bytes(2400), 255));
}

}  // namespace
