// Code modules: loaded, counted and let go.
#include "SpecText.h"

#include "ZVLibInternal.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <string_view>
#include <utility>

namespace {

constexpr char DefaultEntry[] = "ENTRYPOINT1";
constexpr std::string_view BundleMark = "\\Contents\\Info.plist";
constexpr uint32_t ModuleCreator = ZV_FourCC("Qrnd");
constexpr std::array ModuleTypes = {ZV_FourCC("OZV "), ZV_FourCC("IFX "), ZV_FourCC("IFM "),
                                    ZV_FourCC("8BIF")};

char const* Entry_Name(ZVPlugin const& plugin)
{
    return plugin.EntryName ? plugin.EntryName : DefaultEntry;
}

bool Is_Shared_Object(char const* spec)
{
    uint32_t creator = 0, type = 0;
    Get_FileInfo(spec, &creator, &type);
    return creator == ModuleCreator && std::ranges::find(ModuleTypes, type) != ModuleTypes.end();
}

void* Handle_Of(ZVPlugin const& plugin)
{
    return plugin.Bundle ? plugin.Bundle : plugin.Library;
}

/// Maps a shared object or the code of a bundle, and shows a failure.
/// @param open  OS_Open_Module or OS_Open_Bundle
void* Open_Code(void* (*open)(char const* path), char const* spec)
{
    char path[PATH_MAX];
    if (!OS_Native_Path(spec, path, sizeof path)) {
        SetError(ZV_ERR_NOT_FOUND);
        return nullptr;
    }
    void* const handle = open(path);
    if (!handle) UserMessageZV("dlopen() return \"%s\" while loading \"%s\"", OS_Module_Error(), path);
    return handle;
}

/// The folder of the bundle whose Info.plist a spec names; empty for any other spec.
SpecText Bundle_Of(char const* spec)
{
    std::string_view const text(spec);
    std::size_t const mark = text.find(BundleMark);
    return mark == text.npos ? SpecText() : SpecText(text.substr(0, mark));
}

/// There are no code fragments on this system.
void Show_No_Fragment(char const* spec)
{
    constexpr std::string_view reason = "not a code module of this system";
    UserMessageZV("GetDiskFragment() return \"%.*s\" while loading \"%.*s\"", static_cast<int>(reason.size()),
                  reason.data(), static_cast<int>(std::strlen(spec)), spec);
}

/// Maps the code, unless it still is.
bool Map_Code(ZVPlugin& plugin)
{
    if (Handle_Of(plugin)) return true;
    if (!plugin.FileSpec) return false;
    SpecText const bundle = Bundle_Of(plugin.FileSpec);
    if (bundle.Length() > 0) return (plugin.Bundle = Open_Code(OS_Open_Bundle, bundle.Text())) != nullptr;
    if (Is_Shared_Object(plugin.FileSpec))
        return (plugin.Library = Open_Code(OS_Open_Module, plugin.FileSpec)) != nullptr;
    Show_No_Fragment(plugin.FileSpec);
    return false;
}

void Unmap_Code(ZVPlugin& plugin)
{
    OS_Close_Module(std::exchange(plugin.Bundle, nullptr));
    OS_Close_Module(std::exchange(plugin.Library, nullptr));
}

/// Finds the entry of mapped code. Without one, the code of a shared object is unmapped again.
bool Find_Entry(ZVPlugin& plugin)
{
    if (plugin.Bundle) {
        plugin.Proc = plugin.EntryName ? OS_Find_Function(plugin.Bundle, plugin.EntryName) : nullptr;
        if (!plugin.Proc) Assert_Fail(__FILE__, __LINE__);
        return true;
    }
    plugin.Proc = OS_Find_Function(plugin.Library, Entry_Name(plugin));
    if (plugin.Proc) return true;
    char path[PATH_MAX] = "";
    OS_Native_Path(plugin.FileSpec, path, sizeof path);
    UserMessageZV("dlopen() return \"%s\" while loading \"%s\" of \"%s\"", OS_Module_Error(),
                  Entry_Name(plugin), path);
    if (plugin.UseCount == 0) Unmap_Code(plugin);
    return false;
}

void Count_Use(ZVPlugin& plugin, long withResources)
{
    ++plugin.UseCount;
    if (withResources && !plugin.ResourceFile) plugin.ResourceFile = BeginResourceAccessZV(plugin.FileSpec);
}

}  // namespace

ZVPluginProc LoadPluginZV(ZVPlugin* plugin, long withResources)
{
    if (!plugin) return nullptr;
    if (plugin->UseCount > 0 && plugin->Proc) {
        ++plugin->UseCount;
        return plugin->Proc;
    }
    if (!Map_Code(*plugin) || !Find_Entry(*plugin)) return nullptr;
    Count_Use(*plugin, withResources);
    return plugin->Proc;
}

long LoadPlugin2ZV(ZVPlugin* plugin, long withResources)
{
    if (!plugin) return 0;
    if (plugin->UseCount > 0) {
        ++plugin->UseCount;
        return 1;
    }
    if (!Map_Code(*plugin)) return 0;
    Count_Use(*plugin, withResources);
    return 1;
}

ZVPluginProc GetProcAddressZV(ZVPlugin* plugin, char const* symbol)
{
    if (!plugin || !symbol || !Handle_Of(*plugin)) return nullptr;
    return OS_Find_Function(Handle_Of(*plugin), symbol);
}

void PluginIdleZV(ZVPlugin* plugin, long unload)
{
    if (!plugin || plugin->UseCount == 0 || --plugin->UseCount > 0) return;
    plugin->Proc = nullptr;
    if (!unload) return;
    Unmap_Code(*plugin);
    FreeMemZV(std::exchange(plugin->CodeResource, nullptr));
    EndResourceAccessZV(std::exchange(plugin->ResourceFile, nullptr));
}

long IsPluginValidZV(ZVPlugin*)
{
    return 1;
}

void Free_Plugin(ZVPlugin* plugin)
{
    if (!plugin) return;
    // Also code that was left mapped for a quick load has to go with its record.
    plugin->UseCount = 1;
    PluginIdleZV(plugin, 1);
    FreeFileSpecZV(plugin->FileSpec);
    FreeMemZV(plugin->EntryName);
    FreeMemZV(plugin);
}
