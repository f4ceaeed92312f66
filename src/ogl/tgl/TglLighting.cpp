// Lights, light model, material, the current colour and normal, and the
// values fed between Begin and End.
#include "ogl/tgl/Tgl.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/ColorComponents.h"
#include "ogl/tgl/StateTracker.h"
#include "ogl/tgl/TglHotEntries.h"

namespace Tev::Chart::Ogl {

bool Tgl::LightIndexValid(unsigned p_light) const {
    int const lightCount = int(p_light) - int(Tokens::TGL_LIGHT0);
    return ensure(lightCount >= 0 && lightCount < GetMaxLights());
}

void Tgl::Light(unsigned p_light, unsigned p_param, Types::Vector3d const& p_value) {
    LightIndexValid(p_light);
    ensure(p_param == Tokens::TGL_SPOT_DIRECTION);
    float const values[3] = {float(p_value.x), float(p_value.y), float(p_value.z)};
    _stateTracker->SetLight(int(p_light - Tokens::TGL_LIGHT0), p_param, values, 3);
}

void Tgl::Light(unsigned p_light, unsigned p_param, Types::Vector4d const& p_value) {
    LightIndexValid(p_light);
    ensure(p_param == Tokens::TGL_POSITION);
    float const values[4] = {float(p_value.x), float(p_value.y), float(p_value.z), float(p_value.w)};
    _stateTracker->SetLight(int(p_light - Tokens::TGL_LIGHT0), p_param, values, 4);
}

void Tgl::Light(unsigned p_light, unsigned p_param, QColor const& p_value) {
    LightIndexValid(p_light);
    ensure(p_param == Tokens::TGL_AMBIENT || p_param == Tokens::TGL_DIFFUSE || p_param == Tokens::TGL_SPECULAR);
    _stateTracker->SetLight(int(p_light - Tokens::TGL_LIGHT0), p_param, RgbaFloats(p_value).data(), 4);
}

void Tgl::Light(unsigned p_light, unsigned p_param, float p_value) {
    LightIndexValid(p_light);
    ensure(p_param == Tokens::TGL_SPOT_EXPONENT || p_param == Tokens::TGL_SPOT_CUTOFF ||
           p_param == Tokens::TGL_CONSTANT_ATTENUATION || p_param == Tokens::TGL_LINEAR_ATTENUATION ||
           p_param == Tokens::TGL_QUADRATIC_ATTENUATION);
    _stateTracker->SetLight(int(p_light - Tokens::TGL_LIGHT0), p_param, &p_value, 1);
}

void Tgl::Light(unsigned p_light, unsigned p_param, Qt::GlobalColor p_value) {
    Light(p_light, p_param, QColor(p_value));
}

void Tgl::LightModel(unsigned p_param, Types::Vector4d const& p_value) {
    unsigned const pname = p_param;
    ensure(pname == Tokens::TGL_LIGHT_MODEL_AMBIENT);
    _stateTracker->SetLightModelAmbient({float(p_value.x), float(p_value.y), float(p_value.z), float(p_value.w)});
}

void Tgl::LightModel(unsigned p_param, int p_value) {
    _stateTracker->SetLightModel(p_param, p_value == int(Tokens::TGL_TRUE));
}

void Tgl::Material(Ogl::Material const& p_material) { _stateTracker->SetMaterial(p_material); }

void Tgl::ColorMaterial(unsigned p_face, unsigned p_mode) { _stateTracker->SetColorMaterial(p_face, p_mode); }

void Tgl::Color(QColor const& p_color) {
    if (_inBeginEnd)
        _directMode.Color(p_color);
    else
        _stateTracker->SetColor(RgbaFloats(p_color));
}

void Tgl::Normal(Types::Vector3d const& p_normal) { Normal(p_normal.x, p_normal.y, p_normal.z); }

void Tgl::Normal(double p_x, double p_y, double p_z) {
    if (_inBeginEnd)
        _directMode.Normal(p_x, p_y, p_z);
    else
        _stateTracker->SetNormal({p_x, p_y, p_z});
}

void Tgl::Vertex(Types::Vector2d const& p_vertex) {
    if (ensure(_inBeginEnd)) _directMode.Vertex(p_vertex);
}

void Tgl::Vertex(Types::Vector3d const& p_vertex) {
    if (ensure(_inBeginEnd)) _directMode.Vertex(p_vertex);
}

void Tgl::Vertex(Types::Vector4d const& p_vertex) {
    if (ensure(_inBeginEnd)) _directMode.Vertex(p_vertex);
}

void Tgl::Vertex(double p_x, double p_y) { Vertex(Types::Vector2d(p_x, p_y)); }

void Tgl::Vertex(double p_x, double p_y, double p_z) { Vertex(Types::Vector3d(p_x, p_y, p_z)); }

void Tgl::TexCoord(double p_s) {
    if (ensure(_inBeginEnd)) _directMode.TexCoord(p_s);
}

void Tgl::TexCoord(double p_s, double p_t) {
    if (ensure(_inBeginEnd)) _directMode.TexCoord(p_s, p_t);
}

void Tgl::TexCoord(Types::Vector2d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.TexCoord(p_coord);
}

void Tgl::TexCoord(Types::Vector3d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.TexCoord(p_coord);
}

void Tgl::TexCoord(Types::Vector4d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.TexCoord(p_coord);
}

void Tgl::MultiTexCoord(unsigned p_unit, double p_s) {
    if (ensure(_inBeginEnd)) _directMode.MultiTexCoord(p_unit, p_s);
}

void Tgl::MultiTexCoord(unsigned p_unit, Types::Vector2d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.MultiTexCoord(p_unit, p_coord);
}

void Tgl::MultiTexCoord(unsigned p_unit, Types::Vector3d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.MultiTexCoord(p_unit, p_coord);
}

void Tgl::MultiTexCoord(unsigned p_unit, Types::Vector4d const& p_coord) {
    if (ensure(_inBeginEnd)) _directMode.MultiTexCoord(p_unit, p_coord);
}

void Tgl::RasterPos(Types::Vector3d const& p_position) {
    _impl->RasterPos4d(p_position.x, p_position.y, p_position.z, 1.0);
}

}  // namespace Tev::Chart::Ogl
