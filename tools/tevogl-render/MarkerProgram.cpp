#include "MarkerProgram.h"

#include "ogl/api/OglApi.h"
#include "ogl/shaders/GLSLVersion.h"
#include "ogl/shaders/ProgramObject.h"
#include "ogl/tgl/Tgl.h"

namespace TevOglRender {

using namespace Tev::Chart;

Assets::MemoryVolume const& MarkerProgram::Sources() {
    static Assets::MemoryVolume const volume = [] {
        Assets::MemoryVolume files;
        files.Add("marker/marker.vert.glsl",
                  "in vec2 a_corner;\n"
                  "in vec2 a_centre;\n"
                  "uniform vec2 u_dataPerPixel;\n"
                  "void main() {\n"
                  "    vec2 position = a_centre + a_corner * u_dataPerPixel;\n"
                  "    gl_Position = gl_ModelViewProjectionMatrix * vec4(position, 0.0, 1.0);\n"
                  "}\n");
        files.Add("marker/marker.frag.glsl",
                  "uniform vec4 u_color;\n"
                  "void main() { gl_FragColor = u_color; }\n");
        return files;
    }();
    return volume;
}

void MarkerProgram::PrepareAttributeLayout(AttributeLayout& p_layout) {
    p_layout.Bind(CornerLocation, "a_corner");
    p_layout.Bind(CentreLocation, "a_centre");
}

void MarkerProgram::Compile(TglRef const& p_gl, Assets::Volume const& p_volume) {
    CompileProgram(p_gl, p_volume, "marker", Ogl::GLSL_1_5_Compatibility);
}

void MarkerProgram::OnActivated(TglRef const& p_gl) {
    Ogl::OglApi const& gl = p_gl->Api();
    gl.Uniform2f(Object()->GetUniformLocation("u_dataPerPixel"), float(dataPerPixel.x), float(dataPerPixel.y));
    gl.Uniform4f(Object()->GetUniformLocation("u_color"), float(color.r), float(color.g), float(color.b), float(color.a));
}

}  // namespace TevOglRender
