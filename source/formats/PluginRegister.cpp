// Photoshop format plug-ins in the list of formats: how one gets there from its resources, and the entries
// that have nothing to do with frames.
#include "FormatModule.h"
#include "PluginCall.h"
#include "PluginEntries.h"
#include "PluginProperties.h"

#include "clips/ClipMemory.h"
#include "clips/FormatMatch.h"

#include <algorithm>
#include <new>

namespace {

/// What all plug-ins can do as writers beside what their resources tell.
constexpr long ExportProperties = 0x10000 | ZV_FORMAT_SELF_SCALE;

// ---- entries ----------------------------------------------------------------------------------------------

/// Takes the mark of an open clip away, which would mean something else to another module.
void Plugin_Close(ZVClip* clip)
{
    clip->ModuleData = nullptr;
}

/// Lets the plug-in ask for options, or with `silent` just prepare them. 0 when it cannot be loaded.
long Ask_Options(ZVClip* clip, bool silent)
{
    if (!clip->Format || !clip->Format->Plugin) return 0;
    PluginCall call(clip->Format, clip);
    if (!call.Is_Loaded()) return 0;
    bool const isPrepared = call.Send(formatSelectorOptionsPrepare);
    Describe_Picture(call.Record(), *clip, plugInModeRGBColor, 8);
    if (isPrepared && !silent) {
        call.Send(formatSelectorOptionsStart);
        call.Send(formatSelectorOptionsFinish);
    }
    return 1;
}

void Plugin_Options(ZVClip* clip, bool silent)
{
    Ask_Options(clip, silent);
}

/// A plug-in has its options before the first frame.
long Plugin_Create(ZVClip* clip, unsigned long)
{
    return clip->VideoParams ? 1 : Ask_Options(clip, false);
}

void Plugin_About(ZVFormatDesc* desc)
{
    PluginCall call(desc, nullptr);
    if (call.Is_Loaded()) call.Send(formatSelectorAbout);
}

/// Lets the plug-in look into a file.
bool Is_Of_Plugin(ZVFormatDesc* desc, char const* spec)
{
    PluginCall call(desc, nullptr);
    return call.Is_Loaded() && call.Open_File(spec) && call.Send(formatSelectorFilterFile);
}

long Plugin_CanLoad(ZVFormatDesc* desc, char const* spec, unsigned long creator, unsigned long type,
                    unsigned long extension)
{
    if (!(desc->PluginProperties & ZV_FORMAT_READ)) return 0;
    if (Standard_CanLoad(desc, spec, creator, type, extension)) return 1;
    for (long i = 0; i < desc->FilterTypeCount; ++i)
        if (Matches_Codes(desc->FilterTypes[i], creator, type) && Is_Of_Plugin(desc, spec)) return 1;
    for (long i = 0; i < desc->FilterExtensionCount; ++i)
        if (desc->FilterExtensions[i] == extension && Is_Of_Plugin(desc, spec)) return 1;
    return 0;
}

long Plugin_GetImportProperties(ZVFormatDesc* desc)
{
    return desc->PluginProperties;
}

long Plugin_GetExportProperties(ZVFormatDesc* desc, ZVClip*)
{
    return desc->PluginProperties | ExportProperties;
}

// ---- registration -----------------------------------------------------------------------------------------

void Set_Entries(ZVFormatDesc* desc)
{
    desc->Open = Plugin_Open;
    desc->Close = Plugin_Close;
    desc->Create = Plugin_Create;
    desc->BeginIO = Always_Ready;
    desc->EndIO = Always_Ready;
    desc->GetFrame = Plugin_GetFrame;
    desc->AddFrame = Plugin_AddFrame;
    desc->Options = Plugin_Options;
    desc->About = Plugin_About;
    desc->CanLoad = Plugin_CanLoad;
    desc->GetImportProperties = Plugin_GetImportProperties;
    desc->GetExportProperties = Plugin_GetExportProperties;
}

/// The code module of a plug-in; null without memory.
ZVPlugin* Make_Module(PluginProperties const& plugin, char const* spec)
{
    auto* const module = Alloc_Zeroed<ZVPlugin>(1);
    if (!module) return nullptr;
    module->Flags = plugin.flags;
    module->FragmentOffset = plugin.fragmentOffset;
    module->FragmentLength = plugin.fragmentLength;
    module->FileSpec = CopyFileSpecZV(spec);
    if (!plugin.entryName.empty()) module->EntryName = AllocString(plugin.entryName.c_str());
    if (module->FileSpec && (plugin.entryName.empty() || module->EntryName)) return module;
    Free_Plugin(module);
    return nullptr;
}

ZVFormatDesc* Make_Desc(PluginProperties const& plugin, std::string const& name, char const* spec)
{
    ZVFormatDesc* const desc = Make_Format_Desc(
        {name.c_str(), plugin.fileType, plugin.fileCreator, plugin.readTypes.data(),
         std::ssize(plugin.readTypes), plugin.readExtensions.data(), std::ssize(plugin.readExtensions)});
    if (!desc) return nullptr;
    desc->Plugin = Make_Module(plugin, spec);
    desc->MaxWidth = plugin.maxWidth;
    desc->MaxHeight = plugin.maxHeight;
    desc->ImageModes = plugin.imageModes;
    desc->PluginProperties = plugin.properties;
    if (desc->Plugin &&
        Copy_Array(plugin.filterTypes.data(), std::ssize(plugin.filterTypes), desc->FilterTypes,
                   desc->FilterTypeCount) &&
        Copy_Array(plugin.filterExtensions.data(), std::ssize(plugin.filterExtensions),
                   desc->FilterExtensions, desc->FilterExtensionCount))
        return desc;
    Free_Format_Mod(desc);
    return nullptr;
}

/// A plug-in for hosts of this library stands with its modules, under its name alone.
/// @param progress  what progress shows behind the name
long Register(PluginProperties const& plugin, std::string name, ZVPluginScan const& scan,
              char const* progress)
{
    bool const isOurs = plugin.flags & ZV_PLUGIN_HOST;
    if (name.empty()) {
        char fileName[ZV_SPEC_SIZE];
        name = GetFileNameZV(scan.FileSpec, fileName);
    }
    ZVFormatDesc* const desc = Make_Desc(plugin, isOurs ? name : "PS " + name, scan.FileSpec);
    if (!desc) return 0;
    Set_Entries(desc);
    if (isOurs)
        Insert_Loaded_Format(desc);
    else
        AddTail(&ZVEnv->formats, &desc->Node);
    Show_Scan_Progress(scan.Scan, name.c_str(), progress);
    return 1;
}

/// Reads a copy of a resource, whose numbers are turned first.
/// @param name  of the plug-in where the resource has none
long Parse_Resource(ZVResource const* resource, long (*flip)(void*, long),
                    bool (*parse)(std::span<uint8_t const>, PluginProperties&), std::string const& name,
                    ZVPluginScan const& scan, char const* progress)
{
    if (!resource || !resource->Data || resource->Size < 1 || !ZVEnv) return 0;
    auto const* const data = static_cast<uint8_t const*>(resource->Data);
    std::vector<uint8_t> bytes(data, data + resource->Size);
    PluginProperties plugin;
    if (flip(bytes.data(), resource->Size) != 0 || !parse(bytes, plugin)) return 0;
    return Register(plugin, plugin.name.empty() ? name : plugin.name, scan, progress);
}

/// A plug-in that there is no memory for is refused.
template <typename Parse> long Guarded(Parse parse)
{
    try {
        return parse();
    } catch (std::bad_alloc const&) {
        SetError(ZV_ERR_MEMORY);
        return 0;
    }
}

}  // namespace

long Parse_PIPL(ZVResource* resource, long data)
{
    auto const& scan = *reinterpret_cast<ZVPluginScan const*>(data);
    return Guarded(
        [&] { return Parse_Resource(resource, Flip_PiPL, Parse_Property_List, "", scan, "              "); });
}

long Parse_PIMI(ZVResource* resource, long data)
{
    auto const& scan = *reinterpret_cast<ZVPluginScan const*>(data);
    return Guarded(
        [&] { return Parse_Resource(resource, Flip_PIMI, Parse_Module_Info, scan.Name, scan, ""); });
}

long Parse_8BIF(ZVResource* resource, long data)
{
    auto& scan = *reinterpret_cast<ZVPluginScan*>(data);
    std::string_view const name(resource->Name ? resource->Name : "");
    scan.Name[name.copy(scan.Name, sizeof scan.Name - 1)] = 0;
    scan.ID = resource->ID;
    return 1;
}
