// See PictStill.h. What it writes is told in PictCompressed.cpp, which reads it.
#include "PictStill.h"

#include "PictCanvas.h"
#include "PictOutput.h"

#include <array>

namespace {

constexpr uint32_t DescriptionSize = 86;
constexpr std::size_t NameSize = 32;  // its length first
constexpr std::size_t RecordSize = 68 + DescriptionSize;
constexpr long NoColourTable = -1;
constexpr uint32_t One = 1 << 16, OneOfLast = 1 << 30;

struct StillPicture {
    OSMovieStillSettings settings;
    char const* codecName;
    long width, height;
    std::vector<uint8_t> bytes;
};

void Put_Record(PictOutput& out, long width, long height)
{
    out.Put16(0);
    out.Put32(One).Put_Zeros(12).Put32(One).Put_Zeros(12).Put32(OneOfLast);
    out.Put32(0).Put_Rect({}).Put16(PICT_COPY).Put_Rect({0, 0, width, height}).Put32(0).Put32(0);
}

void Put_Description(PictOutput& out, StillPicture const& still)
{
    std::size_t const nameLength = std::min(std::strlen(still.codecName), NameSize - 1);
    std::array<uint8_t, NameSize> name{static_cast<uint8_t>(nameLength)};
    std::copy_n(still.codecName, nameLength, &name[1]);
    out.Put32(DescriptionSize).Put32(still.settings.codec).Put_Zeros(8);
    out.Put_Zeros(12).Put32(static_cast<uint32_t>(still.settings.quality));  // version, vendor, motion
    out.Put16(still.width).Put16(still.height).Put32(Dots72).Put32(Dots72);
    out.Put32(static_cast<uint32_t>(still.bytes.size())).Put16(1);
    out.Put(name).Put16(still.settings.hasAlpha ? 32 : 24).Put16(NoColourTable);
}

void Put_Picture(StillPicture const& still, std::vector<uint8_t>& picture)
{
    constexpr std::size_t around = PictHeaderSize + 6 + RecordSize + 3;
    picture.resize(around + still.bytes.size());
    PictOutput out(picture.data());
    out.Put_Header(still.width, still.height).Put16(PICT_OP_COMPRESSED);
    out.Put32(static_cast<uint32_t>(RecordSize + still.bytes.size()));
    Put_Record(out, still.width, still.height);
    Put_Description(out, still);
    picture.resize(out.Put(still.bytes).End_Picture(picture.data()));
}

}  // namespace

bool Write_Still_Picture(ZVClip const* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region,
                         uint32_t codec, long quality, std::vector<uint8_t>& picture)
{
    OSMovieCodec const known = OS_Movie_Find_Codec(codec);
    if (!known.isStill) {
        Refuse_Codec(codec);
        return false;
    }
    bool const hasAlpha = known.hasAlpha && clip->AlphaType == ZV_ALPHA_CHANNEL;
    StillPicture still{{codec, hasAlpha, quality}, known.name, bitmap->Width, bitmap->Height, {}};
    BitmapBlock const stored = Stored_Frame(clip, bitmap, region);
    if (!stored || !OS_Movie_Write_Still(still.settings, stored.get(), still.bytes)) return false;
    Put_Picture(still, picture);
    return true;
}
