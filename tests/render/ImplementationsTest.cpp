// The two real implementations side by side: their lookups, and how a
// missing Mesa library is reported.
#include "ogl/api/ApiExceptions.h"
#include "ogl/api/GlImplementation.h"
#include "ogl/api/QueryProcAddress.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

TEST(Implementations, SystemAndMesaLookupsAreDistinctAndLogged) {
    Debug::CaptureScope capture;
    QueryProcAddress const system(ApiSystem);
    QueryProcAddress const mesa(ApiMesa);
    EXPECT_TRUE(bool(system));
    EXPECT_TRUE(bool(mesa));
    EXPECT_FALSE(system == mesa);
    EXPECT_TRUE(QueryProcAddress(ApiMesa) == mesa);
    auto const lines = capture.Texts(Debug::Channel::Debug);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].rfind("FUNC: glXGetProcAddressARB = 0x", 0), 0u) << lines[0];
    EXPECT_EQ(lines[1].rfind("FUNC: OSMesaGetProcAddress = 0x", 0), 0u) << lines[1];
    // The Mesa namespace has its own GL: its glClear is not the system's.
    EXPECT_NE(Detail::GlImplementation::Mesa().FindGl("glClear"), Detail::GlImplementation::System().FindGl("glClear"));
}

TEST(Implementations, MissingOSMesaNamesTheLibraryAndItsPackage) {
    Detail::ImplementationFiles files = Detail::ImplementationFiles::Mesa();
    files.gl = "libOSMesaMissing.so.8";
    try {
        Detail::GlImplementation const impl(files);
        FAIL() << "no exception";
    } catch (IncompleteOglImpl const& e) {
        std::string const message = e.what();
        EXPECT_EQ(message.rfind("libOSMesaMissing.so.8: Unable to load library (", 0), 0u) << message;
        EXPECT_NE(message.find("; install the Debian package libosmesa6"), std::string::npos) << message;
    }
}

}  // namespace
}  // namespace Tev::Test
