// The facade through which the library and its clients draw: one per GL
// context, mirroring the immediate-mode GL interface, and carrying each call
// either to the driver's fixed-function pipeline or to the shader route.
#pragma once

#include "framework/types/Angle.h"
#include "framework/types/BoundingBox.h"
#include "framework/types/Matrix4.h"
#include "framework/types/Quaternion.h"
#include "framework/types/Size.h"
#include "framework/types/Vector.h"
#include "framework/types/Viewport.h"
#include "framework/assets/Volume.h"
#include "framework/utility/HashedString.h"
#include "framework/utility/Lifetime.h"
#include "framework/utility/OperationStack.h"
#include "framework/utility/TypeInfo.h"
#include "framework/utility/VersionNo.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/Export.h"
#include "ogl/api/ObjectLabels.h"
#include "ogl/api/TglExtensions.h"
#include "ogl/resources/VAOFlags.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/shaders/GLSLShader.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/BuiltinArrays.h"
#include "ogl/tgl/Material.h"
#include "ogl/tgl/OglDirectMode.h"
#include "ogl/tgl/OutputStage.h"
#include "ogl/tgl/TglLimits.h"

#include <QColor>

#include <boost/function.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>

#include <cstddef>

#include <deque>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace Tev::Chart::Ogl {

struct OglApi;
struct FBOApi;
struct TglHotEntries;
class BufferPool;
class FrameBufferObject;
class GLSLProgram;
class GLSLShaderBuilder;
class OglDebug;
class PooledBuffer;
class Shader;
class StateTracker;
class RouteProgram;
struct ShaderRoute;
class TglResource;
class DisplayList;
class PrimitiveBuffer;
class Text;
class Texture;

class TEVOGL_API Tgl {
public:
    // A scope token: releasing it undoes the change that returned it.
    using Token = boost::shared_ptr<void>;
    // The texture-coordinate sets the built-in arrays reach, GL_TEXTURE0
    // onwards.
    static constexpr unsigned TexCoordMAX = 8;

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
    operator Utility::WeakWatchedRef<Tgl>() { return Handle(); }

    DeviceFeatures const& Features() const { return _features; }
    bool IsExtensionSupported(TglExtensions p_extension) const;
    ExtensionSet const& Extensions() const { return _extensions; }
    Utility::VersionNo const& GlVersion() const { return _glVersion; }
    Utility::VersionNo const& GlslVersion() const { return _glslVersion; }
    boost::shared_ptr<BufferPool> GetBufferPool() const { return _bufferPool; }
    // Labels for GL objects; enabled with KHR_debug.
    ObjectLabels const& Labels() const { return _labels; }

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

    // The state tracker's values, on the debug channel.
    void DumpState() const;
    // Marks the GL command stream with "BEGIN: text" now and "END: text"
    // when the token goes; an empty token without debug output.
    Token DebugScope(unsigned p_id, std::string const& p_text);

    // Kept for callers of the texture-slot bookkeeping, which the facade
    // does not do: deliberately no-ops.
    void PushTextureSlotState() {}
    void PopTextureSlotState() {}
    void SynchronizeTextureSlotState(char const*) {}

    // ---- Primitives

    // Collects what follows up to End() into one vertex array.
    void Begin(unsigned p_primitive);
    // Draws what Begin() collected, inside a scope of its own, so that
    // whatever the drawing changed is undone when it is done.
    void End();
    bool InBeginEnd() const { return _inBeginEnd; }

    void Vertex(Types::Vector2d const& p_vertex);
    void Vertex(Types::Vector3d const& p_vertex);
    void Vertex(Types::Vector4d const& p_vertex);
    void Vertex(double p_x, double p_y);
    void Vertex(double p_x, double p_y, double p_z);
    // Inside Begin/End the normal of the following vertices; outside, the
    // current normal.
    void Normal(Types::Vector3d const& p_normal);
    void Normal(double p_x, double p_y, double p_z);
    // Inside Begin/End the colour of the following vertices; outside, the
    // current colour.
    void Color(QColor const& p_color);
    void TexCoord(double p_s);
    void TexCoord(double p_s, double p_t);
    void TexCoord(Types::Vector2d const& p_coord);
    void TexCoord(Types::Vector3d const& p_coord);
    void TexCoord(Types::Vector4d const& p_coord);
    // p_unit is a texture unit token, TGL_TEXTURE0 onwards.
    void MultiTexCoord(unsigned p_unit, double p_s);
    void MultiTexCoord(unsigned p_unit, Types::Vector2d const& p_coord);
    void MultiTexCoord(unsigned p_unit, Types::Vector3d const& p_coord);
    void MultiTexCoord(unsigned p_unit, Types::Vector4d const& p_coord);
    void RasterPos(Types::Vector3d const& p_position);

    // A vertex at a pixel position: on the pixel's corner for points and
    // filled primitives, on its centre inside a line Begin, so that lines
    // run through pixel centres.
    void Pixel(int p_x, int p_y);
    void Pixel(int p_x, int p_y, double p_z);
    void PixelDefault(int p_x, int p_y, double p_z);
    void PixelOffset(int p_x, int p_y, double p_z);

    // ---- Attribute, name and scissor stacks. Each push needs an open
    // scope; a push left open is popped, with a warning, when it closes.

    void PushAttrib(unsigned p_mask);
    void PopAttrib();
    // PushAttrib, with a token whose release pops.
    Token PushAttribScope(unsigned p_mask);
    void PushName(unsigned p_name);
    void PopName();
    // Saves the scissor rectangle in force; the GL scissor follows only at
    // the next Scissor().
    void PushScissor();
    void PopScissor();
    // Narrows the rectangle in force to p_rectangle. Without a push in
    // between, successive calls keep narrowing.
    void Scissor(Types::Viewport const& p_rectangle);

    // ---- Programs and render passes

    // Makes p_program the program in force until the token goes; the one
    // in force before comes back then.
    Token Bind(boost::shared_ptr<Program> const& p_program);
    boost::shared_ptr<Program> const& ActiveProgram() const { return _boundProgram; }
    // True with no program or the fixed-function placeholder in force.
    bool IsFixedFunction() const;
    bool RequiresCompatibilityAttributes() const;
    boost::shared_ptr<ProgramObject> GenFixedFunction() const;

    // ---- Shaders and programs

    // Compiled at once; the compile is logged on the "GLSL" channel.
    boost::shared_ptr<GLSLVertexShader> GenVertexShader(GLSLShaderBuilder const& p_builder);
    boost::shared_ptr<GLSLFragmentShader> GenFragmentShader(GLSLShaderBuilder const& p_builder);
    // Both report a device without the stage and compile all the same.
    boost::shared_ptr<GLSLGeometryShader> GenGeometryShader(GLSLShaderBuilder const& p_builder);
    boost::shared_ptr<GLSLComputeShader> GenComputeShader(GLSLShaderBuilder const& p_builder);
    // The shader whose restore returns the facade to fixed-function mode.
    boost::shared_ptr<Shader> GenFixedFunctionShader();

    // The facade's one program of type T, compiled from p_volume on first
    // request and again after it was invalidated. p_args construct the
    // program on first request and are not used afterwards.
    template <typename T, typename... Args>
    boost::shared_ptr<T> CompileProgram(Assets::Volume const& p_volume, Args&&... p_args);
    // Every program the facade holds is rebuilt at its next request.
    void InvalidateProgramObjects();

    // Makes p_shader the shader in force (its RestoreState puts its program
    // in force) until the token goes; the shader before is restored then.
    // The required built-in arrays are gathered afresh for each shader.
    Token Bind(boost::shared_ptr<Shader> const& p_shader);
    // Requires the built-in arrays that the program in force reads; in
    // fixed-function mode all seven. Returns the required set.
    BuiltinArraySet QueryBuiltinAttributes();
    void RequireBuiltinAttribute(BuiltinArray p_array);
    BuiltinArraySet const& GetRequiredBuiltins() const { return _requiredBuiltins; }
    // The names of the required built-in arrays, in flag order: the arrays
    // a draw has to bind buffers to.
    std::vector<Utility::HashedString> GetBuiltinAttributeBuffers() const;

    // ---- The shader route: the library's own shaders, drawn with the
    // state tracker's values as uniforms. To draw through one:
    //
    //     Tgl::Token const shader = tgl.Bind(tgl.GenericShader());
    //     ... Begin/End, lights, material, textures as in fixed-function mode
    //
    // Releasing the token returns to the shader (or fixed-function mode) in
    // force before. The shaders are compiled on first request and kept.

    // The simple shaders: the vertex colour alone, or combined with unit 0's
    // texture by that unit's environment mode.
    enum class SimpleShaderKind { FlatColor, Textured };
    // The general-purpose shader in the variant p_flags select. A variant
    // that does not compile (its log is on the "GLSL" channel) leaves the
    // facade in fixed-function mode while it is bound.
    boost::shared_ptr<Shader> GenericShader(GLSLTemplateFlags const& p_flags = GLSLTemplateFlags());
    boost::shared_ptr<Shader> SimpleShader(SimpleShaderKind p_kind);
    // Files of p_volume take the place of the built-in shader files of the
    // same path; every shader is rebuilt from the new set when it is next
    // bound. A null volume returns to the built-in files alone.
    void SetShaderVolume(boost::shared_ptr<Assets::Volume const> p_volume);
    // The built-in files, overlaid by the caller's volume.
    Assets::Volume const& ShaderVolume() const;
    // Sends the state tracker's changed values to the shader-route program
    // in force. End() and Bind(VertexBuffer) do it themselves; a caller
    // that draws with GL directly calls it first.
    void CommitShaderState();

    // Binds p_buffer to the indexed binding p_index of p_target
    // (TGL_SHADER_STORAGE_BUFFER, ...) until the token goes; the token keeps
    // the buffer.
    Token ScopedBindBufferBase(unsigned p_target, unsigned p_index, boost::shared_ptr<PooledBuffer> const& p_buffer);

    Token ScopedOutputStage(OutputStage const& p_stage);
    OutputStage ActiveOutputStage() const;

    // ---- Textures

    // Texture targets. The values are GL's own target enumerants, passed on
    // unchanged to the bind, enable and disable calls.
    enum TexSamplerType : unsigned {
        Texture1D = 0x0DE0,
        Texture2D = 0x0DE1,
        Texture3D = 0x806F,
        TextureCubeMap = 0x8513,
        TextureRectangle = 0x84F5,
        Texture1DArray = 0x8C18,
        Texture2DArray = 0x8C1A,
        TextureBuffer = 0x8C2A,
    };
    // A texture-coordinate set of vertex data; set n feeds unit n, below
    // TexCoordMAX.
    enum TexCoordType : unsigned { TexCoord0, TexCoord1, TexCoord2, TexCoord3, TexCoord4, TexCoord5, TexCoord6, TexCoord7 };
    // A texture unit by number: 0 is GL_TEXTURE0.
    using TexUnitIndex = unsigned;

    boost::shared_ptr<Texture> GenTexture();
    // Binds p_texture to p_target on the active unit; no texture binds GL's
    // default one (name 0).
    void Bind(boost::shared_ptr<Texture> const& p_texture, TexSamplerType p_target);
    // Bind, with a token whose release unbinds p_target on the unit active
    // now and then selects again the unit active at the release.
    Token ScopedBind(boost::shared_ptr<Texture> const& p_texture, TexSamplerType p_target);
    // Binds name 0 to p_target on p_unit (TGL_TEXTURE0 onwards); the active
    // unit stays as it was.
    void UnbindTexture(unsigned p_unit, TexSamplerType p_target);
    // p_unit is a texture unit token, TGL_TEXTURE0 onwards. The facade keeps
    // the units it selected, so that an unbind can return to them without
    // asking GL.
    void ActiveTexture(unsigned p_unit);
    void ClientActiveTexture(unsigned p_unit);
    unsigned ActiveTextureUnit() const { return _activeTexture; }
    unsigned ClientActiveTextureUnit() const { return _clientActiveTexture; }
    // The texture environment and coordinate generation go to GL in both
    // modes: a bound program ignores them.
    void TexEnvi(unsigned p_target, unsigned p_param, int p_value);
    void TexEnvfv(unsigned p_target, unsigned p_param, float const* p_values);
    void TexGeni(unsigned p_coord, unsigned p_param, int p_value);
    void TexCoordPointer(int p_size, unsigned p_type, int p_stride, void const* p_pointer);
    // p_target is a texture target or, for a cube map, one of its faces.
    void GetTexImage(unsigned p_target, int p_level, unsigned p_format, unsigned p_type, void* p_pixels) const;
    Types::Size GetTexLevelSize(unsigned p_target, int p_level) const;
    // Needs GL 3.0.
    void GenerateMipmap(TexSamplerType p_target);

    // ---- Framebuffers

    // Null, with a report, where the driver offers no framebuffer objects.
    boost::shared_ptr<FrameBufferObject> GenFBO();
    // Draws into p_fbo, as the render pass p_stage, until the token goes;
    // the framebuffer and the pass in force before come back then.
    Token Bind(boost::shared_ptr<FrameBufferObject> const& p_fbo, OutputStage const& p_stage = OutputStage::Forward);

    // ---- Retained geometry: vertex buffers, primitive buffers, display lists

    boost::shared_ptr<VertexBuffer> GenVertexBuffer(VAOFlags p_vaoFlags = VAOWhereSupported);
    // Binds p_buffer's arrays until the token goes.
    Token Bind(boost::shared_ptr<VertexBuffer> const& p_buffer);
    boost::shared_ptr<PrimitiveBuffer> CreatePrimitiveBuffer(VertexBuffer::PrimitiveType p_type,
                                                             BufferUsage const& p_usage = BufferUsage::Default);
    boost::shared_ptr<DisplayList> GenDisplayList();
    // p_count lists with consecutive names; none when the driver has no
    // range that long.
    std::vector<boost::shared_ptr<DisplayList>> GenDisplayLists(int p_count);

    // ---- Text

    // A texture font of p_pixelSize pixels from the first of p_fontFiles
    // that loads; an empty list takes the default font (DejaVu Sans). None
    // loading is reported per file and gives a text that is not valid and
    // draws nothing.
    boost::shared_ptr<Text> GenFont(std::vector<std::string> const& p_fontFiles, unsigned p_pixelSize);

    // ---- Transforms

    void LoadMatrix(Types::Matrix4 const& p_matrix);
    void MultMatrix(Types::Matrix4 const& p_matrix);
    // TGL_MODELVIEW_MATRIX, TGL_PROJECTION_MATRIX or TGL_TEXTURE_MATRIX.
    Types::Matrix4 GetMatrix(unsigned p_matrix) const;
    void Ortho(double p_left, double p_right, double p_bottom, double p_top, double p_near, double p_far);
    // The box, in eye coordinates, seen orthographically; its x and y extent
    // widened about its centre to the viewport's aspect ratio, its depth
    // giving the near and far planes.
    void Ortho(Types::Viewport const& p_viewport, Types::BoundingBox const& p_bb);
    // One unit per pixel of the viewport.
    void Ortho2D(Types::Viewport const& p_viewport);
    // A perspective with the vertical field of view p_fieldOfView and the
    // viewport's aspect ratio; the box, in eye coordinates, gives the near
    // and far planes.
    void Perspective(Types::Viewport const& p_viewport, Types::BoundingBox const& p_bb, Types::Angle p_fieldOfView);
    // Restricts drawing to p_region (centre and extent) of p_viewport.
    void PickMatrix(Types::Viewport const& p_region, Types::Viewport const& p_viewport);
    // Object to window coordinates with GL's current matrices and viewport;
    // TGL_TRUE on success, TGL_FALSE (p_result untouched) otherwise.
    int Project(Types::Vector3d const& p_object, Types::Vector3d& p_result) const;
    int UnProject(Types::Vector3d const& p_window, Types::Vector3d& p_result) const;
    void Rotate(Types::Angle p_angle, Types::Vector3d const& p_axis);
    void Rotate(Types::Quaternion const& p_rotation);
    void Scale(Types::Vector3d const& p_factors);
    void Translate(Types::Vector3d const& p_offset);
    void Viewport(Types::Viewport const& p_viewport);
    void ClipPlane(unsigned p_plane, Types::Vector4d const& p_equation);

    // ---- Raster state

    void Enable(unsigned p_capability);
    void Disable(unsigned p_capability);
    void EnableClientState(unsigned p_array);
    void DisableClientState(unsigned p_array);
    void BlendFunc(unsigned p_source, unsigned p_destination);
    void DepthMask(bool p_write);
    void ClearColor(QColor const& p_color);
    // Clamped into the widths and sizes both rasterisations support.
    void LineWidth(float p_width);
    void PointSize(float p_size);
    void IssueMemoryBarrier(unsigned p_bits);

    // ---- Lighting and material

    void Light(unsigned p_light, unsigned p_param, Types::Vector3d const& p_value);
    void Light(unsigned p_light, unsigned p_param, Types::Vector4d const& p_value);
    void Light(unsigned p_light, unsigned p_param, QColor const& p_value);
    void Light(unsigned p_light, unsigned p_param, float p_value);
    void Light(unsigned p_light, unsigned p_param, Qt::GlobalColor p_value);
    void LightModel(unsigned p_param, Types::Vector4d const& p_value);
    void LightModel(unsigned p_param, int p_value);
    void Material(Ogl::Material const& p_material);
    void ColorMaterial(unsigned p_face, unsigned p_mode);
    // The values the shader route feeds to its uniforms.
    StateTracker const& GetStateTracker() const { return *_stateTracker; }

    // ---- Limits

    // At most 2: the shader route has two lights.
    int GetMaxLights() const;
    int GetMaxStencilBits() const { return _limits.stencilBits; }
    int GetMaxClipPlanes() const { return _limits.clipPlanes; }
    int GetMaxTextureSize() const { return _limits.textureSize; }
    int GetMaxTextureBufferSize() const { return _limits.textureBufferSize; }
    // The fixed units in fixed-function mode, the fragment units otherwise.
    int GetMaxTextures() const;
    Types::Size GetMaxViewportSize() const;
    int GetMaxPrimitiveCount() const { return 500000; }
    TglLimits const& Limits() const { return _limits; }

private:
    Utility::WeakWatchedRef<Tgl> Handle();
    FBOApi const* FBOBindings() const { return _fboApi.get(); }

    // False, with no set made, when neither family is complete.
    bool ChooseFBOApi();
    void ReadPointAndLineRanges();
    bool LightIndexValid(unsigned p_light) const;
    static bool NeedsFlushBeforeLightingPush(Utility::VersionNo const& p_glVersion);
    // Makes a resource live against this facade: it learns the table and
    // watches the facade's lifetime. Every factory ends with this.
    void InitializeResource(TglResource& p_resource);

    // A token whose release calls p_pop on this facade, if it still exists.
    Token MakeToken(void (Tgl::*p_pop)());
    // Opens a level on p_stack holding p_undo, and files the backstop for
    // it on the current scope.
    void PushUndo(Utility::OperationStack& p_stack, boost::function<void()> p_undo, char const* p_undoName,
                  char const* p_fallbackName);

    friend class Shader;

    void RestoreProgram(boost::shared_ptr<Program> const& p_program);
    // Rebuilds a stale shader-route program first; a program that did not
    // compile puts the fixed-function pipeline in force instead.
    void RestoreRouteProgram(boost::shared_ptr<Program> const& p_program);
    // The shader-route program of p_key, made by p_make on first request.
    boost::shared_ptr<Shader> RouteShader(std::string const& p_key,
                                          boost::function<boost::shared_ptr<RouteProgram>()> const& p_make);
    void UnbindProgram();
    // Links p_object if it is stale, and makes it GL's current program.
    static void UseObject(ProgramObject& p_object);
    // p_callback runs when a ScopedBind of the program ends.
    boost::shared_ptr<GLSLProgram> GenProgram(boost::function<void()> p_callback = {});
    template <int STAGE>
    boost::shared_ptr<GLSLShader<STAGE>> GenShader(GLSLShaderBuilder const& p_builder);
    // Gives p_program a fresh GLSL program and initializes it.
    void CompileCachedProgram(boost::shared_ptr<Program> const& p_program, Assets::Volume const& p_volume);
    void PushShader(boost::shared_ptr<Shader> p_shader);
    void PopShader(boost::shared_ptr<Shader> const& p_expectedShader);
    void PushRenderPass(OutputStage const& p_stage);
    void PopRenderPass();

    // ---- Textures and framebuffers

    void CommitTextureBinding(TexSamplerType p_target, unsigned p_name);
    // False, with nothing pushed, for no framebuffer.
    bool PushFBO(boost::shared_ptr<FrameBufferObject> p_fbo);
    void PopFBO(boost::shared_ptr<FrameBufferObject> const& p_expectedFBO);
    // A token whose release calls p_release on this facade, if it still
    // exists.
    Token MakeToken(boost::function<void(Tgl&)> p_release);

    std::unique_ptr<OglApi> _impl;
    Utility::VersionNo _glVersion;
    Utility::VersionNo _gluVersion;
    Utility::VersionNo _glslVersion;
    DeviceFeatures _supportedFeatures;
    DeviceFeatures _features;
    std::unique_ptr<TglHotEntries> _hot;
    ExtensionSet _extensions;
    ObjectLabels _labels;
    std::unique_ptr<FBOApi> _fboApi;
    bool _inBeginEnd = false;
    // Workaround "mesa-color-material-push" (TglStacks.cpp).
    bool _flushBeforeLightingPush = false;
    void (Tgl::*_pixelFunction)(int, int, double) = &Tgl::PixelDefault;
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
    std::unique_ptr<StateTracker> _stateTracker;
    boost::shared_ptr<Program> _boundProgram;
    boost::shared_ptr<Program> _fixedFunction;
    // The program in force when it is one of the shader route's, else null.
    RouteProgram* _routeProgram = nullptr;
    std::unique_ptr<ShaderRoute> _shaderRoute;
    // Keeps the placeholder bound for the facade's life.
    Token _fixedFunctionToken;
    // The programs in force before each Bind still open.
    std::vector<boost::shared_ptr<Program>> _programStack;
    // The framebuffers bound before each Bind still open, the latest first.
    std::list<boost::shared_ptr<FrameBufferObject>> _fboStack;
    boost::shared_ptr<FrameBufferObject> _boundFBO;
    // The texture units last selected through the facade.
    unsigned _activeTexture = 0;
    unsigned _clientActiveTexture = 0;
    // One compiled program per program type.
    boost::unordered_map<Utility::TypeInfo, boost::shared_ptr<Program>> _programs;
    std::list<boost::shared_ptr<Shader>> _shaderStack;
    boost::shared_ptr<Shader> _boundShader;
    BuiltinArraySet _requiredBuiltins;
    boost::shared_ptr<std::deque<OutputStage>> _outputStageStack;
    OglDirectMode _directMode;
    boost::shared_ptr<BufferPool> _bufferPool;
    std::unique_ptr<OglDebug> _debug;
};

template <typename T, typename... Args>
boost::shared_ptr<T> Tgl::CompileProgram(Assets::Volume const& p_volume, Args&&... p_args) {
    static_assert(std::is_base_of_v<Program, T>, "programs derive from Program");
    boost::shared_ptr<Program>& cached = _programs[Utility::TypeInfo::Of<T>()];
    if (!cached) cached = boost::make_shared<T>(std::forward<Args>(p_args)...);
    if (cached->RequiresCompile()) CompileCachedProgram(cached, p_volume);
    return boost::static_pointer_cast<T>(cached);
}

}  // namespace Tev::Chart::Ogl
