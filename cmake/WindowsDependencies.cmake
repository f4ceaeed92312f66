# Windows finds a program's DLLs beside it: every DLL and program of the
# build goes into one folder.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# The dependencies of the Windows build, all from this Debian machine's own
# packages: the header-only libraries are the same headers the Linux build
# uses, reached through a folder that holds nothing but a link to each.
# (-isystem /usr/include would put the host's C headers before MinGW's.)
set(TEVOGL_WIN_INCLUDE ${CMAKE_BINARY_DIR}/win-include)
file(MAKE_DIRECTORY ${TEVOGL_WIN_INCLUDE})
foreach(library boost glm)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "/usr/include/${library} is missing: run scripts/install-deps")
  endif()
  file(CREATE_LINK /usr/include/${library} ${TEVOGL_WIN_INCLUDE}/${library} SYMBOLIC)
endforeach()

add_library(Boost::headers INTERFACE IMPORTED)
target_include_directories(Boost::headers SYSTEM INTERFACE ${TEVOGL_WIN_INCLUDE})
# Header-only Boost must not reach for its compiled libraries.
target_compile_definitions(Boost::headers INTERFACE BOOST_ALL_NO_LIB)
add_library(glm::glm INTERFACE IMPORTED)
target_include_directories(glm::glm SYSTEM INTERFACE ${TEVOGL_WIN_INCLUDE})

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# No Qt for MinGW here: the facade takes only QColor, and the Windows build
# gets a stand-in with the part of QColor's interface the library and its
# tests use (src/framework/win-qt).
add_library(tevogl_qcolor INTERFACE)
target_include_directories(tevogl_qcolor SYSTEM INTERFACE ${CMAKE_SOURCE_DIR}/src/framework/win-qt)
set(TEVOGL_QT_GUI tevogl_qcolor)
