// A base for an application's own event objects. Main thread only.
#pragma once

#include "ZVBase.h"

/// The direction of a scroll event.
enum ZVCScrollDir : long { ZV_SCROLL_HORIZONTAL = 0, ZV_SCROLL_VERTICAL = 1 };

/// The handlers of a palette class, to be overridden one by one. Each returns 2 here, which says that it did
/// not take the event; 0 and 1 are results of handlers that did.
class ZV_API ZVCEventHandler {
public:
    ZVCEventHandler() = default;
    virtual ~ZVCEventHandler();

    virtual long OnSetup(ZVEvent*) { return 2; }
    virtual long OnCleanUp(ZVEvent*) { return 2; }
    virtual long OnGadget(ZVEvent*, unsigned short) { return 2; }
    virtual long OnActivate(ZVEvent*) { return 2; }
    virtual long OnDeactivate(ZVEvent*) { return 2; }
    virtual long OnDocActivate(ZVEvent*) { return 2; }
    virtual long OnDocDeactivate(ZVEvent*) { return 2; }
    virtual long OnTabActivate(ZVEvent*) { return 2; }
    virtual long OnTabDeactivate(ZVEvent*) { return 2; }
    virtual long OnMenu(ZVEvent*) { return 2; }
    virtual long OnMenuInit(ZVEvent*) { return 2; }
    virtual long OnMouseDown(ZVEvent*) { return 2; }
    virtual long OnMouseUp(ZVEvent*) { return 2; }
    virtual long OnMouseMove(ZVEvent*) { return 2; }
    virtual long OnUser(ZVEvent*) { return 2; }
    virtual long OnAction(ZVEvent*) { return 2; }
    virtual long OnKey(unsigned long, unsigned long) { return 2; }
    virtual long OnTick(ZVEvent*) { return 2; }
    virtual long OnNOP(ZVEvent*) { return 2; }
    virtual long OnRemoteMessage(ZVEvent*) { return 2; }
    virtual long OnAskClose(ZVEvent*) { return 2; }
    virtual long OnCloseApp(ZVEvent*) { return 2; }
    virtual long OnOpenDoc(ZVEvent*) { return 2; }
    virtual long OnPrintDoc(ZVEvent*) { return 2; }
    virtual long OnScroll(ZVEvent*, ZVCScrollDir) { return 2; }
    virtual long OnZoom(ZVEvent*) { return 2; }
};
