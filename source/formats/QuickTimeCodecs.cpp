// The list of codecs with more than 8 bits a channel, which lies in a text file that users may add to; and
// the extensions that the movie module claims.
#include "QuickTimeModule.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <strings.h>
#include <vector>

namespace {

char const listFile[] = "data\\QuickTimeCodecs.txt";
char const listText[] = "QuickTime 64-bit codecs\nMczm\nNO16\n\nQuickTime 10-bit codecs\nv210\n";
char const tenBitHeading[] = "QuickTime 10-bit codecs";
constexpr std::size_t CodeLength = 4;
constexpr unsigned long NotExtensionsString = 160;

constexpr unsigned TenBits = 1;
constexpr unsigned SixteenBits = 2;

struct ListedCodec {
    uint32_t code;
    unsigned flags;
};

/// Written at registration alone.
std::vector<ListedCodec> codecsList;

struct Spec_Freer {
    void operator()(char* spec) const { FreeFileSpecZV(spec); }
};
using SpecPtr = std::unique_ptr<char, Spec_Freer>;

SpecPtr Home_File(char const* name)
{
    char spec[ZV_SPEC_SIZE];
    char const* home = ZVEnv->homeDir ? ZVEnv->homeDir : "";
    if (std::strlen(home) + std::strlen(name) >= sizeof spec) return nullptr;
    std::strcpy(spec, home);
    std::strcat(spec, name);
    return SpecPtr{CopyFileSpecZV(spec)};
}

void Make_List_File(char const* spec)
{
    if (SpecPtr const folder = Home_File("data\\")) CreateDirZV(folder.get());
    FilePtr const file{CreateFileZV(spec, ZVFilePermWrite, ZV_FourCC("TEXT"), ZV_BLANK_CODE, ZVFileFlagNone)};
    if (file) WriteFileZV(file.get(), listText, std::strlen(listText));
}

/// The list in the home directory, made when it is not there; where it cannot be made, that of the library's
/// data.
FilePtr Open_List()
{
    auto const open = [](char const* spec) {
        return FilePtr{spec && FileExistsZV(spec) ? OpenFileZV(spec, ZVFilePermRead, ZVFileFlagNone)
                                                  : nullptr};
    };
    if (SpecPtr const spec = Home_File(listFile)) {
        if (FilePtr file = open(spec.get())) return file;
        Make_List_File(spec.get());
        if (FilePtr file = open(spec.get())) return file;
    }
    SpecPtr const shared{Find_Library_File(listFile)};
    return open(shared.get());
}

uint32_t Pack_Code(char const* text)
{
    uint32_t code = 0;
    for (std::size_t i = 0; i < CodeLength; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

void Add_Flag(uint32_t code, unsigned flag)
{
    auto const found = std::ranges::find(codecsList, code, &ListedCodec::code);
    if (flag == TenBits && found != codecsList.end())
        found->flags |= flag;
    else
        codecsList.push_back({code, flag});
}

uint32_t Lower_Code(char const* text)
{
    uint32_t code = 0;
    for (int shift = 24; *text; ++text, shift -= 8) {
        auto const c = static_cast<unsigned char>(*text);
        code |= static_cast<uint32_t>(c >= 'A' && c <= 'Z' ? c + 32 : c) << shift;
    }
    return code;
}

/// Whether a comma-separated list has the text, ignoring case.
bool Is_Listed(char const* list, char const* text)
{
    std::size_t const length = std::strlen(text);
    while (*list) {
        std::size_t const piece = std::strcspn(list, ",");
        if (piece == length && strncasecmp(list, text, length) == 0) return true;
        list += piece + (list[piece] == ',');
    }
    return false;
}

}  // namespace

void Read_Codec_List()
{
    codecsList.clear();
    unsigned long const error = GetErrorZV();
    FilePtr const file = Open_List();
    SetError(error);
    if (!file) return;
    char line[256];
    unsigned flag = SixteenBits;
    while (FGetStringZV(file.get(), line, sizeof line)) {
        line[std::strcspn(line, "\r\n")] = 0;
        if (strncasecmp(line, tenBitHeading, sizeof tenBitHeading - 1) == 0)
            flag = TenBits;
        else if (std::strlen(line) == CodeLength)
            Add_Flag(Pack_Code(line), flag);
    }
    SetError(error);
}

long Listed_Codec_Depth(uint32_t codec)
{
    auto const found = std::ranges::find(codecsList, codec, &ListedCodec::code);
    if (found == codecsList.end()) return 0;
    return found->flags & SixteenBits ? 16 : 10;
}

bool AddExtension(char const* text, ZVFormatDesc* desc)
{
    if (!*text || std::strlen(text) > CodeLength) return true;
    uint32_t const code = Lower_Code(text);
    uint32_t* const end = desc->ReadExtensions + desc->ReadExtensionCount;
    if (std::find(desc->ReadExtensions, end, code) != end) return true;
    if (Is_Listed(GetStringZV(NotExtensionsString), text)) return true;
    auto const count = static_cast<unsigned long>(desc->ReadExtensionCount);
    auto* grown = static_cast<uint32_t*>(Alloc_Aligned((count + 1) * sizeof(uint32_t), alignof(uint32_t)));
    if (!grown) return false;
    std::copy(desc->ReadExtensions, end, grown);
    grown[count] = code;
    FreeMemZV(desc->ReadExtensions);
    desc->ReadExtensions = grown;
    ++desc->ReadExtensionCount;
    return true;
}
