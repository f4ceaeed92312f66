// The points where a caller's variant of the generic shader changes what
// it does, one per HANDLE_ flag. A caller replaces this file through its
// own volume; these defaults change nothing.
#ifdef HANDLE_VERTEX_POSITION
vec4 HandleVertexPosition(vec4 p_object) { return p_object; }
#endif
#ifdef HANDLE_VERTEX_COLOR
vec4 HandleVertexColor(vec4 p_color) { return p_color; }
#endif
#ifdef HANDLE_VERTEX_TEXCOORDS
vec4 HandleVertexTexCoord(int p_unit, vec4 p_coord) { return p_coord; }
#endif
#ifdef HANDLE_VERTEX_NORMAL
vec3 HandleVertexNormal(vec3 p_normal) { return p_normal; }
#endif
#ifdef HANDLE_FRAGMENT_NORMAL
vec3 HandleFragmentNormal(vec3 p_normal) { return p_normal; }
#endif
#ifdef HANDLE_FRAGMENT_DATA
vec4 HandleFragmentData(vec4 p_color) { return p_color; }
#endif
#ifdef HANDLE_FRAGMENT_ALPHA
float HandleFragmentAlpha(float p_alpha) { return p_alpha; }
#endif
