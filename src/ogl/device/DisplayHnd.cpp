#include "ogl/device/DisplayHnd.h"

#include "framework/debug/Debug.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/glx/GlxDisplay.h"

namespace Tev::Chart::Ogl {

namespace {
// The OSMesa display is a handle to this object: never an X connection.
int osmesaMarker;
}  // namespace

DisplayHnd const DisplayHnd::OSMesaDisplay(
    std::shared_ptr<_XDisplay>(std::shared_ptr<void>(), reinterpret_cast<_XDisplay*>(&osmesaMarker)));

DisplayHnd::DisplayHnd(std::shared_ptr<_XDisplay> p_display) : _display(std::move(p_display)) {
    if (_display && !IsOSMesa()) _root = Detail::MakeRootDevice(static_cast<_XDisplay*>(_display.get()));
}

bool DisplayHnd::IsOSMesa() const { return _display.get() == &osmesaMarker; }

_XDisplay* DisplayHnd::XDisplay() const {
    return IsOSMesa() ? nullptr : static_cast<_XDisplay*>(_display.get());
}

DeviceHandle DisplayHnd::Handle() const { return _root.get(); }

DisplayHnd GetDisplayHnd(DeviceHandle p_handle) {
    ensure(p_handle != 0);
    if (!p_handle || !p_handle->display) return {};
    // Not owned: the aliasing pointer shares no ownership and still
    // compares equal to the handle that opened the display.
    return DisplayHnd(std::shared_ptr<_XDisplay>(std::shared_ptr<void>(), p_handle->display));
}

bool DisplayHnd::operator==(DisplayHnd const& p_rhs) const {
    ensure(p_rhs._display && _display);
    return _display == p_rhs._display;
}

}  // namespace Tev::Chart::Ogl
