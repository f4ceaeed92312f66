// A reusable shader program: which GLSL files make it up, which defines it
// adds, which attribute locations it wants and which uniforms it caches.
// A Program owns one ProgramObject (in practice a GLSLProgram); concrete
// programs implement Compile with one of the protected compile operations,
// which find the stage files of a program name in an asset volume:
//
//   D/N.interface.glsl   put ahead of every stage but compute (optional)
//   D/N.vert.glsl        vertex stage
//   D/N.geom.glsl        geometry stage (optional; only where the device
//                        has geometry shaders)
//   D/N.frag.glsl        fragment stage
//   D/N.compute.glsl     compute stage, alone
//
// The forms that take one name use it as both folder D and base name N.
// The facade makes, caches, compiles and binds programs by type
// (Tgl::CompileProgram).
#pragma once

#include "framework/assets/AssetPath.h"
#include "framework/assets/Volume.h"
#include "framework/utility/TypeInfo.h"
#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/shaders/GLSLTemplateFlags.h"
#include "ogl/shaders/GLSLVersion.h"
#include "ogl/shaders/ProgramObject.h"

#include <boost/any.hpp>
#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>

#include <string>

namespace Tev::Chart::Ogl {

class GLSLProgram;
class GLSLShaderBuilder;
class Tgl;

class TEVOGL_API Program {
public:
    // Attribute locations a program wants bound before it links.
    class AttributeLayout {
    public:
        void Bind(int p_location, std::string const& p_name) { _layout.emplace_back(p_location, p_name); }
        bool Empty() const { return _layout.empty(); }
        ProgramObject::Layout const& Layout() const { return _layout; }

    private:
        ProgramObject::Layout _layout;
    };

    // The builder for one stage (the stage number of GLSLShader).
    using BuilderFactory = boost::function<GLSLShaderBuilder(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                             Assets::Volume const& p_volume, GLSLVersion p_version,
                                                             int p_stage)>;

    Program();
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;
    virtual ~Program();

    // Takes p_object, hands it the attribute layout, compiles and links;
    // a program whose object came out valid then caches its attributes and
    // uniforms.
    void Initialize(Utility::WeakWatchedRef<Tgl> const& p_gl, boost::shared_ptr<ProgramObject> const& p_object,
                    Assets::Volume const& p_volume);

    // Without an object, or after Invalidate.
    bool RequiresCompile() const;
    // The next compile request through the facade rebuilds the program.
    void Invalidate();
    // Whether the last Initialize linked.
    bool CompileSuccessful() const;
    bool IsActive() const;
    boost::shared_ptr<ProgramObject> const& Object() const;
    // What the object answers; false without one.
    bool RequiresCompatibilityAttributes() const;
    void ValidateProgram();

    // Adds "#define p_name" to p_builder's source.
    static void Define(GLSLShaderBuilder& p_builder, std::string const& p_name);

    // Per-type entries for derived programs' location structures, made empty
    // on first request.
    boost::any& GetCachedAttributeEntry(Utility::TypeInfo const& p_type);
    boost::any& GetCachedUniformEntry(Utility::TypeInfo const& p_type);

protected:
    virtual void PrepareAttributeLayout(AttributeLayout& p_layout) {}
    virtual void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) = 0;
    virtual void CacheUniforms(Utility::WatchedRef<Tgl> const& p_gl) {}
    virtual void CacheAttributes(Utility::WatchedRef<Tgl> const& p_gl) {}
    // The program has become, or stopped being, the facade's current one.
    virtual void OnActivated(Utility::WatchedRef<Tgl> const& p_gl) {}
    virtual void OnDeactivated(Utility::WatchedRef<Tgl> const& p_gl) {}
    // Defines of the program's own, added to every stage's builder.
    virtual void ApplyDefines(GLSLShaderBuilder& p_builder) {}

    // The stages of folder p_folder and base name p_baseName, each from a
    // builder that p_factory makes.
    void CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                        Assets::AssetPath const& p_folder, std::string const& p_baseName,
                        BuilderFactory const& p_factory, GLSLVersion p_version);
    // With plain builders.
    void CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                        Assets::AssetPath const& p_folder, std::string const& p_baseName, GLSLVersion p_version);
    void CompileProgram(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                        std::string const& p_name, GLSLVersion p_version);
    // With the template builders and their flag defines.
    void CompileTemplate(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                         Assets::AssetPath const& p_folder, std::string const& p_baseName,
                         GLSLTemplateFlags const& p_flags, GLSLVersion p_version);
    void CompileTemplate(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                         std::string const& p_name, GLSLTemplateFlags const& p_flags, GLSLVersion p_version);
    // The compute stage alone; no interface file.
    void CompileComputeShader(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_shaderRootDir,
                              Assets::AssetPath const& p_folder, std::string const& p_baseName,
                              GLSLVersion p_version);

    // Makes p_object the program's own, up to date, without compiling: for
    // objects that need no GLSL.
    void Adopt(boost::shared_ptr<ProgramObject> const& p_object);

private:
    friend class Tgl;
    struct State;

    void Activated(Utility::WeakWatchedRef<Tgl> const& p_gl);
    void Deactivated(Utility::WeakWatchedRef<Tgl> const& p_gl);

    // A builder from p_factory with the include paths and defines every
    // stage gets: the root, p_folder, the root again.
    GLSLShaderBuilder StageBuilder(Utility::WatchedRef<Tgl> const& p_tgl, Assets::Volume const& p_volume,
                                   Assets::AssetPath const& p_folder, BuilderFactory const& p_factory,
                                   GLSLVersion p_version, int p_stage);

    boost::shared_ptr<State> _state;
};

// The placeholder the facade binds when no GLSL program is in force: its
// object has the GL name 0.
class TEVOGL_API FixedFunction final : public Program {
public:
    explicit FixedFunction(OglApi const& p_gl);

private:
    void Compile(Utility::WatchedRef<Tgl> const&, Assets::Volume const&) override {}
};

}  // namespace Tev::Chart::Ogl
