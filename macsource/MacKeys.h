// Keys of the desktop as those of the library.
#pragma once

#include "host/Display.h"

#include <cstdint>

/// The bits of ZVModifier for what is held.
uint32_t Modifier_Bits(HostModifiers const& held);

/// A key as key events have it, `(character << 16) | code`; 0 for a key that is none by itself, as modifier
/// keys are. A character that does not fit in 16 bits is 0, and so is a code that would be that of a named
/// key.
unsigned long Key_Of(HostEvent const& event);

void Key_Down(HostEvent const& event);
void Key_Up(HostEvent const& event);
