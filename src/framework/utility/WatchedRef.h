// References to an object whose end is announced by a Lifetime.
//
// WeakWatchedRef<T> is what other objects keep: it never keeps the object
// alive and reports Expired() once the object's Lifetime has ended.
// Lock() turns it into a WatchedRef<T>, the form used for calls. Neither
// can extend the object's life (it is owned elsewhere, not shared); a locked
// reference is meant for the duration of one operation.
#pragma once

#include "framework/debug/Debug.h"

#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <type_traits>

namespace Tev::Chart::Utility {

class Lifetime;

template <typename T>
class WatchedRef;

template <typename T>
class WeakWatchedRef {
public:
    // Refers to nothing and is expired.
    WeakWatchedRef() = default;

    // From a reference to a derived or less qualified type (Tgl to const Tgl).
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    WeakWatchedRef(WeakWatchedRef<U> const& p_other) : _object(p_other._object), _alive(p_other._alive) {}

    bool Expired() const { return _object == nullptr || _alive.expired(); }

    // A reference to use now; asserts "!Expired()" and holds null then.
    WatchedRef<T> Lock() const {
        if (!ensure(!Expired())) return WatchedRef<T>();
        return WatchedRef<T>(_object, _alive);
    }

    // Whether both refer to the same object.
    friend bool operator==(WeakWatchedRef const& p_lhs, WeakWatchedRef const& p_rhs) {
        return p_lhs._object == p_rhs._object;
    }

private:
    friend class Lifetime;
    template <typename>
    friend class WeakWatchedRef;
    template <typename>
    friend class WatchedRef;

    WeakWatchedRef(T& p_object, boost::weak_ptr<void> p_alive) : _object(&p_object), _alive(std::move(p_alive)) {}

    T* _object = nullptr;
    boost::weak_ptr<void> _alive;
};

template <typename T>
class WatchedRef {
public:
    // Refers to nothing.
    WatchedRef() = default;

    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    WatchedRef(WatchedRef<U> const& p_other) : _object(p_other._object), _alive(p_other._alive) {}

    bool Expired() const { return _object == nullptr || _alive.expired(); }
    explicit operator bool() const { return !Expired(); }

    // The object, or null once its lifetime has ended.
    T* Get() const { return Expired() ? nullptr : _object; }
    T& operator*() const { return *Get(); }
    T* operator->() const { return Get(); }

    WeakWatchedRef<T> Weak() const {
        return _object ? WeakWatchedRef<T>(*_object, _alive) : WeakWatchedRef<T>();
    }

private:
    template <typename>
    friend class WeakWatchedRef;
    template <typename>
    friend class WatchedRef;

    WatchedRef(T* p_object, boost::weak_ptr<void> p_alive) : _object(p_object), _alive(std::move(p_alive)) {}

    T* _object = nullptr;
    boost::weak_ptr<void> _alive;
};

}  // namespace Tev::Chart::Utility
