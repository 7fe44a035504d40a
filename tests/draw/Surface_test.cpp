// What native bitmaps do not show of surfaces: clips of several boxes, and the changes that are gathered.
#include "host/Surface.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace {

/// A surface with pixels that are all different.
struct Sheet {
    static constexpr int width = 40, height = 30;
    std::vector<uint32_t> pixels = std::vector<uint32_t>(width * height);
    HostSurface surface{reinterpret_cast<unsigned char*>(pixels.data()), width, height, 32, width * 4};

    Sheet()
    {
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = static_cast<uint32_t>(i);
    }
    uint32_t At(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

/// A ring and a block, so that rows have several boxes.
HostRegion Pieces()
{
    HostRegion region(HostRect{3, 3, 30, 20});
    region.Subtract(HostRegion(HostRect{10, 8, 20, 15}));
    region.Unite(HostRect{33, 5, 38, 25});
    return region;
}

std::vector<HostRect> Boxes(HostRegion const& region)
{
    std::vector<HostRect> boxes;
    for (int i = 0; i < region.Box_Count(); ++i)
        boxes.push_back(region.Box(i));
    return boxes;
}

}  // namespace

TEST(Surface, DrawingStaysInsideAClipOfSeveralBoxes)
{
    Sheet sheet, still;
    HostRegion clip = Pieces();
    clip.Unite(HostRect{-50, 28, 100, 100});
    sheet.surface.Set_Clip(clip);
    EXPECT_EQ(sheet.surface.Clip().Bounds(), (HostRect{0, 3, 40, 30}));
    sheet.surface.Fill({-5, -5, 100, 100}, 0xABCDEF);
    uint32_t color = 0;
    for (int y = 0; y < Sheet::height; ++y) {
        for (int x = 0; x < Sheet::width; ++x) {
            bool const isIn = clip.Contains(x, y);
            EXPECT_EQ(sheet.At(x, y), isIn ? 0xFFABCDEF : still.At(x, y));
            EXPECT_EQ(sheet.surface.Read(x, y, color), isIn);
        }
    }
}

TEST(Surface, PixelsMoveWithinASurfaceThroughSeveralBoxes)
{
    for (auto const& [dx, dy] : {std::pair{2, 1}, {-2, 1}, {3, -2}, {-1, -3}, {0, 4}, {4, 0}}) {
        Sheet sheet, still;
        HostRegion const clip = Pieces();
        sheet.surface.Set_Clip(clip);
        sheet.surface.Blit(sheet.surface, sheet.surface.Bounds(), dx, dy);
        for (int y = 0; y < Sheet::height; ++y) {
            for (int x = 0; x < Sheet::width; ++x) {
                bool const isMoved = clip.Contains(x, y) && sheet.surface.Bounds().Contains(x - dx, y - dy);
                ASSERT_EQ(sheet.At(x, y), isMoved ? still.At(x - dx, y - dy) : still.At(x, y));
            }
        }
    }
    Sheet sheet, still;
    sheet.surface.Stretch(sheet.surface, {0, 0, 20, 15}, {0, 0, 40, 30});
    for (int y = 0; y < Sheet::height; ++y)
        for (int x = 0; x < Sheet::width; ++x)
            ASSERT_EQ(sheet.At(x, y), still.At(x / 2, y / 2));
}

TEST(Surface, GathersWhatWasTouchedInsideTheClip)
{
    Sheet sheet, other;
    sheet.surface.Fill({0, 0, 5, 5}, 0);
    EXPECT_TRUE(sheet.surface.Take_Touched().IsEmpty()) << "nobody asked for it";
    sheet.surface.Track_Touched();
    sheet.surface.Set_Clip(HostRegion({2, 2, 30, 20}));
    sheet.surface.Fill({0, 0, 5, 5}, 0);
    sheet.surface.Blit(other.surface, {0, 0, 4, 4}, 20, 10);
    sheet.surface.Fill({35, 25, 40, 30}, 0);
    HostMask const mask{
        .left = -1, .top = -3, .width = 2, .height = 3, .coverage = std::vector<unsigned char>(6, 9)};
    sheet.surface.Blend(mask, 29, 6, 0);
    EXPECT_EQ(Boxes(sheet.surface.Take_Touched()),
              (std::vector<HostRect>{
                  {2, 2, 5, 3}, {2, 3, 5, 5}, {28, 3, 30, 5}, {28, 5, 30, 6}, {20, 10, 24, 14}}));
    EXPECT_TRUE(sheet.surface.Take_Touched().IsEmpty());

    std::array const runs{HostRect{6, 4, 8, 5}, HostRect{}, HostRect{4, 5, 9, 6}};
    sheet.surface.Fill(runs, 0);
    EXPECT_EQ(Boxes(sheet.surface.Take_Touched()), (std::vector<HostRect>{{4, 4, 9, 6}}));
    for (int i = 0; i < 400; ++i)
        sheet.surface.Write(2 + i * 2 % 28, 2 + i % 18, 0);
    EXPECT_LT(sheet.surface.Take_Touched().Box_Count(), 200) << "many pieces become one";
}
