// Scope guards over an object that keeps its own scope stack.
//
// Unscoped<T> names an object with no scope open on its behalf; Scoped<T>
// opens one (T::ScopeBegin) for its lifetime and closes it (T::ScopeEnd) when
// it goes. Functions that need an open scope take a Scoped<T>&, so the type
// system proves that one is open. Neither guard lets an exception out of its
// constructor or destructor: they go to the logger's exception handler.
#pragma once

#include "framework/debug/Debug.h"

#include <exception>

namespace Tev::Chart::Utility {

template <typename T>
class Unscoped {
public:
    // Implicit, so that a T& can be passed where an Unscoped<T> is expected.
    Unscoped(T& p_object) : _object(&p_object) {}

    T& Get() const { return *_object; }
    T& operator*() const { return *_object; }
    T* operator->() const { return _object; }

private:
    T* _object;
};

template <typename T>
class Scoped {
public:
    explicit Scoped(Unscoped<T> const& p_object) : _object(p_object) {
        try {
            _object->ScopeBegin();
        } catch (...) {
            Debug::HandleException(std::current_exception(), TEV_SIGNATURE);
        }
    }
    Scoped(Scoped const&) = delete;
    Scoped& operator=(Scoped const&) = delete;
    ~Scoped() {
        try {
            _object->ScopeEnd();
        } catch (...) {
            Debug::HandleException(std::current_exception(), TEV_SIGNATURE);
        }
    }

    T& Get() const { return _object.Get(); }
    T& operator*() const { return _object.Get(); }
    T* operator->() const { return &_object.Get(); }
    // The object without the scope, for code that only needs to reach it.
    Unscoped<T> const& Unscope() const { return _object; }

private:
    Unscoped<T> _object;
};

}  // namespace Tev::Chart::Utility
