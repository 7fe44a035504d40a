// What the commands share.
#include "Job.h"

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

void Add_Movies()
{
    static bool isDone = false;
    if (!isDone) Add_QuickTime_Format(nullptr);
    isDone = true;
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

ClipHandle Open_Source(std::string const& path, AlphaChoice const& alpha)
{
    std::string const spec = Spec_Of(path);
    if (!GetFormatModuleZV(spec.c_str())) Add_Movies();
    ClipHandle clip(OpenClipZV(spec.c_str(), ZV_OPEN_NO_SEQUENCE_DIALOG, 1, 0));
    if (!clip) throw JobError(path, Reason());
    Choose_Alpha(clip.get(), alpha);
    if (!BeginClipIOZV(clip.get(), 0)) throw JobError(path, Reason());
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
