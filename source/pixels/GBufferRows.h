// Rows of G-buffers as the operations on them see them: whatever X values and counts a file came with, no row
// view leads outside of what is there.
#pragma once

#include "StreamBytes.h"
#include "ZVGBuffer.h"

#include "foundation/HeapBlock.h"

#include <cstring>

/// Gives the buffer another shape in place of the one it has. False with error 1, and without samples, for
/// what AllocGBufferZV refuses.
bool Shape_GBuffer(ZVGBuffer& buffer, long width, long height, GBufferFormat format);

inline bool Has_Size_Of(ZVGBuffer const& buffer, ZVGBuffer const& other)
{
    return buffer.Width == other.Width && buffer.Height == other.Height;
}

inline unsigned char* Front_Row(ZVGBuffer const& buffer, long y)
{
    return buffer.Data + y * buffer.RowBytes;
}

/// A row of a plane of shorts.
inline uint16_t* Short_Row(ZVGBuffer const& buffer, long y)
{
    return reinterpret_cast<uint16_t*>(Front_Row(buffer, y));
}

/// Samples that are really there.
inline long Sample_Count(ZVGBufferLayerData const& row)
{
    return row.Records ? long{row.Count} : 0;
}

/// Fills a stretch of samples of `stride` bytes with one.
void Fill_Samples(unsigned char* target, long count, unsigned char const* sample, long stride);

/// Copies bytes to where they will not be read soon, past the cache when it is a matter of many.
class ByteMover {
public:
    /// @param bytes  of the whole work, read and written together
    explicit ByteMover(long bytes) : isStreamed_(Is_Beyond_Cache(bytes)) {}
    ~ByteMover()
    {
        if (isStreamed_) Finish_Stream();
    }
    ByteMover(ByteMover const&) = delete;
    ByteMover& operator=(ByteMover const&) = delete;

    void operator()(void* target, void const* source, long bytes) const
    {
        if (bytes <= 0) return;
        if (isStreamed_)
            Stream_Bytes(target, source, bytes);
        else
            std::memcpy(target, source, static_cast<std::size_t>(bytes));
    }

private:
    bool isStreamed_;
};

/// Bytes of a buffer, its further samples included.
long Byte_Count(ZVGBuffer const& buffer);

/// The X values of a plane, row by row: `Width` + 1 elements that never fall. A row in which they do is seen
/// with each element raised to the highest before it. Without X values, or with some of another shape, no
/// pixel has further samples.
class XValueRows {
public:
    XValueRows(ZVGBuffer const* xValues, ZVGBuffer const& plane);
    explicit XValueRows(ZVGBuffer const& xValues) : xValues_(&xValues), count_(xValues.Width) {}

    bool Exist() const { return xValues_ != nullptr; }
    uint16_t const* Row(long y);  ///< Good until the next call.

    /// The row as it is, where there are X values.
    uint16_t const* Seen(long y) const { return Short_Row(*xValues_, y); }

private:
    ZVGBuffer const* xValues_;
    long count_;
    HeapBlock<uint16_t> mended_;
};

/// The further samples of a plane, row by row, with zeros behind those that a row has.
class DeepRows {
public:
    explicit DeepRows(ZVGBuffer const& plane) : plane_(plane) {}

    /// At least `count` samples, 65535 at most. Good until the next call.
    unsigned char const* Row(long y, long count);

private:
    ZVGBuffer const& plane_;
    HeapBlock<unsigned char> padded_;
};
