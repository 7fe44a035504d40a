// The keyboard focus of text fields and lists, and the keys that go to them.
#pragma once

#include "MacNativeItem.h"
#include "ZVLibInternal.h"

#include <string_view>

/// A press in the focused text field, which has its point in its rectangle: places the caret and follows the
/// mouse; event 5 comes with the release. 0 when the point is elsewhere or nothing has the focus.
long Focused_Text_Press(ZVWindow* window, long x, long y);

/// Text typed, or handed over by the input method, and the method's unfinished text with the characters ahead
/// of the caret. They go to the focused field; without one nothing happens.
void Enter_Text(std::string_view utf8);
void Compose_Text(std::string_view utf8, int caret);

/// Event 5 of an item with report bits. The palette may be gone afterwards.
void Send_Gadget_Event(ZVItem& item, uint32_t reportBits);
