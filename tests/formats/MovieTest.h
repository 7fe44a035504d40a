// Movies made, looked at and decoded by the ffmpeg commands, and clips of the movie module.
#pragma once

#include "FormatTest.h"
#include "PlanarFrame.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

/// The settings that frames are converted with which have no brightness and colour differences in planes.
inline constexpr char scalerFlags[] =
    "-sws_flags bicubic+accurate_rnd+full_chroma_int+full_chroma_inp+bitexact";

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
        std::string const colours = Probe(name, "pix_fmt,color_range,color_space");
        std::string const layout = colours.substr(0, colours.find_first_of(",\n"));
        std::vector<Values> frames;
        if (layout.starts_with("yuv")) {
            PlanarFrame const planes(width, height, layout, colours.find(",pc") != colours.npos,
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
