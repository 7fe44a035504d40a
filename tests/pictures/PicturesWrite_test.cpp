// Pictures that the module writes.
#include "PictureTest.h"

#include <sys/resource.h>

namespace {

struct WriteCase {
    char const* name;
    ZVBitmapType type;
    bool hasAlpha;
    bool isPremultiplied;  ///< wanted by the clip
    long depth;            ///< read again
    bool readsPremultiplied;
};

WriteCase const writeCases[] = {
    {"a.png", ZV_BITMAP_RGBA8, true, false, 8, false},
    {"a.png", ZV_BITMAP_RGBA8, false, false, 8, false},
    {"a.png", ZV_BITMAP_RGBA16, true, true, 16, false},
    {"a.tif", ZV_BITMAP_RGBA8, true, false, 8, false},
    {"a.tif", ZV_BITMAP_RGBA8, true, true, 8, true},
    {"a.tiff", ZV_BITMAP_RGBA10, false, false, 10, false},
    {"a.tif", ZV_BITMAP_RGBA12, true, false, 12, false},
    {"a.tif", ZV_BITMAP_RGBA16, false, false, 16, false},
    {"a.tif", ZV_BITMAP_RGBAFLOAT, true, false, 32, false},
    {"a.exr", ZV_BITMAP_RGBAFLOAT, true, false, 32, true},
    {"a.exr", ZV_BITMAP_RGBAFLOAT, false, false, 32, false},
    {"a.dpx", ZV_BITMAP_RGBA8, false, false, 8, false},
    {"a.dpx", ZV_BITMAP_RGBA10, false, false, 10, false},
    {"a.dpx", ZV_BITMAP_RGBA12, true, false, 12, false},
    {"a.dpx", ZV_BITMAP_RGBA16, false, false, 16, false},
    {"a.tga", ZV_BITMAP_RGBA8, true, false, 8, false},
    {"a.tga", ZV_BITMAP_RGBA8, false, false, 8, false},
    {"a.bmp", ZV_BITMAP_RGBA8, true, false, 8, false},
    {"a.bmp", ZV_BITMAP_RGBA8, false, false, 8, false},
};

}  // namespace

class PicturesWrite : public PictureTest {
protected:
    /// A picture of random values, alpha full where it is not wanted and never 0.
    static BitmapPtr Random_Picture(long width, long height, ZVBitmapType type, bool hasAlpha)
    {
        BitmapPtr bitmap = Make_Bitmap(width, height, {}, type);
        Bytes const random = Random_Bytes(3, static_cast<std::size_t>(4 * width * height));
        std::size_t at = 0;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < width; ++x) {
                ZVFloatRGB const pixel{random[at] / 256.0, random[at + 1] / 256.0, random[at + 2] / 256.0,
                                       hasAlpha ? (1 << random[at + 3] % 3) / 4.0 : 1.0};
                WriteFloatPixelZV(bitmap.get(), x, y, &pixel);
                at += 4;
            }
        return bitmap;
    }

    ClipPtr Create_Picture(std::string const& name, ZVBitmap const& bitmap,
                           uint8_t alphaType = ZV_ALPHA_CHANNEL) const
    {
        ClipPtr clip = New_Output(nullptr, name, bitmap.Width, bitmap.Height, 25, alphaType);
        clip->BitDepth = GetBitsPerChannelZV(bitmap.Type);
        clip->PixelAspect = 1.5;
        return clip;
    }

    /// Writes a picture in one go.
    static long Write_Picture(ZVClip* clip, ZVBitmap* bitmap)
    {
        return CreateClipZV(clip, 0) && BeginClipIOZV(clip, nullptr) && Add_Frame_At(clip, 0, bitmap);
    }
};

TEST_F(PicturesWrite, ComeBackAsTheyWere)
{
    for (WriteCase const& row : writeCases) {
        SCOPED_TRACE(std::string(row.name) + " of type " + std::to_string(row.type));
        BitmapPtr const bitmap = Random_Picture(37, 11, row.type, row.hasAlpha);
        ClipPtr const clip =
            Create_Picture(row.name, *bitmap, row.hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE);
        clip->AlphaPremultiplied = row.isPremultiplied;
        ASSERT_TRUE(Write_Picture(clip.get(), bitmap.get()));
        EXPECT_EQ(clip->RawFrames, 1);
        ClipPtr const again = Open_Picture(row.name);
        ASSERT_TRUE(again);
        EXPECT_EQ(again->BitDepth, row.depth);
        EXPECT_EQ(again->AlphaPremultiplied, row.readsPremultiplied);
        BitmapPtr const read = Make_Bitmap(37, 11, {}, row.type);
        ASSERT_TRUE(GetFrameZV(again.get(), read.get(), nullptr, nullptr, nullptr));
        // Mixing with black and back is exact where no bits get lost.
        double const slack = !row.readsPremultiplied ? 0 : row.depth == 32 ? 1e-6 : 4;
        for (long y = 0; y < 11; ++y)
            for (long x = 0; x < 37; ++x)
                for (int channel = 0; channel < 4; ++channel)
                    ASSERT_NEAR(Value(*read, x, y, channel), Value(*bitmap, x, y, channel), slack)
                        << x << ' ' << y << ' ' << channel;
        // GraphicsMagick has no floats, and takes premultiplied colours apart.
        if (row.depth < 32 && !row.readsPremultiplied)
            Expect_Like_Magick(*Stored_Frame(again.get()), row.name);
        std::filesystem::remove(Path(row.name));
    }
}

TEST_F(PicturesWrite, OpenEXRIsReadByOtherPrograms)
{
    BitmapPtr const bitmap = Random_Picture(8, 5, ZV_BITMAP_RGBA8, true);
    ClipPtr const clip = Create_Picture("a.exr", *bitmap);
    ASSERT_TRUE(Write_Picture(clip.get(), bitmap.get()));
    EXPECT_EQ(clip->AlphaPremultiplied, 1);
    Run("exrheader a.exr >header; grep -q '16-bit floating' header && grep -q 'pixelAspectRatio.*: 1.5' "
        "header && "
        "grep -q 'framesPerSecond.*25' header; oiiotool a.exr --ch R,G,B,A --unpremult -d uint8 -o a.tif");
    BitmapPtr const again = Stored_Frame(Open_Picture("a.tif").get());
    for (int i = 0; i < bitmap->Size; ++i)
        ASSERT_NEAR(again->Pixels[i], bitmap->Pixels[i], 1);
}

TEST_F(PicturesWrite, JPEGTakesAQuality)
{
    BitmapPtr const bitmap = Random_Picture(64, 64, ZV_BITMAP_RGBA8, false);
    std::uintmax_t sizes[2];
    for (int i : {0, 1}) {
        ClipPtr const clip = Create_Picture("a.jpg", *bitmap, ZV_ALPHA_NONE);
        EXPECT_FALSE(GetExportPropertiesZV(clip.get()) & ZV_FORMAT_ALPHA);
        ZVPictureOptions const options{0, i ? 95 : 10};
        auto* const block =
            static_cast<unsigned char*>(AllocMemZV(sizeof(ZVFormatParams) + sizeof options, 0));
        std::memcpy(block + sizeof(ZVFormatParams), &options, sizeof options);
        clip->Format = Pictures();
        clip->VideoParams = new (block) ZVFormatParams{block + sizeof(ZVFormatParams), sizeof options};
        ASSERT_TRUE(Write_Picture(clip.get(), bitmap.get()));
        sizes[i] = std::filesystem::file_size(Path("a.jpg"));
    }
    EXPECT_LT(2 * sizes[0], sizes[1]);
    WriteJPEGZV(bitmap.get(), environment.Spec("b.jpg").c_str(), 95);
    BitmapPtr const first = Stored_Frame(Open_Picture("a.jpg").get());
    BitmapPtr const second = Stored_Frame(Open_Picture("b.jpg").get());
    EXPECT_EQ(std::memcmp(first->Pixels, second->Pixels, static_cast<std::size_t>(first->Size)), 0);
}

TEST_F(PicturesWrite, FailuresLeaveTheOldFile)
{
    namespace fs = std::filesystem;
    BitmapPtr const bitmap = Random_Picture(300, 300, ZV_BITMAP_RGBA8, false);
    for (char const* name : {"a.png", "a.tif", "a.jpg", "a.exr", "a.dpx", "a.tga", "a.bmp"}) {
        SCOPED_TRACE(name);
        Write(name, ByteWriter().Put("old").bytes);
        ClipPtr const clip = Create_Picture(name, *bitmap, ZV_ALPHA_NONE);
        {
            FileSizeLimit const limit(8000);
            EXPECT_FALSE(Write_Picture(clip.get(), bitmap.get()));
            EXPECT_NE(GetErrorZV(), ZV_ERR_NONE);
        }
        EXPECT_EQ(fs::file_size(Path(name)), 3U);
        fs::remove(Path(name));
    }
    fs::create_symlink("real.png", Path("link.png"));
    Write("real.png", ByteWriter().Put("old").bytes);
    ClipPtr const clip = Create_Picture("link.png", *bitmap, ZV_ALPHA_NONE);
    EXPECT_TRUE(Write_Picture(clip.get(), bitmap.get()));
    EXPECT_TRUE(fs::is_symlink(Path("link.png")));
    EXPECT_GT(fs::file_size(Path("real.png")), 3U);
    EXPECT_EQ(Type_Of("real.png"), ZV_FourCC("PNGf"));
    ClipPtr const photoshop = Create_Picture("a.psd", *bitmap, ZV_ALPHA_NONE);
    EXPECT_FALSE(Write_Picture(photoshop.get(), bitmap.get()));
    for (fs::directory_entry const& entry : fs::directory_iterator(Path("")))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".zv")) << "a left file";
}
