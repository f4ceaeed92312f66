#include "ogl/device/osmesa/OSMesaApi.h"

#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"

namespace Tev::Chart::Ogl::Detail {

namespace {

template <typename Function>
void Bind(GlImplementation const& p_impl, Function& p_member, char const* p_name) {
    p_member = reinterpret_cast<Function>(p_impl.FindGl(p_name));
    if (!p_member) throw OSApiIncomplete(p_name, ApiFailure::MissingWindowSystem);
}

}  // namespace

OSMesaApi::OSMesaApi(GlImplementation const& p_impl) {
    Bind(p_impl, CreateContext, "OSMesaCreateContext");
    Bind(p_impl, DestroyContext, "OSMesaDestroyContext");
    Bind(p_impl, MakeCurrent, "OSMesaMakeCurrent");
    Bind(p_impl, GetCurrentContext, "OSMesaGetCurrentContext");
    Bind(p_impl, PixelStore, "OSMesaPixelStore");
}

OSMesaApi const& OSMesaApi::Get() {
    static OSMesaApi const api(GlImplementation::Mesa());
    return api;
}

}  // namespace Tev::Chart::Ogl::Detail
