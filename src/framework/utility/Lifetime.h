// The watched lifetime of an object, and watchers told when it ends.
//
// An object that others refer to without owning (the facade, its entry-point
// table) holds a Lifetime. Observers register a callback with Watch() and
// keep the returned Watcher; when the Lifetime ends (its destructor, or an
// earlier Expire()) every registered callback runs once. A watcher destroyed
// first takes its callback back, so nothing runs into a dead observer.
// Weak references to the object (WeakWatchedRef, WatchedRef.h) are tied to
// the same Lifetime and report expiry from then on.
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <cstdint>

namespace Tev::Chart::Utility {

template <typename T>
class WeakWatchedRef;

class Lifetime {
    struct State;

public:
    using Callback = boost::function<void()>;

    // A registration with a Lifetime. Move-only: exactly one watcher owns
    // each registration. A default-made watcher watches nothing and counts
    // as expired.
    class Watcher {
    public:
        Watcher() = default;
        Watcher(Watcher&& p_other) noexcept;
        Watcher& operator=(Watcher&& p_other) noexcept;
        Watcher(Watcher const&) = delete;
        Watcher& operator=(Watcher const&) = delete;
        ~Watcher();

        // True once the watched lifetime has ended, and for an empty watcher.
        bool Expired() const;
        // Unregisters without waiting for destruction.
        void Reset();

    private:
        friend class Lifetime;
        Watcher(boost::shared_ptr<State> p_state, std::uint64_t p_id);

        boost::shared_ptr<State> _state;
        std::uint64_t _id = 0;
    };

    Lifetime();
    Lifetime(Lifetime const&) = delete;
    Lifetime& operator=(Lifetime const&) = delete;
    // Ends the lifetime if Expire() has not.
    ~Lifetime();

    // Registers p_callback to run when this lifetime ends. On a lifetime that
    // has already ended the callback never runs and the watcher is expired.
    Watcher Watch(Callback p_callback) const;

    // Ends the lifetime now: weak references expire first, then each
    // callback runs once, in registration order. Exceptions from callbacks
    // go to the logger's exception handler. Later calls do nothing.
    void Expire();
    bool Expired() const;

    // A weak reference to p_object (normally the owner of this lifetime)
    // that expires with it.
    template <typename T>
    WeakWatchedRef<T> Ref(T& p_object) const {
        return WeakWatchedRef<T>(p_object, _alive);
    }

private:
    boost::shared_ptr<State> _state;
    // Weak references watch this token; it is released at expiry.
    boost::shared_ptr<void> _alive;
};

}  // namespace Tev::Chart::Utility

#include "framework/utility/WatchedRef.h"
