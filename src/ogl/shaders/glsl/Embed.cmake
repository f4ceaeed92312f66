# Writes OUTPUT, a C++ source that defines EmbeddedShaderFiles(): every
# .glsl file under ROOT, by its path relative to ROOT, as raw string
# literals, so that the library needs no shader files at run time.
file(GLOB_RECURSE files RELATIVE ${ROOT} ${ROOT}/*.glsl)
list(SORT files)
set(text "// Generated from the library's GLSL files; edit those instead.\n")
string(APPEND text "#include \"ogl/shaders/EmbeddedShaders.h\"\n\nnamespace Tev::Chart::Ogl {\n\n")
string(APPEND text "std::vector<EmbeddedShaderFile> const& EmbeddedShaderFiles() {\n")
string(APPEND text "    static std::vector<EmbeddedShaderFile> const files = {\n")
foreach(file ${files})
  file(READ ${ROOT}/${file} content)
  string(APPEND text "        {\"${file}\", R\"tevglsl(${content})tevglsl\"},\n")
endforeach()
string(APPEND text "    };\n    return files;\n}\n\n}  // namespace Tev::Chart::Ogl\n")
# Rewritten only when it changes, so that an unchanged set rebuilds nothing.
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} old)
endif()
if(NOT "${old}" STREQUAL "${text}")
  file(WRITE ${OUTPUT} "${text}")
endif()
