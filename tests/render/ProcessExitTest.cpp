// A context that lives in a static is released by the exit handlers, after
// the main thread's thread_local objects are gone; releasing it then must
// not touch them. The sanitizer build catches any such use for certain; the
// plain one when the freed memory has been reused (it aborted a benchmark
// program at exit).
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace Tev::Chart::Ogl;

struct StaticContext {
    DeviceOSMesa device{4, 4};
    ContextOSMesa context{device};
    StaticContext() { context.MakeCurrent(device); }
    ~StaticContext() { context.DoneCurrent(); }
};

TEST(ProcessExit, StaticOSMesaContextIsReleasedCleanly) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            static StaticContext context;
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
