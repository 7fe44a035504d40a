// zvclip info: what files are, for people or as JSON.
#include "Commands.h"
#include "Job.h"
#include "OptionReader.h"

#include <cstdio>

char const* const infoHelp =
    "Usage: zvclip info [--json] FILE...\n"
    "\n"
    "Tells format, size, depth, frames, rate, pixel aspect, alpha and length of each file.\n"
    "\n"
    "  --json   the same as one JSON array\n";

namespace {

struct Facts {
    std::string file;
    std::string format;
    Size size;
    std::string depth;
    long frames;
    double rate;
    double aspect;
    std::string alpha;
    double length;
};

std::string Alpha_Text(ZVClip const* clip)
{
    if (clip->AlphaType == ZV_ALPHA_LUMINANCE) return clip->AlphaInvert ? "luminance, inverted" : "luminance";
    if (clip->AlphaType != ZV_ALPHA_CHANNEL) return "none";
    std::string text = "straight";
    if (clip->AlphaPremultiplied) {
        char matte[48];
        std::snprintf(matte, sizeof matte, "premultiplied with #%02X%02X%02X",
                      static_cast<unsigned>(f_round(clip->MatteRed * 255)),
                      static_cast<unsigned>(f_round(clip->MatteGreen * 255)),
                      static_cast<unsigned>(f_round(clip->MatteBlue * 255)));
        text = matte;
    }
    return clip->AlphaInvert ? text + ", inverted" : text;
}

Facts Look_At(std::string const& path)
{
    ClipHandle const clip = Open_Source(path, {});
    return {path,
            clip->Format->Node.name,
            {clip->Width, clip->Height},
            clip->BitDepth == 32 ? "float" : std::to_string(clip->BitDepth),
            clip->Frames,
            clip->FrameRate,
            clip->PixelAspect,
            Alpha_Text(clip.get()),
            Length_Of(clip.get())};
}

void Print_Text(Facts const& facts)
{
    std::printf("%s\n"
                "  format  %s\n"
                "  size    %ld x %ld\n"
                "  depth   %s\n"
                "  frames  %ld\n"
                "  rate    %.6g\n"
                "  aspect  %.6g\n"
                "  alpha   %s\n"
                "  length  %.3f s\n",
                facts.file.c_str(), facts.format.c_str(), facts.size.width, facts.size.height,
                facts.depth == "float" ? "float" : (facts.depth + " bits").c_str(), facts.frames, facts.rate,
                facts.aspect, facts.alpha.c_str(), facts.length);
}

std::string Json_String(std::string const& text)
{
    std::string out = "\"";
    for (char c : text) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            out += escape;
        } else {
            if (c == '"' || c == '\\') out += '\\';
            out += c;
        }
    }
    return out + '"';
}

void Print_Json(Facts const& facts, bool isFirst)
{
    std::printf("%s\n  {\"file\": %s, \"format\": %s, \"width\": %ld, \"height\": %ld, \"depth\": %s, "
                "\"frames\": %ld, "
                "\"rate\": %.10g, \"aspect\": %.10g, \"alpha\": %s, \"length\": %.10g}",
                isFirst ? "" : ",", Json_String(facts.file).c_str(), Json_String(facts.format).c_str(),
                facts.size.width, facts.size.height,
                facts.depth == "float" ? "\"float\"" : facts.depth.c_str(), facts.frames, facts.rate,
                facts.aspect, Json_String(facts.alpha).c_str(), facts.length);
}

}  // namespace

int Run_Info(int argc, char** argv)
{
    bool asJson = false;
    option const table[] = {{"json", no_argument, nullptr, 'j'}, {}};
    std::vector<std::string> const files =
        Read_Options(argc, argv, table, [&](int, std::string const&) { asJson = true; });
    if (files.empty()) throw UsageError("which file?");

    int status = 0;
    bool isFirst = true;
    if (asJson) std::fputc('[', stdout);
    for (std::string const& file : files) {
        try {
            Facts const facts = Look_At(file);
            asJson ? Print_Json(facts, isFirst) : Print_Text(facts);
            isFirst = false;
        } catch (JobError const& error) {
            std::fprintf(stderr, "zvclip: %s\n", error.what());
            status = 1;
        }
        Stop_If_Interrupted();
    }
    if (asJson) std::fputs("\n]\n", stdout);
    return status;
}
