// The keyboard focus of text fields and lists, and the keys that go to them.
#pragma once

#include "MacNativeItem.h"

#include <string_view>

/// Makes the press in a text field, or in a list, of the window its own. The point is in the system window.
/// @param when  the display's clock
/// @return  1 when there was one
long String_Gad_Check(ZVWindow* window, long x, long y);
long List_Gad_Check(ZVWindow* window, long x, long y, unsigned long when);

/// A press in the focused text field, which has its point in its rectangle: places the caret and follows the
/// mouse; event 5 comes with the release. 0 when the point is elsewhere or nothing has the focus.
long Focused_Text_Press(ZVWindow* window, long x, long y);

/// A key, as `(character << 16) | code`, to the focused field or list, else as event 1.
/// @param isEntered  the character comes by Enter_Text, so a field does not take it from here
void Handle_KeyStroke(unsigned long key, long isEntered);

/// Text typed, or handed over by the input method, and the method's unfinished text with the characters ahead
/// of the caret. They go to the focused field; without one nothing happens.
void Enter_Text(std::string_view utf8);
void Compose_Text(std::string_view utf8, int caret);

/// Event 5 of an item with report bits. The palette may be gone afterwards.
void Send_Gadget_Event(ZVItem& item, uint32_t reportBits);

/// Move the focus. False when nothing else takes it.
bool Tab_to_Next_Gad();
bool Tab_to_Prev_Gad();
