// A window-system table whose pixel-format calls serve a scripted list of
// descriptors, for testing format choice without a display.
#pragma once

#include "ogl/device/OsApi.h"

#include <optional>
#include <vector>

namespace Tev::Test {

// Serves its formats through Table() for its lifetime. The table's entries
// are plain functions, so only one script is active at a time.
struct ScriptedFormats {
    using Descriptor = Chart::Ogl::PixelFormatDescriptor;

    // Format n (1-based) is p_formats[n-1]; a format left empty fails to
    // describe, as a driver's broken format does.
    explicit ScriptedFormats(std::vector<std::optional<Descriptor>> p_formats) : formats(std::move(p_formats)) { active = this; }
    ~ScriptedFormats() { active = nullptr; }

    // A table with DescribePixelFormat and ChoosePixelFormat, for the system
    // (IsSystem 1) or for Mesa (IsSystem 0).
    static Chart::Ogl::OsApi Table(bool p_system) {
        Chart::Ogl::OsApi api;
        api.IsSystem = p_system ? 1 : 0;
        // A caller that passes the wrong record size gets nothing, as from GDI.
        api.DescribePixelFormat = [](Chart::Ogl::DeviceHandle, int p_id, unsigned p_bytes, Descriptor* p_descriptor) {
            if (p_bytes != sizeof(Descriptor)) return 0;
            auto const& formats = (active->describedIds.push_back(p_id), active->formats);
            if (p_id < 1 || std::size_t(p_id) > formats.size() || !formats[p_id - 1]) return 0;
            if (p_descriptor) *p_descriptor = *formats[p_id - 1];
            return int(formats.size());
        };
        api.ChoosePixelFormat = [](Chart::Ogl::DeviceHandle, Descriptor const* p_descriptor) {
            return active->chooseRequests.push_back(*p_descriptor), active->chooseResult;
        };
        return api;
    }

    std::vector<std::optional<Descriptor>> formats;
    int chooseResult = 0;                    // what ChoosePixelFormat returns
    std::vector<Descriptor> chooseRequests;  // the descriptors it was asked with, in order
    std::vector<int> describedIds;           // the ids DescribePixelFormat was asked for, in order
    static inline ScriptedFormats* active = nullptr;
};

// An RGBA OpenGL format as a vendor driver describes one: window, bitmap,
// double-buffered, swap exchange, 8/8/8/8 colour, 24 depth, 8 stencil.
// Tests adjust the fields they are about.
inline Chart::Ogl::PixelFormatDescriptor DriverFormat() {
    namespace Pfd = Chart::Ogl::Pfd;
    Chart::Ogl::PixelFormatDescriptor pfd{};
    pfd.nSize = Pfd::Size, pfd.nVersion = Pfd::Version, pfd.iPixelType = Pfd::TypeRGBA, pfd.iLayerType = Pfd::MainPlane;
    pfd.dwFlags = Pfd::DrawToWindow | Pfd::DrawToBitmap | Pfd::SupportOpenGL | Pfd::DoubleBuffer | Pfd::SwapExchange;
    pfd.cColorBits = 32, pfd.cDepthBits = 24, pfd.cStencilBits = 8;
    pfd.cRedBits = pfd.cGreenBits = pfd.cBlueBits = pfd.cAlphaBits = 8;
    return pfd;
}

}  // namespace Tev::Test
