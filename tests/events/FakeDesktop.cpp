#include "FakeDesktop.h"

FakeDesktop desktop;

static void Note(char const* call)
{
    desktop.calls.emplace_back(call);
}

static bool Holds(ZVWindow const& window, long x, long y)
{
    return x >= window.left && y >= window.top && x < window.left + window.width &&
           y < window.top + window.height;
}

/// Windows made later lie in front.
ZVWindow* Mac_Find_Window(long x, long y, long* localX, long* localY)
{
    ZVWindow* found = nullptr;
    for (Node* node = List_First(&ZVEnv->windows); node; node = List_Next(node)) {
        auto* window = reinterpret_cast<ZVWindow*>(node);
        if (!window->parent && Holds(*window, x, y)) found = window;
    }
    *localX = found ? x - found->left : 0;
    *localY = found ? y - found->top : 0;
    return found;
}

ZVPort* Mac_Window_Port(ZVWindow*)
{
    return desktop.port;
}

void Mac_Show_Cursor(unsigned short code)
{
    desktop.cursors.push_back(code);
}

uint32_t Mac_Tick_Count()
{
    return desktop.tickCount;
}

long Mac_Double_Click_Time()
{
    return 30;
}

uint32_t Mac_Keyboard_State()
{
    return desktop.keyboard;
}

void Mac_Drop_Focus(unsigned long)
{
    Note("drop focus");
}

void Activate_First_Gadget(ZVPalette*)
{
    Note("first gadget");
}

void Mac_Flush_Events()
{
    Note("flush");
}

void Mac_Run_Modal_Loop(ZVPalette*)
{
    Note("modal loop");
    if (desktop.modalLoop) desktop.modalLoop();
}

void Mac_Run_Application_Loop()
{
    Note("application loop");
    if (desktop.applicationLoop) desktop.applicationLoop();
}

void Mac_Handle_Waiting_Events()
{
    Note("waiting events");
}

void Mac_Idle_Text_Field()
{
    Note("idle");
}

void Mac_Move_Pointer_Freely(long on)
{
    Note(on ? "free pointer" : "held pointer");
}

void Process_Dependencies(ZVItem*)
{
    Note("dependencies");
}

unsigned short GetItemFont(ZVItem const*)
{
    return 0;
}
