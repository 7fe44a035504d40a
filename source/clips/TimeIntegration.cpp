// Averages of frames over a span of time: each frame, or each field as a moment of its own, counts by the
// part of the span that it covers.
#include "TimeIntegration.h"

#include "BitmapBlock.h"
#include "pixels/BitmapVisit.h"

#include <algorithm>

namespace {

/// A span in frames of the clip.
struct Span {
    double begin;
    double end;
    long first;  // frame that holds `begin`
    long last;   // frame that holds `end`
};

Span Span_Of(ZVClip const* clip, ZVTimeValue const& time, ZVTimeValue const& duration)
{
    bool const isByField = clip->FieldOrder != ZV_FIELDS_NONE && clip->PullDown == 0;
    double const shortest =
        clip->FrameRate == 0.0 ? 0.0 : 1.0 / (isByField ? 2.0 * clip->FrameRate : clip->FrameRate);
    double const seconds = std::max(Get_Time(&duration), shortest);
    double const start = Get_Time(&clip->StartTime);
    double const begin = std::max((Get_Time(&time) - start) * clip->FrameRate, 0.0);
    double const end =
        std::min((Get_Time(&time) + seconds - start) * clip->FrameRate, static_cast<double>(clip->Frames));
    // Written so that a span which is no number is empty too.
    if (!(end - begin >= 0.05)) return {0.0, 0.0, 0, 0};
    return {begin, end, static_cast<long>(begin + 1e-7), static_cast<long>(end + 1e-7)};
}

/// One run of frames into an accumulator.
class Integration {
public:
    Integration(ZVClip* clip, ZVBitmap& sum, ZVBitmap& frame, FramePlace const& place, AsyncParams& async)
        : clip_(clip), sum_(sum), frame_(frame), place_(place), async_(async)
    {
    }

    /// A frame that cannot be read counts as what the read left in its place. False when the caller gave up.
    bool Read(long number)
    {
        Read_Frame(clip_, number, &frame_, FRAME_INTERPRET_ALPHA, place_, async_);
        return async_.PollResult == 0;
    }

    void Store(double weight)
    {
        Visit_RGBA(frame_, [&]<typename Buffer>(Buffer& frame) {
            Copy_Opacity<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(&frame, &sum_,
                                                                                           weight);
        });
    }
    void Add(double weight)
    {
        Visit_RGBA(frame_, [&]<typename Buffer>(Buffer& frame) {
            Merge_Opacity<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(&frame, &sum_,
                                                                                            weight);
        });
    }
    void Store_Fields(double first, double second)
    {
        Visit_RGBA(frame_, [&]<typename Buffer>(Buffer& frame) {
            Copy_Fields_With_Opacity<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(
                &frame, static_cast<Buffer*>(&sum_), clip_, first, second);
        });
    }
    void Add_Fields(double first, double second)
    {
        Visit_RGBA(frame_, [&]<typename Buffer>(Buffer& frame) {
            Merge_Fields_With_Opacity<Buffer, typename Buffer::PixelType, typename Buffer::ChannelType>(
                &frame, static_cast<Buffer*>(&sum_), clip_, first, second);
        });
    }

private:
    ZVClip* clip_;
    ZVBitmap& sum_;
    ZVBitmap& frame_;
    FramePlace const& place_;
    AsyncParams& async_;
};

bool Integrate_Frames(Integration& run, Span const& span)
{
    double const width = span.end - span.begin;
    double const weight = 1.0 / width;
    bool const isOne = span.first == span.last;
    if (!run.Read(span.first)) return false;
    run.Store(isOne ? width * weight : (1.0 - (span.begin - static_cast<double>(span.first))) * weight);
    for (long frame = span.first + 1; frame < span.last; ++frame) {
        if (!run.Read(frame)) return false;
        run.Add(weight);
    }
    double const tail = (span.end - static_cast<double>(span.last)) * weight;
    if (isOne || tail <= 0.01) return true;
    if (!run.Read(span.last)) return false;
    run.Add(tail);
    return true;
}

bool Integrate_Fields(Integration& run, Span const& span)
{
    double const weight = 1.0 / (span.end - span.begin);
    bool const isOne = span.first == span.last;
    double const from = span.begin - static_cast<double>(span.first);
    double const to = isOne ? span.end - static_cast<double>(span.first) : 1.0;
    double firstHalf = 0.0, secondHalf = to - from;
    if (from < 0.5) {
        firstHalf = std::max(0.5 - from - (to < 0.5 ? 0.5 - to : 0.0), 0.0);
        secondHalf = std::max(to - 0.5, 0.0);
    }
    if (!run.Read(span.first)) return false;
    run.Store_Fields(firstHalf * weight, secondHalf * weight);
    for (long frame = span.first + 1; frame < span.last; ++frame) {
        if (!run.Read(frame)) return false;
        run.Add_Fields(weight / 2.0, weight / 2.0);
    }
    double const tail = span.end - static_cast<double>(span.last);
    if (isOne || tail * weight <= 0.01) return true;
    if (!run.Read(span.last)) return false;
    if (tail >= 0.5)
        run.Add_Fields(0.5 * weight, (tail - 0.5) * weight);
    else
        run.Add_Fields(tail * weight, 0.0);
    return true;
}

}  // namespace

long Integrate_Time(ZVClip* clip, ZVBitmap* bitmap, ZVTimeValue const& time, ZVTimeValue const& duration,
                    FramePlace const& place, AsyncParams& async)
{
    BitmapBlock const frame(AllocBitmapZV(bitmap->Width, bitmap->Height, bitmap->Type, "time blend"));
    if (!frame) return 0;
    Span const span = Span_Of(clip, time, duration);
    if (span.end <= span.begin) {
        FillBitmapZV(bitmap, clip->Background);
        return 0;
    }
    Integration run(clip, *bitmap, *frame, place, async);
    bool const isByField = clip->FieldOrder != ZV_FIELDS_NONE && clip->PullDown == 0;
    return isByField ? Integrate_Fields(run, span) : Integrate_Frames(run, span);
}
