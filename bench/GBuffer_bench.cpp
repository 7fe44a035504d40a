// G-buffers of 1920 x 1080 pixels with four samples each. The yardstick of copying, cropping and scaling is
// one memcpy with as many bytes read and written, where every sample of a row that is read counts; of
// extraction, one memcpy of the channels that it reads.
#include "BenchBitmaps.h"
#include "BenchTools.h"

#include "ZVGBuffer.h"

#include <random>

namespace {

using namespace Bench;

struct BufferDeleter {
    void operator()(ZVGBuffer* buffer) const { FreeGBufferZV(buffer); }
};
using BufferPtr = std::shared_ptr<ZVGBuffer>;

constexpr long furtherSamples = 3;  // of each pixel

struct Format {
    char const* name;
    GBufferFormat format;
};
constexpr Format formats[] = {{"byte", GB_FORMAT_BYTE},
                              {"short", GB_FORMAT_SHORT},
                              {"rgb", GB_FORMAT_RGB},
                              {"float", GB_FORMAT_FLOAT},
                              {"float2", GB_FORMAT_FLOAT2}};

/// Its front plane and rows are written once, so that they are in memory.
BufferPtr Make_Buffer(GBufferFormat format, long w = width, long h = height, long samples = furtherSamples)
{
    BufferPtr const buffer(AllocGBufferZV(w, h, format), BufferDeleter());
    std::memset(buffer->Data, 0x11, static_cast<std::size_t>(buffer->DataSize));
    for (long y = 0; y < h; ++y) {
        ZVGBufferLayerData& row = buffer->Layers[y];
        row.set_layer_recs(static_cast<unsigned long>(w * samples));
        if (row.Records) std::memset(row.Records, 0x22, static_cast<std::size_t>(row.Count * row.Stride));
    }
    return buffer;
}

BufferPtr Make_XValues(long w = width, long h = height)
{
    BufferPtr const buffer = Make_Buffer(GB_FORMAT_SHORT, w + 1, h, 0);
    auto* element = reinterpret_cast<uint16_t*>(buffer->Data);
    for (long y = 0; y < h; ++y)
        for (long x = 0; x <= w; ++x)
            *element++ = static_cast<uint16_t>(x * furtherSamples);
    return buffer;
}

long Deep_Bytes(GBufferFormat format, long w, long h)
{
    return w * h * (1 + furtherSamples) * GBufferFormatStride[format];
}

void Register_Moves()
{
    constexpr long cropWidth = width * 3 / 4, cropHeight = height * 3 / 4;
    static constexpr unsigned char fill[8] = {};
    for (Format const& each : formats) {
        GBufferFormat const format = each.format;
        Bench::Register(std::string("gbuffer/copy_") + each.name, 1.43, [=] {
            BufferPtr const from = Make_Buffer(format), to = Make_Buffer(format);
            return std::pair([=] { CopyGBufferZV(from.get(), to.get()); },
                             Make_Memcpy(2 * Deep_Bytes(format, width, height)));
        });
        Bench::Register(std::string("gbuffer/crop_") + each.name, 1.43, [=] {
            BufferPtr const from = Make_Buffer(format), to = Make_Buffer(format, cropWidth, cropHeight),
                            x = Make_XValues();
            return std::pair([=] { CropGBufferZV(from.get(), to.get(), -200, -100, x.get(), fill); },
                             Make_Memcpy(2 * Deep_Bytes(format, cropWidth, cropHeight)));
        });
        Bench::Register(std::string("gbuffer/halve_") + each.name, 1.43, [=] {
            BufferPtr const from = Make_Buffer(format), to = Make_Buffer(format, width / 2, height / 2),
                            x = Make_XValues();
            return std::pair([=] { ScaleGBufferZV(from.get(), to.get(), x.get()); },
                             Make_Memcpy(Deep_Bytes(format, width, height / 2) +
                                         Deep_Bytes(format, width / 2, height / 2)));
        });
        Bench::Register(std::string("gbuffer/enlarge_") + each.name, 1.43, [=] {
            constexpr long w = width * 3 / 2, h = height * 3 / 2;
            BufferPtr const from = Make_Buffer(format), to = Make_Buffer(format, w, h), x = Make_XValues();
            return std::pair([=] { ScaleGBufferZV(from.get(), to.get(), x.get()); },
                             Make_Memcpy(Deep_Bytes(format, width, height) + Deep_Bytes(format, w, h)));
        });
    }
}

/// A frame with object ids, colours and coverage, either objects of some size or noise.
struct Frame {
    BufferPtr ids = Make_Buffer(GB_FORMAT_SHORT), colours = Make_Buffer(GB_FORMAT_RGB),
              coverage = Make_Buffer(GB_FORMAT_BYTE), xValues = Make_XValues();
    BufferPtr outIds = Make_Buffer(GB_FORMAT_SHORT), outColours = Make_Buffer(GB_FORMAT_RGB),
              outCoverage = Make_Buffer(GB_FORMAT_BYTE), outXValues = Make_XValues();
    ZVGBufferArray input, output;

    explicit Frame(bool isNoise)
    {
        std::mt19937 random(1);
        auto const noise = [&random] { return static_cast<uint16_t>(random() >> 16); };
        for (long y = 0; y < height; ++y) {
            auto const fill = [&](ZVGBuffer& plane, long n, unsigned char* to, auto value) {
                std::memcpy(to + n * plane.Stride, &value, sizeof value);
            };
            for (long i = 0; i < width * (1 + furtherSamples); ++i) {
                bool const isFront = i < width;
                long const n = isFront ? i : i - width;
                long const x = isFront ? i : n / furtherSamples, layer = isFront ? 0 : 1 + n % furtherSamples;
                auto const id = static_cast<uint16_t>(
                    isNoise ? noise() % 4 : (x / 97 + y / 83 + layer) % 4);  // four samples, four objects
                auto const place = [&](ZVGBuffer& plane) {
                    return isFront ? plane.Data + y * plane.RowBytes : plane.Layers[y].Records;
                };
                fill(*ids, n, place(*ids), id);
                fill(*coverage, n, place(*coverage), static_cast<uint8_t>(noise() % 128));
                fill(*colours, n, place(*colours), static_cast<uint8_t>(noise()));
            }
        }
        input[ZV_GBUFFER_OBJ] = ids.get();
        input[ZV_GBUFFER_COL] = colours.get();
        input[ZV_GBUFFER_COV] = coverage.get();
        input[ZV_GBUFFER_X_VALUES] = xValues.get();
        output[ZV_GBUFFER_OBJ] = outIds.get();
        output[ZV_GBUFFER_COL] = outColours.get();
        output[ZV_GBUFFER_COV] = outCoverage.get();
        output[ZV_GBUFFER_X_VALUES] = outXValues.get();
    }
};

void Register_Extraction(std::string const& name, ZVBitmapType type, bool isNoise, long mode,
                         bool hasChannels)
{
    Bench::Register(
        "gbuffer/extract_" + name, 0,
        [=] {
            auto const frame = std::make_shared<Frame>(isNoise);
            BitmapPtr const from = Make_Bitmap(type), to = Make_Bitmap(type);
            auto const work = [=] {
                ExtractGBufferLayerZV(from.get(), to.get(), 2, ZV_GBUFFER_OBJ, frame->input, mode,
                                      {0, 0, width, height}, hasChannels ? &frame->output : nullptr, 0x7FFF);
            };
            return std::pair(work, Make_Memcpy(2 * (Deep_Bytes(GB_FORMAT_SHORT, width, height) +
                                                    Deep_Bytes(GB_FORMAT_RGB, width, height) +
                                                    Deep_Bytes(GB_FORMAT_BYTE, width, height))));
        },
        15);
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Moves();
    for (Type const& type : types) {
        Register_Extraction(std::string("one_") + type.name, type.type, false, 1, false);
        Register_Extraction(std::string("others_") + type.name, type.type, false, 0, false);
    }
    Register_Extraction("one_noise", ZV_BITMAP_RGBA8, true, 1, false);
    Register_Extraction("others_noise", ZV_BITMAP_RGBA8, true, 0, false);
    Register_Extraction("one_channels", ZV_BITMAP_RGBA8, false, 1, true);
    Register_Extraction("others_channels", ZV_BITMAP_RGBA8, false, 0, true);
    return true;
}();

}  // namespace
