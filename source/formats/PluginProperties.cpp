// `PiPL`: version (4), count of properties (4), and the properties: vendor (4), key (4), id (4), length (4),
// then the data, padded to a multiple of 4.
// `PiMI`: a fixed part of 70 bytes, then the read types, 8 bytes each, and the read extensions, 4 bytes each:
//   0 version (2)   10 image modes (2)   12 required host (4)   16 read types (2)   18 read extensions (2)
//   20 can read (1)   22 can write (1)   32 channels (2)   58 width (2)   60 height (2)   62 file type (4)
//   66 file creator (4)
#include "PluginProperties.h"

#include "ZVLibInternal.h"
#include "foundation/BigEndian.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr long BadResource = -4942;
constexpr uint32_t FormatKind = ZV_FourCC("8BIF");
constexpr std::size_t ListHeaderSize = 8;
constexpr std::size_t PropertyHeaderSize = 16;
constexpr std::size_t InfoSize = 70;

/// Bits of PluginProperties that the library only passes on.
constexpr long SpecialOptions = 0x400;
constexpr long HasRGBMode = 0x10000;
constexpr long HasRGB48Mode = 0x80000;

using Span = std::span<uint8_t const>;

template <typename T> T Load(uint8_t const* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

/// Turns as many whole numbers as there are.
template <typename T> void Turn(std::span<uint8_t> bytes)
{
    for (std::size_t at = 0; at + sizeof(T) <= bytes.size(); at += sizeof(T)) {
        T value;
        if constexpr (sizeof(T) == 2)
            value = Load_Big16(&bytes[at]);
        else
            value = Load_Big32(&bytes[at]);
        std::memcpy(&bytes[at], &value, sizeof value);
    }
}

// ---- property lists ---------------------------------------------------------------------------------------

/// Calls `visit` with key and data of each property until it answers false.
/// @param turn  called with each header ahead of that, as bytes that may be written for a list that may
/// @return  false when `visit` did, and when a property does not lie in the list
template <typename Byte, typename TurnHeader, typename Visit>
bool Walk_Properties(std::span<Byte> bytes, TurnHeader turn, Visit visit)
{
    if (bytes.size() < ListHeaderSize) return false;
    turn(bytes.first(ListHeaderSize));
    auto count = Load<int32_t>(&bytes[4]);
    for (bytes = bytes.subspan(ListHeaderSize); count > 0; --count) {
        if (bytes.size() < PropertyHeaderSize) return false;
        turn(bytes.first(PropertyHeaderSize));
        auto const key = Load<uint32_t>(&bytes[4]);
        auto const length = Load<uint32_t>(&bytes[12]);
        bytes = bytes.subspan(PropertyHeaderSize);
        if (length > bytes.size() || !visit(key, bytes.first(length))) return false;
        // The padding of the last property may be missing.
        bytes = bytes.subspan(std::min((std::size_t{length} + 3) & ~std::size_t{3}, bytes.size()));
    }
    return true;
}

void Turn_Property(uint32_t key, std::span<uint8_t> data)
{
    switch (key) {
    case ZV_FourCC("kind"):
    case ZV_FourCC("vers"):
    case ZV_FourCC("host"):
    case ZV_FourCC("fmTC"):
    case ZV_FourCC("RdTy"):
    case ZV_FourCC("RdEx"):
    case ZV_FourCC("fftT"):
    case ZV_FourCC("fftE"): Turn<uint32_t>(data); break;
    case ZV_FourCC("pwpc"):
    case ZV_FourCC("ppcb"): Turn<uint32_t>(data.first(std::min<std::size_t>(data.size(), 8))); break;
    case ZV_FourCC("mode"):
    case ZV_FourCC("mxsz"):
    case ZV_FourCC("mxch"): Turn<uint16_t>(data); break;
    default: break;
    }
}

/// Text up to a zero.
std::string Text_Of(Span bytes)
{
    return std::string(bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0}));
}

/// A code as extensions of files have it: lower case, with zeros in place of blanks.
uint32_t Normal_Extension(uint32_t code)
{
    uint32_t normal = 0;
    for (int shift = 24; shift >= 0; shift -= 8) {
        uint32_t const c = code >> shift & 0xFF;
        uint32_t const lower = c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
        normal |= (c == ' ' ? 0 : lower) << shift;
    }
    return normal;
}

std::vector<ZVTypePair> Types_Of(Span bytes)
{
    std::vector<ZVTypePair> types(bytes.size() / 8);
    for (std::size_t i = 0; i < types.size(); ++i)
        types[i] = {Load<uint32_t>(&bytes[8 * i]), Load<uint32_t>(&bytes[8 * i + 4])};
    return types;
}

std::vector<uint32_t> Extensions_Of(Span bytes)
{
    std::vector<uint32_t> extensions(bytes.size() / 4);
    for (std::size_t i = 0; i < extensions.size(); ++i)
        extensions[i] = Normal_Extension(Load<uint32_t>(&bytes[4 * i]));
    return extensions;
}

/// Channels that a plug-in takes in a mode; 0 when its list is shorter.
int Channels_Of_Mode(Span counts, std::size_t mode)
{
    return counts.size() / 2 > mode ? Load<int16_t>(&counts[2 * mode]) : 0;
}

bool Take_Host(Span data, PluginProperties& plugin)
{
    auto const host = Load<uint32_t>(data.data());
    if (host == ZV_FourCC("DSLG")) plugin.flags |= ZV_PLUGIN_HOST;
    return host == ZV_BLANK_CODE || host == ZV_FourCC("8BIM") || host == ZV_FourCC("DSLG");
}

/// The highest bit of the word stands for mode 0.
bool Take_Modes(Span data, PluginProperties& plugin)
{
    auto const modes = Load<uint16_t>(data.data());
    plugin.imageModes = 0;
    for (int mode = 0; mode < 16; ++mode)
        if (modes & 0x8000 >> mode) plugin.imageModes |= 1L << mode;
    return (plugin.imageModes & PluginModes) != 0;
}

bool Take_Name(Span data, PluginProperties& plugin)
{
    plugin.name = Text_Of(data.subspan(1, std::min<std::size_t>(data[0], data.size() - 1)));
    return true;
}

bool Take_Entry(Span data, PluginProperties& plugin)
{
    plugin.flags |= ZV_PLUGIN_CODE;
    if (data.size() > 1) plugin.entryName = Text_Of(data);
    return true;
}

bool Take_Fragment(Span data, PluginProperties& plugin)
{
    plugin.fragmentOffset = Load<int32_t>(&data[0]);
    plugin.fragmentLength = Load<int32_t>(&data[4]);
    return Take_Entry(data.subspan(8), plugin);
}

bool Take_Flags(Span data, PluginProperties& plugin)
{
    constexpr uint8_t canRead = 0x20, canWrite = 0x10, hasSpecialOptions = 0x80;
    if (!(data[0] & canRead)) plugin.properties &= ~static_cast<long>(ZV_FORMAT_READ);
    if (!(data[0] & canWrite)) plugin.properties &= ~static_cast<long>(ZV_FORMAT_WRITE);
    if (data.size() > 3 && (data[3] & hasSpecialOptions)) plugin.properties |= SpecialOptions;
    return true;
}

bool Take_Codes(Span data, PluginProperties& plugin)
{
    plugin.fileType = Load<uint32_t>(&data[0]);
    plugin.fileCreator = Load<uint32_t>(&data[4]);
    return true;
}

bool Take_Size(Span data, PluginProperties& plugin)
{
    plugin.maxWidth = Load<int16_t>(&data[0]);
    plugin.maxHeight = Load<int16_t>(&data[2]);
    return true;
}

bool Take_Channels(Span data, PluginProperties& plugin)
{
    if (Channels_Of_Mode(data, 3) > 3 || Channels_Of_Mode(data, 11) >= 4)
        plugin.properties |= ZV_FORMAT_ALPHA;
    return true;
}

template <auto list> bool Take_Types(Span data, PluginProperties& plugin)
{
    plugin.*list = Types_Of(data);
    return true;
}

template <auto list> bool Take_Extensions(Span data, PluginProperties& plugin)
{
    plugin.*list = Extensions_Of(data);
    return true;
}

/// A property that counts here. Data of fewer bytes refuse the plug-in.
struct PropertyRule {
    uint32_t key;
    std::size_t leastSize;
    bool (*take)(Span data, PluginProperties& plugin);
};

constexpr PropertyRule Rules[] = {
    {ZV_FourCC("kind"), 4,
     [](Span data, PluginProperties&) { return Load<uint32_t>(data.data()) == FormatKind; }},
    {ZV_FourCC("vers"), 4, [](Span data, PluginProperties&) { return Load<int32_t>(data.data()) <= 1; }},
    {ZV_FourCC("host"), 4, Take_Host},
    {ZV_FourCC("mode"), 2, Take_Modes},
    {ZV_FourCC("name"), 1, Take_Name},
    {ZV_FourCC("mach"), 0, Take_Entry},
    {ZV_FourCC("pwpc"), 8, Take_Fragment},
    {ZV_FourCC("ppcb"), 8, Take_Fragment},
    {ZV_FourCC("fmTC"), 8, Take_Codes},
    {ZV_FourCC("fmtf"), 1, Take_Flags},
    {ZV_FourCC("mxsz"), 4, Take_Size},
    {ZV_FourCC("mxch"), 0, Take_Channels},
    {ZV_FourCC("RdTy"), 0, Take_Types<&PluginProperties::readTypes>},
    {ZV_FourCC("RdEx"), 0, Take_Extensions<&PluginProperties::readExtensions>},
    {ZV_FourCC("fftT"), 0, Take_Types<&PluginProperties::filterTypes>},
    {ZV_FourCC("fftE"), 0, Take_Extensions<&PluginProperties::filterExtensions>},
};

}  // namespace

long Flip_PiPL(void* bytes, long size)
{
    if (!bytes || size < static_cast<long>(ListHeaderSize)) return BadResource;
    std::span const list(static_cast<uint8_t*>(bytes), static_cast<std::size_t>(size));
    if (Load_Big32(list.data()) != 0) return BadResource;
    bool const isWhole = Walk_Properties(list, Turn<uint32_t>, [](uint32_t key, std::span<uint8_t> data) {
        Turn_Property(key, data);
        return true;
    });
    return isWhole ? 0 : BadResource;
}

bool Parse_Property_List(Span bytes, PluginProperties& plugin)
{
    if (bytes.size() < ListHeaderSize || Load<int32_t>(bytes.data()) > 0) return false;
    plugin.properties = ZV_FORMAT_READ | ZV_FORMAT_WRITE;
    bool const isTaken = Walk_Properties(
        bytes, [](Span) {},
        [&](uint32_t key, Span data) {
            auto const* const rule = std::ranges::find(Rules, key, &PropertyRule::key);
            return rule == std::end(Rules) || (data.size() >= rule->leastSize && rule->take(data, plugin));
        });
    return isTaken && (plugin.imageModes & PluginModes);
}

// ---- the predecessor --------------------------------------------------------------------------------------

namespace {

/// The lists behind the fixed part, in the machine's order; empty when they do not fit.
struct InfoLists {
    Span types, extensions;
    bool fit;
};

InfoLists Lists_Of(Span bytes)
{
    std::size_t const types = std::size_t{Load<uint16_t>(&bytes[16])} * 8;
    std::size_t const extensions = std::size_t{Load<uint16_t>(&bytes[18])} * 4;
    if (types + extensions > bytes.size() - InfoSize) return {{}, {}, false};
    return {bytes.subspan(InfoSize, types), bytes.subspan(InfoSize + types, extensions), true};
}

}  // namespace

long Flip_PIMI(void* bytes, long size)
{
    if (!bytes || size < static_cast<long>(InfoSize)) return BadResource;
    std::span const info(static_cast<uint8_t*>(bytes), static_cast<std::size_t>(size));
    for (std::size_t at : {0, 10, 16, 18, 32, 58, 60})
        Turn<uint16_t>(info.subspan(at, 2));
    for (std::size_t at : {12, 62, 66})
        Turn<uint32_t>(info.subspan(at, 4));
    InfoLists const lists = Lists_Of(info);
    Turn<uint32_t>(info.subspan(InfoSize, lists.types.size() + lists.extensions.size()));
    return lists.fit ? 0 : BadResource;
}

bool Parse_Module_Info(Span bytes, PluginProperties& plugin)
{
    if (bytes.size() < InfoSize || Load<int16_t>(&bytes[0]) > 1) return false;
    auto const host = Load<uint32_t>(&bytes[12]);
    if (host != ZV_BLANK_CODE && host != PluginHostSignature) return false;
    InfoLists const lists = Lists_Of(bytes);
    plugin.imageModes = Load<uint16_t>(&bytes[10]);
    if (!lists.fit || !(plugin.imageModes & PluginModes)) return false;
    plugin.flags |= ZV_PLUGIN_CODE;
    if (bytes[20]) plugin.properties |= ZV_FORMAT_READ;
    if (bytes[22]) plugin.properties |= ZV_FORMAT_WRITE;
    if (Load<int16_t>(&bytes[32]) > 3) plugin.properties |= ZV_FORMAT_ALPHA;
    if (plugin.imageModes & 1 << 3) plugin.properties |= HasRGBMode;
    if (plugin.imageModes & 1 << 11) plugin.properties |= HasRGB48Mode;
    plugin.maxWidth = Load<int16_t>(&bytes[58]);
    plugin.maxHeight = Load<int16_t>(&bytes[60]);
    plugin.fileType = Load<uint32_t>(&bytes[62]);
    plugin.fileCreator = Load<uint32_t>(&bytes[66]);
    plugin.readTypes = Types_Of(lists.types);
    plugin.readExtensions = Extensions_Of(lists.extensions);
    return true;
}
