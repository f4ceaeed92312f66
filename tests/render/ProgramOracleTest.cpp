// Programs built from template files on a disk volume, on one OSMesa
// context: a template program with an interface file, nested includes,
// defines, a generic attribute and a geometry stage that mirrors each
// triangle must draw what plain GL draws for the triangle and its mirror;
// a compute program fills a storage buffer that is read back; the facade's
// cache keeps one program per type until it is invalidated; broken
// programs are logged as the golden file shows and leave the facade
// drawing in fixed-function mode; no shader or program outlives the facade.
#include "framework/assets/DiskVolume.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/resources/PooledBuffer.h"
#include "ogl/shaders/ComputeProgram.h"
#include "ogl/shaders/GLSLShaderBuilder.h"
#include "ogl/tgl/Tgl.h"
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "support/OSMesaFixture.h"

#include "framework/utility/Scoped.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <boost/any.hpp>
#include <boost/make_shared.hpp>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Assets::Volume;
using Chart::Utility::WatchedRef;

std::map<std::string, std::string> const Files = {
    {"shapes/mirror.interface.glsl", "#pragma include(\"lib/tint.glsl\")\n"},
    {"lib/tint.glsl", "#pragma include(\"lib/scale.glsl\")\nvec4 Tinted(vec4 p_color, vec4 p_tint) { return Scaled(p_color * p_tint); }\n"},
    {"lib/scale.glsl", "vec4 Scaled(vec4 p_color) { return p_color * 1.0; }\n"},
    {"shapes/mirror.vert.glsl",
     "in vec2 a_offset;\nout vec4 v_color;\nvoid main() {\n    gl_Position = gl_Vertex + vec4(a_offset, 0.0, 0.0);\n"
     "#ifdef HANDLE_VERTEX_COLOR\n    v_color = gl_Color;\n#else\n    v_color = vec4(1.0);\n#endif\n}\n"},
    {"shapes/mirror.geom.glsl",
     "layout(triangles) in;\nlayout(triangle_strip, max_vertices = 6) out;\nin vec4 v_color[];\nout vec4 g_color;\n"
     "void main() {\n    for (int copy = 0; copy < 2; ++copy) {\n        for (int i = 0; i < 3; ++i) {\n"
     "            vec4 p = gl_in[i].gl_Position;\n#ifdef MIRROR\n            if (copy == 1) p.x = -p.x;\n#endif\n"
     "            gl_Position = p;\n            g_color = v_color[i];\n            EmitVertex();\n        }\n"
     "        EndPrimitive();\n    }\n}\n"},
    {"shapes/mirror.frag.glsl", "in vec4 g_color;\nuniform vec4 u_tint;\nvoid main() { gl_FragColor = Tinted(g_color, u_tint); }\n"},
    {"compute/squares.compute.glsl",
     "layout(local_size_x = 1) in;\nlayout(std430, binding = 0) buffer Values { int values[]; };\n"
     "void main() { uint i = gl_GlobalInvocationID.x; values[i] = int(i * i) + OFFSET; }\n"},
    {"broken/broken.vert.glsl", "void main() { gl_Position = gl_Vertex; }\n"},
    {"broken/broken.frag.glsl", "#pragma include(\"lib/bad.glsl\")\nvoid main() { gl_FragColor = Bad(); }\n"},
    {"lib/bad.glsl", "vec4 Bad() {\n    return vec4(1.0) +;\n}\n"},
    {"unlinked/unlinked.vert.glsl", "void main() { gl_Position = gl_Vertex; }\n"},
    {"unlinked/unlinked.frag.glsl", "uniform vec4 u_tint;\nvec4 Missing();\nvoid main() { gl_FragColor = Missing() * u_tint; }\n"},
    {"absent/absent.vert.glsl", "void main() { gl_Position = gl_Vertex; }\n"}};

// Mirrors each triangle in x and tints it yellow when it becomes current.
class Mirror : public Program {
    void PrepareAttributeLayout(AttributeLayout& p_layout) override { p_layout.Bind(5, "a_offset"); }
    void ApplyDefines(GLSLShaderBuilder& p_builder) override { Define(p_builder, "MIRROR"); }
    void Compile(WatchedRef<Tgl> const& p_gl, Volume const& p_volume) override {
        CompileTemplate(p_gl, p_volume, "shapes", "mirror", GLSLTemplateFlags().set(HandleVertexColor), GLSL_1_5_Compatibility);
    }
    void CacheUniforms(WatchedRef<Tgl> const&) override { Tint() = Object()->GetUniformLocation("u_tint"); }
    void OnActivated(WatchedRef<Tgl> const& p_gl) override { p_gl->Api().Uniform4f(boost::any_cast<int>(Tint()), 1, 1, 0, 1); }
    boost::any& Tint() { return GetCachedUniformEntry(Chart::Utility::TypeInfo::Of<Mirror>()); }
};

class Squares : public ComputeProgram {
public:
    explicit Squares(GLSLVersion p_version = GLSL_4_3) : ComputeProgram("compute", "squares", p_version) {}
    void ApplyDefines(GLSLShaderBuilder& p_builder) override { Define(p_builder, "OFFSET 7"); }
};

// Plain programs of one name each, for the broken ones.
template <int N>
class Named : public Program {
public:
    explicit Named(std::string p_name) : _name(std::move(p_name)) {}
    void Compile(WatchedRef<Tgl> const& p_gl, Volume const& p_volume) override { CompileProgram(p_gl, p_volume, _name, GLSL_1_5_Compatibility); }
    std::string _name;
};

class ProgramOnMesa : public OSMesaFixture {
protected:
    ProgramOnMesa() {
        for (auto const& [path, text] : Files)
            std::filesystem::create_directories((_root / path).parent_path()), std::ofstream(_root / path) << text;
    }
    ~ProgramOnMesa() override { _tgl.reset(), std::filesystem::remove_all(_root); }

    void Clear() const { _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT); }
    // A triangle in the right half, by the driver, from the bound program or
    // the fixed-function pipeline; p_mirror adds its mirror image.
    void Triangle(float p_r, float p_g, float p_b, bool p_mirror = false) const {
        _gl->Color4f(p_r, p_g, p_b, 1), _gl->Begin(GL_TRIANGLES);
        for (double sign : {1.0, -1.0})
            if (sign > 0 || p_mirror) _gl->Vertex2d(sign * 0.1, -0.8), _gl->Vertex2d(sign * 0.8, -0.75), _gl->Vertex2d(sign * 0.45, 0.8);
        _gl->End();
    }
    // The GL names for which p_is answers true.
    std::vector<GLuint> Names(char const* p_is) const {
        std::vector<GLuint> names;
        for (GLuint name = 1; name < 64; ++name)
            if (reinterpret_cast<GLboolean(TGL_APIENTRY*)(GLuint)>(_gl->ProcAddress(p_is))(name)) names.push_back(name);
        return names;
    }

    Debug::CaptureScope _log;
    std::filesystem::path _root = std::filesystem::temp_directory_path() / ("tevogl-programs-" + std::to_string(getpid()));
    Chart::Assets::DiskVolume _volume{_root};
    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
};

TEST_F(ProgramOnMesa, TemplateProgramDrawsTheTriangleAndItsMirrorTintedAsPlainGL) {
    auto const program = _tgl->CompileProgram<Mirror>(_volume);
    ASSERT_TRUE(program->CompileSuccessful()) << LogText(_log);
    EXPECT_TRUE(program->Object()->GetAttributeLocation("a_offset") == 5 && !program->RequiresCompatibilityAttributes());
    std::vector<std::uint32_t> shaded;
    {
        Tgl::Token const bound = _tgl->Bind(program);
        EXPECT_EQ(_tgl->QueryBuiltinAttributes(), BuiltinArraySet().set(BuiltinVertex).set(BuiltinColor));
        EXPECT_EQ(_tgl->GetBuiltinAttributeBuffers(), (std::vector<Chart::Utility::HashedString>{"gl_Vertex", "gl_Color"}));
        Clear(), Triangle(1, 0, 1), shaded = Frame();
        Tgl::Token const fixed = _tgl->Bind(_tgl->GenFixedFunctionShader());
        EXPECT_TRUE(_tgl->IsFixedFunction() && _tgl->GetRequiredBuiltins().none());
    }
    EXPECT_TRUE(_tgl->IsFixedFunction());
    Clear(), Triangle(1, 0, 0, true);
    EXPECT_TRUE(shaded == Frame() && CountDifferent(0xff000000u) > 200) << CountDifferent(0xff000000u);
}

TEST_F(ProgramOnMesa, ComputeProgramFillsTheStorageBuffer) {
    auto const program = _tgl->CompileProgram<Squares>(_volume);
    ASSERT_TRUE(program->CompileSuccessful()) << LogText(_log);
    auto const buffer = boost::make_shared<PooledBuffer>(_tgl->GetBufferPool(), 16 * 4, BufferUsage(BufferUsage::Dynamic, BufferUsage::Read), nullptr);
    {
        Tgl::Token const bound = _tgl->Bind(program), storage = _tgl->ScopedBindBufferBase(GL_SHADER_STORAGE_BUFFER, 0, buffer);
        program->DispatchCompute({16, 1, 1}, GL_BUFFER_UPDATE_BARRIER_BIT);
    }
    _gl->BindBuffer(GL_COPY_READ_BUFFER, buffer->Name());
    auto const* values = static_cast<GLint const*>(_gl->MapBufferRange(GL_COPY_READ_BUFFER, 0, 16 * 4, GL_MAP_READ_BIT));
    ASSERT_NE(values, nullptr);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(values[i], i * i + 7) << i;
    _gl->UnmapBuffer(GL_COPY_READ_BUFFER), _gl->BindBuffer(GL_COPY_READ_BUFFER, 0);
    EXPECT_TRUE(program->Object()->RequiresCompatibilityAttributes() && !program->RequiresCompatibilityAttributes());
}

// A rebuild while bound moves the binding to the new GL program, which
// gets its uniforms as at any switch; every name goes with the facade.
TEST_F(ProgramOnMesa, CacheKeepsOneProgramPerTypeUntilInvalidatedAndNothingOutlivesTheFacade) {
    auto const program = _tgl->CompileProgram<Mirror>(_volume);
    auto const first = program->Object();
    EXPECT_TRUE(_tgl->CompileProgram<Mirror>(_volume) == program && program->Object() == first && !program->RequiresCompile());
    Tgl::Token const bound = _tgl->Bind(program);
    program->Invalidate();
    EXPECT_TRUE(program->RequiresCompile());
    EXPECT_TRUE(_tgl->CompileProgram<Mirror>(_volume) == program && program->Object() != first && !program->RequiresCompile());
    GLint current = 0;
    _gl->GetIntegerv(GL_CURRENT_PROGRAM, &current);
    GLfloat tint[4] = {};
    reinterpret_cast<PFNGLGETUNIFORMFVPROC>(_gl->ProcAddress("glGetUniformfv"))(GLuint(current), program->Object()->GetUniformLocation("u_tint"), tint);
    EXPECT_TRUE(GLuint(current) == program->Object()->Handle() && tint[0] == 1 && tint[1] == 1 && program->Object()->IsActive());
    _tgl->CompileProgram<Squares>(_volume), _tgl->InvalidateProgramObjects();
    EXPECT_TRUE(program->RequiresCompile());
    EXPECT_EQ(Names("glIsShader").size(), 7u);  // two programs of three stages, and the compute stage
    EXPECT_EQ(Names("glIsProgram").size(), 3u);
    _tgl.reset();
    EXPECT_TRUE(Names("glIsShader").empty() && Names("glIsProgram").empty());
}

// Each failure is reported and surfaces as CompileSuccessful() false; the
// facade stays in fixed-function mode and draws.
TEST_F(ProgramOnMesa, BrokenProgramsAreLoggedAndLeaveTheFacadeDrawing) {
    std::string log;
    auto const logged = [&](std::string const& p_step) {
        log += "== " + p_step + "\n";
        for (auto const& e : _log.Entries())
            if (e.category == "GLSL" || e.channel == Debug::Channel::Assert) log += e.text + "\n";
        _log.Sink().Clear();
    };
    EXPECT_FALSE(_tgl->CompileProgram<Named<0>>(_volume, "broken")->CompileSuccessful());
    logged("syntax error in an included file");
    auto const unlinked = _tgl->CompileProgram<Named<1>>(_volume, "unlinked");
    EXPECT_FALSE(unlinked->CompileSuccessful());
    EXPECT_TRUE(!unlinked->Object()->GetAttributeLocation("gl_Vertex") && unlinked->Object()->GetUniformLocation("u_tint") == -1);
    logged("link failure");
    EXPECT_FALSE(_tgl->CompileProgram<Named<2>>(_volume, "absent")->CompileSuccessful());
    logged("no fragment file");
    EXPECT_FALSE(_tgl->CompileProgram<Squares>(_volume, GLSL_3_3)->CompileSuccessful());
    logged("compute below GLSL 4.2");
    EXPECT_TRUE(MatchesGolden("shaders/broken-programs.txt", log));

    Chart::Utility::Scoped<Tgl> scope(*_tgl);
    EXPECT_TRUE(_tgl->IsFixedFunction());
    _tgl->Begin(Tokens::TGL_TRIANGLES), _tgl->Color(QColor(Qt::green));
    _tgl->Vertex(-1, -1), _tgl->Vertex(3, -1), _tgl->Vertex(-1, 3), _tgl->End();
    EXPECT_EQ(Pixel(5, 5), 0xff00ff00u);
}

}  // namespace
}  // namespace Tev::Test
