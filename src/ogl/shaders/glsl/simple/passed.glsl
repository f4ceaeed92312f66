// Shared by the simple shaders: the tracker's state and the two values
// they pass on.
#pragma include("tgl/state.glsl")

#ifdef GLSL_SHADERSTAGE_VERTEX
#define TGL_PASSED out
#else
#define TGL_PASSED in
#endif

TGL_PASSED vec4 v_color;
TGL_PASSED vec4 v_texCoord0;
