// PNG pictures, by libpng.
#include "PngFile.h"

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <png.h>
#include <utility>
#include <vector>

namespace {

/// libpng leaves by longjmp, so what it may skip lives here and not in the function that it leaves.
struct PngWriter {
    std::FILE* stream = nullptr;
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::string error;

    PngWriter()
    {
        png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, On_Error, On_Warning);
        if (png) info = png_create_info_struct(png);
    }
    ~PngWriter()
    {
        png_destroy_write_struct(&png, &info);
        if (stream) std::fclose(stream);
    }
    PngWriter(PngWriter const&) = delete;
    PngWriter& operator=(PngWriter const&) = delete;

    [[noreturn]] static void On_Error(png_structp png, png_const_charp message)
    {
        static_cast<PngWriter*>(png_get_error_ptr(png))->error = message;
        png_longjmp(png, 1);
    }
    static void On_Warning(png_structp, png_const_charp) {}
};

bool Write_Rows(PngWriter& writer, ZVBitmap const& bitmap, std::vector<png_bytep>& rows, bool withAlpha)
{
    if (setjmp(png_jmpbuf(writer.png))) return false;
    bool const isDeep = bitmap.Type == ZV_BITMAP_RGBA16;
    png_init_io(writer.png, writer.stream);
    png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(bitmap.Width),
                 static_cast<png_uint_32>(bitmap.Height), isDeep ? 16 : 8,
                 withAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(writer.png, writer.info);
    if (isDeep && std::endian::native == std::endian::little) png_set_swap(writer.png);
    if (!withAlpha) png_set_filler(writer.png, 0, PNG_FILLER_AFTER);
    png_write_image(writer.png, rows.data());
    png_write_end(writer.png, nullptr);
    return true;
}

}  // namespace

void Write_Png(PendingFile const& file, ZVBitmap const& bitmap, bool withAlpha)
{
    PngWriter writer;
    if (!writer.info) throw JobError(file.Path(), "not enough memory");
    writer.stream = std::fopen(file.WorkPath().c_str(), "wb");
    if (!writer.stream) throw JobError(file.Path(), std::strerror(errno));

    std::vector<png_bytep> rows;
    for (long y = 0; y < bitmap.Height; ++y)
        rows.push_back(bitmap.Pixels + y * bitmap.RowBytes);
    if (!Write_Rows(writer, bitmap, rows, withAlpha)) throw JobError(file.Path(), writer.error);
    if (std::fclose(std::exchange(writer.stream, nullptr)) != 0)
        throw JobError(file.Path(), std::strerror(errno));
}
