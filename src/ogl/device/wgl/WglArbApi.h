// The WGL ARB extension entries for one pixel format of one device, fetched
// while a short-lived "fake" context of that format is current: debug
// contexts and pbuffers. Copies share the fake context, which goes with the
// last copy.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/device/Platform.h"

#include <memory>

namespace Tev::Chart::Ogl {

struct OsApi;

// HPBUFFERARB of WGL_ARB_pbuffer.
struct PbufferARB__;
using PbufferHandle = PbufferARB__*;

class TEVOGL_API WglArbApi {
public:
    using GetExtensionsStringARBFn = char const*(WINAPI*)(HDC p_device);
    using CreateContextAttribsARBFn = HGLRC(WINAPI*)(HDC p_device, HGLRC p_share, int const* p_attributes);
    using CreatePbufferARBFn = PbufferHandle(WINAPI*)(HDC p_device, int p_format, int p_width, int p_height,
                                                      int const* p_attributes);
    using DestroyPbufferARBFn = BOOL(WINAPI*)(PbufferHandle p_pbuffer);
    using GetPbufferDCARBFn = HDC(WINAPI*)(PbufferHandle p_pbuffer);
    using ReleasePbufferDCARBFn = int(WINAPI*)(PbufferHandle p_pbuffer, HDC p_device);

    // Every entry null and no fake context: what a Mesa table offers.
    WglArbApi();

    // Creates the fake context on p_parent, which must carry the format
    // p_pixelFormat already, fetches the entries and logs the extensions.
    // The fake context is not current when it returns.
    static WglArbApi MakeFakeContext(OsApi const& p_api, int p_pixelFormat, HDC p_parent);

    // Bind and release the fake context on the parent device.
    void MakeCurrent() const;
    void DoneCurrent() const;

    // A context for the format of p_device made with
    // wglCreateContextAttribsARB (no share context); null when the entry is
    // missing or the driver refuses.
    HGLRC CreateContextAttribs(HDC p_device, int const* p_attributes) const;

    HDC Parent() const { return _parent; }
    bool IsCurrent() const { return _isContextCurrentToThread && *_isContextCurrentToThread; }

    GetExtensionsStringARBFn GetExtensionsStringARB = nullptr;
    CreateContextAttribsARBFn CreateContextAttribsARB = nullptr;
    CreatePbufferARBFn CreatePbufferARB = nullptr;
    DestroyPbufferARBFn DestroyPbufferARB = nullptr;
    GetPbufferDCARBFn GetPbufferDCARB = nullptr;
    ReleasePbufferDCARBFn ReleasePbufferDCARB = nullptr;

private:
    struct FakeContext;
    HDC _parent = nullptr;
    std::shared_ptr<FakeContext> _fake;
    std::shared_ptr<bool> _isContextCurrentToThread;
};

}  // namespace Tev::Chart::Ogl
