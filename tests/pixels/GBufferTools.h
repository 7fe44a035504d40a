// A plain picture of a deep channel, pixel by pixel, to compare G-buffers with.
#pragma once

#include "ZVLibInternal.h"

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

namespace DeepTest {

struct Deleter {
    void operator()(ZVGBuffer* buffer) const { FreeGBufferZV(buffer); }
};
using BufferPtr = std::unique_ptr<ZVGBuffer, Deleter>;

using Sample = std::vector<unsigned char>;
using Samples = std::vector<Sample>;  ///< of a pixel, the front one first

struct Plane {
    long width, height;
    GBufferFormat format;
    std::vector<Samples> pixels;

    Plane(long w, long h, GBufferFormat f) : width(w), height(h), format(f), pixels(std::size_t(w * h)) {}
    Samples& At(long x, long y) { return pixels[std::size_t(y * width + x)]; }
    Samples const& At(long x, long y) const { return pixels[std::size_t(y * width + x)]; }
    bool operator==(Plane const&) const = default;
};

/// Samples from a list of values, each in the bytes of its own type.
template <typename T> Samples Values(std::initializer_list<T> values)
{
    Samples samples;
    for (T const value : values) {
        samples.emplace_back(sizeof value);
        std::memcpy(samples.back().data(), &value, sizeof value);
    }
    return samples;
}

/// Up to `most` further samples behind each pixel; planes with one seed have as many everywhere.
inline Plane Random_Plane(long width, long height, GBufferFormat format, unsigned most = 4)
{
    Plane plane(width, height, format);
    std::mt19937 counts(7), random(static_cast<unsigned>(format) + 1);
    for (Samples& samples : plane.pixels) {
        samples.resize(1 + counts() % (most + 1));
        for (Sample& sample : samples)
            for (int i = 0; i < GBufferFormatStride[format]; ++i)
                sample.push_back(static_cast<unsigned char>(random()));
    }
    return plane;
}

inline BufferPtr Make_Buffer(long width, long height, GBufferFormat format)
{
    BufferPtr buffer(AllocGBufferZV(width, height, format));
    if (buffer) std::memset(buffer->Data, 0xEE, static_cast<std::size_t>(buffer->DataSize));
    return buffer;
}

inline BufferPtr To_Buffer(Plane const& plane)
{
    BufferPtr buffer = Make_Buffer(plane.width, plane.height, plane.format);
    for (long y = 0; y < plane.height; ++y) {
        Sample further;
        for (long x = 0; x < plane.width; ++x) {
            Samples const& samples = plane.At(x, y);
            std::memcpy(buffer->Data + y * buffer->RowBytes + x * buffer->Stride, samples[0].data(),
                        samples[0].size());
            for (std::size_t n = 1; n < samples.size(); ++n)
                further.insert(further.end(), samples[n].begin(), samples[n].end());
        }
        buffer->Layers[y].set_layer_recs(further.size() / std::size_t(buffer->Stride));
        if (!further.empty()) std::memcpy(buffer->Layers[y].Records, further.data(), further.size());
    }
    return buffer;
}

inline uint16_t& X_Value(ZVGBuffer const& buffer, long x, long y)
{
    return reinterpret_cast<uint16_t*>(buffer.Data + y * buffer.RowBytes)[x];
}

inline BufferPtr X_Values(Plane const& plane)
{
    BufferPtr buffer = Make_Buffer(plane.width + 1, plane.height, GB_FORMAT_SHORT);
    for (long y = 0; y < plane.height; ++y) {
        X_Value(*buffer, 0, y) = 0;
        for (long x = 0; x < plane.width; ++x)
            X_Value(*buffer, x + 1, y) =
                static_cast<uint16_t>(X_Value(*buffer, x, y) + plane.At(x, y).size() - 1);
    }
    return buffer;
}

/// What a buffer and its X values hold. Every row must have as many samples as they say.
inline Plane From_Buffer(ZVGBuffer& buffer, ZVGBuffer const& xValues)
{
    Plane plane(buffer.Width, buffer.Height, buffer.Format);
    for (long y = 0; y < plane.height; ++y) {
        EXPECT_EQ(buffer.Layers[y].Count, X_Value(xValues, plane.width, y)) << "row " << y;
        for (long x = 0; x < plane.width; ++x) {
            auto const add = [&](void const* from) {
                auto const* const bytes = static_cast<unsigned char const*>(from);
                plane.At(x, y).emplace_back(bytes, bytes + buffer.Stride);
            };
            add(buffer.Data + y * buffer.RowBytes + x * buffer.Stride);
            for (int n = X_Value(xValues, x, y); n < X_Value(xValues, x + 1, y); ++n)
                add(GETGLAYERADR(&buffer, n, static_cast<int>(y)));
        }
    }
    return plane;
}

}  // namespace DeepTest
