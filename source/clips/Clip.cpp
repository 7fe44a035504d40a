// Life of a clip record: defaults, creating an output, closing, freeing, and the bracket around frame work.
#include "ClipRecord.h"
#include "FormatMatch.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

/// The module that stands in for a clip without format: the first one of its kind, or the last.
static ZVFormatDesc* Find_Default_Format(bool first)
{
    ZVFormatDesc* found = nullptr;
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
        if (!(GetImportPropertiesZV(desc) & ZV_FORMAT_DEFAULT)) continue;
        found = desc;
        if (first) break;
    }
    return found;
}

/// The next number. Scratch names hold its last four digits, so the numbers of living clips are passed over:
/// two clips must not write their edited frames into one file.
static unsigned long Next_Clip_ID()
{
    unsigned long& id = ZVEnv->clipCounter;
    for (int tries = 0; tries < 10000; ++tries)
        if (ZVEnv->clipsByScratchNumber[++id % 10000] == 0) break;
    ++ZVEnv->clipsByScratchNumber[id % 10000];
    return id;
}

static void Free_Clip_ID(unsigned long id)
{
    uint16_t& clips = ZVEnv->clipsByScratchNumber[id % 10000];
    if (clips > 0) --clips;
}

ZVClip* Alloc_Clip()
{
    if (!ZVEnv) return nullptr;
    void* block = Alloc_Zeroed<ZVClip>(1);
    if (!block) {
        SetError(ZV_ERR_MEMORY);
        return nullptr;
    }
    auto* clip = new (block) ZVClip{};
    clip->ClipID = Next_Clip_ID();
    clip->SequenceStep = 1;
    clip->Background = 0xFF000000;
    clip->AlphaPremultiplied = 1;
    clip->ClipMode = 1;
    clip->LastFrame = -1;
    clip->Format = Find_Default_Format(false);
    NewList(&clip->Layers);
    return clip;
}

ZVClip* NewClipZV()
{
    return Alloc_Clip();
}

void Discard_Params(ZVClip* clip)
{
    if (clip->AudioParams != clip->VideoParams) FreeMemZV(clip->AudioParams);
    FreeMemZV(clip->VideoParams);
    clip->VideoParams = clip->AudioParams = nullptr;
}

void Set_Clip_Format(ZVClip* clip, ZVFormatDesc* desc)
{
    if (clip->OpenModule && clip->OpenModule != desc) CloseClipZV(clip);
    clip->Format = desc;
    Discard_Params(clip);
}

/// Whether a failed Create may report this number itself.
static bool Is_Create_Error(unsigned long error)
{
    switch (error) {
    case ZV_ERR_MEMORY:
    case ZV_ERR_DISK_FULL:
    case ZV_ERR_LOCKED:
    case ZV_ERR_BUSY:
    case ZV_ERR_SEQUENCE:
    case 23: return true;
    default: return false;
    }
}

long CreateClipZV(ZVClip* clip, unsigned long flags)
{
    SetError(ZV_ERR_NONE);
    if (!clip || !ZVEnv) return 0;
    if (!clip->FileName) {
        SetError(ZV_ERR_NOT_FOUND);
        return 0;
    }
    if (clip->OpenModule) CloseClipZV(clip);
    if (!clip->Format) {
        ZVFormatDesc* desc = Find_Extension_Format(Extension_Code(clip->FileName));
        Set_Clip_Format(clip, desc ? desc : Find_Default_Format(true));
    }
    if (!clip->Format) {
        SetError(ZV_ERR_NO_FORMAT);
        return 0;
    }
    long const properties = GetExportPropertiesZV(clip);
    if (((clip->Media & ZV_MEDIA_AUDIO) && !(properties & ZV_FORMAT_AUDIO_WRITE)) ||
        ((clip->Media & ZV_MEDIA_VIDEO) && !(properties & ZV_FORMAT_WRITE))) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    clip->CreateFlags = flags;
    if (!clip->Format->Create || !clip->Format->Create(clip, flags)) {
        if (!Is_Create_Error(GetErrorZV())) SetError(ZV_ERR_CLIP);
        return 0;
    }
    clip->OpenModule = clip->Format;
    clip->Flags |= ZV_CLIP_OPEN | ZV_CLIP_WRITING;
    clip->RawFrames = 0;
    return 1;
}

void CloseClipZV(ZVClip* clip)
{
    if (!clip) return;
    if (clip->Flags & ZV_CLIP_IO) EndClipIOZV(clip, nullptr);
    ZVFormatDesc* const module = std::exchange(clip->OpenModule, nullptr);
    if (module && module->Close) module->Close(clip);
    FreeBitmapZV(std::exchange(clip->FieldBitmap, nullptr));
    clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_OPEN);
}

/// Deletes the files of the scratch frames in the map.
static void Delete_Scratch_Frames(ZVClip const* clip)
{
    if (!clip->FrameMap) return;
    unsigned long const error = GetErrorZV();
    for (long i = 0; i < clip->FrameMapUsed; ++i) {
        ZVFrameRun const& run = clip->FrameMap[i];
        for (long k = 0; run.Start < 0 && k < run.Count; ++k) {
            char const* name = Make_TempName(clip->ClipID, run.Start - k, 0);
            if (name && FileExistsZV(name)) DeleteFileZV(name);
        }
    }
    SetError(error);
}

void FreeClipZV(ZVClip* clip)
{
    if (!clip) return;
    CloseClipZV(clip);
    if (ZVEnv) {
        Delete_Scratch_Frames(clip);
        Free_Clip_ID(clip->ClipID);
    }
    Discard_Params(clip);
    FreeMemZV(clip->FrameMap);
    FreeMemZV(clip->SequenceNumbers);
    Free_List(&clip->Layers);
    FreeFileSpecZV(clip->FileName);
    FreeMemZV(clip);
}

long BeginClipIOZV(ZVClip* clip, TagItem*)
{
    SetError(ZV_ERR_NONE);
    if (!clip) return 0;
    if (clip->Flags & ZV_CLIP_IO) return 1;
    // A clone of an open clip has the state of its source, and no module of its own yet. A module that cannot
    // be opened a second time, such as one without a file, may still have an answer without.
    bool const isClone = !clip->OpenModule && !clip->ModuleData && clip->Format && clip->FileName;
    if (isClone && (clip->Flags & (ZV_CLIP_OPEN | ZV_CLIP_WRITING)) == ZV_CLIP_OPEN)
        Open_Module(clip, nullptr);
    if (clip->Format && clip->Format->BeginIO &&
        !clip->Format->BeginIO(clip, clip->Flags & ZV_CLIP_WRITING)) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    SetError(ZV_ERR_NONE);
    clip->Flags |= ZV_CLIP_IO;
    return 1;
}

long EndClipIOZV(ZVClip* clip, TagItem*)
{
    if (!clip) return 0;
    if (!clip->Format) {
        clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_IO);
        return 1;
    }
    if (!(clip->Flags & ZV_CLIP_IO)) return 0;
    clip->Flags &= ~static_cast<unsigned long>(ZV_CLIP_IO);
    return clip->Format->EndIO ? clip->Format->EndIO(clip, clip->Flags & ZV_CLIP_WRITING) : 1;
}

ZVBitmapType GetBitmapTypeZV(ZVClip const* clip)
{
    switch (clip ? clip->BitDepth : 0) {
    case 10: return ZV_BITMAP_RGBA10;
    case 12: return ZV_BITMAP_RGBA12;
    case 16: return ZV_BITMAP_RGBA16;
    case 32: return ZV_BITMAP_RGBAFLOAT;
    default: return ZV_BITMAP_RGBA8;
    }
}

char const* MakeDefaultClipNameZV(ZVClip* clip, char const* base, char* out)
{
    if (out) *out = 0;
    if (!clip || !clip->Format || !out) return base;
    ZVFormatDesc const* const desc = clip->Format;
    char const* const numbering = GetExportPropertiesZV(clip) & ZV_FORMAT_MULTIFRAME ? "" : "[#####]";
    char extension[5] = "";
    if (desc->ReadExtensionCount > 0) {
        uint32_t const code = desc->ReadExtensions[0];
        extension[0] = '.';
        for (int i = 0; i < 3; ++i)
            extension[i + 1] = static_cast<char>(code >> (24 - 8 * i));
    }
    if (std::snprintf(out, ZV_SPEC_SIZE, "%s%s%s", base ? base : "", numbering, extension) >= ZV_SPEC_SIZE) {
        *out = 0;
        SetError(ZV_ERR_NOT_FOUND);
    }
    return out;
}
