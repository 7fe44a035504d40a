// See Compression.h.
#include "Compression.h"

#include "ZVControl.h"

#include "Locale/ZVLibStr.h"

#include <algorithm>
#include <cmath>
#include <cstring>

CodecList::CodecList(bool isSound, bool isStreamed) : codecs_(OS_Movie_List_Codecs(isSound))
{
    if (isStreamed) std::erase_if(codecs_, [](OSMovieCodec const& codec) { return !codec.canStream; });
}

void CodecList::Add_First(uint32_t code, char const* name)
{
    OSMovieCodec codec{};
    codec.code = code;
    std::strncpy(codec.name, name, sizeof codec.name - 1);
    codecs_.insert(codecs_.begin(), codec);
}

void CodecList::Add_Cycle(unsigned short id, uint32_t code) const
{
    std::string names;
    std::size_t entry = 1;
    for (std::size_t i = 0; i < codecs_.size(); ++i) {
        names += (i ? "," : "") + std::string(codecs_[i].name);
        if (codecs_[i].code == code) entry = i + 1;
    }
    AddGadgetZV(id, FirstPlace, 0, ZV_GAD_CYCLE, ZV_SIZE_XLARGE, ZVSTR_CODEC, ZV_ITEM_ENTRIES_CSV,
                names.c_str(), 0);
    SetGadgetStateZV(id, static_cast<double>(entry));
}

OSMovieCodec const& CodecList::Chosen(unsigned short id) const
{
    auto const entry = std::clamp<long>(State_Of(id), 1, static_cast<long>(codecs_.size()));
    return codecs_[static_cast<std::size_t>(entry - 1)];
}

static long Percent(long quality, long best)
{
    return std::lround(100.0 * static_cast<double>(std::clamp(quality, 0L, best)) /
                       static_cast<double>(best));
}

void Add_Quality(unsigned short id, unsigned short reference, long quality, long best)
{
    ZVItem* const slider = AddGadgetZV(id, BelowPlace, static_cast<short>(reference), ZV_GAD_SLIDER,
                                       ZV_SIZE_XLARGE, nullptr, nullptr);
    SetupSliderZV(id, 0, 100, 0, 100, 0);
    if (slider && slider->object) static_cast<SliderState*>(slider->object)->Unit[0] = '%';
    Add_Label(id, ZVSTR_QUALITY);
    SetGadgetStateZV(id, static_cast<double>(Percent(quality, best)));
}

long Chosen_Quality(unsigned short id, long old, long best)
{
    long const percent = State_Of(id);
    return percent == Percent(old, best) ? old : std::lround(static_cast<double>(percent * best) / 100.0);
}

void Add_Label(unsigned short gadget, unsigned long textId)
{
    AddTextZV(ZV_LABEL_ID, LabelPlace, static_cast<short>(gadget), textId, nullptr);
}

void Add_Unit(unsigned short gadget, unsigned long textId)
{
    AddTextZV(ZV_LABEL_ID, UnitPlace, static_cast<short>(gadget), textId, nullptr);
}

void Add_Labelled_Cycle(unsigned short id, unsigned short reference, unsigned long labelId,
                        unsigned long entriesId)
{
    AddGadgetZV(id, BelowPlace, static_cast<short>(reference), ZV_GAD_CYCLE, ZV_SIZE_XLARGE, labelId,
                ZV_ITEM_ENTRIES_CSV_ID, entriesId, 0);
}
