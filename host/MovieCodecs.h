// Which encoder stands behind a four-character code, and how it is set up.
#pragma once

#include "MovieLibrary.h"

/// Settings that an encoder of pictures heeds.
enum CodecControls : unsigned { FixedCodec = 0, QualityControl = 1, KeyFrameControl = 2, RateControl = 4 };

/// An encoder of pictures and the layouts that it is fed with; AV_PIX_FMT_NONE for what it cannot hold.
struct PictureCodec {
    char const* code;
    char const* name;  ///< for users
    char const* encoder;
    AVPixelFormat plain, alpha;
    AVPixelFormat deep, deepAlpha;
    bool canStream;
    bool isStill;  ///< a picture needs nothing beside its own bytes
    unsigned controls;
};

/// An encoder of sound.
struct SoundCodec {
    char const* code;
    char const* name;  ///< for users
    char const* encoder;
    bool canStream;
};

/// Null for a code that nobody writes.
PictureCodec const* Find_Picture_Codec(std::uint32_t code);
SoundCodec const* Find_Sound_Codec(std::uint32_t code);

/// A picture encoder ready for frames at that rate, or null.
MovieOwner<AVCodecContext> Open_Picture_Encoder(HostVideoSettings const& settings, HostMovieError& error);

/// A picture to be filled for the encoder, or null.
MovieOwner<AVFrame> New_Picture(AVCodecContext const& encoder);

/// A sound encoder, or null. Samples as they are become words with the high byte first when `hinted`, which
/// is how they travel.
MovieOwner<AVCodecContext> Open_Sound_Encoder(HostSoundSettings const& settings, bool hinted,
                                              HostMovieError& error);
