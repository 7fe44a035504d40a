// The options that all commands share which write clips.
#include "Output.h"

#include <cstring>

char const* const outputHelp =
    "  --format NAME        the format, by extension or name, whatever OUT is called\n"
    "  --overwrite          replace OUT when it exists\n"
    "\n"
    "Movies:\n"
    "  --codec NAME         animation (when not given), raw, png, mjpeg, prores422, prores422hq, "
    "prores4444,\n"
    "                       h264, ffv1, or the four characters of another one. Of PICT and PICS,\n"
    "                       raw (when not given), animation, png or mjpeg\n"
    "  --quality Q          from 0 to 100, which is without loss where the codec can; 50 when not given. Of\n"
    "                       JPEG pictures too, 90 when not given\n"
    "  --streaming          add hint tracks for streaming, and put the index in front\n"
    "  --audio-codec NAME   pcm (when not given), aac, alac, or four characters\n"
    "  --audio, --no-audio  insist on the sound, or leave it out; when not given it goes along where it "
    "can\n";

namespace {

struct NamedCodec {
    char const* name;
    char const* code;
};

constexpr NamedCodec pictureCodecs[] = {
    {"animation", "rle "},  {"raw", "raw "},       {"png", "png "},
    {"mjpeg", "jpeg"},      {"prores422", "apcn"}, {"prores422hq", "apch"},
    {"prores4444", "ap4h"}, {"h264", "avc1"},      {"ffv1", "FFV1"},
};
constexpr NamedCodec soundCodecs[] = {{"pcm", "NONE"}, {"aac", "mp4a"}, {"alac", "alac"}};

template <std::size_t count>
uint32_t Read_Codec(char const* option, std::string const& text, NamedCodec const (&table)[count])
{
    char const* code = text.size() == 4 ? text.c_str() : nullptr;
    for (NamedCodec const& named : table)
        if (text == named.name) code = named.code;
    if (!code) throw UsageError(std::string(option) + " takes the name of a codec, not '" + text + "'");
    uint32_t packed = 0;
    for (int i = 0; i < 4; ++i)
        packed = packed << 8 | static_cast<unsigned char>(code[i]);
    return packed;
}

}  // namespace

std::vector<option> Output_Options()
{
    return {{"format", required_argument, nullptr, 'F'}, {"overwrite", no_argument, nullptr, 'O'},
            {"codec", required_argument, nullptr, 'C'},  {"quality", required_argument, nullptr, 'Q'},
            {"streaming", no_argument, nullptr, 'T'},    {"audio-codec", required_argument, nullptr, 'A'},
            {"audio", no_argument, nullptr, 'Y'},        {"no-audio", no_argument, nullptr, 'N'}};
}

bool Take_Output_Option(OutputSettings& settings, int letter, std::string const& value)
{
    switch (letter) {
    case 'F': settings.format = value; return true;
    case 'O': settings.mayOverwrite = true; return true;
    case 'C': settings.codec = Read_Codec("--codec", value, pictureCodecs); return true;
    case 'Q': settings.quality = Read_Percent("--quality", value); return true;
    case 'T': settings.isForStreaming = true; return true;
    case 'A': settings.soundCodec = Read_Codec("--audio-codec", value, soundCodecs); return true;
    case 'Y': settings.soundChoice = SoundChoice::Must; return true;
    case 'N': settings.soundChoice = SoundChoice::None; return true;
    }
    return false;
}
