// What the files of this folder share about the clip record.
#pragma once

#include "ClipMemory.h"

/// A record with the defaults of a new clip; null with error 1.
ZVClip* Alloc_Clip();

/// Frees both option blocks, which may be one.
void Discard_Params(ZVClip* clip);

/// Gives the clip another format, null for none, and drops its options. A module at work on the clip is
/// closed first when it is not that one, since its ModuleData means nothing to another.
void Set_Clip_Format(ZVClip* clip, ZVFormatDesc* desc);

/// Opens the module of a clip that has a format and a name, and leaves every setting as it was.
/// @return  1, with error 0; 0 with the error number set
long Open_Module(ZVClip* clip, TagItem* tags);

/// Puts back into `clip` what CloneClipZV copied from it into `saved`, and frees `saved`. Needs no memory.
void Restore_Clip(ZVClip* clip, ZVClip* saved);

/// What a clip most likely has by its size, when its module does not know.
struct UsualRates {
    bool isPreset;  ///< it is one of the footage presets
    double rate, aspect;
};
UsualRates Usual_Rates(ZVClip const& clip);

/// Whether that is what is left to find out.
bool Lacks_Rate(ZVClip const& clip);
bool Lacks_Aspect(ZVClip const& clip);
