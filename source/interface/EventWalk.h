// How one event reaches its callbacks. Each function sends an event that is filled in up to its number.
#pragma once

#include "ZVEvent.h"
#include "ZVList.h"

/// An event with what the environment tells of the mouse, the keyboard and the time.
ZVEvent Make_Event(uint16_t type);

/// Calls the callback, or without one that of the application, if there is any.
void Call_Back(void (*callback)(ZVEvent*), ZVEvent& event);

/// Makes the palette, which is not null, that of the event and the current one.
void Enter_Palette(ZVEvent& event, ZVPalette* palette);

/// Movement: palette, group and item under the mouse, then the application. The cursor follows.
void Send_Mouse_Move(ZVEvent& event);

/// Press and release: the group or palette under the mouse, or the application.
void Send_Mouse_Button(ZVEvent& event);

/// Tick: all that shows, then the application. False when the tree changed under the walk, which ends it.
bool Send_Tick(ZVEvent& event);

/// Calls the hooks that the palette's window has for the event, unless the palette is gone. The pointer is
/// not followed before that is known.
void Call_Hooks(ZVPalette* palette, uint16_t type);

/// On this platform applications test the control bit alone: what they see of the mouse has command as
/// control.
constexpr uint32_t Command_As_Control(uint32_t modifiers)
{
    return modifiers & ZV_MOD_COMMAND ? (modifiers & ~uint32_t{ZV_MOD_COMMAND}) | ZV_MOD_CONTROL : modifiers;
}

/// The node to go on with after a call made for `node`, which may have taken nodes out: the one behind it,
/// or, when it is gone itself, the one that followed it before.
inline Node* Next_After_Call(List const* list, Node const* node, Node* followed)
{
    bool isFollowedThere = false;
    for (Node* each = List_First(list); each; each = List_Next(each)) {
        if (each == node) return List_Next(each);
        isFollowedThere |= each == followed;
    }
    return isFollowedThere ? followed : nullptr;
}
