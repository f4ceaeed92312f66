// A facade on the recording fake, for resources that need one to be made
// live or to draw through.
#pragma once

#include "ogl/tgl/Tgl.h"
#include "support/FakeGl.h"

#include <memory>

namespace Tev::Test {

struct FakeFacade {
    FakeFacade() : api(gl.Api()) {
        Debug::CaptureScope quiet;  // the limits dump
        tgl = std::make_unique<Chart::Ogl::Tgl>(api, Chart::Ogl::DeviceFeatureMask::PermitAll());
        gl.ClearCalls();
    }

    FakeGl gl;
    Chart::Ogl::OglApi api;
    std::unique_ptr<Chart::Ogl::Tgl> tgl;
};

}  // namespace Tev::Test
