#include "ogl/device/osmesa/ContextOSMesa.h"

#include "framework/debug/Debug.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/Tokens.h"
#include "ogl/device/Device.h"
#include "ogl/device/osmesa/OSMesaApi.h"

namespace Tev::Chart::Ogl {

ContextOSMesa::ContextOSMesa(Device const& p_device)
    : _osmesa(Detail::OSMesaApi::Get()), _format(p_device.Format()) {
    ensure(p_device.Format().id == DeviceFormat::OSMesaFormatId);
    Detail::GlImplementation::Mesa().PrepareThread();
    _handle = _osmesa.CreateContext(Tokens::TGL_RGBA, nullptr);
    if (!_handle) throw CreateGLContextFailed(_format, "Failed to create an OSMesaContext");
}

ContextOSMesa::~ContextOSMesa() {
    Detail::GlImplementation::Mesa().PrepareThread();
    if (_osmesa.GetCurrentContext() == _handle) _osmesa.MakeCurrent(nullptr, nullptr, 0, 0, 0);
    _osmesa.DestroyContext(_handle);
}

void ContextOSMesa::MakeCurrent(Device const& p_device) {
    // The format is a Mesa-software one: it is bound again on every call.
    if (_binding.BeginMakeCurrent(_format.mesaSoftware)) Bind(p_device);
}

void ContextOSMesa::Bind(Device const& p_device) {
    ensure(p_device.Format().id == _format.id);
    Detail::GlImplementation::Mesa().PrepareThread();
    Device::RenderBuffer const& buffer = p_device.Buffer();
    _buffer = buffer.Ptr();
    ensure(_buffer && "No valid buffer defined");
    GLboolean const bound = _osmesa.MakeCurrent(_handle, _buffer, Tokens::TGL_UNSIGNED_BYTE, buffer.Width(), buffer.Height());
    ensure(bound && "OSMesaMakeCurrent failed");
    _binding.Bound();
}

void ContextOSMesa::DoneCurrent() {
    if (_binding.DoneCurrent()) Unbind();
}

// Releasing passes no context and no buffer: OSMesa then leaves the thread
// with no current context.
void ContextOSMesa::Unbind() {
    ensure(_buffer);
    _osmesa.MakeCurrent(nullptr, nullptr, 0, 0, 0);
    _buffer = nullptr;
    _binding.Released();
}

// An OSMesa buffer is single-buffered memory: nothing is exchanged; the
// checks catch a swap from the wrong thread or of an unbound context.
void ContextOSMesa::SwapBuffers() {
    ensure(_binding.OnOwningThread() && "Cannot swap a GL context on a different thread!");
    ensure(_buffer);
    ensure(_osmesa.GetCurrentContext() == _handle && "Swap failed as no context is current to this thread");
}

}  // namespace Tev::Chart::Ogl
