// Opening pictures.
#include "PictureFile.h"

#include "DPXPadding.h"
#include "PictureClip.h"

#include <ZVLibInternal.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int MostParts = 4096;
constexpr int MostChannels = 1024;
constexpr double MostPixelBytes = 0x1p32;

/// No codec of these pictures but some of TIFF packs more bytes of pixels into one.
constexpr double MostPacked = 1100;
constexpr double SmallPicture = 0x1p20;

struct CloseFile {
    void operator()(ZVFileInfo* file) const { CloseFileZV(file); }
};

struct FileFacts {
    char head[KindHeadSize];
    std::size_t headSize = 0;
    int64_t length = 0;
};

/// False with the error number of the file layer.
bool Look_At(char const* spec, FileFacts& facts)
{
    std::unique_ptr<ZVFileInfo, CloseFile> const file(OpenFileZV(spec, ZVFilePermRead, ZVFileFlagNone));
    if (!file) return false;
    facts.length = GetFileLengthZV(file.get());
    facts.headSize = static_cast<std::size_t>(std::min<int64_t>(facts.length, KindHeadSize));
    return facts.headSize == 0 || ReadFileZV(file.get(), facts.head, facts.headSize);
}

bool Is_Plausible(OIIO::ImageSpec const& spec, bool packsMore, int64_t fileBytes)
{
    auto const isSide = [](int side) { return side > 0 && side <= LargestSide; };
    auto const isPlace = [](int place) { return place > -0x1000000 && place < 0x1000000; };
    if (!isSide(spec.width) || !isSide(spec.height) || !isSide(spec.full_width) ||
        !isSide(spec.full_height) || !isPlace(spec.x) || !isPlace(spec.y) || !isPlace(spec.full_x) ||
        !isPlace(spec.full_y) || spec.depth != 1 || spec.nchannels < 1 || spec.nchannels > MostChannels)
        return false;
    double const pixelBytes =
        static_cast<double>(spec.width) * spec.height * static_cast<double>(spec.pixel_bytes(true));
    double const most = static_cast<double>(fileBytes) * MostPacked + SmallPicture;
    // What a deep picture holds is not known from its size.
    return spec.deep || (pixelBytes <= MostPixelBytes && (packsMore || pixelBytes <= most));
}

PicturePart Part_Of(OIIO::ImageSpec const& spec, PictureKind const& kind)
{
    PicturePart part;
    part.name = spec.get_string_attribute("oiio:subimagename");
    if (part.name.empty()) part.name = spec.get_string_attribute("tiff:PageName");
    part.channels = spec.channelnames;
    part.alphaChannel = spec.alpha_channel;
    // A fourth channel beside colours, or a second one beside grey, is alpha even where a TIFF file does not
    // say what it is.
    bool const hasOneMore = spec.nchannels == 2 || spec.nchannels == 4;
    if (part.alphaChannel < 0 && hasOneMore && kind.alpha == AlphaRule::Marked)
        part.alphaChannel = spec.nchannels - 1;
    return part;
}

}  // namespace

std::string Native_Path(char const* spec)
{
    char path[4096];
    if (spec && OS_Native_Path(spec, path, sizeof path)) return path;
    SetError(ZV_ERR_NOT_FOUND);
    return {};
}

std::unique_ptr<PictureFile> PictureFile::Open(char const* spec)
{
    FileFacts facts;
    std::string const path = Native_Path(spec);
    if (path.empty() || !Look_At(spec, facts)) return nullptr;
    auto file = std::make_unique<PictureFile>();
    file->kind_ = Kind_Of_File({facts.head, facts.headSize}, Extension_Code(spec));
    if (file->kind_) file->input_ = OIIO::ImageInput::create(file->kind_->name);
    if (!file->input_) {
        OIIO::geterror();
        SetError(ZV_ERR_CLIP);
        return nullptr;
    }
    if (std::strcmp(file->kind_->name, "dpx") == 0) file->proxy_ = Mend_DPX_Padding(path);
    if (file->proxy_) file->input_->set_ioproxy(file->proxy_.get());
    // Alpha and colours are wanted as they stand in the file; how they belong together is said beside them.
    OIIO::ImageSpec config, first;
    config["oiio:UnassociatedAlpha"] = 1;
    if (file->input_->open(path, first, config) && file->Read_Parts(facts.length)) return file;
    file->input_->geterror();
    SetError(ZV_ERR_CLIP);
    return nullptr;
}

bool PictureFile::Read_Parts(int64_t fileBytes)
{
    bool const packsMore = std::strcmp(kind_->name, "tiff") == 0;
    bool const isLayered = std::strcmp(kind_->name, "psd") == 0;
    std::vector<PicturePart> parts;
    for (int i = 0; i < MostParts; ++i) {
        OIIO::ImageSpec spec = input_->spec(i, 0);
        if (spec.format == OIIO::TypeUnknown || spec.nchannels == 0) break;
        bool const isPlausible = Is_Plausible(spec, packsMore, fileBytes);
        // A layer without pixels, which Photoshop keeps for groups too, is none.
        if (!isPlausible && !(isLayered && i > 0)) return false;
        parts.push_back(isPlausible ? Part_Of(spec, *kind_) : PicturePart{});
        specs_.push_back(std::move(spec));
    }
    input_->geterror();
    if (specs_.empty()) return false;
    layers_ = Find_Layers(parts, isLayered, isLayered ? "Layer " : "Page ");
    return true;
}

PictureLayer const& PictureFile::Layer(long number, char const* name) const
{
    std::vector<PictureLayer> const& layers = layers_.layers;
    if (number < 1) return layers_.flat;
    if (name) {
        auto const named = std::ranges::find(layers, name, &PictureLayer::name);
        auto const there = static_cast<std::size_t>(number) - 1;
        // Two layers may have one name.
        if (there < layers.size() && layers[there].name == name) return layers[there];
        if (named != layers.end()) return *named;
    }
    return static_cast<std::size_t>(number) <= layers.size() ? layers[static_cast<std::size_t>(number) - 1]
                                                             : layers_.flat;
}

long PictureFile::Depth(PictureLayer const& layer) const
{
    OIIO::ImageSpec const& spec = Spec(layer);
    long depth = 8;
    for (int channel : layer.channels) {
        if (channel < 0) continue;
        OIIO::TypeDesc const type = spec.channelformat(channel);
        depth = std::max<long>(depth, type.is_floating_point() || type.size() > 2 ? 32 : type.size() * 8);
    }
    int const stored = spec.get_int_attribute("oiio:BitsPerSample");
    return depth == 16 && (stored == 10 || stored == 12) ? stored : depth;
}

bool PictureFile::IsPremultiplied(PictureLayer const& layer) const
{
    if (kind_->alpha != AlphaRule::Marked) return kind_->alpha == AlphaRule::Premultiplied;
    OIIO::ImageSpec const& spec = Spec(layer);
    return spec.alpha_channel >= 0 && spec.get_int_attribute("oiio:UnassociatedAlpha") == 0;
}

ZVRectT<long> PictureFile::Frame(PictureLayer const& layer) const
{
    OIIO::ImageSpec const& spec = Spec(layer);
    // OpenEXR pictures are seen through a window; those of other files are all that there is of them.
    if (kind_->alpha == AlphaRule::Premultiplied)
        return {spec.full_x, spec.full_y, spec.full_width, spec.full_height};
    return {spec.x, spec.y, spec.width, spec.height};
}
