// What the commands share.
#include "Job.h"

#include "Series.h"

#include <array>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace {

std::sig_atomic_t volatile caughtSignal = 0;

extern "C" void On_Signal(int number)
{
    caughtSignal = number;
}

struct ErrorText {
    unsigned long number;
    char const* text;
};

constexpr ErrorText errorTexts[] = {
    {ZV_ERR_MEMORY, "not enough memory"},
    {ZV_ERR_DISK_FULL, "the disk is full"},
    {ZV_ERR_IO, "the file cannot be read or written"},
    {ZV_ERR_NOT_OPEN, "the file is not open"},
    {ZV_ERR_LOCKED, "the file is locked, or permission is denied"},
    {ZV_ERR_BUSY, "the file is busy"},
    {ZV_ERR_PROTECTED, "the file or its disk is write-protected"},
    {ZV_ERR_NOT_FOUND, "no such file or directory"},
    {ZV_ERR_NO_FORMAT, "not a file of a known format"},
    {ZV_ERR_CLIP_EXCEPTION, "the file could not be opened by its format"},
    {ZV_ERR_CLIP, "the file is damaged, or not what its name says"},
    {ZV_ERR_CLIP_OPEN, "the file is damaged, or not what its name says"},
};

}  // namespace

void Watch_For_Signals()
{
    struct sigaction action {};
    action.sa_handler = On_Signal;
    sigemptyset(&action.sa_mask);
    for (int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
    // A file that grows past a limit is a failed write like any other.
    action.sa_handler = SIG_IGN;
    sigaction(SIGXFSZ, &action, nullptr);
}

void Stop_If_Interrupted()
{
    if (caughtSignal != 0) throw Interrupted{};
}

void End_By_Signal()
{
    std::signal(caughtSignal, SIG_DFL);
    std::raise(caughtSignal);
    std::_Exit(1);
}

std::string Reason()
{
    if (char const* text = GetErrorStringZV()) return text;
    unsigned long const number = GetErrorZV();
    for (ErrorText const& entry : errorTexts)
        if (entry.number == number) return entry.text;
    return "failed with error " + std::to_string(number);
}

std::string Spec_Of(std::string const& path)
{
    std::error_code error;
    std::string const absolute = std::filesystem::absolute(path, error).string();
    FSSpec place{};
    std::array<char, ZV_SPEC_SIZE> spec{};
    if (path.empty()) throw JobError("''", "no such file or directory");
    if (error || absolute.size() >= sizeof place.path) throw JobError(path, "the name is too long");
    std::memcpy(place.path, absolute.c_str(), absolute.size() + 1);
    if (GetDOSPathZV(spec.data(), &place) != 0) throw JobError(path, "the name is too long");
    return spec.data();
}

bool Add_More_Formats()
{
    using Registration = long (*)(ZVScanDesc*);
    static constexpr Registration registrations[] = {Add_Library_Formats, Add_QuickTime_Format};
    static std::size_t done = 0;
    if (done == std::size(registrations)) return false;
    registrations[done++](nullptr);
    return true;
}

static void Choose_Alpha(ZVClip* clip, AlphaChoice const& alpha)
{
    if (!alpha.isGiven) return;
    double const matte[4] = {(alpha.matte >> 16 & 255) / 255.0, (alpha.matte >> 8 & 255) / 255.0,
                             (alpha.matte & 255) / 255.0, (alpha.matte >> 24) / 255.0};
    SetClipOptionsZV(clip, ZV_CLIP_ALPHA_TYPE, alpha.type, ZV_CLIP_ALPHA_PREMULTIPLIED, alpha.isPremultiplied,
                     ZV_CLIP_ALPHA_INVERT, alpha.isInverted, ZV_CLIP_MATTE_COLOR, matte, 0);
    clip->Flags |= ZV_CLIP_ALPHA_KNOWN;
}

static void Choose_Fields(ZVClip* clip, std::string const& path, SourceChoice const& choice)
{
    if (choice.fieldOrder) SetClipOptionsZV(clip, ZV_CLIP_FIELD_ORDER, *choice.fieldOrder, 0);
    if (choice.pullDown == PullDown::Keep) return;
    FieldOrder const before{clip->FieldOrder};
    if (GuessPullDownZV(clip)) return;
    if (choice.pullDown == PullDown::Remove) throw JobError(path, "no film frames were found in its fields");
    SetClipOptionsZV(clip, ZV_CLIP_PULLDOWN, 0, ZV_CLIP_FIELD_ORDER, before, 0);
}

/// The file that stands for a source: of a series the first one.
static std::string File_Of(std::string const& path)
{
    if (!Is_Series(path)) return path;
    std::vector<std::filesystem::path> const files = Series_Files(path);
    if (files.empty()) throw JobError(path, "there is no file of this series");
    return files.front().string();
}

/// The number of a layer by its name, or by its number where no layer has such a name.
static long Find_Layer(ZVClip const* clip, std::string const& path, std::string const& wanted)
{
    if (Node const* node = Find_Name(&clip->Layers, wanted.c_str())) return Entry_Pos(&clip->Layers, node);
    char* end = nullptr;
    long const number = std::strtol(wanted.c_str(), &end, 10);
    if (*end != 0 || !List_Entry(&clip->Layers, number - 1))
        throw JobError(path, "has no layer '" + wanted + "'; see 'zvclip info'");
    return number;
}

/// A clip of its own for one layer of another.
static ClipHandle Open_Layer(ZVClip* clip, std::string const& path, std::string const& layer)
{
    ClipHandle opened(OpenClipZV(clip->FileName, ZV_OPEN_SOURCE_CLIP, clip, ZV_OPEN_LAYER,
                                 Find_Layer(clip, path, layer), 0));
    if (!opened) throw JobError(path, Reason());
    return opened;
}

ClipHandle Open_Source(std::string const& path, SourceChoice const& choice)
{
    std::string const spec = Spec_Of(File_Of(path));
    while (!GetFormatModuleZV(spec.c_str()) && Add_More_Formats()) {
    }
    unsigned long const rateTag = choice.rate ? ZV_OPEN_FRAME_RATE : ZV_TAG_IGNORE;
    ClipHandle clip(OpenClipZV(spec.c_str(), ZV_OPEN_NO_SEQUENCE_DIALOG, 1, rateTag,
                               choice.rate ? &*choice.rate : nullptr, 0));
    if (!clip) throw JobError(path, Reason());
    if (!choice.layer.empty()) clip = Open_Layer(clip.get(), path, choice.layer);
    Choose_Alpha(clip.get(), choice.alpha);
    if (!BeginClipIOZV(clip.get(), 0)) throw JobError(path, Reason());
    Choose_Fields(clip.get(), path, choice);
    return clip;
}

BitmapHandle New_Bitmap(std::string const& path, Size size, ZVBitmapType type)
{
    BitmapHandle bitmap(AllocBitmapZV(size.width, size.height, type, nullptr));
    if (!bitmap) throw JobError(path, "the picture is too large");
    return bitmap;
}

void Read_Frame(ZVClip* clip, std::string const& path, ZVBitmap* bitmap, double seconds, double duration)
{
    ZVTimeValue const time{seconds, 1.0};
    ZVTimeValue const span{duration, 1.0};
    if (!GetFrameZV(clip, bitmap, &time, &span, 0))
        throw JobError(path, "the frame at " + std::to_string(seconds) + " s cannot be read");
}

double Length_Of(ZVClip const* clip)
{
    return clip->FrameRate > 0 ? static_cast<double>(clip->Frames) / clip->FrameRate : 0.0;
}
