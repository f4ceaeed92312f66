/* Deliberately empty. This library is built twice, as libOpenGL.so.0 and
 * as libGL.so.1, each with a single dependency on libOSMesa.so.8; loaded
 * first into the Mesa link-map namespace, they make the GL references of
 * libGLU (which name libOpenGL.so.0) and of libftgl (which name libGL.so.1)
 * resolve to OSMesa there. */
int tevogl_glshim_marker;
