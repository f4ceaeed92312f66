#include "ogl/tgl/StateTracker.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/ColorComponents.h"

#include <algorithm>
#include <iomanip>

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
      _lightfv(reinterpret_cast<LightFv>(p_gl.ProcAddress("glLightfv"))),
      _lightModelfv(reinterpret_cast<LightModelFv>(p_gl.ProcAddress("glLightModelfv"))),
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
    if (PassOn() && _lightfv) _lightfv(Tokens::TGL_LIGHT0 + p_light, p_param, p_values);
}

void StateTracker::SetLightModelAmbient(std::array<float, 4> const& p_ambient) {
    _values.lightModelAmbient = p_ambient;
    if (PassOn() && _lightModelfv) _lightModelfv(Tokens::TGL_LIGHT_MODEL_AMBIENT, p_ambient.data());
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
    if (!PassOn()) return;
    MaterialValues const& values = _values.materials[front ? 0 : 1];
    for (MaterialParam const& param : MaterialParams) _gl.Materialfv(face, *param.token, values.data() + param.offset);
}

void StateTracker::SetColorMaterial(unsigned p_face, unsigned p_mode) {
    _values.colorMaterialFace = p_face;
    _values.colorMaterialMode = p_mode;
    if (PassOn()) _gl.ColorMaterial(p_face, p_mode);
}

void StateTracker::SetColor(std::array<float, 4> const& p_color) {
    _values.color = p_color;
    if (PassOn()) _gl.Color4f(p_color[0], p_color[1], p_color[2], p_color[3]);
}

void StateTracker::SetNormal(std::array<double, 3> const& p_normal) {
    _values.normal = p_normal;
    if (PassOn()) _gl.Normal3d(p_normal[0], p_normal[1], p_normal[2]);
}

void StateTracker::PushAttrib(unsigned p_mask) { _saved.push_back(Saved{p_mask, _values}); }

void StateTracker::PopAttrib() {
    if (_saved.empty()) return;
    Saved const saved = _saved.back();
    _saved.pop_back();
    if (saved.mask & Tokens::TGL_LIGHTING_BIT) {
        _values.lights = saved.values.lights;
        _values.lightModelAmbient = saved.values.lightModelAmbient;
        _values.lightModelTwoSide = saved.values.lightModelTwoSide;
        _values.lightModelLocalViewer = saved.values.lightModelLocalViewer;
        _values.materials = saved.values.materials;
        _values.colorMaterialFace = saved.values.colorMaterialFace;
        _values.colorMaterialMode = saved.values.colorMaterialMode;
    }
    if (saved.mask & Tokens::TGL_CURRENT_BIT) {
        _values.color = saved.values.color;
        _values.normal = saved.values.normal;
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
