#include "ogl/picking/HitRecord.h"

#include <ostream>
#include <tuple>

namespace Tev::Chart::Ogl {

std::uint64_t const HitRecord::NameInvalid = 0xFFFFFFFFFFFFFFFFull;
std::uint64_t const HitRecord::NameDefault = 0;
std::uint64_t const HitRecord::NameFirst = 1;
double const HitRecord::DepthNearest = 0.0;
double const HitRecord::DepthFarthest = 1.0;
double const HitRecord::DepthOverlay = 0.0;

HitRecord::HitRecord() : depth(-1.0), name(NameInvalid), subname(NameInvalid) {}
HitRecord::HitRecord(std::uint64_t p_name, double p_depth) : depth(p_depth), name(p_name), subname(NameInvalid) {}
HitRecord::HitRecord(std::uint64_t p_name, std::uint64_t p_subname, double p_depth)
    : depth(p_depth), name(p_name), subname(p_subname) {}

HitRecord HitRecord::CatchAll() { return HitRecord(NameDefault, NameInvalid, DepthFarthest); }

bool HitRecord::CompareByNames(HitRecord const& p_a, HitRecord const& p_b) {
    return p_a.name == p_b.name && p_a.subname == p_b.subname;
}

bool HitRecord::CompareByFields(HitRecord const& p_a, HitRecord const& p_b) {
    return CompareByNames(p_a, p_b) && p_a.depth == p_b.depth;
}

bool HitRecord::OrderByDepth(HitRecord const& p_a, HitRecord const& p_b) { return p_a.depth < p_b.depth; }

bool HitRecord::OrderByNames(HitRecord const& p_a, HitRecord const& p_b) {
    return std::tie(p_a.name, p_a.subname) < std::tie(p_b.name, p_b.subname);
}

bool HitRecord::OrderByFields(HitRecord const& p_a, HitRecord const& p_b) {
    return std::tie(p_a.depth, p_a.name, p_a.subname) < std::tie(p_b.depth, p_b.name, p_b.subname);
}

std::ostream& operator<<(std::ostream& p_os, HitRecord const& p_record) {
    p_os << "name(" << p_record.name << ") subname(";
    if (p_record.subname != HitRecord::NameInvalid) p_os << p_record.subname;
    return p_os << ") depth(" << p_record.depth << ")";
}

}  // namespace Tev::Chart::Ogl
