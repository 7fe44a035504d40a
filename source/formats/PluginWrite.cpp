// Writing through a Photoshop format plug-in: an estimate, which sees the whole picture too, then the file.
#include "PluginCall.h"
#include "PluginEntries.h"
#include "PluginProperties.h"
#include "PluginTiles.h"

#include <numeric>

namespace {

/// Modes that can be written: there are no bitmaps of one bit.
constexpr long WrittenModes = PluginModes & ~1L;

void Write_Tiles(PluginCall& call, ZVBitmap const& bitmap, int continueSelector)
{
    FormatRecord& record = call.Record();
    TileBudget budget(record.imageSize);
    while (record.data) {
        if (!budget.Spend(record)) {
            call.Fail(writErr);
            return;
        }
        Fill_Tile(record, bitmap);
        if (!call.Send(continueSelector)) return;
    }
}

/// Goes through the picture with a family of four selectors, the last of which is always sent.
bool Send_Picture(PluginCall& call, ZVBitmap const& bitmap, FormatSelector prepare)
{
    if (call.Send(prepare) && call.Send(prepare + 1)) Write_Tiles(call, bitmap, prepare + 2);
    call.Send(prepare + 3);
    return call.Succeeded();
}

void Describe_Frame(FormatRecord& record, ZVClip const& clip, ZVBitmap const& bitmap)
{
    bool const isDeep = bitmap.Type == ZV_BITMAP_RGBA16;
    Describe_Picture(record, clip, isDeep ? plugInModeRGB48 : plugInModeRGBColor,
                     GetBitsPerChannelZV(&bitmap));
    record.hostModes = WrittenModes;
    for (auto* table : {&record.redLUT, &record.greenLUT, &record.blueLUT})
        std::iota(std::begin(*table), std::end(*table), uint8_t{0});
}

}  // namespace

long Plugin_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    ZVFormatDesc const* const format = clip->Format;
    if (!format || !format->Plugin) return 0;
    bool const fits =
        clip->Width > 0 && clip->Width <= INT16_MAX && clip->Height > 0 && clip->Height <= INT16_MAX;
    PluginCall call(clip->Format, clip);
    if (!fits || !clip->FileName || !call.Is_Loaded()) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    BitmapBlock const stored = Stored_Frame(clip, bitmap, region);
    if (!stored) return 0;
    Describe_Frame(call.Record(), *clip, *stored);
    call.Show_Failure();
    auto const creator = static_cast<uint32_t>(clip->CreateFlags ? clip->CreateFlags : format->FileCreator);
    if (Send_Picture(call, *stored, formatSelectorEstimatePrepare) &&
        !call.Create_File(clip->FileName, format->FileType, creator))
        return 0;
    if (!call.Succeeded() || !Send_Picture(call, *stored, formatSelectorWritePrepare)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    if (!call.Save_Resources()) return 0;
    ++clip->RawFrames;
    return 1;
}
