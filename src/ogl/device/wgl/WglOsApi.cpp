// The window-system tables on Windows. The system one takes the wgl
// functions from opengl32 and the pixel-format functions and SwapBuffers
// from GDI; the Mesa one takes all ten from the Mesa GL, m-prefixed.
#include "ogl/device/OsApi.h"

#include "framework/debug/Debug.h"
#include "ogl/device/WindowSystemEntry.h"
#include "ogl/device/wgl/WglArbApi.h"
#include "ogl/device/wgl/WinOsVersion.h"

#include <windows.h>

namespace Tev::Chart::Ogl {

namespace {

template <typename Fn>
void FetchGdi(Fn& p_member, char const* p_symbol) {
    HMODULE const gdi = GetModuleHandleA("gdi32.dll");
    void* const address = gdi ? reinterpret_cast<void*>(GetProcAddress(gdi, p_symbol)) : nullptr;
    p_member = Detail::CheckWindowSystemEntry<Fn>(address, p_symbol);
}

template <typename Fn>
void FetchGl(Detail::GlImplementation const& p_impl, Fn& p_member, char const* p_symbol) {
    std::string const name = p_impl.EntryName(p_symbol);
    p_member = Detail::FetchWindowSystemEntry<Fn>(p_impl, name.c_str());
}

// In the table's order; p_gdi fetches the five GDI entries.
template <typename GdiFetch>
void LoadEntries(OsApi& p_api, Detail::GlImplementation const& p_impl, GdiFetch p_gdi) {
    FetchGl(p_impl, p_api.GetProcAddress, "wglGetProcAddress");
    p_gdi(p_api.SetPixelFormat, "SetPixelFormat");
    p_gdi(p_api.GetPixelFormat, "GetPixelFormat");
    p_gdi(p_api.SwapBuffers, "SwapBuffers");
    p_gdi(p_api.ChoosePixelFormat, "ChoosePixelFormat");
    p_gdi(p_api.DescribePixelFormat, "DescribePixelFormat");
    FetchGl(p_impl, p_api.CreateContext, "wglCreateContext");
    FetchGl(p_impl, p_api.DeleteContext, "wglDeleteContext");
    FetchGl(p_impl, p_api.GetCurrentContext, "wglGetCurrentContext");
    FetchGl(p_impl, p_api.MakeCurrent, "wglMakeCurrent");
}

}  // namespace

OsApi::OsApi() = default;

OsApi::OsApi(ApiSystemType, DisplayHnd const&)
    : IsSystem(1), OsVersion(Detail::WinOsVersionDump(Detail::QueryWinVersion())) {
    LoadEntries(*this, Detail::GlImplementation::System(), [](auto& p_member, char const* p_symbol) {
        FetchGdi(p_member, p_symbol);
    });
    Debug::dlog() << "OsApi: \n" << OsVersion.Text();
}

// Mesa's GDI stand-ins are wgl-named: mwglSetPixelFormat, mwglSwapBuffers...
OsApi::OsApi(ApiMesaType, DisplayHnd const&)
    : IsSystem(0), OsVersion(Detail::WinOsVersionDump(Detail::QueryWinVersion())) {
    Detail::GlImplementation const& mesa = Detail::GlImplementation::Mesa();
    LoadEntries(*this, mesa, [&mesa](auto& p_member, char const* p_symbol) {
        FetchGl(mesa, p_member, ("wgl" + std::string(p_symbol)).c_str());
    });
    Debug::dlog() << "OsApi: \n" << OsVersion.Text();
}

WglArbApi OsApi::GetArbApi(int p_pixelFormat, DeviceHandle p_device) const {
    if (IsSystem == 0) return WglArbApi();
    return WglArbApi::MakeFakeContext(*this, p_pixelFormat, p_device);
}

}  // namespace Tev::Chart::Ogl
