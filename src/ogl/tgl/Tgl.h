// The facade through which the library and its clients draw: one per GL
// context, mirroring the immediate-mode GL interface, and carrying each call
// either to the driver's fixed-function pipeline or to the shader route.
#pragma once

#include "framework/types/Viewport.h"
#include "framework/utility/Lifetime.h"
#include "framework/utility/OperationStack.h"
#include "framework/utility/VersionNo.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/Export.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/tgl/TglLimits.h"

#include <boost/shared_ptr.hpp>

#include <deque>
#include <memory>
#include <string>

namespace Tev::Chart::Ogl {

struct OglApi;
struct FBOApi;
struct TglHotEntries;
class BufferPool;
class OglDebug;

class TEVOGL_API Tgl {
public:
    // A scope token: releasing it undoes the change that returned it.
    using Token = boost::shared_ptr<void>;

    // The context whose entry points p_api holds must be current on this
    // thread. p_requested limits the optional features the facade uses.
    Tgl(OglApi const& p_api, DeviceFeatureMask const& p_requested);
    Tgl(Tgl const&) = delete;
    Tgl& operator=(Tgl const&) = delete;
    ~Tgl();

    // ---- Lifetime and identity

    // The facade's own entry-point table; resources call GL through it.
    OglApi const& Api() const { return *_impl; }
    Utility::WeakWatchedRef<const Tgl> ConstHandle() const;
    operator Utility::WeakWatchedRef<const Tgl>() const { return ConstHandle(); }

    DeviceFeatures const& Features() const { return _features; }
    bool IsExtensionSupported(TglExtensions p_extension) const;
    ExtensionSet const& Extensions() const { return _extensions; }
    Utility::VersionNo const& GlVersion() const { return _glVersion; }
    Utility::VersionNo const& GlslVersion() const { return _glslVersion; }
    boost::shared_ptr<BufferPool> GetBufferPool() const { return _bufferPool; }

    // Kept for callers that mark places to look for GL errors; deliberately
    // no-ops, so that checking never costs a driver round trip.
    void CheckError() const {}
    void CheckError(char const*) const {}

    // ---- Scopes

    void ScopeBegin();
    // Forces End() first, with a warning, when a Begin is still open.
    void ScopeEnd();
    // Makes the current scope the backstop of a scoped operation. p_operation
    // must point at an UndoAction (UndoOperationFallback.h).
    void PushScopedOperation(boost::shared_ptr<void> p_operation);

private:
    Utility::WeakWatchedRef<Tgl> Handle();
    FBOApi const* FBOBindings() const { return _fboApi.get(); }

    void ChooseFBOApi();
    void ReadPointAndLineRanges();

    std::unique_ptr<OglApi> _impl;
    Utility::VersionNo _glVersion;
    Utility::VersionNo _gluVersion;
    Utility::VersionNo _glslVersion;
    DeviceFeatures _supportedFeatures;
    DeviceFeatures _features;
    std::unique_ptr<TglHotEntries> _hot;
    ExtensionSet _extensions;
    std::unique_ptr<FBOApi> _fboApi;
    bool _inBeginEnd = false;
    double _pixelDepth = 0.0;
    TglLimits _limits;
    Utility::OperationStack _scopes;
    Utility::OperationStack _attributeUndoStack;
    Utility::OperationStack _nameUndoStack;
    std::deque<Types::Viewport> _scissorStack;
    Utility::OperationStack _scissorUndoStack;
    Types::Viewport _currentScissor;
    double _pointSizeRange[2] = {0.0, 0.0};
    double _lineWidthRange[2] = {0.0, 0.0};
    Utility::Lifetime _lifetime;
    boost::shared_ptr<BufferPool> _bufferPool;
    std::unique_ptr<OglDebug> _debug;
};

}  // namespace Tev::Chart::Ogl
