// Tests on the X server of $DISPLAY and the system window-system table
// there, skipped without a server (see XDisplayGuard.h).
#pragma once

#include "ogl/device/DisplayHnd.h"
#include "ogl/device/OsApi.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace Tev::Test {

// Opens one more connection to the X server and lists its GL configs on it,
// never to close it: the system GL driver then stays loaded for the life of
// the test process. LeakSanitizer can then name the driver's own one-time
// allocations (suppressed in tests/lsan.supp) instead of reporting them
// from a module that is gone. Does nothing without a server.
void KeepSystemDriverLoaded();

class XServerTest : public ::testing::Test {
protected:
    using Descriptor = Chart::Ogl::PixelFormatDescriptor;

    void SetUp() override;

    _XDisplay* X() const { return _display.XDisplay(); }
    int FormatCount() const;
    Descriptor Describe(int p_id) const;
    // The depth of the visual that format p_id draws windows through; 0 for
    // a format that draws to no window.
    int VisualDepth(int p_id) const;
    // The first format of the system table that p_wanted accepts; 0 for none.
    int Find(std::function<bool(int, Descriptor const&)> const& p_wanted) const;

    Chart::Ogl::DisplayHnd _display;
    std::unique_ptr<Chart::Ogl::OsApi> _system;
};

}  // namespace Tev::Test
