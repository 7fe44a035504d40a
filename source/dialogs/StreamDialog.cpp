// The dialogs of the streaming format: one leads to those for compression and streaming, one has the settings
// of streaming themselves.
#include "Compression.h"

#include "Locale/ZVLibStr.h"
#include "formats/QuickTimeModule.h"
#include "interface/PaletteTree.h"

#include <algorithm>
#include <cstdio>

namespace {

enum Gadget : unsigned short { Video = 1, Audio, VideoStreaming, AudioStreaming, Done };

enum StreamGadget : unsigned short { PacketSize = 1, PacketSound };

/// The keys that close the dialog, "c" and "o" among them.
bool Is_Closing_Key(ZVEvent const& event)
{
    constexpr uint32_t keys[] = {'c', 'o', ZV_KEY_ENTER, ZV_KEY_ESCAPE, ZV_KEY_RETURN};
    bool const isPress = !(event.modifiers & (ZV_MOD_REPEAT | ZV_MOD_KEY_UP));
    return event.type == ZV_EVENT_KEY && isPress && std::ranges::find(keys, event.key) != std::end(keys);
}

/// Opens the dialog of a button. The palette may be gone when it is closed again.
void Press(ZVPalette* palette, ZVClip* clip, unsigned long id)
{
    LivingPalette const watch(palette);
    switch (id) {
    case Video: QuickTime_VideoOptions(clip, false); break;
    case Audio: QuickTime_AudioOptions(clip, false); break;
    case VideoStreaming:
    case AudioStreaming: Quicktime_StreamingOptions(clip, false); break;
    default: return;
    }
    if (!watch.Is_There()) return;
    ItemEnabledZV(FindItem2ZV(palette, VideoStreaming), clip->VideoParams != nullptr);
    ItemEnabledZV(FindItem2ZV(palette, AudioStreaming), clip->AudioParams != nullptr);
}

class StreamDialog : public ModalDialog {
public:
    explicit StreamDialog(ZVStreamChoice& choice) : choice_(choice) {}

private:
    void Add_Groups() override;
    void On_Gadget(unsigned short, uint32_t) override {}
    void Take_Settings() override
    {
        choice_.PacketMilliseconds = std::clamp<long>(State_Of(PacketSound), 0, LongestPacket);
    }

    ZVStreamChoice& choice_;
};

void StreamDialog::Add_Groups()
{
    char bytes[64];
    std::snprintf(bytes, sizeof bytes, GetStringZV(ZVSTR_PACKET_BYTES),
                  static_cast<int>(choice_.PacketBytes));
    InitGroupZV();
    AddTextZV(PacketSize, FirstPlace, 0, bytes, nullptr);
    AddTextZV(0, LabelPlace, PacketSize, ZVSTR_PACKET_SIZE, nullptr);
    AddGadgetZV(PacketSound, BelowPlace, PacketSize, ZV_GAD_INTEGER, ZV_SIZE_SMALL, ZVSTR_PACKET_SOUND,
                ZV_ITEM_MIN, 0, ZV_ITEM_MAX, LongestPacket, ZV_GAP_EXTRA, 0, 0);
    Add_Unit(PacketSound, ZVSTR_PACKET_SOUND_UNIT);
    SetGadgetStateZV(PacketSound, static_cast<double>(choice_.PacketMilliseconds));
    ItemEnabledZV(PacketSound, choice_.HasSound);
    EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
}

}  // namespace

void Handle_Options(ZVEvent* event)
{
    bool const isGadget = event->type == ZV_EVENT_GADGET;
    unsigned long const id = isGadget ? Event_Item(event)->node.id : 0;
    bool const isClosingKey = Is_Closing_Key(*event);
    if (isClosingKey) event->result = 1;
    if (isClosingKey || id == Done)
        ClosePaletteZV(event->palette);
    else if (isGadget)
        Press(event->palette, static_cast<ZVClip*>(event->palette->object), id);
}

void Ask_Stream_Options(ZVClip* clip, bool isSound)
{
    Run_Modal_Palette(
        isSound ? ZVSTR_MOVIE_AUDIO_OPTIONS : ZVSTR_MOVIE_VIDEO_OPTIONS, Handle_Options, clip, [=] {
            unsigned short const compression = isSound ? Audio : Video;
            unsigned short const streaming = isSound ? AudioStreaming : VideoStreaming;
            InitGroupZV();
            AddGadgetZV(compression, FirstPlace, 0, ZV_GAD_BUTTON, ZV_SIZE_XLARGE,
                        isSound ? ZVSTR_MOVIE_AUDIO_COMPRESSION : ZVSTR_MOVIE_VIDEO_COMPRESSION, nullptr);
            AddGadgetZV(streaming, BelowPlace, -1, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, ZVSTR_MOVIE_STREAMING,
                        nullptr);
            ItemEnabledZV(streaming, (isSound ? clip->AudioParams : clip->VideoParams) != nullptr);
            EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
            InitGroupZV();
            AddGadgetZV(Done, FirstPlace, 0, ZV_GAD_BUTTON, ZV_SIZE_MEDIUM, ZVSTR_MOVIE_DONE, nullptr);
            EndGroupZV(2, ZV_Position(ZV_POS_PARENT_END, ZV_POS_AFTER), 1, nullptr, nullptr);
        });
}

bool Ask_Stream_Settings(ZVStreamChoice* choice)
{
    return Ask_By<StreamDialog>(*choice, ZVSTR_STREAM_TITLE);
}
