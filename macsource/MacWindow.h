// System windows: what the display shows of a ZVWindow, the port that it is drawn through, and what of it
// waits to be drawn again.
#pragma once

#include "MacPort.h"
#include "MacScrollBar.h"
#include "ZVWindow.h"
#include "host/Display.h"

#include <memory>
#include <string>

struct ZVSysScrollBar {
    ScrollBar bar;
};

struct ZVSysWindow {
    ZVSysWindow(ZVWindow& owner, std::unique_ptr<HostWindow> made);
    ~ZVSysWindow();  ///< Nobody in the window holds the mouse any more.

    ZVWindow& window;
    std::unique_ptr<HostWindow> host;
    ZVPort port;  ///< over the host's surface
    std::string title;
    HostRegion update;            ///< of the client area, to be drawn again by Redraw_Window
    int knownWidth, knownHeight;  ///< of the part of the client area that has been drawn
    std::unique_ptr<ZVSysScrollBar> verticalBar, horizontalBar;  ///< or null
};

/// The display of the running interface; null without one.
HostDisplay* Display();

/// Opens the display that ZV_HOST names, or the desktop's. False with the reason as error text.
bool Open_Display();
void Close_Display();

/// The library's window that a window of the display belongs to; null for null.
ZVWindow* Window_Of(HostWindow const* host);

/// Notes that an area, or all, of the client area has to be drawn again.
void Invalidate(ZVWindow& window, HostRect const& area);
void Invalidate(ZVWindow& window);

/// Draws what was noted: background, tabs, bars, palettes.
void Redraw_Window(ZVWindow& window);

/// Shows on the display what was drawn, in all windows.
void Present_Windows();

/// The colour behind a window's palettes.
uint32_t Background_Of(ZVWindow const& window);

/// Room beside the palette for the grow box and the bars, which is part of the native client area: 0, 15, or
/// -1 for the line that a palette without grow area gives up.
struct WindowStrips {
    int right = 0, bottom = 0;
};
WindowStrips Strips_Of(uint32_t flags);

/// Takes over where the display has the window, and how large. What it has gained in size shows the
/// background. True when the size is another one.
bool Take_Bounds(ZVWindow& window);

/// What the client area of a window can be made to: what its active palette needs at least, and no other size
/// than it has in a direction in which it does not grow.
struct WindowLimits {
    int minWidth, minHeight, maxWidth, maxHeight;
};
WindowLimits Limits_Of(ZVWindow const& window);

/// The grow box in the client area; empty for a window without.
HostRect Grow_Box(ZVWindow const& window);

/// Makes the bars that the window's flags ask for.
void Make_Bars(ZVWindow& window);
void Free_Bars(ZVWindow& window);  ///< One that holds the mouse lets go of it.

/// Draws the window's bars and its grow box.
void Draw_Bars(ZVWindow& window);

/// Whether it is kept above the ordinary windows: floaters and pop-ups.
bool Is_Floating(ZVWindow const& window);

/// The front window that is no floater; null when there is none.
ZVWindow* Mac_FrontNonFloatingWindow();

/// Floaters are on screen only while the application is in front.
void Mac_Show_Floaters();
void Mac_Hide_Floaters();
