// What the module Pictures takes apart itself: the kind of a file, the rows of DPX files, and the layers in
// names of channels. Pixels are OpenImageIO's.
#include "DPXPadding.h"
#include "PictureKind.h"
#include "PictureLayers.h"

#include <algorithm>
#include <cstdlib>

/// Lines of text are channels; a line that begins with a byte of 1 begins a part of that name.
static std::vector<PicturePart> Read_Parts(std::string_view text)
{
    std::vector<PicturePart> parts(1);
    while (!text.empty() && parts.size() < 64) {
        std::size_t const end = std::min(text.find('\n'), text.size());
        std::string const line(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('\1'))
            parts.push_back({line.substr(1), {}, static_cast<int>(line.size() % 5) - 1});
        else
            parts.back().channels.push_back(line);
    }
    return parts;
}

static void Check_Layer(PictureLayer const& layer, std::vector<PicturePart> const& parts)
{
    auto const count = static_cast<int>(parts.at(static_cast<std::size_t>(layer.part)).channels.size());
    for (int channel : layer.channels)
        if (channel < -1 || channel >= count) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, std::size_t size)
{
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    Kind_Of_File(text, ZV_FourCC("tga\0"));
    if (DPX_Row_Padding({data, size}, static_cast<int64_t>(size) * 1000) > 3) std::abort();
    std::vector<PicturePart> const parts = Read_Parts(text);
    PictureLayers const found = Find_Layers(parts, size % 2 == 0, "Page ");
    Check_Layer(found.flat, parts);
    for (PictureLayer const& layer : found.layers)
        Check_Layer(layer, parts);
    return 0;
}
