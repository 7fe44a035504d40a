// zvclip frame: one frame of a clip as a PNG picture.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"
#include "Output.h"
#include "PngFile.h"

char const* const frameHelp =
    "Usage: zvclip frame IN --time T OUT.png [--layer NAME] [--overwrite]\n"
    "\n"
    "Writes one frame as a PNG picture, its alpha kept.\n"
    "\n"
    "  --time T     the time in seconds, or a frame number with an f (36f); 0 when not given\n"
    "  --layer NAME a layer of IN, by name or number; the flat picture when not given\n"
    "  --overwrite  replace OUT.png when it exists\n";

int Run_Frame(int argc, char** argv)
{
    Position time{0, false};
    bool mayOverwrite = false;
    SourceChoice source;
    option const table[] = {{"time", required_argument, nullptr, 't'},
                            {"layer", required_argument, nullptr, 'l'},
                            {"overwrite", no_argument, nullptr, 'o'},
                            {}};
    std::vector<std::string> const words =
        Read_Options(argc, argv, table, [&](int letter, std::string const& value) {
            if (letter == 't')
                time = Read_Position("--time", value, false);
            else if (letter == 'l')
                source.layer = value;
            else
                mayOverwrite = true;
        });
    if (words.size() != 2) throw UsageError("it takes the names IN and OUT.png");

    ClipHandle const clip = Open_Source(words[0], source);
    double const seconds = time.Seconds(clip->FrameRate);
    if (seconds >= Length_Of(clip.get())) throw JobError(words[0], "ends before the time asked for");
    ZVBitmapType const type = clip->BitDepth > 8 ? ZV_BITMAP_RGBA16 : ZV_BITMAP_RGBA8;
    BitmapHandle const bitmap = New_Bitmap(words[0], {clip->Width, clip->Height}, type);
    Read_Frame(clip.get(), words[0], bitmap.get(), seconds, 1.0 / clip->FrameRate);
    Stop_If_Interrupted();

    PendingFile file(words[1], mayOverwrite);
    Write_Png(file, *bitmap, clip->AlphaType != ZV_ALPHA_NONE);
    file.Commit();
    return 0;
}
