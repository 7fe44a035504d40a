// The input of the desktop as events of the library. Every call may run callbacks, which may close any
// palette and any window.
#pragma once

#include "host/Display.h"

#include <functional>

struct ZVItem;
struct ZVWindow;

/// Handles one event of the display.
void Handle_Host_Event(HostEvent const& event);

/// Handles events and runs the timers, as the loops do, while `isWanted` answers true and the application
/// goes on.
void Run_While(std::function<bool()> const& isWanted);

/// Forgets what is held and when timers are due: the display is about to close.
void Forget_Input();

// ---- the mouse --------------------------------------------------------------------------------------------

void Mouse_Down(HostEvent const& event);
void Mouse_Up(HostEvent const& event);
void Mouse_Moved(HostEvent const& event);
void Mouse_Wheel(HostEvent const& event);

/// What Handle_MouseMove is told of the event: its point, or, while the pointer is held, its movement.
void Take_Mouse_Point(HostEvent const& event);

/// The release of a button that is up although nobody heard of it.
void Release_Lost_Press();
void Forget_Press();

/// The press ends here although the button may be down: who holds the mouse lets go of it, and no event tells
/// of the release.
void End_Press();

/// Begins what starts with a press, be it in the window or on its frame: pop-ups other than this window go. A
/// null window is the desktop.
/// @param pressed  the gadget under the mouse, or null; a list that is open for it is its to close
/// @return  whether there is a window still
bool Begin_Press(ZVWindow* window, ZVItem const* pressed = nullptr);

/// The focused text field reports, and keeps the focus.
void Mac_Report_Text();

/// Closes all pop-ups but a window and the list that is open for a gadget; either may be null.
void Close_Pop_Ups(ZVWindow const* except, ZVItem const* owner = nullptr);

/// Whether a dialog is open, and whether it keeps the mouse from the window.
bool Is_Dialog_Open();
bool Is_Behind_Dialog(ZVWindow const& window);

// ---- windows and the application --------------------------------------------------------------------------

void Window_Came_Front(HostWindow* host);
void Window_Went_Back();
void Application_Came_Front();
void Application_Went_Back();

/// The user has moved or resized the window, or made it large or small by its zoom box, which event 23 tells.
void Window_Bounds_Changed(ZVWindow& window);
void Window_Zoomed(ZVWindow& window);

/// Lays the active palette out for the size that the window has by now.
void Fit_Palette_To_Window(ZVWindow& window);

/// The user has pressed the close box.
void Ask_To_Close(ZVWindow& window);
