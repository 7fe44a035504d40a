// See MovieConvert.h.
#include "MovieConvert.h"

#include <cstring>

namespace {

constexpr int Flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP | SWS_BITEXACT;

bool Is_RGB(int format)
{
    AVPixFmtDescriptor const* descriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return descriptor && descriptor->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL);
}

/// Pixels of somebody else as a picture for as long as the call lasts.
bool Wrap(AVFrame& frame, void const* pixels, std::size_t rowBytes, int width, int height,
          AVPixelFormat format)
{
    av_frame_unref(&frame);
    auto* const bytes = static_cast<std::uint8_t*>(const_cast<void*>(pixels));
    frame.width = width;
    frame.height = height;
    frame.format = format;
    frame.data[0] = bytes;
    frame.linesize[0] = static_cast<int>(rowBytes);
    std::size_t const size = rowBytes * static_cast<std::size_t>(height);
    frame.buf[0] = av_buffer_create(
        bytes, size, [](void*, std::uint8_t*) {}, nullptr, 0);
    return frame.buf[0] != nullptr;
}

struct GreyLayout {
    bool hasAlpha;
    bool isDeep;
};

/// Grey pictures that are only spread over the channels, which the scaler would take through a colour matrix.
bool Grey_Layout(int format, GreyLayout& layout)
{
    switch (format) {
    case AV_PIX_FMT_GRAY8: layout = {false, false}; return true;
    case AV_PIX_FMT_YA8: layout = {true, false}; return true;
    case AV_PIX_FMT_GRAY16LE: layout = {false, true}; return true;
    case AV_PIX_FMT_YA16LE: layout = {true, true}; return true;
    default: return false;
    }
}

template <typename In, typename Out>
void Spread_Grey(AVFrame const& picture, bool hasAlpha, void* pixels, std::size_t rowBytes)
{
    auto const widen = [](In value) -> Out {
        if constexpr (sizeof(In) == sizeof(Out))
            return value;
        else if constexpr (sizeof(In) < sizeof(Out))
            return static_cast<Out>(value * 257);
        else
            return static_cast<Out>(value >> 8);
    };
    for (int y = 0; y < picture.height; ++y) {
        auto const* in = reinterpret_cast<In const*>(picture.data[0] +
                                                     static_cast<std::ptrdiff_t>(y) * picture.linesize[0]);
        auto* out = reinterpret_cast<Out*>(static_cast<std::uint8_t*>(pixels) +
                                           static_cast<std::size_t>(y) * rowBytes);
        for (int x = 0; x < picture.width; ++x, out += 4) {
            out[0] = out[1] = out[2] = widen(*in++);
            out[3] = hasAlpha ? widen(*in++) : static_cast<Out>(~Out{0});
        }
    }
}

}  // namespace

int Colour_Matrix(AVFrame const& picture)
{
    int number;
    static_assert(sizeof number == sizeof picture.colorspace);
    std::memcpy(&number, &picture.colorspace, sizeof number);
    return number;
}

bool Is_Full_Range(AVFrame const& picture)
{
    switch (picture.format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P: return true;
    default: return picture.color_range == AVCOL_RANGE_JPEG || Is_RGB(picture.format);
    }
}

AVPixelFormat Pixel_Format(HostPixels layout)
{
    return layout == HostPixels::RGBA8 ? AV_PIX_FMT_RGBA : AV_PIX_FMT_RGBA64;
}

bool PictureConverter::Prepare(Shape const& source, Shape const& target)
{
    if (!from_) from_.reset(av_frame_alloc());
    if (!to_) to_.reset(av_frame_alloc());
    if (!from_ || !to_) return false;
    if (context_ && source == source_ && target == target_) return true;
    context_.reset(sws_alloc_context());
    if (!context_) return false;
    void* const settings = context_.get();
    av_opt_set_int(settings, "srcw", source.width, 0);
    av_opt_set_int(settings, "srch", source.height, 0);
    av_opt_set_int(settings, "src_format", source.format, 0);
    av_opt_set_int(settings, "dstw", target.width, 0);
    av_opt_set_int(settings, "dsth", target.height, 0);
    av_opt_set_int(settings, "dst_format", target.format, 0);
    av_opt_set_int(settings, "src_range", source.isFullRange, 0);
    av_opt_set_int(settings, "dst_range", target.isFullRange, 0);
    av_opt_set_int(settings, "sws_flags", Flags, 0);
    // The helpers of the scaler do not get the palette.
    av_opt_set_int(settings, "threads", source.format == AV_PIX_FMT_PAL8 ? 1 : 0, 0);
    int const* const in = sws_getCoefficients(source.matrix);
    int const* const out = sws_getCoefficients(target.matrix);
    // The matrices only afterwards: before, the call would hide from the helpers that a fourth channel is no
    // alpha.
    if (sws_init_context(context_.get(), nullptr, nullptr) < 0) {
        context_.reset();
        return false;
    }
    sws_setColorspaceDetails(context_.get(), in, source.isFullRange, out, target.isFullRange, 0, 1 << 16,
                             1 << 16);
    source_ = source;
    target_ = target;
    return true;
}

bool PictureConverter::To_RGBA(AVFrame const& picture, int width, int height, void* pixels,
                               std::size_t rowBytes, HostPixels layout)
{
    GreyLayout grey{};
    bool const isSameSize = picture.width == width && picture.height == height;
    if (!bands_) bands_ = MovieBands::Shared();
    if (isSameSize && (planar_.To_RGBA(picture, pixels, rowBytes, layout, *bands_) ||
                       Packed_To_RGBA(picture, pixels, rowBytes, layout, *bands_)))
        return true;
    if (isSameSize && Grey_Layout(picture.format, grey)) {
        bool const isWide = layout == HostPixels::RGBA16;
        auto const spread = grey.isDeep ? (isWide ? Spread_Grey<std::uint16_t, std::uint16_t>
                                                  : Spread_Grey<std::uint16_t, std::uint8_t>)
                                        : (isWide ? Spread_Grey<std::uint8_t, std::uint16_t>
                                                  : Spread_Grey<std::uint8_t, std::uint8_t>);
        spread(picture, grey.hasAlpha, pixels, rowBytes);
        return true;
    }
    int const number = Colour_Matrix(picture);
    int const matrix = number == AVCOL_SPC_UNSPECIFIED ? SWS_CS_DEFAULT : number;
    Shape const source{picture.width, picture.height, picture.format, matrix, Is_Full_Range(picture)};
    Shape const target{width, height, Pixel_Format(layout), SWS_CS_DEFAULT, true};
    if (!Prepare(source, target)) return false;
    if (!Wrap(*to_, pixels, rowBytes, width, height, Pixel_Format(layout))) return false;
    bool const isDone = sws_scale_frame(context_.get(), to_.get(), &picture) >= 0;
    av_frame_unref(to_.get());
    return isDone;
}

bool PictureConverter::From_RGBA(void const* pixels, std::size_t rowBytes, HostPixels layout,
                                 AVFrame& picture)
{
    int const number = Colour_Matrix(picture);
    int const matrix = number == AVCOL_SPC_UNSPECIFIED ? SWS_CS_DEFAULT : number;
    Shape const source{picture.width, picture.height, Pixel_Format(layout), SWS_CS_DEFAULT, true};
    Shape const target{picture.width, picture.height, picture.format, matrix, Is_Full_Range(picture)};
    if (!Prepare(source, target)) return false;
    if (!Wrap(*from_, pixels, rowBytes, picture.width, picture.height, Pixel_Format(layout))) return false;
    bool const isDone = sws_scale_frame(context_.get(), &picture, from_.get()) >= 0;
    av_frame_unref(from_.get());
    return isDone;
}
