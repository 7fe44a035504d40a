// Finds the cadence of pull-down in footage of unknown origin. A frame whose fields come from two moments is
// combed: neighbouring rows differ strongly wherever something moves. Two of five frames are, and always the
// same two.
#include "BitmapBlock.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>

namespace {

constexpr long sampleFrames = 20;
constexpr float trustedConfidence = 0.5F;

/// Mixed frames of each phase, bit i for position i of five.
constexpr unsigned cadenceMasks[] = {0x18, 0x0C, 0x06, 0x03, 0x11};

/// What a stretch of frames tells.
struct Sample {
    float confidence = 0;
    long phase = 0;
};

/// A clip set so that each read gives one whole video frame, and set back at the end.
class RawReading {
public:
    explicit RawReading(ZVClip& clip)
        : clip_(clip), flags_(clip.Flags), rate_(clip.FrameRate), fileRate_(clip.FileFrameRate),
          start_(clip.StartTime), fieldOrder_(clip.FieldOrder), pullDown_(clip.PullDown)
    {
        bool const isOpen = clip.Flags & ZV_CLIP_OPEN;
        if (!isOpen && !OpenClipZV(&clip, nullptr)) return;
        opened_ = !isOpen;
        clip.Flags &= ~static_cast<unsigned long>(ZV_CLIP_TIME_BLEND);
        clip.PullDown = 0;
        clip.FieldOrder = ZV_FIELDS_NONE;
        clip.FrameRate = clip.FileFrameRate = clip.BaseFrameRate;
        clip.StartTime = {};
        bool const isReading = clip.Flags & ZV_CLIP_IO;
        if (!isReading && !BeginClipIOZV(&clip, nullptr)) return;
        began_ = !isReading;
        isReady_ = true;
    }
    ~RawReading()
    {
        if (began_) EndClipIOZV(&clip_, nullptr);
        if (opened_) CloseClipZV(&clip_);
        clip_.Flags = flags_;
        clip_.FrameRate = rate_;
        clip_.FileFrameRate = fileRate_;
        clip_.StartTime = start_;
        if (isReady_) return;
        clip_.FieldOrder = fieldOrder_;
        clip_.PullDown = pullDown_;
    }
    RawReading(RawReading const&) = delete;
    RawReading& operator=(RawReading const&) = delete;

    bool IsReady() const { return isReady_; }

private:
    ZVClip& clip_;
    unsigned long flags_;
    double rate_, fileRate_;
    ZVTimeValue start_;
    uint8_t fieldOrder_, pullDown_;
    bool opened_ = false;
    bool began_ = false;
    bool isReady_ = false;
};

bool Read_Video_Frame(ZVClip& clip, long frame, ZVBitmap& bitmap)
{
    ZVTimeValue const time{static_cast<double>(frame), clip.BaseFrameRate};
    ZVTimeValue const duration{1.0, clip.BaseFrameRate};
    return GetFrameZV(&clip, &bitmap, &time, &duration, nullptr);
}

/// Sum of the differences between two rows of RGBA8 pixels; alpha does not count.
long Row_Difference(uint8_t const* a, uint8_t const* b, long width)
{
    long sum = 0;
    for (long x = 0; x < width; ++x)
        for (long channel = 0; channel < 3; ++channel)
            sum += std::abs(a[4 * x + channel] - b[4 * x + channel]);
    return sum;
}

/// Mean difference between the rows of each row pair.
double Comb_Of(ZVBitmap const& frame)
{
    long const rows = frame.Height & ~1;
    long sum = 0;
    for (long y = 0; y < rows; y += 2) {
        uint8_t const* const row = frame.Pixels + y * frame.RowBytes;
        sum += Row_Difference(row, row + frame.RowBytes, frame.Width);
    }
    return rows > 0 ? static_cast<double>(sum) /
                          (static_cast<double>(frame.Width) * static_cast<double>(rows) * 3.0)
                    : 0.0;
}

/// Sums of the differences between two frames over the even and the odd rows.
std::array<long, 2> Field_Differences(ZVBitmap const& a, ZVBitmap const& b)
{
    std::array<long, 2> sums{};
    for (long y = 0; y < a.Height; ++y) {
        long const offset = y * a.RowBytes;
        sums[static_cast<std::size_t>(y & 1)] +=
            Row_Difference(a.Pixels + offset, b.Pixels + offset, a.Width);
    }
    return sums;
}

/// How many frames are combed, or whole, where a phase says so. One at the mean never counts.
long Score_Of(std::span<double const> combs, double mean, unsigned mask)
{
    long score = 0;
    for (std::size_t i = 0; i < combs.size(); ++i)
        score += mask >> i % 5 & 1 ? combs[i] > mean : combs[i] < mean;
    return score;
}

/// A mixed frame shares one field with the frame before it: the one that changed less was carried over.
void Find_Field_Order(ZVClip& clip, long combFrame, ZVBitmap& mixed)
{
    clip.FieldOrder = ZV_FIELDS_UPPER_FIRST;
    BitmapBlock const before(AllocBitmapZV(mixed.Width, mixed.Height, mixed.Type, "pull-down"));
    // The requests are for whole frames, whatever the field order says by now.
    if (!before || !Read_Video_Frame(clip, combFrame, mixed) ||
        !Read_Video_Frame(clip, combFrame - 1, *before))
        return;
    std::array<long, 2> const change = Field_Differences(mixed, *before);
    if (change[1] <= change[0]) clip.FieldOrder = ZV_FIELDS_LOWER_FIRST;
}

Sample Analyse(ZVClip& clip, long first, long count, ZVBitmap& frame)
{
    std::array<double, sampleFrames> table{};
    std::span<double> const combs(table.data(), static_cast<std::size_t>(count));
    if (combs.empty()) return {};
    double sum = 0.0, low = 1000000.0, high = 0.0;
    for (long i = 0; i < count; ++i) {
        if (!Read_Video_Frame(clip, first + i, frame)) return {};
        double const comb = combs[static_cast<std::size_t>(i)] = Comb_Of(frame);
        sum += comb;
        low = std::min(low, comb);
        high = std::max(high, comb);
    }
    double const mean = sum / static_cast<double>(count);
    Sample sample;
    sample.confidence = static_cast<float>(std::min(std::abs(mean - low), std::abs(mean - high)));

    long best = 0, bestScore = -1;
    for (long i = 0; i < 5; ++i) {
        long const score = Score_Of(combs, mean, cadenceMasks[i]);
        if (score > bestScore) best = i, bestScore = score;
    }
    if (bestScore <= count * 7 / 10) sample.confidence = std::min(sample.confidence, trustedConfidence);

    long combFrame = 0;
    for (long i = best == 4 ? 4 : 3 - best; i < count; i += 5) {
        auto const comb = [&](long index) { return combs[static_cast<std::size_t>(index)]; };
        if (i > 0 && (combFrame == 0 || comb(i) > comb(combFrame))) combFrame = i;
    }
    sample.phase = best - first % 5 + 1;
    if (sample.phase < 1) sample.phase += 5;
    Find_Field_Order(clip, first + combFrame, frame);
    return sample;
}

/// A clear result in the first frames ends the work; a start without motion leads on to the middle and the
/// end.
Sample Analyse_Clip(ZVClip& clip, ZVBitmap& frame, float& firstConfidence)
{
    long const frames = std::max(clip.RawFrames, 0L);
    Sample const first = Analyse(clip, 0, std::min(frames, sampleFrames), frame);
    Sample middle, last;
    if (first.confidence <= trustedConfidence && frames >= 2 * sampleFrames) {
        middle = Analyse(clip, frames / 2, sampleFrames, frame);
        if (middle.confidence <= trustedConfidence && frames >= 3 * sampleFrames)
            last = Analyse(clip, frames - sampleFrames, sampleFrames, frame);
    }
    firstConfidence = first.confidence;
    if (last.confidence > first.confidence) return last;
    return middle.confidence > first.confidence ? middle : first;
}

}  // namespace

long GuessPullDownZV(ZVClip* clip)
{
    if (!clip) return 0;
    BitmapBlock const frame(AllocBitmapZV(clip->Width, clip->Height, ZV_BITMAP_RGBA8, "pull-down"));
    if (!frame) return 0;
    float firstConfidence = 0;
    long phase = 0;
    {
        RawReading const reading(*clip);
        if (!reading.IsReady()) return 0;
        phase = Analyse_Clip(*clip, *frame, firstConfidence).phase;
    }
    SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, phase, 0);
    return firstConfidence > trustedConfidence;
}
