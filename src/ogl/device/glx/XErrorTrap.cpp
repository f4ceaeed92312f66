#include "ogl/device/glx/XErrorTrap.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl::Detail {

namespace {
std::recursive_mutex trapMutex;
XErrorTrap* innermost = nullptr;
}  // namespace

XErrorTrap::XErrorTrap(Display* p_display) : _lock(trapMutex), _display(p_display), _outer(innermost) {
    if (_display) _firstSerial = NextRequest(_display);
    _previous = XSetErrorHandler(&XErrorTrap::Handle);
    innermost = this;
}

XErrorTrap::~XErrorTrap() {
    if (_display && NextRequest(_display) != _syncedSerial) XSync(_display, False);
    innermost = _outer;
    XSetErrorHandler(_previous);
}

bool XErrorTrap::Failed(char const* p_call) {
    if (_display) {
        XSync(_display, False);
        _syncedSerial = NextRequest(_display);
    }
    if (_errorCode == 0) return false;
    Debug::derr() << "WARNING: X error " << _errorCode << " (" << _errorText << ") in " << p_call;
    return true;
}

// Errors of other displays are not ours: they go to the handler that was
// installed before the trap.
int XErrorTrap::Handle(Display* p_display, XErrorEvent* p_event) {
    XErrorTrap* const trap = innermost;
    bool const ours = trap && trap->_display == p_display && p_event->serial >= trap->_firstSerial;
    if (!ours) return trap && trap->_previous ? trap->_previous(p_display, p_event) : 0;
    if (trap->_errorCode == 0) {
        char text[256] = {};
        XGetErrorText(p_display, p_event->error_code, text, sizeof text);
        trap->_errorCode = p_event->error_code;
        trap->_errorText = text;
    }
    return 0;
}

}  // namespace Tev::Chart::Ogl::Detail
