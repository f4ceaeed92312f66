// The fixed-function state the shader route has to emulate: two lights, the
// light model, the material, colour material, the current colour and
// normal. The tracker keeps every value, so that a GLSL program can be fed
// them as uniforms, and in fixed-function mode passes each change on to GL
// as it comes. Its values are saved and restored with the attribute stack,
// per attribute bit, alongside GL's own.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/tgl/Material.h"

#include <boost/function.hpp>

#include <array>
#include <ostream>
#include <vector>

namespace Tev::Chart::Ogl {

struct OglApi;

class TEVOGL_API StateTracker {
public:
    // Values per light, in the order of the light parameter table:
    // ambient 4, diffuse 4, specular 4, position 4, spot direction 3, spot
    // exponent, spot cutoff, constant, linear and quadratic attenuation.
    static constexpr int LightValueCount = 24;
    // Values per material face: ambient, diffuse, specular, emission (4
    // each) and shininess.
    static constexpr int MaterialValueCount = 17;
    // The shader route has two lights.
    static constexpr int TrackedLights = 2;

    using LightValues = std::array<float, LightValueCount>;
    using MaterialValues = std::array<float, MaterialValueCount>;
    using IsFixedFunctionQuery = boost::function<bool()>;

    struct Values {
        std::array<LightValues, TrackedLights> lights;
        std::array<float, 4> lightModelAmbient;
        bool lightModelTwoSide = false;
        bool lightModelLocalViewer = false;
        std::array<MaterialValues, 2> materials;  // front, back
        unsigned colorMaterialFace;
        unsigned colorMaterialMode;
        std::array<float, 4> color;
        std::array<double, 3> normal;
    };

    // GL's initial state. p_isFixedFunction is asked at every change: true
    // passes the change on to GL through p_gl. The light entries, which the
    // table does not carry, are fetched through its ProcAddress.
    StateTracker(OglApi const& p_gl, int p_lights, int p_textureUnits, IsFixedFunctionQuery p_isFixedFunction);

    // p_light counts from GL_LIGHT0; p_param is a light parameter token and
    // p_count the number of values it takes. Lights past the tracked ones
    // are ignored.
    void SetLight(int p_light, unsigned p_param, float const* p_values, int p_count);
    void SetLightModelAmbient(std::array<float, 4> const& p_ambient);
    // TGL_LIGHT_MODEL_TWO_SIDE or TGL_LIGHT_MODEL_LOCAL_VIEWER.
    void SetLightModel(unsigned p_param, bool p_enabled);
    void SetMaterial(Material const& p_material);
    void SetColorMaterial(unsigned p_face, unsigned p_mode);
    void SetColor(std::array<float, 4> const& p_color);
    void SetNormal(std::array<double, 3> const& p_normal);

    // Saves the groups of p_mask (TGL_LIGHTING_BIT, TGL_CURRENT_BIT); Pop
    // restores what the matching push saved. GL restores its own copy with
    // glPopAttrib, so popping sends nothing. A pop with nothing pushed does
    // nothing.
    void PushAttrib(unsigned p_mask);
    void PopAttrib();
    std::size_t AttribDepth() const { return _saved.size(); }

    // Between Begin and the end of the primitive, the primitive drawn; 0
    // (TGL_POINTS) otherwise, with InPrimitive() false.
    void OnBegin(unsigned p_primitive);
    void OnPrimitiveEnd();
    bool InPrimitive() const { return _inPrimitive; }
    unsigned Primitive() const { return _primitive; }

    Values const& Current() const { return _values; }
    int LightsLimit() const { return _lightsLimit; }
    int TextureUnits() const { return _textureUnits; }

    // Every value, one named line each.
    void Dump(std::ostream& p_os) const;

private:
    using LightFv = void(TGL_APIENTRY*)(GLenum, GLenum, GLfloat const*);
    using LightModelFv = void(TGL_APIENTRY*)(GLenum, GLfloat const*);

    struct Saved {
        unsigned mask;
        Values values;
    };

    bool PassOn() const { return _isFixedFunction && _isFixedFunction(); }
    void SetMaterialFace(int p_face, Material const& p_material);

    OglApi const& _gl;
    LightFv _lightfv = nullptr;
    LightModelFv _lightModelfv = nullptr;
    int _lightsLimit;
    int _textureUnits;
    IsFixedFunctionQuery _isFixedFunction;
    Values _values;
    std::vector<Saved> _saved;
    unsigned _primitive = 0;
    bool _inPrimitive = false;
};

}  // namespace Tev::Chart::Ogl
