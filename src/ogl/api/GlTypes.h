// The GL and GLU scalar and handle types, identical to the Khronos headers'
// so that a translation unit may include both. The library's own headers use
// these instead of <GL/gl.h>: clients pass tokens, never GL headers.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(_WIN32)
#  define TGL_APIENTRY __stdcall
#else
#  define TGL_APIENTRY
#endif

typedef unsigned int GLenum;
typedef unsigned char GLboolean;
typedef unsigned int GLbitfield;
typedef void GLvoid;
typedef signed char GLbyte;
typedef short GLshort;
typedef int GLint;
typedef unsigned char GLubyte;
typedef unsigned short GLushort;
typedef unsigned int GLuint;
typedef int GLsizei;
typedef float GLfloat;
typedef float GLclampf;
typedef double GLdouble;
typedef double GLclampd;
typedef char GLchar;
typedef std::ptrdiff_t GLsizeiptr;
typedef std::intptr_t GLintptr;
typedef std::uint64_t GLuint64;
typedef std::int64_t GLint64;

typedef void(TGL_APIENTRY* GLDEBUGPROC)(GLenum source, GLenum type, GLuint id, GLenum severity,
                                        GLsizei length, const GLchar* message,
                                        const void* userParam);
typedef void(TGL_APIENTRY* GLDEBUGPROCARB)(GLenum source, GLenum type, GLuint id, GLenum severity,
                                           GLsizei length, const GLchar* message,
                                           const void* userParam);

class GLUquadric;
class GLUtesselator;
// The callback type of gluTessCallback (GLU's own name for it is reserved).
typedef void(TGL_APIENTRY* TGLUfuncptr)();
