// Debug output against the recording fake: which function family is hooked
// and with which arguments, the inserted messages and group markers before
// and after setup, the log entries the callback writes and its text tables.
#include "support/LogCapture.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/OglDebug.h"
#include "ogl/tgl/Tgl.h"
#include "support/FakeGl.h"
#include "support/Golden.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

// The one place an OglDebug is made, over a fake driver whose insert
// functions keep the message texts (the fake records only pointers).
class OglDebugTest : public ::testing::Test {
protected:
    OglDebugTest() {
        for (char const* insert : {"glDebugMessageInsert", "glDebugMessageInsertARB"})
            fake.On(insert, [this](FakeCall const& c) -> FakeResult {
                return messages.emplace_back(static_cast<char const*>(c.Ptr(5)), std::size_t(c.Int(4))), std::int64_t{0};
            });
    }
    OglDebug& Make(ExtensionSet p_extensions) { return extensions = p_extensions, debug.emplace(extensions, api); }
    // The calls one a line, pointers as "null" or "ptr", inserts with their text.
    std::string CallText() const {
        std::ostringstream out;
        std::size_t message = 0;
        for (auto const& call : fake.Calls()) {
            out << call.name;
            for (auto const& arg : call.args)
                std::visit([&](auto v) { if constexpr (std::is_pointer_v<decltype(v)>) out << (v ? " ptr" : " null"); else out << ' ' << v; }, arg);
            out << (call.name.starts_with("glDebugMessageInsert") ? " \"" + messages.at(message++) + "\"" : "") << '\n';
        }
        return out.str();
    }
    FakeGl fake;
    OglApi api = fake.Api();
    ExtensionSet extensions;
    std::optional<OglDebug> debug;
    std::vector<std::string> messages;
};

// KHR_debug wins over ARB_debug_output; with neither only sentries trace.
// Nothing is sent before setup; setup enables synchronous output, then
// output itself, control (all, enabled) and the callback; a group's END
// comes when its last handle goes; groups are messages, not GL groups.
TEST_F(OglDebugTest, SetupHooksOneFamilyAndInsertsThroughIt) {
    std::string text;
    for (char const* family : {"GL_KHR_debug", "GL_KHR_debug GL_ARB_debug_output", "GL_ARB_debug_output", ""}) {
        OglDebug& debug = Make(ParseExtensions(family));
        Debug::CaptureScope capture;
        debug.InsertMessage(0x824C, 1, 0x9146, "early");
        text += "== " + std::string(family) + (debug.ScopedDebugGroup(3, "early") || debug.Enabled() ? " sent early" : "") + "\n";
        debug.SetupGLDebug();
        EXPECT_TRUE(debug.Enabled());
        debug.InsertMessage(0x824C, 42, 0x9146, "hello");
        debug.InsertMessage(0x8251, 7, 0x9148, "");
        auto group = debug.ScopedDebugGroup(9, "Shadow pass"), copy = group;
        group.reset();
        debug.InsertMessage(0x8251, 0, 0x9148, "copy still held");
        copy.reset();
        // A handle released after its OglDebug has gone sends nothing.
        auto orphan = debug.ScopedDebugGroup(5, "outlives its OglDebug");
        OglDebugTest::debug.reset();
        orphan.reset();
        text += CallText() + LogText(capture);
        fake.ClearCalls(), messages.clear();
    }
    EXPECT_TRUE(MatchesGolden("api/ogl-debug-setup.txt", text));
}

// The forms that take the facade: debug output reads the facade's
// extensions, features are decided from its version and extensions, and a
// writable weak handle to it expires with it.
TEST_F(OglDebugTest, FormsTakingTheFacade) {
    Debug::CaptureScope quiet;
    fake.SetExtensions({"GL_ARB_debug_output"});
    Chart::Utility::WeakWatchedRef<Tgl> handle;
    {
        Tgl tgl(api, DeviceFeatureMask::PermitAll());
        EXPECT_EQ(DeviceFeatures(api, tgl).AllSupported(), tgl.Features().AllSupported());
        fake.ClearCalls();
        OglDebug(tgl, api).SetupGLDebug();
        EXPECT_EQ(fake.Calls("glDebugMessageCallbackARB").size(), 1u);
        handle = tgl;
        EXPECT_EQ(handle.Lock().Get(), &tgl);
    }
    EXPECT_TRUE(handle.Expired());
}

// The callback writes one "ogldebug" error entry per message, its length
// counting (not the terminator), values outside the tables kept; the tables
// give "<unknown>" next to their ranges.
TEST_F(OglDebugTest, CallbackEntriesAndTextTables) {
    Make(ExtensionSet().set(KHR_debug)).SetupGLDebug();
    auto const callback = reinterpret_cast<GLDEBUGPROC>(const_cast<void*>(fake.Calls("glDebugMessageCallback").at(0).Ptr(0)));
    Debug::CaptureScope capture;
    callback(0x8246, 0x824C, 1280, 0x9146, -1, "GL_INVALID_ENUM in glEnable", nullptr);
    callback(0x8248, 0x824D, 0, 0x826B, 5, "shader compiled", nullptr);
    callback(0x8245, 0x8252, 4294967295u, 0x9149, 0, "", nullptr);
    std::string text = LogText(capture);
    for (GLenum v = 0x8245; v <= 0x824C; ++v) text += "source " + std::to_string(v) + " " + OglDebug::SourceText(v) + "\n";
    for (GLenum v : {0x824B, 0x824C, 0x824D, 0x824E, 0x824F, 0x8250, 0x8251, 0x8252, 0x8268, 0x8269, 0x826A, 0x826B})
        text += "type " + std::to_string(v) + " " + OglDebug::TypeText(v) + "\n";
    for (GLenum v : {0x9145, 0x9146, 0x9147, 0x9148, 0x9149, 0x826A, 0x826B, 0x826C})
        text += "severity " + std::to_string(v) + " " + OglDebug::SeverityText(v) + "\n";
    EXPECT_TRUE(MatchesGolden("api/ogl-debug-callback.txt", text));
}

}  // namespace
}  // namespace Tev::Test
