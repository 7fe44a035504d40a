// Codecs of movies that are written, for applications that choose them without a dialog.
#pragma once

#include "ZVFormat.h"

/// What a codec holds that movies can be written with.
struct ZVMovieCodec {
    char Name[64];   ///< for users
    long HasAlpha;   ///< non-zero: it keeps an alpha channel
    long IsDeep;     ///< non-zero: it keeps more than 8 bits a channel
    long CanStream;  ///< non-zero: movies of the streaming format can have it
};

/// Looks a codec of pictures up by its four-character code. 0 for one that
/// movies cannot be written with.
ZV_API long FindMovieCodecZV(uint32_t code, ZVMovieCodec* codec);

/// The settings of a movie to be written.
struct ZVMovieOptions {
    uint32_t Codec = 0;         ///< of the pictures, such as 'png ' or 'ap4h'
    long Quality = 512;         ///< 0 to 1024, which is without loss where the codec can
    long KeyFrameInterval = 0;  ///< frames from key frame to key frame at most; 0 leaves it to the codec
    long BytesPerSecond = 0;    ///< 0: as many as the quality needs
    uint32_t SoundCodec = 0;    ///< such as 'mp4a'; 0 keeps the samples as they are
};

/// Replaces the options of a clip of a movie format, before CreateClipZV. Whether the pictures have alpha and
/// more than 8 bits is left to the clip's AlphaType and BitDepth.
/// @return  0 for a clip of another format (error 18), for a codec that cannot be written (error 26, its code
///          being the text) and without memory (error 1); the clip then keeps its options
ZV_API long SetMovieOptionsZV(ZVClip* clip, ZVMovieOptions const* options);

/// The settings that a clip of a movie format was opened with, or will be written with. 0 for other clips and
/// for sound alone. SoundCodec is that of a movie to be written only.
ZV_API long GetMovieOptionsZV(ZVClip const* clip, ZVMovieOptions* options);

/// Frames of sound in a movie that is open for reading; 0 for other clips and without sound.
ZV_API unsigned long GetMovieSoundLengthZV(ZVClip const* clip);
