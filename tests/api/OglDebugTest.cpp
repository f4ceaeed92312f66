// Debug output against the recording fake: which function family is hooked
// and with which arguments, the log entry the callback writes, and the
// inserted messages and group markers before and after setup.
#include "ogl/api/OglDebug.h"
#include "support/FakeGl.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;
using Lines = std::vector<std::string>;

constexpr GLenum SourceApi = 0x8246;
constexpr GLenum SourceApplication = 0x824A;
constexpr GLenum TypeError = 0x824C;
constexpr GLenum TypeOther = 0x8251;
constexpr GLenum SeverityHigh = 0x9146;
constexpr GLenum SeverityLow = 0x9148;

ExtensionSet Extensions(std::initializer_list<TglExtensions> p_extensions) {
    ExtensionSet set;
    for (auto const e : p_extensions) set.set(e);
    return set;
}

// A fake driver with the given extensions whose insert functions keep the
// message texts, which the fake records only as pointers.
class DebugDriver {
public:
    explicit DebugDriver(ExtensionSet p_extensions) : extensions(p_extensions), api(fake.Api()), debug(extensions, api) {
        for (char const* insert : {"glDebugMessageInsert", "glDebugMessageInsertARB"})
            fake.On(insert, [this](FakeCall const& c) -> FakeResult {
                inserted.push_back(Describe(c) + " \"" +
                                   std::string(static_cast<char const*>(c.Ptr(5)), std::size_t(c.Int(4))) + "\"");
                return std::int64_t{0};
            });
    }

    // "glDebugMessageInsert 33354 33361 7 37192": name, source, type, id, severity.
    static std::string Describe(FakeCall const& p_call) {
        return p_call.name + " " + std::to_string(p_call.Int(0)) + " " + std::to_string(p_call.Int(1)) + " " +
               std::to_string(p_call.Int(2)) + " " + std::to_string(p_call.Int(3));
    }

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (auto const& c : fake.Calls()) names.push_back(c.name);
        return names;
    }

    FakeGl fake;
    ExtensionSet extensions;
    OglApi api;
    OglDebug debug;
    Lines inserted;
};

// The callback a family registered, checked for the arguments around it.
GLDEBUGPROC RegisteredCallback(FakeGl const& p_fake, std::string const& p_family) {
    auto const control = p_fake.Calls("glDebugMessageControl" + p_family);
    auto const callback = p_fake.Calls("glDebugMessageCallback" + p_family);
    if (control.size() != 1 || callback.size() != 1) {
        ADD_FAILURE() << "expected one control and one callback call";
        return nullptr;
    }
    // Every source, type and severity (don't care), no id list, enabled.
    EXPECT_EQ(control[0].ToString(), "glDebugMessageControl" + p_family + "(4352, 4352, 4352, 0, 0, 1)");
    EXPECT_EQ(callback[0].Ptr(1), nullptr);
    return reinterpret_cast<GLDEBUGPROC>(const_cast<void*>(callback[0].Ptr(0)));
}

// KHR_debug wins over ARB_debug_output where both are offered.
TEST(OglDebug, SetupHooksOneFamilyAndInsertsThroughIt) {
    struct Row {
        ExtensionSet extensions;
        std::string family;
    } const rows[] = {{Extensions({KHR_debug}), ""},
                      {Extensions({KHR_debug, ARB_debug_output}), ""},
                      {Extensions({ARB_debug_output}), "ARB"}};
    for (Row const& row : rows) {
        SCOPED_TRACE(row.family);
        DebugDriver driver(row.extensions);
        Debug::CaptureScope capture;
        EXPECT_FALSE(driver.debug.Enabled());
        driver.debug.SetupGLDebug();
        EXPECT_TRUE(driver.debug.Enabled());
        // Synchronous output first, then output itself, which contexts
        // without the debug flag start with switched off.
        EXPECT_EQ(driver.Names(), (Lines{"glEnable", "glEnable", "glDebugMessageControl" + row.family,
                                         "glDebugMessageCallback" + row.family}));
        EXPECT_EQ(driver.fake.Calls()[0].Int(0), 0x8242);
        EXPECT_EQ(driver.fake.Calls()[1].Int(0), 0x92E0);
        EXPECT_NE(RegisteredCallback(driver.fake, row.family), nullptr);
        EXPECT_TRUE(capture.Entries().empty());

        driver.debug.InsertMessage(TypeError, 42, SeverityHigh, "hello");
        driver.debug.InsertMessage(TypeOther, 7, SeverityLow, "");
        std::string const insert = "glDebugMessageInsert" + row.family;
        EXPECT_EQ(driver.inserted, (Lines{insert + " 33354 33356 42 37190 \"hello\"", insert + " 33354 33361 7 37192 \"\""}));
    }
}

TEST(OglDebug, WithoutEitherExtensionOnlyTraces) {
    DebugDriver driver(Extensions({}));
    Debug::CaptureScope capture;
    driver.debug.SetupGLDebug();
    EXPECT_TRUE(driver.debug.Enabled());
    driver.debug.InsertMessage(TypeError, 1, SeverityHigh, "lost");
    auto const group = driver.debug.ScopedDebugGroup(2, "group");
    EXPECT_TRUE(driver.fake.Calls().empty());
    EXPECT_EQ(capture.Texts(Channel::Sentry),
              (Lines{"void Tev::Chart::Ogl::OglDebug::SetupGLDebug()",
                     "void Tev::Chart::Ogl::OglDebug::InsertMessage(unsigned int, unsigned int, unsigned int, const "
                     "std::string&)",
                     "void Tev::Chart::Ogl::OglDebug::InsertMessage(unsigned int, unsigned int, unsigned int, const "
                     "std::string&)"}));
    EXPECT_TRUE(Assertions(capture).empty());
}

TEST(OglDebug, CallbackWritesOneErrorEntryPerMessage) {
    DebugDriver driver(Extensions({KHR_debug}));
    driver.debug.SetupGLDebug();
    GLDEBUGPROC const callback = RegisteredCallback(driver.fake, "");
    ASSERT_NE(callback, nullptr);

    Debug::CaptureScope capture;
    callback(SourceApi, TypeError, 1280, SeverityHigh, -1, "GL_INVALID_ENUM in glEnable", nullptr);
    // The length counts, not the terminator.
    callback(0x8248, 0x824D, 0, 0x826B, 5, "shader compiled", nullptr);
    // Values outside the tables, severity included, are not dropped.
    callback(0x8245, 0x8252, 4294967295u, 0x9149, 0, "", nullptr);
    for (auto const& entry : capture.Entries())
        EXPECT_TRUE(entry.channel == Channel::Error && entry.category == "ogldebug") << entry.text;
    EXPECT_EQ(capture.Texts(Channel::Error),
              (Lines{" --\nType: Error; Source: API; ID: 1280; Severity: High\nGL_INVALID_ENUM in glEnable\n",
                     " --\nType: Deprecated Behaviour; Source: Shader Compiler; ID: 0; Severity: Notification\nshade\n",
                     " --\nType: <unknown>; Source: <unknown>; ID: 4294967295; Severity: <unknown>\n\n"}));
}

TEST(OglDebug, TextTablesAndTheirNeighbours) {
    Lines sources, types, severities;
    for (GLenum v = 0x8245; v <= 0x824C; ++v) sources.push_back(OglDebug::SourceText(v));
    for (GLenum v : {0x824B, 0x824C, 0x824D, 0x824E, 0x824F, 0x8250, 0x8251, 0x8252, 0x8268, 0x8269, 0x826A, 0x826B})
        types.push_back(OglDebug::TypeText(v));
    for (GLenum v : {0x9145, 0x9146, 0x9147, 0x9148, 0x9149, 0x826A, 0x826B, 0x826C})
        severities.push_back(OglDebug::SeverityText(v));
    EXPECT_EQ(sources, (Lines{"<unknown>", "API", "Window System", "Shader Compiler", "Third Party", "Application",
                              "Other", "<unknown>"}));
    EXPECT_EQ(types, (Lines{"<unknown>", "Error", "Deprecated Behaviour", "Undefined Behaviour", "Portability Issue",
                            "Performance Issue", "Other", "<unknown>", "<unknown>", "Push Group", "Pop Group",
                            "<unknown>"}));
    EXPECT_EQ(severities,
              (Lines{"<unknown>", "High", "Medium", "Low", "<unknown>", "<unknown>", "Notification", "<unknown>"}));
}

TEST(OglDebug, NothingBeforeSetupThenGroupsEndWithTheLastHandle) {
    DebugDriver driver(Extensions({KHR_debug}));
    {
        Debug::CaptureScope capture;
        driver.debug.InsertMessage(TypeError, 1, SeverityHigh, "early");
        EXPECT_FALSE(driver.debug.ScopedDebugGroup(3, "early group"));
        EXPECT_TRUE(driver.fake.Calls().empty()) << "nothing before setup";
        EXPECT_TRUE(capture.Entries().empty());
    }
    driver.debug.SetupGLDebug();
    auto group = driver.debug.ScopedDebugGroup(9, "Shadow pass");
    ASSERT_TRUE(group);
    EXPECT_EQ(driver.inserted, Lines{"glDebugMessageInsert 33354 33361 9 37192 \"BEGIN: Shadow pass\""});
    auto copy = group;
    group.reset();
    EXPECT_EQ(driver.inserted.size(), 1u);
    copy.reset();
    EXPECT_EQ(driver.inserted, (Lines{"glDebugMessageInsert 33354 33361 9 37192 \"BEGIN: Shadow pass\"",
                                      "glDebugMessageInsert 33354 33361 9 37192 \"END: Shadow pass\""}));
    // Groups are marked by messages, never by GL debug groups.
    EXPECT_TRUE(driver.fake.Calls("glPushDebugGroup").empty() && driver.fake.Calls("glPopDebugGroup").empty());
}

}  // namespace
}  // namespace Tev::Test
