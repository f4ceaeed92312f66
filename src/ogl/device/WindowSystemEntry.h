// Fetching one window-system function of an implementation: logged, and
// fatal for the table when missing; and the process-wide home of the
// functions a table's adapters call.
#pragma once

#include "framework/debug/Debug.h"
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"

#include <atomic>

namespace Tev::Chart::Ogl::Detail {

// The function p_symbol of the implementation's GL library, logged as
// "FUNC: <symbol> = <address>"; throws OSApiIncomplete when it is missing.
template <typename Fn>
Fn CheckWindowSystemEntry(void* p_address, char const* p_symbol) {
    Debug::dlog() << "FUNC: " << p_symbol << " = " << p_address;
    if (!p_address) throw OSApiIncomplete(p_symbol, ApiFailure::MissingWindowSystem);
    return reinterpret_cast<Fn>(p_address);
}

template <typename Fn>
Fn FetchWindowSystemEntry(GlImplementation const& p_impl, char const* p_symbol) {
    return CheckWindowSystemEntry<Fn>(p_impl.FindGl(p_symbol), p_symbol);
}

// The same, into a table's member.
template <typename Fn>
void FetchWindowSystemEntry(GlImplementation const& p_impl, Fn& p_member, char const* p_symbol) {
    p_member = FetchWindowSystemEntry<Fn>(p_impl, p_symbol);
}

// The functions that a window-system table's adapters call. The adapters are
// plain functions behind the table, so the functions live here, published
// once per process and never freed: adapters may run on any thread for as
// long as the process has contexts, and a swap under their feet would race.
// Later tables fetch from the same library, so the first one stays.
template <typename Functions>
class ProcessFunctions {
public:
    static void Publish(Functions const& p_functions) {
        if (_published.load()) return;
        auto const* fresh = new Functions(p_functions);
        Functions const* expected = nullptr;
        if (!_published.compare_exchange_strong(expected, fresh)) delete fresh;
    }
    // Only for code reached through a table, which published them.
    static Functions const& Get() { return *_published.load(); }

private:
    static inline std::atomic<Functions const*> _published{nullptr};
};

}  // namespace Tev::Chart::Ogl::Detail
