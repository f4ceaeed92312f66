// A type as a value: a key for maps of per-type entries.
#pragma once

#include <compare>
#include <cstddef>
#include <typeindex>
#include <typeinfo>

namespace Tev::Chart::Utility {

class TypeInfo {
public:
    TypeInfo(std::type_info const& p_type) : _type(p_type) {}

    template <typename T>
    static TypeInfo Of() {
        return TypeInfo(typeid(T));
    }

    char const* Name() const { return _type.name(); }

    friend bool operator==(TypeInfo const& p_lhs, TypeInfo const& p_rhs) { return p_lhs._type == p_rhs._type; }
    friend std::strong_ordering operator<=>(TypeInfo const& p_lhs, TypeInfo const& p_rhs) {
        return p_lhs._type <=> p_rhs._type;
    }
    friend std::size_t hash_value(TypeInfo const& p_type) { return p_type._type.hash_code(); }

private:
    std::type_index _type;
};

}  // namespace Tev::Chart::Utility

template <>
struct std::hash<Tev::Chart::Utility::TypeInfo> {
    std::size_t operator()(Tev::Chart::Utility::TypeInfo const& p_type) const { return hash_value(p_type); }
};
