// The table loader against test-only libraries that play incomplete or odd
// drivers: which entries may be missing, the exact failure messages, the
// versions and vendor it reads, and its three dumps.
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/OglApi.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Detail::GlImplementation;
using Detail::ImplementationFiles;

ImplementationFiles FaultFiles(bool p_isSystem, std::string const& p_gl = TEVOGL_FAULT_GL,
                               std::string const& p_glu = TEVOGL_FAULT_GL) {
    ImplementationFiles files;
    files.isSystem = p_isSystem;
    files.gl = p_gl;
    files.glPackage = "libgl1";
    files.glu = p_glu;
    files.gluPackage = "libglu1-mesa";
    files.procAddress = "tevoglFaultGetProcAddress";
    return files;
}

// The scripting functions of the fault library.
class FaultDriver {
public:
    explicit FaultDriver(bool p_isSystem = true) : impl(FaultFiles(p_isSystem)) {
        Missing("");
        Error(0);
        String(0x1F00, "Fault Vendor");
        String(0x1F01, "Fault Renderer");
        String(0x1F02, "2.1 Fault");
        String(0x1F03, "GL_ARB_fault");
        String(0x8B8C, "1.20");
        String(100801, "GLU_EXT_fault");
    }
    void Missing(char const* p_names) { Call<void (*)(char const*)>("tevoglFaultSetMissing")(p_names); }
    void String(GLenum p_name, char const* p_value) {
        Call<void (*)(GLenum, char const*)>("tevoglFaultSetString")(p_name, p_value);
    }
    void Error(GLenum p_error) { Call<void (*)(GLenum)>("tevoglFaultSetError")(p_error); }

    GlImplementation impl;

private:
    template <typename F>
    F Call(char const* p_name) {
        auto const function = reinterpret_cast<F>(impl.FindGl(p_name));
        if (!function) throw std::logic_error(std::string("fault library lacks ") + p_name);
        return function;
    }
};

// The message of the exception that filling a table from p_impl throws.
template <typename Exception = IncompleteOglImpl>
std::string MessageOf(GlImplementation const& p_impl) {
    try {
        OglApi const api(p_impl);
    } catch (Exception const& e) {
        return e.what();
    }
    return "(no exception)";
}

std::string MessageOf(FaultDriver& p_driver) { return MessageOf(p_driver.impl); }

TEST(OglApiLoader, OptionalEntriesMayBeMissingRequiredOnesMayNot) {
    Debug::CaptureScope capture;
    FaultDriver driver;
    driver.Missing("glDispatchCompute glDebugMessageCallbackARB");
    OglApi const api(driver.impl);
    EXPECT_TRUE(api.DispatchCompute == nullptr && api.DebugMessageCallbackARB == nullptr);
    EXPECT_TRUE(api.MemoryBarrierTGL && api.GenBuffers && api.GluProject);

    driver.Missing("glGenBuffers");
    EXPECT_EQ(MessageOf(driver), "glGenBuffers: Unable to load expected OpenGL extension");

    // Core framebuffer objects do not stand in for the EXT family.
    driver.Missing("glBindFramebufferEXT");
    EXPECT_EQ(MessageOf(driver), "glBindFramebufferEXT: Unable to load expected OpenGL extension");
}

TEST(OglApiLoader, MissingDirectEntriesNameTheFirstOne) {
    Debug::CaptureScope capture;
    GlImplementation const noGl(FaultFiles(true, TEVOGL_FAULT_EMPTY, TEVOGL_FAULT_GL));
    EXPECT_EQ(MessageOf(noGl), "glAlphaFunc: Incomplete OpenGL implementation");
    // Without glGetError nothing can be read; both reports hang on the one
    // test, for the GL version, the GLSL version and the vendor, and loading
    // goes on to the first missing entry.
    EXPECT_EQ(Assertions(capture).size(), 6u);
    EXPECT_TRUE(HasAssertion(capture, "getError && \"Unable to retrieve (m)glGetError function.\""));
    EXPECT_TRUE(HasAssertion(capture, "getError && \"Unable to retrieve (m)glGetString function.\""));

    GlImplementation const noGlu(FaultFiles(true, TEVOGL_FAULT_GL, TEVOGL_FAULT_EMPTY));
    EXPECT_EQ(MessageOf(noGlu), "gluOrtho2D: Incomplete OpenGL implementation");
}

TEST(OglApiLoader, MissingLibrariesAndLookupAreReportedNotCrashed) {
    Debug::CaptureScope capture;
    try {
        GlImplementation const impl(FaultFiles(false, TEVOGL_FAULT_GL, "libNoSuchGLU.so.1"));
        FAIL() << "no exception";
    } catch (IncompleteOglImpl const& e) {
        std::string const message = e.what();
        EXPECT_TRUE(message.starts_with("libNoSuchGLU.so.1: Unable to load library (") &&
                    message.find("; install the Debian package libglu1-mesa") != std::string::npos)
            << message;
    }

    ImplementationFiles files = FaultFiles(true);
    files.procAddress = "noSuchGetProcAddress";
    GlImplementation const noLookup(files);
    EXPECT_EQ(MessageOf<OSApiIncomplete>(noLookup), "noSuchGetProcAddress: Incomplete glX/wgl implementation");
    EXPECT_EQ(capture.Texts(Debug::Channel::Debug).back(), "FUNC: noSuchGetProcAddress = 0");
}

TEST(OglApiLoader, VendorIsReadOnlyFromTheSystemImplementation) {
    Debug::CaptureScope capture;
    FaultDriver system;
    auto vendorOf = [&](char const* p_vendor) {
        system.String(0x1F00, p_vendor);
        return OglApi(system.impl).Vendor;
    };
    EXPECT_EQ(vendorOf("ATI Technologies Inc."), AMD);
    EXPECT_EQ(vendorOf("Advanced Micro Devices, AMD"), AMD);
    EXPECT_EQ(vendorOf("NVIDIA Corporation, not AMD"), NVIDIA);
    EXPECT_EQ(vendorOf("nvidia corporation"), UNKNOWN);
    EXPECT_EQ(vendorOf(nullptr), UNKNOWN);
    auto const lines = capture.Texts(Debug::Channel::Debug);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "GL_VENDOR = NULL"), lines.end());

    FaultDriver mesa(false);
    mesa.String(0x1F00, "NVIDIA Corporation");
    OglApi const api(mesa.impl);
    EXPECT_TRUE(api.Vendor == MESA && !api.IsSystem);
}

TEST(OglApiLoader, VersionsAndDumps) {
    Debug::CaptureScope capture;
    FaultDriver driver;
    OglApi const api(driver.impl);
    EXPECT_TRUE(api.IsSystem);
    EXPECT_EQ(api.GlVersion, Chart::Utility::VersionNo(2, 1, 0));
    EXPECT_EQ(api.GlslVersion, Chart::Utility::VersionNo(1, 20, 0));
    EXPECT_EQ(api.GluVersion.Text(), "<unknown>");
    // A copy shares the entries, the lookup included.
    OglApi const copy = api;
    EXPECT_TRUE(copy.ProcAddress && copy.ProcAddress == api.ProcAddress && copy.GluProject == api.GluProject);
    EXPECT_FALSE(bool(QueryProcAddress()));

    auto const lines = capture.Texts(Debug::Channel::Debug);
    std::vector<std::string> const expected = {
        "FUNC: tevoglFaultGetProcAddress = " + lines.at(0).substr(lines.at(0).find("= ") + 2),
        "GL_VERSION = 2.1 Fault",
        "GL_SHADING_LANGUAGE_VERSION = 1.20",
        "GL_VENDOR = Fault Vendor",
        "GL:\n\tVersion\t:2.1 Fault\n\tVendor\t:Fault Vendor\n\tRenderer\t:Fault Renderer\n"
        "\tExtensions\t:GL_ARB_fault\n",
        "GLU:\n\tVersion\t:<unknown>\n\tExtensions\t:GLU_EXT_fault\n",
        "GLSL:\n\tVersion\t:1.20\n",
    };
    EXPECT_EQ(lines, expected);

    // A GL error while reading a version gives -1.-1.-1 "<invalid>" and
    // loading carries on; a null renderer prints empty.
    driver.Error(0x0500);
    driver.String(0x1F01, nullptr);
    capture.Sink().Clear();
    OglApi const broken(driver.impl);
    EXPECT_TRUE(broken.GlVersion == Chart::Utility::VersionNo(-1, -1, -1) && broken.GlVersion.Text() == "<invalid>");
    EXPECT_EQ(broken.GlslVersion, Chart::Utility::VersionNo(1, 20, 0));
    EXPECT_NE(capture.Texts(Debug::Channel::Debug).at(3).find("\tRenderer\t:\n"), std::string::npos);
}

}  // namespace
}  // namespace Tev::Test
