// Colours shaded and disabled, and bitmaps dimmed.
#include "PixelTestTools.h"

#include "TestEnvironment.h"

using namespace PixelTest;

namespace {

/// An environment whose interface background makes the disabled shade 0x963C00: three quarters of each
/// component.
class Disabling : public EnvironmentTest {
protected:
    Disabling() { SetStylePenZV(ZV_PEN_PALETTE, 0x00C85000UL); }
};

constexpr long shade[] = {0x96, 0x3C, 0x00};

/// The told formula on one component.
uint32_t Dimmed(uint32_t component, long shadeComponent)
{
    return static_cast<uint32_t>(shadeComponent +
                                 (static_cast<long>(component) - shadeComponent) * 300 / 1000);
}

/// What a native word becomes, each component by the formula and cut to its field.
uint32_t Dimmed_Native(uint32_t word, long depth)
{
    if (depth != 16)
        return (word & 0xFF000000) | Dimmed(word >> 16 & 0xFF, shade[0]) << 16 |
               Dimmed(word >> 8 & 0xFF, shade[1]) << 8 | Dimmed(word & 0xFF, shade[2]);
    return Dimmed((word >> 10 & 31) << 3, shade[0]) >> 3 << 10 |
           Dimmed((word >> 5 & 31) << 3, shade[1]) >> 3 << 5 | Dimmed((word & 31) << 3, shade[2]) >> 3;
}

}  // namespace

TEST_F(Disabling, ShadesRoundToTheEvenNeighbourAndClamp)
{
    struct Case {
        unsigned long color;
        double factor;
        unsigned long shaded;
    };
    for (Case const& row :
         {Case{0x00FFFFFF, 2.0, 0x00FFFFFF}, Case{0x00FF0000, 0.5, 0x00800000},
          Case{0xFF030507, 0.5, 0x00020204}, Case{0x80102030, 1.0, 0x00102030}, Case{0x00FFFFFF, -1.0, 0},
          Case{0x00102030, 1e300, 0x00FFFFFF}, Case{ZV_PEN_PALETTE, 0.75, 0x00963C00}})
        EXPECT_EQ(ShadeColorZV(row.color, row.factor), row.shaded) << std::hex << row.color;
}

TEST_F(Disabling, ColorsMoveTowardTheShade)
{
    struct Case {
        char const* why;
        unsigned long color, disabled;
    };
    for (Case const& row :
         {Case{"the shade itself stays", 0x00963C00, 0x00963C00},
          Case{"away from the shade by three tenths", 0x00FFFFFF, 0x00B5764C},  // 150 + 31.5, 60 + 58.5, 76.5
          Case{"truncated toward the shade from below too", 0x00000000, 0x00692A00},  // 150 - 45, 60 - 18
          Case{"a distance of 3 is no step, one of 4 is", 0x00934003, 0x00963D00},
          Case{"pens are resolved", ZV_PEN_PALETTE, 0x00A54200}})
        EXPECT_EQ(DisableColorZV(row.color), row.disabled) << row.why;
}

TEST_F(Disabling, NativePixelsMoveOnceAndPadBytesStay)
{
    ZVRectT<long> const rect{3, 1, 20, 2};
    for (long const depth : nativeDepths) {
        for (bool const isWhole : {false, true}) {
            NativePtr const before = Make_Random_Native(37, 5, depth, 2), bitmap = Copy_Of(*before);
            DisableBitmapZV(bitmap.get(), isWhole ? nullptr : &rect);
            Expect_Words(*bitmap, [&](long x, long y) {
                uint32_t const word = Get_Native(*before, x, y);
                return isWhole || rect.IsIn(x, y) ? Dimmed_Native(depth == 16 ? word & 0x7FFF : word, depth)
                                                  : word;
            });
        }
    }
}

TEST_F(Disabling, EveryByteOfRGBA8MovesButAlpha)
{
    BitmapPtr const bitmap = Make_Bitmap(256, 1, ZV_BITMAP_RGBA8);
    for (long i = 0; i < bitmap->Size; ++i)
        bitmap->Pixels[i] = static_cast<unsigned char>(i / 4);
    DisableBitmapZV(bitmap.get(), nullptr);
    Expect_Channels(*bitmap, [](long x, long, long channel) {
        auto const value = static_cast<uint32_t>(x);
        return channel == 3 ? value : Dimmed(value, shade[channel]);
    });
}

TEST_F(Disabling, OtherTypesScaleTheShadeToTheirChannels)
{
    struct Case {
        ZVBitmapType type;
        uint32_t red, green;  // 0 and the maximum, dimmed; the shade is 150 and 60 of 255
    };
    // 10 bits: 601 - 180, 240 + 234; 12 bits: 2408 - 722, 963 + 939; 16 bits: 38550 - 11565, 15420 + 15034
    for (Case const& row : {Case{ZV_BITMAP_RGBA10, 421, 474}, Case{ZV_BITMAP_RGBA12, 1686, 1902},
                            Case{ZV_BITMAP_RGBA16, 26985, 30454}}) {
        SCOPED_TRACE(int{row.type});
        BitmapPtr const bitmap = Make_Bitmap(1, 1, row.type);
        uint32_t const maximum = (1U << GetBitsPerChannelZV(row.type)) - 1;
        Set_Raw(*bitmap, 0, 0, 1, maximum);
        Set_Raw(*bitmap, 0, 0, 3, 77);
        DisableBitmapZV(bitmap.get(), nullptr);
        EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 0), row.red);
        EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 1), row.green);
        EXPECT_EQ(Get_Raw(*bitmap, 0, 0, 3), 77U);
    }
    BitmapPtr const floats = Make_Bitmap(1, 1, ZV_BITMAP_RGBAFLOAT);
    Set_Float(*floats, 0, 0, 1, 1.0F);
    Set_Float(*floats, 0, 0, 2, 10.0F);
    DisableBitmapZV(floats.get(), nullptr);
    EXPECT_NEAR(Get_Float(*floats, 0, 0, 0), 0.7 * 150 / 255, 1e-6);
    EXPECT_NEAR(Get_Float(*floats, 0, 0, 1), 0.7 * 60 / 255 + 0.3, 1e-6);
    EXPECT_EQ(Get_Float(*floats, 0, 0, 2), 1.0F) << "clamped";
    BitmapPtr const mono = Make_Bitmap(1, 1, ZV_BITMAP_MONO8, 0xFF);
    DisableBitmapZV(mono.get(), nullptr);
    EXPECT_EQ(Get_Raw(*mono, 0, 0, 0), 0xB5U) << "by the shade's red";
}

TEST_F(Disabling, RectanglesAreCutAtTheEdges)
{
    for (ZVRectT<long> const& rect : {ZVRectT<long>{-5, -5, 100, 100}, ZVRectT<long>{7, 0, 5, 5}}) {
        BitmapPtr const bitmap = Make_Bitmap(3, 3, ZV_BITMAP_RGBA8, 0xFF);
        NativePtr const native = Make_Native(3, 3, 32, 0xFF);
        DisableBitmapZV(bitmap.get(), &rect);
        DisableBitmapZV(native.get(), &rect);
        bool const isTouched = rect.x < 3;
        EXPECT_EQ(Get_Raw(*bitmap, 2, 2, 0), isTouched ? 0xB5U : 0xFFU);
        EXPECT_EQ(Get_Native(*native, 2, 2), isTouched ? 0xFFB5764CU : 0xFFFFFFFFU);
    }
    DisableBitmapZV(static_cast<ZVBitmap*>(nullptr), nullptr);
    DisableBitmapZV(static_cast<ZVNativeBitmap*>(nullptr), nullptr);
}
