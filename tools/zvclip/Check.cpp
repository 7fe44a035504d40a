// zvclip check: reads all of a file and tells the first thing that is not whole.
#include "Commands.h"
#include "OptionReader.h"
#include "Progress.h"
#include "Sound.h"

#include <algorithm>
#include <cstdio>

char const* const checkHelp = "Usage: zvclip check FILE...\n"
                              "\n"
                              "Reads every frame, and the sound, of each file. Names the first that cannot "
                              "be read; the exit status is\n"
                              "then 1.\n";

namespace {

void Check_Frames(ZVClip* clip, std::string const& path)
{
    BitmapHandle const bitmap = New_Bitmap(path, {clip->Width, clip->Height}, GetBitmapTypeZV(clip));
    Progress progress(clip->Frames);
    for (long frame = 0; frame < clip->Frames; ++frame) {
        ZVTimeValue const time{static_cast<double>(frame), clip->FrameRate};
        if (!GetFrameZV(clip, bitmap.get(), &time, nullptr, 0))
            throw JobError(path, "frame " + std::to_string(frame) + " cannot be read");
        Stop_If_Interrupted();
        progress.Step();
    }
}

void Check_Sound(ZVClip* clip, std::string const& path)
{
    SoundReader reader(clip, path, 0);
    auto const second = static_cast<long long>(reader.Format().Rate);
    for (long long left = reader.Length(); left > 0; left -= second) {
        reader.Read(std::min(left, second));
        Stop_If_Interrupted();
    }
}

void Check(std::string const& path)
{
    ClipHandle const clip = Open_Source(path);
    bool const hasPictures = clip->Media & ZV_MEDIA_VIDEO;
    bool const hasSound = Has_Sound(clip.get());
    if (hasPictures) Check_Frames(clip.get(), path);
    if (hasSound) Check_Sound(clip.get(), path);
    std::printf("%s: ", path.c_str());
    if (hasPictures) std::printf("%ld frames", clip->Frames);
    std::printf("%s%s can be read\n", hasPictures && hasSound ? " and " : "", hasSound ? "the sound" : "");
}

}  // namespace

int Run_Check(int argc, char** argv)
{
    option const table[] = {{}};
    std::vector<std::string> const files = Read_Options(argc, argv, table, [](int, std::string const&) {});
    if (files.empty()) throw UsageError("which file?");
    int status = 0;
    for (std::string const& file : files) {
        try {
            Check(file);
        } catch (JobError const& error) {
            std::fprintf(stderr, "zvclip: %s\n", error.what());
            status = 1;
        }
    }
    return status;
}
