// Scaling by point sampling. Every distinct source row is sampled, and converted, once: the sampled pixels or
// the whole stretch of the row, whichever are fewer; target rows that repeat it are copied.
#include "RowSampler.h"
#include "RowTransfer.h"
#include "StreamBytes.h"
#include "ZVBitmap.h"

#include <algorithm>
#include <cstring>

// ---- set-up -----------------------------------------------------------------------------------------------

/// One axis of ScaleSetup. Where the target starts outside, the source moves in by as many steps.
static void Setup_Axis(long from, long size, long to, long toSize, long limit, long& step, long& end,
                       long& start, long& position)
{
    step = size * ZV_SCALE_ONE;
    if (toSize > 0) step /= toSize;
    end = std::min(to + toSize, limit);
    start = to;
    position = from * ZV_SCALE_ONE;
    if (start < 0) {
        position -= start * step;
        start = 0;
    }
}

void ScaleSetup(long srcWidth, long srcHeight, long dstWidth, long dstHeight, ZVRectT<long> const* srcRect,
                ZVRectT<long> const* dstRect, long& stepX, long& stepY, long& endX, long& endY, long& startX,
                long& startY, long& sourceX, long& sourceY)
{
    ZVRectT<long> const from = srcRect ? *srcRect : ZVRectT<long>{0, 0, srcWidth, srcHeight};
    ZVRectT<long> const to = dstRect ? *dstRect : ZVRectT<long>{0, 0, dstWidth, dstHeight};
    Setup_Axis(from.x, from.width, to.x, to.width, dstWidth, stepX, endX, startX, sourceX);
    Setup_Axis(from.y, from.height, to.y, to.height, dstHeight, stepY, endY, startY, sourceY);
}

namespace {

/// Positions and counts of a scale, the target rectangle cut at the target's edges.
struct Sampling {
    long stepX, stepY, startX, startY, sourceX, sourceY, columns, rows;

    template <typename Source, typename Target>
    Sampling(Source const& source, Target const& target, ZVRectT<long> const* srcRect,
             ZVRectT<long> const* dstRect)
    {
        long endX, endY;
        ScaleSetup(source.Width, source.Height, target.Width, target.Height, srcRect, dstRect, stepX, stepY,
                   endX, endY, startX, startY, sourceX, sourceY);
        columns = endX - startX;
        rows = endY - startY;
    }
    bool IsEmpty() const { return columns < 1 || rows < 1; }
    bool IsRatioOne() const { return stepX == ZV_SCALE_ONE && stepY == ZV_SCALE_ONE; }
    long Row(long i) const { return (sourceY + i * stepY) >> 16; }

    // The stretch of a row from which pixels are taken.
    long FirstColumn() const { return std::min(sourceX, LastPosition()) >> 16; }
    long Stretch() const { return (std::max(sourceX, LastPosition()) >> 16) - FirstColumn() + 1; }

private:
    long LastPosition() const { return sourceX + (columns - 1) * stepX; }
};

// ---- rows -------------------------------------------------------------------------------------------------

using ByteBlock = HeapBlock<unsigned char>;

ByteBlock Alloc_Bytes(long size)
{
    return ByteBlock(static_cast<unsigned char*>(AllocMemZV(static_cast<unsigned long>(size), 0)));
}

/// Makes a row of the target out of a row of the source.
class RowMaker {
public:
    /// @param convert  null for rows of one type, which are sampled raw
    RowMaker(Sampling const& sampling, long fromPack, long fromWidth, ZVRowConverter convert, long toPack)
        : convert_(convert), columns_(sampling.columns), stretch_(sampling.Stretch()),
          stretchOffset_(sampling.FirstColumn() * fromPack), convertsFirst_(convert && columns_ > stretch_),
          isRun_(sampling.stepX == ZV_SCALE_ONE),
          sampler_(convertsFirst_
                       ? RowSampler(toPack, sampling.sourceX - sampling.FirstColumn() * ZV_SCALE_ONE,
                                    sampling.stepX, columns_, stretch_)
                       : RowSampler(fromPack, sampling.sourceX, sampling.stepX, columns_, fromWidth)),
          buffer_(Alloc_Bytes(convertsFirst_ ? stretch_ * toPack : columns_ * fromPack))
    {
    }

    /// @param next  the row that will be made after this one, or this one again
    void Make(unsigned char const* row, unsigned char const* next, unsigned char* target) const
    {
        if (!convert_) {
            sampler_.Sample(row, next, target);
        } else if (isRun_) {
            convert_(row + stretchOffset_, target, columns_);
        } else if (convertsFirst_) {
            convert_(row + stretchOffset_, buffer_.get(), stretch_);
            sampler_.Sample(buffer_.get(), buffer_.get(), target);
        } else {
            sampler_.Sample(row, next, buffer_.get());
            convert_(buffer_.get(), target, columns_);
        }
    }

private:
    ZVRowConverter convert_;
    long columns_;
    long stretch_;
    long stretchOffset_;
    bool convertsFirst_;
    bool isRun_;
    RowSampler sampler_;
    ByteBlock buffer_;
};

/// Makes and writes all rows. `source` starts at the source's own first pixel, `target` at the first to be
/// written.
void Scale_Rows(Sampling const& sampling, ZVSourceRows source, ZVTargetRows target, RowMaker const& maker,
                long toPack, bool isStreamed, bool keepsPadding)
{
    bool const isStaged = isStreamed || keepsPadding;
    long const bytes = sampling.columns * toPack;
    ByteBlock const stage = Alloc_Bytes(isStaged ? bytes : 0);
    if (keepsPadding) std::memset(stage.get(), 0, static_cast<std::size_t>(bytes));
    ZVRowConverter const placePadded = Get_Row_Converter(ROW_NATIVE32, ROW_NATIVE32);
    unsigned char const* made = nullptr;
    for (long i = 0; i < sampling.rows; ++i) {
        unsigned char* const row = target.first + i * target.rowBytes;
        if (!made || sampling.Row(i) != sampling.Row(i - 1)) {
            unsigned char* const place = isStaged ? stage.get() : row;
            long const next = sampling.Row(std::min(i + 1, sampling.rows - 1));
            maker.Make(source.first + sampling.Row(i) * source.rowBytes,
                       source.first + next * source.rowBytes, place);
            made = place;
        }
        if (keepsPadding)
            placePadded(made, row, sampling.columns);
        else if (isStreamed)
            Stream_Bytes(row, made, bytes);
        else if (made != row)
            std::memcpy(row, made, static_cast<std::size_t>(bytes));
    }
    if (isStreamed) Finish_Stream();
}

/// Scales between formats; `isRaw` when both bitmaps are of one type, which may be one without conversions.
template <typename Source, typename Target>
void Scale_Bitmap(Source const* source, ZVRowFormat from, Target* target, ZVRowFormat to, bool isRaw,
                  ZVRectT<long> const* srcRect, ZVRectT<long> const* dstRect)
{
    if (!source || !target || !source->Pixels || !target->Pixels) return;
    ZVRowConverter const convert = isRaw ? nullptr : Get_Row_Converter(from, to);
    Sampling const sampling(*source, *target, srcRect, dstRect);
    if (sampling.IsEmpty() || (!isRaw && !convert)) return;
    ZVTargetRows const targetRows = Target_Rows(*target, sampling.startX, sampling.startY);
    if (sampling.IsRatioOne()) {
        ZVSourceRows const rows = Source_Rows(*source, sampling.FirstColumn(), sampling.Row(0));
        if (isRaw)
            Copy_Rows(rows, targetRows, sampling.columns * source->PackSize, sampling.rows);
        else
            Convert_Rows(rows, from, targetRows, to, sampling.columns, sampling.rows);
        return;
    }
    long const fromPack = source->PackSize, toPack = target->PackSize;
    long const sourceRowCount =
        std::min(sampling.rows, std::abs(sampling.Row(sampling.rows - 1) - sampling.Row(0)) + 1);
    bool const keepsPadding = !isRaw && to == ROW_NATIVE32;
    bool const isStreamed = !keepsPadding && Is_Beyond_Cache(sourceRowCount * sampling.Stretch() * fromPack +
                                                             sampling.rows * sampling.columns * toPack);
    RowMaker const maker(sampling, fromPack, source->Width, convert, toPack);
    Scale_Rows(sampling, Source_Rows(*source, 0, 0), targetRows, maker, toPack, isStreamed, keepsPadding);
}

}  // namespace

void ScaleBitmapZV(ZVBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* srcRect,
                   ZVRectT<long> const* dstRect)
{
    if (src && dst)
        Scale_Bitmap(src, Row_Format(src->Type), dst, Row_Format(dst->Type), src->Type == dst->Type, srcRect,
                     dstRect);
}

void ScaleBitmapZV(ZVBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* srcRect,
                   ZVRectT<long> const* dstRect)
{
    if (src && dst) Scale_Bitmap(src, Row_Format(src->Type), dst, Row_Format(*dst), false, srcRect, dstRect);
}

void ScaleBitmapZV(ZVNativeBitmap const* src, ZVBitmap* dst, ZVRectT<long> const* srcRect,
                   ZVRectT<long> const* dstRect)
{
    if (src && dst) Scale_Bitmap(src, Row_Format(*src), dst, Row_Format(dst->Type), false, srcRect, dstRect);
}

void ScaleBitmapZV(ZVNativeBitmap const* src, ZVNativeBitmap* dst, ZVRectT<long> const* srcRect,
                   ZVRectT<long> const* dstRect)
{
    if (src && dst) Scale_Bitmap(src, Row_Format(*src), dst, Row_Format(*dst), false, srcRect, dstRect);
}
