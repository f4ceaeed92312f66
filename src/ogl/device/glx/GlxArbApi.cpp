#include "ogl/device/glx/GlxArbApi.h"

#include "framework/debug/Debug.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/GlxConfigs.h"
#include "ogl/device/glx/XErrorTrap.h"

namespace Tev::Chart::Ogl {

// The fake context and the two table entries that bind and delete it, so
// that the last copy can delete it without the table it came from.
struct GlxArbApi::FakeContext {
    FakeContext(OsApi const& p_api, ContextHandle p_handle)
        : handle(p_handle), makeCurrent(p_api.MakeCurrent), deleteContext(p_api.DeleteContext) {}
    FakeContext(FakeContext const&) = delete;
    FakeContext& operator=(FakeContext const&) = delete;
    ~FakeContext() {
        if (handle) deleteContext(handle);
    }

    ContextHandle handle;
    OsApi::MakeCurrentFn makeCurrent;
    OsApi::DeleteContextFn deleteContext;
};

GlxArbApi::GlxArbApi() : _isContextCurrentToThread(std::make_shared<bool>(false)) {}

namespace {

template <typename Fn>
void Fetch(OsApi const& p_api, Fn& p_entry, char const* p_name) {
    p_entry = p_api.GetProcAddress ? reinterpret_cast<Fn>(p_api.GetProcAddress(p_name)) : nullptr;
}

}  // namespace

GlxArbApi GlxArbApi::MakeFakeContext(OsApi const& p_api, int p_pixelFormat, DeviceHandle p_parent) {
    GlxArbApi arb;
    arb._parent = p_parent;
    int const sourcePixelFormat = p_api.GetPixelFormat(p_parent);
    ensure(sourcePixelFormat == p_pixelFormat);
    ContextHandle const fake = p_api.CreateContext(p_parent);
    ensure(fake && "Failed to create a fake WGL context from which we can extract ARB bind points");
    arb._fake = std::make_shared<FakeContext>(p_api, fake);
    if (!fake) return arb;

    arb.MakeCurrent();
    Fetch(p_api, arb.QueryExtensionsString, "glXQueryExtensionsString");
    Fetch(p_api, arb.CreateContextAttribsARB, "glXCreateContextAttribsARB");
    Fetch(p_api, arb.CreatePbuffer, "glXCreatePbuffer");
    Fetch(p_api, arb.DestroyPbuffer, "glXDestroyPbuffer");
    char const* const extensions =
        arb.QueryExtensionsString && p_parent ? arb.QueryExtensionsString(p_parent->display, p_parent->screen)
                                              : nullptr;
    Debug::dlog() << "WGL Extensions :" << (extensions ? extensions : "");
    arb.DoneCurrent();
    return arb;
}

void GlxArbApi::MakeCurrent() const {
    ensure(!(*_isContextCurrentToThread));
    int const made = _fake && _fake->handle && _fake->makeCurrent(_parent, _fake->handle);
    ensure(made && "Failed to make fake-context current.");
    *_isContextCurrentToThread = true;
}

void GlxArbApi::DoneCurrent() const {
    ensure(*_isContextCurrentToThread);
    int const released = _fake && _fake->handle && _fake->makeCurrent(_parent, nullptr);
    ensure(released && "Failed to remove fake-context from current.");
    *_isContextCurrentToThread = false;
}

ContextHandle GlxArbApi::CreateContextAttribs(DeviceHandle p_device, int const* p_attributes) const {
    if (!CreateContextAttribsARB || !p_device || !p_device->pixelFormat) return nullptr;
    Detail::XErrorTrap trap(p_device->display);
    void* const handle = CreateContextAttribsARB(p_device->display, Detail::GlxActiveConfig(*p_device), nullptr,
                                                 1, p_attributes);
    if (trap.Failed("glXCreateContextAttribsARB") || !handle) return nullptr;
    return new Detail::NativeContext{p_device->display, handle, false, p_device->pixelFormat};
}

}  // namespace Tev::Chart::Ogl
