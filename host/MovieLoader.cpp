// The library's side of the movie service: the functions of Movies.h, which load the module on first use.
#include "MovieService.h"

#include <dlfcn.h>
#include <unistd.h>

/// The module lies in a folder beside the library.
static std::string Module_Path()
{
    Dl_info library{};
    if (!dladdr(reinterpret_cast<void const*>(&Host_Has_Movies), &library) || !library.dli_fname) return {};
    std::string const file = library.dli_fname;
    std::size_t const slash = file.rfind('/');
    return (slash == file.npos ? "" : file.substr(0, slash + 1)) + ZV_MOVIE_MODULE;
}

static HostMovieService const* Load()
{
    // Never unloaded: movies may be open until the process ends.
    void* const module = dlopen(Module_Path().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module) return nullptr;
    auto* const entry = reinterpret_cast<HostMovieServiceEntry*>(dlsym(module, HostMovieServiceName));
    return entry ? entry() : nullptr;
}

static HostMovieService const* Service()
{
    static HostMovieService const* const service = Load();
    return service;
}

bool Host_Has_Movies()
{
    return access(Module_Path().c_str(), R_OK) == 0;
}

std::unique_ptr<HostMovieReader> Open_Host_Movie(char const* path, HostMovieError& error)
{
    error = HostMovieError::Failed;
    return Service() ? Service()->open(path, error) : nullptr;
}

std::unique_ptr<HostMovieWriter> Create_Host_Movie(char const* path, HostVideoSettings const* video,
                                                   HostSoundSettings const* sound, bool hinted,
                                                   HostMovieError& error)
{
    error = HostMovieError::Failed;
    return Service() ? Service()->create(path, video, sound, hinted, error) : nullptr;
}

HostMovieError Decode_Host_Still(HostStill const& still, void* pixels, std::size_t rowBytes)
{
    return Service() ? Service()->decodeStill(still, pixels, rowBytes) : HostMovieError::NoCodec;
}

HostMovieError Encode_Host_Still(HostVideoSettings const& settings, void const* pixels, std::size_t rowBytes,
                                 HostPixels layout, std::vector<std::uint8_t>& bytes)
{
    return Service() ? Service()->encodeStill(settings, pixels, rowBytes, layout, bytes)
                     : HostMovieError::NoCodec;
}

HostCodecAbilities Host_Codec_Abilities(std::uint32_t codec)
{
    return Service() ? Service()->abilities(codec) : HostCodecAbilities{};
}

std::vector<HostCodecAbilities> Host_Movie_Codecs(bool isSound)
{
    return Service() ? Service()->codecs(isSound) : std::vector<HostCodecAbilities>{};
}

std::vector<std::string> const& Host_Movie_Extensions()
{
    static std::vector<std::string> const none;
    return Service() ? Service()->extensions() : none;
}
