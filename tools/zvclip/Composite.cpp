// zvclip composite: a clip over a clip or over a colour, by alpha, frame by frame.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"
#include "Output.h"
#include "Progress.h"
#include "Sound.h"

#include <filesystem>

char const* const compositeHelp =
    "Usage: zvclip composite FOREGROUND BACKGROUND OUT [OPTIONS]\n"
    "\n"
    "Lays each frame of FOREGROUND over BACKGROUND by its alpha. BACKGROUND is a clip, read by time, or a\n"
    "colour (#RRGGBB or a name). OUT has the size of a background clip, or of FOREGROUND over a colour, and\n"
    "the length and rate of FOREGROUND. The sound is that of FOREGROUND, or else of BACKGROUND.\n"
    "\n"
    "  --at X,Y             where the top left corner of FOREGROUND lies; 0,0 when not given\n"
    "  --layer NAME         a layer of FOREGROUND, by name or number; the flat picture when not given\n"
    "  --background-layer NAME  the same of BACKGROUND\n";

namespace {

struct CompositeOptions {
    OutputSettings output{};
    SourceChoice foreground{};
    SourceChoice background{};
    long x = 0;
    long y = 0;
};

void Read_Place(std::string const& text, CompositeOptions& options)
{
    char tail = 0;
    if (std::sscanf(text.c_str(), "%ld,%ld%c", &options.x, &options.y, &tail) != 2 ||
        std::abs(options.x) > 32767 || std::abs(options.y) > 32767)
        throw UsageError("--at takes a place such as 100,50, not '" + text + "'");
}

/// The part of the foreground that falls on the canvas, as blending takes it.
struct Overlap {
    long x, y, left, top, width, height;
};

Overlap Overlap_Of(CompositeOptions const& options, Size canvas, Size foreground)
{
    ZVRectT<long> area{options.x, options.y, foreground.width, foreground.height};
    area.Intersect({0, 0, canvas.width, canvas.height});
    return {area.x - options.x, area.y - options.y, area.x, area.y, area.width, area.height};
}

class Compositor {
public:
    Compositor(std::string const& foreground, std::string const& background, CompositeOptions const& options)
        : foregroundPath_(foreground), backgroundPath_(background),
          foreground_(Open_Source(foreground, options.foreground))
    {
        std::error_code error;
        std::optional<ZVLONGCOLOR> const colour =
            std::filesystem::exists(background, error) ? std::nullopt : Parse_Colour(background);
        Size const size{foreground_->Width, foreground_->Height};
        if (colour)
            colour_ = *colour;
        else
            background_ = Open_Source(background, options.background);
        canvasSize_ = background_ ? Size{background_->Width, background_->Height} : size;
        overlap_ = Overlap_Of(options, canvasSize_, size);
        picture_ = New_Bitmap(foreground, size, GetBitmapTypeZV(foreground_.get()));
        result_ = New_Bitmap(background, canvasSize_, ZV_BITMAP_RGBA8);
        canvas_.reset(AllocNativeBitmapZV(canvasSize_.width, canvasSize_.height, 32));
        if (!canvas_) throw JobError(background, Reason());
    }

    ZVClip const* Foreground() const { return foreground_.get(); }

    /// Whose sound the result has; null for none.
    ZVClip* Sounding() const
    {
        for (ZVClip* clip : {foreground_.get(), background_.get()})
            if (clip && Has_Sound(clip)) return clip;
        return nullptr;
    }

    Size CanvasSize() const { return canvasSize_; }

    /// The composite of one frame of the foreground; stays valid until the next call.
    ZVBitmap* Frame(long number)
    {
        double const seconds = static_cast<double>(number) / foreground_->FrameRate;
        double const duration = 1.0 / foreground_->FrameRate;
        if (background_) {
            Read_Frame(background_.get(), backgroundPath_, result_.get(), seconds, duration);
            CopyBitmapZV(result_.get(), canvas_.get(), 0, 0, -1, -1, 0, 0);
        } else {
            FillBitmapZV(canvas_.get(), colour_);
        }
        Read_Frame(foreground_.get(), foregroundPath_, picture_.get(), seconds, duration);
        if (overlap_.width > 0 && overlap_.height > 0)
            AlphaBlendBitmapZV(picture_.get(), canvas_.get(), overlap_.x, overlap_.y, overlap_.width,
                               overlap_.height, overlap_.left, overlap_.top, nullptr);
        CopyBitmapZV(canvas_.get(), result_.get(), 0, 0, -1, -1, 0, 0);
        return result_.get();
    }

private:
    std::string foregroundPath_;
    std::string backgroundPath_;
    ClipHandle foreground_;
    ClipHandle background_;
    ZVLONGCOLOR colour_ = 0;
    Size canvasSize_{};
    Overlap overlap_{};
    BitmapHandle picture_;
    BitmapHandle result_;
    NativeBitmapHandle canvas_;
};

void Composite(std::vector<std::string> const& words, CompositeOptions options)
{
    Compositor compositor(words[0], words[1], options);
    OutputSettings& settings = options.output;
    settings.size = compositor.CanvasSize();
    settings.rate = compositor.Foreground()->FrameRate;
    settings.frames = compositor.Foreground()->Frames;
    settings.pixelAspect = compositor.Foreground()->PixelAspect;
    ZVClip* const sounding = compositor.Sounding();
    std::optional<SoundReader> sound;
    if (sounding) {
        settings.sound = sounding->AudioFormat;
        sound.emplace(sounding, sounding == compositor.Foreground() ? words[0] : words[1], 0);
    }

    Output output(words[2], settings);
    Progress progress(settings.frames);
    for (long frame = 0; frame < settings.frames; ++frame) {
        ZVBitmap* const picture = compositor.Frame(frame);
        Stop_If_Interrupted();
        output.Add(picture);
        if (output.HasSound())
            output.Add_Sound(sound->Read_Until(static_cast<double>(frame + 1) / settings.rate).get());
        progress.Step();
    }
    output.Finish();
}

}  // namespace

int Run_Composite(int argc, char** argv)
{
    std::vector<option> table = Output_Options();
    table.insert(table.end(), {{"at", required_argument, nullptr, 'a'},
                               {"layer", required_argument, nullptr, 'l'},
                               {"background-layer", required_argument, nullptr, 'b'},
                               {}});
    CompositeOptions options;
    std::vector<std::string> const words =
        Read_Options(argc, argv, table.data(), [&](int letter, std::string const& value) {
            if (Take_Output_Option(options.output, letter, value)) return;
            if (letter == 'l')
                options.foreground.layer = value;
            else if (letter == 'b')
                options.background.layer = value;
            else
                Read_Place(value, options);
        });
    if (words.size() != 3) throw UsageError("it takes the names FOREGROUND, BACKGROUND and OUT");
    Composite(words, options);
    return 0;
}
