#include "ogl/shaders/GLSLShaderBuilder.h"

#include "framework/debug/Debug.h"
#include "framework/utility/HashedString.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglApi.h"
#include "ogl/shaders/GLSLIncludeExpander.h"
#include "ogl/tgl/Tgl.h"

#include <array>
#include <set>

namespace Tev::Chart::Ogl {

struct GLSLShaderBuilder::State {
    std::vector<std::string> header;
    std::vector<std::string> source;
    std::vector<Assets::AssetPath> includePaths;
    std::set<Utility::HashedString> included;
    // One record per line of source, in step with it.
    SourceOriginTable origins;
};

namespace {

// The stages a template flag concerns, as bits.
enum TemplateStage : int { VertexStage = 1, GeometryStage = 2, FragmentStage = 4 };

struct TemplateDefine {
    char const* name;
    int stages;
};

constexpr std::array<TemplateDefine, GLSLTemplateFlag_Count> TemplateDefines = {{
    {"ENABLE_FRAGMENT_LIGHTING", VertexStage | GeometryStage | FragmentStage},
    {"ENABLE_FRAGMENT_NORMAL", VertexStage | GeometryStage | FragmentStage},
    {"ENABLE_CUSTOM_ATTRIBUTES", VertexStage | FragmentStage},
    {"ENABLE_VERTEX_SHADER_OVERRIDE", VertexStage},
    {"HANDLE_VERTEX_POSITION", VertexStage},
    {"HANDLE_VERTEX_COLOR", VertexStage},
    {"HANDLE_VERTEX_TEXCOORDS", VertexStage},
    {"HANDLE_VERTEX_NORMAL", VertexStage},
    {"HANDLE_FRAGMENT_NORMAL", GeometryStage | FragmentStage},
    {"HANDLE_FRAGMENT_DATA", FragmentStage},
    {"HANDLE_FRAGMENT_ALPHA", FragmentStage},
}};

// The parts of p_text between its "\n"s, empty ones kept, each with its
// "\n" back.
std::vector<std::string> SplitLines(std::string const& p_text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end; (end = p_text.find('\n', start)) != std::string::npos; start = end + 1)
        lines.push_back(p_text.substr(start, end + 1 - start));
    lines.push_back(p_text.substr(start) + '\n');
    return lines;
}

void AddLines(std::vector<std::string>& p_lines, std::string const& p_text) {
    for (std::string& line : SplitLines(p_text)) p_lines.push_back(std::move(line));
}

std::string Define(std::string const& p_name) { return "#define " + p_name; }
std::string Define(std::string const& p_name, int p_value) { return Define(p_name) + ' ' + std::to_string(p_value); }

// Three comment lines of one width: rule, notice, rule; the text ends in
// "\n", so the header gets an empty line after it.
std::string Banner() {
    std::string const notice = "Assembled by GLSLShaderBuilder from template files: edit those, not this";
    std::string const rule = "// " + std::string(notice.size(), '-') + " //\n";
    return rule + "// " + notice + " //\n" + rule;
}

char const* VendorDefine(Vendors p_vendor) {
    switch (p_vendor) {
    case AMD: return "GLSL_VENDOR_AMD";
    case NVIDIA: return "GLSL_VENDOR_NVIDIA";
    case MESA: return "GLSL_VENDOR_MESA";
    default: return "GLSL_VENDOR_UNKNOWN";
    }
}

bool SupportsGeometryShaders(Utility::WeakWatchedRef<const Tgl> const& p_gl) {
    auto const gl = p_gl.Lock();
    return gl && gl->Features().Supported(DeviceFeatures::OpenGL_GeometryShader);
}

}  // namespace

GLSLShaderBuilder::GLSLShaderBuilder(Utility::WeakWatchedRef<const Tgl> const& p_gl, GLSLVersion p_version,
                                     ExtensionSet const& p_extensions)
    : _state(std::make_unique<State>()) {
    // Deliberately one wider than GetVersionString's bound, which reports
    // GLSLVersion_Count itself.
    ensure(p_version >= 0 && p_version <= GLSLVersion_Count);
    WriteHeader(p_version, p_extensions);
    // Without a facade there are no limits, vendor or render pass to
    // write: the header stops short of them.
    if (auto const gl = p_gl.Lock()) WriteDeviceHeader(*gl);
    _state->includePaths.emplace_back();
}

GLSLShaderBuilder::GLSLShaderBuilder(GLSLShaderBuilder const& p_other)
    : _state(std::make_unique<State>(*p_other._state)) {}

GLSLShaderBuilder& GLSLShaderBuilder::operator=(GLSLShaderBuilder const& p_other) {
    // The copy is made before the old state goes, so a failed copy leaves
    // this builder as it was.
    auto copy = std::make_unique<State>(*p_other._state);
    _state = std::move(copy);
    return *this;
}

GLSLShaderBuilder::~GLSLShaderBuilder() = default;

void GLSLShaderBuilder::WriteHeader(GLSLVersion p_version, ExtensionSet const& p_extensions) {
    std::vector<std::string>& header = _state->header;
    AddLines(header, "#version " + GetVersionString(p_version));
    AddLines(header, Banner());
    for (int bit = 0; bit < TglExtensions_Count; ++bit)
        if (p_extensions.test(bit))
            AddLines(header, std::string("#extension ") + GetExtensionString(TglExtensions(bit)) + " : require");
    for (char const* line : {"", "#pragma debug(off)", "#pragma optimize(on)", ""}) AddLines(header, line);
}

void GLSLShaderBuilder::WriteDeviceHeader(Tgl const& p_gl) {
    std::vector<std::string>& header = _state->header;
    AddLines(header, Define("GLSL_MAX_TEXTURE_UNITS", p_gl.GetMaxTextures()));
    AddLines(header, Define("GLSL_MAX_CLIP_PLANES", p_gl.GetMaxClipPlanes()));
    AddLines(header, Define("GLSL_MAX_LIGHTS", p_gl.GetMaxLights()));
    AddLines(header, "");
    AddLines(header, Define(VendorDefine(p_gl.Api().Vendor)));
    // Deliberately the first line of the source, not of the header.
    _state->source.push_back(Define("ACTIVE_OUTPUT_STAGE_" + std::string(p_gl.ActiveOutputStage().Name())) + '\n');
    _state->origins.Add(SourceOrigin::Generated, SourceOriginTable::NoFrame, 0);
}

GLSLShaderBuilder GLSLShaderBuilder::Template(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                              GLSLTemplateFlags const& p_flags, GLSLVersion p_version, int p_stage) {
    GLSLShaderBuilder builder(p_gl, p_version, ExtensionSet());
    for (int flag = 0; flag < GLSLTemplateFlag_Count; ++flag)
        if (p_flags.test(flag) && (TemplateDefines[flag].stages & p_stage))
            AddLines(builder._state->header, Define(TemplateDefines[flag].name));
    return builder;
}

GLSLShaderBuilder GLSLShaderBuilder::TemplateVertexShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                          Assets::Volume const&, GLSLTemplateFlags const& p_flags,
                                                          GLSLVersion p_version) {
    return Template(p_gl, p_flags, p_version, VertexStage);
}

GLSLShaderBuilder GLSLShaderBuilder::TemplateGeometryShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                            Assets::Volume const&, GLSLTemplateFlags const& p_flags,
                                                            GLSLVersion p_version) {
    ensure(SupportsGeometryShaders(p_gl) && "Geometry Shader support is not available on this device.");
    ensure(p_version >= GLSL_1_5 && "Geometry shader version must be at least GLSL_1_5 (#version 150).");
    return Template(p_gl, p_flags, p_version, GeometryStage);
}

GLSLShaderBuilder GLSLShaderBuilder::TemplateFragmentShader(Utility::WeakWatchedRef<const Tgl> const& p_gl,
                                                            Assets::Volume const&, GLSLTemplateFlags const& p_flags,
                                                            GLSLVersion p_version) {
    return Template(p_gl, p_flags, p_version, FragmentStage);
}

void GLSLShaderBuilder::Append(std::string const& p_text) {
    std::vector<std::string> lines = SplitLines(p_text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        _state->source.push_back(std::move(lines[i]));
        _state->origins.Add(SourceOrigin::Text, SourceOriginTable::NoFrame, i + 1);
    }
}

void GLSLShaderBuilder::Append(Assets::Volume const& p_volume, Assets::AssetPath const& p_file) {
    GLSLIncludeExpander(p_volume, _state->includePaths, _state->included, _state->source, _state->origins)
        .Append(p_file);
}

void GLSLShaderBuilder::AddIncludePath(Assets::AssetPath const& p_path) { _state->includePaths.push_back(p_path); }

std::vector<std::string> const& GLSLShaderBuilder::Header() const { return _state->header; }

std::vector<std::string> const& GLSLShaderBuilder::Source() const { return _state->source; }

SourceOrigin GLSLShaderBuilder::Origin(std::size_t p_sourceLine) const {
    ensure(p_sourceLine < _state->source.size());
    return _state->origins.Origin(p_sourceLine);
}

SourceOrigin GLSLShaderBuilder::ShaderLineOrigin(std::size_t p_shaderLine, std::size_t p_linesBefore) const {
    // Drivers number lines from 1 and may name one past the text (an error
    // at its end): not a caller's mistake, so no check.
    if (p_shaderLine == 0 || p_shaderLine > p_linesBefore + _state->source.size()) return {};
    if (p_shaderLine <= p_linesBefore) return {SourceOrigin::Generated, {}, {}};
    return _state->origins.Origin(p_shaderLine - p_linesBefore - 1);
}

}  // namespace Tev::Chart::Ogl
