#include "support/XServerTest.h"

#include "support/XDisplayGuard.h"
#include "support/XTestWindow.h"

namespace Tev::Test {

using namespace Chart::Ogl;

void KeepSystemDriverLoaded() {
    // Held by statics and never destroyed, on purpose.
    static DisplayHnd* const display = new DisplayHnd(GetRootDisplayHnd());
    static OsApi* const system = *display ? new OsApi(ApiSystem, *display) : nullptr;
    static bool const loaded = system && system->DescribePixelFormat(display->Handle(), 1, 0, nullptr) > 0;
    (void)loaded;
}

void XServerTest::SetUp() {
    _display = GetRootDisplayHnd();
    TEVOGL_SKIP_WITHOUT_DISPLAY(_display);
    KeepSystemDriverLoaded();
    _system = std::make_unique<OsApi>(ApiSystem, _display);
}

int XServerTest::FormatCount() const { return _system->DescribePixelFormat(_display.Handle(), 1, 0, nullptr); }

PixelFormatDescriptor XServerTest::Describe(int p_id) const {
    PixelFormatDescriptor descriptor{};
    _system->DescribePixelFormat(_display.Handle(), p_id, sizeof descriptor, &descriptor);
    return descriptor;
}

int XServerTest::VisualDepth(int p_id) const {
    return Tev::Test::VisualDepth(X(), WindowDevice::VisualFor(*_system, _display, p_id));
}

int XServerTest::Find(std::function<bool(int, Descriptor const&)> const& p_wanted) const {
    for (int id = 1; id <= FormatCount(); ++id)
        if (p_wanted(id, Describe(id))) return id;
    return 0;
}

}  // namespace Tev::Test
