// The extension lookup of one implementation: glXGetProcAddressARB for the
// system GL, OSMesaGetProcAddress for Mesa.
#pragma once

#include "ogl/api/ApiTags.h"
#include "ogl/api/Export.h"

namespace Tev::Chart::Ogl {

namespace Detail { class GlImplementation; }

class TEVOGL_API QueryProcAddress {
public:
    using Function = void* (*)(char const*);

    // Take the implementation's lookup function, logging it as
    // "FUNC: <name> = <address>". Throw OSApiIncomplete when it is missing.
    explicit QueryProcAddress(ApiSystemType);
    explicit QueryProcAddress(ApiMesaType);
    explicit QueryProcAddress(Detail::GlImplementation const& p_impl);
    // A lookup that finds nothing; for tables built by hand.
    QueryProcAddress() = default;

    explicit operator bool() const { return _function != nullptr; }
    friend bool operator==(QueryProcAddress const& p_lhs, QueryProcAddress const& p_rhs) {
        return p_lhs._function == p_rhs._function;
    }

    // The address of an extension entry for the context current on this
    // thread, or null.
    void* operator()(char const* p_name) const { return _function ? _function(p_name) : nullptr; }

private:
    Function _function = nullptr;
};

}  // namespace Tev::Chart::Ogl
