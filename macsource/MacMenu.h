// Open menus: from the press that opens one until an entry is chosen, by mouse or keys, or all are closed.
#pragma once

#include "host/Display.h"

struct ZVMenu;

/// A press on the menu bar opens a menu. False when it was somewhere else.
bool Press_Menu_Bar(HostEvent const& event);

/// Mouse and keys belong to a menu while one is open. False for an event that does not.
bool Take_Menu_Input(HostEvent const& event);

bool Is_Menu_Open();
void Menu_Tick();  ///< What a resting mouse brings about.
inline constexpr double MenuTimerInterval = 0.02;

void Close_Menus();  ///< Nothing is chosen.

/// The menu and what is below it goes: no open menu shows it, and no choice that is on its way leads there.
void Forget_Menu(ZVMenu const& menu);

/// Shows a changed text or state.
void Update_Open_Menus(ZVMenu const& menu);

void Draw_Menus();  ///< All again, the bar too, in the present pens.
void Present_Menus();
