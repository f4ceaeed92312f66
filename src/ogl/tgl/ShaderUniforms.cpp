#include "ogl/tgl/ShaderUniforms.h"

#include "ogl/api/OglApi.h"
#include "ogl/shaders/ProgramObject.h"

namespace Tev::Chart::Ogl {

namespace {

std::vector<ShaderUniforms::Slot> MakeSlots() {
    using S = ShaderUniforms;
    std::vector<S::Slot> slots;
    for (int light = 0; light < S::Lights; ++light) {
        std::string const prefix = "tgl_Light[" + std::to_string(light) + "].";
        for (auto const& [name, kind] : std::initializer_list<std::pair<char const*, S::Kind>>{
                 {"ambient", S::Vec4}, {"diffuse", S::Vec4}, {"specular", S::Vec4}, {"position", S::Vec4},
                 {"spotDirection", S::Vec3}, {"spotExponent", S::Float}, {"spotCosCutoff", S::Float},
                 {"attenuation", S::Vec3}})
            slots.push_back({prefix + name, kind});
        slots.push_back({"tgl_LightEnabled[" + std::to_string(light) + "]", S::Int});
    }
    slots.insert(slots.end(), {{"tgl_Lighting", S::Int}, {"tgl_LightModelAmbient", S::Vec4},
                               {"tgl_LightModelTwoSide", S::Int}, {"tgl_LightModelLocalViewer", S::Int},
                               {"tgl_Normalize", S::Int}});
    for (char const* face : {"tgl_FrontMaterial.", "tgl_BackMaterial."})
        for (auto const& [name, kind] : std::initializer_list<std::pair<char const*, S::Kind>>{
                 {"ambient", S::Vec4}, {"diffuse", S::Vec4}, {"specular", S::Vec4}, {"emission", S::Vec4},
                 {"shininess", S::Float}})
            slots.push_back({std::string(face) + name, kind});
    slots.push_back({"tgl_ColorMaterial", S::Int});
    for (int unit = 0; unit < S::Units; ++unit) {
        std::string const index = std::to_string(unit);
        slots.insert(slots.end(), {{"tgl_TexEnvMode[" + index + "]", S::Int},
                                   {"tgl_TexEnvColor[" + index + "]", S::Vec4},
                                   {"tgl_Texture" + index, S::Int}});
    }
    return slots;
}

}  // namespace

std::vector<ShaderUniforms::Slot> const& ShaderUniforms::Slots() {
    static std::vector<Slot> const slots = MakeSlots();
    return slots;
}

// Every value starts stamped, so that a program's first draw sends all.
ShaderUniforms::ShaderUniforms() { _stamps.fill(++_clock); }

void ShaderUniforms::Assign(int p_slot, Value const& p_value) {
    Value& value = _values[std::size_t(p_slot)];
    if (value == p_value) return;
    value = p_value;
    _stamps[std::size_t(p_slot)] = ++_clock;
}

void UniformSender::Cache(ProgramObject& p_object) {
    auto const& slots = ShaderUniforms::Slots();
    for (int slot = 0; slot < ShaderUniforms::Count; ++slot)
        _locations[std::size_t(slot)] = p_object.GetUniformLocation(slots[std::size_t(slot)].name);
    _sent.fill(0);
}

void UniformSender::Send(OglApi const& p_gl, ShaderUniforms const& p_uniforms) {
    auto const& slots = ShaderUniforms::Slots();
    for (int slot = 0; slot < ShaderUniforms::Count; ++slot) {
        int const location = _locations[std::size_t(slot)];
        std::uint64_t const stamp = p_uniforms.Stamp(slot);
        if (location < 0 || _sent[std::size_t(slot)] == stamp) continue;
        _sent[std::size_t(slot)] = stamp;
        ShaderUniforms::Value const& value = p_uniforms.Get(slot);
        switch (slots[std::size_t(slot)].kind) {
            case ShaderUniforms::Int: p_gl.Uniform1i(location, int(value[0])); break;
            case ShaderUniforms::Float: p_gl.Uniform1f(location, value[0]); break;
            case ShaderUniforms::Vec3: p_gl.Uniform3f(location, value[0], value[1], value[2]); break;
            case ShaderUniforms::Vec4: p_gl.Uniform4f(location, value[0], value[1], value[2], value[3]); break;
        }
    }
}

}  // namespace Tev::Chart::Ogl
