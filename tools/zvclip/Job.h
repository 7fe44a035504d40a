// What the commands share: clips and bitmaps that free themselves, failures that name the file and the
// reason, and the reading side of a job.
#pragma once

#include "Arguments.h"

#include <ZVLib.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

/// A job that failed: "file: reason". The program ends with status 1.
struct JobError : std::runtime_error {
    JobError(std::string const& file, std::string const& reason) : std::runtime_error(file + ": " + reason) {}
};

/// The user asked the program to stop.
struct Interrupted {};

/// Installs the handlers of the signals that ask a program to stop.
void Watch_For_Signals();

/// Throws Interrupted when one of them came.
void Stop_If_Interrupted();

/// Ends the program the way the signal would have.
[[noreturn]] void End_By_Signal();

struct ClipDeleter {
    void operator()(ZVClip* clip) const { FreeClipZV(clip); }
};
struct BitmapDeleter {
    void operator()(ZVBitmap* bitmap) const { FreeBitmapZV(bitmap); }
    void operator()(ZVNativeBitmap* bitmap) const { FreeBitmapZV(bitmap); }
};
using ClipHandle = std::unique_ptr<ZVClip, ClipDeleter>;
using BitmapHandle = std::unique_ptr<ZVBitmap, BitmapDeleter>;
using NativeBitmapHandle = std::unique_ptr<ZVNativeBitmap, BitmapDeleter>;

/// What the present error number means to a user.
std::string Reason();

/// The spec of a native path, relative ones from the working directory. Throws a JobError.
std::string Spec_Of(std::string const& path);

/// Registers the next formats that are not there yet: those of the modules that are installed with the
/// library, then movies. Programs do so only for files that no other format has, since what stands behind
/// them takes time to load.
/// @return  false when all are there
bool Add_More_Formats();

/// How the alpha of a source is to be read, in place of the guess.
struct AlphaChoice {
    bool isGiven = false;
    ZVAlphaType type = ZV_ALPHA_CHANNEL;
    bool isPremultiplied = false;
    bool isInverted = false;
    ZVLONGCOLOR matte = 0xFF000000;
};

/// What is done about film frames that were spread over the fields of video.
enum class PullDown {
    Keep,
    Remove,  ///< give the film frames back; an error where there are none
    Guess    ///< the same, where there are some
};

/// How a source is to be read, in place of what it says itself.
struct SourceChoice {
    AlphaChoice alpha{};
    std::optional<double> rate{};
    std::optional<FieldOrder> fieldOrder{};
    PullDown pullDown = PullDown::Keep;
    std::string layer{};  ///< name or number from 1; empty for the flat picture
};

/// Opens a source, a file or a series, and begins reading it. Throws a JobError.
ClipHandle Open_Source(std::string const& path, SourceChoice const& choice = {});

/// A bitmap of the given type. Throws a JobError that names `path`.
BitmapHandle New_Bitmap(std::string const& path, Size size, ZVBitmapType type);

/// Reads the frame at a time, scaled to the bitmap, or throws a JobError.
void Read_Frame(ZVClip* clip, std::string const& path, ZVBitmap* bitmap, double seconds, double duration);

/// Length of a clip in seconds.
double Length_Of(ZVClip const* clip);
