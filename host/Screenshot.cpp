#include "Screenshot.h"

#include <png.h>

bool Write_Png(HostPicture const& picture, std::string const& path)
{
    std::vector<unsigned char> bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (uint32_t const pixel : picture.pixels)
        for (int const shift : {16, 8, 0})
            bytes.push_back(static_cast<unsigned char>(pixel >> shift));

    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) != 0;
}
