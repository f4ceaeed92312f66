// Catches the X errors of a stretch of calls on one display. Xlib's default
// handler ends the process on any error, and GLX reports a mismatched
// drawable or config (BadMatch) only asynchronously; inside a trap such an
// error becomes a result the caller reports.
#pragma once

#include <X11/Xlib.h>

#include <mutex>
#include <string>

namespace Tev::Chart::Ogl::Detail {

class XErrorTrap {
public:
    // Only errors of requests made from here on are this trap's: earlier
    // ones (told apart by their serial numbers) go to the handler that was
    // in place, so the trap needs no round trip to the server to start.
    explicit XErrorTrap(Display* p_display);
    XErrorTrap(XErrorTrap const&) = delete;
    XErrorTrap& operator=(XErrorTrap const&) = delete;
    ~XErrorTrap();

    // Waits for the server (one round trip) and tells whether any request
    // since the trap was set failed. The first failure is logged as a
    // warning naming p_call.
    bool Failed(char const* p_call);
    int ErrorCode() const { return _errorCode; }

private:
    static int Handle(Display* p_display, XErrorEvent* p_event);

    // Xlib's handler is one per process: traps on different threads take
    // turns.
    std::unique_lock<std::recursive_mutex> _lock;
    Display* _display;
    XErrorTrap* _outer;
    int (*_previous)(Display*, XErrorEvent*) = nullptr;
    unsigned long _firstSerial = 0;
    // The next request's serial when the server was last waited for: the
    // destructor waits again only when requests were made since.
    unsigned long _syncedSerial = 0;
    int _errorCode = 0;
    std::string _errorText;
};

}  // namespace Tev::Chart::Ogl::Detail
