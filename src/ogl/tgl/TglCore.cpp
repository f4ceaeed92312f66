// Construction, destruction, identity and the scope discipline.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/FBOApi.h"
#include "ogl/tgl/TglHotEntries.h"
#include "ogl/tgl/UndoOperationFallback.h"

#include <algorithm>
#include <iostream>

namespace Tev::Chart::Ogl {

Tgl::Tgl(OglApi const& p_api, DeviceFeatureMask const& p_requested)
    : _impl(std::make_unique<OglApi>(p_api)),
      _glVersion(_impl->GlVersion),
      _gluVersion(_impl->GluVersion),
      _glslVersion(_impl->GlslVersion),
      _hot(std::make_unique<TglHotEntries>(*_impl)),
      _extensions(ReadExtensions(*_impl)) {
    _limits = TglLimits::Read(*_impl, _glVersion);
    _supportedFeatures = DeviceFeatures::Determine(*_impl, _glVersion, _extensions);
    _features = _supportedFeatures.Restricted(p_requested);

    _impl->ActiveTexture(Tokens::TGL_TEXTURE0);
    _impl->ClientActiveTexture(Tokens::TGL_TEXTURE0);
    ChooseFBOApi();
    _hot->MatrixMode(Tokens::TGL_MODELVIEW);
    _scissorStack.push_back(_currentScissor);
    ReadPointAndLineRanges();

    _debug = std::make_unique<OglDebug>(_extensions, *_impl);
    if (_features.Supported(DeviceFeatures::OpenGL_DebugOutput)) _debug->SetupGLDebug();

    _limits.Dump();
}

Tgl::~Tgl() {
    if (_scopes.Depth() != 0) Debug::derr() << "WARNING: \"_scopes.Depth() == 0\" - " << TEV_SIGNATURE;
    Debug::dlog() << "Deallocate Tgl";
    _debug.reset();
    _bufferPool.reset();
    // The rest goes in reverse order of declaration: the lifetime (which
    // tells every resource that the facade is gone) before the operation
    // stacks, and the entry-point table last.
}

void Tgl::ChooseFBOApi() {
    if (_extensions.test(ARB_framebuffer_object))
        _fboApi = std::make_unique<FBOApi>(FBOApi::Core(*_impl));
    else if (_extensions.test(EXT_framebuffer_object) && _extensions.test(EXT_packed_depth_stencil) &&
             _extensions.test(EXT_framebuffer_blit))
        _fboApi = std::make_unique<FBOApi>(FBOApi::Extension(*_impl));
    else
        sentry("no framebuffer-object support");
}

// Drivers report a smooth and an aliased range; only sizes inside both are
// safe whichever rasterisation is in force.
void Tgl::ReadPointAndLineRanges() {
    auto const intersect = [this](unsigned p_smooth, unsigned p_aliased, double (&p_range)[2]) {
        double aliased[2] = {0.0, 0.0};
        _hot->GetDoublev(p_smooth, p_range);
        _hot->GetDoublev(p_aliased, aliased);
        p_range[0] = std::max(p_range[0], aliased[0]);
        p_range[1] = std::min(p_range[1], aliased[1]);
    };
    intersect(Tokens::TGL_POINT_SIZE_RANGE, Tokens::TGL_ALIASED_POINT_SIZE_RANGE, _pointSizeRange);
    intersect(Tokens::TGL_LINE_WIDTH_RANGE, Tokens::TGL_ALIASED_LINE_WIDTH_RANGE, _lineWidthRange);
}

Utility::WeakWatchedRef<Tgl> Tgl::Handle() { return _lifetime.Ref(*this); }

Utility::WeakWatchedRef<const Tgl> Tgl::ConstHandle() const { return _lifetime.Ref(*this); }

bool Tgl::IsExtensionSupported(TglExtensions p_extension) const {
    return p_extension >= 0 && p_extension < TglExtensions_Count && _extensions.test(p_extension);
}

void Tgl::ScopeBegin() { _scopes.Push(); }

void Tgl::ScopeEnd() {
    if (_inBeginEnd) {
        std::cout << "WARNING: scope unwind within Begin/End block" << std::endl;
    }
    _scopes.Pop();
}

void Tgl::PushScopedOperation(boost::shared_ptr<void> p_operation) {
    ensure(_scopes.Depth());
    UndoOperationFallback const fallback(boost::static_pointer_cast<UndoAction>(p_operation));
    _scopes.InsertOperation(fallback, "Scoped Operation");
}

}  // namespace Tev::Chart::Ogl
