// RAM: a clip without a file. Its frames lie in memory as native bitmaps, ready to be drawn; alpha is gone
// once a frame is added, and every frame reads back opaque.
#include "FormatModule.h"

namespace {

constexpr long Properties =
    0x10000 | ZV_FORMAT_HIDDEN | ZV_FORMAT_WRITE | ZV_FORMAT_READ | ZV_FORMAT_MULTIFRAME;

/// A frame, in a List that is the clip's ModuleData. The order of the list is that of the frames.
struct RAMFrame {
    ::Node node;
    ZVNativeBitmap* bitmap;  ///< owned
};

List* Frames_Of(ZVClip const* clip)
{
    return static_cast<List*>(clip->ModuleData);
}

ZVNativeBitmap const* Bitmap_Of(Node const* node)
{
    return node ? reinterpret_cast<RAMFrame const*>(node)->bitmap : nullptr;
}

void RAM_Close(ZVClip* clip)
{
    List* frames = Frames_Of(clip);
    if (!frames) return;
    while (Node* node = RemHead(frames)) {
        FreeBitmapZV(reinterpret_cast<RAMFrame*>(node)->bitmap);
        FreeMemZV(node);
    }
    FreeMemZV(frames);
    clip->ModuleData = nullptr;
}

long RAM_Open(ZVClip* clip, TagItem*)
{
    List const* frames = Frames_Of(clip);
    ZVNativeBitmap const* first = frames ? Bitmap_Of(List_First(frames)) : nullptr;
    if (!first) return 0;
    clip->Width = first->Width;
    clip->Height = first->Height;
    clip->BitDepth = 8;
    clip->RawFrames = List_Entries(frames);
    clip->Media = ZV_MEDIA_VIDEO;
    return 1;
}

long RAM_Create(ZVClip* clip, unsigned long)
{
    RAM_Close(clip);
    auto* frames = static_cast<List*>(AllocMemZV(sizeof(List), ZV_MEM_CLEAR));
    if (!frames) return 0;
    NewList(frames);
    clip->ModuleData = frames;
    return 1;
}

long RAM_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long frame, ZVRectT<long>*, long, long, long, void*, long)
{
    List const* frames = Frames_Of(clip);
    ZVNativeBitmap const* native = frames ? Bitmap_Of(List_Entry(frames, frame)) : nullptr;
    if (!native) return 0;
    // Frames may have been added in several sizes; what this one leaves open must not stay as allocated.
    if (native->Width < bitmap->Width || native->Height < bitmap->Height)
        FillBitmapZV(bitmap, clip->Background);
    CopyBitmapZV(native, bitmap, 0, 0, native->Width, native->Height, 0, 0);
    return 1;
}

long RAM_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    List* frames = Frames_Of(clip);
    if (!frames) return 0;
    auto* frame = static_cast<RAMFrame*>(AllocMemZV(sizeof(RAMFrame), ZV_MEM_CLEAR));
    if (!frame) return 0;
    frame->bitmap = AllocNativeBitmapZV(bitmap->Width, bitmap->Height, SuggestedDepthZV());
    if (!frame->bitmap) {
        FreeMemZV(frame);
        return 0;
    }
    InterpretAlphaZV(clip, bitmap, frame->bitmap, region);
    AddTail(frames, &frame->node);
    ++clip->RawFrames;
    return 1;
}

/// The module is reached by selecting it, never by a file.
long RAM_CanLoad(ZVFormatDesc*, char const*, unsigned long, unsigned long, unsigned long)
{
    return 0;
}

}  // namespace

long Add_RAM_Format(ZVScanDesc*)
{
    ZVFormatDesc* desc = Make_Format_Desc({"Ram", ZV_BLANK_CODE, ZV_BLANK_CODE, nullptr, 0, nullptr, 0});
    if (!desc) return 0;
    desc->Open = RAM_Open;
    desc->Close = RAM_Close;
    desc->Create = RAM_Create;
    desc->BeginIO = Always_Ready;
    desc->EndIO = Always_Ready;
    desc->GetFrame = RAM_GetFrame;
    desc->AddFrame = RAM_AddFrame;
    desc->CanLoad = RAM_CanLoad;
    desc->GetImportProperties = Import_Properties<Properties>;
    desc->GetExportProperties = Export_Properties<Properties>;
    AddTail(&ZVEnv->formats, &desc->Node);
    return 1;
}
