// Programs on the recording driver, as one transcript: what compiling,
// attaching, linking, binding, validating, looking up and dispatching send
// to GL and log, on a GL 3.1 driver (no geometry or compute stages) whose
// compiles and links succeed with empty logs, and one whose error flag and
// validation are scripted to fail.
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include "framework/assets/MemoryVolume.h"
#include "ogl/shaders/GLSLProgram.h"
#include "ogl/shaders/GLSLShaderBuilder.h"
#include "ogl/shaders/Shader.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <utility>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

class Template : public Program {
    void PrepareAttributeLayout(AttributeLayout& p_layout) override { p_layout.Bind(3, "a_data"); }
    void Compile(Chart::Utility::WatchedRef<Tgl> const& p_gl, Chart::Assets::Volume const& p_volume) override {
        CompileTemplate(p_gl, p_volume, "t", GLSLTemplateFlags().set(HandleVertexPosition).set(HandleFragmentData), GLSL_1_5);
    }
};

TEST(ProgramCalls, CompileAttachLinkBindLookUpAndDispatchAsTranscribed) {
    FakeTgl fake;
    std::map<GLenum, GLint> answers = {{GL_COMPILE_STATUS, 1}, {GL_LINK_STATUS, 1}, {GL_VALIDATE_STATUS, 1}};
    GLenum error = 0;
    std::int64_t shader = 20;
    auto const answer = [&](FakeCall const& p_call) -> FakeResult { return *static_cast<GLint*>(p_call.Ptr(2)) = answers[GLenum(p_call.Int(1))], std::int64_t{0}; };
    fake.gl.On("glGetShaderiv", answer), fake.gl.On("glGetProgramiv", answer);
    fake.gl.On("glCreateShader", [&](FakeCall const&) -> FakeResult { return shader++; });
    fake.gl.On("glCreateProgram", [](FakeCall const&) -> FakeResult { return std::int64_t{5}; });
    fake.gl.On("glGetUniformLocation", [](FakeCall const&) -> FakeResult { return std::int64_t{-1}; });
    fake.gl.On("glGetError", [&](FakeCall const&) -> FakeResult { return std::int64_t(std::exchange(error, 0)); });
    fake.gl.SetString(GL_VERSION, "3.1 FakeGL");
    Tgl& tgl = fake.Build();
    Chart::Assets::MemoryVolume volume;
    for (char const* stage : {"vert", "geom", "frag"}) volume.Add(std::string("t/t.") + stage + ".glsl", "void main() {}\n");

    auto const program = tgl.CompileProgram<Template>(volume);
    fake.Step("GL 3.1: the template's vertex and fragment stages, not its geometry file; linked");
    GLSLShaderBuilder const builder(tgl.ConstHandle(), GLSL_1_5, {});
    tgl.GenGeometryShader(builder);
    fake.Step("a geometry stage asked for all the same: reported, and compiled");
    EXPECT_EQ(tgl.CompileProgram<Template>(volume), program);
    fake.Step("the second request");
    error = GL_INVALID_OPERATION;
    Tgl::Token bound = tgl.Bind(program);
    fake.Step("bound: validated, used, and the error after the use decoded");
    program->Object()->GetUniformLocation("u_unknown"), program->Object()->GetUniformLocation("u_unknown");
    fake.Step("an unknown uniform twice: one query");
    program->Object()->ScopedBind().reset();
    EXPECT_TRUE(tgl.IsFixedFunction());
    fake.Step("the object's own scoped bind, ended: the facade follows into fixed-function mode");
    bound.reset();
    auto const glsl = boost::dynamic_pointer_cast<GLSLProgram>(program->Object());
    glsl->AttachShader(tgl.GenVertexShader(builder));
    bound = tgl.Bind(program), bound.reset();
    static_cast<ProgramObject&>(*glsl).Link(), program->Object()->GetUniformLocation("u_unknown");
    fake.Step("a vertex stage attached again: the old one detached; relinked at the next bind, once; the unknown uniform queried anew");
    answers[GL_VALIDATE_STATUS] = 0;
    testing::internal::CaptureStdout();
    program->ValidateProgram();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n");
    fake.Step("a failed validation prints its empty log");
    glsl->AttachShader(tgl.GenComputeShader(builder));
    glsl->DispatchCompute({2, 1, 1}, 0), glsl->DispatchCompute({0, 1, 1}, GL_SHADER_STORAGE_BARRIER_BIT);
    fake.Step("a compute stage beside the others, dispatched without and with a barrier, and with no groups");
    fake.tgl.reset();
    fake.Step("the facade gone, the program kept: deleted with its stages");
    EXPECT_TRUE(MatchesGolden("shaders/program-calls.txt", fake.Transcript()));
}

// A program of GL name 9, and a shader that puts a program back and counts.
class Nine : public Program {
public:
    explicit Nine(OglApi const& p_gl) { Adopt(boost::make_shared<ProgramObject>(p_gl, 9)); }
    void Compile(Chart::Utility::WatchedRef<Tgl> const&, Chart::Assets::Volume const&) override {}
};
struct Counted : Shader {
    Counted(Tgl& p_tgl, boost::shared_ptr<Program> p_program) : tgl(p_tgl), program(std::move(p_program)) {}
    void RestoreState() override { ++restores, RestoreProgram(tgl, program); }
    Tgl& tgl;
    boost::shared_ptr<Program> program;
    int restores = 0;
};

// Each pop puts the shader before back, the last one the fixed-function
// pipeline; every push gathers the required built-ins afresh. Pops out of
// order are reported, each, and still pop.
TEST(ShaderStack, PopsRestoreTheShaderBeforeAndAtLastFixedFunction) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    auto const outer = boost::make_shared<Counted>(tgl, boost::make_shared<Nine>(tgl.Api()));
    Tgl::Token outerToken = tgl.Bind(outer);
    tgl.RequireBuiltinAttribute(BuiltinNormal);
    EXPECT_TRUE(!tgl.IsFixedFunction() && tgl.GetRequiredBuiltins() == BuiltinArraySet().set(BuiltinNormal));
    Tgl::Token innerToken = tgl.Bind(tgl.GenFixedFunctionShader());
    EXPECT_TRUE(tgl.IsFixedFunction() && tgl.GetRequiredBuiltins().none() && tgl.QueryBuiltinAttributes().all());
    innerToken.reset();
    EXPECT_TRUE(!tgl.IsFixedFunction() && outer->restores == 2);
    outerToken.reset();
    EXPECT_TRUE(tgl.IsFixedFunction() && Assertions(fake.capture).empty());
    EXPECT_EQ(fake.gl.CallStrings(), (std::vector<std::string>{"glUseProgram(9)", "glUseProgram(0)", "glUseProgram(9)", "glUseProgram(0)"}));
    outerToken = tgl.Bind(outer), innerToken = tgl.Bind(tgl.GenFixedFunctionShader());
    outerToken.reset(), innerToken.reset();
    EXPECT_TRUE(Assertions(fake.capture).size() == 2 && tgl.IsFixedFunction() && outer->restores == 4);
    EXPECT_TRUE(HasAssertion(fake.capture, "(p_expectedShader == _boundShader) && \"Shader stack corrupt, unexpected shader found at front of list!\""));
}

}  // namespace
}  // namespace Tev::Test
