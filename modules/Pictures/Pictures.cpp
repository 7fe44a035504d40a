// A format module: single pictures, and series of them, in the formats that OpenImageIO reads and writes.
// docs/pictures.md tells what they keep.
#include "PictureClip.h"
#include "PictureService.h"

#include <ZVLibInternal.h>
#include <ZVModule.h>

#include <dlfcn.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr long Properties = ZV_FORMAT_ALPHA | ZV_FORMAT_READ | ZV_FORMAT_WRITE;

// ---- the side over OpenImageIO ----------------------------------------------------------------------------

PictureService const* Load_Service()
{
    Dl_info module{};
    if (!dladdr(reinterpret_cast<void const*>(&Load_Service), &module) || !module.dli_fname) return nullptr;
    std::string path = module.dli_fname;
    path.replace(path.rfind('/') + 1, path.npos, "PictureService.so");
    // Never unloaded, whatever becomes of the module: the libraries below it keep threads and tables.
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = handle ? dlsym(handle, PictureServiceSymbol) : nullptr;
    return symbol ? reinterpret_cast<decltype(&Picture_Service)>(symbol)() : nullptr;
}

/// Calls an entry of it; 0 with error 18 when it cannot be loaded.
template <auto Entry, typename... Args> long Serve(Args... args)
{
    static PictureService const* const service = Load_Service();
    if (service) return (service->*Entry)(args...);
    SetError(ZV_ERR_CLIP);
    return 0;
}

long Pictures_Open(ZVClip* clip, TagItem*)
{
    return Serve<&PictureService::open>(clip);
}

long Pictures_GetFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>*, long, long, long layer, void*,
                       long)
{
    return Serve<&PictureService::getFrame>(clip, bitmap, layer);
}

long Pictures_AddFrame(ZVClip* clip, ZVBitmap* bitmap, long, ZVRectT<long>* region)
{
    return Serve<&PictureService::addFrame>(clip, bitmap, region);
}

long Pictures_GetGBuffer(ZVClip* clip, long, unsigned long mask, ZVGBufferArray* buffers, long layer, void*,
                         long)
{
    return Serve<&PictureService::getGBuffer>(clip, mask, buffers, layer);
}

// ---- what needs no pixels ---------------------------------------------------------------------------------

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
        AllocMemZV(sizeof(ZVFormatParams) + sizeof(ZVPictureOptions), ZV_MEM_CLEAR));
    if (!block) return;
    unsigned char* const data = block + sizeof(ZVFormatParams);
    new (data) ZVPictureOptions{0, NormalQuality};
    clip->VideoParams = new (block) ZVFormatParams{data, sizeof(ZVPictureOptions)};
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
    desc->Create = Pictures_Create;
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
