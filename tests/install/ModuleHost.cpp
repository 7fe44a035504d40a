// An application that tells when the module in its Plugins folder is loaded while it reads a picture.
#include <ZVLibInternal.h>

#include <cstdio>
#include <fstream>
#include <string>

static bool Is_Mapped()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.ends_with("graymap.ifm")) return true;
    return false;
}

static void Tell(char const* what)
{
    std::printf("%s: %s\n", what, Is_Mapped() ? "loaded" : "not loaded");
}

/// Reads the first frame and tells its first pixel.
static void Read_Picture(char const* spec)
{
    ZVClip* clip = OpenClipZV(spec, ZV_OPEN_SINGLE_FRAME, 1, 0);
    if (!clip) return;
    ZVBitmap* bitmap = AllocBitmapZV(clip->Width, clip->Height, ZV_BITMAP_RGBA8, nullptr);
    ZVTimeValue const start{0, 1};
    BeginClipIOZV(clip, nullptr);
    if (GetFrameZV(clip, bitmap, &start, nullptr, nullptr))
        std::printf("%ld x %ld, %d\n", clip->Width, clip->Height, bitmap->Pixels[0]);
    EndClipIOZV(clip, nullptr);
    FreeBitmapZV(bitmap);
    FreeClipZV(clip);
}

int main(int, char** arguments)
{
    if (!InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0)) return 1;
    InitAllFormatModulesZV(nullptr);
    ZVFormatDesc* desc = GetFormatModuleZV(arguments[1]);
    std::printf("%s\n", desc ? desc->Node.name : "no module");
    Tell("claimed");
    for (int i = 0; desc && i < 2; ++i) {
        Read_Picture(arguments[1]);
        Tell("read");
        Unload_IFM(desc);
        Tell("let go");
    }
    CleanUpZV();
    Tell("end");
}
