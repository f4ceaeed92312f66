// A window-system table whose pixel-format calls serve a scripted list of
// descriptors, for testing format choice without a display.
#pragma once

#include "ogl/device/OsApi.h"

#include <optional>
#include <vector>

namespace Tev::Test {

// Installs itself as the formats the fake table serves for its lifetime.
// The table's entries are plain functions, so only one script is active at
// a time.
class ScriptedFormats {
public:
    using Descriptor = Chart::Ogl::PixelFormatDescriptor;

    // Format n (1-based) is p_formats[n-1]; a format left empty fails to
    // describe, as a driver's broken format does.
    explicit ScriptedFormats(std::vector<std::optional<Descriptor>> p_formats);
    ScriptedFormats(ScriptedFormats const&) = delete;
    ScriptedFormats& operator=(ScriptedFormats const&) = delete;
    ~ScriptedFormats();

    // A table with DescribePixelFormat and ChoosePixelFormat, for the system
    // (IsSystem 1) or for Mesa (IsSystem 0).
    static Chart::Ogl::OsApi Table(bool p_system);

    // What ChoosePixelFormat returns.
    int chooseResult = 0;
    // The descriptors ChoosePixelFormat was asked with, in order.
    std::vector<Descriptor> chooseRequests;
    // The ids DescribePixelFormat was asked for, in order.
    std::vector<int> describedIds;

    std::vector<std::optional<Descriptor>> formats;
};

// An RGBA OpenGL format as a vendor driver describes one: window, bitmap,
// double-buffered, swap exchange, 8/8/8/8 colour, 24 depth, 8 stencil.
// Tests adjust the fields they are about.
Chart::Ogl::PixelFormatDescriptor DriverFormat();

}  // namespace Tev::Test
