// Icons out of a picture with layers.
#include "BitmapBlock.h"
#include "foundation/HeapBlock.h"
#include "pixels/IconList.h"

#include "ZVLibInternal.h"

#include <cstdlib>
#include <string>
#include <utility>

namespace {

using ClipBlock = std::unique_ptr<ZVClip, Released_By<FreeClipZV>>;
using SpecBlock = std::unique_ptr<char, Released_By<FreeFileSpecZV>>;

constexpr long border = 1;  // pixels that are drawn around an icon

/// The picture of a layer with the alpha that is in the file, or null.
BitmapBlock Read_Layer(char const* spec, ZVClip* file, long number)
{
    ClipBlock const layer(
        OpenClipZV(spec, ZV_OPEN_SOURCE_CLIP, file, ZV_OPEN_LAYER, number, ZV_OPEN_NO_ALPHA_GUESS, 0));
    if (!layer) return nullptr;
    layer->AlphaInvert = 0;
    layer->AlphaPremultiplied = 0;
    layer->Flags |= ZV_CLIP_ALPHA_KNOWN;
    BitmapBlock bitmap(AllocBitmapZV(layer->Width, layer->Height, ZV_BITMAP_RGBA8, "layer"));
    if (!bitmap || !BeginClipIOZV(layer.get(), nullptr)) return nullptr;
    bool const isRead = GetFrameZV(layer.get(), bitmap.get(), nullptr, nullptr, nullptr);
    EndClipIOZV(layer.get(), nullptr);
    return isRead ? std::move(bitmap) : nullptr;
}

void Take_Icon(unsigned long id, ZVBitmap const& picture)
{
    long const width = picture.Width - 2 * border, height = picture.Height - 2 * border;
    if (width < 1 || height < 1) return;
    ZVBitmap* const icon = AllocBitmapZV(width, height, ZV_BITMAP_RGBA8, "icon");
    if (!icon) return;
    CopyBitmapZV(&picture, icon, border, border, width, height, 0, 0);
    Add_Icon(id, icon);
}

}  // namespace

long LoadIconFileZV(char const* name)
{
    if (!name || !ZVEnv || FindTagItem(ZV_INIT_NO_GUI, ZVEnv->initTags)) return 0;
    SpecBlock const spec(MakeFileSpecZV((std::string(ZVEnv->homeDir) + name).c_str()));
    // A number in the name makes no series of it that anybody would be asked about.
    ClipBlock const file(spec ? OpenClipZV(spec.get(), ZV_OPEN_NO_ALPHA_GUESS, 0, ZV_OPEN_SINGLE_FRAME, 0)
                              : nullptr);
    if (!file) return 0;
    long number = 0;
    for (Node const* layer = List_First(&file->Layers); layer; layer = List_Next(layer)) {
        ++number;
        auto const id = static_cast<uint32_t>(layer->name ? std::strtol(layer->name, nullptr, 10) : 0);
        if (id == 0) continue;
        if (BitmapBlock const picture = Read_Layer(spec.get(), file.get(), number)) Take_Icon(id, *picture);
    }
    return 1;
}
