// The dialog for the compression of a movie's sound.
#include "Compression.h"
#include "ValueChoice.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>

namespace {

enum Gadget : unsigned short { Codec = 1, RateList, Rate, Size, Channels };

constexpr double SampleRates[] = {8000, 11025, 16000, 22050, 32000, 44100, 48000};
constexpr long SmallestRate = 1000, LargestRate = 65535;  // of the stored options, 16.16
constexpr ValueChoice RateChoice{RateList, Rate, SampleRates};

class SoundDialog : public ModalDialog {
public:
    explicit SoundDialog(ZVSoundChoice& choice) : choice_(choice), codecs_(true, choice.IsStreamed)
    {
        codecs_.Add_First(0, GetStringZV(ZVSTR_NO_CODEC));
    }

private:
    void Add_Groups() override;
    void On_Gadget(unsigned short id, uint32_t report) override;
    void Take_Settings() override;
    void Enable() const;

    ZVSoundChoice& choice_;
    CodecList codecs_;
};

void SoundDialog::Add_Groups()
{
    InitGroupZV();
    codecs_.Add_Cycle(Codec, choice_.Codec);
    Add_Labelled_Cycle(RateList, Codec, ZVSTR_SAMPLE_RATE, ZVSTR_SAMPLE_RATES);
    AddGadgetZV(Rate, BesidePlace, RateList, ZV_GAD_INTEGER, ZV_SIZE_SMALL, nullptr, ZV_ITEM_MIN,
                SmallestRate, ZV_ITEM_MAX, LargestRate, 0);
    Add_Unit(Rate, ZVSTR_SAMPLE_RATE_UNIT);
    RateChoice.Show(static_cast<double>(choice_.Format.Rate));
    Add_Labelled_Cycle(Size, RateList, ZVSTR_SAMPLE_SIZE, ZVSTR_SAMPLE_SIZES);
    SetGadgetStateZV(Size, static_cast<double>(choice_.Format.SampleSize));
    Add_Labelled_Cycle(Channels, Size, ZVSTR_CHANNELS, ZVSTR_CHANNEL_COUNTS);
    SetGadgetStateZV(Channels, static_cast<double>(choice_.Format.Channels));
    EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
    Enable();
}

/// What compresses takes words.
void SoundDialog::Enable() const
{
    bool const isCompressed = codecs_.Chosen(Codec).code != 0;
    if (isCompressed) SetGadgetStateZV(Size, 2);
    ItemEnabledZV(Size, !isCompressed);
}

void SoundDialog::On_Gadget(unsigned short id, uint32_t)
{
    switch (id) {
    case Codec: Enable(); break;
    case RateList: RateChoice.On_Cycle(); break;
    case Rate: RateChoice.On_Value(); break;
    default: break;
    }
}

void SoundDialog::Take_Settings()
{
    choice_.Codec = codecs_.Chosen(Codec).code;
    choice_.Format.Rate =
        static_cast<unsigned long>(std::clamp<long>(State_Of(Rate), SmallestRate, LargestRate));
    choice_.Format.SampleSize = State_Of(Size) == 1 ? 1 : 2;
    choice_.Format.Channels = State_Of(Channels) == 1 ? 1 : 2;
}

}  // namespace

bool Ask_Sound_Settings(ZVSoundChoice* choice)
{
    return Ask_By<SoundDialog>(*choice, ZVSTR_SOUND_TITLE);
}
