// The side of the module that stands on OpenImageIO.
#include "PictureService.h"

#include "DeepPicture.h"
#include "PictureClip.h"
#include "PictureRead.h"
#include "PictureWrite.h"

#include <new>

namespace {

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
    return true;
}

// ---- entries ----------------------------------------------------------------------------------------------

long Open(ZVClip* clip)
{
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        return file && Fill_In(clip, *file);
    });
}

/// Each frame of a series is a file of its own, so that it is opened here.
long Get_Frame(ZVClip* clip, ZVBitmap* bitmap, long layer)
{
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        return file && Read_Picture(*file, file->Layer(layer, Layer_Name(clip, layer)), bitmap);
    });
}

long Get_GBuffer(ZVClip* clip, unsigned long mask, ZVGBufferArray* buffers, long layer)
{
    return Guarded([=] {
        std::unique_ptr<PictureFile> const file = PictureFile::Open(clip->FileName);
        if (!file) return false;
        int const part = Deep_Part(*file, file->Layer(layer, Layer_Name(clip, layer)));
        return part >= 0 && Read_Deep_Picture(*file, part, mask, *buffers);
    });
}

long Add_Frame(ZVClip* clip, ZVBitmap const* bitmap, ZVRectT<long> const* region)
{
    return Guarded([=] {
        if (!Write_Picture(clip, bitmap, region)) return false;
        ++clip->RawFrames;
        return true;
    });
}

}  // namespace

__attribute__((visibility("default"))) PictureService const* Picture_Service()
{
    static constexpr PictureService service{Open, Get_Frame, Get_GBuffer, Add_Frame};
    return &service;
}
