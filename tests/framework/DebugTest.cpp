// The debug logger: the exact form of check reports, the second evaluation
// of a failed condition, and the capture scope's sink handling.
#include "framework/debug/Debug.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

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
    // The full signature: return type and parameters included.
    EXPECT_EQ(signature.rfind("std::string ", 0), 0u) << signature;
    EXPECT_NE(signature.find("RunChecks(Probe&, int, void*, bool&)"), std::string::npos) << signature;
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

    std::vector<std::tuple<Channel, std::string, std::string>> entries;
    for (auto const& e : capture.Entries()) entries.emplace_back(e.channel, e.category, e.text);
    EXPECT_EQ(entries, (decltype(entries){{Channel::Debug, "ogl", "lights = 8\n"},
                                          {Channel::Error, "", "WARNING: 1.5"},
                                          {Channel::Out, "GLSL", "PARSE: a.glsl"}}));
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
