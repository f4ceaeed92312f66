// Mesa's compiler as the oracle for the line numbers of a compile log: the
// builder's texts go to glShaderSource as a shader stage hands them over
// (header, stage define, source, as separate strings), with an error planted
// at one line of a template tree after another; the line the log names
// must lead back, through ShaderLineOrigin, to the planted line.
#include "support/OSMesaFixture.h"

#include "framework/assets/MemoryVolume.h"
#include "ogl/shaders/GLSLShaderBuilder.h"
#include "ogl/tgl/Tgl.h"

#include <boost/algorithm/string/join.hpp>
#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <regex>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using ShaderOnMesa = OSMesaFixture;

// Where the first line that the compile log of p_builder's text names came
// from; Unknown when it compiled.
SourceOrigin FirstErrorOrigin(OglApi const& p_gl, GLSLShaderBuilder const& p_builder, std::string& p_log) {
    std::vector<char const*> strings;
    for (auto const& line : p_builder.Header()) strings.push_back(line.c_str());
    strings.insert(strings.end(), {"", "#define GLSL_SHADERSTAGE_FRAGMENT\n\n", ""});
    for (auto const& line : p_builder.Source()) strings.push_back(line.c_str());
    GLuint const shader = p_gl.CreateShader(GL_FRAGMENT_SHADER);
    p_gl.ShaderSource(shader, GLsizei(strings.size()), strings.data(), nullptr), p_gl.CompileShader(shader);
    char log[4096] = {};
    p_gl.GetShaderInfoLog(shader, sizeof log, nullptr, log), p_gl.DeleteShader(shader);
    std::smatch match;
    p_log = log;
    std::size_t const line = std::regex_search(p_log, match, std::regex(R"(\d+:(\d+)\(\d+\))")) ? std::stoul(match[1]) : 0;
    return p_builder.ShaderLineOrigin(line, p_builder.Header().size() + 2);
}

TEST_F(ShaderOnMesa, CompileLogLinesLeadBackToTemplateLines) {
    Debug::CaptureScope const quiet;
    Tgl const tgl(*_gl, DeviceFeatureMask::PermitAll());
    std::map<std::string, std::vector<std::string>> const files = {
        {"D/N.frag.glsl", {"out vec4 color;", "#pragma include(\"lib/a.glsl\")", "", "void main() { color = vec4(a()); }"}},
        {"lib/a.glsl", {"#pragma include(\"lib/b.glsl\")", "float a() { return b(); }"}},
        {"lib/b.glsl", {"// b", "float b() { return 2.0; }"}}};
    std::string log;
    for (auto const& [planted, lines] : files)
        for (std::size_t line = 0; line < lines.size(); ++line) {
            Chart::Assets::MemoryVolume volume;
            for (auto [name, text] : files) {
                if (name == planted) text[line] = "#error planted";
                volume.Add(name, boost::algorithm::join(text, "\n"));
            }
            GLSLShaderBuilder builder(tgl.ConstHandle(), GLSL_3_3, {});
            builder.Append(volume, "D/N.frag.glsl");
            SourceOrigin const origin = FirstErrorOrigin(*_gl, builder, log);
            EXPECT_EQ(origin.location, (SourceLocation{planted, line + 1})) << origin << "\n" << log;
        }
    GLSLShaderBuilder builder(tgl.ConstHandle(), GLSL_3_3, {});
    builder.Append("void main() {}\nvoid f() { undefined(); }");
    EXPECT_EQ(FirstErrorOrigin(*_gl, builder, log).Describe(), "in appended text:2") << log;
    std::size_t const before = builder.Header().size() + 2;
    EXPECT_TRUE(builder.ShaderLineOrigin(before, before).kind == SourceOrigin::Generated &&
                builder.ShaderLineOrigin(before + builder.Source().size() + 1, before).kind == SourceOrigin::Unknown);
}

}  // namespace
}  // namespace Tev::Test
