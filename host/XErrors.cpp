#include "XErrors.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>

#include <cstdio>
#include <cstdlib>

namespace {

XErrorHandler earlier;
XIOErrorHandler earlierLoss;

int Handle_Error(Display* display, XErrorEvent* error)
{
    if (error->error_code == BadWindow && error->request_code == X_SendEvent) return 0;
    return earlier(display, error);
}

[[noreturn]] int Handle_Loss(Display* display)
{
    std::fprintf(stderr, "The connection to the X server %s is broken.\n", DisplayString(display));
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

XErrors::XErrors()
{
    earlier = XSetErrorHandler(Handle_Error);
    earlierLoss = XSetIOErrorHandler(Handle_Loss);
}

XErrors::~XErrors()
{
    // Whoever has set a handler since keeps it.
    XErrorHandler const last = XSetErrorHandler(earlier);
    if (last != Handle_Error) XSetErrorHandler(last);
    XIOErrorHandler const lastLoss = XSetIOErrorHandler(earlierLoss);
    if (lastLoss != Handle_Loss) XSetIOErrorHandler(lastLoss);
}
