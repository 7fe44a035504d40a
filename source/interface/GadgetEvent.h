// Custom events that the mouse causes.
#pragma once

#include "HitTest.h"
#include "ZVEvent.h"

/// Sends a custom event to an item with the mouse at a point of the screen and its last movement.
void Send_Gadget_Event(uint16_t type, ZVItem* item, ZVPlace onScreen);

/// The mouse as it stands on the screen.
ZVPlace Pointer();
