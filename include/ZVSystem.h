// Times, memory use, and other questions to the system; and help. Everything but help may be asked on any
// thread.
#pragma once

#include "ZVTags.h"

/// Milliseconds since the first call of the process. The count ends at 4294967295, after 49 days.
ZV_API unsigned long GetTimeZV();

ZV_API void StartTimerZV(unsigned long* timer);           ///< Stores the time.
ZV_API unsigned long ElapsedTimeZV(unsigned long timer);  ///< Milliseconds since StartTimerZV stored that.

ZV_API uint64_t GetAppMemUsageZV();  ///< Resident size of the process, in bytes.

ZV_API long GetSystemInfoZV();        ///< Always 0.
ZV_API long IsEditInstalledZV();      ///< Always 0.
ZV_API long IsSkiffbayInstalledZV();  ///< Always 0.

/// Opens a page of the folder Help in the home directory, with the desktop's browser. A page that is not
/// there, and a browser that cannot be started, are shown as messages 127 and 129. Main thread only.
/// @param tags  not read
/// @return  1 or 0
ZV_API long HelpZV(char const* name, TagItem* tags);
template <ZVTagKey Key, ZVTagValue... Rest> long HelpZV(char const* name, Key first, Rest... rest)
{
    return HelpZV(name, Tag_Array(first, rest...).data());
}
