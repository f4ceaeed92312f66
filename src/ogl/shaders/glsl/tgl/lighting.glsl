// GL's lighting equation for one face, evaluated as the fixed-function
// pipeline does: a light's spot and attenuation only for positional lights,
// the half vector towards +z unless the viewer is local, specular only
// where the light reaches the front of the surface, the sum clamped.

vec4 tgl_MaterialColor(vec4 p_material, vec4 p_vertexColor, int p_bit) {
    return (tgl_ColorMaterial & p_bit) != 0 ? p_vertexColor : p_material;
}

vec4 tgl_Lit(vec3 p_eyePosition, vec3 p_normal, vec4 p_vertexColor, bool p_back) {
    int shift = p_back ? 4 : 0;
    tgl_MaterialParameters material = p_back ? tgl_BackMaterial : tgl_FrontMaterial;
    vec4 ambient = tgl_MaterialColor(material.ambient, p_vertexColor, 1 << shift);
    vec4 diffuse = tgl_MaterialColor(material.diffuse, p_vertexColor, 2 << shift);
    vec4 specular = tgl_MaterialColor(material.specular, p_vertexColor, 4 << shift);
    vec4 emission = tgl_MaterialColor(material.emission, p_vertexColor, 8 << shift);
    vec3 sum = emission.rgb + tgl_LightModelAmbient.rgb * ambient.rgb;
    for (int i = 0; i < 2; ++i) {
        if (tgl_LightEnabled[i] == 0) continue;
        tgl_LightParameters light = tgl_Light[i];
        vec3 toLight;
        float attenuation = 1.0;
        if (light.position.w != 0.0) {
            vec3 offset = light.position.xyz - p_eyePosition;
            float distance = length(offset);
            toLight = offset / distance;
            attenuation = 1.0 / dot(light.attenuation, vec3(1.0, distance, distance * distance));
            if (light.spotCosCutoff > -1.0) {
                float spot = dot(-toLight, normalize(light.spotDirection));
                attenuation *= spot < light.spotCosCutoff ? 0.0 : pow(max(spot, 0.0), light.spotExponent);
            }
        } else {
            toLight = normalize(light.position.xyz);
        }
        vec3 toViewer = tgl_LightModelLocalViewer != 0 ? normalize(-p_eyePosition) : vec3(0.0, 0.0, 1.0);
        float nDotL = dot(p_normal, toLight);
        float nDotH = dot(p_normal, normalize(toLight + toViewer));
        float specularFactor = nDotL > 0.0 ? pow(max(nDotH, 0.0), material.shininess) : 0.0;
        sum += attenuation * (light.ambient.rgb * ambient.rgb + max(nDotL, 0.0) * light.diffuse.rgb * diffuse.rgb +
                              specularFactor * light.specular.rgb * specular.rgb);
    }
    return clamp(vec4(sum, diffuse.a), 0.0, 1.0);
}
