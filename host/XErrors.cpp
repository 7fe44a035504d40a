#include "XErrors.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>
#include <dlfcn.h>

namespace {

using SetHandler = XErrorHandler(XErrorHandler);

XErrorHandler earlier;

int Handle_Error(Display* display, XErrorEvent* error)
{
    if (error->error_code == BadWindow && error->request_code == X_SendEvent) return 0;
    return earlier(display, error);
}

/// Out of the library that SDL has loaded; on other desktops than X there is none.
SetHandler* Handler_Setter(void* library)
{
    return library ? reinterpret_cast<SetHandler*>(dlsym(library, "XSetErrorHandler")) : nullptr;
}

}  // namespace

XErrors::XErrors() : library_(dlopen("libX11.so.6", RTLD_LAZY | RTLD_NOLOAD))
{
    if (SetHandler* const set = Handler_Setter(library_)) earlier = set(Handle_Error);
}

XErrors::~XErrors()
{
    if (SetHandler* const set = Handler_Setter(library_)) {
        // Whoever has set a handler since keeps it.
        XErrorHandler const last = set(earlier);
        if (last != Handle_Error) set(last);
    }
    if (library_) dlclose(library_);
}
