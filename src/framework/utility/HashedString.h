// String keys that carry their hash, for look-ups by name in hot paths
// (uniform and attribute locations): the hash is computed once, when the key
// is made, and comparisons look at it before the text.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace Tev::Chart::Utility {

// FNV-1a over every character, however long the string. constexpr so that
// keys for literal names can be made at compile time.
struct StaticUnboundedStringHash {
    constexpr std::size_t operator()(std::string_view p_text) const {
        std::uint64_t hash = 14695981039346656037ull;
        for (char c : p_text) {
            hash ^= static_cast<unsigned char>(c);
            hash *= 1099511628211ull;
        }
        return static_cast<std::size_t>(hash);
    }
};

template <typename String, typename Hasher = StaticUnboundedStringHash>
class HashedString_Base {
public:
    HashedString_Base() : _hash(Hasher{}(_text)) {}
    HashedString_Base(String p_text) : _text(std::move(p_text)), _hash(Hasher{}(_text)) {}
    HashedString_Base(typename String::value_type const* p_text) : HashedString_Base(String(p_text)) {}

    String const& str() const { return _text; }
    std::size_t Hash() const { return _hash; }
    bool empty() const { return _text.empty(); }

    friend bool operator==(HashedString_Base const& p_lhs, HashedString_Base const& p_rhs) {
        return p_lhs._hash == p_rhs._hash && p_lhs._text == p_rhs._text;
    }
    // Ordered by hash first: a stable, cheap order for sorted containers,
    // not an alphabetical one.
    friend std::strong_ordering operator<=>(HashedString_Base const& p_lhs, HashedString_Base const& p_rhs) {
        if (p_lhs._hash != p_rhs._hash) return p_lhs._hash <=> p_rhs._hash;
        return p_lhs._text.compare(p_rhs._text) <=> 0;
    }

    // For boost::hash (boost::unordered_map keys).
    friend std::size_t hash_value(HashedString_Base const& p_key) { return p_key._hash; }

    friend std::ostream& operator<<(std::ostream& p_os, HashedString_Base const& p_key) { return p_os << p_key._text; }

private:
    String _text;
    std::size_t _hash;
};

using HashedString = HashedString_Base<std::string, StaticUnboundedStringHash>;

}  // namespace Tev::Chart::Utility

template <typename String, typename Hasher>
struct std::hash<Tev::Chart::Utility::HashedString_Base<String, Hasher>> {
    std::size_t operator()(Tev::Chart::Utility::HashedString_Base<String, Hasher> const& p_key) const {
        return p_key.Hash();
    }
};
