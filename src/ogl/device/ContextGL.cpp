#include "ogl/device/ContextGL.h"

#include "framework/debug/Debug.h"
#include "ogl/device/Device.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/SystemDevice.h"

namespace Tev::Chart::Ogl {

ContextGL::ContextGL(Device const& p_device, OsApi const& p_api, DeviceFormatRequest const&)
    : _format(p_device.Format()), _display(p_device.HardwareDisplay()), _api(std::make_unique<OsApi>(p_api)) {
    ensure(_format.currentDevice != DeviceFormat::OSMesa && "OSMesa not supported by this gl context.");
    ensure(_format.id >= DeviceFormat::FirstFormatId && "Unknown format id provided");
    ensure(p_device.HardwareHandle() && p_device.HardwareDisplay());
    _handle = CreateHandle(p_device);
    if (!_handle) throw CreateGLContextFailed(_format, "Failed to create gl context");
}

// The ARB table lives only as long as this: its fake context is gone
// before the constructor returns.
ContextHandle ContextGL::CreateHandle(Device const& p_device) const {
    DeviceHandle const device = p_device.HardwareHandle();
    ArbApi const arb = _api->GetArbApi(int(_format.id), device);
    if (!arb.CreateContextAttribsARB) return _api->CreateContext(device);
    // The context flags attribute and its debug bit, the same values in
    // GLX_ARB_create_context and WGL_ARB_create_context.
    int const contextFlags = 0x2094;
    int const debugBit = 0x0001;
    int const debug[] = {contextFlags, debugBit, 0};
    int const none[] = {0};
    return arb.CreateContextAttribs(device, _format.enableDiagnostics ? debug : none);
}

ContextGL::~ContextGL() {
    if (!_api->DeleteContext(_handle)) Debug::derr() << "Failed to delete GL Context";
}

void ContextGL::MakeCurrent(Device const& p_device) {
    if (_binding.BeginMakeCurrent(_format.mesaSoftware)) Bind(p_device);
}

void ContextGL::Bind(Device const& p_device) {
    ensure(p_device.HardwareHandle() && p_device.HardwareDisplay());
    if (p_device.Format().id != _format.id) throw IncompatableDevice(_format);
    _currentDevice = p_device.HardwareHandle();
    _swapNeeded = p_device.Format().doubleBuffered && p_device.Format().currentDevice == DeviceFormat::Window;
    int const made = _api->MakeCurrent(_currentDevice, _handle);
    ensure(made && "Failed to make context current!");
    _binding.Bound();
}

void ContextGL::DoneCurrent() {
    if (_binding.DoneCurrent()) Unbind();
}

void ContextGL::Unbind() {
    ensure(_currentDevice);
    int const cleared = _api->MakeCurrent(_currentDevice, nullptr);
    ensure(cleared && "Failed to clear context current!");
    _currentDevice = nullptr;
    _binding.Released();
}

void ContextGL::SwapBuffers() {
    if (!_swapNeeded) return;
    ensure(_currentDevice);
    ensure(_api->GetCurrentContext() == _handle && "Swap failed as no context is current to this thread");
    int const swapped = _api->SwapBuffers(_currentDevice);
    ensure(swapped && "Failed to swap buffers!");
}

}  // namespace Tev::Chart::Ogl
