// The menu bar: a strip along the top of the main monitor with the titles of the menus.
#pragma once

#include "MacMenuRows.h"
#include "host/Region.h"

class HostWindow;

inline constexpr int NoTitle = -1;

/// The bar's window; null without a bar, and while it does not show.
HostWindow const* Menu_Bar_Window();

/// While menus are disabled nothing opens from the bar.
bool Is_Menu_Bar_Enabled();

int Title_Count();
int Title_At(int x, int y);     ///< On the desktop; NoTitle beside them.
HostRect Title_Box(int title);  ///< On the desktop.
MenuRows Title_Rows(int title);
bool Is_Title_Live(int title);  ///< Whether it opens.
void Light_Title(int title);    ///< NoTitle for none.

void Draw_Menu_Bar();
void Present_Menu_Bar();

/// How far down a window with that frame has to go; 0 when its frame is clear of the bar. A title under the
/// bar could not be taken to move the window.
int Way_Below_Menu_Bar(HostRect const& frame);

/// The bar shows while the application is in front.
void Show_Menu_Bar(bool isShown);
