// Pictures that other programs wrote.
#include "PictureTest.h"

namespace {

struct ProgramCase {
    char const* line;  ///< makes `file` out of ppmN, pamN or pgmN, of N bits
    char const* file;
    long depth;
    bool hasAlpha;
};

// The size is odd, so that rows end anywhere.
ProgramCase const programCases[] = {
    {"gm convert ppm8 a.png", "a.png", 8, false},
    {"gm convert ppm8 a.tif", "a.tif", 8, false},
    {"gm convert ppm8 -compress None -endian MSB a.tiff", "a.tiff", 8, false},
    {"gm convert ppm8 -quality 85 a.jpg", "a.jpg", 8, false},
    {"gm convert ppm8 a.tga", "a.tga", 8, false},
    {"gm convert ppm8 +compress a.tga", "a.tga", 8, false},
    {"gm convert ppm8 a.bmp", "a.bmp", 8, false},
    {"gm convert ppm8 -depth 8 a.dpx", "a.dpx", 8, false},
    {"gm convert ppm10 -depth 10 a.dpx", "a.dpx", 10, false},
    {"gm convert ppm12 -depth 12 a.dpx", "a.dpx", 12, false},
    {"gm convert ppm16 -depth 16 a.dpx", "a.dpx", 16, false},
    {"gm convert ppm16 -depth 16 -endian LSB a.dpx", "a.dpx", 16, false},
    {"gm convert ppm16 a.png", "a.png", 16, false},
    {"gm convert ppm16 a.tif", "a.tif", 16, false},
    {"gm convert pam8 a.png", "a.png", 8, true},
    {"gm convert pam8 a.tif", "a.tif", 8, true},
    {"gm convert pam8 a.tga", "a.tga", 8, true},
    {"gm convert pam8 -depth 8 a.dpx", "a.dpx", 8, true},
    {"gm convert pam16 a.png", "a.png", 16, true},
    {"gm convert pam16 a.tif", "a.tif", 16, true},
    {"gm convert pgm8 a.png", "a.png", 8, false},
    {"gm convert pgm16 -type GrayScale a.tif", "a.tif", 16, false},
    {"gm convert pam8 -type GrayScaleMatte a.png", "a.png", 8, true},
    {"gm convert ppm8 -type Palette +compress a.bmp", "a.bmp", 8, false},
    {"gm convert ppm8 -type Palette a.png", "a.png", 8, false},
    {"oiiotool ppm8 -d uint8 -o a.png", "a.png", 8, false},
    {"oiiotool ppm8 -d uint8 --tile 16 16 -o a.tif", "a.tif", 8, false},
    {"oiiotool ppm8 -d uint8 -o a.tga", "a.tga", 8, false},
    {"oiiotool ppm8 -d uint8 -o a.bmp", "a.bmp", 8, false},
    {"oiiotool ppm10 -d uint10 -o a.tif", "a.tif", 10, false},
    {"oiiotool ppm12 -d uint12 -o a.tif", "a.tif", 12, false},
    {"oiiotool ppm10 -d uint10 -o a.dpx", "a.dpx", 10, false},
    {"oiiotool ppm16 -d uint16 -o a.png", "a.png", 16, false},
    {"gm convert pam16 b.tif; tiffcp -t -w 16 -l 16 -c lzw b.tif a.tif", "a.tif", 16, true},
    {"gm convert ppm8 b.tif; tiffcp -p separate -c packbits b.tif a.tif", "a.tif", 8, false},
    {"gm convert ppm8 b.tif; tiffcp -8 -B b.tif a.tif", "a.tif", 8, false},
};

}  // namespace

using PicturesRead = PictureTest;

TEST_F(PicturesRead, GiveThePixelsOfOtherPrograms)
{
    for (long bits : {8, 10, 12, 16}) {
        std::string const digits = std::to_string(bits);
        Write_Pixmap("ppm" + digits, 37, 11, (1 << bits) - 1, 3);
        Write_Pixmap("pam" + digits, 37, 11, (1 << bits) - 1, 4);
        Write_Pixmap("pgm" + digits, 37, 11, (1 << bits) - 1, 1);
    }
    for (ProgramCase const& row : programCases) {
        SCOPED_TRACE(row.line);
        std::filesystem::remove(Path(row.file));
        Run(row.line);
        ClipPtr const clip = Open_Picture(row.file);
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->Format, Pictures());
        EXPECT_EQ(clip->BitDepth, row.depth);
        EXPECT_EQ(clip->AlphaType, row.hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
        EXPECT_EQ(clip->AlphaPremultiplied, 0);
        BitmapPtr const bitmap = Stored_Frame(clip.get());
        ASSERT_TRUE(bitmap);
        Expect_Like_Magick(*bitmap, row.file);
    }
}

TEST_F(PicturesRead, GiveTheFloatsOfOpenEXR)
{
    OIIO::ImageSpec spec(37, 11, 4, OIIO::TypeDesc::HALF);
    spec.attribute("PixelAspectRatio", 2.0f);
    int const rate[] = {24000, 1001};
    spec.attribute("FramesPerSecond", OIIO::TypeRational, rate);
    Write_Float_Picture("a.exr", spec, {"R", "G", "B", "A"});
    spec.format = OIIO::TypeDesc::FLOAT;
    Write_Float_Picture("b.exr", spec, {"R", "G", "B", "A"});
    Run("exrmaketiled -o -t 16 16 a.exr c.exr; oiiotool a.exr -d float -o d.tif; oiiotool a.exr --ch B,R,A,G "
        "-o e.exr");
    for (char const* name : {"a.exr", "b.exr", "c.exr", "d.tif", "e.exr"}) {
        SCOPED_TRACE(name);
        ClipPtr const clip = Open_Picture(name);
        ASSERT_TRUE(clip);
        EXPECT_EQ(clip->BitDepth, 32);
        EXPECT_EQ(clip->AlphaType, ZV_ALPHA_CHANNEL);
        EXPECT_EQ(clip->AlphaPremultiplied, 1) << "as both formats say";
        EXPECT_NEAR(clip->PixelAspect, 2.0, 1e-6);
        if (std::string_view(name).ends_with("exr")) {
            EXPECT_DOUBLE_EQ(clip->FrameRate, 24000.0 / 1001);
        }
        BitmapPtr const bitmap = Stored_Frame(clip.get());
        ASSERT_TRUE(bitmap);
        for (long y = 0; y < 11; ++y)
            for (long x = 0; x < 37; ++x)
                for (int channel = 0; channel < 4; ++channel)
                    ASSERT_EQ(Value(*bitmap, x, y, channel), Float_Value(x, y, channel)) << x << ' ' << y;
    }
}

TEST_F(PicturesRead, ShowOpenEXRThroughItsWindow)
{
    OIIO::ImageSpec spec(6, 4, 4, OIIO::TypeDesc::HALF);
    spec.x = 12, spec.y = 19;
    spec.full_x = 10, spec.full_y = 20, spec.full_width = 7, spec.full_height = 5;
    Write_Float_Picture("a.exr", spec, {"R", "G", "B", "A"});
    ClipPtr const clip = Open_Picture("a.exr");
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Width, 7);
    EXPECT_EQ(clip->Height, 5);
    BitmapPtr const bitmap = Stored_Frame(clip.get());
    ASSERT_TRUE(bitmap);
    for (long y = 0; y < 5; ++y)
        for (long x = 0; x < 7; ++x) {
            bool const isInside = x >= 2 && y < 3;
            EXPECT_EQ(Value(*bitmap, x, y, 1), isInside ? Float_Value(x - 2, y + 1, 1) : 0.0f)
                << x << ' ' << y;
        }
}

TEST_F(PicturesRead, SeriesAreClips)
{
    for (int i : {1, 2, 4}) {
        std::string const name = "s" + std::to_string(i);
        Write_Pixmap("source", i == 4 ? 20 : 10, 6, 255, 3);
        Run("gm convert source -modulate " + std::to_string(100 - i) + " " + name + ".png");
    }
    ClipPtr const clip = Open_Picture("s2.png");
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Frames, 3);
    EXPECT_EQ(clip->Width, 10);
    for (long frame : {0, 1}) {
        BitmapPtr const bitmap = Stored_Frame(clip.get(), frame);
        ASSERT_TRUE(bitmap);
        Expect_Like_Magick(*bitmap, "s" + std::to_string(frame + 1) + ".png");
    }
    EXPECT_TRUE(Stored_Frame(clip.get(), 2)) << "one of another size is scaled";
    std::filesystem::remove(Path("s2.png"));
    EXPECT_FALSE(Stored_Frame(clip.get(), 1));
}

TEST_F(PicturesRead, DamagedFilesAreRefusedOrBackground)
{
    Write_Pixmap("ppm", 64, 64, 255, 3);
    OIIO::ImageSpec const spec(64, 64, 3, OIIO::TypeDesc::HALF);
    Write_Float_Picture("a.exr", spec, {"R", "G", "B"});
    Run("for e in png tif jpg tga bmp dpx; do gm convert ppm a.$e; done");
    for (char const* extension : {"png", "tif", "jpg", "tga", "bmp", "dpx", "exr"}) {
        std::string const name = std::string("a.") + extension;
        Bytes const whole = Read(name);
        for (std::size_t part = 0; part < 40; ++part) {
            Bytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * part / 40));
            std::string const damaged = std::string("cut.") + extension;
            Write(damaged, bytes);
            if (ClipPtr const clip = Open_Picture(damaged)) Stored_Frame(clip.get());
        }
    }
    // A megabyte of nothing claims to be a picture of a gigabyte.
    ByteWriter png;
    png.Put("\x89PNG\r\n\x1A\n").Put32(13).Put("IHDR").Put32(16000).Put32(16000);
    png.Put8(8).Put8(6).PutZeros(3).Put32(0x0C3C7A9D);
    Write("big.png", png.bytes);
    EXPECT_FALSE(Open_Picture("big.png"));
    Write("text.png", ByteWriter().Put("no picture at all").bytes);
    EXPECT_FALSE(Open_Picture("text.png"));
    EXPECT_EQ(GetErrorZV(), ZV_ERR_CLIP);
}

TEST_F(PicturesRead, PhotoshopFilesHaveLayersOfTheirOwnSize)
{
    // 3 by 2 of grey steps, and a red layer of 2 by 1 at (1, 1) with alpha.
    ByteWriter layer;
    layer.Put16(1).Put32(1).Put32(1).Put32(2).Put32(3).Put16(4);
    for (long channel : {-1, 0, 1, 2})
        layer.Put16(channel).Put32(4);
    layer.Put("8BIMnorm").Put8(255).PutZeros(3).Put32(12).PutZeros(8).Put8(3).Put("sky");
    for (long value : {128, 200, 0, 0})
        layer.Put16(0).Put8(value).Put8(value);
    ByteWriter file;
    file.Put("8BPS").Put16(1).PutZeros(6).Put16(3).Put32(2).Put32(3).Put16(8).Put16(3).PutZeros(8);
    file.Put32(static_cast<long>(layer.bytes.size()) + 8)
        .Put32(static_cast<long>(layer.bytes.size()))
        .Put(layer.bytes)
        .Put32(0)
        .Put16(0);
    for (long i = 0; i < 18; ++i)
        file.Put8(10 * i);
    Write("a.psd", file.bytes);
    ClipPtr const clip = Open_Picture("a.psd");
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Width, 3);
    BitmapPtr const flat = Stored_Frame(clip.get());
    ASSERT_TRUE(flat);
    EXPECT_EQ(Pixels_Of(*flat), (Bytes{0,  60, 120, 255, 10, 70,  130, 255, 20, 80,  140, 255,
                                       30, 90, 150, 255, 40, 100, 160, 255, 50, 110, 170, 255}));
    ASSERT_EQ(List_Entries(&clip->Layers), 1);
    EXPECT_STREQ(List_First(&clip->Layers)->name, "sky");
    ClipPtr const sky = Open_Layer(clip.get(), 1);
    ASSERT_TRUE(sky);
    EXPECT_EQ(Pixels_Of(*Stored_Frame(sky.get())), (Bytes{200, 0, 0, 128, 200, 0, 0, 128}));
}

TEST_F(PicturesRead, GoByWhatIsInTheFile)
{
    Write_Pixmap("ppm", 5, 4, 255, 3);
    Run("gm convert ppm a.jpg; mv a.jpg b.png");
    ClipPtr const clip = Open_Picture("b.png");
    ASSERT_TRUE(clip);
    EXPECT_EQ(clip->Width, 5);
}
