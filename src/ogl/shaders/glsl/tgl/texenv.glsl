// The texture environment of units 0 and 1 on RGBA textures, as the
// fixed-function pipeline combines them.

vec4 tgl_TexEnv(int p_unit, vec4 p_color, vec4 p_coord) {
    int mode = tgl_TexEnvMode[p_unit];
    if (mode == 0) return p_color;
    vec4 texel = p_unit == 0 ? textureProj(tgl_Texture0, p_coord) : textureProj(tgl_Texture1, p_coord);
    if (mode == 1) return p_color * texel;
    if (mode == 2) return texel;
    if (mode == 3) return vec4(mix(p_color.rgb, texel.rgb, texel.a), p_color.a);
    if (mode == 4) return vec4(min(p_color.rgb + texel.rgb, vec3(1.0)), p_color.a * texel.a);
    return vec4(mix(p_color.rgb, tgl_TexEnvColor[p_unit].rgb, texel.rgb), p_color.a * texel.a);
}
