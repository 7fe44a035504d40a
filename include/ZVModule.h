// What a loadable format module is built against. A module is a shared object with the extension .ifm, or
// with the file type `IFM ` and the creator `Qrnd`, in the directory Plugins of an application. It adds one
// format:
//
//     #include <ZVLib.h>
//     static long Fill(ZVFormatDesc* desc) { ...; return 1; }
//     ZV_FORMAT_MODULE(Fill)
//
// The library loads a module at start to learn what it claims, and unloads it at once; it comes back with the
// first clip that needs it. So the module keeps nothing between calls but what hangs on a clip (ModuleData,
// its option blocks), and no pointer to the descriptor's arrays, which are made anew at each load. See
// examples/graymap and docs/format-modules.md.
//
// The entry gets a descriptor without name, arrays and options, with ModuleInfo set. It sets the name of
// `Node` with AddName, MaxWidth, MaxHeight, FileType and FileCreator, the arrays with their counts, each
// allocated with AllocMemZV, and its entry points. GetImportProperties must be there and is called when the
// entry has returned; what the module does not offer stays null. It returns non-zero when the descriptor is
// filled.
#pragma once

#include "ZVAudio.h"
#include "ZVClip.h"
#include "ZVEnvironment.h"
#include "ZVFormat.h"
#include "ZVPlugin.h"
#include "ZVRecordLayout.h"

/// What a module finds at ZVFormatDesc::ModuleInfo.
struct ZVModuleInfo {
    ZVEnvironment* Environment;
    long Reserved[7];  ///< 0
};

using ZVModuleEntry = long (*)(ZVFormatDesc* desc);

/// A number for the layout of all records that modules share with the library. It follows from the sizes of
/// the records and the places of their parts; the first number here counts changes that neither of them
/// shows.
consteval unsigned long Module_Layout()
{
    return Layout_Number({
        1,
        sizeof(TagItem),
        sizeof(List),
        sizeof(Node),
        sizeof(ZVRectT<long>),
        sizeof(ZVTimeValue),
        sizeof(ZVAudioFormat),
        sizeof(ZVBitmap),
        sizeof(ZVFormatParams),
        sizeof(ZVTypePair),
        sizeof(ZVCompletionParams),
        sizeof(ZVClipLayer),
        offsetof(ZVClipLayer, AlphaType),
        sizeof(ZVPlugin),
        offsetof(ZVPlugin, UseCount),
        offsetof(ZVEnvironment, formats),
        offsetof(ZVEnvironment, timeUnits),  // what may come behind the last field is no module's business
        sizeof(ZVFormatDesc),
        offsetof(ZVFormatDesc, MaxWidth),
        offsetof(ZVFormatDesc, ReadTypeCount),
        offsetof(ZVFormatDesc, ModuleInfo),
        offsetof(ZVFormatDesc, Open),
        offsetof(ZVFormatDesc, GetFrame),
        offsetof(ZVFormatDesc, CanLoad),
        offsetof(ZVFormatDesc, AddFrameAsync),
        sizeof(ZVClip),
        offsetof(ZVClip, ModuleData),
        offsetof(ZVClip, Width),
        offsetof(ZVClip, Flags),
        offsetof(ZVClip, AlphaType),
        offsetof(ZVClip, AudioFormat),
        offsetof(ZVClip, Layers),
    });
}

/// The layout that the library was built with.
ZV_API unsigned long GetModuleLayoutZV();

/// The exported entry of a module. One that was built against another layout answers 0 without a touch at the
/// descriptor.
#define ZV_FORMAT_MODULE(fill)                                                                               \
    extern "C" __attribute__((visibility("default"))) long ENTRYPOINT1(ZVFormatDesc* desc)                   \
    {                                                                                                        \
        return GetModuleLayoutZV() == Module_Layout() ? (fill)(desc) : 0;                                    \
    }
