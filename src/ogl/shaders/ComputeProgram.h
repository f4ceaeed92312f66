// A program of one compute stage, D/N.compute.glsl, dispatched through its
// GLSLProgram.
#pragma once

#include "framework/types/Vector.h"
#include "ogl/api/Export.h"
#include "ogl/shaders/Program.h"

namespace Tev::Chart::Ogl {

class TEVOGL_API ComputeProgram : public Program {
public:
    ComputeProgram(Assets::AssetPath p_folder, std::string p_baseName, GLSLVersion p_version);
    ~ComputeProgram() override;

    // On the program in use (bind it through the facade first); reported
    // and left out without a GLSL program.
    void DispatchCompute(Types::Vector3i const& p_workGroups, unsigned p_barriers);
    // A compute stage reads no vertex attributes.
    bool RequiresCompatibilityAttributes() const { return false; }

protected:
    void Compile(Utility::WatchedRef<Tgl> const& p_gl, Assets::Volume const& p_volume) override;

private:
    Assets::AssetPath _folder;
    std::string _baseName;
    GLSLVersion _version;
};

}  // namespace Tev::Chart::Ogl
