// What tests of reading clips start from: a running library, a module that claims "*.tst", and one such file.
#pragma once

#include "TestEnvironment.h"
#include "clips/BitmapBlock.h"
#include "clips/TestFormat.h"

#include <cstring>
#include <string>
#include <vector>

class ClipTest : public testing::Test {
protected:
    ClipTest() : take(environment.Write("take.tst", "data")) {}
    ~ClipTest() override { FreeClipZV(clip); }

    /// Opens the file in place of the clip that was open before, in I/O.
    ZVClip* Open()
    {
        FreeClipZV(clip);
        clip = OpenClipZV(take.c_str(), nullptr);
        EXPECT_TRUE(clip && BeginClipIOZV(clip, nullptr));
        return clip;
    }

    TestEnvironment environment;
    TestFormat format;
    std::string take;
    ZVClip* clip = nullptr;
};

inline ZVTimeValue Frame_Time(double frame, double rate = 25.0)
{
    return {frame, rate};
}

inline BitmapBlock Make_Bitmap(long width, long height, ZVBitmapType type = ZV_BITMAP_RGBA8)
{
    return BitmapBlock(AllocBitmapZV(width, height, type, "test"));
}

inline std::vector<unsigned char> Bytes_Of(BitmapBlock const& bitmap)
{
    return {bitmap->Pixels, bitmap->Pixels + bitmap->Size};
}

/// Reads a frame by its number.
template <typename... Tags>
long Read_Frame(ZVClip* clip, BitmapBlock const& bitmap, double frame, Tags... tags)
{
    ZVTimeValue const time = Frame_Time(frame, clip->FrameRate);
    return GetFrameZV(clip, bitmap.get(), &time, nullptr, ZV_TAG_IGNORE, 0, tags...);
}

/// The pixels of a frame at the clip's size, read over what it should not leave there.
inline std::vector<unsigned char> Frame_Bytes(ZVClip* clip, double frame)
{
    BitmapBlock const bitmap = Make_Bitmap(clip->Width, clip->Height);
    std::memset(bitmap->Pixels, 0xA5, static_cast<std::size_t>(bitmap->Size));
    EXPECT_TRUE(Read_Frame(clip, bitmap, frame)) << frame;
    return Bytes_Of(bitmap);
}

/// A clip of 8 bits that is being written.
inline ZVClip* Create_Output(ZVFormatDesc* format, std::string const& spec, long width, long height,
                             double rate, double fileRate)
{
    ZVClip* const clip = NewClipZV();
    clip->Format = format;
    clip->FileName = CopyFileSpecZV(spec.c_str());
    clip->Width = width;
    clip->Height = height;
    clip->BitDepth = 8;
    clip->Media = ZV_MEDIA_VIDEO;
    clip->FrameRate = rate;
    clip->FileFrameRate = fileRate;
    clip->Frames = 100;
    EXPECT_TRUE(CreateClipZV(clip, 0));
    return clip;
}

/// The pixels of a picture of the test module.
inline std::vector<unsigned char> Picture_Bytes(long picture, long width, long height,
                                                ZVBitmapType type = ZV_BITMAP_RGBA8, long layer = 0)
{
    BitmapBlock const bitmap = Make_Bitmap(width, height, type);
    Draw_Test_Picture(bitmap.get(), picture, layer);
    return Bytes_Of(bitmap);
}

inline std::vector<unsigned char> Filled_Bytes(unsigned long colour, long width, long height,
                                               ZVBitmapType type = ZV_BITMAP_RGBA8)
{
    BitmapBlock const bitmap = Make_Bitmap(width, height, type);
    FillBitmapZV(bitmap.get(), colour);
    return Bytes_Of(bitmap);
}

inline constexpr ZVBitmapType rgbaTypes[] = {ZV_BITMAP_RGBA8, ZV_BITMAP_RGBA10, ZV_BITMAP_RGBA12,
                                             ZV_BITMAP_RGBA16, ZV_BITMAP_RGBAFLOAT};
