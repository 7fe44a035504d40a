// Between the library and the module with the movie service. FFmpeg brings more than a hundred libraries
// along, which programs without movies shall not load; so the module is loaded when the service is first
// used.
#pragma once

#include "Movies.h"

/// The functions of Movies.h as the module has them.
struct HostMovieService {
    decltype(&Open_Host_Movie) open;
    decltype(&Create_Host_Movie) create;
    decltype(&Decode_Host_Still) decodeStill;
    decltype(&Encode_Host_Still) encodeStill;
    decltype(&Host_Codec_Abilities) abilities;
    decltype(&Host_Movie_Codecs) codecs;
    decltype(&Host_Movie_Extensions) extensions;
};

/// What the module exports: the service, or null when the libraries are not of the versions that it was built
/// for. The name is that of the function.
using HostMovieServiceEntry = HostMovieService const*();
inline constexpr char HostMovieServiceName[] = "ZV_Movie_Service";
