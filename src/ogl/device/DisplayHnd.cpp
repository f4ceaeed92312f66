#include "ogl/device/DisplayHnd.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl {

namespace {
// The OSMesa display is a handle to this object: never an X connection.
int osmesaMarker;
}  // namespace

DisplayHnd const DisplayHnd::OSMesaDisplay(
    std::shared_ptr<_XDisplay>(std::shared_ptr<void>(), reinterpret_cast<_XDisplay*>(&osmesaMarker)));

DisplayHnd::DisplayHnd(std::shared_ptr<_XDisplay> p_display) : _display(std::move(p_display)) {}

bool DisplayHnd::IsOSMesa() const { return _display.get() == &osmesaMarker; }

_XDisplay* DisplayHnd::XDisplay() const {
    return IsOSMesa() ? nullptr : static_cast<_XDisplay*>(_display.get());
}

// The root-window device record arrives with the GLX backend.
DeviceHandle DisplayHnd::Handle() const { return nullptr; }

bool DisplayHnd::operator==(DisplayHnd const& p_rhs) const {
    ensure(p_rhs._display && _display);
    return _display == p_rhs._display;
}

}  // namespace Tev::Chart::Ogl
