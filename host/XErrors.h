// Errors of the X server that are nobody's fault, and its end.
#pragma once

/// SDL ends its own wait for events by a message to one of its windows, which it sends over a connection of
/// its own. So the server may see the message behind the end of that window, and its error would end the
/// program. While an object of this class lives, messages to windows that are gone are passed over; other
/// errors go to the handler that was there before.
///
/// When the server itself has gone, the program ends with a message and a failure. It leaves by no exit
/// handler: those would take windows down, and SDL waits for the server to confirm that.
class XErrors {
public:
    XErrors();
    ~XErrors();
    XErrors(XErrors const&) = delete;
    XErrors& operator=(XErrors const&) = delete;
};
