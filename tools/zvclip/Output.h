// The writing side of a job. A new clip is written under another name beside its target and takes the
// target's place only when it is whole, so neither a failure nor an interruption leaves anything half-written
// behind.
#pragma once

#include "Job.h"
#include "OptionReader.h"

/// A file, or the files of a series, that become real by Commit. Until then, and without it, what was there
/// is untouched.
class PendingFile {
public:
    /// Throws a JobError when the target exists and may not be replaced, or cannot be written there.
    PendingFile(std::string const& path, bool mayOverwrite);
    ~PendingFile();
    PendingFile(PendingFile const&) = delete;
    PendingFile& operator=(PendingFile const&) = delete;

    std::string const& Path() const { return path_; }
    std::string const& WorkPath() const { return workPath_; }  ///< native path to write to

    /// Puts the file in its place; a series replaces all of the one that was there.
    void Commit();

private:
    void Commit_Series();

    std::string path_;
    std::string workPath_;
    std::string workFolder_;  ///< of a series
    bool mayOverwrite_;
    bool isCommitted_ = false;
};

enum class SoundChoice { WherePossible, Must, None };

/// What a new clip is to be.
struct OutputSettings {
    std::string format;  ///< extension or display name; empty for that of the target's name
    Size size;
    double rate;
    long frames;
    std::optional<long> depth;  ///< bits of a channel; when not given the source's, as far as the format goes
    long sourceDepth = 8;
    bool hasAlpha = false;                  ///< the pictures have alpha worth keeping
    std::optional<ZVLONGCOLOR> background;  ///< mix the pictures over this colour as they are written
    double pixelAspect = 1.0;
    FieldOrder fieldOrder = ZV_FIELDS_NONE;
    bool insertsPullDown = false;  ///< spread the frames over the fields of a quarter more
    ZVAudioFormat sound{};         ///< of the source; Rate 0: it has none
    SoundChoice soundChoice = SoundChoice::WherePossible;
    bool isForStreaming = false;
    std::optional<uint32_t> codec;  ///< of movies, PICT and PICS
    std::optional<long> quality;    ///< of those and of JPEG pictures, 0 to 100
    uint32_t soundCodec = 0;        ///< of movies; 0 for samples as they are
    bool mayOverwrite = false;
};

/// The options of all commands that write clips, with letters of their own, and their part of the help.
std::vector<option> Output_Options();
extern char const* const outputHelp;

/// Takes one of them; false for another letter.
bool Take_Output_Option(OutputSettings& settings, int letter, std::string const& value);

/// A clip being written.
class Output {
public:
    Output(std::string const& path, OutputSettings const& settings);

    ZVBitmapType BitmapType() const { return GetBitmapTypeZV(clip_.get()); }
    bool HasSound() const { return clip_->Media & ZV_MEDIA_AUDIO; }

    /// Writes the next frame.
    void Add(ZVBitmap* bitmap);

    /// Appends sound. Null is accepted.
    void Add_Sound(ZVAudioBuffer const* sound);

    /// Closes the clip and puts it in the target's place.
    void Finish();

private:
    PendingFile file_;
    ClipHandle clip_;
    long written_ = 0;
    long frames_;
};
