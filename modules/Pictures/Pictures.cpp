// A format module: single pictures, and series of them, in the formats that OpenImageIO reads and writes.
// docs/pictures.md tells what they keep.
#include "DeepPicture.h"
#include "PictureRead.h"
#include "PictureWrite.h"

#include <ZVLibInternal.h>
#include <ZVModule.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

namespace {

constexpr long Properties = ZV_FORMAT_ALPHA | ZV_FORMAT_READ | ZV_FORMAT_WRITE;

/// Runs an entry's work; what the libraries below throw ends here.
template <typename Work> long Guarded(Work&& work)
{
    try {
        return work() ? 1 : 0;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
    } catch (...) {
        SetError(ZV_ERR_CLIP);
    }
    return 0;
}

/// The name of the layer that a clip shows; null for the flat picture.
char const* Layer_Name(ZVClip const* clip, long layer)
{
    Node const* const node = layer > 0 ? List_Entry(&clip->Layers, layer - 1) : nullptr;
    return node ? node->name : nullptr;
}

// ---- opening ----------------------------------------------------------------------------------------------

bool Add_Layer(ZVClip* clip, PictureFile const& file, PictureLayer const& layer)
{
    auto* const record = static_cast<ZVClipLayer*>(AllocMemZV(sizeof(ZVClipLayer), ZV_MEM_CLEAR));
    if (!record) return false;
    AddTail(&clip->Layers, &record->Node);
    ZVRectT<long> const frame = file.Frame(layer);
    record->Width = frame.width;
    record->Height = frame.height;
    record->BitDepth = file.Depth(layer);
    record->AlphaType = layer.HasAlpha() ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    record->AlphaStated = ZV_ALPHA_STATED_STRAIGHT;
    if (file.IsPremultiplied(layer)) record->AlphaStated = ZV_ALPHA_STATED_PREMULTIPLIED;
    record->User1 = frame.x;
    record->User2 = frame.y;
    return AddName(&record->Node, layer.name.c_str()) != nullptr;
}

void Set_Alpha(ZVClip* clip, bool hasAlpha, bool isPremultiplied)
{
    clip->AlphaType = hasAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    clip->AlphaInvert = 0;
    clip->AlphaPremultiplied = hasAlpha && isPremultiplied;
    clip->MatteRed = clip->MatteGreen = clip->MatteBlue = 0.0;
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

/// Frames per second by the file; 0 when it does not tell.
double Rate_Of(OIIO::ImageSpec const& spec)
{
    int fraction[2] = {};
    if (spec.getattribute("FramesPerSecond", OIIO::TypeRational, fraction) && fraction[0] > 0 &&
        fraction[1] > 0)
        return static_cast<double>(fraction[0]) / fraction[1];
    for (char const* name : {"dpx:FrameRate", "dpx:TemporalFrameRate"}) {
        float const rate = spec.get_float_attribute(name);
        if (rate >= 1.0f && rate <= 1000.0f) return rate;
    }
    return 0.0;
}

bool Fill_In(ZVClip* clip, PictureFile const& file)
{
    PictureLayer const& flat = file.Layers().flat;
    OIIO::ImageSpec const& spec = file.Spec(flat);
    ZVRectT<long> const frame = file.Frame(flat);
    Free_List(&clip->Layers);
    for (PictureLayer const& layer : file.Layers().layers)
        if (!Add_Layer(clip, file, layer)) return false;
    clip->Width = frame.width;
    clip->Height = frame.height;
    clip->BitDepth = file.Depth(flat);
    clip->RawFrames = 1;
    clip->Media = ZV_MEDIA_VIDEO;
    clip->GBufferMask = Deep_Channels(file, Deep_Part(file, flat));
    Set_Alpha(clip, flat.HasAlpha(), file.IsPremultiplied(flat));
    float const aspect = spec.get_float_attribute("PixelAspectRatio");
    if (aspect > 0.01f && aspect < 100.0f) clip->PixelAspect = aspect;
    if (double const rate = Rate_Of(spec); clip->FileFrameRate < 0 && rate > 0) clip->FileFrameRate = rate;
    clip->ModuleData = clip;  // marks the clip as open; no file stays so
    return true;
}

long Pictures_Open(ZVClip* clip, TagItem*)
{
    if (clip->ModuleData) return 1;
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        return file && Fill_In(clip, *file);
    });
}

void Pictures_Close(ZVClip* clip)
{
    clip->ModuleData = nullptr;
}

/// A file that defines its alpha gets it so; where it can say what it holds, the clip decides.
long Pictures_Create(ZVClip* clip, unsigned long)
{
    PictureKind const& kind = Written_Kind(clip);
    int const depth = Stored_Depth(kind, clip->BitDepth);
    if (depth == 0) {
        SetError(ZV_ERR_CLIP);
        return 0;
    }
    clip->BitDepth = depth;
    if (Writes_Alpha(clip, kind))
        Set_Alpha(clip, true,
                  kind.alpha == AlphaRule::Premultiplied ||
                      (kind.alpha == AlphaRule::Marked && clip->AlphaPremultiplied));
    return 1;
}

long Pictures_Ready(ZVClip*, long)
{
    return 1;
}

// ---- frames -----------------------------------------------------------------------------------------------

/// Each frame of a series is a file of its own, so that it is opened here.
long Pictures_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>*, long, long, long layer, void*,
                       long)
{
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        return file && Read_Picture(*file, file->Layer(layer, Layer_Name(clip, layer)), bitmap);
    });
}

long Pictures_GetGBuffer(ZVClip* clip, long, unsigned long mask, ZVGBufferArray* buffers, long layer, void*,
                         long)
{
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        if (!file) return false;
        int const part = Deep_Part(*file, file->Layer(layer, Layer_Name(clip, layer)));
        return part >= 0 && Read_Deep_Picture(*file, part, mask, *buffers);
    });
}

long Pictures_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    return Guarded([=] {
        if (!Write_Picture(clip, bitmap, region)) return false;
        ++clip->RawFrames;
        return true;
    });
}

// ---- properties and options -------------------------------------------------------------------------------

long Pictures_GetImportProperties(ZVFormatDesc*)
{
    return Properties;
}

/// With a clip, what its kind of file holds.
long Pictures_GetExportProperties(ZVFormatDesc*, ZVClip* clip)
{
    if (!clip || !clip->FileName) return Properties;
    PictureKind const& kind = Written_Kind(clip);
    long properties = Properties;
    if (kind.alpha == AlphaRule::None) properties &= ~ZV_FORMAT_ALPHA;
    if (Stored_Depth(kind, 8) == 0) properties &= ~ZV_FORMAT_WRITE;
    return properties;
}

/// There is no dialog: a clip without options gets the usual ones.
void Pictures_Options(ZVClip* clip, bool)
{
    if (clip->VideoParams) return;
    auto* const block = static_cast<unsigned char*>(
        AllocMemZV(sizeof(ZVFormatParams) + sizeof(PictureOptions), ZV_MEM_CLEAR));
    if (!block) return;
    unsigned char* const data = block + sizeof(ZVFormatParams);
    new (data) PictureOptions{0, NormalQuality};
    clip->VideoParams = new (block) ZVFormatParams{data, sizeof(PictureOptions)};
}

// ---- registration -----------------------------------------------------------------------------------------

template <typename T> T* Copy_Array(std::vector<T> const& values, long& count)
{
    auto* const array = static_cast<T*>(AllocMemZV(values.size() * sizeof(T), 0));
    if (array) std::ranges::copy(values, array);
    count = array ? static_cast<long>(values.size()) : 0;
    return array;
}

long Fill(ZVFormatDesc* desc)
{
    std::vector<ZVTypePair> types;
    std::vector<uint32_t> extensions;
    for (PictureKind const& kind : All_Kinds()) {
        types.push_back({kind.fileType, ZV_BLANK_CODE});
        for (uint32_t extension : kind.extensions)
            if (extension != 0) extensions.push_back(extension);
    }
    AddName(&desc->Node, "Pictures");
    desc->MaxWidth = desc->MaxHeight = LargestSide;
    desc->FileType = All_Kinds().front().fileType;
    desc->FileCreator = ZV_BLANK_CODE;
    desc->ReadTypes = Copy_Array(types, desc->ReadTypeCount);
    desc->ReadExtensions = Copy_Array(extensions, desc->ReadExtensionCount);
    if (!desc->Node.name || !desc->ReadTypes || !desc->ReadExtensions) return 0;
    desc->Open = Pictures_Open;
    desc->Close = Pictures_Close;
    desc->Create = Pictures_Create;
    desc->BeginIO = Pictures_Ready;
    desc->EndIO = Pictures_Ready;
    desc->GetFrame = Pictures_GetFrame;
    desc->AddFrame = Pictures_AddFrame;
    desc->GetGBuffer = Pictures_GetGBuffer;
    desc->Options = Pictures_Options;
    desc->CanLoad = Standard_CanLoad;
    desc->GetImportProperties = Pictures_GetImportProperties;
    desc->GetExportProperties = Pictures_GetExportProperties;
    return 1;
}

}  // namespace

ZV_FORMAT_MODULE(Fill)
