// Averages over a span of time, compared with an integral worked out over the timeline.
#include "clips/ClipFixture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <random>

namespace {

constexpr long width = 3;
constexpr long frameCount = 12;
constexpr unsigned long background = 0xFF204060;

/// Weight of the first and second half of each frame in the average, by frame.
struct Halves {
    double first = 0.0;
    double second = 0.0;
};

double Overlap(double a, double b, double from, double to)
{
    return std::max(std::min(b, to) - std::max(a, from), 0.0);
}

std::map<long, Halves> Weights(double begin, double end)
{
    std::map<long, Halves> weights;
    auto const lastFrame = static_cast<long>(std::floor(end + 1e-7));
    for (auto frame = static_cast<long>(begin + 1e-7); frame <= lastFrame; ++frame) {
        auto const at = static_cast<double>(frame);
        Halves const share{Overlap(begin, end, at, at + 0.5) / (end - begin),
                           Overlap(begin, end, at + 0.5, at + 1.0) / (end - begin)};
        // A last frame that hardly counts is not read.
        bool const isTail = frame == lastFrame && !weights.empty();
        if (!isTail || share.first + share.second > 0.01) weights[frame] = share;
    }
    return weights;
}

class TimeIntegration : public ClipTest {
protected:
    void Open_Blended(long height, uint8_t order, long depth = 32)
    {
        format.width = width;
        format.height = height;
        format.frames = frameCount;
        format.bitDepth = depth;
        format.fieldOrder = order;
        ASSERT_TRUE(Open());
        clip->Flags |= ZV_CLIP_TIME_BLEND;
        clip->Background = background;
    }

    double Source(long frame, long x, long y, int channel) const
    {
        return static_cast<double>(Test_Channel(frame, 0, x, y, channel, 65535)) / 65535.0;
    }

    /// A row of one field, with the other field's rows standing between its neighbours.
    double Field_Value(long frame, long x, long y, int channel, bool isUpper) const
    {
        if ((y % 2 == 0) == isUpper) return Source(frame, x, y, channel);
        if (y == 0) return Source(frame, x, 1, channel);
        if (y == clip->Height - 1) return Source(frame, x, y - 1, channel);
        return (Source(frame, x, y - 1, channel) + Source(frame, x, y + 1, channel)) / 2.0;
    }

    double Expected(std::map<long, Halves> const& weights, long x, long y, int channel) const
    {
        double sum = 0.0;
        for (auto const& [frame, share] : weights) {
            if (clip->FieldOrder == ZV_FIELDS_NONE) {
                sum += (share.first + share.second) * Source(frame, x, y, channel);
                continue;
            }
            bool const upperIsFirst = clip->FieldOrder == ZV_FIELDS_UPPER_FIRST;
            sum += share.first * Field_Value(frame, x, y, channel, upperIsFirst) +
                   share.second * Field_Value(frame, x, y, channel, !upperIsFirst);
        }
        return sum;
    }
};

TEST_F(TimeIntegration, TheSpanIsAveragedByFramesOrFields)
{
    std::mt19937 random(4);
    double const rates[] = {23.976, 24.0, 25.0, 30000.0 / 1001, 60.0};
    std::uniform_real_distribution<double> begins(-2.0, frameCount - 0.2), spans(0.0, 6.0);
    for (uint8_t order : {ZV_FIELDS_NONE, ZV_FIELDS_UPPER_FIRST, ZV_FIELDS_LOWER_FIRST}) {
        for (long const height : {6, 5}) {
            Open_Blended(height, order);
            for (int i = 0; i < 400; ++i) {
                double const rate = rates[random() % std::size(rates)];
                double const start = static_cast<double>(random() % 50);
                clip->FrameRate = rate;
                clip->StartTime = {start, rate};
                double const begin = i % 5 ? begins(random) : std::floor(begins(random));
                double const length = i % 7 ? spans(random) : std::floor(spans(random));
                ZVTimeValue const time{start + begin, rate}, duration{length, rate};
                double const shortest = order == ZV_FIELDS_NONE ? 1.0 : 0.5;
                double const from = std::max(begin, 0.0);
                double const to =
                    std::min(begin + std::max(length, shortest), static_cast<double>(frameCount));
                BitmapBlock const bitmap = Make_Bitmap(width, height, ZV_BITMAP_RGBAFLOAT);
                bool const isThere = to - from >= 0.05;
                ASSERT_EQ(GetFrameZV(clip, bitmap.get(), &time, &duration, nullptr), isThere);
                if (!isThere) {
                    ASSERT_EQ(Bytes_Of(bitmap), Filled_Bytes(background, width, height, ZV_BITMAP_RGBAFLOAT));
                    continue;
                }
                auto const weights = Weights(from, to);
                auto const& pixels = static_cast<ZVBufferRGBAFloat const&>(*bitmap);
                for (long y = 0; y < height; ++y)
                    for (long x = 0; x < width; ++x)
                        for (int channel = 0; channel < 4; ++channel)
                            ASSERT_NEAR(pixels.GetIterator(x, y)->Get(channel),
                                        Expected(weights, x, y, channel), 2e-6)
                                << "order " << int{order} << ", " << begin << " for " << length << ", row "
                                << y;
            }
        }
    }
}

TEST_F(TimeIntegration, OneWholeFrameIsItself)
{
    for (uint8_t order : {ZV_FIELDS_NONE, ZV_FIELDS_UPPER_FIRST}) {
        Open_Blended(6, ZV_FIELDS_NONE, 8);
        clip->FieldOrder = order;
        clip->LastFrame = 77;
        auto const pixels = Frame_Bytes(clip, 3);
        EXPECT_TRUE(order != ZV_FIELDS_NONE || pixels == Picture_Bytes(3, width, 6));
        EXPECT_EQ(format.Count("GetFrame"), order == ZV_FIELDS_NONE ? 1 : 2);
        EXPECT_EQ(clip->LastFrame, 77) << "which frame was asked for last is not known here";
    }
}

TEST_F(TimeIntegration, IntegerProductsAreTruncatedOneByOne)
{
    Open_Blended(6, ZV_FIELDS_NONE, 8);
    BitmapBlock const bitmap = Make_Bitmap(width, 6);
    ZVTimeValue const time = Frame_Time(2), duration = Frame_Time(2);
    ASSERT_TRUE(GetFrameZV(clip, bitmap.get(), &time, &duration, nullptr));
    auto const first = Picture_Bytes(2, width, 6), second = Picture_Bytes(3, width, 6),
               result = Bytes_Of(bitmap);
    for (std::size_t i = 0; i < result.size(); ++i)
        ASSERT_EQ(result[i], first[i] / 2 + second[i] / 2);
}

TEST_F(TimeIntegration, UnderPullDownFilmFramesAreAveraged)
{
    Open_Blended(6, ZV_FIELDS_UPPER_FIRST);
    clip->PullDown = 1;
    clip->Frames = 9;
    BitmapBlock const bitmap = Make_Bitmap(width, 6, ZV_BITMAP_RGBAFLOAT);
    ZVTimeValue const time = Frame_Time(1), duration = Frame_Time(2);
    ASSERT_TRUE(GetFrameZV(clip, bitmap.get(), &time, &duration, nullptr));
    auto const& pixels = static_cast<ZVBufferRGBAFloat const&>(*bitmap);
    for (long x = 0; x < width; ++x)
        EXPECT_NEAR(pixels.GetIterator(x, 1)->Get(0), (Source(1, x, 1, 0) + Source(2, x, 1, 0)) / 2.0, 1e-6);
}

TEST_F(TimeIntegration, FailuresDoNotEndTheAverageButGivingUpDoes)
{
    Open_Blended(6, ZV_FIELDS_NONE, 8);
    BitmapBlock const bitmap = Make_Bitmap(width, 6);
    ZVTimeValue const time = Frame_Time(2), duration = Frame_Time(3);
    format.failing = {"GetFrame"};
    clip->Background = 0xFF000000;
    EXPECT_EQ(GetFrameZV(clip, bitmap.get(), &time, &duration, nullptr), 1);
    EXPECT_EQ(format.Count("GetFrame"), 3);
    EXPECT_EQ(bitmap->Pixels[0], 0) << "a frame that cannot be read counts as Background";

    format.failing.clear();
    format.desc->GetFrameDataReference = TestFormat::GetFrameDataReference;
    ZVPollFunc const giveUp = []() -> long { return 1; };
    EXPECT_EQ(GetFrameZV(clip, bitmap.get(), &time, &duration, ZV_FRAME_POLL, giveUp), 0);
    EXPECT_EQ(format.Count("GetFrameDataReference"), 1);
}

}  // namespace
