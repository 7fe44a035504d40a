// Type and creator codes: the extended attribute user.com.apple.FinderInfo, or what a file's extension tells.

#include "MacFileInfo.h"

#include "MacFile.h"

#include "ZVLibInternal.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <strings.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

constexpr char AttributeName[] = "user.com.apple.FinderInfo";

/// The attribute: type at 0, creator at 4, both with the first character first; flags and places behind them.
using FinderInfo = std::array<uint8_t, 32>;

enum class Lookup { Found, Absent, Failed };

struct ExtensionType {
    char const* extension;
    uint32_t type;
    uint32_t creator = ZV_BLANK_CODE;  ///< only code modules are told by theirs
};

constexpr uint32_t ModuleCreator = ZV_FourCC("Qrnd");

constexpr ExtensionType ExtensionTypes[] = {
    {"pct", ZV_FourCC("PICT")},
    {"pict", ZV_FourCC("PICT")},
    {"pcs", ZV_FourCC("PICS")},
    {"pics", ZV_FourCC("PICS")},
    {"flm", ZV_FourCC("Film")},
    {"ei", ZV_FourCC("EIDI")},
    {"vpb", ZV_FourCC("VPB ")},
    {"mov", ZV_FourCC("MooV")},
    {"psd", ZV_FourCC("8BPS")},
    {"tif", ZV_FourCC("TIFF")},
    {"tiff", ZV_FourCC("TIFF")},
    {"jpg", ZV_FourCC("JPEG")},
    {"jpeg", ZV_FourCC("JPEG")},
    {"png", ZV_FourCC("PNGf")},
    {"gif", ZV_FourCC("GIFf")},
    {"bmp", ZV_FourCC("BMPf")},
    {"tga", ZV_FourCC("TPIC")},
    {"txt", ZV_FourCC("TEXT")},
    {"ifm", ZV_FourCC("IFM "), ModuleCreator},
    {"8bi", ZV_FourCC("8BIF"), ModuleCreator},
};

constexpr ZVCreatorPair BlankCodes = {ZV_BLANK_CODE, ZV_BLANK_CODE};

uint32_t Load_Code(uint8_t const* bytes)
{
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | static_cast<uint32_t>(bytes[3]);
}

void Store_Code(uint8_t* bytes, uint32_t code)
{
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<uint8_t>(code >> (24 - 8 * i));
}

bool Same(ZVCreatorPair a, ZVCreatorPair b)
{
    return a.type == b.type && a.creator == b.creator;
}

/// The codes that a file without stored ones has.
ZVCreatorPair Codes_Of_Extension(char const* path)
{
    char const* dot = std::strrchr(path, '.');
    if (!dot || std::strchr(dot, '/')) return BlankCodes;
    for (ExtensionType const& entry : ExtensionTypes)
        if (strcasecmp(entry.extension, dot + 1) == 0) return {entry.type, entry.creator};
    return BlankCodes;
}

/// The stored attribute, filled up with zeros.
Lookup Read_Info(char const* path, FinderInfo& info)
{
    ssize_t const size = getxattr(path, AttributeName, info.data(), info.size());
    if (size < 0) return errno == ENODATA || errno == ENOTSUP ? Lookup::Absent : Lookup::Failed;
    return size < 8 ? Lookup::Absent : Lookup::Found;
}

Lookup Read_Stored_Codes(char const* path, ZVCreatorPair& codes, uint16_t& flags)
{
    FinderInfo info{};
    Lookup const lookup = Read_Info(path, info);
    if (lookup != Lookup::Found) return lookup;
    flags = static_cast<uint16_t>(info[8] << 8 | info[9]);
    codes = {Load_Code(&info[0]), Load_Code(&info[4])};
    // Others leave zeros in an attribute that they keep for its flags.
    return codes.type == 0 && codes.creator == 0 ? Lookup::Absent : Lookup::Found;
}

bool Is_Regular(char const* path)
{
    struct stat info;
    return stat(path, &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

void Mac_Write_Codes(int descriptor, ZVCreatorPair codes)
{
    if (Same(codes, BlankCodes)) return;
    FinderInfo info{};
    if (fgetxattr(descriptor, AttributeName, info.data(), info.size()) < 0) info = {};
    Store_Code(&info[0], codes.type);
    Store_Code(&info[4], codes.creator);
    fsetxattr(descriptor, AttributeName, info.data(), info.size(), 0);
}

bool Mac_Has_Codes(char const* path, ZVCreatorPair codes)
{
    if (!Is_Regular(path)) return false;
    ZVCreatorPair stored;
    uint16_t flags;
    switch (Read_Stored_Codes(path, stored, flags)) {
    case Lookup::Found: return Same(stored, codes);
    case Lookup::Absent: return Same(codes, BlankCodes) || Same(codes, Codes_Of_Extension(path));
    default: return false;
    }
}

MacFileMarks Mac_Read_Marks(char const* path)
{
    MacFileMarks marks = {BlankCodes, 0};
    if (Read_Stored_Codes(path, marks.codes, marks.flags) == Lookup::Absent)
        marks.codes = Codes_Of_Extension(path);
    return marks;
}

ZVCreatorPair Mac_Read_Codes(char const* path)
{
    return Mac_Read_Marks(path).codes;
}

uint16_t Mac_Read_Flags(char const* path)
{
    return Mac_Read_Marks(path).flags;
}

void Get_FileInfo(char const* spec, uint32_t* creator, uint32_t* type)
{
    ZVCreatorPair codes = BlankCodes;
    MacPath path;
    if (path.Set(spec) == 0 && Is_Regular(path.Text())) codes = Mac_Read_Codes(path.Text());
    if (creator) *creator = codes.creator;
    if (type) *type = codes.type;
}
