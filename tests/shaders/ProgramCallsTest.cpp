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
    bound.reset();
    auto const glsl = boost::dynamic_pointer_cast<GLSLProgram>(program->Object());
    glsl->AttachShader(tgl.GenVertexShader(builder));
    bound = tgl.Bind(program), bound.reset();
    static_cast<ProgramObject&>(*glsl).Link();
    fake.Step("a vertex stage attached again: the old one detached; relinked at the next bind, once");
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

}  // namespace
}  // namespace Tev::Test
