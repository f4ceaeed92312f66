# The library for Windows: the platform-independent core, the wgl/GDI
# backend and OSMesa contexts, without the GLX backend, the X11 Mesa window
# emulation and the Linux loader. Included from src/CMakeLists.txt.
list(FILTER TEVOGL_SOURCES EXCLUDE REGEX
  "/device/glx/|/api/shim/|/osmesa/MesaWindowSystem\\.cpp$|/api/GlImplementation\\.cpp$|/device/(OsApi|DisplayHnd)\\.cpp$")
add_library(tevogl SHARED ${TEVOGL_SOURCES} ${TEVOGL_EMBEDDED_SHADERS})
target_include_directories(tevogl PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(tevogl PRIVATE TEVOGL_BUILDING)
# Windows 7 is the oldest system the backend calls into.
target_compile_definitions(tevogl PUBLIC WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
target_link_libraries(tevogl PUBLIC tev_framework ${TEVOGL_QT_GUI} PRIVATE gdi32 user32)
set_target_properties(tevogl PROPERTIES PREFIX "")

install(TARGETS tevogl tev_framework RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

add_library(tevogl_headers_only INTERFACE)
target_include_directories(tevogl_headers_only INTERFACE ${CMAKE_CURRENT_SOURCE_DIR})
