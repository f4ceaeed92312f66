#include "ogl/tgl/StateTracker.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/ColorComponents.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <numbers>
#include <utility>

namespace Tev::Chart::Ogl {

namespace {

// One GL parameter: where its values sit in a value array and how many.
struct Param {
    unsigned const* token;
    char const* name;
    int offset;
    int count;
};

struct LightParam : Param {
    std::array<float, 4> light0Default;
    std::array<float, 4> otherDefault;
};

struct MaterialParam : Param {
    QColor Material::*colour;  // null for the shininess
};

// GL_MATRIX_MODE, which callers never pass and so is no exported token.
constexpr GLenum MatrixModeQuery = 0x0BA0;
// GL_RESCALE_NORMAL and GL_TRANSFORM_BIT, for the same reason.
constexpr unsigned RescaleNormal = 0x803A;
constexpr unsigned TransformBit = 0x1000;

constexpr std::array<float, 4> Black{0, 0, 0, 1};
constexpr std::array<float, 4> White{1, 1, 1, 1};

LightParam const LightParams[] = {
    {{&Tokens::TGL_AMBIENT, "ambient", 0, 4}, Black, Black},
    {{&Tokens::TGL_DIFFUSE, "diffuse", 4, 4}, White, Black},
    {{&Tokens::TGL_SPECULAR, "specular", 8, 4}, White, Black},
    {{&Tokens::TGL_POSITION, "position", 12, 4}, {0, 0, 1, 0}, {0, 0, 1, 0}},
    {{&Tokens::TGL_SPOT_DIRECTION, "spot direction", 16, 3}, {0, 0, -1}, {0, 0, -1}},
    {{&Tokens::TGL_SPOT_EXPONENT, "spot exponent", 19, 1}, {0}, {0}},
    {{&Tokens::TGL_SPOT_CUTOFF, "spot cutoff", 20, 1}, {180}, {180}},
    {{&Tokens::TGL_CONSTANT_ATTENUATION, "constant attenuation", 21, 1}, {1}, {1}},
    {{&Tokens::TGL_LINEAR_ATTENUATION, "linear attenuation", 22, 1}, {0}, {0}},
    {{&Tokens::TGL_QUADRATIC_ATTENUATION, "quadratic attenuation", 23, 1}, {0}, {0}},
};

MaterialParam const MaterialParams[] = {
    {{&Tokens::TGL_AMBIENT, "ambient", 0, 4}, &Material::ambient},
    {{&Tokens::TGL_DIFFUSE, "diffuse", 4, 4}, &Material::diffuse},
    {{&Tokens::TGL_SPECULAR, "specular", 8, 4}, &Material::specular},
    {{&Tokens::TGL_EMISSION, "emission", 12, 4}, &Material::emission},
    {{&Tokens::TGL_SHININESS, "shininess", 16, 1}, nullptr},
};

char const* const FaceNames[] = {"front", "back"};

template <typename Table>
auto const* Find(Table const& p_table, unsigned p_token) {
    auto const found = std::find_if(std::begin(p_table), std::end(p_table),
                                    [&](Param const& p) { return *p.token == p_token; });
    return found == std::end(p_table) ? nullptr : &*found;
}

template <typename Range>
void DumpValues(std::ostream& p_os, Range const& p_values, int p_offset, int p_count) {
    p_os << '(';
    for (int i = 0; i < p_count; ++i) p_os << (i ? ", " : "") << p_values[p_offset + i];
    p_os << ')';
}

template <typename Table, typename Values>
void DumpParams(std::ostream& p_os, std::string const& p_prefix, Table const& p_table, Values const& p_values) {
    for (Param const& param : p_table) {
        p_os << p_prefix << param.name << " = ";
        DumpValues(p_os, p_values, param.offset, param.count);
        p_os << '\n';
    }
}

}  // namespace

StateTracker::StateTracker(OglApi const& p_gl, int p_lights, int p_textureUnits, IsFixedFunctionQuery p_isFixedFunction)
    : _gl(p_gl),
      _lightfv(reinterpret_cast<LightFv>(Detail::FindUntabledEntry(p_gl, "glLightfv"))),
      _lightModelfv(reinterpret_cast<LightModelFv>(Detail::FindUntabledEntry(p_gl, "glLightModelfv"))),
      _lightsLimit(p_lights),
      _textureUnits(p_textureUnits),
      _isFixedFunction(std::move(p_isFixedFunction)) {
    for (int light = 0; light < TrackedLights; ++light)
        for (LightParam const& param : LightParams)
            std::copy_n((light == 0 ? param.light0Default : param.otherDefault).begin(), param.count,
                        _values.lights[light].begin() + param.offset);
    _values.lightModelAmbient = {0.2f, 0.2f, 0.2f, 1.0f};
    for (int face = 0; face < 2; ++face) SetMaterialFace(face, Material());
    _values.colorMaterialFace = Tokens::TGL_FRONT_AND_BACK;
    _values.colorMaterialMode = Tokens::TGL_AMBIENT_AND_DIFFUSE;
    _values.color = White;
    _values.normal = {0.0, 0.0, 1.0};
    for (int light = 0; light < TrackedLights; ++light) {
        _values.eyePositions[light] = {0, 0, 1, 0};
        _values.eyeSpotDirections[light] = {0, 0, -1};
    }
    _values.lightEnabled = {};
    for (int unit = 0; unit < TrackedUnits; ++unit) _uniforms.Assign(ShaderUniforms::UnitSlot(unit, ShaderUniforms::Sampler), float(unit));
    Publish();
    // The entry table has no light entries; a driver that cannot name them
    // gets its lights through the shader route only. A table without a
    // lookup (a test double) has nothing to report.
    if (p_gl.ProcAddress)
        ensure(_lightfv && _lightModelfv && "Fixed-function lights need glLightfv and glLightModelfv");
}

void StateTracker::SetLight(int p_light, unsigned p_param, float const* p_values, int p_count) {
    LightParam const* const param = Find(LightParams, p_param);
    if (!ensure(param && param->count == p_count)) return;
    if (p_light < 0 || p_light >= TrackedLights) return;
    std::copy_n(p_values, p_count, _values.lights[p_light].begin() + param->offset);
    SetEyeValues(p_light, p_param);
    if (PassOn()) {
        if (_lightfv) _lightfv(Tokens::TGL_LIGHT0 + p_light, p_param, p_values);
    } else {
        Changed();
    }
    PublishLight(p_light);
}

// GL transforms a position and a spot direction by the model-view matrix in
// force when they are set, and keeps the result; so does the tracker.
void StateTracker::SetEyeValues(int p_light, unsigned p_param) {
    bool const position = p_param == Tokens::TGL_POSITION;
    if (!position && p_param != Tokens::TGL_SPOT_DIRECTION) return;
    double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    _gl.GetDoublev(Tokens::TGL_MODELVIEW_MATRIX, m);
    LightValues const& light = _values.lights[p_light];
    float const* const v = light.data() + (position ? 12 : 16);
    double const w = position ? v[3] : 0.0;
    std::array<float, 4> eye{};
    for (int row = 0; row < 4; ++row)
        eye[row] = float(m[row] * v[0] + m[4 + row] * v[1] + m[8 + row] * v[2] + m[12 + row] * w);
    if (position)
        _values.eyePositions[p_light] = eye;
    else
        _values.eyeSpotDirections[p_light] = {eye[0], eye[1], eye[2]};
}

void StateTracker::SetLightModelAmbient(std::array<float, 4> const& p_ambient) {
    _values.lightModelAmbient = p_ambient;
    if (PassOn() && _lightModelfv) _lightModelfv(Tokens::TGL_LIGHT_MODEL_AMBIENT, p_ambient.data());
    Changed();
}

void StateTracker::SetLightModel(unsigned p_param, bool p_enabled) {
    if (p_param == Tokens::TGL_LIGHT_MODEL_TWO_SIDE)
        _values.lightModelTwoSide = p_enabled;
    else if (ensure(p_param == Tokens::TGL_LIGHT_MODEL_LOCAL_VIEWER))
        _values.lightModelLocalViewer = p_enabled;
    else
        return;
    float const value = p_enabled ? 1.0f : 0.0f;
    if (PassOn() && _lightModelfv) _lightModelfv(p_param, &value);
    Changed();
}

void StateTracker::SetMaterialFace(int p_face, Material const& p_material) {
    MaterialValues& values = _values.materials[p_face];
    for (MaterialParam const& param : MaterialParams) {
        if (param.colour)
            std::copy_n(RgbaFloats(p_material.*param.colour).begin(), 4, values.begin() + param.offset);
        else
            values[param.offset] = p_material.shininess;
    }
}

void StateTracker::SetMaterial(Material const& p_material) {
    unsigned const face = p_material.face ? p_material.face : Tokens::TGL_FRONT_AND_BACK;
    bool const front = face == Tokens::TGL_FRONT || face == Tokens::TGL_FRONT_AND_BACK;
    bool const back = face == Tokens::TGL_BACK || face == Tokens::TGL_FRONT_AND_BACK;
    if (!ensure(front || back)) return;
    if (front) SetMaterialFace(0, p_material);
    if (back) SetMaterialFace(1, p_material);
    Changed();
    if (!PassOn()) return;
    MaterialValues const& values = _values.materials[front ? 0 : 1];
    for (MaterialParam const& param : MaterialParams) _gl.Materialfv(face, *param.token, values.data() + param.offset);
}

void StateTracker::SetColorMaterial(unsigned p_face, unsigned p_mode) {
    _values.colorMaterialFace = p_face;
    _values.colorMaterialMode = p_mode;
    if (PassOn()) _gl.ColorMaterial(p_face, p_mode);
    Changed();
}

void StateTracker::SetColor(std::array<float, 4> const& p_color) {
    _values.color = p_color;
    _gl.Color4f(p_color[0], p_color[1], p_color[2], p_color[3]);
}

void StateTracker::SetNormal(std::array<double, 3> const& p_normal) {
    _values.normal = p_normal;
    _gl.Normal3d(p_normal[0], p_normal[1], p_normal[2]);
}

// GL has the switch already (the facade passes it on in both routes).
void StateTracker::SetCapability(unsigned p_capability, bool p_enabled, int p_unit) {
    int const light = int(p_capability) - int(Tokens::TGL_LIGHT0);
    bool const shaderRoute = !PassOn();
    if (p_capability == Tokens::TGL_LIGHTING) {
        _values.lighting = p_enabled;
    } else if (p_capability == Tokens::TGL_COLOR_MATERIAL) {
        _values.colorMaterial = p_enabled;
    } else if (p_capability == Tokens::TGL_NORMALIZE || p_capability == RescaleNormal) {
        _values.normalize = p_enabled;
    } else if (light >= 0 && light < 8) {
        if (light < TrackedLights)
            _values.lightEnabled[light] = p_enabled;
        else if (p_enabled && shaderRoute && !std::exchange(_reportedLight, true))
            Debug::derr() << "WARNING: the shader route has " << TrackedLights << " lights; GL_LIGHT" << light
                          << " is left out";
    } else if (p_capability == Tokens::TGL_TEXTURE_2D && p_unit >= 0) {
        if (p_unit < TrackedUnits)
            _values.units[p_unit].texture2D = p_enabled;
        else if (p_enabled && shaderRoute && !std::exchange(_reportedUnit, true))
            Debug::derr() << "WARNING: the shader route has " << TrackedUnits << " texture units; unit " << p_unit
                          << " is left out";
    } else {
        return;
    }
    Publish();
}

void StateTracker::SetTexEnvMode(int p_unit, unsigned p_mode) {
    if (p_unit < 0 || p_unit >= TrackedUnits) return;
    _values.units[p_unit].envMode = p_mode;
    Publish();
}

void StateTracker::SetTexEnvColor(int p_unit, std::array<float, 4> const& p_color) {
    if (p_unit < 0 || p_unit >= TrackedUnits) return;
    _values.units[p_unit].envColor = p_color;
    Publish();
}

void StateTracker::Changed() {
    if (!PassOn()) _fixedFunctionStale = true;
    Publish();
}

void StateTracker::PublishLight(int p_light) {
    using U = ShaderUniforms;
    LightValues const& light = _values.lights[p_light];
    auto const vec = [&light](int p_offset) { return U::Value{light[p_offset], light[p_offset + 1], light[p_offset + 2], light[p_offset + 3]}; };
    auto const slot = [p_light](U::LightField p_field) { return U::LightSlot(p_light, p_field); };
    _uniforms.Assign(slot(U::Ambient), vec(0));
    _uniforms.Assign(slot(U::Diffuse), vec(4));
    _uniforms.Assign(slot(U::Specular), vec(8));
    _uniforms.Assign(slot(U::Position), _values.eyePositions[p_light]);
    auto const& direction = _values.eyeSpotDirections[p_light];
    _uniforms.Assign(slot(U::SpotDirection), U::Value{direction[0], direction[1], direction[2], 0});
    _uniforms.Assign(slot(U::SpotExponent), light[19]);
    float const cutoff = light[20];
    _uniforms.Assign(slot(U::SpotCosCutoff), cutoff >= 180.0f ? -1.0f : float(std::cos(cutoff * std::numbers::pi / 180.0)));
    _uniforms.Assign(slot(U::Attenuation), U::Value{light[21], light[22], light[23], 0});
    _uniforms.Assign(slot(U::LightEnabled), _values.lightEnabled[p_light] ? 1.0f : 0.0f);
}

namespace {

// The material colours colour material replaces, as ShaderUniforms'
// bit set for one face.
int ColorMaterialBits(unsigned p_mode) {
    if (p_mode == Tokens::TGL_AMBIENT) return 1;
    if (p_mode == Tokens::TGL_DIFFUSE) return 2;
    if (p_mode == Tokens::TGL_SPECULAR) return 4;
    if (p_mode == Tokens::TGL_EMISSION) return 8;
    return p_mode == Tokens::TGL_AMBIENT_AND_DIFFUSE ? 3 : 0;
}

// Environment modes as the shader numbers them; a mode it does not
// emulate modulates.
int EnvModeCode(unsigned p_mode) {
    if (p_mode == Tokens::TGL_REPLACE) return 2;
    if (p_mode == Tokens::TGL_DECAL) return 3;
    if (p_mode == Tokens::TGL_ADD) return 4;
    if (p_mode == Tokens::TGL_BLEND) return 5;
    return 1;
}

}  // namespace

void StateTracker::Publish() {
    using U = ShaderUniforms;
    for (int light = 0; light < TrackedLights; ++light) PublishLight(light);
    _uniforms.Assign(U::Lighting, _values.lighting ? 1.0f : 0.0f);
    _uniforms.Assign(U::LightModelAmbient, _values.lightModelAmbient);
    _uniforms.Assign(U::LightModelTwoSide, _values.lightModelTwoSide ? 1.0f : 0.0f);
    _uniforms.Assign(U::LightModelLocalViewer, _values.lightModelLocalViewer ? 1.0f : 0.0f);
    _uniforms.Assign(U::Normalize, _values.normalize ? 1.0f : 0.0f);
    for (int face = 0; face < 2; ++face) {
        MaterialValues const& m = _values.materials[face];
        for (int field = 0; field < 4; ++field)
            _uniforms.Assign(U::MaterialSlot(face, U::MaterialField(field)),
                             U::Value{m[field * 4], m[field * 4 + 1], m[field * 4 + 2], m[field * 4 + 3]});
        _uniforms.Assign(U::MaterialSlot(face, U::MaterialShininess), m[16]);
    }
    int const bits = ColorMaterialBits(_values.colorMaterialMode);
    unsigned const face = _values.colorMaterialFace;
    int const front = face == Tokens::TGL_FRONT || face == Tokens::TGL_FRONT_AND_BACK ? bits : 0;
    int const back = face == Tokens::TGL_BACK || face == Tokens::TGL_FRONT_AND_BACK ? bits << 4 : 0;
    _uniforms.Assign(U::ColorMaterial, _values.colorMaterial ? float(front | back) : 0.0f);
    for (int unit = 0; unit < TrackedUnits; ++unit) {
        Unit const& u = _values.units[unit];
        _uniforms.Assign(U::UnitSlot(unit, U::TexEnvMode), u.texture2D ? float(EnvModeCode(u.envMode)) : 0.0f);
        _uniforms.Assign(U::UnitSlot(unit, U::TexEnvColor), u.envColor);
    }
}

// Positions and spot directions go in eye coordinates, under an identity
// model-view matrix, since the one they were set under may be gone.
void StateTracker::SendLight(int p_light) {
    LightValues const& light = _values.lights[p_light];
    unsigned const token = Tokens::TGL_LIGHT0 + unsigned(p_light);
    for (LightParam const& param : LightParams) {
        float const* values = light.data() + param.offset;
        if (*param.token == Tokens::TGL_POSITION) values = _values.eyePositions[p_light].data();
        if (*param.token == Tokens::TGL_SPOT_DIRECTION) values = _values.eyeSpotDirections[p_light].data();
        _lightfv(token, *param.token, values);
    }
}

void StateTracker::SyncFixedFunction() {
    if (!std::exchange(_fixedFunctionStale, false) || !_lightfv || !_lightModelfv) return;
    GLint matrixMode = GLint(Tokens::TGL_MODELVIEW);
    _gl.GetIntegerv(MatrixModeQuery, &matrixMode);
    _gl.MatrixMode(Tokens::TGL_MODELVIEW);
    _gl.PushMatrix();
    _gl.LoadIdentity();
    for (int light = 0; light < TrackedLights; ++light) SendLight(light);
    _gl.PopMatrix();
    _gl.MatrixMode(GLenum(matrixMode));
    _lightModelfv(Tokens::TGL_LIGHT_MODEL_AMBIENT, _values.lightModelAmbient.data());
    float const twoSide = _values.lightModelTwoSide ? 1.0f : 0.0f;
    float const localViewer = _values.lightModelLocalViewer ? 1.0f : 0.0f;
    _lightModelfv(Tokens::TGL_LIGHT_MODEL_TWO_SIDE, &twoSide);
    _lightModelfv(Tokens::TGL_LIGHT_MODEL_LOCAL_VIEWER, &localViewer);
    for (int face = 0; face < 2; ++face)
        for (MaterialParam const& param : MaterialParams)
            _gl.Materialfv(face == 0 ? Tokens::TGL_FRONT : Tokens::TGL_BACK, *param.token,
                           _values.materials[face].data() + param.offset);
    _gl.ColorMaterial(_values.colorMaterialFace, _values.colorMaterialMode);
}

void StateTracker::PushAttrib(unsigned p_mask) { _saved.push_back(Saved{p_mask, _values}); }

void StateTracker::PopAttrib() {
    if (_saved.empty()) return;
    Saved const saved = _saved.back();
    _saved.pop_back();
    RestoreGroups(saved.mask, saved.values);
    Publish();
}

// The groups as GL's own attribute bits cover them: the lighting bit takes
// the lighting switches with it, the texture bit the environments.
void StateTracker::RestoreGroups(unsigned p_mask, Values const& p_saved) {
    if (p_mask & Tokens::TGL_LIGHTING_BIT) {
        _values.lights = p_saved.lights;
        _values.eyePositions = p_saved.eyePositions;
        _values.eyeSpotDirections = p_saved.eyeSpotDirections;
        _values.lightModelAmbient = p_saved.lightModelAmbient;
        _values.lightModelTwoSide = p_saved.lightModelTwoSide;
        _values.lightModelLocalViewer = p_saved.lightModelLocalViewer;
        _values.materials = p_saved.materials;
        _values.colorMaterialFace = p_saved.colorMaterialFace;
        _values.colorMaterialMode = p_saved.colorMaterialMode;
    }
    if (p_mask & (TransformBit | Tokens::TGL_ENABLE_BIT)) _values.normalize = p_saved.normalize;
    if (p_mask & (Tokens::TGL_LIGHTING_BIT | Tokens::TGL_ENABLE_BIT)) {
        _values.lighting = p_saved.lighting;
        _values.lightEnabled = p_saved.lightEnabled;
        _values.colorMaterial = p_saved.colorMaterial;
    }
    for (int unit = 0; unit < TrackedUnits; ++unit) {
        if (p_mask & (Tokens::TGL_TEXTURE_BIT | Tokens::TGL_ENABLE_BIT))
            _values.units[unit].texture2D = p_saved.units[unit].texture2D;
        if (p_mask & Tokens::TGL_TEXTURE_BIT) {
            _values.units[unit].envMode = p_saved.units[unit].envMode;
            _values.units[unit].envColor = p_saved.units[unit].envColor;
        }
    }
    if (p_mask & Tokens::TGL_CURRENT_BIT) {
        _values.color = p_saved.color;
        _values.normal = p_saved.normal;
    }
}

void StateTracker::OnBegin(unsigned p_primitive) {
    _primitive = p_primitive;
    _inPrimitive = true;
}

void StateTracker::OnPrimitiveEnd() {
    _primitive = 0;
    _inPrimitive = false;
}

void StateTracker::Dump(std::ostream& p_os) const {
    p_os << "StateTracker (" << (PassOn() ? "fixed function" : "shader") << " mode, lights limit " << _lightsLimit
         << ", texture units " << _textureUnits << ", attribute depth " << _saved.size() << ")\n";
    if (_inPrimitive) p_os << "\tprimitive = " << _primitive << '\n';
    for (int light = 0; light < TrackedLights; ++light)
        DumpParams(p_os, "\tlight" + std::to_string(light) + " ", LightParams, _values.lights[light]);
    p_os << "\tlight model ambient = ";
    DumpValues(p_os, _values.lightModelAmbient, 0, 4);
    p_os << "\n\tlight model two side = " << std::boolalpha << _values.lightModelTwoSide
         << "\n\tlight model local viewer = " << _values.lightModelLocalViewer << '\n';
    for (int face = 0; face < 2; ++face)
        DumpParams(p_os, std::string("\tmaterial ") + FaceNames[face] + " ", MaterialParams, _values.materials[face]);
    p_os << "\tcolor material = face 0x" << std::hex << _values.colorMaterialFace << ", mode 0x"
         << _values.colorMaterialMode << std::dec << "\n\tcolor = ";
    DumpValues(p_os, _values.color, 0, 4);
    p_os << "\n\tnormal = ";
    DumpValues(p_os, _values.normal, 0, 3);
    p_os << '\n';
}

}  // namespace Tev::Chart::Ogl
