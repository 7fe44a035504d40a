// The scan of the directory Plugins for format modules, and the place of what it finds in the list of
// formats.
#include "ZVLibInternal.h"

#include "foundation/HeapBlock.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string>

/// From this bit up a plug-in's lowest byte of flags tells that it comes with the loaded modules.
static constexpr unsigned long FirstPlaceFlag = ZV_PLUGIN_MODULE;

static bool Is_Plain_Plugin(ZVFormatDesc const& desc)
{
    return desc.Plugin && (desc.Plugin->Flags & 0xFF) < FirstPlaceFlag;
}

void Insert_Loaded_Format(ZVFormatDesc* desc)
{
    Node* successor = List_First(&ZVEnv->formats);
    while (successor && !Is_Plain_Plugin(*reinterpret_cast<ZVFormatDesc*>(successor)))
        successor = List_Next(successor);
    InsertBefore(&ZVEnv->formats, &desc->Node, successor);
}

// ---- what is in a file ------------------------------------------------------------------------------------

/// Types of files that hold Photoshop plug-ins of one kind or another.
static constexpr std::array PluginTypes = {
    ZV_FourCC("8BA "), ZV_FourCC("8BE "), ZV_FourCC("8BF "), ZV_FourCC("8BI "), ZV_FourCC("8BP "),
    ZV_FourCC("8BX "), ZV_FourCC("8BY "), ZV_FourCC("8BIF"), ZV_FourCC("8BPI"), ZV_FourCC("8BAM"),
    ZV_FourCC("8BEM"), ZV_FourCC("8BFM"), ZV_FourCC("8BXM"), ZV_FourCC("8BYM")};

/// Plug-ins of the old kind: each has two resources at the same index, one with the name and one with the
/// rest. Both ways of writing the second one's type are in use.
static void Scan_Old_Plugins(ZVResourceFile* file, ZVPluginScan& scan)
{
    auto const data = reinterpret_cast<long>(&scan);
    for (char const* type : {"PiMI", "PIMI"}) {
        long const count = NumResourceIDZV(file, type);
        for (long index = 1; index <= count; ++index) {
            scan.Name[0] = 0;
            EnumResourceIDZV(file, "8BIF", Parse_8BIF, data, ZV_RESOURCE_FIRST, index, ZV_RESOURCE_LAST,
                             index, 0);
            EnumResourceIDZV(file, type, Parse_PIMI, data, ZV_RESOURCE_FIRST, index, ZV_RESOURCE_LAST, index,
                             0);
        }
    }
}

static void Scan_Plugins(char const* spec, uint32_t type, ZVScanDesc* progress)
{
    std::unique_ptr<ZVResourceFile, Released_By<EndResourceAccessZV>> const file(BeginResourceAccessZV(spec));
    ZVPluginScan scan = {spec, progress, "", 0};
    if (NumResourceIDZV(file.get(), "PiPL") > 0)
        EnumResourceIDZV(file.get(), "PiPL", Parse_PIPL, reinterpret_cast<long>(&scan), nullptr);
    else if (type == ZV_FourCC("8BIF") || type == ZV_FourCC("8BI "))
        Scan_Old_Plugins(file.get(), scan);
}

long FormatModule_CheckFile(char const* spec, unsigned long type, long data, long*)
{
    // The first character of a type stands in its lowest byte here.
    uint32_t const code = __builtin_bswap32(static_cast<uint32_t>(type));
    auto* const progress = reinterpret_cast<ZVScanDesc*>(data);
    if (code == ZV_FourCC("IFM "))
        Init_IFM(spec, progress);
    else if (std::ranges::find(PluginTypes, code) != PluginTypes.end())
        Scan_Plugins(spec, code, progress);
    return 1;
}

static void Scan_Directory(char const* directory, ZVScanDesc* scan)
{
    char const* const directories[] = {directory, nullptr};
    EnumFilesZV(directories, nullptr, FormatModule_CheckFile, reinterpret_cast<long>(scan), 1, -1);
}

long Add_Plugin_Formats(ZVScanDesc* scan)
{
    if (!ZVEnv) return 0;
    try {
        Scan_Directory((std::string(ZVEnv->homeDir) + "Plugins").c_str(), scan);
        return 1;
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}

long Add_Library_Formats(ZVScanDesc* scan)
{
    char* const directory = ZVEnv ? Find_Library_Plugins() : nullptr;
    if (!directory) return 0;
    Scan_Directory(directory, scan);
    FreeFileSpecZV(directory);
    return 1;
}
