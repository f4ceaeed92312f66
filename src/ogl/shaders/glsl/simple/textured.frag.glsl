#pragma include("tgl/texenv.glsl")

void main() { gl_FragColor = tgl_TexEnv(0, v_color, v_texCoord0); }
