// Ten seconds of stereo sound converted on its way into a clip, and the scan of a directory of pictures. The
// yardstick of sound is libswresample's linear mode with its shortest filter; that of the scan is a plain
// walk through the directory.
#include "BenchSession.h"
#include "BenchTools.h"

#include <ZVLibInternal.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

namespace {

constexpr double seconds = 10.0;

struct BufferDeleter {
    void operator()(ZVAudioBuffer* buffer) const { FreeAudioBufferZV(buffer); }
};
using BufferPtr = std::shared_ptr<ZVAudioBuffer>;

BufferPtr Make_Tone(unsigned long rate)
{
    ZVAudioFormat const format{rate, 2, 2, 0};
    BufferPtr const buffer(
        AllocAudioBufferZV(&format, static_cast<unsigned long>(seconds * static_cast<double>(rate))),
        BufferDeleter());
    auto* const samples = static_cast<int16_t*>(buffer->Data);
    for (long i = 0; i < buffer->Samples * 2; ++i)
        samples[i] = static_cast<int16_t>(12000 * std::sin(static_cast<double>(i) * 0.031) +
                                          static_cast<double>(i % 300));
    return buffer;
}

/// A clip that takes sound in a format and drops it.
struct Sink {
    explicit Sink(ZVAudioFormat const& format) : clip(NewClipZV(), FreeClipZV)
    {
        desc.AddAudio = [](ZVClip*, void*, unsigned long) { return 1L; };
        desc.EndIO = [](ZVClip*, long) { return 1L; };
        desc.Close = [](ZVClip*) {};
        clip->Format = &desc;
        clip->Media = ZV_MEDIA_AUDIO;
        clip->Flags |= ZV_CLIP_IO;
        clip->AudioFormat = format;
    }
    ~Sink() { clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_IO); }

    ZVFormatDesc desc{};
    std::unique_ptr<ZVClip, void (*)(ZVClip*)> clip;
};

using Resampler = std::shared_ptr<SwrContext>;

Resampler Make_Resampler(unsigned long from, unsigned long to)
{
    SwrContext* context = nullptr;
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    if (swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_S16, static_cast<int>(to), &stereo,
                            AV_SAMPLE_FMT_S16, static_cast<int>(from), 0, nullptr) < 0)
        throw std::bad_alloc();
    av_opt_set_int(context, "linear_interp", 1, 0);
    av_opt_set_int(context, "filter_size", 1, 0);
    if (swr_init(context) < 0) throw std::runtime_error("the resampler does not start");
    return {context, [](SwrContext* old) { swr_free(&old); }};
}

void Register_Conversion(unsigned long from, unsigned long to)
{
    auto const make = [=] {
        auto const session = std::make_shared<Bench::Session>();
        BufferPtr const source = Make_Tone(from);
        auto const sink = std::make_shared<Sink>(ZVAudioFormat{to, 2, 2, 0});
        BufferPtr const target = Make_Tone(to);
        Resampler const resampler = Make_Resampler(from, to);
        return std::pair([=, keep = session] { AddAudioZV(sink->clip.get(), source.get()); },
                         [=] {
                             auto* out = static_cast<uint8_t*>(target->Data);
                             auto const* in = static_cast<uint8_t const*>(source->Data);
                             swr_convert(resampler.get(), &out, static_cast<int>(target->Samples), &in,
                                         static_cast<int>(source->Samples));
                         });
    };
    Bench::Register("audio/convert_" + std::to_string(from) + "_to_" + std::to_string(to), 2.0, make);
}

void Register_Scan()
{
    auto const make = [] {
        auto const session = std::make_shared<Bench::Session>();
        for (int i = 1; i <= 10000; ++i)
            std::ofstream(session->Path("shot" + std::to_string(100000 + i) + ".tst")) << 'x';
        auto const clip = std::shared_ptr<ZVClip>(NewClipZV(), FreeClipZV);
        std::string const first = session->Spec("shot100001.tst");
        return std::pair(
            [=] {
                FreeFileSpecZV(clip->FileName);
                clip->FileName = MakeFileSpecZV(first.c_str());
                TagItem tags[] = {{ZV_OPEN_NO_SEQUENCE_DIALOG, 1}, {0, 0}};
                if (!SequenceCheckZV(clip.get(), tags) || clip->RawFrames != 10000)
                    throw std::runtime_error("the series was not found");
            },
            [=] {
                long count = 0;
                for (std::filesystem::directory_entry const& entry :
                     std::filesystem::directory_iterator(session->Path("")))
                    count += !entry.path().empty();
                benchmark::DoNotOptimize(count);
            });
    };
    Bench::Register("clips/scan_10000_files", 0, make);
}

[[maybe_unused]] bool const isRegistered = [] {
    Register_Conversion(44100, 48000);
    Register_Conversion(48000, 44100);
    Register_Conversion(48000, 24000);
    Register_Scan();
    return true;
}();

}  // namespace
