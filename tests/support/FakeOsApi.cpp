#include "support/FakeOsApi.h"

#include <gtest/gtest.h>

namespace Tev::Test {

namespace Ogl = Chart::Ogl;

namespace {

ScriptedFormats* active = nullptr;

// A caller that passes the wrong record size gets nothing, as from GDI.
int Describe(Ogl::DeviceHandle, int p_format, unsigned p_bytes, Ogl::PixelFormatDescriptor* p_descriptor) {
    if (!active || p_bytes != sizeof(Ogl::PixelFormatDescriptor)) return 0;
    active->describedIds.push_back(p_format);
    auto const& formats = active->formats;
    if (p_format < 1 || std::size_t(p_format) > formats.size() || !formats[p_format - 1]) return 0;
    if (p_descriptor) *p_descriptor = *formats[p_format - 1];
    return static_cast<int>(formats.size());
}

int Choose(Ogl::DeviceHandle, Ogl::PixelFormatDescriptor const* p_descriptor) {
    if (!active) return 0;
    active->chooseRequests.push_back(*p_descriptor);
    return active->chooseResult;
}

}  // namespace

ScriptedFormats::ScriptedFormats(std::vector<std::optional<Descriptor>> p_formats)
    : formats(std::move(p_formats)) {
    EXPECT_EQ(active, nullptr) << "one scripted format list at a time";
    active = this;
}

ScriptedFormats::~ScriptedFormats() { active = nullptr; }

Ogl::OsApi ScriptedFormats::Table(bool p_system) {
    Ogl::OsApi api;
    api.IsSystem = p_system ? 1 : 0;
    api.DescribePixelFormat = &Describe;
    api.ChoosePixelFormat = &Choose;
    return api;
}

Ogl::PixelFormatDescriptor DriverFormat() {
    namespace Pfd = Ogl::Pfd;
    Ogl::PixelFormatDescriptor pfd{};
    pfd.nSize = Pfd::Size;
    pfd.nVersion = Pfd::Version;
    pfd.dwFlags = Pfd::DrawToWindow | Pfd::DrawToBitmap | Pfd::SupportOpenGL | Pfd::DoubleBuffer | Pfd::SwapExchange;
    pfd.iPixelType = Pfd::TypeRGBA;
    pfd.cColorBits = 32;
    pfd.cRedBits = pfd.cGreenBits = pfd.cBlueBits = pfd.cAlphaBits = 8;
    pfd.cDepthBits = 24;
    pfd.cStencilBits = 8;
    pfd.iLayerType = Pfd::MainPlane;
    return pfd;
}

}  // namespace Tev::Test
