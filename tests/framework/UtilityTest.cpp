// The logger's report texts and capture scopes, and the utility library's own
// logic: version parsing, hashed keys, optional attributes, environment
// flags, lifetimes with their watchers and weak references, and the scope
// stacks with the order in which they undo. Log texts go to golden files.
#include "framework/debug/Debug.h"
#include "framework/utility/Attribute.h"
#include "framework/utility/Environment.h"
#include "framework/utility/HashedString.h"
#include "framework/utility/Lifetime.h"
#include "framework/utility/OperationStack.h"
#include "framework/utility/Scoped.h"
#include "framework/utility/VersionNo.h"
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <set>
#include <stdexcept>

namespace Tev::Debug {
namespace {

// What a capture scope holds, one entry a line: "channel [category]: text".
using Test::LogText;

int probes = 0;
bool Probe(bool p_result) { return ++probes, p_result; }

// Checks report "\"condition\" - full signature" (of this function).
bool RunChecks(int p_value, void* p_pointer) {
    bool const failed = ensure(Probe(false));
    bool const passed = ensure(Probe(true));
    chkrng(p_value, 1, 3);
    chkptr(p_pointer);
    sentry("unreachable");
    sentry("");
    return !failed && passed;
}

// Every report, exception and stream entry in its exact text; a failed
// condition runs twice, a passing one once; capture scopes nest, each seeing
// only its own entries, and put the previous sink back.
TEST(DebugLogger, ReportTextsSecondEvaluationAndNestedCaptures) {
    auto const original = GetSink();
    {
        CaptureScope capture;
        EXPECT_TRUE(RunChecks(7, nullptr));
        EXPECT_EQ(probes, 3);
        HandleException(std::make_exception_ptr(std::runtime_error("boom")), "void Place()");
        HandleException(std::make_exception_ptr(42), "void Other()");
        dlog("ogl") << "lights = " << 8 << std::endl;
        { CaptureScope inner; dlog() << "inner"; EXPECT_EQ(inner.Texts(Channel::Debug), std::vector<std::string>{"inner"}); }
        derr() << "WARNING: " << 1.5;
        dout("GLSL") << "PARSE: a.glsl";
        EXPECT_TRUE(::Tev::Test::MatchesGolden("framework/debug-log.txt", LogText(capture)));
    }
    EXPECT_EQ(GetSink(), original);
}

}  // namespace
}  // namespace Tev::Debug

namespace Tev::Chart::Utility {
namespace {

using Trace = std::vector<std::string>;
using Test::LogText;
using Test::MatchesGolden;
using Test::ScopedEnv;

// Captures the log and hands out callbacks that append their name to a trace.
struct Recorder {
    Trace trace;
    Debug::CaptureScope capture;
    std::function<void()> operator()(std::string p_text) { return [this, p_text] { trace.push_back(p_text); }; }
};

// The number is read after any leading words, up to three parts; the text is
// kept for display and ignored by comparisons. Hashed keys that collide are
// still told apart and ordered by their text; the hash sees character order.
TEST(VersionNoAndHashedString, ParseAndOrder) {
    for (auto const& [text, number] : std::vector<std::pair<std::string, VersionNo>>{
             {"4.5 (Compatibility Profile) Mesa 22.3.6", {4, 5, 0}}, {"4.50", {4, 50, 0}}, {"<unknown>", {0, 0, 0}},
             {"OpenGL ES 3.2 Mesa 22.3.6", {3, 2, 0}}, {"1.2.3.4", {1, 2, 3}}})
        EXPECT_TRUE(VersionNo::Parse(text) == number && VersionNo::Parse(text).Text() == text) << text;
    EXPECT_TRUE(VersionNo(2, 1, 0) < VersionNo(3, 0, 0) && VersionNo(3, 1, 9) < VersionNo(3, 2, 0));
    EXPECT_FALSE(VersionNo::Parse("4.5 Mesa") < VersionNo(4, 3, 0)) << "a 4.5 driver passes a 4.3 gate";
    EXPECT_EQ(VersionNo(3, 0).Text(), "3.0.0");
    struct ConstantHash { std::size_t operator()(std::string const&) const { return 7; } };
    std::set<HashedString_Base<std::string, ConstantHash>> const keys{"b", "a", "b"};
    EXPECT_TRUE(keys.size() == 2 && keys.begin()->str() == "a" && HashedString("ab").Hash() != HashedString("ba").Hash());
}

// Reading an undefined attribute is reported and yields a default; a const
// read does not define it. Environment numbers must be whole positive
// decimals; the switch is off only for the usual "off" words, in any case.
TEST(UtilityValues, UndefinedAttributesAndEnvironmentFlags) {
    Debug::CaptureScope capture;
    Attribute<int> number;
    Attribute<std::string> const text;
    EXPECT_TRUE(number.GetOr(5) == 5 && *number == 0 && text.Get().empty() && !text.Defined());
    EXPECT_TRUE(::Tev::Test::Assertions(capture).size() == 2u && ::Tev::Test::HasAssertion(capture, "Defined()"));
    for (auto const& [value, on] : std::vector<std::pair<char const*, bool>>{
             {nullptr, false}, {"", false}, {"0", false}, {"false", false}, {"No", false}, {"OFF", false},
             {"abc", true}, {"-3", true}, {"12x", true}}) {
        ScopedEnv a("TEVOS_FORCE_PIXEL_FORMAT", value), b("TEVOS_FRAMEWORK_DEVELOPMENT", value), c("TEVOS_USE_SYSTEM_DEVICE_FORMAT", value);
        EXPECT_TRUE(!Environment::ForcePixelFormat() && Environment::FrameworkDevelopment() == 0 &&
                    Environment::UseSystemDeviceFormat() == on) << (value ? value : "unset");
    }
    ScopedEnv force("TEVOS_FORCE_PIXEL_FORMAT", "12"), on("TEVOS_USE_SYSTEM_DEVICE_FORMAT", "yes"), level("TEVOS_FRAMEWORK_DEVELOPMENT", "2");
    EXPECT_TRUE(Environment::ForcePixelFormat() == 12u && Environment::UseSystemDeviceFormat() && Environment::FrameworkDevelopment() == 2);
}

// Callbacks run once, in order, at Expire(); dropped, replaced and destroyed
// watchers take theirs back, moved ones keep theirs; a callback may drop a
// later watcher, and one that throws is logged without stopping the rest.
TEST(Lifetime, WatchersFireOnceInOrderUnlessGoneFirst) {
    Recorder record;
    std::optional<Lifetime::Watcher> victim;
    Lifetime::Watcher moved, replaced, dropped;
    {
        Lifetime lifetime;
        moved = lifetime.Watch(record("first"));
        dropped = lifetime.Watch(record("dropped"));
        replaced = lifetime.Watch(record("replaced"));
        replaced = lifetime.Watch(record("replacement"));
        (void)lifetime.Watch(record("gone"));
        auto killer = lifetime.Watch([&] { record.trace.push_back("killer"), victim.reset(); });
        victim = lifetime.Watch(record("victim"));
        auto thrower = lifetime.Watch([] { throw std::runtime_error("expiry failed"); }), last = lifetime.Watch(record("last"));
        dropped.Reset();
        EXPECT_TRUE(!moved.Expired() && dropped.Expired() && Lifetime::Watcher().Expired());
        lifetime.Expire();
        EXPECT_TRUE(lifetime.Expired() && moved.Expired() && lifetime.Watch(record("late")).Expired());
    }
    EXPECT_EQ(record.trace, (Trace{"first", "replacement", "killer", "last"})) << "and once only";
    EXPECT_TRUE(MatchesGolden("framework/lifetime-log.txt", LogText(record.capture)));
}

struct Base { virtual ~Base() = default; int value = 1; };
struct Owner : Base { Lifetime lifetime; };

// Weak references, also as a base, see the object until its lifetime ends;
// a locked one does not keep it; locking an expired one is reported.
TEST(WeakWatchedRef, ExpiresWithTheLifetimeAndLockReportsThen) {
    auto owner = std::make_unique<Owner>();
    WeakWatchedRef<Owner> const weak = owner->lifetime.Ref(*owner);
    WeakWatchedRef<Base const> const weakBase = weak;
    WatchedRef<Owner> const locked = weak.Lock();
    locked->value = 5;
    EXPECT_TRUE(weakBase.Lock()->value == 5 && locked.Weak() == weak);
    owner.reset();
    EXPECT_TRUE(weak.Expired() && weakBase.Expired() && !locked && locked.Get() == nullptr);
    Debug::CaptureScope capture;
    EXPECT_TRUE(weak.Lock().Get() == nullptr && WeakWatchedRef<Owner>().Lock().Get() == nullptr);
    EXPECT_TRUE(MatchesGolden("framework/weak-ref-log.txt", LogText(capture)));
}

// An object with its own scope stack, as the facade has.
struct ScopeOwner {
    Recorder* record;
    bool fail = false;
    void ScopeBegin() { record->trace.push_back("begin"), fail ? throw std::runtime_error("begin failed") : void(); }
    void ScopeEnd() { record->trace.push_back("end"), fail ? throw std::logic_error("end failed") : void(); }
};

// Pop undoes only the top level, last filed first; filing with no level open
// is dropped, levels left open never run; a throwing operation is logged
// with its name and the rest still run; operations may use the stack itself.
// A scope guard opens and closes around its life, nested ones inside; a
// failed begin still gets its end, and neither lets its exception out.
TEST(ScopeStacks, PopUndoesTheTopLevelInReverseAndGuardsCloseWhatTheyOpen) {
    Recorder record;
    {
        OperationStack stack;
        stack.Pop();
        stack.InsertOperation(record("no level"), "dropped");
        stack.Push();
        stack.InsertOperation(record("outer 1"), "o1");
        stack.InsertOperation([] { throw std::runtime_error("undo failed"); }, "PopAttrib");
        stack.InsertOperation(record("outer 2"), "o2");
        stack.Push();
        stack.InsertOperation([&] { stack.Push(), stack.InsertOperation(record("filed in pop"), "late"), stack.Pop(); }, "nested");
        stack.InsertOperation(record("inner"), "i1");
        stack.InsertOperation([&] { stack.Pop(); }, "pops below");
        EXPECT_TRUE(stack.Depth() == 2 && stack.TopNames() == (Trace{"nested", "i1", "pops below"}));
        stack.Pop();
        EXPECT_EQ(stack.Depth(), 0u);
        stack.Push();
        stack.InsertOperation(record("left open"), "left");
    }
    ScopeOwner owner{&record};
    {
        Scoped<ScopeOwner> outer(owner);
        { Scoped<ScopeOwner> inner(outer.Unscope()); }
        (*outer).record->trace.push_back("after inner");
    }
    owner.fail = true;
    EXPECT_NO_THROW({ Scoped<ScopeOwner> scope(owner); });
    EXPECT_EQ(record.trace, (Trace{"outer 2", "outer 1", "inner", "filed in pop",
                                   "begin", "begin", "end", "after inner", "end", "begin", "end"}));
    EXPECT_TRUE(MatchesGolden("framework/scope-stacks-log.txt", LogText(record.capture)));
}

}  // namespace
}  // namespace Tev::Chart::Utility
