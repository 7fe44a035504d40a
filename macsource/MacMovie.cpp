// The movie seam on the movie service. Movies are written beside their target under a name of their own.
#include "formats/MovieSeam.h"

#include "MacFileInfo.h"

#include "ZVLibInternal.h"
#include "host/Movies.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

struct OSMovie {
    std::unique_ptr<HostMovieReader> reader;
};

struct OSMovieOutput {
    std::unique_ptr<HostMovieWriter> writer;
    std::string target;
    std::string work;  ///< the file being written; empty once it is the target

    ~OSMovieOutput()
    {
        writer.reset();
        if (!work.empty()) unlink(work.c_str());
    }
};

namespace {

unsigned long Error_Number(HostMovieError error)
{
    switch (error) {
    case HostMovieError::None: return ZV_ERR_NONE;
    case HostMovieError::Memory: return ZV_ERR_MEMORY;
    case HostMovieError::DiskFull: return ZV_ERR_DISK_FULL;
    case HostMovieError::Denied: return ZV_ERR_LOCKED;
    case HostMovieError::Busy: return ZV_ERR_BUSY;
    case HostMovieError::Unreadable: return ZV_ERR_CLIP_EXCEPTION;
    case HostMovieError::NoCodec: return ZV_ERR_MOVIE_FRAME;
    case HostMovieError::NoHints: return ZV_ERR_MOVIE_CLOSE;
    case HostMovieError::Failed: break;
    }
    return ZV_ERR_CLIP;
}

unsigned long File_Error_Number(int number)
{
    switch (number) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return ZV_ERR_DISK_FULL;
    case EACCES:
    case EPERM:
    case EROFS: return ZV_ERR_LOCKED;
    case EBUSY:
    case ETXTBSY: return ZV_ERR_BUSY;
    default: return ZV_ERR_CLIP;
    }
}

bool Fail(unsigned long error)
{
    SetError(error);
    return false;
}

void Copy_Name(char (&target)[64], std::string const& name)
{
    std::size_t const length = std::min(name.size(), sizeof target - 1);
    std::memcpy(target, name.data(), length);
    target[length] = 0;
}

void Describe_Video(HostVideoTrack const& track, OSMovieInfo& info)
{
    info.hasVideo = true;
    info.width = track.width;
    info.height = track.height;
    info.bitDepth = track.bitDepth;
    info.hasAlpha = track.hasAlpha;
    info.frames = track.frames;
    info.frameRate = track.frameRate;
    info.pixelAspect = track.pixelAspect;
    info.fieldOrder = static_cast<uint8_t>(track.fieldOrder);
    info.codec = track.codec;
    info.storedDepth = track.storedDepth;
    info.isReadable = track.isReadable;
    Copy_Name(info.codecName, track.codecName);
}

void Describe_Sound(HostSoundTrack const& track, OSMovieInfo& info)
{
    info.hasSound = true;
    info.sound.Rate = static_cast<unsigned long>(track.rate);
    info.sound.SampleSize = static_cast<unsigned long>(track.sampleBytes);
    info.sound.Channels = static_cast<unsigned long>(track.channels);
    info.sound.Flags = track.sampleBytes == 1 ? ZV_AUDIO_UNSIGNED : 0;
    info.soundSeconds = track.seconds;
}

bool Layout_Of(ZVBitmap const* bitmap, HostPixels& layout)
{
    layout = bitmap->Type == ZV_BITMAP_RGBA16 ? HostPixels::RGBA16 : HostPixels::RGBA8;
    return bitmap->Pixels && (bitmap->Type == ZV_BITMAP_RGBA8 || bitmap->Type == ZV_BITMAP_RGBA16);
}

/// A new file in the target's folder, with the rights that a file made there in the usual way has.
bool Make_Work_File(OSMovieOutput& output)
{
    std::size_t const slash = output.target.rfind('/');
    std::string name = output.target.substr(0, slash + 1) + ".tmpXXXXXX.mov";
    int const file = mkstemps(name.data(), 4);
    if (file < 0) return Fail(File_Error_Number(errno));
    output.work = name;
    mode_t const mask = umask(0);
    umask(mask);
    struct stat old;
    bool const replaces = stat(output.target.c_str(), &old) == 0;
    fchmod(file, replaces ? old.st_mode & 0777 : 0666 & ~mask);
    close(file);
    return true;
}

/// Whether something at the target's place could be replaced by a file.
bool Is_Replaceable(std::string const& target)
{
    struct stat info;
    if (stat(target.c_str(), &info) != 0) return errno == ENOENT || Fail(File_Error_Number(errno));
    return S_ISREG(info.st_mode) || Fail(ZV_ERR_LOCKED);
}

HostVideoSettings Video_Settings(OSMovieSettings const& settings)
{
    HostVideoSettings video;
    video.codec = settings.codec;
    video.width = static_cast<int>(settings.width);
    video.height = static_cast<int>(settings.height);
    video.timeScale = settings.timeScale;
    video.frameDuration = settings.frameDuration;
    video.hasAlpha = settings.hasAlpha;
    video.isDeep = settings.isDeep;
    video.quality = static_cast<int>(settings.quality);
    video.keyFrameInterval = settings.keyFrameInterval;
    video.bytesPerSecond = settings.bytesPerSecond;
    video.pixelAspect = settings.pixelAspect;
    video.fieldOrder = settings.fieldOrder;
    return video;
}

HostSoundSettings Sound_Settings(OSMovieSettings const& settings)
{
    HostSoundSettings sound;
    sound.codec = settings.soundCodec;
    sound.rate = static_cast<int>(settings.sound.Rate);
    sound.channels = static_cast<int>(settings.sound.Channels);
    sound.sampleBytes = static_cast<int>(settings.sound.SampleSize);
    sound.packetMilliseconds = static_cast<int>(settings.packetMilliseconds);
    return sound;
}

/// The finished file in the place of the target, safely on the disk before the old one goes.
bool Put_In_Place(OSMovieOutput& output, uint32_t type, uint32_t creator)
{
    int const file = open(output.work.c_str(), O_RDWR | O_CLOEXEC);
    if (file < 0) return Fail(File_Error_Number(errno));
    Mac_Write_Codes(file, {type, creator});
    bool const isSafe = fsync(file) == 0;
    int const reason = errno;
    close(file);
    if (!isSafe) return Fail(File_Error_Number(reason));
    if (rename(output.work.c_str(), output.target.c_str()) != 0) return Fail(File_Error_Number(errno));
    output.work.clear();
    return true;
}

}  // namespace

bool OS_Enter_Movies()
{
    return Host_Has_Movies();
}

void OS_Exit_Movies()
{
    // Open movies belong to their clips, and the libraries keep nothing else.
}

OSMovie* OS_Movie_Open(char const* spec, OSMovieInfo* info)
{
    *info = {};
    char path[ZV_SPEC_SIZE];
    HostMovieError error = HostMovieError::Unreadable;
    auto movie = std::make_unique<OSMovie>();
    if (spec && OS_Native_Path(spec, path, sizeof path)) movie->reader = Open_Host_Movie(path, error);
    if (!movie->reader) {
        SetError(Error_Number(error));
        return nullptr;
    }
    if (HostVideoTrack const* video = movie->reader->Video()) Describe_Video(*video, *info);
    if (HostSoundTrack const* sound = movie->reader->Sound()) Describe_Sound(*sound, *info);
    return movie.release();
}

void OS_Movie_Close(OSMovie* movie)
{
    delete movie;
}

bool OS_Movie_Read_Frame(OSMovie* movie, long frame, ZVBitmap* bitmap)
{
    HostVideoTrack const* track = movie->reader->Video();
    HostPixels layout;
    if (!track || !Layout_Of(bitmap, layout)) return false;
    if (bitmap->Width != track->width || bitmap->Height != track->height) return false;
    return movie->reader->Read_Frame(frame, bitmap->Pixels, static_cast<std::size_t>(bitmap->RowBytes),
                                     layout);
}

bool OS_Movie_Read_Sound(OSMovie* movie, void* samples, unsigned long first, unsigned long count)
{
    return movie->reader->Read_Sound(static_cast<std::int64_t>(first), count, samples);
}

OSMovieOutput* OS_Movie_Create(char const* spec, OSMovieSettings const* settings)
{
    char path[ZV_SPEC_SIZE];
    if (!spec || !OS_Native_Path(spec, path, sizeof path)) {
        SetError(ZV_ERR_CLIP);
        return nullptr;
    }
    auto output = std::make_unique<OSMovieOutput>();
    // A link stays a link, to the new movie.
    std::unique_ptr<char, decltype(&std::free)> const real(realpath(path, nullptr), std::free);
    output->target = real ? real.get() : path;
    if (!Is_Replaceable(output->target) || !Make_Work_File(*output)) return nullptr;
    HostVideoSettings const video = Video_Settings(*settings);
    HostSoundSettings const sound = Sound_Settings(*settings);
    HostMovieError error;
    output->writer = Create_Host_Movie(output->work.c_str(), settings->width ? &video : nullptr,
                                       settings->sound.Rate ? &sound : nullptr, settings->isHinted, error);
    if (output->writer) return output.release();
    output.reset();
    SetError(Error_Number(error));
    return nullptr;
}

bool OS_Movie_Add_Frame(OSMovieOutput* movie, ZVBitmap const* bitmap)
{
    HostPixels layout;
    if (!Layout_Of(bitmap, layout)) return Fail(ZV_ERR_CLIP);
    HostMovieError const error =
        movie->writer->Add_Frame(bitmap->Pixels, static_cast<std::size_t>(bitmap->RowBytes), layout);
    return error == HostMovieError::None || Fail(Error_Number(error));
}

bool OS_Movie_Add_Sound(OSMovieOutput* movie, void const* samples, unsigned long count)
{
    HostMovieError const error = movie->writer->Add_Sound(samples, count);
    return error == HostMovieError::None || Fail(Error_Number(error));
}

bool OS_Movie_Finish(OSMovieOutput* movie, uint32_t type, uint32_t creator)
{
    std::unique_ptr<OSMovieOutput> const output(movie);
    HostMovieError const error = output->writer->Finish();
    output->writer.reset();
    if (error != HostMovieError::None) return Fail(Error_Number(error));
    return Put_In_Place(*output, type, creator);
}

void OS_Movie_Discard(OSMovieOutput* movie)
{
    delete movie;
}

bool OS_Movie_Read_Still(OSMovieStill const& still, void* pixels)
{
    HostMovieError const error = Decode_Host_Still(
        {still.codec, still.bytes.data(), still.bytes.size(), static_cast<int>(still.width),
         static_cast<int>(still.height), static_cast<int>(still.depth)},
        pixels, static_cast<std::size_t>(still.width) * Host_Pixel_Bytes(HostPixels::RGBA8));
    return error == HostMovieError::None || Fail(Error_Number(error));
}

bool OS_Movie_Write_Still(OSMovieStillSettings const& settings, ZVBitmap const* bitmap,
                          std::vector<uint8_t>& bytes)
{
    HostPixels layout;
    if (!Layout_Of(bitmap, layout)) return Fail(ZV_ERR_CLIP);
    HostVideoSettings still;
    still.codec = settings.codec;
    still.width = static_cast<int>(bitmap->Width);
    still.height = static_cast<int>(bitmap->Height);
    still.hasAlpha = settings.hasAlpha;
    still.quality = static_cast<int>(settings.quality);
    HostMovieError const error =
        Encode_Host_Still(still, bitmap->Pixels, static_cast<std::size_t>(bitmap->RowBytes), layout, bytes);
    return error == HostMovieError::None || Fail(Error_Number(error));
}

static OSMovieCodec Told_Codec(HostCodecAbilities const& known)
{
    OSMovieCodec codec{known.code,  known.canWrite, known.alpha,     known.deep,     known.stream,
                       known.still, known.quality,  known.keyFrames, known.dataRate, {}};
    Copy_Name(codec.name, known.name);
    return codec;
}

OSMovieCodec OS_Movie_Find_Codec(uint32_t codec)
{
    return Told_Codec(Host_Codec_Abilities(codec));
}

std::vector<OSMovieCodec> OS_Movie_List_Codecs(bool isSound)
{
    std::vector<OSMovieCodec> codecs;
    for (HostCodecAbilities const& known : Host_Movie_Codecs(isSound))
        codecs.push_back(Told_Codec(known));
    return codecs;
}

void OS_Movie_Visit_Extensions(void (*visit)(char const* extension, void* data), void* data)
{
    for (std::string const& extension : Host_Movie_Extensions())
        visit(extension.c_str(), data);
}
