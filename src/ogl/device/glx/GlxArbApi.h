// The GLX extension entries for one pixel format of one device, fetched
// while a short-lived "fake" context of that format is current: debug
// contexts and pbuffers. Copies share the fake context, which goes with the
// last copy.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/device/Platform.h"

#include <memory>

struct _XDisplay;

namespace Tev::Chart::Ogl {

struct OsApi;

class TEVOGL_API GlxArbApi {
public:
    // The GLX signatures, with GLXFBConfig and GLXContext as void*.
    using QueryExtensionsStringFn = char const* (*)(_XDisplay* p_display, int p_screen);
    using CreateContextAttribsARBFn = void* (*)(_XDisplay* p_display, void* p_config, void* p_share,
                                               int p_direct, int const* p_attributes);
    using CreatePbufferFn = unsigned long (*)(_XDisplay* p_display, void* p_config, int const* p_attributes);
    using DestroyPbufferFn = void (*)(_XDisplay* p_display, unsigned long p_pbuffer);

    // Every entry null and no fake context: what a Mesa table offers.
    GlxArbApi();

    // Creates the fake context for p_parent, which must carry the format
    // p_pixelFormat already, fetches the entries and logs the display's
    // extensions. The fake context is not current when it returns.
    static GlxArbApi MakeFakeContext(OsApi const& p_api, int p_pixelFormat, DeviceHandle p_parent);

    // Bind and release the fake context on the parent device.
    void MakeCurrent() const;
    void DoneCurrent() const;

    // A context for the format of p_device made with
    // glXCreateContextAttribsARB (no share context); null when the entry
    // is missing or the driver refuses. Delete it with OsApi DeleteContext.
    ContextHandle CreateContextAttribs(DeviceHandle p_device, int const* p_attributes) const;

    DeviceHandle Parent() const { return _parent; }
    bool IsCurrent() const { return _isContextCurrentToThread && *_isContextCurrentToThread; }

    QueryExtensionsStringFn QueryExtensionsString = nullptr;
    CreateContextAttribsARBFn CreateContextAttribsARB = nullptr;
    CreatePbufferFn CreatePbuffer = nullptr;
    DestroyPbufferFn DestroyPbuffer = nullptr;

private:
    struct FakeContext;

    DeviceHandle _parent = nullptr;
    std::shared_ptr<FakeContext> _fake;
    std::shared_ptr<bool> _isContextCurrentToThread;
};

}  // namespace Tev::Chart::Ogl
