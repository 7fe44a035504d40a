// The dialog that asks what is to become of a numbered series of files.
#include "ValueChoice.h"

#include "ZVControl.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>
#include <utility>

namespace {

enum Gadget : unsigned short {
    LoadAll = 1,
    LoadOne,
    SettingsHeading,
    RangeHeading,
    FirstFrame,
    LastFrame,
    CountLabel,
    FrameCount,
    RateLabel,
    RateList,
    Rate,
    AspectLabel,
    AspectList,
    Aspect,
    FieldsLabel,
    Fields
};

constexpr double UsualAspects[] = {1.0, 0.9, 1.2, 1.0666666, 1.422, 2.0};
constexpr double LargestRate = 100, SmallestAspect = 0.1, LargestAspect = 4.0, AspectStep = 0.01;
constexpr double SmallestRate = 0.01;  // what the field shows above 0; frames need some time

constexpr ValueChoice RateChoice{RateList, Rate, CommonRates};
constexpr ValueChoice AspectChoice{AspectList, Aspect, UsualAspects};

/// What the user chose the last time.
bool loadsSequence = true;

class SequenceDialog : public ModalDialog {
public:
    SequenceDialog(long frames, ZVSequenceChoice& choice)
        : frames_(frames), choice_(choice), firstNumber_(ZVEnv->timeUnits == ZV_UNITS_FRAMES_FROM_ONE)
    {
    }

private:
    void Add_Groups() override;
    void On_Gadget(unsigned short id, uint32_t report) override;
    void Take_Settings() override;

    void Add_Range() const;
    void Add_Footage() const;
    void Settle_Range(unsigned short changed) const;
    void Settle_Count() const;

    long Frame(unsigned short id) const;
    void Show_Frame(unsigned short id, long frame) const
    {
        SetGadgetStateZV(id, static_cast<double>(frame + firstNumber_));
    }

    long frames_;
    ZVSequenceChoice& choice_;
    long firstNumber_;  ///< what the first frame is shown as: timecode is shown as frames too
};

void Enable_Settings()
{
    for (unsigned short id = RangeHeading; id <= Fields; ++id)
        ItemEnabledZV(id, State_Of(LoadAll));
}

void Add_Label(Gadget label, Gadget gadget, unsigned long textId)
{
    AddTextZV(label, LabelPlace, static_cast<short>(gadget), textId, nullptr);
}

void SequenceDialog::Add_Range() const
{
    AddTextZV(SettingsHeading, ZV_Position(ZV_POS_PARENT_START, ZV_POS_DEFAULT), 0, ZVSTR_SEQUENCE_SETTINGS,
              nullptr);
    AddTextZV(RangeHeading, ZV_Position(ZV_POS_PARENT_START, ZV_POS_AFTER), SettingsHeading,
              ZVSTR_SEQUENCE_RANGE, ZV_GAP_EXTRA, 0, 0);
    long const last = frames_ - 1 + firstNumber_;
    AddGadgetZV(FirstFrame, BelowPlace, RangeHeading, ZV_GAD_INTEGER, ZV_SIZE_SMALL, ZVSTR_SEQUENCE_FIRST,
                ZV_ITEM_MIN, firstNumber_, ZV_ITEM_MAX, last, 0);
    AddGadgetZV(LastFrame, BelowPlace, FirstFrame, ZV_GAD_INTEGER, ZV_SIZE_SMALL, ZVSTR_SEQUENCE_LAST,
                ZV_ITEM_MIN, firstNumber_, ZV_ITEM_MAX, last, 0);
    AddGadgetZV(FrameCount, BelowPlace, LastFrame, ZV_GAD_INTEGER, ZV_SIZE_SMALL, nullptr, ZV_ITEM_MIN, 1,
                ZV_ITEM_MAX, frames_, 0);
    Add_Label(CountLabel, FrameCount, ZVSTR_SEQUENCE_COUNT);
    Show_Frame(FirstFrame, choice_.First);
    Show_Frame(LastFrame, choice_.Last);
    SetGadgetStateZV(FrameCount, static_cast<double>(choice_.Last - choice_.First + 1));
}

void SequenceDialog::Add_Footage() const
{
    double const noRate = 0;
    AddGadgetZV(RateList, BelowPlace, FrameCount, ZV_GAD_CYCLE, ZV_SIZE_XLARGE, nullptr,
                ZV_ITEM_ENTRIES_CSV_ID, ZVSTR_SEQUENCE_RATES, ZV_GAP_EXTRA, 0, 0);
    Add_Label(RateLabel, RateList, ZVSTR_SEQUENCE_RATE);
    AddGadgetZV(Rate, BesidePlace, RateList, ZV_GAD_FLOAT, ZV_SIZE_SMALL, nullptr, ZV_ITEM_MIN_REAL, &noRate,
                ZV_ITEM_MAX_REAL, &LargestRate, 0);
    AddGadgetZV(AspectList, BelowPlace, RateList, ZV_GAD_CYCLE, ZV_SIZE_XLARGE, nullptr,
                ZV_ITEM_ENTRIES_CSV_ID, ZVSTR_SEQUENCE_ASPECTS, 0);
    Add_Label(AspectLabel, AspectList, ZVSTR_SEQUENCE_ASPECT);
    ZVItem* const aspect =
        AddGadgetZV(Aspect, BesidePlace, AspectList, ZV_GAD_SLIDER, ZV_SIZE_MEDIUM, nullptr, nullptr);
    SetupSliderZV(Aspect, SmallestAspect, LargestAspect, SmallestAspect, LargestAspect, 2);
    if (aspect && aspect->object) static_cast<SliderState*>(aspect->object)->Step = AspectStep;
    AddGadgetZV(Fields, BelowPlace, AspectList, ZV_GAD_CYCLE, ZV_SIZE_XLARGE, nullptr, ZV_ITEM_ENTRIES_CSV_ID,
                ZVSTR_SEQUENCE_FIELD_ORDERS, 0);
    Add_Label(FieldsLabel, Fields, ZVSTR_SEQUENCE_FIELDS);
    RateChoice.Show(choice_.FrameRate);
    AspectChoice.Show(std::clamp(choice_.PixelAspect, SmallestAspect, LargestAspect));
    SetGadgetStateZV(Fields, choice_.FieldOrder + 1);
}

void SequenceDialog::Add_Groups()
{
    InitGroupZV();
    AddGadgetZV(LoadAll, FirstPlace, 0, ZV_GAD_RADIO, ZV_SIZE_XXLARGE, ZVSTR_SEQUENCE_LOAD_ALL, nullptr);
    AddGadgetZV(LoadOne, BelowPlace, LoadAll, ZV_GAD_RADIO, ZV_SIZE_XXLARGE, ZVSTR_SEQUENCE_LOAD_ONE,
                nullptr);
    SetItemExclusionZV(LoadAll, LoadOne);
    SetGadgetStateZV(loadsSequence ? LoadAll : LoadOne, 1);
    EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
    InitGroupZV();
    Add_Range();
    Add_Footage();
    EndGroupZV(2, BelowPlace, 1, nullptr, nullptr);
    Enable_Settings();
}

/// The frame that a field tells, which the user can type as he likes.
long SequenceDialog::Frame(unsigned short id) const
{
    return std::clamp(State_Of(id) - firstNumber_, 0L, frames_ - 1);
}

/// What was typed stays; the other end of the range gives way.
void SequenceDialog::Settle_Range(unsigned short changed) const
{
    long first = Frame(FirstFrame), last = Frame(LastFrame);
    if (first > last) (changed == FirstFrame ? last : first) = Frame(changed);
    Show_Frame(FirstFrame, first);
    Show_Frame(LastFrame, last);
    SetGadgetStateZV(FrameCount, static_cast<double>(last - first + 1));
}

void SequenceDialog::Settle_Count() const
{
    long const first = Frame(FirstFrame);
    long const count = std::clamp<long>(State_Of(FrameCount), 1, frames_ - first);
    SetGadgetStateZV(FrameCount, static_cast<double>(count));
    Show_Frame(LastFrame, first + count - 1);
}

void SequenceDialog::On_Gadget(unsigned short id, uint32_t report)
{
    bool const isFinal = report & ZV_MOD_RELEASE;
    switch (id) {
    case LoadAll:
    case LoadOne: Enable_Settings(); break;
    case FirstFrame:
    case LastFrame:
        if (isFinal) Settle_Range(id);
        break;
    case FrameCount:
        if (isFinal) Settle_Count();
        break;
    case RateList: RateChoice.On_Cycle(); break;
    case Rate:
        if (isFinal) SetGadgetStateZV(Rate, std::clamp(Value_Of(Rate), 0.0, LargestRate));
        RateChoice.On_Value();
        break;
    case AspectList: AspectChoice.On_Cycle(); break;
    case Aspect: AspectChoice.On_Value(); break;
    default: break;
    }
}

void SequenceDialog::Take_Settings()
{
    loadsSequence = choice_.IsWhole = State_Of(LoadAll);
    choice_.First = Frame(FirstFrame);
    choice_.Last = Frame(LastFrame);
    choice_.FrameRate = std::max(Value_Of(Rate), SmallestRate);
    choice_.PixelAspect = Value_Of(Aspect);
    choice_.FieldOrder = static_cast<uint8_t>(State_Of(Fields) - 1);
}

}  // namespace

void Sequence_Handler(ZVEvent* event)
{
    ModalDialog::Handle(event);
}

bool Ask_Sequence(long frames, ZVSequenceChoice* choice)
{
    DialogAnswer const answer = SequenceDialog(frames, *choice).Run(ZVSTR_SEQUENCE_TITLE, Sequence_Handler);
    if (answer == DialogAnswer::Cancelled) SetError(ZV_ERR_SEQUENCE);
    return answer == DialogAnswer::Confirmed;
}
