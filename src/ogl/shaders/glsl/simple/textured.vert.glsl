// The vertex colour, unlit, combined with the texture of unit 0 by that
// unit's environment mode.
void main() {
    gl_Position = ftransform();
    gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;
    v_color = clamp(gl_Color, 0.0, 1.0);
    v_texCoord0 = gl_TextureMatrix[0] * gl_MultiTexCoord0;
}
