// A context that renders into an OSMesa memory device.
#pragma once

#include "ogl/device/Context.h"

namespace Tev::Chart::Ogl {

namespace Detail { struct OSMesaApi; }

class TEVOGL_API ContextOSMesa final : public Context {
public:
    // Throws CreateGLContextFailed when OSMesa gives no context.
    explicit ContextOSMesa(Device const& p_device);
    ~ContextOSMesa() override;

    void MakeCurrent(Device const& p_device) override;
    void DoneCurrent() override;
    void SwapBuffers() override;

    DeviceFormat const& Format() const { return _format; }
    int CurrentCount() const { return _binding.Count(); }

private:
    void Bind(Device const& p_device);
    void Unbind();

    Detail::OSMesaApi const& _osmesa;
    DeviceFormat _format;
    void* _handle = nullptr;
    void* _buffer = nullptr;
    Detail::ContextBinding _binding;
};

}  // namespace Tev::Chart::Ogl
