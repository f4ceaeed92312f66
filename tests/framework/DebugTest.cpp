// The logger: the exact form of check, sentry and exception reports, the
// second evaluation of a failed condition, the streams' channels and
// categories, and the capture scope's sinks.
#include "framework/LogText.h"
#include "framework/debug/Debug.h"
#include "support/Golden.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tev::Debug {
namespace {

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
// condition runs twice, a passing one once.
TEST(DebugLogger, ReportTextsAndTheSecondEvaluation) {
    CaptureScope capture;
    EXPECT_TRUE(RunChecks(7, nullptr));
    EXPECT_EQ(probes, 3);
    HandleException(std::make_exception_ptr(std::runtime_error("boom")), "void Place()");
    HandleException(std::make_exception_ptr(42), "void Other()");
    dlog("ogl") << "lights = " << 8 << std::endl;
    derr() << "WARNING: " << 1.5;
    dout("GLSL") << "PARSE: a.glsl";
    EXPECT_TRUE(::Tev::Test::MatchesGolden("framework/debug-log.txt", ::Tev::Test::LogText(capture)));
}

// Capture scopes nest, each seeing only its own entries, and put the
// previous sink back.
TEST(DebugLogger, CaptureScopesNestAndRestoreThePreviousSink) {
    auto const original = GetSink();
    {
        CaptureScope outer;
        dlog() << "one";
        {
            CaptureScope inner;
            dlog() << "two";
            EXPECT_EQ(inner.Texts(Channel::Debug), std::vector<std::string>{"two"});
        }
        dlog() << "three";
        EXPECT_EQ(outer.Texts(Channel::Debug), (std::vector<std::string>{"one", "three"}));
        outer.Sink().Clear();
        EXPECT_TRUE(outer.Entries().empty());
    }
    EXPECT_EQ(GetSink(), original);
}

}  // namespace
}  // namespace Tev::Debug
