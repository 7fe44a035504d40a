// The option entries of the movie module, and what they ask the user. Without an interface, and when they are
// to be silent, the defaults are what is chosen.
#include "QuickTimeModule.h"

#include <utility>

bool Ask_Video_Options(ZVClip* clip)
{
    bool const isNew = !clip->VideoParams;
    if (!Make_Video_Defaults(clip)) return false;
    ZVVideoChoice choice = Video_Choice(clip);
    if (!Ask_Video_Settings(&choice)) {
        if (isNew) FreeMemZV(std::exchange(clip->VideoParams, nullptr));
        return false;
    }
    Take_Video_Choice(clip, choice);
    return true;
}

bool Ask_Audio_Options(ZVClip* clip)
{
    bool const isNew = !clip->AudioParams;
    if (!Make_Audio_Defaults(clip)) return false;
    ZVSoundChoice choice = Sound_Choice(clip);
    if (!Ask_Sound_Settings(&choice)) {
        if (isNew) FreeMemZV(std::exchange(clip->AudioParams, nullptr));
        return false;
    }
    Take_Sound_Choice(clip, choice);
    return true;
}

void QuickTime_VideoOptions(ZVClip* clip, bool silent)
{
    if (!silent && Has_Interface()) {
        Ask_Video_Options(clip);
        return;
    }
    bool const isNew = !clip->VideoParams;
    if (!Make_Video_Defaults(clip)) return;
    if (!isNew) Set_Option(clip->VideoParams, VIDEO_FRAME_RATE, Fixed_Rate(clip->FrameRate));
    if (!silent) Complete_Video_Options(clip);
}

void QuickTime_AudioOptions(ZVClip* clip, bool silent)
{
    if (!silent && Has_Interface())
        Ask_Audio_Options(clip);
    else
        Make_Audio_Defaults(clip);
}

long Quicktime_StreamingOptions(ZVClip* clip, bool silent)
{
    if (silent || !Has_Interface()) return Set_Streaming(clip, 0, false);
    if (!clip->VideoParams && !clip->AudioParams) return 0;
    if (clip->VideoParams && !Upgrade_Video_Options(clip)) return 0;
    if (clip->AudioParams && !Upgrade_Audio_Options(clip)) return 0;
    ZVStreamChoice choice{StreamPacketBytes, Stream_Packet_Milliseconds(clip), clip->AudioParams != nullptr};
    return Ask_Stream_Settings(&choice) ? Set_Streaming(clip, choice.PacketMilliseconds, true) : 0;
}

/// The dialog of the streaming format, or both blocks with all that is usual.
static void Stream_Options(ZVClip* clip, bool silent, bool isSound)
{
    if (!silent && Has_Interface())
        Ask_Stream_Options(clip, isSound);
    else if (Make_Video_Defaults(clip) && Make_Audio_Defaults(clip))
        Quicktime_StreamingOptions(clip, true);
}

void Video_Options_Stub(ZVClip* clip, bool silent)
{
    Stream_Options(clip, silent, false);
}

void Audio_Options_Stub(ZVClip* clip, bool silent)
{
    Stream_Options(clip, silent, true);
}
