// Sound buffers, and conversion against the arithmetic written out once more with the streams' own calls.
#include "TestEnvironment.h"
#include "TestFormat.h"

#include <memory>
#include <random>
#include <vector>

namespace {

struct BufferFreer {
    void operator()(ZVAudioBuffer* buffer) const { FreeAudioBufferZV(buffer); }
};
using Buffer = std::unique_ptr<ZVAudioBuffer, BufferFreer>;

std::vector<ZVAudioFormat> All_Formats(unsigned long rate)
{
    std::vector<ZVAudioFormat> formats;
    for (unsigned long channels : {1UL, 2UL}) {
        formats.push_back({rate, 1, channels, 0});
        formats.push_back({rate, 1, channels, ZV_AUDIO_UNSIGNED});
        formats.push_back({rate, 2, channels, 0});
        formats.push_back({rate, 2, channels, ZV_AUDIO_SWAPPED});
    }
    return formats;
}

unsigned long Bytes_Of(ZVAudioBuffer const& buffer)
{
    return static_cast<unsigned long>(buffer.Samples) * buffer.Format.SampleSize * buffer.Format.Channels;
}

void Fill_Random(ZVAudioBuffer& buffer, std::mt19937& random)
{
    auto* bytes = static_cast<uint8_t*>(buffer.Data);
    for (unsigned long i = 0; i < Bytes_Of(buffer); ++i)
        bytes[i] = static_cast<uint8_t>(random());
}

/// The told arithmetic, step by step, over the public streams.
void Convert_By_Streams(ZVAudioBuffer const& from, ZVAudioBuffer& to)
{
    std::unique_ptr<conversion_stream> const source(new_stream(from)), target(new_stream(to));
    double const ratio = static_cast<double>(to.Samples) / static_cast<double>(from.Samples);
    double const step = 256 / ratio;
    long const whole = static_cast<long>(step), gain = static_cast<long>(ratio * 256);
    long weight = 256, need = whole, accL = 0, accR = 0;
    double carry = 0;
    for (long done = 0; done < to.Samples;) {
        long const l = (source->GetLeft(0) * weight + source->GetLeft(1) * (256 - weight) + 128) >> 8;
        long const r = (source->GetRight(0) * weight + source->GetRight(1) * (256 - weight) + 128) >> 8;
        if (weight < need) {
            accL += weight * l, accR += weight * r, need -= weight;
            source->Advance();
            weight = 256;
            continue;
        }
        weight -= need;
        long const outL = std::clamp((((accL + need * l + 128) >> 8) * gain + 128) >> 8, -32767L, 32767L);
        long const outR = std::clamp((((accR + need * r + 128) >> 8) * gain + 128) >> 8, -32767L, 32767L);
        target->Set(0, outL, outR);
        target->Advance();
        ++done;
        carry += step - static_cast<double>(whole);
        need = whole;
        if (carry > 1.0) ++need, carry -= 1.0;
        accL = accR = 0;
    }
}

/// A clip in I/O whose module gives and takes sound from memory.
class Audio : public EnvironmentTest {
protected:
    Audio()
    {
        heard = this;
        format.media = ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO;
        format.properties |= ZV_FORMAT_AUDIO_WRITE;
        format.desc->GetAudio = [](ZVClip*, void* samples, unsigned long first, unsigned long count) -> long {
            heard->firstAsked = first;
            std::memcpy(samples, heard->stored->Data,
                        std::min(Bytes_Of(*heard->stored), count * heard->frameBytes));
            return 1;
        };
        format.desc->AddAudio = [](ZVClip*, void* samples, unsigned long count) -> long {
            auto const* bytes = static_cast<uint8_t const*>(samples);
            heard->added.assign(bytes, bytes + count * heard->frameBytes);
            return 1;
        };
    }

    void Open(ZVAudioFormat const& audio, unsigned long samples)
    {
        stored.reset(AllocAudioBufferZV(&audio, samples));
        Fill_Random(*stored, random);
        frameBytes = audio.SampleSize * audio.Channels;
        clip = OpenClipZV(environment.Write("a.tst", "x").c_str(), nullptr);
        ASSERT_TRUE(clip);
        clip->AudioFormat = audio;
        ASSERT_TRUE(BeginClipIOZV(clip, nullptr));
    }
    void TearDown() override { FreeClipZV(clip); }

    static Audio* heard;
    TestFormat format;
    std::mt19937 random{3};
    ZVClip* clip = nullptr;
    Buffer stored;
    unsigned long frameBytes = 0;
    unsigned long firstAsked = 0;
    std::vector<uint8_t> added;
};
Audio* Audio::heard;

TEST_F(Audio, EveryPairOfFormatsFollowsTheArithmetic)
{
    for (ZVAudioFormat const& from : All_Formats(44100)) {
        for (unsigned long rate : {8000UL, 22050UL, 44100UL, 48000UL}) {
            for (ZVAudioFormat const& to : All_Formats(rate)) {
                Buffer const source(AllocAudioBufferZV(&from, 500UL));
                ZVTimeValue const duration{500.0, 44100.0};
                Buffer const expected(AllocAudioBufferZV(&to, &duration));
                Open(to, 1);
                Fill_Random(*source, random);
                Convert_By_Streams(*source, *expected);
                ASSERT_TRUE(AddAudioZV(clip, source.get()));
                auto const* bytes = static_cast<uint8_t const*>(expected->Data);
                if (from == to) bytes = static_cast<uint8_t const*>(source->Data);
                EXPECT_EQ(added, std::vector<uint8_t>(bytes, bytes + Bytes_Of(*expected)))
                    << from.SampleSize << "/" << from.Channels << " to " << to.SampleSize << "/"
                    << to.Channels << " at " << rate;
                FreeClipZV(std::exchange(clip, nullptr));
            }
        }
    }
}

TEST_F(Audio, AReadStartsAtTheSoundOfItsFrame)
{
    Open({44100, 2, 2, 0}, 2000);
    Buffer const same(AllocAudioBufferZV(&clip->AudioFormat, 1000UL));
    ASSERT_TRUE(GetAudioZV(clip, same.get(), 3UL));
    EXPECT_EQ(firstAsked, 3UL * 44100 / 25);
    EXPECT_EQ(std::memcmp(same->Data, stored->Data, Bytes_Of(*same)), 0);

    ZVAudioFormat const half{22050, 1, 1, ZV_AUDIO_UNSIGNED};
    Buffer const converted(AllocAudioBufferZV(&half, 1000UL)), expected(AllocAudioBufferZV(&half, 1000UL));
    ASSERT_TRUE(GetAudioZV(clip, converted.get(), 0UL));
    Convert_By_Streams(*stored, *expected);
    EXPECT_EQ(std::memcmp(converted->Data, expected->Data, 1000), 0);
    EXPECT_FALSE(GetAudioZV(clip, same.get(), 10UL)) << "beyond the clip";
}

TEST_F(Audio, CallsFailWithoutIoSoundOrSamples)
{
    Open({44100, 2, 2, 0}, 10);
    Buffer const buffer(AllocAudioBufferZV(&clip->AudioFormat, 10UL));
    ZVAudioFormat const deep{44100, 3, 2, 0};
    Buffer const odd(AllocAudioBufferZV(&deep, 10UL));
    EXPECT_FALSE(GetAudioZV(clip, odd.get(), 0UL));
    EXPECT_FALSE(AddAudioZV(clip, odd.get()));
    EXPECT_EQ(new_stream(*odd), nullptr);
    clip->Media = ZV_MEDIA_VIDEO;
    EXPECT_FALSE(GetAudioZV(clip, buffer.get(), 0UL));
    clip->Media = ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO;
    EndClipIOZV(clip, nullptr);
    EXPECT_FALSE(AddAudioZV(clip, buffer.get()));
}

TEST(AudioStream, AReadPastTheEndStaysInside)
{
    int16_t samples[] = {1, 2, 3, 4};
    ZVAudioBuffer buffer{{44100, 2, 2, 0}, samples, 2};
    std::unique_ptr<conversion_stream> const stereo(new_stream(buffer));
    EXPECT_EQ(stereo->Get(5, 0), 3);
    EXPECT_EQ(stereo->Get(5, 1), 4);
    buffer.Format.Channels = 1;
    buffer.Samples = 4;
    std::unique_ptr<conversion_stream> const mono(new_stream(buffer));
    EXPECT_EQ(mono->Get(4, 0), 3) << "the sample before the last";
    buffer.Samples = 1;
    std::unique_ptr<conversion_stream> const single(new_stream(buffer));
    EXPECT_EQ(single->Get(1, 0), 1);
}

}  // namespace
