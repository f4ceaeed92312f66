// The framework stand-ins' own logic. The logger's report texts and capture
// scopes; version parsing, hashed keys, optional attributes, environment
// flags; lifetimes with their watchers and weak references, and the undo
// stacks with the order in which they run (log texts in golden files); the
// value types' own rules over GLM and the standard library (refusals, empty
// values, clamping), asset paths and volumes, and time stamps.
#include "framework/assets/MemoryVolume.h"
#include "framework/core/TimeStamp.h"
#include "framework/debug/Debug.h"
#include "framework/types/BoundingBox.h"
#include "framework/types/Math.h"
#include "framework/types/MinMax.h"
#include "framework/types/Projection.h"
#include "framework/types/Quaternion.h"
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

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>

namespace Tev::Chart::Utility {
namespace {

using namespace Types;
using namespace Assets;

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
// only its own entries, and put the previous sink back (the outer one sees
// what follows the inner).
TEST(DebugLogger, ReportTextsSecondEvaluationAndNestedCaptures) {
    Debug::CaptureScope capture;
    EXPECT_TRUE(RunChecks(7, nullptr));
    EXPECT_EQ(probes, 3);
    Debug::HandleException(std::make_exception_ptr(std::runtime_error("boom")), "void Place()");
    Debug::HandleException(std::make_exception_ptr(42), "void Other()");
    Debug::dlog("ogl") << "lights = " << 8 << std::endl;
    { Debug::CaptureScope inner; Debug::dlog() << "inner"; EXPECT_EQ(inner.Texts(Debug::Channel::Debug), std::vector<std::string>{"inner"}); }
    Debug::derr() << "WARNING: " << 1.5;
    Debug::dout("GLSL") << "PARSE: a.glsl";
    EXPECT_TRUE(Tev::Test::MatchesGolden("framework/debug-log.txt", Tev::Test::LogText(capture)));
}

// The number is read after any leading words, up to three parts; the text is
// kept for display and ignored by comparisons (whose order the feature
// gates in the API tests use). Hashed keys that collide are
// still told apart and ordered by their text; the hash sees character order.
TEST(VersionNoAndHashedString, ParseAndOrder) {
    for (auto const& [text, number] : std::vector<std::pair<std::string, VersionNo>>{
             {"4.5 (Compatibility Profile) Mesa 22.3.6", {4, 5, 0}}, {"4.50", {4, 50, 0}}, {"<unknown>", {0, 0, 0}},
             {"OpenGL ES 3.2 Mesa 22.3.6", {3, 2, 0}}, {"1.2.3.4", {1, 2, 3}}})
        EXPECT_TRUE(VersionNo::Parse(text) == number && VersionNo::Parse(text).Text() == text) << text;
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
    EXPECT_TRUE(Tev::Test::Assertions(capture).size() == 2u && Tev::Test::HasAssertion(capture, "Defined()"));
    for (auto const& [value, number, on] : std::vector<std::tuple<char const*, unsigned, bool>>{
             {nullptr, 0, false}, {"", 0, false}, {"0", 0, false}, {"false", 0, false}, {"No", 0, false}, {"OFF", 0, false},
             {"abc", 0, true}, {"-3", 0, true}, {"12x", 0, true}, {"12", 12, true}}) {
        Tev::Test::ScopedEnv a("TEVOS_FORCE_PIXEL_FORMAT", value), b("TEVOS_FRAMEWORK_DEVELOPMENT", value), c("TEVOS_USE_SYSTEM_DEVICE_FORMAT", value);
        EXPECT_TRUE(Environment::ForcePixelFormat() == (number ? boost::optional<unsigned>(number) : boost::none) &&
                    Environment::FrameworkDevelopment() == int(number) && Environment::UseSystemDeviceFormat() == on) << (value ? value : "unset");
    }
}

// A callback that logs its name, so that the order in which callbacks run
// and what is reported between them make one transcript.
std::function<void()> Note(std::string p_name) { return [p_name] { Debug::dlog() << p_name; }; }

struct Base { virtual ~Base() = default; int value = 1; };
struct Owner : Base { Lifetime lifetime; };

// An object with its own scope stack, as the facade has, whose begin and
// end both throw.
struct FailingScopes {
    void ScopeBegin() { Debug::dlog() << "begin"; throw std::runtime_error("begin failed"); }
    void ScopeEnd() { Debug::dlog() << "end"; throw std::logic_error("end failed"); }
};

// In tests/golden/framework/undo-log.txt: watchers' callbacks run once, in
// order, at Expire(); dropped, replaced and destroyed watchers take theirs
// back, moved ones keep theirs; a callback may drop a later watcher, and one
// that throws is logged without stopping the rest. Weak references, also as
// a base, see the object until its lifetime ends; a locked one does not keep
// it; locking an expired one is reported. Pop undoes only the top level,
// last filed first; filing with no level open is dropped, levels left open
// never run; a throwing operation is logged with its name and the rest
// still run; operations may use the stack itself. A scope guard's failed
// begin still gets its end, and neither lets its exception out.
TEST(LifetimesAndUndoStacks, RunWhatIsStillWatchedOrFiledInOrder) {
    Debug::CaptureScope capture;
    std::optional<Lifetime::Watcher> victim;
    Lifetime::Watcher moved, replaced, dropped;
    {
        Lifetime lifetime;
        moved = lifetime.Watch(Note("first"));
        dropped = lifetime.Watch(Note("dropped"));
        replaced = lifetime.Watch(Note("replaced"));
        replaced = lifetime.Watch(Note("replacement"));
        (void)lifetime.Watch(Note("gone"));
        auto killer = lifetime.Watch([&] { Debug::dlog() << "killer"; victim.reset(); });
        victim = lifetime.Watch(Note("victim"));
        auto thrower = lifetime.Watch([] { throw std::runtime_error("expiry failed"); }), last = lifetime.Watch(Note("last"));
        dropped.Reset();
        EXPECT_TRUE(!moved.Expired() && dropped.Expired() && Lifetime::Watcher().Expired());
        lifetime.Expire();
        EXPECT_TRUE(lifetime.Expired() && moved.Expired() && lifetime.Watch(Note("late")).Expired());
    }
    auto owner = std::make_unique<Owner>();
    WeakWatchedRef<Owner> const weak = owner->lifetime.Ref(*owner);
    WeakWatchedRef<Base const> const weakBase = weak;
    WatchedRef<Owner> const locked = weak.Lock();
    locked->value = 5;
    EXPECT_TRUE(weakBase.Lock()->value == 5 && locked.Weak() == weak);
    owner.reset();
    EXPECT_TRUE(weak.Expired() && weakBase.Expired() && !locked && locked.Get() == nullptr);
    EXPECT_TRUE(weak.Lock().Get() == nullptr && WeakWatchedRef<Owner>().Lock().Get() == nullptr);
    {
        OperationStack stack;
        stack.Pop();
        stack.InsertOperation(Note("no level"), "dropped");
        stack.Push();
        stack.InsertOperation(Note("outer 1"), "o1");
        stack.InsertOperation([] { throw std::runtime_error("undo failed"); }, "PopAttrib");
        stack.InsertOperation(Note("outer 2"), "o2");
        stack.Push();
        stack.InsertOperation([&] { stack.Push(), stack.InsertOperation(Note("filed in pop"), "late"), stack.Pop(); }, "nested");
        stack.InsertOperation(Note("inner"), "i1");
        stack.InsertOperation([&] { stack.Pop(); }, "pops below");
        EXPECT_TRUE(stack.Depth() == 2 && stack.TopNames() == (std::vector<std::string>{"nested", "i1", "pops below"}));
        stack.Pop();
        EXPECT_EQ(stack.Depth(), 0u);
        stack.Push();
        stack.InsertOperation(Note("left open"), "left");
    }
    FailingScopes failing;
    EXPECT_NO_THROW({ Scoped<FailingScopes> scope(failing); });
    EXPECT_TRUE(Tev::Test::MatchesGolden("framework/undo-log.txt", Tev::Test::LogText(capture)));
}

// Where GLM would divide by zero or mislead, the types refuse: a point in
// the eye plane, a singular matrix, an empty pick region; quaternions of
// zero or non-finite parts are invalid and -q is the identity too; disjoint
// viewports meet in an empty one; an empty box adds nothing; inverted bounds
// clamp to the low one first.
TEST(Types, RefusalsAndEmptyValues) {
    Matrix4 const projection = Perspective(Angle::FromDegrees(45.0), 640.0 / 480.0, 1.0, 100.0);
    Viewport const viewport(10, 20, 640, 480);
    EXPECT_FALSE(Project({0.0, 0.0, 0.0}, Matrix4(), projection, viewport));
    EXPECT_FALSE(UnProject({1.0, 1.0, 0.5}, Matrix4::Scaling({1.0, 0.0, 1.0}), projection, viewport));
    EXPECT_TRUE(PickMatrix(Viewport(50, 25, 0, 4), viewport) == Matrix4() && PickMatrix({5, 5}, {3, -1}, viewport) == Matrix4());
    EXPECT_TRUE(Quaternion(-2.0, 0.0, 0.0, 0.0).IsIdentity() && Quaternion().Axis() == Vector3d(0.0, 0.0, 1.0));
    for (Quaternion const& invalid : {Quaternion(0, 0, 0, 0), Quaternion(NAN, 0, 0, 1), Quaternion(1, INFINITY, 0, 0)})
        EXPECT_FALSE(invalid.IsValid()) << invalid;
    EXPECT_EQ(Intersect(Viewport(0, 0, 100, 50), Viewport(50, 10, 100, 100)), Viewport(50, 10, 50, 40));
    EXPECT_EQ(Intersect(Viewport(0, 0, 100, 50), Viewport(200, 60, 10, 10)), Viewport(200, 60, 0, 0));
    BoundingBox box, empty;
    box.Extend(empty);
    EXPECT_TRUE(box.IsEmpty() && box.Extent() == Vector3d(0.0));
    box.Extend(empty), box.Extend(BoundingBox({-1.0, -2.0, 0.0}, {1.0, 4.0, 0.0})), box.Extend(empty);
    EXPECT_TRUE(box == BoundingBox({-1.0, -2.0, 0.0}, {1.0, 4.0, 0.0}) && box.Contains({0, 0, 0}) && !box.Contains({0, 0, 0.1}));
    MinMax_Base<unsigned> levels;
    EXPECT_TRUE(levels.IsEmpty() && levels.Range() == 0u && (levels.Extend(4), levels.Extend(1), levels.Range()) == 3u);
    EXPECT_TRUE(Math::Clamp(4.0, 5.0, 3.0) == 5.0 && Math::Clamp(6.0, 5.0, 3.0) == 3.0 && Math::Clamp(9.0, 1.0, 7.0) == 7.0);
}

// Paths normalise separators, "." and "..", climbing only while there is a
// part to climb over; a join normalises again; parts, parent, file name.
TEST(AssetPath, NormalisesJoinsAndSplits) {
    std::pair<AssetPath, char const*> const normal[] = {
        {"", ""}, {"/", ""}, {"/a//b/./c/", "a/b/c"}, {"a\\b\\c.glsl", "a/b/c.glsl"}, {"a/b/../c", "a/c"}, {"a/..", ""},
        {"../x", "../x"}, {"a/../../x", "../x"}, {"../../x/..", "../.."}, {"./.", ""}, {AssetPath("a") + AssetPath("../../b"), "../b"},
        {AssetPath() + AssetPath("a"), "a"}, {AssetPath("shaders/generic") + AssetPath("../common/light.glsl"), "shaders/common/light.glsl"}};
    for (auto const& [path, expected] : normal) EXPECT_EQ(path.str(), expected) << &path - &normal[0].first;
    EXPECT_TRUE(AssetPath("../x").LeavesRoot() && AssetPath("..").LeavesRoot() && !AssetPath("..x/y").LeavesRoot());
    AssetPath const file("shaders/generic/Generic.vert.glsl");
    EXPECT_EQ(file.Parts(), (std::vector<std::string>{"shaders", "generic", "Generic.vert.glsl"}));
    EXPECT_TRUE(file.Parent().str() == "shaders/generic" && file.FileName() == "Generic.vert.glsl");
    EXPECT_TRUE(AssetPath("top.glsl").Parent().IsRoot() && AssetPath().FileName().empty() && AssetPath().Parts().empty());
}

// A volume serves files, not folders, nothing outside its root, and a
// failed stream for what it lacks; memory refuses (and reports) bad names.
// Time stamps never repeat, however fast they are taken.
TEST(VolumesAndStamps, ServeFilesBelowTheirRootOnlyAndStampsIncrease) {
    MemoryVolume memory;
    memory.Add("./shaders/a.glsl", "line 1\nline 2\n"), memory.Add("shaders/b.glsl", ""), memory.Remove("shaders/b.glsl");
    Debug::CaptureScope capture;
    memory.Add("../secret.txt", "x"), memory.Add("", "x");
    EXPECT_EQ(Tev::Test::Assertions(capture).size(), 2u);
    EXPECT_EQ(memory.ReadText("shaders/x/../a.glsl"), std::string("line 1\nline 2\n"));
    for (char const* absent : {"shaders", "shaders/b.glsl", "../secret.txt", ""})
        EXPECT_TRUE(!memory.Exists(absent) && !memory.ReadText(absent) && memory.Open(absent)->fail()) << absent;
    std::vector<Core::TimeStamp> stamps(10000);
    for (Core::TimeStamp& stamp : stamps) stamp = Core::TimeStamp::Now();
    EXPECT_TRUE(std::ranges::adjacent_find(stamps, std::greater_equal<>()) == stamps.end());
}

}  // namespace
}  // namespace Tev::Chart::Utility
