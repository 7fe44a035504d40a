// The module's side: what it exports.
#include "MovieService.h"

#include "MovieLibrary.h"

/// No table and no picture is larger. A damaged file may tell of one that is, and must not get the memory.
static constexpr std::size_t LargestBlock = std::size_t{1} << 30;

/// Makes the libraries ready. False when they are not of the versions that this was built for.
static bool Start_Libraries()
{
    // Complaints about damaged files belong in results, not on the terminal. An application that set a level
    // of its own keeps it.
    if (av_log_get_level() == AV_LOG_INFO) av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(LargestBlock);
    // Records of the libraries are read directly, so that only their own major versions will do.
    return avformat_version() >> 16 == LIBAVFORMAT_VERSION_MAJOR &&
           avcodec_version() >> 16 == LIBAVCODEC_VERSION_MAJOR &&
           swscale_version() >> 16 == LIBSWSCALE_VERSION_MAJOR &&
           swresample_version() >> 16 == LIBSWRESAMPLE_VERSION_MAJOR;
}

extern "C" __attribute__((visibility("default"))) HostMovieServiceEntry ZV_Movie_Service;

extern "C" HostMovieService const* ZV_Movie_Service()
{
    static constexpr HostMovieService service{Open_Host_Movie,      Create_Host_Movie,    Decode_Host_Still,
                                              Encode_Host_Still,    Host_Codec_Abilities, Host_Movie_Codecs,
                                              Host_Movie_Extensions};
    return Start_Libraries() ? &service : nullptr;
}
