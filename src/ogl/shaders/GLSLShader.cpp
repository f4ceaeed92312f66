#include "ogl/shaders/GLSLShader.h"

#include "framework/debug/Debug.h"
#include "framework/utility/Environment.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/shaders/DriverMessageOrigins.h"
#include "ogl/shaders/GLSLInfoLog.h"
#include "ogl/shaders/GLSLShaderBuilder.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

namespace {

struct StageInfo {
    unsigned const& type;
    char const* define;
    char const* word;
};

StageInfo const Stages[] = {
    {Tokens::TGL_VERTEX_SHADER, "#define GLSL_SHADERSTAGE_VERTEX\n\n", "Vertex"},
    {Tokens::TGL_FRAGMENT_SHADER, "#define GLSL_SHADERSTAGE_FRAGMENT\n\n", "Fragment"},
    {Tokens::TGL_GEOMETRY_SHADER, "#define GLSL_SHADERSTAGE_GEOMETRY\n\n", "Geometry"},
    {Tokens::TGL_COMPUTE_SHADER, "#define GLSL_SHADERSTAGE_COMPUTE\n\n", "Compute"},
};

// The strings handed to the driver: the builder's header, the stage define
// between two empty strings, the builder's source.
struct ShaderText {
    ShaderText(GLSLShaderBuilder const& p_builder, StageInfo const& p_stage) : builder(p_builder) {
        strings = p_builder.Header();
        for (std::string const& line : strings) linesBefore += std::size_t(std::count(line.begin(), line.end(), '\n'));
        strings.insert(strings.end(), {"", p_stage.define, ""});
        linesBefore += 2;
        strings.insert(strings.end(), p_builder.Source().begin(), p_builder.Source().end());
    }

    GLSLShaderBuilder const& builder;
    std::vector<std::string> strings;
    // Lines of the text ahead of the builder's source.
    std::size_t linesBefore = 0;
};

// The source as the driver holds it, one numbered line per log entry.
void LogSourceLines(OglApi const& p_gl, unsigned p_handle) {
    GLint length = 0;
    p_gl.GetShaderiv(p_handle, Tokens::TGL_SHADER_SOURCE_LENGTH, &length);
    std::vector<GLchar> text(std::size_t(std::max(length, 0)) + 1, '\0');
    p_gl.GetShaderSource(p_handle, GLsizei(text.size()), nullptr, text.data());
    std::vector<std::string> lines;
    boost::split(lines, std::string(text.data()), boost::is_any_of("\n"));
    for (std::size_t i = 0; i < lines.size(); ++i) Debug::dlog("GLSL") << i + 1 << "| \t " << lines[i];
}

bool CompileAndLog(OglApi const& p_gl, unsigned p_handle, ShaderText const& p_source, StageInfo const& p_stage) {
    std::vector<GLchar const*> pointers;
    for (std::string const& text : p_source.strings) pointers.push_back(text.c_str());
    p_gl.ShaderSource(p_handle, GLsizei(pointers.size()), pointers.data(), nullptr);
    p_gl.CompileShader(p_handle);
    GLint status = 0;
    p_gl.GetShaderiv(p_handle, Tokens::TGL_COMPILE_STATUS, &status);
    bool const compiled = status != 0;
    std::string const log = ReadInfoLog(p_gl.GetShaderiv, p_gl.GetShaderInfoLog, p_handle);
    if (log.size() > 2 || !compiled) Debug::dlog("GLSL") << "Compiling " << p_stage.word << " Shader Stage...";
    if (!compiled || Utility::Environment::FrameworkDevelopment() > 2) LogSourceLines(p_gl, p_handle);
    if (log.size() <= 2) return compiled;
    Debug::dlog("GLSL") << "Compilation " << (compiled ? "Succeeded" : "Failed") << " with messages:\n" << log;
    for (std::string const& traced : TraceDriverMessages(log, p_source.builder, p_source.linesBefore))
        Debug::dlog("GLSL") << traced;
    return compiled;
}

template <int STAGE>
bool LoadShader(OglApi const& p_gl, unsigned p_handle, ShaderText const& p_source) {
    return CompileAndLog(p_gl, p_handle, p_source, Stages[STAGE]);
}

}  // namespace

char const* GLSLShaderStageWord(int p_stage) {
    return p_stage >= VertexShaderStage && p_stage <= ComputeShaderStage ? Stages[p_stage].word : "<unknown>";
}

template <int STAGE>
GLSLShader<STAGE>::GLSLShader(OglApi const& p_gl, GLSLShaderBuilder const& p_builder)
    : TglObject(p_gl, p_gl.CreateShader(Stages[STAGE].type), ObjectLabels::Shader) {
    // Named as the checks below report them.
    OglApi const& gl = p_gl;
    int const handle = int(Handle());
    ensure(handle != 0 && handle != -1);
    ShaderText const source(p_builder, Stages[STAGE]);
    // A failed check evaluates its condition again: a stage that fails is
    // deliberately compiled, and logged, a second time.
    ensure(LoadShader<STAGE>(gl, handle, source));
}

template <int STAGE>
GLSLShader<STAGE>::~GLSLShader() {
    Debug::dlog("GLSL") << "Shader Destroyed: " << Handle();
    Deallocate();
}

template <int STAGE>
void GLSLShader<STAGE>::DoDeallocate() {
    if (Handle() != 0) Api().DeleteShader(Handle());
}

template class GLSLShader<VertexShaderStage>;
template class GLSLShader<FragmentShaderStage>;
template class GLSLShader<GeometryShaderStage>;
template class GLSLShader<ComputeShaderStage>;

}  // namespace Tev::Chart::Ogl
