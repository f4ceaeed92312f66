# Writes the export list of the Mesa test double: every direct GL and GLU
# entry of the table and the nine wgl functions, m-prefixed and forwarded to
# Wine's opengl32 and glu32. mwglGetProcAddress is MesaForward.c's own.
file(STRINGS ${ENTRIES} lines REGEX "^TEV_OGL_ENTRY\\((Direct|Glu),")
set(def "LIBRARY mesagl32.dll\nEXPORTS\n  mwglGetProcAddress\n")
foreach(line IN LISTS lines)
  string(REGEX MATCH "\"(glu?[A-Za-z0-9_]+)\"" _ "${line}")
  set(symbol ${CMAKE_MATCH_1})
  if(symbol MATCHES "^glu")
    string(APPEND def "  m${symbol}=glu32.${symbol}\n")
  else()
    string(APPEND def "  m${symbol}=opengl32.${symbol}\n")
  endif()
endforeach()
string(APPEND def "  mgluGetString=glu32.gluGetString\n")
foreach(wgl CreateContext DeleteContext GetCurrentContext MakeCurrent SetPixelFormat GetPixelFormat SwapBuffers
            ChoosePixelFormat DescribePixelFormat)
  string(APPEND def "  mwgl${wgl}=opengl32.wgl${wgl}\n")
endforeach()
file(WRITE ${OUTPUT} "${def}")
