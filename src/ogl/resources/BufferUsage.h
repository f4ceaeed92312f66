// How often a pooled buffer is rewritten and what it is used for: together
// the two choose the GL usage hint, and a freed buffer is only reused for a
// request with the same hint.
#pragma once

#include "ogl/api/Export.h"

#include <cstdint>

namespace Tev::Chart::Ogl {

struct TEVOGL_API BufferUsage {
    enum Frequency : std::int32_t { Static = 0, Dynamic = 1, Stream = 2 };
    enum Nature : std::int32_t { Draw = 0, Read = 1, Copy = 2 };

    constexpr BufferUsage(Frequency p_frequency, Nature p_nature) : frequency(p_frequency), nature(p_nature) {}
    BufferUsage(BufferUsage const&) = default;
    BufferUsage& operator=(BufferUsage const&) = default;

    // frequency x 4 | nature: the slot of the usage-hint table.
    std::int32_t Index() const { return frequency * 4 | nature; }
    bool operator<(BufferUsage const& p_other) const { return Index() < p_other.Index(); }

    // Static, Draw: written once, drawn many times. Defined in the library,
    // not inline here: a DLL's class cannot define a static member in the
    // programs that import it.
    static BufferUsage const Default;

    Frequency frequency;
    Nature nature;
};

}  // namespace Tev::Chart::Ogl
