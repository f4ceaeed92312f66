// Fetching one window-system function of an implementation: logged, and
// fatal for the table when missing.
#pragma once

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"

namespace Tev::Chart::Ogl::Detail {

// The function p_symbol of the implementation's GL library, logged as
// "FUNC: <symbol> = <address>"; throws OSApiIncomplete when it is missing.
template <typename Fn>
Fn FetchWindowSystemEntry(GlImplementation const& p_impl, char const* p_symbol) {
    void* const address = p_impl.FindGl(p_symbol);
    Debug::dlog() << "FUNC: " << p_symbol << " = " << address;
    if (!address) throw OSApiIncomplete(p_symbol, ApiFailure::MissingWindowSystem);
    return reinterpret_cast<Fn>(address);
}

}  // namespace Tev::Chart::Ogl::Detail
