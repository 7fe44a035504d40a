// zvclip info: what files are, for people or as JSON.
#include "Commands.h"
#include "OptionReader.h"
#include "Sound.h"

#include <cstdio>

char const* const infoHelp = "Usage: zvclip info [--json] FILE...\n"
                             "\n"
                             "Tells format, codec, size, depth, frames, rate, fields, pixel aspect, alpha, "
                             "layers, deep channels, sound\n"
                             "and length of each file.\n"
                             "\n"
                             "  --json   the same as one JSON array\n";

namespace {

/// One line of the text, or one member of the JSON object.
struct Fact {
    char const* label;
    std::string text;
    char const* key;
    std::string json;
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

template <typename... Values> std::string Print(char const* format, Values... values)
{
    char text[128];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

/// The four characters of a movie codec; empty for other clips.
std::string Codec_Of(ZVClip const* clip)
{
    ZVMovieOptions options;
    if (!GetMovieOptionsZV(clip, &options)) return {};
    std::string code;
    for (int shift = 24; shift >= 0; shift -= 8)
        code += static_cast<char>(options.Codec >> shift & 255);
    return code;
}

char const* Fields_Of(ZVClip const* clip)
{
    return clip->FieldOrder == ZV_FIELDS_UPPER_FIRST   ? "upper first"
           : clip->FieldOrder == ZV_FIELDS_LOWER_FIRST ? "lower first"
                                                       : "none";
}

/// A fact of several words, as one text and as an array; none without words.
void Add_List_Fact(std::vector<Fact>& facts, char const* label, std::vector<std::string> const& words)
{
    if (words.empty()) return;
    std::string text, json;
    for (std::string const& word : words) {
        text += (text.empty() ? "" : ", ") + word;
        json += (json.empty() ? "" : ", ") + Json_String(word);
    }
    facts.push_back({label, text, label, "[" + json + "]"});
}

std::vector<std::string> Layers_Of(ZVClip const* clip)
{
    std::vector<std::string> names;
    for (Node const* node = List_First(&clip->Layers); node; node = List_Next(node))
        names.push_back(node->name ? node->name : "");
    return names;
}

std::vector<std::string> Deep_Channels_Of(ZVClip const* clip)
{
    static constexpr char const* names[] = {"depth",        "material", "object",     "texture",   "normal",
                                            "real colour",  "coverage", "background", "render id", "colour",
                                            "transparency", "velocity", "weight"};
    std::vector<std::string> channels;
    for (std::size_t bit = 0; bit < std::size(names); ++bit)
        if (clip->GBufferMask >> bit & 1) channels.push_back(names[bit]);
    return channels;
}

void Add_Picture_Facts(std::vector<Fact>& facts, ZVClip const* clip)
{
    if (std::string const codec = Codec_Of(clip); !codec.empty())
        facts.push_back({"codec", codec, "codec", Json_String(codec)});
    facts.push_back({"size", Print("%ld x %ld", clip->Width, clip->Height), "width",
                     Print("%ld, \"height\": %ld", clip->Width, clip->Height)});
    if (clip->BitDepth == 32)
        facts.push_back({"depth", "float", "depth", "\"float\""});
    else
        facts.push_back({"depth", Print("%ld bits", clip->BitDepth), "depth", Print("%ld", clip->BitDepth)});
    facts.push_back({"frames", Print("%ld", clip->Frames), "frames", Print("%ld", clip->Frames)});
    facts.push_back({"rate", Print("%.6g", clip->FrameRate), "rate", Print("%.10g", clip->FrameRate)});
    facts.push_back({"fields", Fields_Of(clip), "fields", Json_String(Fields_Of(clip))});
    facts.push_back(
        {"aspect", Print("%.6g", clip->PixelAspect), "aspect", Print("%.10g", clip->PixelAspect)});
    facts.push_back({"alpha", Alpha_Text(clip), "alpha", Json_String(Alpha_Text(clip))});
    Add_List_Fact(facts, "layers", Layers_Of(clip));
    Add_List_Fact(facts, "deep", Deep_Channels_Of(clip));
}

void Add_Sound_Fact(std::vector<Fact>& facts, ZVClip const* clip)
{
    ZVAudioFormat const& sound = clip->AudioFormat;
    facts.push_back({"sound",
                     Print("%lu Hz, %s, %lu bits", sound.Rate, sound.Channels == 1 ? "mono" : "stereo",
                           sound.SampleSize * 8),
                     "sound",
                     Print("{\"rate\": %lu, \"channels\": %lu, \"bits\": %lu}", sound.Rate, sound.Channels,
                           sound.SampleSize * 8)});
}

std::vector<Fact> Look_At(std::string const& path)
{
    ClipHandle const clip = Open_Source(path);
    std::string const format = clip->Format->Node.name;
    std::vector<Fact> facts{{"format", format, "format", Json_String(format)}};
    if (clip->Media & ZV_MEDIA_VIDEO) Add_Picture_Facts(facts, clip.get());
    if (Has_Sound(clip.get())) Add_Sound_Fact(facts, clip.get());
    double const length = Length_Of(clip.get());
    facts.push_back({"length", Print("%.3f s", length), "length", Print("%.10g", length)});
    return facts;
}

void Print_Text(std::string const& path, std::vector<Fact> const& facts)
{
    std::printf("%s\n", path.c_str());
    for (Fact const& fact : facts)
        std::printf("  %-7s %s\n", fact.label, fact.text.c_str());
}

void Print_Json(std::string const& path, std::vector<Fact> const& facts, bool isFirst)
{
    std::printf("%s\n  {\"file\": %s", isFirst ? "" : ",", Json_String(path).c_str());
    for (Fact const& fact : facts)
        std::printf(", \"%s\": %s", fact.key, fact.json.c_str());
    std::fputc('}', stdout);
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
            std::vector<Fact> const facts = Look_At(file);
            asJson ? Print_Json(file, facts, isFirst) : Print_Text(file, facts);
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
