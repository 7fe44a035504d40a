// Window preferences: the user's arrangement of palettes, kept from run to run. InitZV reads it from the file
// that it is told, the library follows what happens to palettes, and the application writes it back. Palettes
// are known by name, their ZV_PAL_PREF_NAME or else their title, regardless of case. Documents, palettes
// without a name and those with ZV_PALF_NO_PREFS are not kept. A file of a display of another size does not
// count. Main thread only.
//
// The file is text, each line ended by a CR:
//
//     Window Preferences
//     Screen 1600 1200
//
//     Window 20 44
//         Palette "Timeline" 400 220 Active
//         Palette "Info" 400 220 Hidden
//
//     PseudoWindow 3 0 0
//         Palette "Controls" 200 90
//
// A name that such a line cannot hold, with a double quote or an end of line in it or too long for 255 bytes,
// is left out.
//
// The last thing before CleanUpZV, an application writes a new file and puts it in the old one's place once
// it is whole, so that a full disk or a crash costs no arrangement:
//
//     SetError(ZV_ERR_NONE);
//     ZVFileInfo* file = CreateFileZV(newSpec, ZVFilePermWrite, 'TEXT', 'ttxt', ZVFileFlagNone);
//     long isWhole = SaveWindowPositionsZV(file);
//     CloseFileZV(file);  // writes what is left, and tells by the error number whether that went well
//     if (isWhole && GetErrorZV() == ZV_ERR_NONE)
//         RenameFileZV(newSpec, spec);
//     else
//         DeleteFileZV(newSpec);
#pragma once

#include "ZVFile.h"
#include "ZVWindow.h"

/// Takes down how things stand now, and writes the preferences to an open file.
/// @return  1, or 0 with the error number set when a write fails, and without a file
ZV_API long SaveWindowPositionsZV(ZVFileInfo* file);

/// What is known of a palette by its name. Outputs may be null.
/// @param visible   0 for a palette that was not open at the end of the last run, or has been closed in this
///                  one; 1 otherwise, for an unknown name too
/// @param window    of an open palette that was in one window with it, or its pseudo-window; null for none
/// @param pseudoId  of the pseudo-window, or 0
/// @param x, y      of the window's client area
/// @param height    with the tab bar of a floater
/// @param active    1 for the active palette of its window
/// @return  1, or 0 for an unknown name, the outputs but `visible` then left alone
ZV_API long GetPalettePrefsZV(char const* name, long* visible, ZVWindow** window, unsigned long* pseudoId,
                              long* x, long* y, long* width, long* height, long* active);

/// Forgets all preferences.
ZV_API void FreeWindowPrefsZV();
