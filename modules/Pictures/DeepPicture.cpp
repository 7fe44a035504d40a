// Deep pictures.
#include "DeepPicture.h"

#include <OpenImageIO/deepdata.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace {

constexpr int RowsAtOnce = 16;
constexpr std::size_t MostRowSamples = 65535;  // what an X value counts to

// ---- samples ----------------------------------------------------------------------------------------------

/// What a sample may tell, each from one channel of the file.
enum Field {
    DEPTH,
    ALPHA,
    RED,
    GREEN,
    BLUE,
    OBJECT,
    MATERIAL,
    RENDER,
    VELOCITY_X,
    VELOCITY_Y,
    TEXTURE_U,
    TEXTURE_V,
    FIELDS
};

/// Fields of a sample by number; those that the file does not have are 0, but ALPHA 1.
using DeepSample = std::array<double, FIELDS>;

/// The channel of each field; -1 for none.
using FieldChannels = std::array<int, FIELDS>;

/// Plain names of the channels of each field.
constexpr std::array<std::initializer_list<char const*>, FIELDS> fieldNames{{
    {"z", "depthz", "depth"},
    {"a", "alpha"},
    {"r", "red"},
    {"g", "green"},
    {"b", "blue"},
    {"id", "objectid", "object"},
    {"materialid", "matid", "material"},
    {"renderid", "passid"},
    {"velocityx", "velx", "vx", "motionx", "forwardu"},
    {"velocityy", "vely", "vy", "motiony", "forwardv"},
    {"u", "uvu", "uvx"},
    {"v", "uvv", "uvy"},
}};

FieldChannels Find_Fields(OIIO::ImageSpec const& spec)
{
    FieldChannels channels;
    channels.fill(-1);
    for (std::size_t field = 0; field < FIELDS; ++field)
        for (std::size_t i = spec.channelnames.size(); i-- > 0;)
            if (std::ranges::find(fieldNames[field], Plain_Name(spec.channelnames[i])) !=
                fieldNames[field].end())
                channels[field] = static_cast<int>(i);
    return channels;
}

/// The samples of one pixel, nearest first; of those at one depth the first in the file.
class PixelSamples {
public:
    explicit PixelSamples(FieldChannels const& channels) : channels_(channels) {}

    /// The reference stays valid until the next call.
    std::vector<DeepSample> const& Read(OIIO::DeepData const& data, int64_t pixel)
    {
        samples_.resize(static_cast<std::size_t>(data.samples(pixel)));
        for (std::size_t i = 0; i < samples_.size(); ++i)
            for (std::size_t field = 0; field < FIELDS; ++field)
                samples_[i][field] = Value(data, pixel, field, static_cast<int>(i));
        std::ranges::stable_sort(samples_, {}, [](DeepSample const& sample) { return sample[DEPTH]; });
        return samples_;
    }

private:
    double Value(OIIO::DeepData const& data, int64_t pixel, std::size_t field, int sample) const
    {
        int const channel = channels_[field];
        if (channel < 0) return field == ALPHA ? 1.0 : 0.0;
        if (data.channeltype(channel) == OIIO::TypeUInt) return data.deep_value_uint(pixel, channel, sample);
        double const value = data.deep_value(pixel, channel, sample);
        // No number has no place in the order of the others.
        return std::isnan(value) ? 0.0 : value;
    }

    FieldChannels channels_;
    std::vector<DeepSample> samples_;
};

/// Calls `take(data, first pixel, y)` for each row of a part, y from 0. False when a row cannot be read.
template <typename Take> bool Read_Rows(PictureFile& file, int part, Take&& take)
{
    OIIO::ImageSpec const& spec = file.Spec(part);
    OIIO::DeepData data;
    int const step = spec.tile_width > 0 ? spec.height : RowsAtOnce;
    for (int y = 0; y < spec.height; y += step) {
        int const rows = std::min(step, spec.height - y);
        bool const isRead = spec.tile_width > 0
                                ? file.Input().read_native_deep_image(part, 0, data)
                                : file.Input().read_native_deep_scanlines(
                                      part, 0, spec.y + y, spec.y + y + rows, 0, 0, spec.nchannels, data);
        if (!isRead || data.pixels() < int64_t{rows} * spec.width) return false;
        for (int row = 0; row < rows; ++row)
            take(data, int64_t{row} * spec.width, y + row);
    }
    return true;
}

// ---- channels ---------------------------------------------------------------------------------------------

uint8_t Byte_Of(double fraction)
{
    return static_cast<uint8_t>(f_round(std::clamp(fraction, 0.0, 1.0) * 255.0));
}

/// A colour without its alpha, since a sample's weight comes from its coverage.
double Straight(DeepSample const& sample, Field colour)
{
    return sample[ALPHA] > 0.0 ? std::max(sample[colour] / sample[ALPHA], 0.0) : 0.0;
}

template <typename Number> void Put_Id(unsigned char* out, double value)
{
    // The low bits of an id that is longer.
    auto const bits = static_cast<Number>(static_cast<uint64_t>(std::clamp(value, 0.0, 4294967295.0)));
    std::memcpy(out, &bits, sizeof bits);
}

void Put_Pair(unsigned char* out, double x, double y)
{
    float const pair[] = {static_cast<float>(x), static_cast<float>(y)};
    std::memcpy(out, pair, sizeof pair);
}

/// Greater is nearer, as the depth of nothing, -1e30, is the smallest.
void Put_Depth(unsigned char* out, DeepSample const& sample)
{
    auto const depth = static_cast<float>(-sample[DEPTH]);
    std::memcpy(out, &depth, sizeof depth);
}

void Put_Real_Colour(unsigned char* out, DeepSample const& sample)
{
    double const colour[] = {Straight(sample, RED), Straight(sample, GREEN), Straight(sample, BLUE)};
    double const greatest = *std::ranges::max_element(colour);
    std::memset(out, 0, 4);
    if (!(greatest > 0x1p-127)) return;
    int exponent;
    std::frexp(std::min(greatest, 0x1p126), &exponent);
    for (int i = 0; i < 3; ++i)
        out[i] = Byte_Of(std::ldexp(colour[i], -exponent));
    out[3] = static_cast<unsigned char>(exponent + 128);
}

void Put_Colour(unsigned char* out, DeepSample const& sample)
{
    for (Field colour : {RED, GREEN, BLUE})
        *out++ = Byte_Of(Straight(sample, colour));
}

/// How a channel is made of samples.
struct DeepChannel {
    ZVGBufferChannel channel;
    GBufferFormat format;
    Field field;  ///< without it in the file, there is no such channel
    void (*put)(unsigned char* out, DeepSample const& sample);
};

constexpr DeepChannel deepChannels[] = {
    {ZV_GBUFFER_Z, GB_FORMAT_FLOAT, DEPTH, Put_Depth},
    {ZV_GBUFFER_MAT, GB_FORMAT_BYTE, MATERIAL,
     [](unsigned char* out, DeepSample const& sample) { Put_Id<uint8_t>(out, sample[MATERIAL]); }},
    {ZV_GBUFFER_OBJ, GB_FORMAT_SHORT, OBJECT,
     [](unsigned char* out, DeepSample const& sample) { Put_Id<uint16_t>(out, sample[OBJECT]); }},
    {ZV_GBUFFER_UV, GB_FORMAT_FLOAT2, TEXTURE_U,
     [](unsigned char* out, DeepSample const& sample) {
         Put_Pair(out, sample[TEXTURE_U], sample[TEXTURE_V]);
     }},
    {ZV_GBUFFER_REALPIX, GB_FORMAT_RGBA, RED, Put_Real_Colour},
    {ZV_GBUFFER_COV, GB_FORMAT_BYTE, ALPHA,
     [](unsigned char* out, DeepSample const& sample) { *out = Byte_Of(sample[ALPHA]); }},
    {ZV_GBUFFER_RENDERID, GB_FORMAT_SHORT, RENDER,
     [](unsigned char* out, DeepSample const& sample) { Put_Id<uint16_t>(out, sample[RENDER]); }},
    {ZV_GBUFFER_COL, GB_FORMAT_RGB, RED, Put_Colour},
    {ZV_GBUFFER_VEL, GB_FORMAT_FLOAT2, VELOCITY_X,
     [](unsigned char* out, DeepSample const& sample) {
         Put_Pair(out, sample[VELOCITY_X], sample[VELOCITY_Y]);
     }},
};

/// A channel that is being filled.
struct OpenChannel {
    DeepChannel const* kind;
    ZVGBuffer* buffer;
};

/// The buffer of a channel, made when the array has none; null when it does not fit or there is no memory.
ZVGBuffer* Fitting_Buffer(ZVGBufferArray& array, ZVGBufferChannel channel, long width, long height,
                          GBufferFormat format)
{
    ZVGBuffer*& buffer = array[channel];
    if (!buffer) buffer = AllocGBufferZV(width, height, format);
    bool const fits =
        buffer && buffer->Width == width && buffer->Height == height && buffer->Format == format;
    return fits ? buffer : nullptr;
}

/// A frame without samples.
void Clear_Channel(ZVGBuffer& buffer, unsigned char const* sample)
{
    for (unsigned char* at = buffer.Data; at < buffer.Data + buffer.DataSize; at += buffer.Stride)
        std::memcpy(at, sample, static_cast<std::size_t>(buffer.Stride));
    for (int y = 0; buffer.Layers && y < buffer.Height; ++y)
        buffer.Layers[y].set_layer_recs(0);
}

/// The samples of a row of the frame, apart as G-buffers keep them.
struct FrameRow {
    std::vector<DeepSample> front;
    std::vector<bool> isCovered;
    std::vector<DeepSample> further;
    std::vector<uint16_t> ends;  ///< behind the further samples of each pixel

    void Clear(long width)
    {
        front.assign(static_cast<std::size_t>(width), {});
        isCovered.assign(static_cast<std::size_t>(width), false);
        ends.assign(static_cast<std::size_t>(width), 0);
        further.clear();
    }

    void Set_Pixel(long x, std::vector<DeepSample> const& samples)
    {
        if (!samples.empty()) {
            auto const at = static_cast<std::size_t>(x);
            front[at] = samples[0];
            isCovered[at] = true;
            std::size_t const room = MostRowSamples - further.size();
            auto const count = std::min(samples.size() - 1, room);
            further.insert(further.end(), samples.begin() + 1,
                           samples.begin() + 1 + static_cast<std::ptrdiff_t>(count));
        }
        std::fill(ends.begin() + x, ends.end(), static_cast<uint16_t>(further.size()));
    }

    bool Store(OpenChannel const& channel, long y) const
    {
        ZVGBuffer& buffer = *channel.buffer;
        unsigned char* out = buffer.Data + y * buffer.RowBytes;
        for (std::size_t x = 0; x < front.size(); ++x, out += buffer.Stride)
            if (isCovered[x]) channel.kind->put(out, front[x]);
        ZVGBufferLayerData& layer = buffer.Layers[y];
        if (!layer.set_layer_recs(further.size())) return false;
        out = layer.Records;
        for (DeepSample const& sample : further) {
            channel.kind->put(out, sample);
            out += buffer.Stride;
        }
        return true;
    }

    void Store_Ends(ZVGBuffer& xValues, long y) const
    {
        unsigned char* const row = xValues.Data + y * xValues.RowBytes;
        std::memcpy(row + sizeof(uint16_t), ends.data(), ends.size() * sizeof(uint16_t));
    }
};

}  // namespace

int Deep_Part(PictureFile const& file, PictureLayer const& layer)
{
    if (file.Spec(layer).deep) return layer.part;
    for (int part = 0; part < file.Parts(); ++part)
        if (file.Spec(part).deep) return part;
    return -1;
}

unsigned long Deep_Channels(PictureFile const& file, int part)
{
    if (part < 0 || !file.Spec(part).deep) return 0;
    FieldChannels const fields = Find_Fields(file.Spec(part));
    unsigned long mask = ZV_GBUFFER_X_VALUES;
    for (DeepChannel const& channel : deepChannels)
        if (fields[channel.field] >= 0) mask |= channel.channel;
    return mask;
}

bool Flatten_Deep_Picture(PictureFile& file, PictureLayer const& layer, ZVBitmap& bitmap)
{
    FieldChannels channels = Find_Fields(file.Spec(layer));
    std::copy_n(layer.channels.begin(), 3, channels.begin() + RED);
    channels[ALPHA] = layer.channels[3];
    PixelSamples samples(channels);
    return Read_Rows(file, layer.part, [&](OIIO::DeepData const& data, int64_t first, int y) {
        auto* out = reinterpret_cast<float*>(bitmap.Pixels + y * bitmap.RowBytes);
        for (int x = 0; x < bitmap.Width; ++x, out += 4) {
            double sum[4] = {};
            for (DeepSample const& sample : samples.Read(data, first + x)) {
                double const open = 1.0 - sum[3];
                if (open <= 0.0) break;
                for (int i = 0; i < 4; ++i)
                    sum[i] += open * sample[i < 3 ? static_cast<std::size_t>(RED + i) : std::size_t{ALPHA}];
            }
            std::copy_n(sum, 4, out);
        }
    });
}

bool Read_Deep_Picture(PictureFile& file, int part, unsigned long mask, ZVGBufferArray& array)
{
    OIIO::ImageSpec const& spec = file.Spec(part);
    long const width = spec.full_width, height = spec.full_height;
    long const left = spec.x - spec.full_x, top = spec.y - spec.full_y;
    mask &= Deep_Channels(file, part);

    std::vector<OpenChannel> channels;
    for (DeepChannel const& kind : deepChannels) {
        if (!(mask & kind.channel)) continue;
        ZVGBuffer* const buffer = Fitting_Buffer(array, kind.channel, width, height, kind.format);
        if (!buffer) continue;
        Clear_Channel(*buffer, DEFAULT_GB_VALUES[std::countr_zero(static_cast<unsigned long>(kind.channel))]);
        channels.push_back({&kind, buffer});
    }
    ZVGBuffer* const xValues = mask & ZV_GBUFFER_X_VALUES ? Fitting_Buffer(array, ZV_GBUFFER_X_VALUES,
                                                                           width + 1, height, GB_FORMAT_SHORT)
                                                          : nullptr;
    if (xValues) std::memset(xValues->Data, 0, static_cast<std::size_t>(xValues->DataSize));

    PixelSamples samples(Find_Fields(spec));
    FrameRow row;
    bool hasMemory = true;
    bool const isRead = Read_Rows(file, part, [&](OIIO::DeepData const& data, int64_t first, int y) {
        long const frameY = top + y;
        if (frameY < 0 || frameY >= height) return;
        row.Clear(width);
        for (long x = std::max(0L, -left); x < spec.width && left + x < width; ++x)
            row.Set_Pixel(left + x, samples.Read(data, first + x));
        for (OpenChannel const& channel : channels)
            hasMemory = row.Store(channel, frameY) && hasMemory;
        if (xValues) row.Store_Ends(*xValues, frameY);
    });
    if (isRead) return hasMemory;
    file.Input().geterror();
    SetError(ZV_ERR_CLIP);
    return false;
}
