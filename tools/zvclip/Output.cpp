// The writing side of a job.
#include "Output.h"

#include <cstdlib>
#include <filesystem>
#include <strings.h>
#include <unistd.h>

namespace fs = std::filesystem;

PendingFile::PendingFile(std::string const& path, bool mayOverwrite)
    : path_(path), mayOverwrite_(mayOverwrite)
{
    std::error_code error;
    fs::path const target(path);
    fs::file_status const status = fs::status(target, error);
    if (fs::is_directory(status)) throw JobError(path, "is a directory");
    if (fs::exists(status) && !fs::is_regular_file(status)) throw JobError(path, "is not a plain file");
    if (fs::exists(status) && !mayOverwrite) throw JobError(path, "exists already; --overwrite replaces it");
    fs::path const folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, error)) throw JobError(path, "no such file or directory");
    workPath_ = (folder / ("." + std::to_string(getpid()) + "-" + target.filename().string()))
                    .lexically_normal()
                    .string();
}

PendingFile::~PendingFile()
{
    std::error_code error;
    if (!isCommitted_) fs::remove(workPath_, error);
}

void PendingFile::Commit()
{
    std::error_code error;
    if (!mayOverwrite_ && fs::exists(path_, error))
        throw JobError(path_, "was made by somebody else meanwhile; --overwrite replaces it");
    fs::rename(workPath_, path_, error);
    if (error) throw JobError(path_, error.message());
    isCommitted_ = true;
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

static ZVFormatDesc* Choose_Format(std::string const& path, std::string const& format)
{
    std::string const extension = fs::path(path).extension().string();
    std::string const wanted = !format.empty() ? format : extension.empty() ? "" : extension.substr(1);
    ZVFormatDesc* desc = Find_Format(wanted);
    if (!desc) {
        Add_Movies();
        desc = Find_Format(wanted);
    }
    if (!desc && !format.empty()) throw JobError(path, "there is no format '" + format + "'");
    if (!desc || desc->ReadExtensionCount == 0)
        throw JobError(path, "no format belongs to this name; name one by --format");
    if (!(GetExportPropertiesZV(desc) & ZV_FORMAT_WRITE))
        throw JobError(path, std::string(desc->Node.name) + " files can be read but not written");
    return desc;
}

static void Describe_Output(ZVClip* clip, OutputSettings const& settings)
{
    clip->Width = clip->FullWidth = settings.size.width;
    clip->Height = clip->FullHeight = settings.size.height;
    clip->BitDepth = settings.depth.value_or(settings.sourceDepth);
    clip->Frames = settings.frames;
    clip->FrameRate = clip->FileFrameRate = clip->BaseFrameRate = settings.rate;
    clip->PixelAspect = settings.pixelAspect;
    clip->Media = ZV_MEDIA_VIDEO;
    bool const keepsAlpha =
        settings.hasAlpha && !settings.background && (GetExportPropertiesZV(clip) & ZV_FORMAT_ALPHA);
    clip->AlphaType = keepsAlpha ? ZV_ALPHA_CHANNEL : ZV_ALPHA_NONE;
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
    : file_(path, settings.mayOverwrite), clip_(NewClipZV())
{
    if (!clip_) throw JobError(path, Reason());
    ChangeClipFormatParamsZV(clip_.get(), Choose_Format(path, settings.format), true);
    clip_->FileName = MakeFileSpecZV(Spec_Of(file_.WorkPath()).c_str());
    Describe_Output(clip_.get(), settings);
    if (clip_->Width > clip_->Format->MaxWidth || clip_->Height > clip_->Format->MaxHeight)
        throw JobError(path,
                       std::string(clip_->Format->Node.name) + " files do not hold pictures of this size");
    if (!CreateClipZV(clip_.get(), 0) || !BeginClipIOZV(clip_.get(), 0)) throw JobError(path, Reason());
    if (settings.depth && clip_->BitDepth != *settings.depth)
        throw JobError(path, std::string(clip_->Format->Node.name) + " files hold " +
                                 std::to_string(clip_->BitDepth) +
                                 " bits a channel, not what --depth asks for");
}

void Output::Add(ZVBitmap* bitmap)
{
    ZVTimeValue const time{static_cast<double>(written_), clip_->FrameRate};
    if (!AddFrameZV(clip_.get(), bitmap, &time, nullptr, 0)) throw JobError(file_.Path(), Reason());
    ++written_;
}

void Output::Finish()
{
    SetError(ZV_ERR_NONE);
    EndClipIOZV(clip_.get(), 0);
    CloseClipZV(clip_.get());
    if (GetErrorZV() != ZV_ERR_NONE) throw JobError(file_.Path(), Reason());
    file_.Commit();
}
