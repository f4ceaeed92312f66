// Lifetime, its watchers and the weak references tied to it.
#include "framework/utility/Lifetime.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tev::Chart::Utility {
namespace {

using Trace = std::vector<std::string>;

TEST(Lifetime, WatchersFireOnceInOrderUnlessGoneFirst) {
    Trace trace;
    Lifetime::Watcher first, second, dropped;
    {
        Lifetime lifetime;
        first = lifetime.Watch([&] { trace.push_back("first"); });
        dropped = lifetime.Watch([&] { trace.push_back("dropped"); });
        second = lifetime.Watch([&] { trace.push_back("second"); });
        dropped.Reset();
        EXPECT_FALSE(first.Expired());
        EXPECT_TRUE(dropped.Expired() && Lifetime::Watcher().Expired());

        lifetime.Expire();
        EXPECT_EQ(trace, (Trace{"first", "second"}));
        EXPECT_TRUE(lifetime.Expired() && first.Expired());
        EXPECT_TRUE(lifetime.Watch([&] { trace.push_back("late"); }).Expired());
    }
    EXPECT_EQ(trace, (Trace{"first", "second"})) << "the destructor must not fire them again";
}

TEST(Lifetime, MovedWatchersKeepTheirRegistrationAndReplacedOnesLoseIt) {
    Trace trace;
    auto lifetime = std::make_unique<Lifetime>();
    Lifetime::Watcher kept = lifetime->Watch([&] { trace.push_back("kept"); });
    Lifetime::Watcher moved(std::move(kept));
    Lifetime::Watcher replaced = lifetime->Watch([&] { trace.push_back("replaced"); });
    replaced = lifetime->Watch([&] { trace.push_back("replacement"); });
    {
        Lifetime::Watcher gone = lifetime->Watch([&] { trace.push_back("gone"); });
    }
    lifetime.reset();
    EXPECT_EQ(trace, (Trace{"kept", "replacement"}));
    EXPECT_TRUE(moved.Expired());
}

TEST(Lifetime, CallbacksMayDropLaterWatchersAndMayThrow) {
    Trace trace;
    Debug::CaptureScope capture;
    std::optional<Lifetime::Watcher> victim;
    {
        Lifetime lifetime;
        // As a resource deallocating on expiry may destroy another resource.
        auto killer = lifetime.Watch([&] {
            trace.push_back("killer");
            victim.reset();
        });
        victim = lifetime.Watch([&] { trace.push_back("victim"); });
        auto thrower = lifetime.Watch([&] {
            trace.push_back("thrower");
            throw std::runtime_error("expiry failed");
        });
        auto last = lifetime.Watch([&] { trace.push_back("last"); });
        lifetime.Expire();
    }
    EXPECT_EQ(trace, (Trace{"killer", "thrower", "last"}));
    auto const errors = capture.Texts(Debug::Channel::Error);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].find("Lifetime::Expire") != std::string::npos && errors[0].ends_with(": expiry failed"))
        << errors[0];
}

struct Base {
    virtual ~Base() = default;
    int value = 1;
};
struct Owner : Base {
    Lifetime lifetime;
};

TEST(WeakWatchedRef, ExpiresWithTheLifetimeAndLockReportsThen) {
    auto owner = std::make_unique<Owner>();
    WeakWatchedRef<Owner> const weak = owner->lifetime.Ref(*owner);
    WeakWatchedRef<Base const> const weakBase = weak;
    EXPECT_FALSE(weak.Expired() || weakBase.Expired());

    WatchedRef<Owner> const locked = weak.Lock();
    ASSERT_TRUE(locked);
    locked->value = 5;
    EXPECT_EQ(weakBase.Lock()->value, 5);
    WatchedRef<Base const> const lockedBase = locked;
    EXPECT_EQ(lockedBase.Get(), static_cast<Base const*>(owner.get()));
    EXPECT_TRUE(locked.Weak() == weak);

    owner.reset();
    EXPECT_TRUE(weak.Expired() && weakBase.Expired());
    EXPECT_TRUE(!locked && locked.Get() == nullptr) << "a locked reference does not keep the object";

    Debug::CaptureScope capture;
    EXPECT_TRUE(weak.Lock().Get() == nullptr && WeakWatchedRef<Owner>().Lock().Get() == nullptr);
    auto const assertions = ::Tev::Test::Assertions(capture);
    ASSERT_EQ(assertions.size(), 2u);
    EXPECT_TRUE(assertions[0].starts_with("\"!Expired()\" - ") &&
                assertions[0].find("WeakWatchedRef<T>::Lock()") != std::string::npos)
        << assertions[0];
}

}  // namespace
}  // namespace Tev::Chart::Utility
