// The uniforms the shader route sends, on the recording driver: a second
// draw of unchanged state sends none, and one changed light parameter sends
// exactly its own uniform.
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/ShaderUniforms.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

TEST(ShaderRouteUniforms, SentOnlyWhenChangedSinceTheProgramLastDrew) {
    FakeTgl fake;
    auto const ok = [](FakeCall const& p_call) -> FakeResult { return *static_cast<GLint*>(p_call.Ptr(2)) = 1, std::int64_t{0}; };
    fake.gl.On("glGetShaderiv", ok), fake.gl.On("glGetProgramiv", ok);
    fake.gl.On("glCreateProgram", [](FakeCall const&) -> FakeResult { return std::int64_t{5}; });
    std::map<std::string, std::int64_t> locations;
    fake.gl.On("glGetUniformLocation", [&](FakeCall const& p_call) -> FakeResult {
        return locations.emplace(static_cast<char const*>(p_call.Ptr(1)), std::int64_t(locations.size())).first->second;
    });
    Tgl& tgl = fake.Build();
    Chart::Utility::Scoped<Tgl> scope(tgl);
    Tgl::Token const bound = tgl.Bind(tgl.GenericShader());
    auto const draw = [&] {
        fake.gl.ClearCalls();
        tgl.Begin(Tokens::TGL_POINTS), tgl.Vertex(0.0, 0.0), tgl.End();
        std::vector<std::string> sent;
        for (std::string const& call : fake.gl.CallStrings())
            if (call.rfind("glUniform", 0) == 0) sent.push_back(call);
        return sent;
    };
    EXPECT_EQ(draw().size(), std::size_t(ShaderUniforms::Count)) << "the first draw sends every uniform";
    EXPECT_TRUE(draw().empty());
    tgl.Light(Tokens::TGL_LIGHT0, Tokens::TGL_DIFFUSE, QColor(Qt::red));
    std::vector<std::string> const sent = draw();
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0], "glUniform4f(" + std::to_string(locations["tgl_Light[0].diffuse"]) + ", 1, 0, 0, 1)");
}

}  // namespace
}  // namespace Tev::Test
