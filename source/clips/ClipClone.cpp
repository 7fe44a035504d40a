// Copies of clips. All that a copy owns is made before anything of the target goes, so that a failure leaves
// the target as it was.
#include "ClipRecord.h"

#include <algorithm>
#include <utility>

namespace {

/// The blocks that a clip owns. Those still in here are freed with it.
struct OwnedBlocks {
    ZVFormatParams* videoParams = nullptr;
    ZVFormatParams* audioParams = nullptr;
    char* fileName = nullptr;
    ZVFrameRun* frameMap = nullptr;
    long* sequenceNumbers = nullptr;
    List layers;

    OwnedBlocks() { NewList(&layers); }
    OwnedBlocks(OwnedBlocks const&) = delete;
    OwnedBlocks& operator=(OwnedBlocks const&) = delete;
    ~OwnedBlocks()
    {
        if (audioParams != videoParams) FreeMemZV(audioParams);
        FreeMemZV(videoParams);
        FreeFileSpecZV(fileName);
        FreeMemZV(frameMap);
        FreeMemZV(sequenceNumbers);
        Free_List(&layers);
    }

    void Exchange(ZVClip* clip)
    {
        std::swap(videoParams, clip->VideoParams);
        std::swap(audioParams, clip->AudioParams);
        std::swap(fileName, clip->FileName);
        std::swap(frameMap, clip->FrameMap);
        std::swap(sequenceNumbers, clip->SequenceNumbers);
        List others;
        NewList(&others);
        Move_Nodes(&clip->Layers, &others);
        Move_Nodes(&layers, &clip->Layers);
        Move_Nodes(&others, &layers);
    }

private:
    static void Move_Nodes(List* from, List* to)
    {
        while (Node* node = RemHead(from))
            AddTail(to, node);
    }
};

template <typename T> bool Copy_Table(T const* source, long count, T*& out)
{
    if (!source) return true;
    out = Alloc_Zeroed<T>(count);
    if (out) std::copy_n(source, count, out);
    return out != nullptr;
}

bool Copy_Params(ZVFormatParams const* source, ZVFormatParams*& out)
{
    out = Copy_Format_Params(source);
    return out || !source;
}

bool Copy_Layers(List const& source, List& out)
{
    for (Node* node = List_First(&source); node; node = List_Next(node)) {
        auto* layer = Alloc_Zeroed<ZVClipLayer>(1);
        if (!layer) return false;
        *layer = *reinterpret_cast<ZVClipLayer*>(node);
        layer->Node = {};
        AddTail(&out, &layer->Node);
        if (node->name && !AddName(&layer->Node, node->name)) return false;
    }
    return true;
}

bool Copy_Owned(ZVClip const* source, OwnedBlocks& out)
{
    if (!Copy_Params(source->VideoParams, out.videoParams)) return false;
    if (source->AudioParams == source->VideoParams)
        out.audioParams = out.videoParams;
    else if (!Copy_Params(source->AudioParams, out.audioParams))
        return false;
    out.fileName = CopyFileSpecZV(source->FileName);
    return (out.fileName || !source->FileName) &&
           Copy_Table(source->FrameMap, source->FrameMapSize, out.frameMap) &&
           Copy_Table(source->SequenceNumbers, source->RawFrames, out.sequenceNumbers) &&
           Copy_Layers(source->Layers, out.layers);
}

/// All fields that a clone takes over as they are. What is not named here stays the target's own.
void Copy_Fields(ZVClip const* source, ZVClip* target)
{
    target->Format = source->Format;
    target->Width = source->Width;
    target->Height = source->Height;
    target->BitDepth = source->BitDepth;
    target->Frames = source->Frames;
    target->RawFrames = source->RawFrames;
    target->FrameRate = source->FrameRate;
    target->FileFrameRate = source->FileFrameRate;
    target->BaseFrameRate = source->BaseFrameRate;
    target->StartTime = source->StartTime;
    target->Flags = source->Flags;
    target->Media = source->Media;
    target->CreateFlags = source->CreateFlags;
    target->Layer = source->Layer;
    target->FullWidth = source->FullWidth;
    target->FullHeight = source->FullHeight;
    target->ProxyScale = source->ProxyScale;
    target->AlphaType = source->AlphaType;
    target->FieldOrder = source->FieldOrder;
    target->PullDown = source->PullDown;
    target->AlphaInvert = source->AlphaInvert;
    target->AlphaPremultiplied = source->AlphaPremultiplied;
    target->MatteRed = source->MatteRed;
    target->MatteGreen = source->MatteGreen;
    target->MatteBlue = source->MatteBlue;
    target->MatteAlpha = source->MatteAlpha;
    target->PixelAspect = source->PixelAspect;
    target->Background = source->Background;
    target->GBufferMask = source->GBufferMask;
    target->FrameDataMask = source->FrameDataMask;
    target->AudioFormat = source->AudioFormat;
    target->ClipMode = source->ClipMode;
    target->FrameMapSize = source->FrameMapSize;
    target->FrameMapUsed = source->FrameMapUsed;
    target->LastFrame = source->LastFrame;
    target->FrameSkip = source->FrameSkip;
    target->SequenceStart = source->SequenceStart;
    target->SequenceStep = source->SequenceStep;
    // Numbers that the target has given out name files of its own that are still there.
    target->ScratchCount = std::max(target->ScratchCount, source->ScratchCount);
}

bool Is_Same_File(ZVClip const* a, ZVClip const* b)
{
    return a->FileName && b->FileName && std::strcmp(a->FileName, b->FileName) == 0;
}

}  // namespace

ZVClip* CloneClipZV(ZVClip const* source, ZVClip* target)
{
    if (!source || source == target) return target;
    OwnedBlocks owned;
    if (!Copy_Owned(source, owned)) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    if (!target && !(target = Alloc_Clip())) return nullptr;
    if (target->OpenModule && (target->OpenModule != source->Format || !Is_Same_File(source, target)))
        CloseClipZV(target);
    unsigned long const inIO = target->Flags & ZV_CLIP_IO;
    owned.Exchange(target);
    Copy_Fields(source, target);
    // I/O belongs to the record whose BeginIO was called.
    target->Flags = (source->Flags & ~static_cast<unsigned long>(ZV_CLIP_IO)) | inIO;
    if (target->OpenModule) target->Flags |= ZV_CLIP_OPEN;
    return target;
}

void Restore_Clip(ZVClip* clip, ZVClip* saved)
{
    OwnedBlocks owned;
    owned.Exchange(saved);
    owned.Exchange(clip);
    Copy_Fields(saved, clip);
    FreeClipZV(saved);
}
