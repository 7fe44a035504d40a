// The writing side of a job.
#include "Output.h"

#include "Series.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <strings.h>
#include <unistd.h>

namespace fs = std::filesystem;

static fs::path Folder_Of(fs::path const& target)
{
    return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

/// Throws a JobError when there is something at the place that may not be replaced.
static void Check_Target(std::string const& path, bool mayOverwrite)
{
    std::error_code error;
    fs::file_status const status = fs::status(path, error);
    if (fs::is_directory(status)) throw JobError(path, "is a directory");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw JobError(path, "is not a plain file");
    if (fs::exists(status) && !mayOverwrite) throw JobError(path, "exists already; --overwrite replaces it");
    if (!fs::is_directory(Folder_Of(path), error)) throw JobError(path, "no such file or directory");
}

PendingFile::PendingFile(std::string const& path, bool mayOverwrite)
    : path_(path), mayOverwrite_(mayOverwrite)
{
    fs::path const target(path);
    std::string const hidden = "." + std::to_string(getpid()) + "-";
    if (!Is_Series(path)) {
        Check_Target(path, mayOverwrite);
        workPath_ = (Folder_Of(target) / (hidden + target.filename().string())).lexically_normal().string();
        return;
    }
    if (std::vector<fs::path> const there = Series_Files(target); there.empty())
        Check_Target(path, mayOverwrite);
    else
        Check_Target(there.front().string(), mayOverwrite);
    // A name without a number, so that the folder belongs to no series.
    fs::path const folder = Folder_Of(target) / (hidden + "series");
    std::error_code error;
    if (!fs::create_directory(folder, error) && error) throw JobError(path, error.message());
    workFolder_ = folder.lexically_normal().string();
    workPath_ = (folder / target.filename()).lexically_normal().string();
}

PendingFile::~PendingFile()
{
    std::error_code error;
    if (!workFolder_.empty())
        fs::remove_all(workFolder_, error);
    else if (!isCommitted_)
        fs::remove(workPath_, error);
}

void PendingFile::Commit()
{
    if (!workFolder_.empty()) return Commit_Series();
    std::error_code error;
    if (!mayOverwrite_ && fs::exists(path_, error))
        throw JobError(path_, "was made by somebody else meanwhile; --overwrite replaces it");
    fs::rename(workPath_, path_, error);
    if (error) throw JobError(path_, error.message());
    isCommitted_ = true;
}

void PendingFile::Commit_Series()
{
    std::vector<fs::path> old = Series_Files(path_);
    if (!mayOverwrite_ && !old.empty())
        throw JobError(old.front().string(), "was made by somebody else meanwhile; --overwrite replaces it");
    std::error_code error;
    for (fs::path const& file : Series_Files(workPath_)) {
        fs::path const target = Folder_Of(path_) / file.filename();
        fs::rename(file, target, error);
        if (error) throw JobError(target.string(), error.message());
        std::erase(old, target);
    }
    for (fs::path const& file : old)
        fs::remove(file, error);
}

/// The module with the display name or an extension that the user wrote; null without one.
static ZVFormatDesc* Find_Format(std::string const& wanted)
{
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* desc = reinterpret_cast<ZVFormatDesc*>(node);
        if (strcasecmp(node->name, wanted.c_str()) == 0) return desc;
        for (long i = 0; i < desc->ReadExtensionCount; ++i) {
            std::string extension;
            for (int shift = 24; shift >= 0 && (desc->ReadExtensions[i] >> shift & 255) != 0; shift -= 8)
                extension += static_cast<char>(desc->ReadExtensions[i] >> shift & 255);
            if (strcasecmp(extension.c_str(), wanted.c_str()) == 0) return desc;
        }
    }
    return nullptr;
}

/// The format of the settings, or of the target's name. Throws a JobError.
static ZVFormatDesc* Choose_Format(std::string const& path, OutputSettings const& settings)
{
    std::string wanted = settings.format;
    if (settings.isForStreaming) wanted = GetStringZV(150);
    if (wanted.empty()) {
        std::string const extension = fs::path(path).extension().string();
        wanted = extension.empty() ? "" : extension.substr(1);
    }
    ZVFormatDesc* desc = Find_Format(wanted);
    while (!desc && Add_More_Formats())
        desc = Find_Format(wanted);
    if (!desc && !settings.format.empty())
        throw JobError(path, "there is no format '" + settings.format + "'");
    if (!desc || desc->ReadExtensionCount == 0)
        throw JobError(path, "no format belongs to this name; name one by --format");
    return desc;
}

/// Throws a JobError when files of the format cannot be what is wanted.
static void Check_Format(std::string const& path, ZVFormatDesc* desc, OutputSettings const& settings)
{
    std::string const files = std::string(desc->Node.name) + " files ";
    long const properties = GetExportPropertiesZV(desc);
    if (!(properties & ZV_FORMAT_WRITE)) throw JobError(path, files + "can be read but not written");
    bool const holdsMany = properties & ZV_FORMAT_MULTIFRAME;
    if (holdsMany && Is_Series(path)) throw JobError(path, files + "hold all frames; leave the number out");
    if (!holdsMany && !Is_Series(path) && settings.frames > 1)
        throw JobError(path, files + "hold one picture each; write a series, such as out[####].vpb");
    if (settings.size.width > desc->MaxWidth || settings.size.height > desc->MaxHeight)
        throw JobError(path, files + "do not hold pictures of this size");
    if (settings.soundChoice == SoundChoice::Must && !(properties & ZV_FORMAT_AUDIO_WRITE))
        throw JobError(path, files + "hold no sound");
    if (settings.soundChoice == SoundChoice::Must && settings.sound.Rate == 0)
        throw JobError(path, "there is no sound to write");
}

constexpr uint32_t DefaultCodec = ZV_FourCC("rle ");
constexpr uint32_t DefaultStreamCodec = ZV_FourCC("avc1");
constexpr uint32_t PlainCodec = ZV_FourCC("raw ");
constexpr long NormalQuality = 50;

/// The same as Reason, where a codec's code may be all that the library tells.
static std::string Writing_Reason()
{
    bool const isCode = GetErrorZV() == ZV_ERR_MOVIE_FRAME && GetErrorStringZV();
    return isCode ? "cannot be written with the codec '" + Reason() + "'" : Reason();
}

/// Chooses the codecs of a movie. Throws a JobError.
static void Set_Movie_Options(ZVClip* clip, std::string const& path, OutputSettings const& settings)
{
    ZVMovieOptions options;
    options.Codec = settings.codec.value_or(settings.isForStreaming ? DefaultStreamCodec : DefaultCodec);
    if (settings.quality) options.Quality = *settings.quality * 1024 / 100;
    options.SoundCodec = settings.soundCodec;
    if (SetMovieOptionsZV(clip, &options)) return;
    if (GetErrorZV() == ZV_ERR_MOVIE_FRAME) throw JobError(path, Writing_Reason());
    throw JobError(path,
                   "--codec, --quality and --audio-codec are for movies, --codec and --quality for PICT "
                   "and PICS too, --quality for JPEG pictures");
}

/// Replaces the options of a clip whose format has options of this kind. False for other clips.
template <typename Options> static bool Replace_Options(ZVClip* clip, Options const& options)
{
    ZVFormatParams* const params = clip->VideoParams;
    if (!params || params->Size != sizeof options) return false;
    std::memcpy(params->Data, &options, sizeof options);
    return true;
}

/// Sets codec and quality of pictures. False for clips of other formats.
static bool Set_Picture_Options(ZVClip* clip, OutputSettings const& settings)
{
    ZVMovieOptions movie;
    if (settings.soundCodec || GetMovieOptionsZV(clip, &movie)) return false;
    long const quality = settings.quality.value_or(NormalQuality);
    if (!settings.codec && Replace_Options(clip, ZVPictureOptions{0, static_cast<int32_t>(quality)}))
        return true;
    return Replace_Options(clip, ZVPICTOptions{settings.codec.value_or(PlainCodec), 0, 0,
                                               static_cast<uint32_t>(quality * 1023 / 100)});
}

/// Takes the settings that go to the format's options. Throws a JobError.
static void Set_Options(ZVClip* clip, std::string const& path, OutputSettings const& settings)
{
    if (!settings.codec && !settings.quality && !settings.soundCodec) return;
    if (!Set_Picture_Options(clip, settings)) Set_Movie_Options(clip, path, settings);
}

/// Whether the pictures of the clip keep their alpha.
static bool Keeps_Alpha(ZVClip* clip, OutputSettings const& settings)
{
    if (!settings.hasAlpha || settings.background || !(GetExportPropertiesZV(clip) & ZV_FORMAT_ALPHA))
        return false;
    ZVMovieOptions movie;
    ZVMovieCodec codec;
    std::optional<uint32_t> const code = GetMovieOptionsZV(clip, &movie) ? movie.Codec : settings.codec;
    return !code || !FindMovieCodecZV(*code, &codec) || codec.HasAlpha;
}

static void Describe_Output(ZVClip* clip, OutputSettings const& settings)
{
    clip->Width = clip->FullWidth = settings.size.width;
    clip->Height = clip->FullHeight = settings.size.height;
    clip->BitDepth = settings.depth.value_or(settings.sourceDepth);
    clip->Frames = settings.frames;
    clip->FrameRate = clip->FileFrameRate = clip->BaseFrameRate = settings.rate;
    clip->PixelAspect = settings.pixelAspect;
    clip->FieldOrder = settings.fieldOrder;
    clip->Media = ZV_MEDIA_VIDEO;
    if (settings.sound.Rate > 0 && settings.soundChoice != SoundChoice::None &&
        (GetExportPropertiesZV(clip) & ZV_FORMAT_AUDIO_WRITE)) {
        clip->Media |= ZV_MEDIA_AUDIO;
        clip->AudioFormat = settings.sound;
    }
    if (settings.insertsPullDown) {
        clip->PullDown = 1;
        clip->FileFrameRate = settings.rate * 1.25;
        if (clip->FieldOrder == ZV_FIELDS_NONE) clip->FieldOrder = ZV_FIELDS_LOWER_FIRST;
    }
    clip->AlphaType = Keeps_Alpha(clip, settings) ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
    // Mixing over a colour is what writing colours premultiplied against it and dropping the alpha comes to.
    clip->AlphaPremultiplied = settings.background.has_value();
    if (settings.background) {
        clip->MatteRed = (*settings.background >> 16 & 255) / 255.0;
        clip->MatteGreen = (*settings.background >> 8 & 255) / 255.0;
        clip->MatteBlue = (*settings.background & 255) / 255.0;
    }
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

Output::Output(std::string const& path, OutputSettings const& settings)
    : file_(path, settings.mayOverwrite), clip_(NewClipZV()), frames_(settings.frames)
{
    if (!clip_) throw JobError(path, Reason());
    ZVFormatDesc* const format = Choose_Format(path, settings);
    Check_Format(path, format, settings);
    ChangeClipFormatParamsZV(clip_.get(), format, true);
    Set_Options(clip_.get(), path, settings);
    clip_->FileName = MakeFileSpecZV(Spec_Of(file_.WorkPath()).c_str());
    if (Is_Series(path)) clip_->Flags |= ZV_CLIP_NUMBERED;
    Describe_Output(clip_.get(), settings);
    if (!(GetExportPropertiesZV(clip_.get()) & ZV_FORMAT_WRITE))
        throw JobError(path, "files of this kind can be read but not written");
    if (!CreateClipZV(clip_.get(), 0) || !BeginClipIOZV(clip_.get(), 0)) throw JobError(path, Reason());
    if (settings.depth && clip_->BitDepth != *settings.depth)
        throw JobError(path, std::string(clip_->Format->Node.name) + " files hold " +
                                 std::to_string(clip_->BitDepth) +
                                 " bits a channel, not what --depth asks for");
}

void Output::Add(ZVBitmap* bitmap)
{
    ZVTimeValue const time{static_cast<double>(written_), clip_->FrameRate};
    if (!AddFrameZV(clip_.get(), bitmap, &time, nullptr, ZV_ADD_LAST_FRAME, frames_ - 1, 0))
        throw JobError(file_.Path(), Writing_Reason());
    ++written_;
}

void Output::Add_Sound(ZVAudioBuffer const* sound)
{
    if (sound && !AddAudioZV(clip_.get(), sound)) throw JobError(file_.Path(), Reason());
}

void Output::Finish()
{
    SetError(ZV_ERR_NONE);
    EndClipIOZV(clip_.get(), 0);
    CloseClipZV(clip_.get());
    if (GetErrorZV() != ZV_ERR_NONE) throw JobError(file_.Path(), Reason());
    file_.Commit();
}
