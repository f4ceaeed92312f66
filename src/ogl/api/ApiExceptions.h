// Thrown when an implementation lacks an entry point the library cannot do
// without. The message is the entry's name, ": ", then the reason.
#pragma once

#include "framework/utility/Exception.h"
#include "ogl/api/Export.h"

#include <string>

namespace Tev::Chart::Ogl {

class TEVOGL_API IncompleteOglImpl : public Utility::Exception {
public:
    IncompleteOglImpl(std::string const& p_entry, std::string const& p_reason)
        : Utility::Exception(p_entry + ": " + p_reason) {}
    IncompleteOglImpl(IncompleteOglImpl const&) = default;
    ~IncompleteOglImpl() override = default;
};

class TEVOGL_API OSApiIncomplete : public Utility::Exception {
public:
    OSApiIncomplete(std::string const& p_entry, std::string const& p_reason)
        : Utility::Exception(p_entry + ": " + p_reason) {}
    OSApiIncomplete(OSApiIncomplete const&) = default;
    ~OSApiIncomplete() override = default;
};

// The reasons, as they appear in the messages.
namespace ApiFailure {
inline constexpr char const* MissingDirect = "Incomplete OpenGL implementation";
inline constexpr char const* MissingExtension = "Unable to load expected OpenGL extension";
inline constexpr char const* MissingWindowSystem = "Incomplete glX/wgl implementation";
}  // namespace ApiFailure

}  // namespace Tev::Chart::Ogl
