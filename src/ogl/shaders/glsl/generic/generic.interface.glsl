// Shared by the stages of the generic shader: the tracker's state, the
// caller's hooks and what the vertex stage hands on.
#pragma include("tgl/state.glsl")
#pragma include("generic/hooks.glsl")

#ifdef GLSL_SHADERSTAGE_VERTEX
#define TGL_PASSED out
#else
#define TGL_PASSED in
#endif

TGL_PASSED vec4 v_frontColor;
TGL_PASSED vec4 v_backColor;
TGL_PASSED vec4 v_texCoord0;
TGL_PASSED vec4 v_texCoord1;
#if defined(ENABLE_FRAGMENT_LIGHTING) || defined(ENABLE_FRAGMENT_NORMAL)
TGL_PASSED vec3 v_eyePosition;
TGL_PASSED vec3 v_eyeNormal;
TGL_PASSED vec4 v_color;
#endif
