// The fixed-function state the facade's state tracker feeds to every
// program of the shader route. Matrices, clip planes, point size, line
// width and the alpha test are not here: they go to GL in both routes, and
// the compatibility profile hands them to the program (gl_ModelViewMatrix,
// gl_ClipVertex) or applies them after it.
struct tgl_LightParameters {
    vec4 ambient;
    vec4 diffuse;
    vec4 specular;
    vec4 position;       // eye coordinates, as GL keeps it
    vec3 spotDirection;  // eye coordinates
    float spotExponent;
    float spotCosCutoff;  // -1 for no spot
    vec3 attenuation;     // constant, linear, quadratic
};

struct tgl_MaterialParameters {
    vec4 ambient;
    vec4 diffuse;
    vec4 specular;
    vec4 emission;
    float shininess;
};

uniform tgl_LightParameters tgl_Light[2];
uniform int tgl_LightEnabled[2];
uniform int tgl_Lighting;
uniform vec4 tgl_LightModelAmbient;
uniform int tgl_LightModelTwoSide;
uniform int tgl_LightModelLocalViewer;
// GL_NORMALIZE (or GL_RESCALE_NORMAL) is on.
uniform int tgl_Normalize;
uniform tgl_MaterialParameters tgl_FrontMaterial;
uniform tgl_MaterialParameters tgl_BackMaterial;
// The material colours the vertex colour stands in for: bits 0 to 3 the
// front ambient, diffuse, specular and emission, bits 4 to 7 the back's;
// 0 while colour material is off.
uniform int tgl_ColorMaterial;
// Per unit: 0 off, 1 modulate, 2 replace, 3 decal, 4 add, 5 blend.
uniform int tgl_TexEnvMode[2];
uniform vec4 tgl_TexEnvColor[2];
uniform sampler2D tgl_Texture0;
uniform sampler2D tgl_Texture1;
