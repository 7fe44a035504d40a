// The writing side of a job. A new clip is written under another name beside its target and takes the
// target's place only when it is whole, so neither a failure nor an interruption leaves anything half-written
// behind.
#pragma once

#include "Job.h"

/// A file that becomes real by Commit. Until then, and without it, the target is untouched.
class PendingFile {
public:
    /// Throws a JobError when the target exists and may not be replaced, or cannot be written there.
    PendingFile(std::string const& path, bool mayOverwrite);
    ~PendingFile();
    PendingFile(PendingFile const&) = delete;
    PendingFile& operator=(PendingFile const&) = delete;

    std::string const& Path() const { return path_; }
    std::string const& WorkPath() const { return workPath_; }  ///< native path to write to
    void Commit();

private:
    std::string path_;
    std::string workPath_;
    bool mayOverwrite_;
    bool isCommitted_ = false;
};

/// What a new clip is to be.
struct OutputSettings {
    std::string format;  ///< extension or display name; empty for that of the target's name
    Size size;
    double rate;
    long frames;
    std::optional<long>
        depth;  ///< bits of a channel; the source's, as far as the format holds them, when not given
    long sourceDepth = 8;
    bool hasAlpha = false;                  ///< the pictures have alpha worth keeping
    std::optional<ZVLONGCOLOR> background;  ///< mix the pictures over this colour as they are written
    double pixelAspect = 1.0;
    bool mayOverwrite = false;
};

/// A clip being written.
class Output {
public:
    Output(std::string const& path, OutputSettings const& settings);

    ZVBitmapType BitmapType() const { return GetBitmapTypeZV(clip_.get()); }

    /// Writes the next frame.
    void Add(ZVBitmap* bitmap);

    /// Closes the clip and puts it in the target's place.
    void Finish();

private:
    PendingFile file_;
    ClipHandle clip_;
    long written_ = 0;
};
