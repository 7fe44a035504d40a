// What the tests of the format modules share: clips and bitmaps that free themselves, files made byte by
// byte, and the entries of a module called directly.
#pragma once

#include "FileSizeLimit.h"
#include "TestBytes.h"
#include "TestEnvironment.h"

#include <cstring>
#include <memory>

struct TestDeleter {
    void operator()(ZVClip* clip) const { FreeClipZV(clip); }
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using ClipPtr = std::unique_ptr<ZVClip, TestDeleter>;
using BitmapPtr = std::unique_ptr<ZVBitmap, TestDeleter>;

/// Builds a file; numbers are big-endian.
class ByteWriter {
public:
    ByteWriter& Put8(long value)
    {
        bytes.push_back(static_cast<uint8_t>(value));
        return *this;
    }
    ByteWriter& Put16(long value) { return Put8(value >> 8).Put8(value); }
    ByteWriter& Put32(long value) { return Put16(value >> 16).Put16(value); }
    ByteWriter& PutFloat(float value)
    {
        uint32_t bits;
        std::memcpy(&bits, &value, sizeof(bits));
        return Put32(bits);
    }
    ByteWriter& Put(Bytes const& more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    ByteWriter& Put(char const* text)
    {
        bytes.insert(bytes.end(), text, text + std::strlen(text));
        return *this;
    }
    ByteWriter& PutZeros(std::size_t count)
    {
        bytes.insert(bytes.end(), count, uint8_t{0});
        return *this;
    }

    Bytes bytes;
};

class FormatTest : public EnvironmentTest {
protected:
    explicit FormatTest(TestEnvironment::Home home = TestEnvironment::Home::Program) : EnvironmentTest(home)
    {
        InitFormatModulesZV(nullptr);
    }

    /// The registered module that gives its files this type.
    static ZVFormatDesc* Module(uint32_t fileType)
    {
        for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
            auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
            if (desc->FileType == fileType) return desc;
        }
        return nullptr;
    }

    std::string Write(std::string const& name, Bytes const& bytes) const
    {
        return environment.Write(name, As_Text(bytes));
    }

    Bytes Read(std::string const& name) const { return Bytes_In_File(environment.Path(name)); }

    uint32_t Type_Of(std::string const& name) const
    {
        uint32_t type, creator;
        Get_FileInfo(environment.Spec(name).c_str(), &creator, &type);
        return type;
    }

    /// A clip of the library, its alpha left as the file has it; null when it cannot be opened.
    static ClipPtr Open(std::string const& spec)
    {
        ClipPtr clip{OpenClipZV(spec.c_str(), ZV_OPEN_NO_ALPHA_GUESS, 1, 0)};
        if (!clip) return nullptr;
        clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
        clip->AlphaPremultiplied = 0;
        BeginClipIOZV(clip.get(), nullptr);
        return clip;
    }

    /// A clip to be written, with straight alpha.
    ClipPtr New_Output(ZVFormatDesc* format, std::string const& name, long width, long height, double rate,
                       uint8_t alphaType = ZV_ALPHA_CHANNEL) const
    {
        ClipPtr clip{NewClipZV()};
        clip->Format = format;
        clip->FileName = CopyFileSpecZV(environment.Spec(name).c_str());
        clip->Width = width;
        clip->Height = height;
        clip->Media = ZV_MEDIA_VIDEO;
        clip->FrameRate = clip->FileFrameRate = rate;
        clip->AlphaType = alphaType;
        clip->AlphaPremultiplied = 0;
        clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
        return clip;
    }

    /// One that is being written.
    ClipPtr Create(ZVFormatDesc* format, std::string const& name, long width, long height, double rate,
                   uint8_t alphaType = ZV_ALPHA_CHANNEL) const
    {
        ClipPtr clip = New_Output(format, name, width, height, rate, alphaType);
        if (!CreateClipZV(clip.get(), 0)) return nullptr;
        BeginClipIOZV(clip.get(), nullptr);
        return clip;
    }

    static void Close(ClipPtr const& clip)
    {
        EndClipIOZV(clip.get(), nullptr);
        CloseClipZV(clip.get());
    }

    static BitmapPtr Make_Bitmap(long width, long height, Bytes const& pixels = {},
                                 ZVBitmapType type = ZV_BITMAP_RGBA8)
    {
        BitmapPtr bitmap{AllocBitmapZV(width, height, type, "test")};
        std::memset(bitmap->Pixels, 0xEE, static_cast<std::size_t>(bitmap->Size));
        if (!pixels.empty()) std::memcpy(bitmap->Pixels, pixels.data(), pixels.size());
        return bitmap;
    }

    static Bytes Random_Pixels(long width, long height, unsigned seed)
    {
        return Random_Bytes(seed, static_cast<std::size_t>(4 * width * height));
    }

    static Bytes Pixels_Of(ZVBitmap const& bitmap) { return {bitmap.Pixels, bitmap.Pixels + bitmap.Size}; }

    /// Pixels of a frame as the module gives them, empty when it answers 0.
    static Bytes Module_Frame(ZVClip* clip, long frame, long width, long height)
    {
        BitmapPtr const bitmap = Make_Bitmap(width, height);
        ZVRectT<long> rect;
        if (!clip->Format->GetFrame(clip, bitmap.get(), frame, &rect, width, height, 0, nullptr, 0))
            return {};
        return Pixels_Of(*bitmap);
    }
    static Bytes Module_Frame(ZVClip* clip, long frame)
    {
        return Module_Frame(clip, frame, clip->Width, clip->Height);
    }

    /// Pixels of a frame on the way of an application, empty when it fails.
    static Bytes Clip_Frame(ZVClip* clip, long frame)
    {
        BitmapPtr const bitmap = Make_Bitmap(clip->Width, clip->Height);
        ZVTimeValue const time{static_cast<double>(frame), clip->FrameRate};
        if (!GetFrameZV(clip, bitmap.get(), &time, nullptr, nullptr)) return {};
        return Pixels_Of(*bitmap);
    }

    static long Add_Frame_At(ZVClip* clip, long frame, ZVBitmap* bitmap)
    {
        ZVTimeValue const time{static_cast<double>(frame), clip->FrameRate};
        return AddFrameZV(clip, bitmap, &time, nullptr, nullptr);
    }
    static long Add_Frame_At(ZVClip* clip, long frame, Bytes const& pixels)
    {
        return Add_Frame_At(clip, frame, Make_Bitmap(clip->Width, clip->Height, pixels).get());
    }
};
