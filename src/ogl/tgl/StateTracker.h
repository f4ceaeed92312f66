// The fixed-function state the shader route has to emulate: two lights, the
// light model, the material, colour material, the switches for lighting,
// lights and colour material, the texturing and environment of two units,
// the current colour and normal. The tracker keeps every value and mirrors
// the ones a program reads into the uniforms of ShaderUniforms, which the
// facade sends to the program in force before each draw. In fixed-function
// mode it passes each change on to GL as it comes; what changed while a
// program was in force goes to GL when fixed-function mode comes back
// (SyncFixedFunction). Its values are saved and restored with the
// attribute stack, per attribute bit, alongside GL's own.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/tgl/Material.h"
#include "ogl/tgl/ShaderUniforms.h"

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

    // A texture unit as the shader route sees it.
    struct Unit {
        bool texture2D = false;
        unsigned envMode = 0x2100;  // GL_MODULATE
        std::array<float, 4> envColor{0, 0, 0, 0};
    };
    static constexpr int TrackedUnits = 2;

    struct Values {
        std::array<LightValues, TrackedLights> lights;
        // Position and spot direction in eye coordinates, transformed by the
        // model-view matrix in force when they were set, as GL does.
        std::array<std::array<float, 4>, TrackedLights> eyePositions;
        std::array<std::array<float, 3>, TrackedLights> eyeSpotDirections;
        bool lighting = false;
        std::array<bool, TrackedLights> lightEnabled{};
        bool colorMaterial = false;
        // GL_NORMALIZE or GL_RESCALE_NORMAL: without either, GL lights with
        // the normal as the model-view matrix leaves it.
        bool normalize = false;
        std::array<Unit, TrackedUnits> units;
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
    // The current colour and normal are GL's current vertex values in both
    // routes (a shader reads them as gl_Color and gl_Normal where a draw
    // gives no array), so they always go to GL.
    void SetColor(std::array<float, 4> const& p_color);
    void SetNormal(std::array<double, 3> const& p_normal);
    // An Enable or Disable, with p_unit the active texture unit counted from
    // 0. Only the switches the shader route reads are kept; a third light
    // or texture unit switched on in the shader route is reported, once.
    void SetCapability(unsigned p_capability, bool p_enabled, int p_unit);
    void SetTexEnvMode(int p_unit, unsigned p_mode);
    void SetTexEnvColor(int p_unit, std::array<float, 4> const& p_color);
    // Sends every value to GL, if any changed while a program was in force.
    void SyncFixedFunction();
    ShaderUniforms const& Uniforms() const { return _uniforms; }

    // Saves the groups of p_mask (TGL_LIGHTING_BIT, TGL_CURRENT_BIT,
    // TGL_ENABLE_BIT, TGL_TEXTURE_BIT); Pop
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
    // Notes a change that only the tracker saw, then refreshes the uniforms.
    void Changed();
    void Publish();
    void PublishLight(int p_light);
    void SetEyeValues(int p_light, unsigned p_param);
    void SendLight(int p_light);
    void SetMaterialFace(int p_face, Material const& p_material);
    void RestoreGroups(unsigned p_mask, Values const& p_saved);

    OglApi const& _gl;
    LightFv _lightfv = nullptr;
    LightModelFv _lightModelfv = nullptr;
    int _lightsLimit;
    int _textureUnits;
    IsFixedFunctionQuery _isFixedFunction;
    Values _values;
    ShaderUniforms _uniforms;
    bool _fixedFunctionStale = false;
    bool _reportedLight = false;
    bool _reportedUnit = false;
    std::vector<Saved> _saved;
    unsigned _primitive = 0;
    bool _inPrimitive = false;
};

}  // namespace Tev::Chart::Ogl
