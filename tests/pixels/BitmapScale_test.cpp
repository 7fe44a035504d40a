// Point sampling: which pixel a target takes, all pairs of formats, on every vector path.
#include "PixelTestTools.h"

using namespace PixelTest;

namespace {

/// The columns that a row of `to` pixels takes out of one of `from`.
std::vector<long> Sampled_Columns(long from, long to, ZVRectT<long> const* srcRect = nullptr,
                                  ZVRectT<long> const* dstRect = nullptr)
{
    BitmapPtr const source = Make_Bitmap(from, 1, ZV_BITMAP_MONO16),
                    target = Make_Bitmap(to, 1, ZV_BITMAP_MONO16, 0xFF);
    for (long x = 0; x < from; ++x)
        Set_Raw(*source, x, 0, 0, static_cast<uint32_t>(x));
    ScaleBitmapZV(source.get(), target.get(), srcRect, dstRect);
    std::vector<long> columns;
    for (long x = 0; x < to; ++x)
        columns.push_back(Get_Raw(*target, x, 0, 0));
    return columns;
}

constexpr long none = 0xFFFF;  // a pixel that was not written

}  // namespace

TEST(BitmapScale, TargetPixelTakesTheColumnUnderItsLeftEdge)
{
    struct {
        char const* why;
        long from, to;
        std::vector<long> columns;
    } const cases[] = {
        {"one to one", 4, 4, {0, 1, 2, 3}},
        {"halving takes every second column", 4, 2, {0, 2}},
        {"doubling takes each column twice", 2, 4, {0, 0, 1, 1}},
        {"an uneven step truncates", 3, 2, {0, 1}},
        {"an uneven step falls short rather than overshoots", 10, 3, {0, 3, 6}},
        {"down to one", 7, 1, {0}},
        {"up from one", 1, 5, {0, 0, 0, 0, 0}},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Sampled_Columns(row.from, row.to), row.columns) << row.why;
}

TEST(BitmapScale, RectanglesChooseWhatGoesWhere)
{
    std::vector<long> const nothing(6, none);
    struct {
        char const* why;
        ZVRectT<long> srcRect, dstRect;
        std::vector<long> columns;
    } const cases[] = {
        {"a part into a part", {2, 0, 4, 1}, {1, 0, 2, 1}, {none, 2, 4, none, none, none}},
        {"a target that starts outside moves in by whole steps",
         {0, 0, 12, 1},
         {-2, 0, 6, 1},
         {4, 6, 8, 10, none, none}},
        {"a target past the edge keeps its step", {0, 0, 10, 1}, {1, 0, 10, 1}, {none, 0, 1, 2, 3, 4}},
        {"no width", {0, 0, 10, 1}, {1, 0, 0, 1}, nothing},
        {"no height", {0, 0, 10, 1}, {1, 0, 5, 0}, nothing},
        {"a negative width", {0, 0, 10, 1}, {4, 0, -2, 1}, nothing},
        {"beyond the right edge", {0, 0, 10, 1}, {6, 0, 4, 1}, nothing},
        {"before the left edge", {0, 0, 10, 1}, {-4, 0, 4, 1}, nothing},
        {"far outside", {0, 0, 10, 1}, {-2000000000, 0, 5, 1}, nothing},
        {"the step's truncation adds up from far outside",
         {0, 0, 12, 1},
         {-119994, 0, 120000, 1},
         {10, 10, 10, 10, 10, 10}},
        {"a step that truncates to nothing",
         {0, 0, 12, 1},
         {-1199999994, 0, 1200000000, 1},
         {0, 0, 0, 0, 0, 0}},
    };
    for (auto const& row : cases)
        EXPECT_EQ(Sampled_Columns(12, 6, &row.srcRect, &row.dstRect), row.columns) << row.why;
}

TEST(BitmapScale, SetupGivesStepsAndStarts)
{
    ZVRectT<long> const srcRect{5, 7, 10, 20}, dstRect{-2, 3, 5, 40};
    long stepX, stepY, endX, endY, startX, startY, sourceX, sourceY;
    ScaleSetup(100, 100, 50, 30, &srcRect, &dstRect, stepX, stepY, endX, endY, startX, startY, sourceX,
               sourceY);
    EXPECT_EQ((std::vector{stepX, stepY, endX, endY, startX, startY, sourceX, sourceY}),
              (std::vector{0x20000L, 0x8000L, 3L, 30L, 0L, 3L, 9L << 16, 7L << 16}));
    ZVRectT<long> const empty{4, 4, 0, -1};
    ScaleSetup(32767, 9, 3, 4, nullptr, &empty, stepX, stepY, endX, endY, startX, startY, sourceX, sourceY);
    EXPECT_EQ((std::vector{stepX, stepY, endX, endY}), (std::vector{32767L << 16, 9L << 16, 3L, 3L}));
}

TEST(BitmapScale, ReachesTheLastColumnOfTheWidestSource)
{
    EXPECT_EQ(Sampled_Columns(32767, 32766).back(), 32765);
    EXPECT_EQ(Sampled_Columns(32767, 65534).back(), 32766);
}

// ---- all formats ------------------------------------------------------------------------------------------

namespace {

struct Geometry {
    char const* why;
    long toWidth, toHeight;
    ZVRectT<long> srcRect, dstRect;
};
constexpr long fromWidth = 83, fromHeight = 11;
Geometry const geometries[] = {
    {"one to one", 83, 11, {0, 0, 83, 11}, {0, 0, 83, 11}},
    {"one to one, a part", 90, 20, {3, 2, 60, 7}, {5, 6, 60, 7}},
    {"only rows", 83, 25, {0, 0, 83, 11}, {0, 0, 83, 25}},
    {"only columns", 140, 11, {0, 0, 83, 11}, {0, 0, 140, 11}},
    {"up a little", 101, 15, {0, 0, 83, 11}, {0, 0, 101, 15}},
    {"up much", 400, 40, {1, 1, 80, 10}, {0, 0, 400, 40}},
    {"down a little", 71, 9, {0, 0, 83, 11}, {0, 0, 71, 9}},
    {"halved", 41, 5, {0, 0, 82, 10}, {0, 0, 41, 5}},
    {"down more", 30, 4, {0, 0, 83, 11}, {0, 0, 30, 4}},
    {"down to a few", 3, 1, {0, 0, 83, 11}, {0, 0, 3, 1}},
    {"cut at all sides", 50, 20, {0, 0, 83, 11}, {-20, -3, 90, 30}},
    {"up and cut", 50, 20, {10, 2, 20, 5}, {-35, -9, 100, 60}},
    {"a right edge beside the source's", 40, 3, {43, 8, 40, 3}, {0, 0, 40, 3}},
};

void Scale(Picture const& from, Picture const& to, Geometry const& geometry)
{
    auto const run = [&](auto const& source, auto const& target) {
        ScaleBitmapZV(source.get(), target.get(), &geometry.srcRect, &geometry.dstRect);
    };
    if (from.native && to.native) run(from.native, to.native);
    if (from.native && to.bitmap) run(from.native, to.bitmap);
    if (from.bitmap && to.native) run(from.bitmap, to.native);
    if (from.bitmap && to.bitmap) run(from.bitmap, to.bitmap);
}

/// Pixel by pixel as told: 16.16 positions, one conversion for each pixel.
void Scale_By_Rules(Picture const& from, Picture const& to, Geometry const& geometry)
{
    bool const isRaw = from.bitmap && to.bitmap && from.bitmap->Type == to.bitmap->Type;
    ZVRowConverter const convert = Get_Row_Converter(from.Format(), to.Format());
    if (!isRaw && !convert) return;
    ZVRectT<long> const& source = geometry.srcRect;
    ZVRectT<long> const& target = geometry.dstRect;
    long const stepX = source.width * 65536 / target.width, stepY = source.height * 65536 / target.height;
    for (long y = std::max(0L, target.y); y < std::min(to.Height(), target.y + target.height); ++y) {
        for (long x = std::max(0L, target.x); x < std::min(to.Width(), target.x + target.width); ++x) {
            unsigned char const* const pixel = from.Pixel((source.x * 65536 + (x - target.x) * stepX) >> 16,
                                                          (source.y * 65536 + (y - target.y) * stepY) >> 16);
            if (isRaw)
                std::memcpy(to.Pixel(x, y), pixel, static_cast<std::size_t>(to.Pack()));
            else
                convert(pixel, to.Pixel(x, y), 1);
        }
    }
}

}  // namespace

TEST(BitmapScale, FollowsTheRulesBetweenAllFormats)
{
    for (int fromKind = ZV_BITMAP_RGBA8; fromKind <= Picture::kinds; ++fromKind) {
        Picture const from(fromKind, fromWidth, fromHeight);
        Fill_Random(from.All(), static_cast<unsigned>(fromKind));
        for (int toKind = ZV_BITMAP_RGBA8; toKind <= Picture::kinds; ++toKind) {
            for (Geometry const& geometry : geometries) {
                Picture const expected(toKind, geometry.toWidth, geometry.toHeight, 0x3C);
                Scale_By_Rules(from, expected, geometry);
                On_Each_Target([&] {
                    Picture const actual(toKind, geometry.toWidth, geometry.toHeight, 0x3C);
                    Scale(from, actual, geometry);
                    ASSERT_TRUE(std::ranges::equal(actual.All(), expected.All()))
                        << geometry.why << ", from " << fromKind << " to " << toKind;
                });
            }
        }
    }
}

TEST(BitmapScale, BeyondTheCacheGivesTheSame)
{
    Geometry const geometry{"", 2001, 1502, {0, 0, fromWidth, fromHeight}, {0, 0, 2001, 1502}};
    Picture const from(ZV_BITMAP_RGBA8, fromWidth, fromHeight);
    Fill_Random(from.All(), 1);
    for (int const toKind : {ZV_BITMAP_RGBA8, ZV_BITMAP_RGBA10, ZV_BITMAP_RGBA16}) {
        Picture const expected(toKind, geometry.toWidth, geometry.toHeight),
            actual(toKind, geometry.toWidth, geometry.toHeight);
        Scale_By_Rules(from, expected, geometry);
        On_Each_Target([&] {
            std::ranges::fill(actual.All(), static_cast<unsigned char>(0));
            Scale(from, actual, geometry);
            EXPECT_TRUE(std::ranges::equal(actual.All(), expected.All())) << toKind;
        });
    }
}

TEST(BitmapScale, OfNothingDoesNothing)
{
    BitmapPtr const bitmap = Make_Bitmap(4, 4, ZV_BITMAP_RGBA8, 1),
                    empty(AllocBitmapNoPixelsZV(4, 4, ZV_BITMAP_RGBA8));
    NativePtr const native = Make_Native(4, 4, 32, 1), indexed(AllocNativeBitmapZV(4, 4, 8));
    ScaleBitmapZV(static_cast<ZVBitmap*>(nullptr), bitmap.get(), nullptr, nullptr);
    ScaleBitmapZV(empty.get(), bitmap.get(), nullptr, nullptr);
    ScaleBitmapZV(bitmap.get(), empty.get(), nullptr, nullptr);
    ScaleBitmapZV(static_cast<ZVNativeBitmap*>(nullptr), native.get(), nullptr, nullptr);
    ScaleBitmapZV(indexed.get(), native.get(), nullptr, nullptr);
    ScaleBitmapZV(indexed.get(), bitmap.get(), nullptr, nullptr);
    ScaleBitmapZV(native.get(), indexed.get(), nullptr, nullptr);
    EXPECT_TRUE(Is_All(*bitmap, 1));
    EXPECT_TRUE(Is_All(*native, 1));
    EXPECT_TRUE(Is_All(*indexed, 0));
}
