// Scaling G-buffers by point sampling. Front planes are sampled like bitmaps; a row's further samples are
// gathered in a stage, run by run, and written from there in one go.
#include "GBufferRows.h"
#include "RowSampler.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <hwy/cache_control.h>

namespace {

constexpr long mostSamples = UINT16_MAX;  // in a row: X values reach no further
constexpr long blockBytes = 16;

/// The further samples of one source pixel.
struct SampleRun {
    uint32_t begin, count;
};

/// Appends runs of samples of N bytes, in whole blocks where the row has the bytes that are copied too many,
/// and fetches the same places of the row that will be next into the cache.
template <int N>
unsigned char* Gather_Runs(SampleRun const* run, SampleRun const* end, unsigned char const* samples,
                           long known, unsigned char const* next, unsigned char* to)
{
    unsigned char const* const limit = samples + known * N;
    for (; run != end; ++run) {
        unsigned char const* from = samples + run->begin * N;
        long const bytes = long{run->count} * N;
        hwy::Prefetch(next + run->begin * N);
        if (from + bytes + blockBytes <= limit)
            for (long done = 0; done < bytes; done += blockBytes)
                std::memcpy(to + done, from + done, blockBytes);
        else
            std::memcpy(to, from, static_cast<std::size_t>(bytes));
        to += bytes;
    }
    return to;
}

/// A row of the target in the making: its front samples and its further ones.
class RowStage {
public:
    RowStage(ZVGBuffer const& source, ZVGBuffer const& target, long stepX, ZVGBuffer const* xValues)
        : source_(source), stepX_(stepX), columns_(target.Width), xValues_(xValues, source),
          sampler_(source.Stride, 0, stepX, columns_, source.Width),
          front_(Alloc<unsigned char>(target.RowBytes))
    {
        if (!xValues_.Exist()) return;
        runs_ = Alloc<SampleRun>(columns_);
        samples_ = Alloc<unsigned char>(mostSamples * source.Stride + blockBytes);
    }

    bool Is_Deep() const { return xValues_.Exist(); }

    /// @param next  the row that will be made after this one
    void Make(long row, long next)
    {
        sampler_.Sample(Front_Row(source_, row), Front_Row(source_, next), front_.get());
        if (Is_Deep()) Gather(row, next);
    }

    unsigned char const* Front() const { return front_.get(); }
    unsigned char const* Samples() const { return samples_.get(); }
    long Count() const { return count_; }

private:
    template <typename T> static HeapBlock<T> Alloc(long count)
    {
        return HeapBlock<T>(static_cast<T*>(AllocMemZV(static_cast<unsigned long>(count) * sizeof(T), 0)));
    }

    /// Lists what the columns have of `known` samples, as far as X values reach.
    SampleRun* List_Runs(long row, long known)
    {
        uint16_t const* const x = xValues_.Row(row);
        SampleRun* run = runs_.get();
        long room = mostSamples;
        for (long i = 0, position = 0; i < columns_; ++i, position += stepX_) {
            long const column = position >> 16;
            long const begin = std::min<long>(x[column], known);
            long const count = std::min(std::min<long>(x[column + 1], known) - begin, room);
            *run = {static_cast<uint32_t>(begin), static_cast<uint32_t>(count)};
            run += count > 0;
            room -= count;
        }
        count_ = mostSamples - room;
        return run;
    }

    void Gather(long row, long next)
    {
        long const known = Sample_Count(source_.Layers[row]);
        unsigned char const* const samples = source_.Layers[row].Records;
        unsigned char const* const nextSamples = source_.Layers[next].Records;
        unsigned char const* const ahead = nextSamples ? nextSamples : samples;
        SampleRun const* const end = List_Runs(row, known);
        switch (source_.Stride) {
        case 1: Gather_Runs<1>(runs_.get(), end, samples, known, ahead, samples_.get()); break;
        case 2: Gather_Runs<2>(runs_.get(), end, samples, known, ahead, samples_.get()); break;
        case 3: Gather_Runs<3>(runs_.get(), end, samples, known, ahead, samples_.get()); break;
        case 4: Gather_Runs<4>(runs_.get(), end, samples, known, ahead, samples_.get()); break;
        default: Gather_Runs<8>(runs_.get(), end, samples, known, ahead, samples_.get()); break;
        }
    }

    ZVGBuffer const& source_;
    long stepX_;
    long columns_;
    XValueRows xValues_;
    RowSampler sampler_;
    HeapBlock<unsigned char> front_;
    HeapBlock<SampleRun> runs_;
    HeapBlock<unsigned char> samples_;
    long count_ = 0;
};

}  // namespace

void ScaleGBufferZV(ZVGBuffer const* src, ZVGBuffer* dst, ZVGBuffer const* xValues)
{
    if (!src || !dst || src == dst || src->Format != dst->Format || src->Width < 1 || src->Height < 1 ||
        dst->Width < 1 || dst->Height < 1)
        return;
    long const stepX = src->Width * ZV_SCALE_ONE / dst->Width;
    long const stepY = src->Height * ZV_SCALE_ONE / dst->Height;
    auto const sourceRow = [=](long y) { return y * stepY >> 16; };
    RowStage stage(*src, *dst, stepX, xValues);
    ByteMover const move(Byte_Count(*src) + dst->DataSize);
    for (long y = 0; y < dst->Height; ++y) {
        long const row = sourceRow(y);
        if (y == 0 || row != sourceRow(y - 1)) stage.Make(row, sourceRow(std::min(y + 1, dst->Height - 1L)));
        move(Front_Row(*dst, y), stage.Front(), dst->RowBytes);
        ZVGBufferLayerData& layer = dst->Layers[y];
        if (stage.Is_Deep() && layer.set_layer_recs(static_cast<unsigned long>(stage.Count())))
            move(layer.Records, stage.Samples(), stage.Count() * dst->Stride);
    }
}

void ScaleGBufferXValsZV(ZVGBuffer const* src, ZVGBuffer* dst)
{
    if (!src || !dst || src == dst || src->Format != GB_FORMAT_SHORT || dst->Format != GB_FORMAT_SHORT ||
        src->Width < 1 || src->Height < 1 || dst->Width < 1 || dst->Height < 1)
        return;
    long const pixels = dst->Width - 1L;
    long const stepX = pixels ? (src->Width - 1L) * ZV_SCALE_ONE / pixels : 0;
    long const stepY = src->Height * ZV_SCALE_ONE / dst->Height;
    XValueRows rows(*src);
    for (long y = 0; y < dst->Height; ++y) {
        uint16_t const* const from = rows.Row(y * stepY >> 16);
        uint16_t* const to = Short_Row(*dst, y);
        to[0] = 0;
        for (long i = 0; i < pixels; ++i) {
            uint16_t const* const column = from + (i * stepX >> 16);
            to[i + 1] = static_cast<uint16_t>(std::min<long>(to[i] + column[1] - column[0], UINT16_MAX));
        }
    }
}
