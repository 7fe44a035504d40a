// The dialog for the compression of a movie's pictures. Settings that a codec does not heed are disabled.
#include "Compression.h"
#include "ValueChoice.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>

namespace {

enum Gadget : unsigned short {
    Codec = 1,
    Depth,
    Quality,
    RateList,
    Rate,
    HasKeyFrames,
    KeyFrames,
    HasDataRate,
    DataRate
};

constexpr long BestQuality = 1024;
constexpr long LongestInterval = 100000, LargestKilobytes = 250000;
constexpr long UsualInterval = 24, UsualKilobytes = 500;
constexpr double LargestRate = 1000, SmallestRate = 0.01;
constexpr long BytesPerKilobyte = 1000;
constexpr long DepthWithAlpha = 32, DepthWithoutAlpha = 24;
constexpr ValueChoice RateChoice{RateList, Rate, CommonRates};

/// At least one for a data rate that there is.
long Kilobytes(long bytes)
{
    return (bytes + BytesPerKilobyte - 1) / BytesPerKilobyte;
}

class VideoDialog : public ModalDialog {
public:
    explicit VideoDialog(ZVVideoChoice& choice) : choice_(choice), codecs_(false, choice.IsStreamed) {}

private:
    void Add_Groups() override;
    void On_Gadget(unsigned short id, uint32_t report) override;
    void Take_Settings() override;
    void Enable() const;

    ZVVideoChoice& choice_;
    CodecList codecs_;
};

/// A check, a number that counts while it is on, and the number's unit.
void Add_Limit(Gadget check, Gadget number, Gadget reference, unsigned long labelId, unsigned long unitId,
               long value, long usual, long largest)
{
    AddGadgetZV(check, BelowPlace, reference, ZV_GAD_CHECK, ZV_SIZE_XLARGE, labelId, nullptr);
    AddGadgetZV(number, BesidePlace, check, ZV_GAD_INTEGER, ZV_SIZE_SMALL, nullptr, ZV_ITEM_MIN, 1,
                ZV_ITEM_MAX, largest, 0);
    Add_Unit(number, unitId);
    SetGadgetStateZV(check, value > 0);
    SetGadgetStateZV(number, static_cast<double>(value > 0 ? value : usual));
}

void VideoDialog::Add_Groups()
{
    double const noRate = 0;
    if (codecs_.Is_Empty()) {
        SetError(ZV_ERR_NO_FORMAT);
        return;
    }
    InitGroupZV();
    codecs_.Add_Cycle(Codec, choice_.Codec);
    Add_Labelled_Cycle(Depth, Codec, ZVSTR_DEPTH, ZVSTR_DEPTHS);
    SetGadgetStateZV(Depth, choice_.Depth == DepthWithAlpha ? 2 : 1);
    Add_Quality(Quality, Depth, choice_.Quality, BestQuality);
    Add_Labelled_Cycle(RateList, Quality, ZVSTR_SEQUENCE_RATE, ZVSTR_SEQUENCE_RATES);
    AddGadgetZV(Rate, BesidePlace, RateList, ZV_GAD_FLOAT, ZV_SIZE_SMALL, nullptr, ZV_ITEM_MIN_REAL, &noRate,
                ZV_ITEM_MAX_REAL, &LargestRate, 0);
    RateChoice.Show(choice_.FrameRate);
    Add_Limit(HasKeyFrames, KeyFrames, RateList, ZVSTR_KEY_FRAMES, ZVSTR_KEY_FRAMES_UNIT,
              choice_.KeyFrameInterval, UsualInterval, LongestInterval);
    Add_Limit(HasDataRate, DataRate, HasKeyFrames, ZVSTR_DATA_RATE, ZVSTR_DATA_RATE_UNIT,
              Kilobytes(choice_.BytesPerSecond), UsualKilobytes, LargestKilobytes);
    EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
    Enable();
}

/// A limit of the data rate takes the place of the quality.
void VideoDialog::Enable() const
{
    OSMovieCodec const& codec = codecs_.Chosen(Codec);
    bool const isLimited = codec.hasDataRate && State_Of(HasDataRate);
    if (!codec.hasAlpha) SetGadgetStateZV(Depth, 1);
    ItemEnabledZV(Depth, codec.hasAlpha);
    ItemEnabledZV(Quality, codec.hasQuality && !isLimited);
    ItemEnabledZV(RateList, !choice_.HasFixedRate);
    ItemEnabledZV(Rate, !choice_.HasFixedRate);
    ItemEnabledZV(HasKeyFrames, codec.hasKeyFrames);
    ItemEnabledZV(KeyFrames, codec.hasKeyFrames && State_Of(HasKeyFrames));
    ItemEnabledZV(HasDataRate, codec.hasDataRate);
    ItemEnabledZV(DataRate, isLimited);
}

void VideoDialog::On_Gadget(unsigned short id, uint32_t)
{
    switch (id) {
    case Codec:
    case HasKeyFrames:
    case HasDataRate: Enable(); break;
    case RateList: RateChoice.On_Cycle(); break;
    case Rate: RateChoice.On_Value(); break;
    default: break;
    }
}

void VideoDialog::Take_Settings()
{
    choice_.Codec = codecs_.Chosen(Codec).code;
    choice_.Depth = State_Of(Depth) == 2 ? DepthWithAlpha : DepthWithoutAlpha;
    choice_.Quality = Chosen_Quality(Quality, choice_.Quality, BestQuality);
    choice_.FrameRate = std::clamp(Value_Of(Rate), SmallestRate, LargestRate);
    choice_.KeyFrameInterval =
        State_Of(HasKeyFrames) ? std::clamp<long>(State_Of(KeyFrames), 1, LongestInterval) : 0;
    long const kilobytes =
        State_Of(HasDataRate) ? std::clamp<long>(State_Of(DataRate), 1, LargestKilobytes) : 0;
    if (kilobytes != Kilobytes(choice_.BytesPerSecond)) choice_.BytesPerSecond = kilobytes * BytesPerKilobyte;
}

}  // namespace

bool Ask_Video_Settings(ZVVideoChoice* choice)
{
    return Ask_By<VideoDialog>(*choice, ZVSTR_VIDEO_TITLE);
}
