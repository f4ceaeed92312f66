/* Deliberately empty. This library is built as libOpenGL.so.0 with a single
 * dependency on libOSMesa.so.8; loaded first into the Mesa link-map
 * namespace, it makes libGLU's GL references (which name libOpenGL.so.0)
 * resolve to OSMesa there. */
int tevogl_glshim_marker;
