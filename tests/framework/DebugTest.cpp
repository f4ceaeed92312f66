// The debug logger: the exact form of check reports, the second evaluation
// of a failed condition, and the capture scope's sink handling.
#include "framework/debug/Debug.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Tev::Debug {
namespace {

struct Probe {
    int calls = 0;
    bool Fails() {
        ++calls;
        return false;
    }
    bool Passes() {
        ++calls;
        return true;
    }
};

// Runs the checks under test and gives the enclosing signature, so that the
// expected reports can be spelt out in full.
std::string RunChecks(Probe& p_probe, int p_value, void* p_pointer, bool& p_results) {
    bool const failed = ensure(p_probe.Fails());
    bool const passed = ensure(p_probe.Passes());
    chkrng(p_value, 1, 3);
    chkptr(p_pointer);
    p_results = !failed && passed;
    return TEV_SIGNATURE;
}

TEST(DebugLogger, ChecksReportConditionAndSignatureAndEvaluateFailuresTwice) {
    CaptureScope capture;
    Probe probe;
    bool results = false;
    std::string const signature = RunChecks(probe, 7, nullptr, results);

    EXPECT_TRUE(results);
    // Fails() twice (the report, then the second evaluation), Passes() once.
    EXPECT_EQ(probe.calls, 3);
    EXPECT_EQ(::Tev::Test::Assertions(capture), (std::vector<std::string>{
                                             "\"p_probe.Fails()\" - " + signature,
                                             "\"(p_value) >= (1) && (p_value) <= (3)\" - " + signature,
                                             "\"(p_pointer) != nullptr\" - " + signature,
                                         }));
    EXPECT_NE(signature.find("RunChecks(Probe&, int, void*, bool&)"), std::string::npos)
        << "the signature is the full one, parameters included: " << signature;
    EXPECT_EQ(signature.rfind("std::string ", 0), 0u) << "and the return type: " << signature;
    EXPECT_TRUE(::Tev::Test::HasAssertion(capture, "p_probe.Fails()"));
    EXPECT_FALSE(::Tev::Test::HasAssertion(capture, "p_probe.Passes()"));
}

TEST(DebugLogger, SentryAndExceptionHandlerTexts) {
    CaptureScope capture;
    sentry("unreachable");
    sentry("");
    std::string const signature = TEV_SIGNATURE;
    HandleException(std::make_exception_ptr(std::runtime_error("boom")), "void Place()");
    HandleException(std::make_exception_ptr(42), "void Other()");

    EXPECT_EQ(capture.Texts(Channel::Sentry), (std::vector<std::string>{"unreachable - " + signature, signature}));
    EXPECT_EQ(capture.Texts(Channel::Error), (std::vector<std::string>{
                                                 "Exception caught in void Place(): boom",
                                                 "Exception caught in void Other(): unknown exception",
                                             }));
}

TEST(DebugLogger, StreamsWriteOneEntryWithChannelAndCategory) {
    CaptureScope capture;
    dlog("ogl") << "lights = " << 8 << std::endl;
    derr() << "WARNING: " << 1.5;
    dout("GLSL") << "PARSE: a.glsl";

    auto const entries = capture.Entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].channel, Channel::Debug);
    EXPECT_EQ(entries[0].category, "ogl");
    EXPECT_EQ(entries[0].text, "lights = 8\n");
    EXPECT_EQ(entries[1].channel, Channel::Error);
    EXPECT_EQ(entries[1].category, "");
    EXPECT_EQ(entries[1].text, "WARNING: 1.5");
    EXPECT_EQ(entries[2].channel, Channel::Out);
    EXPECT_EQ(entries[2].category, "GLSL");
}

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
