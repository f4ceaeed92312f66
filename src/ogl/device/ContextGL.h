// A GL context of the window-system table (the system GL through GLX or
// wgl, or Mesa's window system), bound to devices of the format it was made
// for.
#pragma once

#include "ogl/device/Context.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/Platform.h"

#include <memory>

namespace Tev::Chart::Ogl {

struct OsApi;
class Device;

class TEVOGL_API ContextGL final : public Context {
public:
    // A debug context when the device's format asks for diagnostics and
    // the driver offers glXCreateContextAttribsARB
    // (wglCreateContextAttribsARB). Throws
    // CreateGLContextFailed when the driver gives no context.
    ContextGL(Device const& p_device, OsApi const& p_api, DeviceFormatRequest const& p_request);
    ~ContextGL() override;

    // Throws IncompatableDevice for a device of another format.
    void MakeCurrent(Device const& p_device) override;
    void DoneCurrent() override;
    // Only a double-buffered window has anything to swap.
    void SwapBuffers() override;

    DeviceFormat const& Format() const { return _format; }
    ContextHandle Handle() const { return _handle; }
    int CurrentCount() const { return _binding.Count(); }

private:
    ContextHandle CreateHandle(Device const& p_device) const;
    void Bind(Device const& p_device);
    void Unbind();

    DeviceFormat _format;
    DisplayHnd _display;
    DeviceHandle _currentDevice = nullptr;
    std::unique_ptr<OsApi> _api;
    ContextHandle _handle = nullptr;
    Detail::ContextBinding _binding;
    bool _swapNeeded = false;
};

}  // namespace Tev::Chart::Ogl
