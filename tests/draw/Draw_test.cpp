// Contexts: what they hold, what they leave behind, and what null does.
#include "DrawTestTools.h"

using namespace DrawTest;

namespace {

class Draw : public EnvironmentTest {};

std::array<int, 3> Words(ZVPortColor const& color)
{
    return {color.red, color.green, color.blue};
}

std::array<int, 4> Edges(ZVPortRect const& rect)
{
    return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace

TEST_F(Draw, AFreshContextHasTextOnThePaletteAndNoClip)
{
    SetStylePenZV(0xFF000007, 0x00102030);
    SetStylePenZV(0xFF000001, 0x00FF8001);
    BitmapPtr const bitmap(AllocNativeBitmapZV(10, 10, 32));
    ContextPtr const draw(DrawBeginZV(bitmap.get()));
    ASSERT_TRUE(draw);
    EXPECT_EQ(Words(draw->ForeColor), (std::array{0x1010, 0x2020, 0x3030}));
    EXPECT_EQ(Words(draw->BackColor), (std::array{0xFFFF, 0x8080, 0x0101}));
    EXPECT_EQ(Edges(draw->Clip), (std::array{-32767, -32767, 32767, 32767}));
    EXPECT_EQ(draw->Port, bitmap->World);
    EXPECT_EQ(draw->Device, nullptr);
    EXPECT_EQ(draw->Font, 0U);
    EXPECT_EQ(draw->OriginX | draw->OriginY | draw->TextTransparent, 0);

    SetStylePenZV(0xFF000007, 0x00FFFFFF);
    EXPECT_EQ(Words(draw->ForeColor), (std::array{0x1010, 0x2020, 0x3030})) << "the pen's colour of then";
    SetPenZV(draw.get(), 0xFF000007);
    SetBGPenZV(draw.get(), 0x7F010203);
    EXPECT_EQ(Words(draw->ForeColor), (std::array{0xFFFF, 0xFFFF, 0xFFFF}));
    EXPECT_EQ(Words(draw->BackColor), (std::array{0x0101, 0x0202, 0x0303}));
}

TEST_F(Draw, TheClipRectangleMovesWithTheOriginAndStaysWithinSixteenBits)
{
    Canvas canvas(32);
    canvas.draw->OriginX = 100;
    canvas.draw->OriginY = -50;
    SetClipRectZV(canvas.draw.get(), 1, 2, 30, 40);
    EXPECT_EQ(Edges(canvas.draw->Clip), (std::array{101, -48, 131, -8}));
    SetClipRectZV(canvas.draw.get(), -100000, 2, 200000, 100000);
    EXPECT_EQ(Edges(canvas.draw->Clip), (std::array{-32768, -48, 32767, 32767}));
    canvas.draw->OriginX = canvas.draw->OriginY = 0;
    SetClipRectZV(canvas.draw.get(), 5, 5, 0, 10);
    FillRectZV(canvas.draw.get(), 0, 0, 40, 40);
    canvas.Expect_Inked([](long, long) { return false; }, "an empty clip");
}

TEST_F(Draw, ContextsOnOneBitmapDoNotDisturbEachOther)
{
    Canvas canvas(32);
    ContextPtr const other(DrawBeginZV(canvas.bitmap.get()));
    SetPenZV(other.get(), Canvas::paper);
    SetClipRectZV(other.get(), 0, 0, 3, 3);
    SetClipRectZV(canvas.draw.get(), 0, 0, 10, 10);
    FillRectZV(canvas.draw.get(), 0, 0, 40, 40);
    EXPECT_EQ(canvas.draw->SavedClip, nullptr) << "only while a primitive runs";
    FillRectZV(other.get(), 0, 0, 40, 40);
    canvas.Expect_Inked([](long x, long y) { return x < 10 && y < 10 && (x >= 3 || y >= 3); }, "two clips");

    ReadyDraw(other.get());
    Set_ClipRegion(other.get());
    EXPECT_NE(other->SavedClip, nullptr);
    Revert_ClipRegion(other.get());
    EXPECT_EQ(other->SavedClip, nullptr);
    Revert_ClipRegion(other.get());
    RevertDraw(other.get());
    SetClipRectZV(canvas.draw.get(), 0, 0, 100, 100);
    FillRectZV(canvas.draw.get(), 0, 0, 40, 40);
    canvas.Expect_Inked([](long, long) { return true; }, "the port's own clip is back");
}

TEST_F(Draw, ABitmapThatHasNoPortCannotBeDrawnOn)
{
    std::array<uint32_t, 16> pixels{};
    ZVNativeBitmap byHand{};
    byHand.Width = byHand.Height = 4;
    byHand.Depth = 32;
    byHand.RowBytes = 16;
    byHand.Pixels = reinterpret_cast<unsigned char*>(pixels.data());
    EXPECT_EQ(DrawBeginZV(&byHand), nullptr);
    EXPECT_EQ(DrawBeginZV(static_cast<ZVNativeBitmap*>(nullptr)), nullptr);
}

TEST_F(Draw, NullContextsDoNothing)
{
    ZVDrawInfo* const none = nullptr;
    long const points[] = {0, 0, 9, 9};
    ZVRGB color{7, 7, 7, 7};
    BitmapPtr const bitmap(AllocNativeBitmapZV(4, 4, 32));
    SetPenZV(none, 0);
    SetBGPenZV(none, 0);
    SetClipRectZV(none, 0, 0, 1, 1);
    SetTextTransparencyZV(none, 1);
    SetFontZV(none, 0);
    SetFontZV(none, static_cast<ZVFont*>(nullptr));
    for (auto call : {EraseRectZV, FillRectZV, DrawRectZV, DrawLineZV, FillEllipseZV, DrawEllipseZV,
                      DrawShineBorderZV, DrawIShineBorderZV, DrawShineBorder2ZV, DrawIShineBorder2ZV})
        call(none, 0, 0, 9, 9);
    DrawPolygonZV(none, 2, points);
    FillPolygonZV(none, 2, points);
    ReadPixelZV(none, 0, 0, &color);
    WritePixelZV(none, 0, 0, &color);
    DrawBitmapZV(none, bitmap.get(), 0, 0);
    StretchBitmapZV(none, bitmap.get(), 0, 0, 1, 1, 0, 0, 1, 1);
    //    DrawImageZV(none, 1, 0, 0);
    DrawTextZV(none, "text", 0, 0);
    ReadyDraw(none);
    RevertDraw(none);
    Set_ClipRegion(none);
    Revert_ClipRegion(none);
    DrawEndZV(none);
    EXPECT_EQ(color.red, 7);
}

TEST_F(Draw, SinglePixelsAreReadAndWrittenInsideTheClip)
{
    struct {
        long depth;
        std::array<int, 3> read;
    } const rows[] = {
        {8, {0x7676, 0x7676, 0x7676}}, {16, {0xF8F8, 0x4040, 0x0808}}, {32, {0xFFFF, 0x4343, 0x0F0F}}};
    for (auto const& row : rows) {
        Canvas canvas(row.depth);
        canvas.draw->OriginX = 2;
        ZVRGB const in{0xFFFF, 0x4300, 0x0FFF, 0};
        ZVRGB out{7, 7, 7, 7};
        SetClipRectZV(canvas.draw.get(), 0, 0, 10, 10);
        WritePixelZV(canvas.draw.get(), 3, 4, &in);
        WritePixelZV(canvas.draw.get(), 10, 4, &in);
        WritePixelZV(canvas.draw.get(), -1, 4, &in);
        canvas.Expect([](long x, long y) { return x == 5 && y == 4 ? 0xFF430F : Canvas::paper; }, "write");
        ReadPixelZV(canvas.draw.get(), 3, 4, &out);
        EXPECT_EQ((std::array<int, 3>{out.red, out.green, out.blue}), row.read);
        EXPECT_EQ(out.extra, 1);
        out = {7, 7, 7, 7};
        ReadPixelZV(canvas.draw.get(), 10, 4, &out);
        ReadPixelZV(canvas.draw.get(), 3, -1, &out);
        EXPECT_EQ(out.red, 7) << "outside the clip";
    }
}
