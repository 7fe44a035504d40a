// What a gadget function is told, and the event that it answers with.
#include "EventWalk.h"
#include "PaletteTree.h"

#include "ZVItem.h"
#include "ZVLibInternal.h"

long Do_CustomEvent(ZVCustomEvent* event)
{
    // The second press of a double click is followed by a release; until then the mouse trembles.
    if (event->type == ZV_CUSTOM_MOUSE_MOVE && ZVEnv->modifiers & ZV_MOD_DOUBLE_CLICK) return 1;

    event->ticks = ZVEnv->ticks;
    event->modifiers = event->type == ZV_CUSTOM_KEY ? ZVEnv->modifiers : Command_As_Control(ZVEnv->modifiers);
    event->replyType = event->type == ZV_CUSTOM_MOUSE_MOVE ? ZV_EVENT_MOUSE_MOVE : ZV_EVENT_NONE;
    event->replyFlags = 0;
    event->tablet = &ZVEnv->tablet;

    ZVItem* const item = event->item;
    LivingPalette const watch(item->group->palette);
    long result = 0;
    {
        CurrentPalette const current(item->group->palette);
        if (item->customFunc) result = item->customFunc(event);
    }
    // An item that went with its palette has nothing to report. One that a pop-up has worked for still does.
    bool const isOwnReport = event->replyType == ZV_EVENT_GADGET && event->replyData == Tag_Word(item);
    if (isOwnReport && !watch.Is_Known()) return result;
    ZVEnv->modifiers |= event->replyFlags;
    Do_Event(event->replyType, event->replyData);
    return result;
}
