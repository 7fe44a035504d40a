// G-buffers: their memory, defaults, and how rows are seen.
#include "GBufferRows.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <new>
#include <numeric>
#include <utility>

int32_t const GBufferFormatStride[ZV_GBUFFER_FORMATS] = {1, 2, 4, 4, 3, 8, 8, 4};

alignas(8) uint8_t gUByteDummy[8];
alignas(8) uint16_t gUShortDummy[4];
alignas(8) int32_t gLongDummy[2];
alignas(8) float gFloatDummy[2];

// -1e30F and 0xFFFF, in the machine's order of bytes.
static constexpr auto zBytes = std::bit_cast<std::array<unsigned char, 4>>(_DEFAULT_Z_VAL);

unsigned char const DEFAULT_GB_VALUES[14][8] = {{zBytes[0], zBytes[1], zBytes[2], zBytes[3]},
                                                {},
                                                {},
                                                {},
                                                {},
                                                {},
                                                {},
                                                {},
                                                {0xFF, 0xFF},
                                                {},
                                                {},
                                                {},
                                                {},
                                                {}};

void* GBuffer_Dummy(GBufferFormat format)
{
    switch (format) {
    case GB_FORMAT_SHORT: return gUShortDummy;
    case GB_FORMAT_LONG:
    case GB_FORMAT_LONG2: return gLongDummy;
    case GB_FORMAT_FLOAT:
    case GB_FORMAT_FLOAT2: return gFloatDummy;
    default: return gUByteDummy;
    }
}

// ---- memory -----------------------------------------------------------------------------------------------

namespace {

constexpr long hugePageSize = 2 << 20;
constexpr long lineSize = 64;

/// In front of the row records. Their number stands in its last word.
constexpr std::size_t layerHeader = alignof(std::max_align_t);

void* Alloc_Plane(long size)
{
    bool const isHuge = size >= hugePageSize;
    void* const block = Alloc_Aligned(static_cast<unsigned long>(std::max(size, 1L)),
                                      static_cast<unsigned long>(isHuge ? hugePageSize : lineSize));
    if (block && isHuge) OS_Advise_Huge_Pages(block, static_cast<unsigned long>(size));
    return block;
}

ZVGBufferLayerData* Alloc_Layers(long rows, long stride)
{
    auto const count = static_cast<std::size_t>(rows);
    auto* const block = static_cast<unsigned char*>(
        Alloc_Aligned(layerHeader + count * sizeof(ZVGBufferLayerData), layerHeader));
    if (!block) return nullptr;
    auto const word = static_cast<uint32_t>(rows);
    std::memcpy(block + layerHeader - sizeof word, &word, sizeof word);
    auto* const layers = reinterpret_cast<ZVGBufferLayerData*>(block + layerHeader);
    std::uninitialized_fill_n(layers, count, ZVGBufferLayerData{0, static_cast<uint32_t>(stride), nullptr});
    return layers;
}

void Free_Layers(ZVGBufferLayerData* layers)
{
    if (!layers) return;
    auto* const block = reinterpret_cast<unsigned char*>(layers) - layerHeader;
    uint32_t count;
    std::memcpy(&count, block + layerHeader - sizeof count, sizeof count);
    for (uint32_t y = 0; y < count; ++y)
        FreeMemZV(layers[y].Records);
    FreeMemZV(block);
}

void Free_Planes(ZVGBuffer& buffer)
{
    FreeMemZV(buffer.Data);
    Free_Layers(buffer.Layers);
    buffer.Data = nullptr;
    buffer.Layers = nullptr;
    buffer.Width = buffer.Height = buffer.Stride = buffer.RowBytes = buffer.DataSize = 0;
}

}  // namespace

bool ZVGBufferLayerData::set_layer_recs(unsigned long count)
{
    if (count == Count) return true;
    FreeMemZV(Records);
    Records = nullptr;
    Count = 0;
    if (count == 0) return true;
    if (count <= UINT32_MAX)
        Records = static_cast<unsigned char*>(Alloc_Aligned(count * Stride, alignof(std::max_align_t)));
    if (!Records) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    Count = static_cast<uint32_t>(count);
    return true;
}

bool Shape_GBuffer(ZVGBuffer& buffer, long width, long height, GBufferFormat format)
{
    Free_Planes(buffer);
    bool const isPossible =
        format < ZV_GBUFFER_FORMATS && width >= 0 && height >= 0 && width <= INT32_MAX && height <= INT32_MAX;
    __int128 const size = isPossible ? __int128{width} * height * GBufferFormatStride[format] : 0;
    // Rows as well as the plane are counted in 31 bits.
    if (!isPossible || size > INT32_MAX || width * GBufferFormatStride[format] > INT32_MAX) {
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    buffer.Data = static_cast<unsigned char*>(Alloc_Plane(static_cast<long>(size)));
    if (buffer.Data) buffer.Layers = Alloc_Layers(height, GBufferFormatStride[format]);
    if (!buffer.Layers) {
        Free_Planes(buffer);
        SetError(ZV_ERR_MEMORY);
        return false;
    }
    buffer.Format = format;
    buffer.Stride = GBufferFormatStride[format];
    buffer.Width = static_cast<int32_t>(width);
    buffer.Height = static_cast<int32_t>(height);
    buffer.RowBytes = buffer.Stride * buffer.Width;
    buffer.DataSize = buffer.Height * buffer.RowBytes;
    return true;
}

ZVGBuffer::ZVGBuffer(long width, long height, GBufferFormat format)
{
    if (!Shape_GBuffer(*this, width, height, format)) throw ZVBadAlloc();
}

ZVGBuffer::~ZVGBuffer()
{
    Free_Planes(*this);
}

ZVGBuffer* AllocGBufferZV(long width, long height, GBufferFormat format)
{
    std::unique_ptr<ZVGBuffer> buffer(new (std::nothrow) ZVGBuffer);
    if (!buffer) SetError(ZV_ERR_MEMORY);
    return buffer && Shape_GBuffer(*buffer, width, height, format) ? buffer.release() : nullptr;
}

void FreeGBufferZV(ZVGBuffer* buffer)
{
    delete buffer;
}

void FreeGBufferArrayZV(ZVGBufferArray* array)
{
    if (!array) return;
    for (ZVGBuffer*& buffer : array->Buffers)
        FreeGBufferZV(std::exchange(buffer, nullptr));
}

// ---- rows -------------------------------------------------------------------------------------------------

long Byte_Count(ZVGBuffer const& buffer)
{
    long bytes = buffer.DataSize;
    for (long y = 0; y < buffer.Height; ++y)
        bytes += Sample_Count(buffer.Layers[y]) * buffer.Stride;
    return bytes;
}

void Fill_Samples(unsigned char* target, long count, unsigned char const* sample, long stride)
{
    if (count < 1) return;
    // What is filled doubles until it is a block that stays in the first cache; that block is then repeated.
    constexpr long blockSamples = 1024;
    long const bytes = count * stride, block = blockSamples * stride;
    long done = std::min(stride, bytes);
    std::memcpy(target, sample, static_cast<std::size_t>(done));
    while (done < bytes) {
        long const next = std::min({done, bytes - done, block});
        std::memcpy(target + done, target, static_cast<std::size_t>(next));
        done += next;
    }
}

XValueRows::XValueRows(ZVGBuffer const* xValues, ZVGBuffer const& plane)
    : xValues_(xValues && xValues->Format == GB_FORMAT_SHORT && xValues->Height == plane.Height &&
                       xValues->Width - 1L == plane.Width
                   ? xValues
                   : nullptr),
      count_(plane.Width + 1L)
{
}

uint16_t const* XValueRows::Row(long y)
{
    uint16_t const* const row = xValues_ ? Short_Row(*xValues_, y) : nullptr;
    if (row) {
        uint16_t falls = 0;  // as wide as the elements, for the vectoriser
        for (long x = 1; x < count_; ++x)
            falls = row[x] < row[x - 1] ? uint16_t{1} : falls;
        if (!falls) return row;
    }
    if (!mended_) {
        auto const bytes = static_cast<unsigned long>(count_) * sizeof(uint16_t);
        mended_.reset(static_cast<uint16_t*>(AllocMemZV(bytes, ZV_MEM_CLEAR)));
    }
    if (row)
        std::partial_sum(row, row + count_, mended_.get(), [](auto a, auto b) { return std::max(a, b); });
    return mended_.get();
}

unsigned char const* DeepRows::Row(long y, long count)
{
    ZVGBufferLayerData const& row = plane_.Layers[y];
    long const known = Sample_Count(row), stride = plane_.Stride;
    if (known >= count && known > 0) return row.Records;
    if (!padded_)
        padded_.reset(
            static_cast<unsigned char*>(AllocMemZV(static_cast<unsigned long>(UINT16_MAX * stride), 0)));
    if (known) std::memcpy(padded_.get(), row.Records, static_cast<std::size_t>(known * stride));
    std::memset(padded_.get() + known * stride, 0, static_cast<std::size_t>((count - known) * stride));
    return padded_.get();
}

// ---- clear ------------------------------------------------------------------------------------------------

void ClearGBuffersZV(ZVGBufferArray* array, unsigned long mask)
{
    if (!array) return;
    ZVGBuffer const* const allXValues = (*array)[ZV_GBUFFER_X_VALUES];
    constexpr int clearable = 13;
    for (int bit = 0; bit < clearable; ++bit) {
        ZVGBuffer* const buffer = array->Buffers[ZVGBufferArray::Slot(bit)];
        if (!(mask & 1UL << bit) || !buffer || buffer->Stride < 1 || buffer->Stride > 8) continue;
        unsigned char const* const sample = DEFAULT_GB_VALUES[bit];
        Fill_Samples(buffer->Data, long{buffer->Width} * buffer->Height, sample, buffer->Stride);
        XValueRows xValues(mask & ZV_GBUFFER_X_VALUES ? nullptr : allXValues, *buffer);
        for (long y = 0; y < buffer->Height; ++y) {
            ZVGBufferLayerData& row = buffer->Layers[y];
            if (row.set_layer_recs(xValues.Row(y)[buffer->Width]))
                Fill_Samples(row.Records, row.Count, sample, buffer->Stride);
        }
    }
}
