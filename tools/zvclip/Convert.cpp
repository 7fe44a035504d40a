// zvclip convert: any readable clip to any writable format.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"
#include "Output.h"
#include "Progress.h"

#include <cmath>

char const* const convertHelp =
    "Usage: zvclip convert IN OUT [OPTIONS]\n"
    "\n"
    "Writes the clip IN as OUT, in the format of OUT's extension.\n"
    "\n"
    "  --format NAME        the format, by extension or name, whatever OUT is called\n"
    "  --rate R             frames per second of OUT (25, 29.97, 30000/1001); IN is sampled by time\n"
    "  --start T            where to begin in IN: a frame number, or seconds with an s (1.5s)\n"
    "  --frames N           how many frames OUT gets\n"
    "  --size WxH           size of OUT; pixels are picked, not filtered\n"
    "  --depth D            bits of a channel: 8, 10, 12, 16 or float\n"
    "  --background COLOUR  mix the pictures over a colour (#RRGGBB or a name); OUT then has no alpha\n"
    "  --overwrite          replace OUT when it exists\n"
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
    AlphaChoice alpha;
};

void Take_Option(ConvertOptions& options, int letter, std::string const& value)
{
    AlphaChoice& alpha = options.alpha;
    switch (letter) {
    case 'F': options.output.format = value; return;
    case 'r': options.rate = Read_Rate("--rate", value); return;
    case 's': options.start = Read_Position("--start", value, true); return;
    case 'n': options.frames = Read_Count("--frames", value, 1); return;
    case 'z': options.size = Read_Size("--size", value); return;
    case 'd': options.output.depth = Read_Depth("--depth", value); return;
    case 'b': options.output.background = Read_Colour("--background", value); return;
    case 'o': options.output.mayOverwrite = true; return;
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

void Convert(std::string const& in, std::string const& out, ConvertOptions options)
{
    ClipHandle const source = Open_Source(in, options.alpha);
    OutputSettings& settings = options.output;
    double const start = options.start.Seconds(source->FrameRate);
    settings.size = options.size.value_or(Size{source->Width, source->Height});
    settings.rate = options.rate.value_or(source->FrameRate);
    settings.frames = options.frames.value_or(Frames_In(Length_Of(source.get()) - start, settings.rate));
    if (settings.frames == 0) throw JobError(in, "has no frame from --start on");
    settings.sourceDepth = source->BitDepth;
    settings.hasAlpha = source->AlphaType != ZV_ALPHA_NONE;
    settings.pixelAspect = source->PixelAspect;

    Output output(out, settings);
    BitmapHandle const bitmap = New_Bitmap(out, settings.size, output.BitmapType());
    Progress progress(settings.frames);
    for (long frame = 0; frame < settings.frames; ++frame) {
        double const seconds = start + static_cast<double>(frame) / settings.rate;
        Read_Frame(source.get(), in, bitmap.get(), seconds, 1.0 / settings.rate);
        Stop_If_Interrupted();
        output.Add(bitmap.get());
        progress.Step();
    }
    output.Finish();
}

}  // namespace

int Run_Convert(int argc, char** argv)
{
    option const table[] = {
        {"format", required_argument, nullptr, 'F'},     {"rate", required_argument, nullptr, 'r'},
        {"start", required_argument, nullptr, 's'},      {"frames", required_argument, nullptr, 'n'},
        {"size", required_argument, nullptr, 'z'},       {"depth", required_argument, nullptr, 'd'},
        {"background", required_argument, nullptr, 'b'}, {"overwrite", no_argument, nullptr, 'o'},
        {"straight", no_argument, nullptr, 'S'},         {"premultiplied", no_argument, nullptr, 'P'},
        {"matte", required_argument, nullptr, 'M'},      {"luminance", no_argument, nullptr, 'L'},
        {"invert", no_argument, nullptr, 'I'},           {}};
    ConvertOptions options;
    std::vector<std::string> const words =
        Read_Options(argc, argv, table,
                     [&](int letter, std::string const& value) { Take_Option(options, letter, value); });
    if (words.size() != 2) throw UsageError("it takes the names IN and OUT");
    Convert(words[0], words[1], options);
    return 0;
}
