// What the movie module needs of the platform: movies read frame by frame, and written in order. The far side
// is in the desktop layer. One thread at a time uses a movie; specs are file specs.
#pragma once

#include "ZVBitmap.h"
#include "ZVClip.h"

#include <span>
#include <vector>

/// An open movie, and one being written.
struct OSMovie;
struct OSMovieOutput;

/// What an open movie holds.
struct OSMovieInfo {
    bool hasVideo;
    long width, height;
    long bitDepth;  ///< 8, 10 or 16, by the widest channel
    bool hasAlpha;
    long frames;
    double frameRate;
    double pixelAspect;  ///< 0 when the movie does not say
    uint8_t fieldOrder;
    uint32_t codec;
    long storedDepth;  ///< bits of a pixel as the options count them
    char codecName[64];
    bool isReadable;  ///< false: its codec is not there
    bool hasSound;    ///< sound of one or two channels
    ZVAudioFormat sound;
    double soundSeconds;
};

/// What a movie to be written holds; a size or a rate of 0 leaves the track out.
struct OSMovieSettings {
    long width, height;
    uint32_t codec;
    long timeScale, frameDuration;
    bool hasAlpha;
    bool isDeep;            ///< more than 8 bits a channel where the codec can
    long quality;           ///< 0 to 1024
    long keyFrameInterval;  ///< frames; 0 leaves it to the codec
    long bytesPerSecond;    ///< 0: by quality
    double pixelAspect;     ///< 0: square
    uint8_t fieldOrder;
    ZVAudioFormat sound;      ///< Flags are not read: words in the machine's order, bytes unsigned
    uint32_t soundCodec;      ///< 0 for samples as they are
    bool isHinted;            ///< with tracks for streaming, and the index in front
    long packetMilliseconds;  ///< of sound in a packet for streaming; 0 for the least
};

/// What a codec can hold, and which settings it heeds.
struct OSMovieCodec {
    uint32_t code;
    bool canWrite;
    bool hasAlpha;
    bool isDeep;
    bool canStream;
    bool isStill;  ///< OS_Movie_Write_Still takes it
    bool hasQuality, hasKeyFrames, hasDataRate;
    char name[64];
};

/// Null with error 1 or 17.
OSMovie* OS_Movie_Open(char const* spec, OSMovieInfo* info);
void OS_Movie_Close(OSMovie* movie);  ///< Null is accepted.

/// A frame into a bitmap of the movie's size, of type ZV_BITMAP_RGBA8 or ZV_BITMAP_RGBA16. False when it
/// cannot be had; other frames can be read all the same.
bool OS_Movie_Read_Frame(OSMovie* movie, long frame, ZVBitmap* bitmap);

/// Sound in the format of the movie's OSMovieInfo; silence outside the track.
bool OS_Movie_Read_Sound(OSMovie* movie, void* samples, unsigned long first, unsigned long count);

/// Begins a file beside the target, which itself stays as it is. Null with error 1, 6, 9, 10, 18, 25 or 26.
OSMovieOutput* OS_Movie_Create(char const* spec, OSMovieSettings const* settings);

/// Appends. False with the error number set: 6, 18 or 26.
bool OS_Movie_Add_Frame(OSMovieOutput* movie, ZVBitmap const* bitmap);
bool OS_Movie_Add_Sound(OSMovieOutput* movie, void const* samples, unsigned long count);

/// Ends the movie and puts it in the place of the target, with file type and creator. A movie that failed on
/// the way is deleted, and the target stays as it was; false with the error number set. Frees the record
/// either way.
bool OS_Movie_Finish(OSMovieOutput* movie, uint32_t type, uint32_t creator);

/// Deletes what was written and frees the record; the target stays as it was. Null is accepted.
void OS_Movie_Discard(OSMovieOutput* movie);

/// One compressed picture without a movie around it.
struct OSMovieStill {
    uint32_t codec;
    std::span<uint8_t const> bytes;
    long width, height;
    long depth;  ///< bits of a pixel as the options count them
};

/// Decompresses a picture into pixels of ZV_BITMAP_RGBA8, rows without gaps. False with error 1, 17 or 26.
bool OS_Movie_Read_Still(OSMovieStill const& still, void* pixels);

/// How a picture is compressed without a movie around it.
struct OSMovieStillSettings {
    uint32_t codec;
    bool hasAlpha;
    long quality;  ///< 0 to 1024
};

/// Compresses a bitmap of type ZV_BITMAP_RGBA8 or ZV_BITMAP_RGBA16 for OS_Movie_Read_Still. False with error
/// 1, 18 or 26, the bytes then being undefined.
bool OS_Movie_Write_Still(OSMovieStillSettings const& settings, ZVBitmap const* bitmap,
                          std::vector<uint8_t>& bytes);

OSMovieCodec OS_Movie_Find_Codec(uint32_t codec);

/// The codecs of pictures or of sound that can be written. Of sound, only `canStream` and the name are told.
std::vector<OSMovieCodec> OS_Movie_List_Codecs(bool isSound);

/// Calls `visit` with each extension of a movie or sound file that can be read.
void OS_Movie_Visit_Extensions(void (*visit)(char const* extension, void* data), void* data);
