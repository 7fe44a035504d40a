// The list of format modules: registration, properties and release.
#include "ClipMemory.h"

void InitFormatModulesZV(ZVScanDesc* scan)
{
    if (!ZVEnv) return;
    Add_PICT_Format(scan);
    Add_PICS_Format(scan);
    Add_Filmstrip_Format(scan);
    Add_EIDI_Format(scan);
    Add_VPB_Format(scan);
    Add_RAM_Format(scan);
}

void InitAllFormatModulesZV(ZVScanDesc* scan)
{
    InitFormatModulesZV(scan);
    Add_Plugin_Formats(scan);
}

ZVFormatDesc* Make_Format_Desc(ZVBuiltinFormat const& format)
{
    ZVFormatDesc* desc = Alloc_Zeroed<ZVFormatDesc>(1);
    if (!desc) return nullptr;
    desc->MaxWidth = 32767;
    desc->MaxHeight = 32767;
    desc->FileType = format.fileType;
    desc->FileCreator = format.fileCreator;
    if (!AddName(&desc->Node, format.name) ||
        !Copy_Array(format.readTypes, format.readTypeCount, desc->ReadTypes, desc->ReadTypeCount) ||
        !Copy_Array(format.readExtensions, format.readExtensionCount, desc->ReadExtensions,
                    desc->ReadExtensionCount)) {
        Free_Format_Mod(desc);
        return nullptr;
    }
    return desc;
}

void Free_Format_Mod(ZVFormatDesc* desc)
{
    if (!desc) return;
    if (desc->Cleanup) desc->Cleanup(desc);
    Free_Plugin(desc->Plugin);
    FreeMemZV(desc->Node.name);
    FreeMemZV(desc->ReadTypes);
    FreeMemZV(desc->FilterTypes);
    FreeMemZV(desc->ReadExtensions);
    FreeMemZV(desc->FilterExtensions);
    FreeMemZV(desc->DefaultVideoParams);
    FreeMemZV(desc->DefaultAudioParams);
    FreeMemZV(desc);
}

void Free_Format_Modules()
{
    if (!ZVEnv) return;
    while (Node* node = RemHead(&ZVEnv->formats))
        Free_Format_Mod(reinterpret_cast<ZVFormatDesc*>(node));
}

long GetImportPropertiesZV(ZVFormatDesc* desc)
{
    return desc ? desc->GetImportProperties(desc) : 0;
}

long GetExportPropertiesZV(ZVClip* clip)
{
    ZVFormatDesc* const desc = clip ? clip->Format : nullptr;
    return desc && desc->GetExportProperties ? desc->GetExportProperties(desc, clip) : 0;
}

long GetExportPropertiesZV(ZVFormatDesc* desc)
{
    return desc && desc->GetExportProperties ? desc->GetExportProperties(desc, nullptr) : 0;
}
