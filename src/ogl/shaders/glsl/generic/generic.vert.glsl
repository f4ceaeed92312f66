// Per-vertex work of the generic shader: transform, normal, texture
// coordinates and, unless lighting moves to the fragments, the lit colours
// of both faces.
#pragma include("tgl/lighting.glsl")

void main() {
    vec4 object = gl_Vertex;
#ifdef HANDLE_VERTEX_POSITION
    object = HandleVertexPosition(object);
    gl_Position = gl_ModelViewProjectionMatrix * object;
#else
    // The fixed-function transform itself, so that both routes cover the
    // same pixels.
    gl_Position = ftransform();
#endif
    vec4 eye = gl_ModelViewMatrix * object;
    gl_ClipVertex = eye;
    vec4 color = gl_Color;
    vec3 normal = gl_Normal;
    vec4 texCoord0 = gl_MultiTexCoord0;
    vec4 texCoord1 = gl_MultiTexCoord1;
#ifdef HANDLE_VERTEX_COLOR
    color = HandleVertexColor(color);
#endif
#ifdef HANDLE_VERTEX_NORMAL
    normal = HandleVertexNormal(normal);
#endif
#ifdef HANDLE_VERTEX_TEXCOORDS
    texCoord0 = HandleVertexTexCoord(0, texCoord0);
    texCoord1 = HandleVertexTexCoord(1, texCoord1);
#endif
    v_texCoord0 = gl_TextureMatrix[0] * texCoord0;
    v_texCoord1 = gl_TextureMatrix[1] * texCoord1;
    vec3 eyeNormal = gl_NormalMatrix * normal;
    if (tgl_Normalize != 0) eyeNormal = normalize(eyeNormal);
#if defined(ENABLE_FRAGMENT_LIGHTING) || defined(ENABLE_FRAGMENT_NORMAL)
    v_eyePosition = eye.xyz;
    v_eyeNormal = eyeNormal;
    v_color = color;
#endif
#ifdef ENABLE_FRAGMENT_LIGHTING
    v_frontColor = color;
    v_backColor = color;
#else
    if (tgl_Lighting != 0) {
        v_frontColor = tgl_Lit(eye.xyz, eyeNormal, color, false);
        v_backColor = tgl_LightModelTwoSide != 0 ? tgl_Lit(eye.xyz, -eyeNormal, color, true) : v_frontColor;
    } else {
        v_frontColor = clamp(color, 0.0, 1.0);
        v_backColor = v_frontColor;
    }
#endif
}
