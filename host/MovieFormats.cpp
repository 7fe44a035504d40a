// Which files are movies, and opening one.
#include "MovieLibrary.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <set>
#include <string_view>

namespace {

char const UrlScheme[] = "file:";

/// Pixels of a picture that is still decoded; a file of some bytes can tell of any number.
constexpr std::int64_t MostPixels = 1 << 28;

/// Formats that are no movies or sound of their own: lists that lead to other files, devices and networks,
/// single pictures, drawn text, subtitles, and bare samples whose shape only a user could tell.
constexpr std::string_view notMovies[] = {
    // lists and wrappers
    "concat", "dash", "ffmetadata", "hls", "imf", "sdp", "rtp", "rtsp", "sap", "luodat", "lavfi",
    "webm_dash_manifest", "tedcaptions", "data", "mpegtsraw", "mpjpeg", "vapoursynth", "avisynth",
    // pictures
    "image2", "image2pipe", "alias_pix", "brender_pix", "fits", "ico", "pgmyuv", "filmstrip", "qoi",
    "jpegxl_anim", "webp",
    // text
    "tty", "bin", "xbin", "adf", "idf", "artworx", "ans",
    // subtitles
    "aqtitle", "ass", "dvbsub", "dvbtxt", "jacosub", "lrc", "mcc", "microdvd", "mpl2", "mpsub", "pjs",
    "realtext", "sami", "scc", "srt", "stl", "subviewer", "subviewer1", "sup", "vobsub", "vplayer", "webvtt",
    // bare samples
    "rawvideo", "v210", "v210x", "bitpacked", "alaw", "mulaw", "vidc", "f32be", "f32le", "f64be", "f64le",
    "s16be", "s16le", "s24be", "s24le", "s32be", "s32le", "s8", "u16be", "u16le", "u24be", "u24le", "u32be",
    "u32le", "u8", "codec2raw", "sln"};

bool Is_Movie_Format(AVInputFormat const& format)
{
    std::string_view const name = format.name;
    if (format.flags & AVFMT_NOFILE || name.ends_with("_pipe")) return false;
    return std::ranges::find(notMovies, name) == std::end(notMovies);
}

template <typename Take> void For_Each_Piece(char const* list, Take&& take)
{
    std::string_view rest = list ? list : "";
    while (!rest.empty()) {
        std::size_t const comma = rest.find(',');
        if (std::string_view const piece = rest.substr(0, comma); !piece.empty()) take(piece);
        rest = comma == rest.npos ? std::string_view{} : rest.substr(comma + 1);
    }
}

/// Some formats are found by their contents alone and leave the naming to their writing side. These are the
/// writers that have another name than the reader.
constexpr std::string_view otherWriters[] = {"asf_stream", "dvd",        "vob", "svcd", "oga",
                                             "ogv",        "mpeg2video", "m4v", "mp2"};

bool Is_Movie_Writer(AVOutputFormat const& format)
{
    return av_match_list(format.name, Movie_Demuxers().c_str(), ',') ||
           std::ranges::find(otherWriters, format.name) != std::end(otherWriters);
}

std::vector<std::string> Collect_Extensions()
{
    std::set<std::string> found;
    std::vector<std::string> extensions;
    auto const add = [&](std::string_view piece) {
        std::string text(piece);
        std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
        if (found.insert(text).second) extensions.push_back(text);
    };
    void* cursor = nullptr;
    while (AVInputFormat const* format = av_demuxer_iterate(&cursor))
        if (Is_Movie_Format(*format)) For_Each_Piece(format->extensions, add);
    cursor = nullptr;
    while (AVOutputFormat const* format = av_muxer_iterate(&cursor))
        if (Is_Movie_Writer(*format)) For_Each_Piece(format->extensions, add);
    return extensions;
}

}  // namespace

std::string const& Movie_Demuxers()
{
    static std::string const names = [] {
        std::string list;
        void* cursor = nullptr;
        while (AVInputFormat const* format = av_demuxer_iterate(&cursor))
            if (Is_Movie_Format(*format)) list += (list.empty() ? "" : ",") + std::string(format->name);
        return list;
    }();
    return names;
}

std::vector<std::string> const& Host_Movie_Extensions()
{
    static std::vector<std::string> const extensions = Collect_Extensions();
    return extensions;
}

HostMovieError Movie_Error(int result)
{
    switch (result) {
    case AVERROR(ENOMEM): return HostMovieError::Memory;
    case AVERROR(ENOSPC):
    case AVERROR(EDQUOT):
    case AVERROR(EFBIG): return HostMovieError::DiskFull;
    case AVERROR(EACCES):
    case AVERROR(EPERM):
    case AVERROR(EROFS): return HostMovieError::Denied;
    case AVERROR(EBUSY):
    case AVERROR(ETXTBSY): return HostMovieError::Busy;
    case AVERROR_ENCODER_NOT_FOUND:
    case AVERROR_DECODER_NOT_FOUND: return HostMovieError::NoCodec;
    default: return result < 0 ? HostMovieError::Failed : HostMovieError::None;
    }
}

std::string Movie_Url(char const* path)
{
    return UrlScheme + std::string(path);
}

char const* Movie_Path(char const* url)
{
    return url + std::strlen(UrlScheme);
}

/// Learns what the streams hold, with decoders that are held to the largest picture.
static int Find_Streams(AVFormatContext& file)
{
    std::vector<AVDictionary*> options(file.nb_streams, nullptr);
    for (AVDictionary*& option : options)
        av_dict_set_int(&option, "max_pixels", MostPixels, 0);
    int const result = avformat_find_stream_info(&file, options.data());
    for (AVDictionary*& option : options)
        av_dict_free(&option);
    return result;
}

MovieOwner<AVFormatContext> Open_Movie_File(std::string const& url, HostMovieError& error)
{
    error = HostMovieError::Unreadable;
    if (!Movie_Tables_Fit(Movie_Path(url.c_str()))) return nullptr;
    error = HostMovieError::Memory;
    AVFormatContext* context = avformat_alloc_context();
    if (!context) return nullptr;
    MovieOptions options;
    options.Set("protocol_whitelist", "file");
    options.Set("format_whitelist", Movie_Demuxers().c_str());
    int result = avformat_open_input(&context, url.c_str(), nullptr, options.Address());
    // A failed opening has freed the context.
    MovieOwner<AVFormatContext> file(result < 0 ? nullptr : context);
    if (file) result = Find_Streams(*file);
    error = result == AVERROR(ENOMEM) ? HostMovieError::Memory : HostMovieError::Unreadable;
    if (result < 0) return nullptr;
    error = HostMovieError::None;
    return file;
}

void Select_Stream(AVFormatContext& file, int stream)
{
    for (unsigned i = 0; i < file.nb_streams; ++i)
        file.streams[i]->discard = static_cast<int>(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

bool Is_Intra(AVStream const& stream)
{
    AVCodecDescriptor const* descriptor = avcodec_descriptor_get(stream.codecpar->codec_id);
    return descriptor && descriptor->props & AV_CODEC_PROP_INTRA_ONLY;
}

MovieOwner<AVCodecContext> Open_Decoder(AVStream const& stream, int threads, int manner)
{
    AVCodec const* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec) return nullptr;
    MovieOwner<AVCodecContext> context(avcodec_alloc_context3(codec));
    if (!context || avcodec_parameters_to_context(context.get(), stream.codecpar) < 0) return nullptr;
    context->pkt_timebase = stream.time_base;
    context->max_pixels = MostPixels;
    context->thread_count = threads;
    context->thread_type = manner;
    return avcodec_open2(context.get(), codec, nullptr) < 0 ? nullptr : std::move(context);
}
