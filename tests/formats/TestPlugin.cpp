// A Photoshop format plug-in for the tests, built once for each image mode (ZV_TEST_IMAGE_MODE). Its files
// are "TEST", then width, height, planes and bits of a channel as 16-bit words, then the samples pixel by
// pixel, all in the machine's order. How it goes about its work is in variables of the process:
//   ZV_TEST_TILES  width, height, layout and direction of the tiles; see Layout
//   ZV_TEST_FAIL   a selector and the result that it fails with
//   ZV_TEST_CALLS  what has been called, a list of selectors that grows
#include <ZVFormatRecord.h>

#include "files/ResourceFile.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace {

enum Layout { PixelByPixel, PlaneByPlane, PlaneTiles, Endless, Outside, WithResource };

struct Header {
    char mark[4];
    int16_t width, height, planes, depth;
};

/// What lasts from one selector to the next.
struct Work {
    Header header;
    std::vector<uint8_t> samples;
    int tileWidth, tileHeight, layout, isReversed;
    long next;
    BufferID buffer;
};
Work work;

long Sample_Size()
{
    return work.header.depth <= 8 ? 1 : work.header.depth <= 16 ? 2 : 4;
}

long Tile_Count(bool perPlane)
{
    long const across = (work.header.width + work.tileWidth - 1) / work.tileWidth;
    long const down = (work.header.height + work.tileHeight - 1) / work.tileHeight;
    return across * down * (perPlane ? work.header.planes : 1);
}

void Free_Tile(FormatRecord* record)
{
    if (work.buffer) record->bufferProcs->freeProc(work.buffer);
    work.buffer = nullptr;
    record->data = nullptr;
}

/// Goes to the next tile, in memory of exactly its size.
void Next_Tile(FormatRecord* record)
{
    Free_Tile(record);
    bool const perPlane = work.layout == PlaneTiles;
    long const count = Tile_Count(perPlane);
    if (work.next == count && work.layout == Endless) work.next = 0;
    if (work.next == count) return;
    long index = work.isReversed ? count - 1 - work.next : work.next;
    ++work.next;
    auto const plane = static_cast<int16_t>(perPlane ? index % work.header.planes : 0);
    if (perPlane) index /= work.header.planes;
    long const across = (work.header.width + work.tileWidth - 1) / work.tileWidth;
    long const left = index % across * work.tileWidth, top = index / across * work.tileHeight;
    long const width = std::min<long>(work.tileWidth, work.header.width - left);
    long const height = std::min<long>(work.tileHeight, work.header.height - top);
    long const planes = perPlane ? 1 : work.header.planes, size = Sample_Size();
    bool const isPlanar = work.layout != PixelByPixel;
    long const shift = work.layout == Outside ? 1000 : 0;
    record->theRect = {static_cast<int16_t>(top + shift), static_cast<int16_t>(left),
                       static_cast<int16_t>(top + height + shift), static_cast<int16_t>(left + width)};
    record->loPlane = plane;
    record->hiPlane = static_cast<int16_t>(plane + planes - 1);
    record->colBytes = static_cast<int16_t>(isPlanar ? size : planes * size);
    record->rowBytes =
        static_cast<int32_t>(work.header.depth == 1 ? (width + 7) / 8 : width * record->colBytes);
    record->planeBytes = perPlane ? 0 : static_cast<int32_t>(isPlanar ? height * record->rowBytes : size);
    record->bufferProcs->allocateProc(width * height * planes * size, &work.buffer);
    record->data = record->bufferProcs->lockProc(work.buffer, 0);
}

/// Calls `move` with each sample of the tile and its place in the picture.
template <typename Move> void For_Samples(FormatRecord* record, Move move)
{
    PIRect const& rect = record->theRect;
    auto* const data = static_cast<uint8_t*>(record->data);
    for (long y = rect.top; y < rect.bottom; ++y)
        for (long x = rect.left; x < rect.right; ++x)
            for (long plane = record->loPlane; plane <= record->hiPlane; ++plane) {
                long const row = (y - rect.top) * record->rowBytes;
                long const place = ((y * work.header.width + x) * work.header.planes + plane) * Sample_Size();
                move(data + row, x - rect.left,
                     row + (x - rect.left) * record->colBytes + plane * record->planeBytes, place);
            }
}

void Offer_Tile(FormatRecord* record)
{
    Next_Tile(record);
    if (!record->data || work.layout == Outside) return;
    auto* const data = static_cast<uint8_t*>(record->data);
    For_Samples(record, [&](uint8_t* row, long column, long at, long place) {
        if (work.header.depth > 1)
            std::memcpy(data + at, &work.samples[static_cast<std::size_t>(place)],
                        static_cast<std::size_t>(Sample_Size()));
        else if (work.samples[static_cast<std::size_t>(place)])
            row[column / 8] |= static_cast<uint8_t>(0x80 >> column % 8);
        else
            row[column / 8] &= static_cast<uint8_t>(~(0x80 >> column % 8));
    });
}

/// Takes the tile that the host has filled.
void Take_Tile(FormatRecord* record)
{
    auto const* const data = static_cast<uint8_t const*>(record->data);
    For_Samples(record, [&](uint8_t*, long, long at, long place) {
        std::memcpy(&work.samples[static_cast<std::size_t>(place)], data + at,
                    static_cast<std::size_t>(Sample_Size()));
    });
}

short Begin()
{
    char const* const tiles = std::getenv("ZV_TEST_TILES");
    work.tileWidth = work.tileHeight = 1000;
    work.layout = work.isReversed = 0;
    work.next = 0;
    if (tiles)
        std::sscanf(tiles, "%d,%d,%d,%d", &work.tileWidth, &work.tileHeight, &work.layout, &work.isReversed);
    Header const& header = work.header;
    if (header.width < 1 || header.height < 1 || header.planes < 1 || header.planes > 5)
        return formatCannotRead;
    work.samples.assign(static_cast<std::size_t>(header.width) *
                            static_cast<std::size_t>(header.height * header.planes * Sample_Size()),
                        0);
    return 0;
}

short Start_Reading(FormatRecord* record)
{
    auto const file = static_cast<int>(record->dataFork);
    if (pread(file, &work.header, sizeof work.header, 0) != sizeof work.header) return eofErr;
    if (std::memcmp(work.header.mark, "TEST", 4) != 0) return formatCannotRead;
    if (short const result = Begin()) return result;
    auto const size = static_cast<ssize_t>(work.samples.size());
    if (pread(file, work.samples.data(), work.samples.size(), sizeof work.header) != size) return eofErr;
    record->imageMode = ZV_TEST_IMAGE_MODE;
    record->imageSize = {work.header.height, work.header.width};
    record->planes = work.header.planes;
    record->depth = work.header.depth;
    for (int i = 0; i < 256; ++i) {
        record->redLUT[i] = static_cast<uint8_t>(255 - i);
        record->greenLUT[i] = static_cast<uint8_t>(i / 2);
        record->blueLUT[i] = static_cast<uint8_t>(i ^ 0x55);
    }
    Offer_Tile(record);
    return 0;
}

short Start_Writing(FormatRecord* record)
{
    work.header = {
        {'T', 'E', 'S', 'T'}, record->imageSize.h, record->imageSize.v, record->planes, record->depth};
    short const result = Begin();
    if (result == 0) Next_Tile(record);
    return result;
}

short Finish_Writing(FormatRecord* record)
{
    auto* const file = reinterpret_cast<ZVFileInfo*>(record->minDataBytes);
    bool const isWritten = WriteFileZV(file, &work.header, sizeof work.header) &&
                           WriteFileZV(file, work.samples.data(), work.samples.size());
    if (work.layout == WithResource)
        static_cast<ZVResourceFile*>(record->rsrcFork)->Add(ZV_FourCC("TEST"), 128, "", work.samples);
    Free_Tile(record);
    return isWritten ? short{0} : short{dskFulErr};
}

short Ask_Options(FormatRecord* record)
{
    if (record->revertInfo) record->hostDisposeHdl(record->revertInfo);
    record->revertInfo = record->hostNewHdl(4);
    std::memcpy(record->handleProcs->lockProc(record->revertInfo, 0), "opts", 4);
    return 0;
}

short Filter_File(FormatRecord* record)
{
    char mark[4] = "";
    bool const isMine =
        pread(static_cast<int>(record->dataFork), mark, 4, 0) == 4 && std::memcmp(mark, "TEST", 4) == 0;
    return isMine ? short{0} : short{formatCannotRead};
}

short Do(short selector, FormatRecord* record)
{
    switch (selector) {
    case formatSelectorReadStart: return Start_Reading(record);
    case formatSelectorReadContinue: return Offer_Tile(record), short{0};
    case formatSelectorReadFinish:
    case formatSelectorEstimateFinish: return Free_Tile(record), short{0};
    case formatSelectorOptionsStart: return Ask_Options(record);
    case formatSelectorEstimateStart:
    case formatSelectorWriteStart: return Start_Writing(record);
    case formatSelectorEstimateContinue:
    case formatSelectorWriteContinue: return Take_Tile(record), Next_Tile(record), short{0};
    case formatSelectorWriteFinish: return Finish_Writing(record);
    case formatSelectorFilterFile: return Filter_File(record);
    default: return 0;
    }
}

void Main(short selector, FormatRecord* record, long* data, short* result)
{
    ++*data;
    char calls[1000];
    char const* const before = std::getenv("ZV_TEST_CALLS");
    if (std::snprintf(calls, sizeof calls, "%s%d ", before ? before : "", selector) < 1000)
        setenv("ZV_TEST_CALLS", calls, 1);
    int failing = -1, failure = 0;
    if (char const* const fail = std::getenv("ZV_TEST_FAIL")) std::sscanf(fail, "%d,%d", &failing, &failure);
    bool const fails = selector == failing;
    if (fails && (selector == formatSelectorReadFinish || selector == formatSelectorWriteFinish))
        Free_Tile(record);
    *result = fails ? static_cast<short>(failure) : Do(selector, record);
}

}  // namespace

ZV_FORMAT_PLUGIN(Main)
