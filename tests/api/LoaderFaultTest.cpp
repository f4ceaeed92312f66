// The table loader against test-only libraries that play incomplete or odd
// drivers: which entries count as present, the exact failure messages, the
// versions and vendor it reads, and its three dumps.
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/OglApi.h"
#include "support/Golden.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <regex>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Detail::GlImplementation;
using Detail::ImplementationFiles;

ImplementationFiles FaultFiles(bool p_isSystem, std::string const& p_gl = TEVOGL_FAULT_GL,
                               std::string const& p_glu = TEVOGL_FAULT_GL) {
    return {p_isSystem, p_gl, "libgl1", p_glu, "libglu1-mesa", "tevoglFaultGetProcAddress", false, {}, {}, {}, {}, {}, {}};
}

// The scripting functions of the fault library. It starts as a GL 4.5
// driver with the EXT framebuffer objects and ARB debug output, whose lookup
// answers null for names it does not know.
struct FaultDriver {
    explicit FaultDriver(bool p_isSystem = true) : impl(FaultFiles(p_isSystem)) {
        Missing(""), StubEveryName(false), Error(0);
        for (auto const& [name, value] : std::map<GLenum, char const*>{
                 {0x1F00, "Fault Vendor"}, {0x1F01, "Fault Renderer"}, {0x1F02, "4.5 Fault"},
                 {0x1F03, "GL_EXT_framebuffer_object GL_ARB_debug_output"}, {0x8B8C, "1.20"}, {100801, "GLU_EXT_fault"}})
            String(name, value);
    }
    void Missing(char const* p_names) { Call<void (*)(char const*)>("tevoglFaultSetMissing")(p_names); }
    void StubEveryName(bool p_on) { Call<void (*)(int)>("tevoglFaultSetStubEveryName")(p_on); }
    void String(GLenum p_name, char const* p_value) { Call<void (*)(GLenum, char const*)>("tevoglFaultSetString")(p_name, p_value); }
    void Error(GLenum p_error) { Call<void (*)(GLenum)>("tevoglFaultSetError")(p_error); }
    template <typename F>
    F Call(char const* p_name) { return reinterpret_cast<F>(impl.FindGl(p_name)); }
    // The message of the exception that filling a table throws.
    template <typename Exception = IncompleteOglImpl>
    static std::string MessageOf(GlImplementation const& p_impl) {
        try {
            OglApi const api(p_impl);
        } catch (Exception const& e) {
            return e.what();
        }
        return "(no exception)";
    }
    std::string MessageOf() { return MessageOf(impl); }

    GlImplementation impl;
};

TEST(OglApiLoader, OptionalEntriesMayBeMissingRequiredOnesMayNot) {
    Debug::CaptureScope capture;
    FaultDriver driver;
    driver.Missing("glDispatchCompute glDebugMessageCallbackARB");
    OglApi const api(driver.impl);
    EXPECT_TRUE(api.DispatchCompute == nullptr && api.DebugMessageCallbackARB == nullptr);
    EXPECT_TRUE(api.MemoryBarrierTGL && api.GenBuffers && api.GluProject);

    driver.Missing("glGenBuffers");
    EXPECT_EQ(driver.MessageOf(), "glGenBuffers: Unable to load expected OpenGL extension");
    // Core framebuffer objects do not stand in for the EXT family.
    driver.Missing("glBindFramebufferEXT");
    EXPECT_EQ(driver.MessageOf(), "glBindFramebufferEXT: Unable to load expected OpenGL extension");
}

// A lookup that, like GLVND's dispatch layer, answers every name: an entry
// counts only where the version or an advertised extension provides it, so
// features the driver lacks come out as they would with null entries.
TEST(OglApiLoader, AStubForEveryNameCountsOnlyWhatTheContextProvides) {
    Debug::CaptureScope capture;
    FaultDriver driver;
    driver.StubEveryName(true);
    driver.String(0x1F02, "3.3 Fault");
    driver.String(0x1F03, "GL_EXT_framebuffer_object GL_ARB_compatibility");
    OglApi const api(driver.impl);
    EXPECT_TRUE(!api.DispatchCompute && !api.MemoryBarrierTGL && !api.DrawArraysInstancedBaseInstance &&
                !api.DrawElementsInstancedBaseInstance && !api.DebugMessageCallback && !api.DebugMessageCallbackARB);
    EXPECT_TRUE(api.GenVertexArrays && api.BindFramebuffer && api.VertexAttribDivisor && api.BindFramebufferEXT);
    capture.Sink().Clear();
    auto const features = DeviceFeatures::Determine(api, api.GlVersion, ParseExtensions("GL_ARB_compatibility"));
    EXPECT_TRUE(!features.Supported(DeviceFeatures::OpenGL_ComputeShader) &&
                !features.Supported(DeviceFeatures::OpenGL_GeometryInstancingWithOffset) &&
                features.Supported(DeviceFeatures::OpenGL_GeometryShader));
    EXPECT_EQ(LogText(capture), "");  // not advertised: off without a word

    driver.String(0x1F03, "GL_ARB_framebuffer_object");
    EXPECT_EQ(driver.MessageOf(), "glBindFramebufferEXT: Unable to load expected OpenGL extension");
    // glMapBufferRange came with GL 3.0: below it the table cannot be filled.
    driver.String(0x1F02, "2.1 Fault");
    EXPECT_EQ(driver.MessageOf(), "glMapBufferRange: Unable to load expected OpenGL extension");

    // An advertised feature whose entry the driver really lacks is reported.
    driver.StubEveryName(false);
    driver.String(0x1F02, "4.3 Fault");
    driver.String(0x1F03, "GL_EXT_framebuffer_object");
    driver.Missing("glDispatchCompute");
    OglApi const lacking(driver.impl);
    capture.Sink().Clear();
    DeviceFeatures::Determine(lacking, lacking.GlVersion, {});
    EXPECT_EQ(LogText(capture), "cout [ogl]: WARNING: p_gl.DispatchCompute - NOT FOUND!\n"
                                "cout [ogl]: ERROR: Compute Shader advertised but function addresses not available (listed above).\n"
                                "cout [ogl]: ERROR: OpenGL_ComputeShader - DISABLED\n");
}

TEST(OglApiLoader, MissingLibrariesAndEntriesAreReportedNotCrashed) {
    Debug::CaptureScope capture;
    FaultDriver const reset;
    GlImplementation const noGl(FaultFiles(true, TEVOGL_FAULT_EMPTY, TEVOGL_FAULT_GL));
    EXPECT_EQ(FaultDriver::MessageOf(noGl), "glAlphaFunc: Incomplete OpenGL implementation");
    // Without glGetError nothing can be read; both reports hang on the one
    // test, for the GL version, the GLSL version, the vendor and the
    // extensions, and loading goes on to the first missing entry.
    EXPECT_EQ(Assertions(capture).size(), 8u);
    EXPECT_TRUE(HasAssertion(capture, "getError && \"Unable to retrieve (m)glGetError function.\""));
    EXPECT_TRUE(HasAssertion(capture, "getError && \"Unable to retrieve (m)glGetString function.\""));
    GlImplementation const noGlu(FaultFiles(true, TEVOGL_FAULT_GL, TEVOGL_FAULT_EMPTY));
    EXPECT_EQ(FaultDriver::MessageOf(noGlu), "gluOrtho2D: Incomplete OpenGL implementation");

    try {
        GlImplementation const impl(FaultFiles(false, TEVOGL_FAULT_GL, "libNoSuchGLU.so.1"));
        ADD_FAILURE() << "no exception";
    } catch (IncompleteOglImpl const& e) {
        EXPECT_TRUE(std::regex_match(e.what(), std::regex(R"(libNoSuchGLU\.so\.1: Unable to load library \(.*; install the Debian package libglu1-mesa.*)")))
            << e.what();
    }
    ImplementationFiles files = FaultFiles(true);
    files.procAddress = "noSuchGetProcAddress";
    EXPECT_EQ(FaultDriver::MessageOf<OSApiIncomplete>(GlImplementation(files)),
              "noSuchGetProcAddress: Incomplete glX/wgl implementation");
    EXPECT_EQ(capture.Texts(Debug::Channel::Debug).back(), "FUNC: noSuchGetProcAddress = 0");
}

// The vendor rows, the versions and the three dumps, then a driver whose
// version cannot be read and whose renderer is null: one golden log.
TEST(OglApiLoader, VendorVersionsAndDumps) {
    Debug::CaptureScope capture;
    FaultDriver system;
    for (char const* vendor : {"ATI Technologies Inc.", "Advanced Micro Devices, AMD", "NVIDIA Corporation, not AMD",
                               "nvidia corporation", static_cast<char const*>(nullptr)}) {
        system.String(0x1F00, vendor);
        Debug::dlog() << "Vendor = " << OglApi(system.impl).Vendor;
    }
    system.String(0x1F00, "Fault Vendor");
    OglApi const api(system.impl);
    Debug::dlog() << "IsSystem = " << api.IsSystem << ", GL " << api.GlVersion << ", GLSL " << api.GlslVersion
                  << ", GLU " << api.GluVersion;
    // A copy shares the entries, the lookup included.
    OglApi const copy = api;
    EXPECT_TRUE(copy.ProcAddress && copy.ProcAddress == api.ProcAddress && copy.GluProject == api.GluProject);
    EXPECT_FALSE(bool(QueryProcAddress()));

    system.Error(0x0500);
    system.String(0x1F01, nullptr);
    OglApi const broken(system.impl);
    EXPECT_TRUE(broken.GlVersion == Chart::Utility::VersionNo(-1, -1, -1) && broken.GlVersion.Text() == "<invalid>");

    FaultDriver mesa(false);
    mesa.String(0x1F00, "NVIDIA Corporation");
    OglApi const mesaApi(mesa.impl);
    Debug::dlog() << "Mesa: IsSystem = " << mesaApi.IsSystem << ", Vendor = " << mesaApi.Vendor;
    std::string const log = std::regex_replace(LogText(capture), std::regex("= 0x[0-9a-f]+"), "= <address>");
    EXPECT_TRUE(MatchesGolden("api/loader-log.txt", log));
}

}  // namespace
}  // namespace Tev::Test
