// Scaling G-buffers by point sampling. Front planes are sampled like bitmaps; a row's further samples are
// gathered in a stage, run by run, and written from there in one go.
#include "GBufferRows.h"
#include "RowSampler.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <hwy/cache_control.h>
#include <optional>

namespace {

constexpr long mostSamples = UINT16_MAX;  // in a row: X values reach no further
constexpr long blockBytes = 16;

/// Columns of the source whose pixels stand side by side in the target too.
struct ColumnRun {
    int32_t first, end;
};

/// The runs that the columns of a target come from, from left to right.
class ColumnRuns {
public:
    ColumnRuns(long step, long columns)
        : runs_(
              static_cast<ColumnRun*>(AllocMemZV(static_cast<unsigned long>(columns) * sizeof(ColumnRun), 0)))
    {
        for (long i = 0; i < columns; ++i) {
            auto const column = static_cast<int32_t>(i * step >> 16);
            if (count_ == 0 || runs_.get()[count_ - 1].end != column) runs_.get()[count_++].first = column;
            runs_.get()[count_ - 1].end = column + 1;
        }
    }

    long Count() const { return count_; }
    ColumnRun const& operator[](long i) const { return runs_.get()[i]; }

private:
    HeapBlock<ColumnRun> runs_;
    long count_ = 0;
};

/// The samples of a source row.
struct SampleRow {
    uint16_t const* x;
    unsigned char const* samples;
    long known;             ///< samples that are there
    uint16_t const* nextX;  ///< X values and samples of the row that will be made after this one
    unsigned char const* next;
};

/// Gathers the further samples of the pixels that a row of the target takes.
template <int N> class SampleGatherer {
public:
    SampleGatherer(SampleRow const& row, ColumnRuns const& runs, unsigned char* stage)
        : row_(row), runs_(runs), to_(stage), full_(stage + mostSamples * N)
    {
    }

    /// Tells where the samples end.
    unsigned char const* Gather()
    {
        long whole = runs_.Count();
        while (whole > 0 && row_.x[runs_[whole - 1].end] * N + blockBytes > row_.known * N)
            --whole;
        Copy_Blocks(whole);
        Copy_Exactly(whole);
        return std::min(to_, full_);
    }

private:
    /// Copies whole blocks: what a block holds too many, the next one overwrites. The runs are followed by a
    /// block's worth of samples.
    void Copy_Blocks(long runs)
    {
        constexpr long stretch = 64;  // of runs, between which the next row is fetched
        for (long first = 0; first < runs; first += stretch) {
            long const end = std::min(first + stretch, runs);
            ColumnRun const columns = {runs_[first].first, runs_[end - 1].end};
            Fetch_Ahead(row_.nextX, columns.first, columns.end);
            Fetch_Ahead(row_.next, row_.x[columns.first] * N, row_.x[columns.end] * N);
            Copy_Blocks(first, end);
        }
    }

    void Copy_Blocks(long first, long end)
    {
        // Bytes may overlap anything, so what the loop reads is kept out of their reach.
        unsigned char* to = to_;
        unsigned char* const full = full_;
        uint16_t const* const x = row_.x;
        unsigned char const* const samples = row_.samples;
        for (ColumnRun const *run = &runs_[first], *last = run + (end - first); run < last && to < full;
             ++run) {
            unsigned long const begin = x[run->first], bytes = (x[run->end] - begin) * N;
            unsigned char const* const from = samples + begin * N;
            std::memcpy(to, from, blockBytes);
            for (unsigned long done = blockBytes; done < bytes; done += blockBytes)
                std::memcpy(to + done, from + done, blockBytes);
            to += bytes;
        }
        to_ = to;
    }

    /// Brings a part of the next row into the cache: rows that lie apart are beyond the foresight of the
    /// processor.
    template <typename T> static void Fetch_Ahead(T const* row, long begin, long end)
    {
        constexpr long line = 64 / sizeof(T);
        for (long i = begin; i < end; i += line)
            hwy::Prefetch(row + i);
    }

    void Copy_Exactly(long first)
    {
        for (long i = first; i < runs_.Count() && to_ < full_; ++i) {
            long const begin = std::min<long>(row_.x[runs_[i].first], row_.known);
            long const bytes = (std::min<long>(row_.x[runs_[i].end], row_.known) - begin) * N;
            if (bytes == 0) continue;
            std::memcpy(to_, row_.samples + begin * N, static_cast<std::size_t>(bytes));
            to_ += bytes;
        }
    }

    SampleRow row_;
    ColumnRuns const& runs_;
    unsigned char* to_;
    unsigned char* full_;
};

/// Samplers of rows in which all pixels have as many samples, by the bytes that these take: there a pixel's
/// samples are sampled like one larger pixel.
class EvenSamplers {
public:
    EvenSamplers(ZVGBuffer const& source, ZVGBuffer const& target, long step)
        : source_(source), columns_(target.Width), step_(step)
    {
    }

    /// Samples such a row into `stage`, and tells the bytes; -1 for any other row.
    long Sample(SampleRow const& row, unsigned char* stage)
    {
        long const each = row.x[1] - row.x[0], bytes = each * source_.Stride;
        bool const fits =
            bytes <= most && columns_ * each <= mostSamples && row.x[source_.Width] <= row.known;
        if (!fits || !Is_Even(row.x)) return -1;
        if (bytes == 0) return 0;
        auto& sampler = samplers_[bytes];
        if (!sampler) sampler.emplace(bytes, 0, step_, columns_, source_.Width);
        long const start = row.x[0] * source_.Stride;
        sampler->Sample(row.samples + start, row.next, stage);
        return columns_ * bytes;
    }

private:
    static constexpr long most = 6;  // bytes, which a sampler shuffles several at a time

    bool Is_Even(uint16_t const* x) const
    {
        auto const each = static_cast<uint16_t>(x[1] - x[0]);
        uint16_t differs = 0;  // as wide as the elements, for the vectoriser
        for (long i = 0; i < source_.Width; ++i)
            differs = static_cast<uint16_t>(differs | (static_cast<uint16_t>(x[i + 1] - x[i]) ^ each));
        return differs == 0;
    }

    ZVGBuffer const& source_;
    long columns_;
    long step_;
    std::array<std::optional<RowSampler>, most + 1> samplers_;
};

/// A row of the target in the making: its front samples and its further ones.
class RowStage {
public:
    RowStage(ZVGBuffer const& source, ZVGBuffer const& target, long stepX, ZVGBuffer const* xValues)
        : source_(source), runs_(stepX, target.Width), even_(source, target, stepX),
          xValues_(xValues, source), sampler_(source.Stride, 0, stepX, target.Width, source.Width),
          front_(Alloc(target.RowBytes))
    {
        // The run that fills the row may have as many samples again.
        if (Is_Deep()) samples_ = Alloc(2 * mostSamples * source.Stride + blockBytes);
    }

    bool Is_Deep() const { return xValues_.Exist(); }

    /// @param next  the row that will be made after this one
    void Make(long row, long next)
    {
        sampler_.Sample(Front_Row(source_, row), Front_Row(source_, next), front_.get());
        if (Is_Deep()) Make_Samples(row, next);
    }

    unsigned char const* Front() const { return front_.get(); }
    unsigned char const* Samples() const { return samples_.get(); }
    long Sample_Bytes() const { return sampleBytes_; }

private:
    static HeapBlock<unsigned char> Alloc(long bytes)
    {
        return HeapBlock<unsigned char>(
            static_cast<unsigned char*>(AllocMemZV(static_cast<unsigned long>(bytes), 0)));
    }

    template <int N> unsigned char const* Gather(SampleRow const& row)
    {
        return SampleGatherer<N>(row, runs_, samples_.get()).Gather();
    }

    void Make_Samples(long row, long next)
    {
        ZVGBufferLayerData const& layer = source_.Layers[row];
        unsigned char const* const ahead = source_.Layers[next].Records;
        SampleRow const from = {xValues_.Row(row), layer.Records, Sample_Count(layer), xValues_.Seen(next),
                                ahead ? ahead : layer.Records};
        sampleBytes_ = even_.Sample(from, samples_.get());
        if (sampleBytes_ >= 0) return;
        unsigned char const* end;
        switch (source_.Stride) {
        case 1: end = Gather<1>(from); break;
        case 2: end = Gather<2>(from); break;
        case 3: end = Gather<3>(from); break;
        case 4: end = Gather<4>(from); break;
        default: end = Gather<8>(from); break;
        }
        sampleBytes_ = end - samples_.get();
    }

    ZVGBuffer const& source_;
    ColumnRuns runs_;
    EvenSamplers even_;
    XValueRows xValues_;
    RowSampler sampler_;
    HeapBlock<unsigned char> front_;
    HeapBlock<unsigned char> samples_;
    long sampleBytes_ = 0;
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
        if (stage.Is_Deep() &&
            layer.set_layer_recs(static_cast<unsigned long>(stage.Sample_Bytes() / dst->Stride)))
            move(layer.Records, stage.Samples(), stage.Sample_Bytes());
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
