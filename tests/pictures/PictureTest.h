// What the tests of pictures share: the module, the programs that write and read pictures, and pixels as the
// module delivers them.
#pragma once

#include "formats/FormatTest.h"

#include <OpenImageIO/imageio.h>

#include <cstdio>

class PictureTest : public FormatTest {
protected:
    PictureTest() { Add_Library_Formats(nullptr); }

    static ZVFormatDesc* Pictures() { return Module(ZV_FourCC("PNGf")); }

    std::string Path(std::string const& name) const { return environment.Path(name); }

    /// Runs a line of shell in the directory of the test.
    void Run(std::string const& line) const
    {
        ASSERT_EQ(std::system(("cd '" + Path("") + "' && { " + line + "; } >log 2>&1").c_str()), 0)
            << line << '\n'
            << As_Text(Read("log"));
    }

    /// A picture of random values up to `greatest`, as a portable pixmap (3 channels), map with alpha (4) or
    /// greymap (1).
    void Write_Pixmap(std::string const& name, long width, long height, long greatest, int channels) const
    {
        char header[128];
        if (channels == 4)
            std::snprintf(header, sizeof header,
                          "P7\nWIDTH %ld\nHEIGHT %ld\nDEPTH 4\nMAXVAL %ld\nTUPLTYPE RGB_ALPHA\nENDHDR\n",
                          width, height, greatest);
        else
            std::snprintf(header, sizeof header, "P%d\n%ld %ld\n%ld\n", channels == 3 ? 6 : 5, width, height,
                          greatest);
        ByteWriter file;
        file.Put(header);
        Bytes const random = Random_Bytes(7, static_cast<std::size_t>(2 * width * height * channels));
        for (std::size_t i = 0; i < random.size(); i += 2) {
            long const value = (random[i] << 8 | random[i + 1]) % (greatest + 1);
            greatest > 255 ? file.Put16(value) : file.Put8(value);
        }
        Write(name, file.bytes);
    }

    /// A clip with the alpha that the file states.
    ClipPtr Open_Picture(std::string const& name) const
    {
        ClipPtr clip{OpenClipZV(environment.Spec(name).c_str(), ZV_OPEN_NO_SEQUENCE_DIALOG, 1, 0)};
        if (clip) BeginClipIOZV(clip.get(), nullptr);
        return clip;
    }

    static ClipPtr Open_Layer(ZVClip* clip, long number)
    {
        ClipPtr layer{OpenClipZV(clip->FileName, ZV_OPEN_SOURCE_CLIP, clip, ZV_OPEN_LAYER, number, 0)};
        if (layer) BeginClipIOZV(layer.get(), nullptr);
        return layer;
    }

    /// The pixels as they stand in the file, in the clip's type; null when they cannot be read.
    static BitmapPtr Stored_Frame(ZVClip* clip, long frame = 0)
    {
        BitmapPtr bitmap = Make_Bitmap(clip->Width, clip->Height, {}, GetBitmapTypeZV(clip));
        ZVRectT<long> whole{};
        AsyncParams async;
        if (!Plugin_GetFrame(clip, bitmap.get(), frame, &whole, clip->Width, clip->Height, clip->Layer,
                             async))
            return nullptr;
        return bitmap;
    }

    /// One channel of a pixel: a whole number, or the value of a float.
    static double Value(ZVBitmap const& bitmap, long x, long y, int channel)
    {
        unsigned char const* const pixel = bitmap.Pixels + y * bitmap.RowBytes + x * bitmap.PackSize;
        switch (bitmap.Type) {
        case ZV_BITMAP_RGBA8: return pixel[channel];
        case ZV_BITMAP_RGBA10: return reinterpret_cast<ZVPixelRGBA10 const*>(pixel)->Get(channel);
        case ZV_BITMAP_RGBA12: return reinterpret_cast<ZVPixelRGBA12 const*>(pixel)->Get(channel);
        case ZV_BITMAP_RGBA16: return reinterpret_cast<ZVPixelRGBA16 const*>(pixel)->Get(channel);
        default: return reinterpret_cast<ZVPixelRGBAFloat const*>(pixel)->Get(channel);
        }
    }

    /// Whether a bitmap of whole numbers is what GraphicsMagick reads in a file.
    void Expect_Like_Magick(ZVBitmap const& bitmap, std::string const& name) const
    {
        Run("gm convert '" + name + "' miff:- | gm convert miff:- -depth 16 -endian MSB rgba:reference");
        Bytes const reference = Read("reference");
        ASSERT_EQ(reference.size(), static_cast<std::size_t>(8L * bitmap.Width * bitmap.Height)) << name;
        // It takes the alpha of DPX for opacity, which other programs do not.
        int const channels = name.ends_with(".dpx") ? 3 : 4;
        long const shift = 16 - GetBitsPerChannelZV(bitmap.Type);
        std::size_t at = 0;
        for (long y = 0; y < bitmap.Height; ++y)
            for (long x = 0; x < bitmap.Width; ++x)
                for (int channel = 0; channel < 4; ++channel, at += 2) {
                    if (channel >= channels) continue;
                    ASSERT_EQ(Value(bitmap, x, y, channel), (reference[at] << 8 | reference[at + 1]) >> shift)
                        << name << ": " << x << ' ' << y << ' ' << channel;
                }
    }

    /// A float picture whose values are exact in half floats too, some of them above 1.
    static float Float_Value(long x, long y, int channel)
    {
        return static_cast<float>((x * 7 + y * 13 + channel * 5) % 64) / 32.0f;
    }

    /// Writes it by OpenImageIO, with channels of these names.
    void Write_Float_Picture(std::string const& name, OIIO::ImageSpec spec,
                             std::vector<std::string> const& channels) const
    {
        spec.nchannels = static_cast<int>(channels.size());
        spec.channelnames = channels;
        std::vector<float> values;
        for (long y = 0; y < spec.height; ++y)
            for (long x = 0; x < spec.width; ++x)
                for (int channel = 0; channel < spec.nchannels; ++channel)
                    values.push_back(Float_Value(x, y, channel));
        auto const output = OIIO::ImageOutput::create(Path(name));
        ASSERT_TRUE(output && output->open(Path(name), spec) &&
                    output->write_image(OIIO::TypeDesc::FLOAT, values.data()) && output->close());
    }
};
