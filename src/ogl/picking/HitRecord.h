// One hit of a selection pass: the object name and sub-name that were
// loaded when something was drawn inside the pick region, and the nearest
// depth at which it was drawn.
#pragma once

#include "ogl/api/Export.h"

#include <cstdint>
#include <iosfwd>

namespace Tev::Chart::Ogl {

// GL's names are 32-bit.
using Uint = std::uint32_t;

struct TEVOGL_API HitRecord {
    static std::uint64_t const NameInvalid;
    static std::uint64_t const NameDefault;
    static std::uint64_t const NameFirst;
    static double const DepthNearest;
    static double const DepthFarthest;
    static double const DepthOverlay;

    // Depth -1, no names.
    HitRecord();
    HitRecord(std::uint64_t p_name, double p_depth);
    HitRecord(std::uint64_t p_name, std::uint64_t p_subname, double p_depth);

    // What a hit of nothing in particular reads as: name 0 at the far plane.
    static HitRecord CatchAll();

    // Names equal, depth ignored; the same as ==.
    static bool CompareByNames(HitRecord const& p_a, HitRecord const& p_b);
    static bool CompareByFields(HitRecord const& p_a, HitRecord const& p_b);
    static bool OrderByDepth(HitRecord const& p_a, HitRecord const& p_b);
    static bool OrderByNames(HitRecord const& p_a, HitRecord const& p_b);
    static bool OrderByFields(HitRecord const& p_a, HitRecord const& p_b);

    friend bool operator==(HitRecord const& p_a, HitRecord const& p_b) { return CompareByNames(p_a, p_b); }
    friend bool operator!=(HitRecord const& p_a, HitRecord const& p_b) { return !CompareByNames(p_a, p_b); }

    double depth;
    std::uint64_t name;
    std::uint64_t subname;
};

// "name(7) subname(2) depth(0.5)"; the subname is left out (not its
// parentheses) when there is none.
TEVOGL_API std::ostream& operator<<(std::ostream& p_os, HitRecord const& p_record);

}  // namespace Tev::Chart::Ogl
