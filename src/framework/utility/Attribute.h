// An optional value: either undefined or holding a T.
#pragma once

#include "framework/debug/Debug.h"

#include <boost/optional.hpp>

#include <utility>

namespace Tev::Chart::Utility {

template <typename T>
class Attribute {
public:
    Attribute() = default;
    Attribute(T p_value) : _value(std::move(p_value)) {}
    Attribute(boost::none_t) {}

    Attribute& operator=(T p_value) {
        _value = std::move(p_value);
        return *this;
    }
    Attribute& operator=(boost::none_t) {
        _value = boost::none;
        return *this;
    }

    bool Defined() const { return _value.is_initialized(); }
    void Undefine() { _value = boost::none; }
    // Makes the attribute hold a default-made T when it is undefined.
    T& Define() {
        if (!_value) _value.emplace();
        return *_value;
    }

    // Reading an undefined attribute is a programming error: it is reported,
    // and the caller gets a default-made T (put in, where it may be changed)
    // rather than a crash.
    T& Get() {
        if (!ensure(Defined())) _value.emplace();
        return *_value;
    }
    T const& Get() const {
        if (ensure(Defined())) return *_value;
        static T const undefined{};
        return undefined;
    }
    T GetOr(T p_fallback) const { return _value ? *_value : std::move(p_fallback); }

    T& operator*() { return Get(); }
    T const& operator*() const { return Get(); }
    T* operator->() { return &Get(); }
    T const* operator->() const { return &Get(); }

    boost::optional<T> const& Optional() const { return _value; }

    friend bool operator==(Attribute const& p_lhs, Attribute const& p_rhs) { return p_lhs._value == p_rhs._value; }

private:
    boost::optional<T> _value;
};

}  // namespace Tev::Chart::Utility
