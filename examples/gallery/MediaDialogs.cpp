// The dialogs of the media half: a numbered series that is opened, and settings for movies and pictures. Each
// button opens one, and the line below tells what came of it.
#include "Gallery.h"

#include <cstdio>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr unsigned short first = ZV_Position(ZV_POS_DEFAULT, ZV_POS_DEFAULT);
constexpr unsigned short below = ZV_Position(ZV_POS_ALIGN_START, ZV_POS_AFTER);

constexpr long SeriesFrames = 12;
constexpr long SeriesWidth = 720, SeriesHeight = 576;

using Clip = std::unique_ptr<ZVClip, void (*)(ZVClip*)>;

/// The format of that file type, the first one or the last one; null when it is not there.
ZVFormatDesc* Find_Format(uint32_t type, bool isLast = false)
{
    static bool hasMovies = false;
    if (List_Empty(&ZVEnv->formats)) InitFormatModulesZV(nullptr);
    if (!std::exchange(hasMovies, true)) Add_QuickTime_Format(nullptr);
    ZVFormatDesc* found = nullptr;
    for (Node* node = List_First(&ZVEnv->formats); node; node = List_Next(node)) {
        auto* const format = reinterpret_cast<ZVFormatDesc*>(node);
        if (format->FileType == type && (isLast || !found)) found = format;
    }
    return found;
}

void Tell_Result(std::string const& text)
{
    SetCurrentPaletteZV(MediaPalette);
    Show_Result(MediaResult, text.c_str());
}

/// A clip as it is described before it is written.
Clip New_Clip(ZVFormatDesc* format)
{
    Clip clip(NewClipZV(), FreeClipZV);
    clip->Format = format;
    clip->Width = SeriesWidth;
    clip->Height = SeriesHeight;
    clip->BitDepth = 8;
    clip->Media = ZV_MEDIA_VIDEO | ZV_MEDIA_AUDIO;
    clip->FrameRate = clip->FileFrameRate = 25;
    return clip;
}

/// Writes a series of pictures, each in another shade; the spec of one of them.
std::string Write_Series()
{
    std::string const stem = std::string(ZVEnv->userDataDir) + "gallery";
    std::unique_ptr<ZVBitmap, void (*)(ZVBitmap*)> const bitmap(
        AllocBitmapZV(SeriesWidth, SeriesHeight, ZV_BITMAP_RGBA8, "series"),
        [](ZVBitmap* made) { FreeBitmapZV(made); });
    Clip const clip = New_Clip(Find_Format(ZV_FourCC("PICT")));
    for (long i = 1; bitmap && i <= SeriesFrames; ++i) {
        FillBitmapZV(bitmap.get(), 0xFF000000 + 0x141008 * static_cast<unsigned long>(i));
        FreeFileSpecZV(clip->FileName);
        clip->FileName = CopyFileSpecZV((stem + std::to_string(i) + ".pict").c_str());
        clip->Format->AddFrame(clip.get(), bitmap.get(), 0, nullptr);
    }
    return stem + "1.pict";
}

void Delete_Series(std::string const& spec)
{
    std::string const stem = spec.substr(0, spec.size() - 6);
    for (long i = 1; i <= SeriesFrames; ++i)
        DeleteFileZV((stem + std::to_string(i) + ".pict").c_str());
}

void Ask_For_Options(uint32_t type, bool isLast, void (*ask)(ZVClip*))
{
    ZVFormatDesc* const format = Find_Format(type, isLast);
    if (!format) return Tell_Result("The format is not there.");
    Clip const clip = New_Clip(format);
    ask(clip.get());
    ZVMovieOptions options;
    std::string text = clip->VideoParams || clip->AudioParams ? "Settings chosen" : "Nothing chosen";
    if (clip->VideoParams && GetMovieOptionsZV(clip.get(), &options)) {
        ZVMovieCodec codec{};
        FindMovieCodecZV(options.Codec, &codec);
        char settings[500];
        std::snprintf(settings, sizeof settings, ": %s, quality %ld, key frame %ld, %ld bytes, %.2f fps",
                      codec.Name, options.Quality, options.KeyFrameInterval, options.BytesPerSecond,
                      clip->FrameRate);
        text += settings;
    }
    Tell_Result(text);
}

void Press(unsigned long id)
{
    switch (id) {
    case OpenSeries: {
        std::string const spec = Write_Series();
        Open_Media(spec.c_str());
        Delete_Series(spec);
        break;
    }
    case VideoSettings: Ask_For_Options(ZV_FourCC("MooV"), false, ClipOptionsZV); break;
    case SoundSettings: Ask_For_Options(ZV_FourCC("MooV"), false, ClipAudioOptionsZV); break;
    case StreamSettings: Ask_For_Options(ZV_FourCC("MooV"), true, ClipOptionsZV); break;
    case PictureSettings: Ask_For_Options(ZV_FourCC("PICT"), false, ClipOptionsZV); break;
    default: break;
    }
}

void On_Media(ZVEvent* event)
{
    Tell(event);
    if (event->type == ZV_EVENT_GADGET) Press(Event_Item(event)->node.id);
}

}  // namespace

void Open_Media(char const* spec)
{
    Find_Format(0);
    Clip const clip(OpenClipZV(spec, nullptr), FreeClipZV);
    char text[96];
    if (!clip)
        std::snprintf(text, sizeof text, "Nothing opened: error %lu", GetErrorZV());
    else
        std::snprintf(text, sizeof text, "%ld frames of %ld x %ld at %.2f", clip->Frames, clip->Width,
                      clip->Height, clip->FrameRate);
    Tell_Result(text);
}

void Show_Media_Palette()
{
    if (FindPaletteZV(MediaPalette)) return ActivatePaletteZV(MediaPalette, 1);
    InitPaletteZV();
    InitGroupZV();
    AddGadgetZV(OpenSeries, first, 0, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, "Series...", 0, 0);
    AddGadgetZV(VideoSettings, below, -1, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, "Video...", 0, 0);
    AddGadgetZV(SoundSettings, below, -1, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, "Sound...", 0, 0);
    AddGadgetZV(StreamSettings, below, -1, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, "Stream...", 0, 0);
    AddGadgetZV(PictureSettings, below, -1, ZV_GAD_BUTTON, ZV_SIZE_XLARGE, "Picture...", 0, 0);
    AddGadgetZV(MediaResult, below, -1, ZV_GAD_EDITOR, ZV_SIZE_CUSTOM, nullptr, ZV_ITEM_WIDTH,
                GetGadgetWidthZV(ZV_GAD_BUTTON, ZV_SIZE_XLARGE), ZV_ITEM_HEIGHT, 60, ZV_ITEM_MAX_CHARS, 500,
                0);
    ItemEnabledZV(MediaResult, 0);
    EndGroupZV(1, first, 0, "", 0, 0);
    EndPaletteZV(MediaPalette, "Media", ZV_PAL_CALLBACK, On_Media, 0);
    DisplayPaletteZV(ZV_PAL_KIND, ZV_KIND_FIXED, 0);
}
