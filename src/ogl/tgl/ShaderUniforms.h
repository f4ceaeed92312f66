// The uniforms through which the state tracker feeds the shader route
// (declared in the GLSL file tgl/state.glsl), their current values, and a
// stamp per uniform that changes whenever its value does. A program keeps
// the stamp it last sent of each uniform (UniformSender), so that a draw
// sends exactly the uniforms changed since that program last drew.
#pragma once

#include "ogl/api/Export.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

struct OglApi;
class ProgramObject;

class TEVOGL_API ShaderUniforms {
public:
    enum Kind { Int, Float, Vec3, Vec4 };
    struct Slot {
        std::string name;
        Kind kind;
    };
    using Value = std::array<float, 4>;

    // Per light, in slot order.
    enum LightField { Ambient, Diffuse, Specular, Position, SpotDirection, SpotExponent, SpotCosCutoff, Attenuation,
                      LightEnabled, LightFieldCount };
    // Per material face, in slot order.
    enum MaterialField { MaterialAmbient, MaterialDiffuse, MaterialSpecular, MaterialEmission, MaterialShininess,
                         MaterialFieldCount };
    // Per texture unit, in slot order.
    enum UnitField { TexEnvMode, TexEnvColor, Sampler, UnitFieldCount };
    static constexpr int Lights = 2;
    static constexpr int Units = 2;

    static constexpr int LightSlot(int p_light, LightField p_field) { return p_light * LightFieldCount + p_field; }
    static constexpr int Lighting = Lights * LightFieldCount;
    static constexpr int LightModelAmbient = Lighting + 1;
    static constexpr int LightModelTwoSide = Lighting + 2;
    static constexpr int LightModelLocalViewer = Lighting + 3;
    static constexpr int Normalize = Lighting + 4;
    static constexpr int MaterialBase = Lighting + 5;
    static constexpr int MaterialSlot(int p_face, MaterialField p_field) {
        return MaterialBase + p_face * MaterialFieldCount + p_field;
    }
    static constexpr int ColorMaterial = MaterialBase + 2 * MaterialFieldCount;
    static constexpr int UnitBase = ColorMaterial + 1;
    static constexpr int UnitSlot(int p_unit, UnitField p_field) { return UnitBase + p_unit * UnitFieldCount + p_field; }
    static constexpr int Count = UnitBase + Units * UnitFieldCount;

    static std::vector<Slot> const& Slots();

    ShaderUniforms();

    // Stamps the slot when p_value differs from what it holds.
    void Assign(int p_slot, Value const& p_value);
    void Assign(int p_slot, float p_value) { Assign(p_slot, Value{p_value, 0, 0, 0}); }
    Value const& Get(int p_slot) const { return _values[std::size_t(p_slot)]; }
    std::uint64_t Stamp(int p_slot) const { return _stamps[std::size_t(p_slot)]; }

private:
    std::array<Value, Count> _values{};
    std::array<std::uint64_t, Count> _stamps{};
    std::uint64_t _clock = 0;
};

// One program's locations of the tracker's uniforms, looked up once after
// it links, and the stamps it has sent.
class TEVOGL_API UniformSender {
public:
    // Locations from p_object; nothing counts as sent.
    void Cache(ProgramObject& p_object);
    // Sets, on the program in use, every found uniform whose stamp differs
    // from the one sent last.
    void Send(OglApi const& p_gl, ShaderUniforms const& p_uniforms);

private:
    std::array<int, ShaderUniforms::Count> _locations{};
    std::array<std::uint64_t, ShaderUniforms::Count> _sent{};
};

}  // namespace Tev::Chart::Ogl
