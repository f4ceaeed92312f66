#include "ogl/api/QueryProcAddress.h"

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"

namespace Tev::Chart::Ogl {

QueryProcAddress::QueryProcAddress(ApiSystemType) : QueryProcAddress(Detail::GlImplementation::System()) {}

QueryProcAddress::QueryProcAddress(ApiMesaType) : QueryProcAddress(Detail::GlImplementation::Mesa()) {}

QueryProcAddress::QueryProcAddress(Detail::GlImplementation const& p_impl)
    : _function(p_impl.ProcAddressFunction()) {
    std::string const& name = p_impl.Files().procAddress;
    Debug::dlog() << "FUNC: " << name << " = " << reinterpret_cast<void const*>(_function);
    if (!_function) throw OSApiIncomplete(name, ApiFailure::MissingWindowSystem);
}

}  // namespace Tev::Chart::Ogl
