// zvclip extract: one object of deep pictures, or all but one, with its own edges.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"
#include "Output.h"
#include "Progress.h"

char const* const extractHelp =
    "Usage: zvclip extract IN OUT --id N [OPTIONS]\n"
    "\n"
    "Lifts one object out of deep pictures by its id: each pixel is rebuilt from the samples of the object, "
    "and\n"
    "where they cover a part of it, alpha says so. OUT is a clip of the same size, length and rate.\n"
    "\n"
    "  --id N               the object's id, from 0 to 65535\n"
    "  --by KIND            what the id counts: object (when not given), material or render\n"
    "  --remove             everything but the object\n";

namespace {

struct ExtractOptions {
    OutputSettings output{};
    std::optional<long> id;
    ZVGBufferChannel kind = ZV_GBUFFER_OBJ;
    bool removes = false;
};

void Take_Option(ExtractOptions& options, int letter, std::string const& value)
{
    if (Take_Output_Option(options.output, letter, value)) return;
    if (letter == 'r') {
        options.removes = true;
    } else if (letter == 'i') {
        options.id = Read_Count("--id", value, 0);
        if (*options.id > 65535) throw UsageError("--id takes a number up to 65535, not '" + value + "'");
    } else if (value == "object") {
        options.kind = ZV_GBUFFER_OBJ;
    } else if (value == "material") {
        options.kind = ZV_GBUFFER_MAT;
    } else if (value == "render") {
        options.kind = ZV_GBUFFER_RENDERID;
    } else {
        throw UsageError("--by takes object, material or render, not '" + value + "'");
    }
}

/// The channels of a frame, gone with it.
struct Channels : ZVGBufferArray {
    Channels() = default;
    ~Channels() { FreeGBufferArrayZV(this); }
    Channels(Channels const&) = delete;
    Channels& operator=(Channels const&) = delete;
};

class Extractor {
public:
    Extractor(std::string const& path, ExtractOptions const& options)
        : path_(path), options_(options), clip_(Open_Source(path))
    {
        if (!(clip_->GBufferMask & options.kind))
            throw JobError(path, "has no ids of this kind; see 'zvclip info'");
        Size const size{clip_->Width, clip_->Height};
        picture_ = New_Bitmap(path, size, GetBitmapTypeZV(clip_.get()));
        result_ = New_Bitmap(path, size, picture_->Type);
    }

    ZVClip const* Clip() const { return clip_.get(); }

    /// What is left of one frame; stays valid until the next call.
    ZVBitmap* Frame(long number)
    {
        double const seconds = static_cast<double>(number) / clip_->FrameRate;
        Read_Frame(clip_.get(), path_, picture_.get(), seconds, 1.0 / clip_->FrameRate);
        Channels channels;
        ZVTimeValue const time{seconds, 1.0};
        unsigned long const wanted = options_.kind | ZV_GBUFFER_COV | ZV_GBUFFER_COL | ZV_GBUFFER_TRANS |
                                     ZV_GBUFFER_WEIGHT | ZV_GBUFFER_X_VALUES;
        if (!GetGBuffersZV(clip_.get(), wanted, &channels, &time, nullptr, nullptr) ||
            !ExtractGBufferLayerZV(picture_.get(), result_.get(), static_cast<short>(*options_.id),
                                   options_.kind, channels, options_.removes ? 0 : 1,
                                   {0, 0, clip_->Width, clip_->Height}, nullptr, 0))
            throw JobError(path_, "the deep pixels at " + std::to_string(seconds) + " s cannot be read");
        return result_.get();
    }

private:
    std::string path_;
    ExtractOptions const& options_;
    ClipHandle clip_;
    BitmapHandle picture_;
    BitmapHandle result_;
};

void Extract(std::string const& in, std::string const& out, ExtractOptions options)
{
    Extractor extractor(in, options);
    ZVClip const* const clip = extractor.Clip();
    OutputSettings& settings = options.output;
    settings.size = {clip->Width, clip->Height};
    settings.rate = clip->FrameRate;
    settings.frames = clip->Frames;
    settings.sourceDepth = clip->BitDepth;
    settings.hasAlpha = true;
    settings.pixelAspect = clip->PixelAspect;
    Output output(out, settings);
    Progress progress(settings.frames);
    for (long frame = 0; frame < settings.frames; ++frame) {
        ZVBitmap* const picture = extractor.Frame(frame);
        Stop_If_Interrupted();
        output.Add(picture);
        progress.Step();
    }
    output.Finish();
}

}  // namespace

int Run_Extract(int argc, char** argv)
{
    std::vector<option> table = Output_Options();
    table.insert(table.end(), {{"id", required_argument, nullptr, 'i'},
                               {"by", required_argument, nullptr, 'b'},
                               {"remove", no_argument, nullptr, 'r'},
                               {}});
    ExtractOptions options;
    std::vector<std::string> const words =
        Read_Options(argc, argv, table.data(),
                     [&](int letter, std::string const& value) { Take_Option(options, letter, value); });
    if (words.size() != 2) throw UsageError("it takes the names IN and OUT");
    if (!options.id) throw UsageError("--id tells which object");
    Extract(words[0], words[1], options);
    return 0;
}
