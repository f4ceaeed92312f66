// Tests that need an X server skip without one, except under the test
// command, which starts Xvfb and sets TEVOGL_REQUIRE_DISPLAY: there a
// missing display is a failure, so a broken server cannot pass as skips.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#define TEVOGL_SKIP_WITHOUT_DISPLAY(p_display)                                       \
    do {                                                                             \
        if (!(p_display)) {                                                          \
            if (std::getenv("TEVOGL_REQUIRE_DISPLAY")) FAIL() << "no X display";      \
            GTEST_SKIP() << "no X display: run under xvfb-run";                      \
        }                                                                            \
    } while (false)
