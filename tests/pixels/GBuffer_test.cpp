// G-buffers: shape, samples, and copy, crop, scale and clear beside a picture of them pixel by pixel.
#include "GBufferTools.h"

using namespace DeepTest;

TEST(GBuffer, ShapeFollowsSizeAndFormat)
{
    BufferPtr const buffer = Make_Buffer(4, 2, GB_FORMAT_RGB);
    EXPECT_EQ(buffer->RowBytes, 12);
    EXPECT_EQ(buffer->DataSize, 24);
    EXPECT_EQ(reinterpret_cast<uint32_t const*>(buffer->Layers)[-1], 2U) << "the number of rows";
    struct {
        long width, height;
        int format;
    } const refused[] = {{-1, 1, 0},       {1, -1, 0},        {1, 1, 8},
                         {1L << 40, 1, 0}, {65536, 65536, 0}, {1L << 29, 1, 5}};
    for (auto const& each : refused) {
        auto const format = static_cast<GBufferFormat>(each.format);
        EXPECT_FALSE(AllocGBufferZV(each.width, each.height, format)) << each.width;
        EXPECT_THROW(ZVGBuffer(each.width, each.height, format), ZVBadAlloc) << each.width;
    }
    EXPECT_TRUE(Make_Buffer(0, 0, GB_FORMAT_LONG2));
}

TEST(GBuffer, SamplesThatAreNotThereReadAsZero)
{
    BufferPtr const buffer = Make_Buffer(1, 2, GB_FORMAT_FLOAT2);
    ASSERT_TRUE(buffer->Layers[1].set_layer_recs(2));
    unsigned char* const records = buffer->Layers[1].Records;
    std::memset(records, 7, 16);
    EXPECT_TRUE(buffer->Layers[1].set_layer_recs(2));
    EXPECT_EQ(buffer->Layers[1].Records, records) << "the same number keeps the samples";
    EXPECT_EQ(GETGLAYERADR(buffer.get(), 1, 1), records + 8);
    struct {
        int n, y;
    } const missing[] = {{0, 0}, {2, 1}, {-1, 1}, {0, 2}, {0, -1}};
    for (auto const& each : missing) {
        auto const* const zero = static_cast<float const*>(GETGLAYERADR(buffer.get(), each.n, each.y));
        EXPECT_EQ(zero[0], 0.0F) << each.n << " of row " << each.y;
        EXPECT_EQ(zero[1], 0.0F);
    }
}

TEST(GBuffer, CopyTakesShapeAndSamples)
{
    for (int format = 0; format < ZV_GBUFFER_FORMATS; ++format) {
        Plane const plane = Random_Plane(9, 5, static_cast<GBufferFormat>(format));
        BufferPtr const from = To_Buffer(plane), x = X_Values(plane);
        BufferPtr const same = To_Buffer(Random_Plane(9, 5, plane.format, 1)),
                        other = Make_Buffer(2, 8, GB_FORMAT_BYTE);
        for (BufferPtr const& to : {std::cref(same), std::cref(other)}) {
            CopyGBufferZV(from.get(), to.get());
            EXPECT_EQ(From_Buffer(*to, *x), plane) << "format " << format;
        }
    }
}

TEST(GBuffer, CropKeepsThePixelsInsideWithTheirSamples)
{
    struct {
        char const* why;
        long width, height;
        int dx, dy;
    } const cases[] = {
        {"the same", 7, 5, 0, 0},
        {"a part", 3, 2, -2, -1},
        {"wider on the left", 9, 5, 2, 0},
        {"around", 12, 9, 3, 2},
        {"corner at the top", 7, 5, -4, -3},
        {"corner below", 7, 5, 5, 4},
        {"outside to the right", 7, 5, 7, 0},
        {"outside to the left", 7, 5, -7, 0},
        {"far away", 2, 2, 1 << 30, -(1 << 30)},
    };
    for (auto const& row : cases)
        for (int format = 0; format < ZV_GBUFFER_FORMATS; ++format) {
            Plane const source = Random_Plane(7, 5, static_cast<GBufferFormat>(format));
            Sample const fill = {1, 2, 3, 4, 5, 6, 7, 8};
            Plane expected(row.width, row.height, source.format);
            for (long y = 0; y < row.height; ++y)
                for (long x = 0; x < row.width; ++x) {
                    long const sx = x - row.dx, sy = y - row.dy;
                    bool const isInside = sx >= 0 && sx < 7 && sy >= 0 && sy < 5;
                    expected.At(x, y) =
                        isInside ? source.At(sx, sy)
                                 : Samples{Sample(fill.begin(), fill.begin() + GBufferFormatStride[format])};
                }
            BufferPtr const from = To_Buffer(source), fromX = X_Values(source),
                            to = Make_Buffer(row.width, row.height, source.format),
                            toX = Make_Buffer(row.width + 1, row.height, GB_FORMAT_SHORT);
            CropGBufferZV(from.get(), to.get(), row.dx, row.dy, fromX.get(), fill.data());
            CropGBufferXValsZV(fromX.get(), toX.get(), row.dx, row.dy);
            EXPECT_EQ(From_Buffer(*to, *toX), expected) << row.why << ", format " << format;
        }
}

TEST(GBuffer, ScaledPixelsTakeTheSamplesOfThePixelUnderTheirCorner)
{
    struct {
        long fromWidth, fromHeight, width, height;
    } const cases[] = {{8, 6, 8, 6}, {80, 6, 40, 3}, {83, 5, 31, 4},
                       {3, 2, 1, 1}, {5, 3, 17, 8},  {64, 1, 97, 2}};
    constexpr unsigned evenRows = 6;  // the pixels of a row have as many samples
    for (auto const& row : cases)
        for (int format = 0; format < ZV_GBUFFER_FORMATS; ++format)
            for (unsigned const most : {0U, 2U, 40U, evenRows}) {
                Plane source =
                    Random_Plane(row.fromWidth, row.fromHeight, static_cast<GBufferFormat>(format), most);
                for (std::size_t i = 0; most == evenRows && i < source.pixels.size(); ++i)
                    source.pixels[i].resize(1 + i / std::size_t(row.fromWidth) % 7, source.pixels[i][0]);
                long const stepX = (row.fromWidth << 16) / row.width,
                           stepY = (row.fromHeight << 16) / row.height;
                Plane expected(row.width, row.height, source.format);
                for (long y = 0; y < row.height; ++y)
                    for (long x = 0; x < row.width; ++x)
                        expected.At(x, y) = source.At(x * stepX >> 16, y * stepY >> 16);
                BufferPtr const from = To_Buffer(source), fromX = X_Values(source),
                                to = Make_Buffer(row.width, row.height, source.format),
                                toX = Make_Buffer(row.width + 1, row.height, GB_FORMAT_SHORT);
                ScaleGBufferZV(from.get(), to.get(), fromX.get());
                ScaleGBufferXValsZV(fromX.get(), toX.get());
                EXPECT_EQ(From_Buffer(*to, *toX), expected)
                    << row.width << ", format " << format << ", " << most;
            }
}

TEST(GBuffer, RowsEndWhereXValuesEnd)
{
    Plane const source = Random_Plane(2, 1, GB_FORMAT_BYTE, 0);
    BufferPtr const from = To_Buffer(source), fromX = X_Values(source),
                    to = Make_Buffer(8, 1, GB_FORMAT_BYTE), toX = Make_Buffer(9, 1, GB_FORMAT_SHORT);
    from->Layers[0].set_layer_recs(40000);
    std::memset(from->Layers[0].Records, 5, 40000);
    X_Value(*fromX, 1, 0) = 20000;
    X_Value(*fromX, 2, 0) = 40000;
    ScaleGBufferZV(from.get(), to.get(), fromX.get());
    ScaleGBufferXValsZV(fromX.get(), toX.get());
    EXPECT_EQ(From_Buffer(*to, *toX).At(3, 0).size(), 65535U - 60000 + 1);
}

TEST(GBuffer, ClearingFillsWithTheDefaultOfTheChannel)
{
    Plane const plane = Random_Plane(5, 3, GB_FORMAT_FLOAT);
    for (bool const dropsSamples : {false, true}) {
        BufferPtr const z = To_Buffer(plane), ids = To_Buffer(Random_Plane(5, 3, GB_FORMAT_SHORT)),
                        x = X_Values(plane);
        ZVGBufferArray array;
        array[ZV_GBUFFER_Z] = z.get();
        array[ZV_GBUFFER_RENDERID] = ids.get();
        array[ZV_GBUFFER_X_VALUES] = x.get();
        ClearGBuffersZV(&array, dropsSamples ? ZV_GBUFFER_Z | ZV_GBUFFER_X_VALUES : ZV_GBUFFER_Z);
        BufferPtr const none = Make_Buffer(6, 3, GB_FORMAT_SHORT);
        std::memset(none->Data, 0, static_cast<std::size_t>(none->DataSize));
        for (Samples const& samples : From_Buffer(*z, dropsSamples ? *none : *x).pixels)
            for (Sample const& sample : samples)
                EXPECT_EQ(sample, Values({-1e30F})[0]);
        EXPECT_EQ(From_Buffer(*ids, *x), Random_Plane(5, 3, GB_FORMAT_SHORT)) << "not in the mask";
        ClearGBuffersZV(&array, ZV_GBUFFER_RENDERID);
        EXPECT_EQ(From_Buffer(*ids, *x).At(1, 1)[0], Values({uint16_t{0xFFFF}})[0]);
    }
}

TEST(GBuffer, DamagedXValuesAndShortRowsLeadNowhere)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        auto const format = static_cast<GBufferFormat>(round % ZV_GBUFFER_FORMATS);
        BufferPtr const from = Make_Buffer(21, 3, format), x = Make_Buffer(22, 3, GB_FORMAT_SHORT),
                        ids = Make_Buffer(21, 3, GB_FORMAT_SHORT), to = Make_Buffer(13, 4, format),
                        out = Make_Buffer(21, 3, format);
        for (long y = 0; y < 3; ++y) {
            from->Layers[y].set_layer_recs(random() % 50);
            ids->Layers[y].set_layer_recs(random() % 50);
            for (auto const* const buffer : {from.get(), ids.get()})
                if (buffer->Layers[y].Records)
                    std::memset(buffer->Layers[y].Records, 0,
                                std::size_t{buffer->Layers[y].Count} * std::size_t(buffer->Stride));
            for (long i = 0; i < 22; ++i)
                X_Value(*x, i, y) = static_cast<uint16_t>(random() % (round % 3 ? 60 : 65536));
        }
        unsigned char const fill[8] = {};
        CropGBufferZV(from.get(), to.get(), -3, 1, x.get(), fill);
        ScaleGBufferZV(from.get(), to.get(), x.get());
        BufferPtr const toX = Make_Buffer(14, 4, GB_FORMAT_SHORT);
        CropGBufferXValsZV(x.get(), toX.get(), -3, 1);
        ScaleGBufferXValsZV(x.get(), toX.get());
        ZVGBufferArray input, output;
        for (int slot = 0; slot < 13; ++slot) {
            input.Buffers[slot] = slot == 2 ? ids.get() : from.get();
            output.Buffers[slot] = slot == 2 ? nullptr : out.get();
        }
        input[ZV_GBUFFER_X_VALUES] = x.get();
        ZVBitmap* const bitmap = AllocBitmapZV(21, 3, ZV_BITMAP_RGBA8, nullptr);
        FillBitmapZV(bitmap, 0x80808080);
        EXPECT_TRUE(ExtractGBufferLayerZV(bitmap, bitmap, 0, ZV_GBUFFER_OBJ, input, round % 2,
                                          {-5, -5, 90, 90}, &output, 0x7FFF));
        FreeBitmapZV(bitmap);
        ClearGBuffersZV(&input, 0x1FFF & ~4UL);
    }
}
