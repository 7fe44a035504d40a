// Moving many rows of pixels.
#include "RowTransfer.h"

#include "StreamBytes.h"

#include <algorithm>
#include <cstring>
#include <functional>

static bool Do_Overlap(ZVSourceRows source, ZVTargetRows target, long bytes, long height)
{
    std::less<unsigned char const*> const isBefore;
    return isBefore(target.first, source.first + (height - 1) * source.rowBytes + bytes) &&
           isBefore(source.first, target.first + (height - 1) * target.rowBytes + bytes);
}

/// Moves rows in the order in which none is overwritten before it was read.
static void Move_Rows(ZVSourceRows source, ZVTargetRows target, long bytes, long height)
{
    bool const isUpwards = std::less<unsigned char const*>()(source.first, target.first);
    for (long i = 0; i < height; ++i) {
        long const y = isUpwards ? height - 1 - i : i;
        std::memmove(target.first + y * target.rowBytes, source.first + y * source.rowBytes,
                     static_cast<std::size_t>(bytes));
    }
}

void Copy_Rows(ZVSourceRows source, ZVTargetRows target, long bytes, long height)
{
    if (bytes <= 0 || height <= 0) return;
    if (source.rowBytes == bytes && target.rowBytes == bytes) {
        bytes *= height;
        height = 1;
    }
    if (Do_Overlap(source, target, bytes, height)) {
        Move_Rows(source, target, bytes, height);
        return;
    }
    bool const isStream = Is_Beyond_Cache(2 * bytes * height);
    for (long y = 0; y < height; ++y) {
        unsigned char const* const from = source.first + y * source.rowBytes;
        unsigned char* const to = target.first + y * target.rowBytes;
        if (isStream)
            Stream_Bytes(to, from, bytes);
        else
            std::memcpy(to, from, static_cast<std::size_t>(bytes));
    }
    if (isStream) Finish_Stream();
}

/// Converts one row through a buffer in the first-level cache and streams it from there.
static void Convert_And_Stream(unsigned char const* from, long fromPack, unsigned char* to, long toPack,
                               long width, ZVRowConverter convert)
{
    constexpr long bufferBytes = 8192;
    alignas(64) unsigned char buffer[bufferBytes];
    long const chunk = bufferBytes / toPack;
    for (long done = 0; done < width; done += chunk) {
        long const pixels = std::min(chunk, width - done);
        convert(from + done * fromPack, buffer, pixels);
        Stream_Bytes(to + done * toPack, buffer, pixels * toPack);
    }
}

void Convert_Rows(ZVSourceRows source, ZVRowFormat from, ZVTargetRows target, ZVRowFormat to, long width,
                  long height)
{
    ZVRowConverter const convert = Get_Row_Converter(from, to);
    if (!convert || width <= 0 || height <= 0) return;
    long const fromPack = Row_Pack_Size(from), toPack = Row_Pack_Size(to);
    if (source.rowBytes == width * fromPack && target.rowBytes == width * toPack) {
        width *= height;
        height = 1;
    }
    // A target that keeps its pad bytes is read as well, so there is nothing to gain.
    bool const isStream = to != ROW_NATIVE32 && Is_Beyond_Cache((fromPack + toPack) * width * height);
    for (long y = 0; y < height; ++y) {
        unsigned char const* const fromRow = source.first + y * source.rowBytes;
        unsigned char* const toRow = target.first + y * target.rowBytes;
        if (isStream)
            Convert_And_Stream(fromRow, fromPack, toRow, toPack, width, convert);
        else
            convert(fromRow, toRow, width);
    }
    if (isStream) Finish_Stream();
}
