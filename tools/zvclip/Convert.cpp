// zvclip convert: any readable clip to any writable format.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"
#include "Output.h"
#include "Progress.h"
#include "Sound.h"

#include <cmath>

char const* const convertHelp =
    "Usage: zvclip convert IN OUT [OPTIONS]\n"
    "\n"
    "Writes the clip IN as OUT, in the format of OUT's extension.\n"
    "\n"
    "  --rate R             frames per second of OUT (25, 29.97, 30000/1001); IN is sampled by time\n"
    "  --source-rate R      frames per second of IN, in place of what it says; a series says nothing\n"
    "  --start T            where to begin in IN: a frame number, or seconds with an s (1.5s)\n"
    "  --frames N           how many frames OUT gets\n"
    "  --size WxH           size of OUT; pixels are picked, not filtered\n"
    "  --depth D            bits of a channel: 8, 10, 12, 16 or float\n"
    "  --layer NAME         a layer of IN, by name or number; the flat picture when not given\n"
    "  --background COLOUR  mix the pictures over a colour (#RRGGBB or a name); OUT then has no alpha\n"
    "  --pulldown HOW       film frames in the fields of video: remove, guess (remove where there are "
    "some),\n"
    "                       or insert into OUT, whose rate is then a quarter higher\n"
    "  --field-order O      the fields of IN, and of OUT: upper, lower or none\n"
    "\n"
    "How the alpha of IN is read, in place of what its first frame suggests:\n"
    "  --straight           colours are independent of alpha\n"
    "  --premultiplied      colours are mixed with black\n"
    "  --matte COLOUR       colours are mixed with this colour\n"
    "  --luminance          the brightness is the alpha\n"
    "  --invert             stored alpha is upside down\n";

namespace {

struct ConvertOptions {
    OutputSettings output{};
    std::optional<Size> size;
    std::optional<double> rate;
    Position start{0, true};
    std::optional<long> frames;
    SourceChoice source;
};

void Take_Pull_Down(ConvertOptions& options, std::string const& value)
{
    if (value == "insert")
        options.output.insertsPullDown = true;
    else if (value == "remove")
        options.source.pullDown = PullDown::Remove;
    else if (value == "guess")
        options.source.pullDown = PullDown::Guess;
    else
        throw UsageError("--pulldown takes remove, guess or insert, not '" + value + "'");
}

FieldOrder Read_Field_Order(std::string const& value)
{
    if (value == "upper") return ZV_FIELDS_UPPER_FIRST;
    if (value == "lower") return ZV_FIELDS_LOWER_FIRST;
    if (value == "none") return ZV_FIELDS_NONE;
    throw UsageError("--field-order takes upper, lower or none, not '" + value + "'");
}

void Take_Option(ConvertOptions& options, int letter, std::string const& value)
{
    if (Take_Output_Option(options.output, letter, value)) return;
    AlphaChoice& alpha = options.source.alpha;
    switch (letter) {
    case 'R': options.source.rate = Read_Rate("--source-rate", value); return;
    case 'r': options.rate = Read_Rate("--rate", value); return;
    case 's': options.start = Read_Position("--start", value, true); return;
    case 'n': options.frames = Read_Count("--frames", value, 1); return;
    case 'z': options.size = Read_Size("--size", value); return;
    case 'd': options.output.depth = Read_Depth("--depth", value); return;
    case 'b': options.output.background = Read_Colour("--background", value); return;
    case 'l': options.source.layer = value; return;
    case 'p': Take_Pull_Down(options, value); return;
    case 'f': options.source.fieldOrder = Read_Field_Order(value); return;
    case 'S': alpha.type = ZV_ALPHA_CHANNEL, alpha.isPremultiplied = false; break;
    case 'P': alpha.type = ZV_ALPHA_CHANNEL, alpha.isPremultiplied = true; break;
    case 'L': alpha.type = ZV_ALPHA_LUMINANCE; break;
    case 'I': alpha.isInverted = true; break;
    case 'M':
        alpha.type = ZV_ALPHA_CHANNEL, alpha.isPremultiplied = true;
        alpha.matte = Read_Colour("--matte", value);
        break;
    }
    alpha.isGiven = true;
}

/// How many frames cover a span; a frame that would begin within a ten-thousandth of its end does not count.
long Frames_In(double seconds, double rate)
{
    double const frames = std::ceil(seconds * rate - 1e-4);
    return frames < 1 ? 0 : frames > INT32_MAX ? INT32_MAX : static_cast<long>(frames);
}

/// Fills in what the options leave to the source.
void Describe(ConvertOptions& options, ZVClip* source, double start)
{
    OutputSettings& settings = options.output;
    settings.size = options.size.value_or(Size{source->Width, source->Height});
    settings.rate = options.rate.value_or(source->FrameRate);
    settings.frames = options.frames.value_or(Frames_In(Length_Of(source) - start, settings.rate));
    settings.sourceDepth = source->BitDepth;
    settings.hasAlpha = source->AlphaType != ZV_ALPHA_NONE;
    settings.pixelAspect = source->PixelAspect;
    // Scaled rows, and film frames taken out of their fields, are no fields any more.
    bool const hasFields = settings.size.height == source->Height && source->PullDown == 0;
    settings.fieldOrder = hasFields ? FieldOrder{source->FieldOrder} : ZV_FIELDS_NONE;
    if (Has_Sound(source)) settings.sound = source->AudioFormat;
}

void Convert(std::string const& in, std::string const& out, ConvertOptions options)
{
    ClipHandle const source = Open_Source(in, options.source);
    if (!(source->Media & ZV_MEDIA_VIDEO)) throw JobError(in, "has no pictures; see 'zvclip sound'");
    double const start = options.start.Seconds(source->FrameRate);
    Describe(options, source.get(), start);
    OutputSettings const& settings = options.output;
    if (settings.frames == 0) throw JobError(in, "has no frame from --start on");

    Output output(out, settings);
    BitmapHandle const bitmap = New_Bitmap(out, settings.size, output.BitmapType());
    SoundReader sound(source.get(), in, start);
    Progress progress(settings.frames);
    for (long frame = 0; frame < settings.frames; ++frame) {
        double const seconds = static_cast<double>(frame) / settings.rate;
        Read_Frame(source.get(), in, bitmap.get(), start + seconds, 1.0 / settings.rate);
        Stop_If_Interrupted();
        output.Add(bitmap.get());
        if (output.HasSound())
            output.Add_Sound(sound.Read_Until(static_cast<double>(frame + 1) / settings.rate).get());
        progress.Step();
    }
    output.Finish();
}

}  // namespace

int Run_Convert(int argc, char** argv)
{
    std::vector<option> table = Output_Options();
    table.insert(table.end(), {{"rate", required_argument, nullptr, 'r'},
                               {"source-rate", required_argument, nullptr, 'R'},
                               {"start", required_argument, nullptr, 's'},
                               {"frames", required_argument, nullptr, 'n'},
                               {"size", required_argument, nullptr, 'z'},
                               {"depth", required_argument, nullptr, 'd'},
                               {"background", required_argument, nullptr, 'b'},
                               {"layer", required_argument, nullptr, 'l'},
                               {"pulldown", required_argument, nullptr, 'p'},
                               {"field-order", required_argument, nullptr, 'f'},
                               {"straight", no_argument, nullptr, 'S'},
                               {"premultiplied", no_argument, nullptr, 'P'},
                               {"matte", required_argument, nullptr, 'M'},
                               {"luminance", no_argument, nullptr, 'L'},
                               {"invert", no_argument, nullptr, 'I'},
                               {}});
    ConvertOptions options;
    std::vector<std::string> const words =
        Read_Options(argc, argv, table.data(),
                     [&](int letter, std::string const& value) { Take_Option(options, letter, value); });
    if (words.size() != 2) throw UsageError("it takes the names IN and OUT");
    Convert(words[0], words[1], options);
    return 0;
}
