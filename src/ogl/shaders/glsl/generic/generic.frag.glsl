// Per-fragment work of the generic shader: the face's colour (lit here
// when ENABLE_FRAGMENT_LIGHTING), then the two texture units.
#pragma include("tgl/lighting.glsl")
#pragma include("tgl/texenv.glsl")

void main() {
#if defined(ENABLE_FRAGMENT_LIGHTING) || defined(ENABLE_FRAGMENT_NORMAL)
    vec3 normal = normalize(v_eyeNormal);
#ifdef HANDLE_FRAGMENT_NORMAL
    normal = HandleFragmentNormal(normal);
#endif
#endif
#ifdef ENABLE_FRAGMENT_LIGHTING
    bool back = !gl_FrontFacing && tgl_LightModelTwoSide != 0;
    vec4 color = tgl_Lighting != 0 ? tgl_Lit(v_eyePosition, back ? -normal : normal, v_color, back)
                                   : clamp(v_color, 0.0, 1.0);
#else
    vec4 color = gl_FrontFacing ? v_frontColor : v_backColor;
#endif
    color = tgl_TexEnv(0, color, v_texCoord0);
    color = tgl_TexEnv(1, color, v_texCoord1);
#ifdef HANDLE_FRAGMENT_ALPHA
    color.a = HandleFragmentAlpha(color.a);
#endif
#ifdef HANDLE_FRAGMENT_DATA
    color = HandleFragmentData(color);
#endif
    gl_FragColor = color;
}
