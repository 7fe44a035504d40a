// What the gadgets of a file dialog have in common when they draw and report.
#pragma once

#include "gadgets/PressGadget.h"

#include "ZVLibInternal.h"

#include <string>

inline constexpr long CellMargin = 6;  ///< on both sides of a text
inline constexpr unsigned long SelectedText = 0x000000;

/// Height of a row with a text and an icon, and the icon's size.
inline long File_Row_Height()
{
    return std::max(GetAveCharHeightZV(nullptr) + 4, 18L);
}
inline long File_Icon_Size()
{
    return File_Row_Height() - 2;
}

/// Draws a text in the middle of a height, cut to a width.
void Draw_Fitted_Text(ZVDrawInfo* draw, std::string const& text, long x, long y, long width, long height);

/// The frame of a list, which marks the one that has the keyboard.
void Draw_List_Frame(ZVDrawInfo* draw, ZVItem const& item, bool hasKeyboard);
