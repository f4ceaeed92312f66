// Symbol visibility of the library's exported interface.
#pragma once

#if defined(_WIN32)
#  if defined(TEVOGL_BUILDING)
#    define TEVOGL_API __declspec(dllexport)
#  else
#    define TEVOGL_API __declspec(dllimport)
#  endif
#else
#  define TEVOGL_API __attribute__((visibility("default")))
#endif
