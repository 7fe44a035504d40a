// See MovieCodecs.h.
#include "MovieCodecs.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace {

constexpr AVPixelFormat None = AV_PIX_FMT_NONE;

constexpr unsigned AllControls = QualityControl | KeyFrameControl | RateControl;

constexpr PictureCodec pictureCodecs[] = {
    {"rle ", "Animation", "qtrle", AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB, None, None, false, true,
     KeyFrameControl},
    {"raw ", "Uncompressed", "rawvideo", AV_PIX_FMT_RGB24, AV_PIX_FMT_ARGB, AV_PIX_FMT_RGB48BE,
     AV_PIX_FMT_RGBA64BE, false, false, FixedCodec},
    {"png ", "PNG", "png", AV_PIX_FMT_RGB24, AV_PIX_FMT_RGBA, AV_PIX_FMT_RGB48BE, AV_PIX_FMT_RGBA64BE, false,
     true, FixedCodec},
    {"FFV1", "FFV1", "ffv1", AV_PIX_FMT_BGR0, AV_PIX_FMT_BGRA, AV_PIX_FMT_GBRP16, AV_PIX_FMT_GBRAP16, false,
     false, KeyFrameControl},
    {"jpeg", "Motion JPEG", "mjpeg", AV_PIX_FMT_YUVJ420P, None, None, None, true, true,
     QualityControl | RateControl},
    {"apco", "ProRes 422 Proxy", "prores_ks", AV_PIX_FMT_YUV422P10, None, AV_PIX_FMT_YUV422P10, None, false,
     false, FixedCodec},
    {"apcs", "ProRes 422 LT", "prores_ks", AV_PIX_FMT_YUV422P10, None, AV_PIX_FMT_YUV422P10, None, false,
     false, FixedCodec},
    {"apcn", "ProRes 422", "prores_ks", AV_PIX_FMT_YUV422P10, None, AV_PIX_FMT_YUV422P10, None, false, false,
     FixedCodec},
    {"apch", "ProRes 422 HQ", "prores_ks", AV_PIX_FMT_YUV422P10, None, AV_PIX_FMT_YUV422P10, None, false,
     false, FixedCodec},
    {"ap4h", "ProRes 4444", "prores_ks", AV_PIX_FMT_YUV444P10, AV_PIX_FMT_YUVA444P10, AV_PIX_FMT_YUV444P10,
     AV_PIX_FMT_YUVA444P10, false, false, FixedCodec},
    {"ap4x", "ProRes 4444 XQ", "prores_ks", AV_PIX_FMT_YUV444P10, AV_PIX_FMT_YUVA444P10, AV_PIX_FMT_YUV444P10,
     AV_PIX_FMT_YUVA444P10, false, false, FixedCodec},
    {"v210", "4:2:2 10 Bit", "v210", AV_PIX_FMT_YUV422P10, None, AV_PIX_FMT_YUV422P10, None, false, false,
     FixedCodec},
    {"2vuy", "4:2:2 8 Bit", "rawvideo", AV_PIX_FMT_UYVY422, None, None, None, false, false, FixedCodec},
    {"avc1", "H.264", "libx264", AV_PIX_FMT_YUV420P, None, AV_PIX_FMT_YUV420P10, None, true, false,
     AllControls},
    {"hvc1", "H.265", "libx265", AV_PIX_FMT_YUV420P, None, AV_PIX_FMT_YUV420P10, None, true, false,
     AllControls},
    {"mp4v", "MPEG-4", "mpeg4", AV_PIX_FMT_YUV420P, None, None, None, true, false, AllControls},
};

constexpr SoundCodec soundCodecs[] = {
    {"sowt", "16 Bit Little Endian", "pcm_s16le", false},
    {"twos", "16 Bit Big Endian", "pcm_s16be", true},
    {"in24", "24 Bit Integer", "pcm_s24be", false},
    {"in32", "32 Bit Integer", "pcm_s32be", false},
    {"fl32", "32 Bit Float", "pcm_f32be", false},
    {"fl64", "64 Bit Float", "pcm_f64be", false},
    {"ulaw", "uLaw 2:1", "pcm_mulaw", true},
    {"alaw", "aLaw 2:1", "pcm_alaw", true},
    {"ima4", "IMA 4:1", "adpcm_ima_qt", false},
    {"alac", "Lossless", "alac", false},
    {"mp4a", "AAC", "aac", true},
};

std::uint32_t Pack(char const* code)
{
    std::uint32_t packed = 0;
    for (int i = 0; i < 4; ++i)
        packed = packed << 8 | static_cast<unsigned char>(code[i]);
    return packed;
}

template <typename Entry, std::size_t size> Entry const* Find(Entry const (&table)[size], std::uint32_t code)
{
    auto const* found =
        std::ranges::find_if(table, [&](Entry const& entry) { return Pack(entry.code) == code; });
    return found == std::end(table) ? nullptr : found;
}

AVPixelFormat Layout_For(PictureCodec const& codec, HostVideoSettings const& settings)
{
    bool const hasAlpha = settings.hasAlpha && codec.alpha != None;
    AVPixelFormat const shallow = hasAlpha ? codec.alpha : codec.plain;
    AVPixelFormat const deep = hasAlpha ? codec.deepAlpha : codec.deep;
    AVPixelFormat const layout = settings.isDeep && deep != None ? deep : shallow;
    // What shares its colours between two pixels leaves none for an odd one.
    bool const isOdd = (settings.width | settings.height) & 1;
    if (layout == AV_PIX_FMT_YUV420P && isOdd) return AV_PIX_FMT_YUV444P;
    if (layout == AV_PIX_FMT_YUV420P10 && isOdd) return AV_PIX_FMT_YUV444P10;
    if (layout == AV_PIX_FMT_YUVJ420P && settings.quality >= 768) return AV_PIX_FMT_YUVJ444P;
    return layout;
}

/// The matrix is written into the movie, so that its colours come back as they were: that of high definition
/// for its sizes, that of standard definition below. JPEG pictures know no other one than that.
void Set_Colour(AVCodecContext& context, HostVideoSettings const& settings)
{
    AVPixFmtDescriptor const* layout = av_pix_fmt_desc_get(context.pix_fmt);
    if (layout->flags & AV_PIX_FMT_FLAG_RGB) {
        context.color_range = AVCOL_RANGE_JPEG;
        return;
    }
    bool const isFull = context.pix_fmt == AV_PIX_FMT_YUVJ420P || context.pix_fmt == AV_PIX_FMT_YUVJ444P;
    bool const isHigh = !isFull && (settings.width > 1024 || settings.height > 576);
    context.colorspace = isHigh ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    context.color_primaries = isHigh ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    context.color_trc = AVCOL_TRC_BT709;
    context.color_range = isFull ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
}

/// A number between two ends, by quality.
double Between(double worst, double best, int quality)
{
    return worst + (best - worst) * std::clamp(quality, 0, 1024) / 1024.0;
}

void Set_Quality(AVCodecContext& context, PictureCodec const& codec, HostVideoSettings const& settings,
                 MovieOptions& options)
{
    std::string_view const name = codec.encoder;
    bool const hasRate = settings.bytesPerSecond > 0 && codec.controls & RateControl;
    if (hasRate) {
        // Half a second to even out in: with more, short movies grow far beyond their rate.
        context.bit_rate = context.rc_max_rate = settings.bytesPerSecond * std::int64_t{8};
        context.rc_buffer_size = static_cast<int>(std::min<std::int64_t>(context.bit_rate / 2, INT32_MAX));
    }
    if (name == "prores_ks") {
        constexpr std::string_view profiles[] = {"apco", "apcs", "apcn", "apch", "ap4h", "ap4x"};
        options.Set("profile", std::ranges::find(profiles, codec.code) - std::begin(profiles));
        options.Set("vendor", "apl0");
        options.Set("alpha_bits", settings.hasAlpha && codec.alpha != None ? 16 : 0);
    } else if (name == "ffv1") {
        context.level = 3;
        options.Set("slicecrc", 1);
        options.Set("slices", settings.width >= 64 && settings.height >= 64 ? 4 : 1);
    } else if (name == "libx264") {
        options.Set("preset", "medium");
        // Half is the encoder's own idea of a good quality, the top is without loss.
        double const crf =
            settings.quality >= 512 ? Between(46, 0, settings.quality) : Between(40, 6, settings.quality);
        if (!hasRate) options.Set("crf", std::to_string(crf).c_str());
    } else if (name == "libx265") {
        options.Set("x265-params", "log-level=none");
        if (!hasRate) options.Set("crf", std::to_string(Between(46, 4, settings.quality)).c_str());
    } else if (!hasRate && (name == "mjpeg" || name == "mpeg4")) {
        context.flags |= AV_CODEC_FLAG_QSCALE;
        context.qmin = 1;
        context.global_quality =
            static_cast<int>(std::lround(Between(20, 1, settings.quality))) * FF_QP2LAMBDA;
    }
}

AVRational Reduced(std::int64_t numerator, std::int64_t denominator)
{
    AVRational result;
    av_reduce(&result.num, &result.den, numerator, denominator, INT32_MAX);
    return result;
}

}  // namespace

PictureCodec const* Find_Picture_Codec(std::uint32_t code)
{
    return Find(pictureCodecs, code);
}

SoundCodec const* Find_Sound_Codec(std::uint32_t code)
{
    return Find(soundCodecs, code);
}

HostCodecAbilities Host_Codec_Abilities(std::uint32_t code)
{
    PictureCodec const* codec = Find_Picture_Codec(code);
    if (!codec || !avcodec_find_encoder_by_name(codec->encoder)) return {};
    return {.code = code,
            .canWrite = true,
            .alpha = codec->alpha != None,
            .deep = codec->deep != None,
            .stream = codec->canStream,
            .still = codec->isStill,
            .quality = (codec->controls & QualityControl) != 0,
            .keyFrames = (codec->controls & KeyFrameControl) != 0,
            .dataRate = (codec->controls & RateControl) != 0,
            .name = codec->name};
}

std::vector<HostCodecAbilities> Host_Movie_Codecs(bool isSound)
{
    std::vector<HostCodecAbilities> known;
    if (!isSound)
        for (PictureCodec const& codec : pictureCodecs)
            known.push_back(Host_Codec_Abilities(Pack(codec.code)));
    else
        for (SoundCodec const& codec : soundCodecs)
            known.push_back({.code = Pack(codec.code),
                             .canWrite = avcodec_find_encoder_by_name(codec.encoder) != nullptr,
                             .stream = codec.canStream,
                             .name = codec.name});
    std::erase_if(known, [](HostCodecAbilities const& codec) { return !codec.canWrite; });
    return known;
}

MovieOwner<AVCodecContext> Open_Picture_Encoder(HostVideoSettings const& settings, HostMovieError& error)
{
    error = HostMovieError::NoCodec;
    PictureCodec const* codec = Find_Picture_Codec(settings.codec);
    AVCodec const* encoder = codec ? avcodec_find_encoder_by_name(codec->encoder) : nullptr;
    if (!encoder) return nullptr;
    MovieOwner<AVCodecContext> context(avcodec_alloc_context3(encoder));
    if (!context) {
        error = HostMovieError::Memory;
        return nullptr;
    }
    context->width = settings.width;
    context->height = settings.height;
    context->pix_fmt = Layout_For(*codec, settings);
    context->time_base = Reduced(settings.frameDuration, settings.timeScale);
    context->framerate = {context->time_base.den, context->time_base.num};
    if (settings.pixelAspect > 0) context->sample_aspect_ratio = av_d2q(settings.pixelAspect, 65535);
    if (settings.keyFrameInterval > 0) context->gop_size = static_cast<int>(settings.keyFrameInterval);
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    context->thread_count = 0;
    context->strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;
    // Raw pictures have their tag by their layout; the muxer knows it of all but one.
    if (context->pix_fmt == AV_PIX_FMT_RGBA64BE && encoder->id == AV_CODEC_ID_RAWVIDEO)
        context->codec_tag = MKTAG('b', '6', '4', 'a');
    else if (encoder->id != AV_CODEC_ID_RAWVIDEO)
        context->codec_tag = Turn_Code(settings.codec);
    Set_Colour(*context, settings);
    MovieOptions options;
    Set_Quality(*context, *codec, settings, options);
    if (avcodec_open2(context.get(), encoder, options.Address()) < 0) return nullptr;
    error = HostMovieError::None;
    return context;
}

MovieOwner<AVFrame> New_Picture(AVCodecContext const& encoder)
{
    MovieOwner<AVFrame> picture{av_frame_alloc()};
    if (!picture) return nullptr;
    picture->width = encoder.width;
    picture->height = encoder.height;
    picture->format = encoder.pix_fmt;
    picture->colorspace = encoder.colorspace;
    picture->color_range = encoder.color_range;
    picture->color_primaries = encoder.color_primaries;
    picture->color_trc = encoder.color_trc;
    picture->sample_aspect_ratio = encoder.sample_aspect_ratio;
    picture->quality = encoder.global_quality;  // encoders with a fixed quality read it here
    return av_frame_get_buffer(picture.get(), 0) < 0 ? nullptr : std::move(picture);
}

MovieOwner<AVCodecContext> Open_Sound_Encoder(HostSoundSettings const& settings, bool hinted,
                                              HostMovieError& error)
{
    error = HostMovieError::NoCodec;
    SoundCodec const* codec = settings.codec ? Find_Sound_Codec(settings.codec) : nullptr;
    if (settings.codec && !codec) return nullptr;
    char const* const plain = settings.sampleBytes == 1 ? "pcm_u8" : hinted ? "pcm_s16be" : "pcm_s16le";
    AVCodec const* encoder = avcodec_find_encoder_by_name(codec ? codec->encoder : plain);
    if (!encoder) return nullptr;
    MovieOwner<AVCodecContext> context(avcodec_alloc_context3(encoder));
    if (!context) {
        error = HostMovieError::Memory;
        return nullptr;
    }
    context->sample_rate = settings.rate;
    context->sample_fmt = encoder->sample_fmts ? encoder->sample_fmts[0] : AV_SAMPLE_FMT_S16;
    context->time_base = {1, settings.rate};
    av_channel_layout_default(&context->ch_layout, settings.channels);
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (encoder->id == AV_CODEC_ID_AAC) context->bit_rate = 96000 * std::int64_t{settings.channels};
    if (avcodec_open2(context.get(), encoder, nullptr) < 0) return nullptr;
    error = HostMovieError::None;
    return context;
}
