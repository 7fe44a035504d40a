// One picture in the compression of movies, without a movie around it.
#include "MovieCodecs.h"
#include "MovieConvert.h"

#include <cstring>

namespace {

constexpr int LargestBlock = 64;  // of pixels, each way

AVCodec const* Decoder_For(std::uint32_t code)
{
    AVCodecTag const* const tags[] = {avformat_get_mov_video_tags(), nullptr};
    AVCodecID const id = av_codec_get_id(tags, Turn_Code(code));
    return id == AV_CODEC_ID_NONE ? nullptr : avcodec_find_decoder(id);
}

MovieOwner<AVCodecContext> Open_Still_Decoder(HostStill const& still)
{
    AVCodec const* codec = Decoder_For(still.codec);
    MovieOwner<AVCodecContext> context{codec ? avcodec_alloc_context3(codec) : nullptr};
    if (!context) return nullptr;
    context->codec_tag = Turn_Code(still.codec);
    context->width = still.width;
    context->height = still.height;
    context->bits_per_coded_sample = still.depth;
    context->thread_count = 1;
    // Decoders count in whole blocks.
    context->max_pixels = std::int64_t{still.width + LargestBlock} * (still.height + LargestBlock);
    return avcodec_open2(context.get(), codec, nullptr) < 0 ? nullptr : std::move(context);
}

}  // namespace

HostMovieError Decode_Host_Still(HostStill const& still, void* pixels, std::size_t rowBytes)
{
    MovieOwner<AVCodecContext> const decoder = Open_Still_Decoder(still);
    if (!decoder) return HostMovieError::NoCodec;
    MovieOwner<AVPacket> const packet{av_packet_alloc()};
    MovieOwner<AVFrame> const frame{av_frame_alloc()};
    if (!packet || !frame || still.size > INT32_MAX / 2 ||
        av_new_packet(packet.get(), static_cast<int>(still.size)) < 0)
        return HostMovieError::Memory;
    std::memcpy(packet->data, still.data, still.size);
    packet->flags |= AV_PKT_FLAG_KEY;
    if (avcodec_send_packet(decoder.get(), packet.get()) < 0) return HostMovieError::Unreadable;
    avcodec_send_packet(decoder.get(), nullptr);  // nothing follows
    if (avcodec_receive_frame(decoder.get(), frame.get()) < 0) return HostMovieError::Unreadable;
    if (frame->width != still.width || frame->height != still.height) return HostMovieError::Unreadable;
    PictureConverter converter;
    return converter.To_RGBA(*frame, still.width, still.height, pixels, rowBytes, HostPixels::RGBA8)
               ? HostMovieError::None
               : HostMovieError::Unreadable;
}

HostMovieError Encode_Host_Still(HostVideoSettings const& settings, void const* pixels, std::size_t rowBytes,
                                 HostPixels layout, std::vector<std::uint8_t>& bytes)
{
    PictureCodec const* const codec = Find_Picture_Codec(settings.codec);
    if (!codec || !codec->isStill) return HostMovieError::NoCodec;
    HostVideoSettings still = settings;
    still.timeScale = still.frameDuration = 1;
    HostMovieError error;
    MovieOwner<AVCodecContext> const encoder = Open_Picture_Encoder(still, error);
    if (!encoder) return error;
    MovieOwner<AVFrame> const picture = New_Picture(*encoder);
    MovieOwner<AVPacket> const packet{av_packet_alloc()};
    if (!picture || !packet) return HostMovieError::Memory;
    PictureConverter converter;
    if (!converter.From_RGBA(pixels, rowBytes, layout, *picture)) return HostMovieError::Failed;
    picture->pts = 0;
    int result = avcodec_send_frame(encoder.get(), picture.get());
    if (result >= 0) result = avcodec_send_frame(encoder.get(), nullptr);  // nothing follows
    if (result >= 0) result = avcodec_receive_packet(encoder.get(), packet.get());
    if (result < 0) return Movie_Error(result);
    bytes.assign(packet->data, packet->data + packet->size);
    return HostMovieError::None;
}
