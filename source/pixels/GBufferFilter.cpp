// Channels reduced to the samples of one object, or of all others. Every channel is filtered by itself: the
// ids and X values of the input tell what stays where.
#include "GBufferFilter.h"

#include "GBufferRows.h"
#include "ZVLibInternal.h"

#include <algorithm>
#include <memory>

namespace {

/// How a channel is filtered.
using ChannelFilter = void (*)(ZVGBuffer const&, ZVGBuffer*, SampleChoice const&, unsigned char const* fill,
                               ZVGBuffer const* xValues, ZVRectT<long> const&);

template <typename CopyN>
void Filter(ZVGBuffer const& src, ZVGBuffer* dst, SampleChoice const& choice, unsigned char const* fill,
            ZVGBuffer const* xValues, ZVRectT<long> const& area)
{
    extract_1_GB_layer(CopyN(), src, dst, choice.id, fill, choice.ids, choice.mode, xValues, &area);
}

/// Formats that channels come in, and their filters.
struct ChannelKind {
    ZVGBufferChannel channel;
    long stride;
    ChannelFilter filter;
    int fill;  ///< entry of the defaults
};
constexpr ChannelKind kinds[] = {
    {ZV_GBUFFER_Z, 4, Filter<Copy4>, 0},        {ZV_GBUFFER_MAT, 1, Filter<Copy1>, 1},
    {ZV_GBUFFER_OBJ, 2, Filter<Copy2>, 2},      {ZV_GBUFFER_UV, 8, Filter<Copy8>, 3},
    {ZV_GBUFFER_NORMAL, 4, Filter<Copy4>, 4},   {ZV_GBUFFER_REALPIX, 4, Filter<Copy4>, 5},
    {ZV_GBUFFER_COV, 1, Filter<Copy1>, 6},      {ZV_GBUFFER_BG, 3, Filter<Copy3>, 7},
    {ZV_GBUFFER_RENDERID, 2, Filter<Copy2>, 8}, {ZV_GBUFFER_COL, 3, Filter<Copy3>, 9},
    {ZV_GBUFFER_TRANS, 3, Filter<Copy3>, 10},   {ZV_GBUFFER_VEL, 8, Filter<Copy8>, 11},
    {ZV_GBUFFER_WEIGHT, 3, Filter<Copy3>, 12},  {ZV_GBUFFER_MASK, 2, Filter<Copy2>, 13},
};

ChannelKind const& Kind_Of(ZVGBufferChannel channel)
{
    return *std::ranges::find(kinds, channel, &ChannelKind::channel);
}

/// Tells of ids whether their samples are wanted.
template <typename Id> struct Choice {
    unsigned id;
    bool keeps;

    bool operator()(unsigned char const* ids, long i) const
    {
        Id found;
        std::memcpy(&found, ids + i * static_cast<long>(sizeof found), sizeof found);
        return (found == id) == keeps;
    }
};

/// Calls `work` with the choice for the size of the ids.
template <typename Work> void With_Choice(ZVGBuffer const& ids, unsigned short id, long mode, Work&& work)
{
    if (ids.Stride == 1)
        work(Choice<uint8_t>{id, mode == 1});
    else
        work(Choice<uint16_t>{id, mode == 1});
}

/// The pixel whose samples are filtered.
struct PixelSamples {
    long x, begin, end;
};

}  // namespace

ZVGBuffer* Fitting_Channel(ZVGBufferArray const& array, ZVGBufferChannel channel, ZVGBuffer const& ids)
{
    ZVGBuffer* const buffer = array[channel];
    return buffer && Has_Size_Of(*buffer, ids) && buffer->Stride == Kind_Of(channel).stride ? buffer
                                                                                            : nullptr;
}

template <typename CopyN>
void extract_1_GB_layer(CopyN copy, ZVGBuffer const& src, ZVGBuffer* dst, unsigned short id,
                        unsigned char const* fill, ZVGBuffer const& ids, long mode, ZVGBuffer const* xValues,
                        ZVRectT<long> const* rect)
{
    constexpr long size = CopyN::size;
    XValueRows xRows(xValues, src);
    DeepRows idRows(ids);
    auto const bytes = static_cast<unsigned long>((UINT16_MAX + 1L) * size);
    HeapBlock<unsigned char> const stage(static_cast<unsigned char*>(AllocMemZV(bytes, 0)));
    With_Choice(ids, id, mode, [&](auto isWanted) {
        for (long y = rect->y; y <= rect->Bottom(); ++y) {
            uint16_t const* const x = xRows.Row(y);
            unsigned char const* const frontIds = Front_Row(ids, y);
            unsigned char const* const furtherIds = idRows.Row(y, x[src.Width]);
            unsigned char const* const samples = src.Layers[y].Records;
            long const known = Sample_Count(src.Layers[y]);
            unsigned char const* from = Front_Row(src, y) + rect->x * size;
            unsigned char* to = Front_Row(*dst, y) + rect->x * size;
            unsigned char* kept = stage.get();
            for (long i = rect->x; i <= rect->Right(); ++i, from += size, to += size) {
                long n = x[i];
                long const end = x[i + 1];
                if (isWanted(frontIds, i)) {
                    copy(to, from);
                } else {
                    while (n < end && !isWanted(furtherIds, n))
                        ++n;
                    if (n < std::min(end, known))
                        copy(to, samples + n * size);
                    else if (n < end)
                        std::memset(to, 0, size);
                    else
                        copy(to, fill);
                    ++n;
                }
                for (; n < std::min(end, known); ++n) {
                    copy(kept, samples + n * size);
                    if (isWanted(furtherIds, n)) kept += size;
                }
            }
            long const count = (kept - stage.get()) / size;
            ZVGBufferLayerData& row = dst->Layers[y];
            if (row.set_layer_recs(static_cast<unsigned long>(count)) && count)
                std::memcpy(row.Records, stage.get(), static_cast<std::size_t>(count * size));
        }
    });
}

#define ZV_FILTER_INSTANCE(COPY)                                                                             \
    template ZV_API void extract_1_GB_layer<COPY>(COPY, ZVGBuffer const&, ZVGBuffer*, unsigned short,        \
                                                  unsigned char const*, ZVGBuffer const&, long,              \
                                                  ZVGBuffer const*, ZVRectT<long> const*)
ZV_FILTER_INSTANCE(Copy1);
ZV_FILTER_INSTANCE(Copy2);
ZV_FILTER_INSTANCE(Copy3);
ZV_FILTER_INSTANCE(Copy4);
ZV_FILTER_INSTANCE(Copy8);

void extract_x_values(ZVGBuffer const& src, ZVGBuffer* dst, unsigned short id, ZVGBuffer const& ids,
                      long mode, ZVRectT<long> const* rect)
{
    XValueRows xRows(&src, ids);
    DeepRows idRows(ids);
    With_Choice(ids, id, mode, [&](auto isWanted) {
        for (long y = rect->y; y <= rect->Bottom(); ++y) {
            uint16_t const* const x = xRows.Row(y);
            unsigned char const* const frontIds = Front_Row(ids, y);
            unsigned char const* const furtherIds = idRows.Row(y, x[ids.Width]);
            uint16_t* const out = Short_Row(*dst, y);
            std::fill(out, out + rect->x + 1, uint16_t{0});
            long total = 0;
            for (long i = rect->x; i <= rect->Right(); ++i) {
                long count = 0;
                for (long n = x[i]; n < x[i + 1]; ++n)
                    count += isWanted(furtherIds, n);
                if (count && !isWanted(frontIds, i)) --count;  // the first one moves to the front
                total += count;
                out[i + 1] = static_cast<uint16_t>(total);
            }
            std::fill(out + rect->Right() + 2, out + ids.Width + 1, static_cast<uint16_t>(total));
        }
    });
}

void extract_weight(ZVGBuffer* weight, ZVGBuffer const* coverage, ZVGBuffer const* transparency,
                    ZVGBuffer const* xValues, ZVRectT<long> const* rect)
{
    double const* const fraction = ZVPixelBase::_byteToFracTbl;
    auto const sample = [](ZVGBuffer const* channel, long n, long y) {
        return static_cast<uint8_t const*>(GETGLAYERADR(channel, static_cast<int>(n), static_cast<int>(y)));
    };
    XValueRows xRows(xValues, *weight);
    for (long y = rect->y; y <= rect->Bottom(); ++y) {
        uint16_t const* const x = xRows.Row(y);
        ZVGBufferLayerData& row = weight->Layers[y];
        bool const hasRow = row.set_layer_recs(x[weight->Width]);
        for (long i = rect->x; i <= rect->Right(); ++i) {
            double visible[3] = {};
            auto const weigh = [&](uint8_t const* covers, uint8_t const* clears, unsigned char* out) {
                for (int c = 0; c < 3; ++c) {
                    double const share = (1.0 - visible[c]) * (covers ? fraction[*covers] : 1.0);
                    out[c] = static_cast<unsigned char>(f_round(share * 255.0));
                    visible[c] += share * (1.0 - (clears ? fraction[clears[c]] : 0.0));
                }
            };
            weigh(coverage ? Front_Row(*coverage, y) + i : nullptr,
                  transparency ? Front_Row(*transparency, y) + 3 * i : nullptr,
                  Front_Row(*weight, y) + 3 * i);
            for (long n = x[i]; hasRow && n < x[i + 1]; ++n)
                weigh(coverage ? sample(coverage, n, y) : nullptr,
                      transparency ? sample(transparency, n, y) : nullptr, row.Records + 3 * n);
        }
    }
}

namespace {

/// Channels filtered into an output.
class Extraction {
public:
    Extraction(SampleChoice const& choice, ZVGBufferArray const& input, ZVGBufferArray const& output,
               unsigned long mask, ZVRectT<long> const& area)
        : choice_(choice), input_(input), output_(output), mask_(mask), area_(area)
    {
        ZVGBuffer const* const x = input[ZV_GBUFFER_X_VALUES];
        if (XValueRows(x, choice.ids).Exist()) xValues_ = x;
    }

    void Filter_All(bool keepsWeights)
    {
        if (ZVGBuffer* const x = Output_XValues()) Filter_XValues(x);
        for (ChannelKind const& kind : kinds) {
            bool const isWeight = kind.channel == ZV_GBUFFER_WEIGHT;
            if (!Is_Filtered(kind.channel)) continue;
            if (isWeight && !keepsWeights)
                Rebuild_Weights();
            else
                Filter_Into(kind.channel, output_[kind.channel]);
        }
    }

private:
    using Owned = std::unique_ptr<ZVGBuffer, Released_By<FreeGBufferZV>>;

    bool Is_Filtered(ZVGBufferChannel channel) const
    {
        ZVGBuffer const* const from = Fitting_Channel(input_, channel, choice_.ids);
        ZVGBuffer const* const to = Fitting_Channel(output_, channel, choice_.ids);
        return (mask_ & channel) && from && to && from != to;
    }

    void Filter_Into(ZVGBufferChannel channel, ZVGBuffer* target) const
    {
        ChannelKind const& kind = Kind_Of(channel);
        kind.filter(*input_[channel], target, choice_, DEFAULT_GB_VALUES[kind.fill], xValues_, area_);
    }

    ZVGBuffer* Output_XValues() const
    {
        ZVGBuffer* const to = output_[ZV_GBUFFER_X_VALUES];
        bool const isWanted = (mask_ & ZV_GBUFFER_X_VALUES) && xValues_ && to != xValues_;
        return isWanted && XValueRows(to, choice_.ids).Exist() ? to : nullptr;
    }

    void Filter_XValues(ZVGBuffer* target) const
    {
        extract_x_values(*xValues_, target, choice_.id, choice_.ids, choice_.mode, &area_);
    }

    /// The channel as it is filtered in the output, or here when it is not there. Null when the input has
    /// none.
    ZVGBuffer const* Filtered(ZVGBufferChannel channel, Owned& own) const
    {
        if (Is_Filtered(channel)) return output_[channel];
        ZVGBuffer const* const from = Fitting_Channel(input_, channel, choice_.ids);
        if (from) own.reset(AllocGBufferZV(from->Width, from->Height, from->Format));
        if (own) Filter_Into(channel, own.get());
        return own.get();
    }

    void Rebuild_Weights() const
    {
        Owned ownCoverage, ownTransparency, ownXValues;
        ZVGBuffer const* const coverage = Filtered(ZV_GBUFFER_COV, ownCoverage);
        ZVGBuffer const* const transparency = Filtered(ZV_GBUFFER_TRANS, ownTransparency);
        ZVGBuffer const* xValues = Output_XValues();
        if (!xValues && xValues_) {
            ownXValues.reset(AllocGBufferZV(xValues_->Width, xValues_->Height, GB_FORMAT_SHORT));
            if (ownXValues) Filter_XValues(ownXValues.get());
            xValues = ownXValues.get();
        }
        extract_weight(output_[ZV_GBUFFER_WEIGHT], coverage, transparency, xValues, &area_);
    }

    SampleChoice const& choice_;
    ZVGBufferArray const& input_;
    ZVGBufferArray const& output_;
    unsigned long mask_;
    ZVRectT<long> const& area_;
    ZVGBuffer const* xValues_ = nullptr;  // of the input
};

}  // namespace

void Filter_Channels(SampleChoice const& choice, ZVGBufferArray const& input, ZVGBufferArray const& output,
                     unsigned long mask, bool keepsWeights, ZVRectT<long> const& area)
{
    Extraction(choice, input, output, mask, area).Filter_All(keepsWeights);
}
