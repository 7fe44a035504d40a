// Opens a clip, reads its frames by time and tells how bright each is.
#include <ZVLib.h>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2 || !InitZV(nullptr, nullptr, nullptr, nullptr, ZV_INIT_NO_GUI, 1, 0)) return 2;
    InitFormatModulesZV(nullptr);

    FSSpec place{};
    std::snprintf(place.path, sizeof place.path, "%s", argv[1]);  // an absolute path
    char spec[ZV_SPEC_SIZE] = "";
    GetDOSPathZV(spec, &place);
    ZVClip* clip = OpenClipZV(spec, ZV_OPEN_NO_SEQUENCE_DIALOG, 1, 0);
    if (!clip) {
        std::fprintf(stderr, "%s: error %lu\n", argv[1], GetErrorZV());
        CleanUpZV();
        return 1;
    }
    ZVBitmap* bitmap = AllocBitmapZV(clip->Width, clip->Height, ZV_BITMAP_RGBAFLOAT, nullptr);
    BeginClipIOZV(clip, 0);
    for (long frame = 0; frame < clip->Frames; ++frame) {
        ZVTimeValue const time{static_cast<double>(frame), clip->FrameRate};
        GetFrameZV(clip, bitmap, &time, nullptr, 0);
        double sum = 0;
        auto* pixel = static_cast<ZVBufferRGBAFloat*>(bitmap)->GetIterator(0, 0);
        for (long i = 0; i < clip->Width * clip->Height; ++i, ++pixel)
            sum += (pixel->Rf() + pixel->Gf() + pixel->Bf()) / 3 * pixel->Af();
        std::printf("%ld: %.4f\n", frame, sum / static_cast<double>(clip->Width * clip->Height));
    }
    EndClipIOZV(clip, 0);
    FreeBitmapZV(bitmap);
    FreeClipZV(clip);
    CleanUpZV();
}
