// See FileDialogDraw.h.
#include "FileDialogDraw.h"

#include <cstring>
#include <vector>

void Draw_Fitted_Text(ZVDrawInfo* draw, std::string const& text, long x, long y, long width, long height)
{
    if (width < 1) return;
    // ShortenStringZV wants room for its dots.
    std::vector<char> fitted(text.size() + 8);
    std::memcpy(fitted.data(), text.c_str(), text.size() + 1);
    if (GetTextWidthZV(draw, fitted.data()) > width)
        ShortenStringZV(draw, fitted.data(), static_cast<int>(width));
    SetTextTransparencyZV(draw, 1);
    DrawTextZV(draw, fitted.data(), x, y + (height - GetAveCharHeightZV(draw)) / 2);
}

void Draw_List_Frame(ZVDrawInfo* draw, ZVItem const& item, bool hasKeyboard)
{
    DrawIShineBorderZV(draw, 0, 0, item.width, item.height);
    if (!hasKeyboard) return;
    SetPenZV(draw, ZV_PEN_MARKED);
    DrawRectZV(draw, 0, 0, item.width - 1, item.height - 1);
    DrawRectZV(draw, 1, 1, item.width - 2, item.height - 2);
}
