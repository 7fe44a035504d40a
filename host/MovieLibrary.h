// Owners for the records of the movie libraries, and what the files of the movie service share.
#pragma once

#include "Movies.h"

#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/audio_fifo.h>
#include <libavutil/avstring.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

struct MovieDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(SwsContext* context) const { sws_freeContext(context); }
    void operator()(SwrContext* context) const { swr_free(&context); }
    void operator()(AVAudioFifo* fifo) const { av_audio_fifo_free(fifo); }
};
template <typename T> using MovieOwner = std::unique_ptr<T, MovieDeleter>;

/// Options for a call of the libraries that takes a dictionary.
class MovieOptions {
public:
    MovieOptions() = default;
    ~MovieOptions() { av_dict_free(&options_); }
    MovieOptions(MovieOptions const&) = delete;
    MovieOptions& operator=(MovieOptions const&) = delete;

    void Set(char const* name, char const* value) { av_dict_set(&options_, name, value, 0); }
    void Set(char const* name, std::int64_t value) { av_dict_set_int(&options_, name, value, 0); }
    AVDictionary** Address() { return &options_; }

private:
    AVDictionary* options_ = nullptr;
};

/// A code with its first character highest and lowest, either way round.
inline std::uint32_t Turn_Code(std::uint32_t code)
{
    return __builtin_bswap32(code);
}

/// The error of the service for a negative result of the libraries.
HostMovieError Movie_Error(int result);

/// A name that the libraries take for a local file whatever characters it has.
std::string Movie_Url(char const* path);

/// False for a movie file that tells of more samples than its bytes could hold.
bool Movie_Tables_Fit(char const* path);

/// How much later than it is decoded each sample of a movie file's track is shown, but for what is the same
/// for all of them. The room that it is read into tells how many samples there should be; false when there
/// are others.
bool Read_Movie_Offsets(char const* path, int track, std::vector<std::int32_t>& offsets);

/// The path in a name that Movie_Url made.
char const* Movie_Path(char const* url);

/// Names of the demuxers that read movies and sound, comma-separated.
std::string const& Movie_Demuxers();

/// A file opened with its streams known, or null. Files that a file refers to are not opened.
MovieOwner<AVFormatContext> Open_Movie_File(std::string const& url, HostMovieError& error);

/// Whether a picture's numbers use their whole range.
bool Is_Full_Range(AVFrame const& picture);

/// The number of the picture's AVColorSpace; files tell of some that the enumeration does not have.
int Colour_Matrix(AVFrame const& picture);

/// Tells a file to hand out the packets of one stream alone.
void Select_Stream(AVFormatContext& file, int stream);

/// Whether every picture of the stream is decoded without others, as its codec has it.
bool Is_Intra(AVStream const& stream);

/// A decoder for the stream, or null.
/// @param threads  0: as many as there are processors
/// @param manner   FF_THREAD_FRAME and FF_THREAD_SLICE
MovieOwner<AVCodecContext> Open_Decoder(AVStream const& stream, int threads = 0,
                                        int manner = FF_THREAD_FRAME | FF_THREAD_SLICE);
