// Construction, destruction, identity and the scope discipline.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/OglDebug.h"
#include "ogl/api/Tokens.h"
#include "framework/utility/Scoped.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/FBOApi.h"
#include "ogl/tgl/ShaderRoute.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/TglHotEntries.h"
#include "ogl/tgl/UndoOperationFallback.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <iostream>
#include <sstream>

namespace Tev::Chart::Ogl {

Tgl::Tgl(OglApi const& p_api, DeviceFeatureMask const& p_requested)
    : _impl(std::make_unique<OglApi>(p_api)),
      _glVersion(_impl->GlVersion),
      _gluVersion(_impl->GluVersion),
      _glslVersion(_impl->GlslVersion),
      _hot(std::make_unique<TglHotEntries>(*_impl)),
      _extensions(ReadExtensions(*_impl)),
      _labels(*_impl, _extensions),
      _flushBeforeLightingPush(NeedsFlushBeforeLightingPush(_glVersion)),
      _outputStageStack(boost::make_shared<std::deque<OutputStage>>(1, OutputStage::Forward)) {
    _bufferPool = boost::make_shared<BufferPool>(_lifetime.Ref(static_cast<OglApi const&>(*_impl)));
    _limits = TglLimits::Read(*_impl, _glVersion);
    _supportedFeatures = DeviceFeatures(*_impl, *this);
    _features = _supportedFeatures.Restricted(p_requested);
    _stateTracker = std::make_unique<StateTracker>(*_impl, _limits.lights, _limits.textureUnitsFragment,
                                                   [this] { return IsFixedFunction(); });
    _shaderRoute = std::make_unique<ShaderRoute>();
    _fixedFunction = boost::make_shared<FixedFunction>(*_impl);
    _fixedFunctionToken = Bind(_fixedFunction);

    ActiveTexture(Tokens::TGL_TEXTURE0);
    ClientActiveTexture(Tokens::TGL_TEXTURE0);
    if (!ChooseFBOApi()) sentry("no framebuffer-object support");
    _hot->MatrixMode(Tokens::TGL_MODELVIEW);
    _scissorStack.push_back(_currentScissor);
    ReadPointAndLineRanges();

    _debug = std::make_unique<OglDebug>(*this, *_impl);
    if (_features.Supported(DeviceFeatures::OpenGL_DebugOutput)) _debug->SetupGLDebug();
    InitializeResource(*_bufferPool);

    _limits.Dump();
}

Tgl::~Tgl() {
    if (_scopes.Depth() != 0) Debug::derr() << "WARNING: \"_scopes.Depth() == 0\" - " << TEV_SIGNATURE;
    Debug::dlog() << "Deallocate Tgl";
    _fixedFunctionToken.reset();
    _boundProgram.reset();
    _routeProgram = nullptr;
    _fixedFunction.reset();
    _shaderRoute.reset();
    _stateTracker.reset();
    _debug.reset();
    _bufferPool.reset();
    _directMode.Clear();
    _boundShader.reset();
    _shaderStack.clear();
    _fboStack.clear();
    _boundFBO.reset();
    _programStack.clear();
    _programs.clear();
    _outputStageStack.reset();
    // The rest goes in reverse order of declaration: the lifetime (which
    // tells every resource that the facade is gone) before the operation
    // stacks, and the entry-point table last.
}

bool Tgl::ChooseFBOApi() {
    if (_extensions.test(ARB_framebuffer_object))
        _fboApi = std::make_unique<FBOApi>(FBOApi::Core(*_impl));
    else if (_extensions.test(EXT_framebuffer_object) && _extensions.test(EXT_packed_depth_stencil) &&
             _extensions.test(EXT_framebuffer_blit))
        _fboApi = std::make_unique<FBOApi>(FBOApi::Extension(*_impl));
    return _fboApi != nullptr;
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

void Tgl::InitializeResource(TglResource& p_resource) { p_resource.Initialize(*this, *_impl, _lifetime); }

Utility::WeakWatchedRef<Tgl> Tgl::Handle() { return _lifetime.Ref(*this); }

Utility::WeakWatchedRef<const Tgl> Tgl::ConstHandle() const { return _lifetime.Ref(*this); }

bool Tgl::IsExtensionSupported(TglExtensions p_extension) const {
    return p_extension >= 0 && p_extension < TglExtensions_Count && _extensions.test(p_extension);
}

void Tgl::ScopeBegin() { _scopes.Push(); }

void Tgl::ScopeEnd() {
    if (_inBeginEnd) {
        std::cout << "WARNING: scope unwind within Begin/End block" << std::endl;
        End();
    }
    _scopes.Pop();
}

void Tgl::PushScopedOperation(boost::shared_ptr<void> p_operation) {
    ensure(_scopes.Depth());
    UndoOperationFallback const fallback(boost::static_pointer_cast<UndoAction>(p_operation));
    _scopes.InsertOperation(fallback, "Scoped Operation");
}

Tgl::Token Tgl::MakeToken(void (Tgl::*p_pop)()) {
    return MakeToken([p_pop](Tgl& p_tgl) { (p_tgl.*p_pop)(); });
}

Tgl::Token Tgl::MakeToken(boost::function<void(Tgl&)> p_release) {
    Utility::WeakWatchedRef<Tgl> const handle = Handle();
    return Token(static_cast<void*>(this), [handle, p_release](void*) {
        if (!handle.Expired()) p_release(*handle.Lock());
    });
}

// The undo is held strongly only by p_stack's level, so that closing the
// level (the matching pop) is what retires the scope's backstop.
void Tgl::PushUndo(Utility::OperationStack& p_stack, boost::function<void()> p_undo, char const* p_undoName,
                   char const* p_fallbackName) {
    p_stack.Push();
    auto const undo = boost::make_shared<UndoAction>(std::move(p_undo));
    p_stack.InsertOperation([undo] { (*undo)(); }, p_undoName);
    _scopes.InsertOperation(UndoOperationFallback(undo), p_fallbackName);
}

void Tgl::Begin(unsigned p_primitive) {
    ensure(!_inBeginEnd);
    _directMode.Begin(p_primitive);
    _inBeginEnd = true;
    bool const isLine = p_primitive == Tokens::TGL_LINES || p_primitive == Tokens::TGL_LINE_LOOP ||
                        p_primitive == Tokens::TGL_LINE_STRIP;
    if (isLine) _pixelFunction = &Tgl::PixelOffset;
    _stateTracker->OnBegin(p_primitive);
}

void Tgl::End() {
    ensure(_inBeginEnd);
    ensure(_scopes.Depth());
    _inBeginEnd = false;
    _pixelFunction = &Tgl::PixelDefault;
    Utility::Scoped<Tgl> scoped(*this);
    CommitShaderState();
    _directMode.End(scoped);
    _directMode.Clear();
    _stateTracker->OnPrimitiveEnd();
}

void Tgl::Pixel(int p_x, int p_y) { (this->*_pixelFunction)(p_x, p_y, _pixelDepth); }

void Tgl::Pixel(int p_x, int p_y, double p_z) { (this->*_pixelFunction)(p_x, p_y, p_z); }

void Tgl::PixelDefault(int p_x, int p_y, double p_z) { Vertex(double(p_x), double(p_y), p_z); }

void Tgl::PixelOffset(int p_x, int p_y, double p_z) { Vertex(p_x + 0.5, p_y + 0.5, p_z); }

void Tgl::DumpState() const {
    std::ostringstream dump;
    _stateTracker->Dump(dump);
    Debug::dlog() << dump.str();
}

Tgl::Token Tgl::DebugScope(unsigned p_id, std::string const& p_text) { return _debug->ScopedDebugGroup(p_id, p_text); }

}  // namespace Tev::Chart::Ogl
