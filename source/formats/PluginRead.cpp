// Reading through a Photoshop format plug-in. No file stays open between frames: each of them is a file of
// its own, which the plug-in reads from its start.
#include "PluginCall.h"
#include "PluginEntries.h"
#include "PluginTiles.h"

namespace {

/// The plug-in and the clip's file; false with error 18.
bool Begin(PluginCall& call, ZVClip const* clip)
{
    if (call.Is_Loaded() && clip->FileName && call.Open_File(clip->FileName)) return true;
    SetError(ZV_ERR_CLIP);
    return false;
}

/// What a plug-in tells of a picture when it has begun to read it.
struct Picture {
    PIPoint size;
    short depth, planes;
};

bool Is_Size(long size)
{
    return size >= 1 && size <= INT32_MAX;
}

/// Bits of a channel as bitmaps have them.
long Bitmap_Depth(short depth)
{
    return depth == 10 || depth == 12 || depth == 16 || depth == 32 ? depth : 8;
}

void Read_Tiles(PluginCall& call, TileReader reader)
{
    FormatRecord& record = call.Record();
    TileBudget budget(record.imageSize);
    while (record.data) {
        if (!budget.Spend(record)) {
            call.Fail(formatCannotRead);
            return;
        }
        reader.Take(record);
        if (!call.Send(formatSelectorReadContinue)) return;
    }
}

}  // namespace

long Plugin_Open(ZVClip* clip, TagItem*)
{
    if (!clip->Format || !clip->Format->Plugin) return 0;
    if (clip->ModuleData) return 1;
    PluginCall call(clip->Format, clip);
    if (!Begin(call, clip)) return 0;
    FormatRecord const& record = call.Record();
    if (call.Send(formatSelectorReadPrepare)) call.Send(formatSelectorReadStart);
    Picture const picture = {record.imageSize, record.depth, record.planes};
    if (call.Succeeded()) call.Send(formatSelectorReadFinish);
    if (!call.Succeeded() || picture.size.h < 1 || picture.size.v < 1) {
        SetError(ZV_ERR_CLIP_EXCEPTION);
        return 0;
    }
    clip->Width = picture.size.h;
    clip->Height = picture.size.v;
    clip->BitDepth = Bitmap_Depth(picture.depth);
    clip->RawFrames = 1;
    clip->Media = ZV_MEDIA_VIDEO;
    clip->AlphaType = picture.planes == 4 ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    clip->ModuleData = reinterpret_cast<void*>(1);  // marks the clip as open
    return 1;
}

long Plugin_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* sourceOffset, long width,
                     long height, long, void*, long)
{
    if (!clip->Format || !clip->Format->Plugin) return 0;
    if (!Is_Size(width) || !Is_Size(height) || !Is_Size(clip->Width) || !Is_Size(clip->Height)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    ZVRectT<long> const size{sourceOffset ? sourceOffset->x : 0, sourceOffset ? sourceOffset->y : 0, width,
                             height};
    bool const isUnscaled = width == clip->Width && height == clip->Height && size.x == 0 && size.y == 0;
    PluginCall call(clip->Format, clip);
    if (!Begin(call, clip)) return 0;
    call.Show_Failure();
    if (call.Send(formatSelectorReadPrepare)) {
        if (call.Send(formatSelectorReadStart))
            Read_Tiles(call, {*bitmap, isUnscaled ? Place_Unscaled(*bitmap)
                                                  : Place_Scaled(*bitmap, clip->Width, clip->Height, size)});
        call.Send(formatSelectorReadFinish);
    }
    if (!call.Succeeded()) SetError(ZV_ERR_CLIP);
    return call.Succeeded();
}
