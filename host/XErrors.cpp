#include "XErrors.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>

namespace {

XErrorHandler earlier;

int Handle_Error(Display* display, XErrorEvent* error)
{
    if (error->error_code == BadWindow && error->request_code == X_SendEvent) return 0;
    return earlier(display, error);
}

}  // namespace

XErrors::XErrors()
{
    earlier = XSetErrorHandler(Handle_Error);
}

XErrors::~XErrors()
{
    // Whoever has set a handler since keeps it.
    XErrorHandler const last = XSetErrorHandler(earlier);
    if (last != Handle_Error) XSetErrorHandler(last);
}
