// The movie service: files with pictures and sound over time, read frame by frame and written in order. A
// reader or writer is used by one thread at a time; different ones are independent of each other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Why a movie could not be read or written.
enum class HostMovieError {
    None,
    Memory,
    DiskFull,
    Denied,  ///< the file system does not let us write there
    Busy,
    Unreadable,  ///< no movie, or a damaged one
    NoCodec,     ///< the codec is not there, or does not take these pictures
    NoHints,     ///< the codec cannot be streamed
    Failed
};

/// Layouts of the pictures that go in and out: rows of red, green, blue, alpha in the machine's byte order.
enum class HostPixels { RGBA8, RGBA16 };

inline std::size_t Host_Pixel_Bytes(HostPixels layout)
{
    return layout == HostPixels::RGBA8 ? 4 : 8;
}

struct HostVideoTrack {
    int width = 0, height = 0;  ///< as it is shown: a movie that says so is turned by quarters, or mirrored
    int bitDepth = 8;           ///< 8, 10 or 16, by the widest channel
    bool hasAlpha = false;
    double frameRate = 0;
    std::int64_t frames = 0;
    double pixelAspect = 0;   ///< width of a pixel over its height; 0 when the stream does not say
    int fieldOrder = 0;       ///< 0 no fields, 1 upper field first, 2 lower field first
    std::uint32_t codec = 0;  ///< four-character code, first character highest
    int storedDepth = 24;     ///< bits of a pixel as movies count them: 32 with alpha
    std::string codecName;
    bool isReadable = false;  ///< false: the codec is not there
};

struct HostSoundTrack {
    int rate = 0, channels = 0;
    int sampleBytes = 2;  ///< 1: unsigned bytes; 2: signed words in the machine's order
    double seconds = 0;
};

/// An open movie. Frame and sample numbers count from the first picture of the movie, or without pictures
/// from the first sample.
class HostMovieReader {
public:
    virtual ~HostMovieReader() = default;

    virtual HostVideoTrack const* Video() const = 0;  ///< Null without one.
    virtual HostSoundTrack const* Sound() const = 0;  ///< Null without one.

    /// Decodes a frame into rows of `rowBytes` bytes. The next frame is read on without a seek; any other one
    /// is decoded from the key frame before it, unless it was decoded lately and is still at hand.
    /// @param pixels  room for height rows; its contents are undefined after a failure
    /// @return  false for a frame that is not in the movie or cannot be decoded; others are not harmed
    virtual bool Read_Frame(std::int64_t frame, void* pixels, std::size_t rowBytes, HostPixels layout) = 0;

    /// Fills in `count` frames of sound from `first` on, as the sound track tells. What lies outside the
    /// track is silence.
    virtual bool Read_Sound(std::int64_t first, std::size_t count, void* samples) = 0;
};

/// @param path   native path
/// @param error  the reason when the result is null
std::unique_ptr<HostMovieReader> Open_Host_Movie(char const* path, HostMovieError& error);

struct HostVideoSettings {
    std::uint32_t codec = 0;  ///< four-character code, first character highest
    int width = 0, height = 0;
    std::int64_t timeScale = 0, frameDuration = 0;
    bool hasAlpha = false;
    bool isDeep = false;        ///< store more than 8 bits a channel where the codec can
    int quality = 512;          ///< 0 to 1024; 1024 is without loss where the codec can
    long keyFrameInterval = 0;  ///< frames; 0 leaves it to the codec
    long bytesPerSecond = 0;    ///< 0: by quality
    double pixelAspect = 0;     ///< 0: square
    int fieldOrder = 0;         ///< as in HostVideoTrack
};

struct HostSoundSettings {
    std::uint32_t codec = 0;  ///< four-character code; 0 for samples as they are
    int rate = 0, channels = 0;
    int sampleBytes = 2;         ///< as in HostSoundTrack
    int packetMilliseconds = 0;  ///< of sound in a packet when it is streamed; 0 for the least
};

/// A movie being written. A failed call leaves a writer that fails from then on and can only be deleted.
class HostMovieWriter {
public:
    virtual ~HostMovieWriter() = default;

    /// Appends a picture of the size of the settings.
    virtual HostMovieError Add_Frame(void const* pixels, std::size_t rowBytes, HostPixels layout) = 0;

    /// Appends frames of sound in the format of the settings.
    virtual HostMovieError Add_Sound(void const* samples, std::size_t count) = 0;

    /// Writes what is still under way and the movie's index. Only then is the file a movie.
    virtual HostMovieError Finish() = 0;
};

/// @param path         native path of a file that exists; it is overwritten
/// @param video,sound  null for a movie without
/// @param hinted       add tracks for streaming, and put the index in front
std::unique_ptr<HostMovieWriter> Create_Host_Movie(char const* path, HostVideoSettings const* video,
                                                   HostSoundSettings const* sound, bool hinted,
                                                   HostMovieError& error);

/// One compressed picture without a movie around it.
struct HostStill {
    std::uint32_t codec = 0;  ///< four-character code, first character highest
    std::uint8_t const* data = nullptr;
    std::size_t size = 0;
    int width = 0, height = 0;
    int depth = 24;  ///< bits of a pixel as movies count them
};

/// Decodes a picture into rows of RGBA8 pixels. One of another size than was told counts as damaged.
/// @param pixels  room for height rows; its contents are undefined after a failure
HostMovieError Decode_Host_Still(HostStill const& still, void* pixels, std::size_t rowBytes);

/// Compresses one picture for Decode_Host_Still. Of the settings only codec, size, alpha, depth and quality
/// count.
/// @param bytes  replaced; its contents are undefined after a failure
HostMovieError Encode_Host_Still(HostVideoSettings const& settings, void const* pixels, std::size_t rowBytes,
                                 HostPixels layout, std::vector<std::uint8_t>& bytes);

/// What a codec can hold, and which settings it heeds.
struct HostCodecAbilities {
    std::uint32_t code = 0;
    bool canWrite = false;
    bool alpha = false;
    bool deep = false;    ///< more than 8 bits a channel
    bool stream = false;  ///< can be hinted
    bool still = false;   ///< one picture can be had without a movie around it
    bool quality = false, keyFrames = false, dataRate = false;
    std::string name;  ///< for users, without a comma
};
HostCodecAbilities Host_Codec_Abilities(std::uint32_t codec);

/// The codecs of pictures or of sound that can be written. Of sound, only `stream` and the name are told.
std::vector<HostCodecAbilities> Host_Movie_Codecs(bool isSound);

/// Extensions of the movie and sound files that can be read, lower case, without still pictures and texts.
std::vector<std::string> const& Host_Movie_Extensions();

/// Whether the service is there. It gets ready when the first of the other functions is called; where its
/// libraries fail to load, those answer that there is nothing.
bool Host_Has_Movies();
