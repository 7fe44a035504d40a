// What the user has set for the whole desktop and SDL does not tell.
#pragma once

#include <cstdint>

/// Within how long two presses are a double click, by the settings files that the common desktops keep.
uint64_t Desktop_Double_Click_Milliseconds();

/// How many pixels of an X display make a point, from 1 to 4, by the resolution that the desktop gives out
/// for text. Whole, so that pixels stay even.
int X_Display_Scale();
