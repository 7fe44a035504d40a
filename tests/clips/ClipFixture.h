// What tests of reading clips start from: a running library, a module that claims "*.tst", and one such file.
#pragma once

#include "TestEnvironment.h"
#include "clips/BitmapBlock.h"
#include "clips/TestFormat.h"

#include <gtest/gtest.h>

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
