// Work on rows of any RGBA format as on arrays of channels, compiled for each instruction set: flat rows are
// such arrays, packed ones go through buffers, some pixels at a time.

// Included once for each target, hence no #pragma once.
#if defined(ZV_ROW_STAGES_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef ZV_ROW_STAGES_INL
#undef ZV_ROW_STAGES_INL
#else
#define ZV_ROW_STAGES_INL
#endif

#include "RowFormats-inl.h"

#include <algorithm>
#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace Rows {
namespace HWY_NAMESPACE {

enum class RowUse { read, write, change };

/// A row and what becomes of it.
template <typename Format, RowUse USE> class StagedRow {
public:
    using Place = AnyPlace<typename Format::Channel>;
    using Channels = std::conditional_t<USE == RowUse::read, Place const*, Place*>;
    using Address = std::conditional_t<USE == RowUse::read, void const*, void*>;

    explicit StagedRow(Address row) : row_(static_cast<Byte*>(row)) {}

    /// The channels of some pixels, until Close.
    Channels Open(long first, long count)
    {
        Byte* const pixels = row_ + first * Format::packSize;
        if constexpr (Format::isPacked) {
            if (USE != RowUse::write) Format::Unpack(pixels, buffer_, count);
            return reinterpret_cast<Channels>(buffer_);
        } else {
            return reinterpret_cast<Channels>(pixels);
        }
    }

    void Close(long first, long count)
    {
        if constexpr (Format::isPacked && USE != RowUse::read)
            Format::Pack(buffer_, row_ + first * Format::packSize, count);
    }

    /// Pixels that go through the buffers at a time.
    static constexpr long stagePixels = 256;

private:
    using Byte = std::conditional_t<USE == RowUse::read, uint8_t const, uint8_t>;

    Byte* row_;
    alignas(64) typename Format::Channel buffer_[Format::isPacked ? stagePixels * 4 : 1];
};

template <typename Format> using ReadRow = StagedRow<Format, RowUse::read>;
template <typename Format> using WrittenRow = StagedRow<Format, RowUse::write>;
template <typename Format> using ChangedRow = StagedRow<Format, RowUse::change>;

/// Calls `work` with a count of pixels and the channels of the rows, until all pixels are done.
template <typename Format, typename Work, RowUse... USES>
void Work_On(long pixels, Work&& work, StagedRow<Format, USES>&&... rows)
{
    long const stage = Format::isPacked ? ReadRow<Format>::stagePixels : std::max(pixels, 1L);
    for (long first = 0; first < pixels; first += stage) {
        long const count = std::min(stage, pixels - first);
        work(count, rows.Open(first, count)...);
        (rows.Close(first, count), ...);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace Rows
HWY_AFTER_NAMESPACE();

#endif
