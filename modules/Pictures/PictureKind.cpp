// Which kind of picture a file is.
#include "PictureKind.h"

#include <algorithm>

namespace {

constexpr PictureKind kinds[] = {
    {"png", ZV_FourCC("PNGf"), {ZV_FourCC("png\0")}, AlphaRule::Straight, {8, 16}},
    {"tiff",
     ZV_FourCC("TIFF"),
     {ZV_FourCC("tif\0"), ZV_FourCC("tiff")},
     AlphaRule::Marked,
     {8, 10, 12, 16, 32}},
    {"jpeg",
     ZV_FourCC("JPEG"),
     {ZV_FourCC("jpg\0"), ZV_FourCC("jpeg"), ZV_FourCC("jpe\0")},
     AlphaRule::None,
     {8}},
    // Up to 16 bits are kept in half floats.
    {"openexr", ZV_FourCC("EXR "), {ZV_FourCC("exr\0")}, AlphaRule::Premultiplied, {8, 10, 12, 16, 32}},
    {"dpx", ZV_FourCC("SDPX"), {ZV_FourCC("dpx\0")}, AlphaRule::Straight, {8, 10, 12, 16}},
    {"targa", ZV_FourCC("TPIC"), {ZV_FourCC("tga\0")}, AlphaRule::Marked, {8}},
    {"bmp", ZV_FourCC("BMP "), {ZV_FourCC("bmp\0")}, AlphaRule::Straight, {8}},
    {"psd", ZV_FourCC("8BPS"), {ZV_FourCC("psd\0")}, AlphaRule::Straight, {}},
};

struct Magic {
    std::string_view bytes;
    char const* kind;
};

using namespace std::string_view_literals;
constexpr Magic magics[] = {
    {"\x89PNG"sv, "png"},  {"II*\0"sv, "tiff"},
    {"MM\0*"sv, "tiff"},   {"II+\0"sv, "tiff"},
    {"MM\0+"sv, "tiff"},   {"\xFF\xD8\xFF"sv, "jpeg"},
    {"SDPX"sv, "dpx"},     {"XPDS"sv, "dpx"},
    {"8BPS\0\1"sv, "psd"}, {"\x76\x2F\x31\x01"sv, "openexr"},
    {"BM"sv, "bmp"},
};

PictureKind const* Kind_Named(std::string_view name)
{
    return std::ranges::find(kinds, name, &PictureKind::name);
}

}  // namespace

std::span<PictureKind const> All_Kinds()
{
    return kinds;
}

PictureKind const* Kind_Of_Extension(uint32_t extension)
{
    for (PictureKind const& kind : kinds)
        if (extension != 0 && std::ranges::find(kind.extensions, extension) != kind.extensions.end())
            return &kind;
    return nullptr;
}

PictureKind const* Kind_Of_File(std::string_view head, uint32_t extension)
{
    PictureKind const* const targa = Kind_Named("targa");
    // A Targa file may begin with any bytes, but hardly with those of a long magic.
    for (Magic const& magic : magics)
        if (head.starts_with(magic.bytes) &&
            (magic.bytes.size() > 2 || Kind_Of_Extension(extension) != targa))
            return Kind_Named(magic.kind);
    return Kind_Of_Extension(extension) == targa ? targa : nullptr;
}

int Stored_Depth(PictureKind const& kind, long depth)
{
    int stored = 0;
    for (int held : kind.depths) {
        if (held != 0) stored = held;
        if (held >= depth) break;
    }
    return stored;
}
