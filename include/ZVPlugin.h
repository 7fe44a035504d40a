// Code modules: shared objects that are loaded while somebody uses them. A file is one by its codes: creator
// `Qrnd` and type `OZV `, `IFX `, `IFM ` or `8BIF`, which the extensions .ifm and .8bi stand for where a file
// has none of its own. A bundle is one too; its code lies in Contents/Linux under the bundle's own name. The
// counts have no lock: one thread at a time.
#pragma once

#include "ZVBase.h"

class ZVResourceFile;

/// Bits of ZVPlugin::Flags. The lowest byte decides a module's place in the list of formats.
enum ZVPluginFlag : unsigned long {
    ZV_PLUGIN_CODE = 0x1,     ///< has code
    ZV_PLUGIN_IFM = 0x8,      ///< a module of the library's own kind
    ZV_PLUGIN_FORMAT = 0x10,  ///< a Photoshop format plug-in
    ZV_PLUGIN_MODULE = 0x40,  ///< comes with the loaded modules, before other plug-ins
    ZV_PLUGIN_HOST = 0x80     ///< a plug-in made for hosts of this library, with the same place
};

using ZVPluginProc = void (*)();  ///< An entry, to be cast to the type that its kind of module gives it.

/// A code module. Allocated zeroed with AllocMemZV by who registers it. With its code goes whatever was had
/// from it: functions, and pointers to its data.
struct ZVPlugin {
    long Reserved1;
    long Reserved2;
    char* FileSpec;  ///< the module's file, owned; for a bundle that of its Contents\Info.plist
    unsigned long Flags;
    long FragmentOffset;  ///< of a code fragment inside the file; 0 and 0 for the whole file
    long FragmentLength;
    char* EntryName;               ///< symbol of the entry, owned; null for "ENTRYPOINT1"
    void* CodeResource;            ///< block from AllocMemZV that goes with the code, or null
    ZVResourceFile* ResourceFile;  ///< the module's resources while they are open, or null
    void* Connection;              ///< of a code fragment; there are none here, always null
    void* Library;                 ///< handle of a shared object that is mapped, or null
    void* Bundle;                  ///< the same of a bundle
    ZVPluginProc Proc;             ///< the entry while the module is in use, or null
    long UseCount;                 ///< loads minus idles
};

/// Loads the code, or uses what is still mapped, and counts one use more. A failure is shown to the user.
/// @param withResources  non-zero: opens the module's resources as well; it is no failure when it has none
/// @return  the entry; 0 with nothing changed for null and when code or entry cannot be had. A bundle without
///          EntryName or without that function is an assertion failure.
ZV_API ZVPluginProc LoadPluginZV(ZVPlugin* plugin, long withResources);

/// The same for a module that has no single entry: Proc stays null, and GetProcAddressZV finds its functions.
/// @return  1 or 0
ZV_API long LoadPlugin2ZV(ZVPlugin* plugin, long withResources);

/// A function of a module that is mapped; null for null and when there is none of that name.
ZV_API ZVPluginProc GetProcAddressZV(ZVPlugin* plugin, char const* symbol);

/// Counts one use less. With the last one Proc becomes null; with `unload` the code and the resources go too,
/// without it they stay for a quick load. Nothing happens at a count of 0.
ZV_API void PluginIdleZV(ZVPlugin* plugin, long unload);

ZV_API long IsPluginValidZV(ZVPlugin* plugin);  ///< Always 1.
