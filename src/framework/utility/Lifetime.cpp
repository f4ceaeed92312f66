#include "framework/utility/Lifetime.h"

#include "framework/debug/Debug.h"

#include <boost/make_shared.hpp>

#include <exception>
#include <map>
#include <mutex>

namespace Tev::Chart::Utility {

// Shared between the lifetime and its watchers, so that a watcher may
// outlive the lifetime (and the other way round).
struct Lifetime::State {
    std::mutex mutex;
    bool expired = false;
    std::uint64_t nextId = 1;
    // Ordered by id, which is registration order.
    std::map<std::uint64_t, Callback> callbacks;

    void Unregister(std::uint64_t p_id) {
        std::lock_guard lock(mutex);
        callbacks.erase(p_id);
    }

    // Takes the oldest callback still registered, or none.
    bool TakeNext(Callback& p_callback) {
        std::lock_guard lock(mutex);
        if (callbacks.empty()) return false;
        auto first = callbacks.begin();
        p_callback = std::move(first->second);
        callbacks.erase(first);
        return true;
    }
};

Lifetime::Watcher::Watcher(boost::shared_ptr<State> p_state, std::uint64_t p_id)
    : _state(std::move(p_state)), _id(p_id) {}

Lifetime::Watcher::Watcher(Watcher&& p_other) noexcept
    : _state(std::move(p_other._state)), _id(p_other._id) {
    p_other._id = 0;
}

Lifetime::Watcher& Lifetime::Watcher::operator=(Watcher&& p_other) noexcept {
    if (this != &p_other) {
        Reset();
        _state = std::move(p_other._state);
        _id = p_other._id;
        p_other._id = 0;
    }
    return *this;
}

Lifetime::Watcher::~Watcher() { Reset(); }

bool Lifetime::Watcher::Expired() const {
    if (!_state) return true;
    std::lock_guard lock(_state->mutex);
    return _state->expired;
}

void Lifetime::Watcher::Reset() {
    if (_state) _state->Unregister(_id);
    _state.reset();
    _id = 0;
}

Lifetime::Lifetime() : _state(boost::make_shared<State>()), _alive(boost::make_shared<char>()) {}

Lifetime::~Lifetime() { Expire(); }

Lifetime::Watcher Lifetime::Watch(Callback p_callback) const {
    std::lock_guard lock(_state->mutex);
    std::uint64_t const id = _state->nextId++;
    if (!_state->expired) _state->callbacks.emplace(id, std::move(p_callback));
    return Watcher(_state, id);
}

void Lifetime::Expire() {
    {
        std::lock_guard lock(_state->mutex);
        if (_state->expired) return;
        _state->expired = true;
    }
    _alive.reset();
    // One at a time and without the lock: a callback may destroy other
    // watchers (which must then not run) or its own.
    Callback callback;
    while (_state->TakeNext(callback)) {
        try {
            if (callback) callback();
        } catch (...) {
            Debug::HandleException(std::current_exception(), TEV_SIGNATURE);
        }
        callback.clear();
    }
}

bool Lifetime::Expired() const {
    std::lock_guard lock(_state->mutex);
    return _state->expired;
}

}  // namespace Tev::Chart::Utility
