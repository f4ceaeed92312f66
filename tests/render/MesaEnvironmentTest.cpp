// The Mesa namespace has a libc of its own, with its own environ: it must
// follow the process's environment when setenv moves it after Mesa loaded.
#include "ogl/api/GlImplementation.h"
#include "ogl/device/DeviceContext.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <link.h>

#include <memory>
#include <string>
#include <vector>

namespace Tev::Test {
namespace {

using Chart::Ogl::Detail::GlImplementation;

// getenv as Mesa calls it: from the libc of the namespace Mesa lives in.
using GetEnv = char* (*)(char const*);
GetEnv NamespaceGetEnv(GlImplementation const& p_mesa) {
    Dl_info info{};
    link_map* library = nullptr;
    Lmid_t namespaceId = 0;
    if (!dladdr1(p_mesa.FindGl("glClear"), &info, reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP) ||
        dlinfo(library, RTLD_DI_LMID, &namespaceId) != 0)
        return nullptr;
    void* const libc = dlmopen(namespaceId, "libc.so.6", RTLD_NOW | RTLD_NOLOAD);
    return libc ? reinterpret_cast<GetEnv>(dlsym(libc, "getenv")) : nullptr;
}

TEST(MesaEnvironment, NamespaceSeesVariablesSetAfterItLoaded) {
    GlImplementation const& mesa = GlImplementation::Mesa();
    mesa.PrepareThread();
    GetEnv const getEnv = NamespaceGetEnv(mesa);
    ASSERT_NE(getEnv, nullptr);
    // Enough new variables that the process's environment array moves.
    std::vector<std::unique_ptr<ScopedEnv>> variables;
    for (int i = 0; i < 64; ++i)
        variables.push_back(std::make_unique<ScopedEnv>(("TEVOGL_TEST_MOVE_" + std::to_string(i)).c_str(), "moved"));
    mesa.PrepareThread();
    char const* const seen = getEnv("TEVOGL_TEST_MOVE_63");
    EXPECT_STREQ(seen ? seen : "(unset)", "moved");
    // And Mesa, which reads its variables on every context it makes, still
    // makes one.
    Chart::Ogl::DeviceFormatRequest request;
    request.devices = request.Offscreen;
    request.acceleration = request.Software;
    request.size = {4, 4};
    EXPECT_NO_THROW(Chart::Ogl::DeviceContext(Chart::Ogl::DisplayHnd::OSMesaDisplay, nullptr, request));
}

}  // namespace
}  // namespace Tev::Test
