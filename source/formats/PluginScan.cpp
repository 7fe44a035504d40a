// The scan of the directory Plugins for format modules, and the place of what it finds in the list of
// formats.
#include "ZVLibInternal.h"

#include <new>
#include <string>
#include <string_view>

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

long FormatModule_CheckFile(char const* spec, unsigned long type, long data, long*)
{
    char const text[] = {static_cast<char>(type), static_cast<char>(type >> 8), static_cast<char>(type >> 16),
                         static_cast<char>(type >> 24)};
    // FIXME: files of the types 8BA, 8BE, 8BF, 8BI, 8BP, 8BX, 8BY, 8BIF, 8BPI, 8BAM, 8BEM, 8BFM, 8BXM and
    // 8BYM are looked into for PiPL resources, or PiMI resources, once there is a host for format plug-ins.
    if (std::string_view(text, sizeof text) == "IFM ") Init_IFM(spec, reinterpret_cast<ZVScanDesc*>(data));
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
