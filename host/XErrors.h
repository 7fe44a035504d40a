// Errors of the X server that are nobody's fault.
#pragma once

/// SDL ends its own wait for events by a message to one of its windows, which it sends over a connection of
/// its own. So the server may see the message behind the end of that window, and its error would end the
/// program. While an object of this class lives, messages to windows that are gone are passed over; other
/// errors go to the handler that was there before.
class XErrors {
public:
    XErrors();
    ~XErrors();
    XErrors(XErrors const&) = delete;
    XErrors& operator=(XErrors const&) = delete;
};
