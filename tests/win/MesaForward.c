/* TEST DOUBLE for the m-prefixed Mesa DLLs: everything but the extension
 * lookup is forwarded by the export list (MesaForwardDef.cmake). The Mesa
 * lookup takes m-prefixed names, as the real mangled build does. */
#include <windows.h>

__declspec(dllexport) PROC WINAPI mwglGetProcAddress(LPCSTR p_name) {
    return wglGetProcAddress(p_name[0] == 'm' ? p_name + 1 : p_name);
}
