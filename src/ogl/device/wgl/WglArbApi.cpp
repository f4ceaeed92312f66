#include "ogl/device/wgl/WglArbApi.h"

#include "framework/debug/Debug.h"
#include "ogl/device/OsApi.h"

namespace Tev::Chart::Ogl {

// The fake context and the two table entries that bind and delete it, so
// that the last copy can delete it without the table it came from.
struct WglArbApi::FakeContext {
    FakeContext(OsApi const& p_api, HGLRC p_handle)
        : handle(p_handle), makeCurrent(p_api.MakeCurrent), deleteContext(p_api.DeleteContext) {}
    FakeContext(FakeContext const&) = delete;
    FakeContext& operator=(FakeContext const&) = delete;
    ~FakeContext() {
        if (handle) deleteContext(handle);
    }
    HGLRC handle;
    OsApi::MakeCurrentFn makeCurrent;
    OsApi::DeleteContextFn deleteContext;
};

WglArbApi::WglArbApi() : _isContextCurrentToThread(std::make_shared<bool>(false)) {}

namespace {

template <typename Fn>
void Fetch(OsApi const& p_api, Fn& p_entry, char const* p_name) {
    p_entry = p_api.GetProcAddress ? reinterpret_cast<Fn>(p_api.GetProcAddress(p_name)) : nullptr;
}

}  // namespace

WglArbApi WglArbApi::MakeFakeContext(OsApi const& p_api, int p_pixelFormat, HDC p_parent) {
    WglArbApi arb;
    arb._parent = p_parent;
    int const sourcePixelFormat = p_api.GetPixelFormat(p_parent);
    ensure(sourcePixelFormat == p_pixelFormat);
    HGLRC const fake = p_api.CreateContext(p_parent);
    ensure(fake && "Failed to create a fake WGL context from which we can extract ARB bind points");
    arb._fake = std::make_shared<FakeContext>(p_api, fake);
    if (!fake) return arb;
    arb.MakeCurrent();
    Fetch(p_api, arb.GetExtensionsStringARB, "wglGetExtensionsStringARB");
    Fetch(p_api, arb.CreateContextAttribsARB, "wglCreateContextAttribsARB");
    Fetch(p_api, arb.CreatePbufferARB, "wglCreatePbufferARB");
    Fetch(p_api, arb.DestroyPbufferARB, "wglDestroyPbufferARB");
    Fetch(p_api, arb.GetPbufferDCARB, "wglGetPbufferDCARB");
    Fetch(p_api, arb.ReleasePbufferDCARB, "wglReleasePbufferDCARB");
    char const* const extensions = arb.GetExtensionsStringARB ? arb.GetExtensionsStringARB(p_parent) : nullptr;
    Debug::dlog() << "WGL Extensions :" << (extensions ? extensions : "");
    arb.DoneCurrent();
    return arb;
}

void WglArbApi::MakeCurrent() const {
    ensure(!(*_isContextCurrentToThread));
    int const made = _fake && _fake->handle && _fake->makeCurrent(_parent, _fake->handle);
    ensure(made && "Failed to make fake-context current.");
    *_isContextCurrentToThread = true;
}

void WglArbApi::DoneCurrent() const {
    ensure(*_isContextCurrentToThread);
    int const released = _fake && _fake->handle && _fake->makeCurrent(_parent, nullptr);
    ensure(released && "Failed to remove fake-context from current.");
    *_isContextCurrentToThread = false;
}

HGLRC WglArbApi::CreateContextAttribs(HDC p_device, int const* p_attributes) const {
    return CreateContextAttribsARB ? CreateContextAttribsARB(p_device, nullptr, p_attributes) : nullptr;
}

}  // namespace Tev::Chart::Ogl
