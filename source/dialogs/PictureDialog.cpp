// The dialog for the compression of single pictures.
#include "Compression.h"

#include "Locale/ZVLibStr.h"

namespace {

enum Gadget : unsigned short { Codec = 1, Quality };

constexpr uint32_t PlainCodec = ZV_FourCC("raw ");
constexpr long BestQuality = 1023;

/// Pictures as they are need no movie layer, and the others must do without what a movie has around them.
CodecList Offered_Codecs()
{
    std::vector<OSMovieCodec> codecs = OS_Movie_List_Codecs(false);
    std::erase_if(codecs, [](OSMovieCodec const& codec) { return !codec.isStill; });
    CodecList list(std::move(codecs));
    list.Add_First(PlainCodec, GetStringZV(ZVSTR_NO_CODEC));
    return list;
}

class PictureDialog : public ModalDialog {
public:
    explicit PictureDialog(ZVPICTOptions& choice) : choice_(choice), codecs_(Offered_Codecs()) {}

private:
    void Add_Groups() override
    {
        InitGroupZV();
        codecs_.Add_Cycle(Codec, choice_.Codec);
        Add_Quality(Quality, Codec, choice_.Quality, BestQuality);
        EndGroupZV(1, FirstPlace, 0, nullptr, nullptr);
        Enable();
    }
    void On_Gadget(unsigned short, uint32_t) override { Enable(); }
    void Take_Settings() override
    {
        choice_.Codec = codecs_.Chosen(Codec).code;
        choice_.Quality = static_cast<uint32_t>(Chosen_Quality(Quality, choice_.Quality, BestQuality));
    }
    void Enable() const { ItemEnabledZV(Quality, codecs_.Chosen(Codec).hasQuality); }

    ZVPICTOptions& choice_;
    CodecList codecs_;
};

}  // namespace

bool Ask_Picture_Settings(ZVPICTOptions* choice)
{
    return Ask_By<PictureDialog>(*choice, ZVSTR_PICTURE_TITLE);
}
