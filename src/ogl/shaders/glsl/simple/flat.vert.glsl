// The vertex colour, unlit and untextured.
void main() {
    gl_Position = ftransform();
    gl_ClipVertex = gl_ModelViewMatrix * gl_Vertex;
    v_color = clamp(gl_Color, 0.0, 1.0);
    v_texCoord0 = vec4(0.0);
}
