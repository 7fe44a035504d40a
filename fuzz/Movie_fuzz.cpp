// Movies: the input is the file, of whatever kind its bytes say. A few frames are read in order and out of
// order, and sound from its beginning, middle and end.
#include "ClipFuzz.h"

#include <ZVFormat.h>

static ZVFormatDesc* Movie_Module()
{
    Fuzz_Module(ZV_FourCC("VPB "));  // brings the library up
    if (!Add_QuickTime_Format(nullptr)) std::abort();
    return Fuzz_Module(ZV_FourCC("MooV"));
}

static void Read_Sound(ZVClip* clip)
{
    ZVAudioFormat const& format = clip->AudioFormat;
    if (format.Channels < 1 || format.Channels > 2 || format.SampleSize < 1 || format.SampleSize > 2)
        std::abort();
    std::unique_ptr<uint8_t[]> const samples(new uint8_t[1000 * format.Channels * format.SampleSize]);
    for (unsigned long first : {0UL, 5000UL, 700UL, 1000000UL})
        clip->Format->GetAudio(clip, samples.get(), first, 1000);
}

extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(uint8_t const* data,
                                                                             std::size_t size)
{
    static ZVFormatDesc* const module = Movie_Module();
    FuzzClip const owner = Fuzz_Open(module, data, size);
    ZVClip* clip = owner.get();
    if (!clip) return 0;
    if (clip->RawFrames < 1 || clip->FrameRate <= 0) std::abort();
    if ((clip->Media & ZV_MEDIA_VIDEO) && Is_Fuzz_Size(clip))
        for (long frame : {0L, 1L, 2L, 3L, clip->RawFrames - 1, 1L, clip->RawFrames, -1L})
            Fuzz_Frame(clip, frame, clip->Width, clip->Height);
    if (clip->Media & ZV_MEDIA_AUDIO) Read_Sound(clip);
    Fuzz_Close(clip);
    return 0;
}
