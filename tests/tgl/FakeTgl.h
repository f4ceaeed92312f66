// A facade on the recording fake driver, with the driver's answers scripted
// before the facade is built.
#pragma once

#include "ogl/api/DeviceFeatures.h"
#include "ogl/tgl/Tgl.h"
#include "support/FakeGl.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Tev::Test {

class FakeTgl {
public:
    // A GL 4.5 driver with eight lights and every limit set to a value of its
    // own (see Limit()), point sizes 1..64 and line widths 1..10.
    FakeTgl();

    // Script before Build().
    void SetVersion(std::string const& p_version);
    void SetDoubles(GLenum p_name, std::vector<double> p_values);
    // Entries the driver lacks ("glMemoryBarrier").
    void SetMissing(std::set<std::string> p_missing) { _missing = std::move(p_missing); }

    // Builds the facade; the calls made so far are dropped unless p_keepCalls.
    Chart::Ogl::Tgl& Build(Chart::Ogl::DeviceFeatureMask const& p_mask = Chart::Ogl::DeviceFeatureMask::PermitAll(),
                           bool p_keepCalls = false);
    void Destroy() { _tgl.reset(); }

    Chart::Ogl::Tgl& Get() { return *_tgl; }
    Chart::Ogl::Tgl* operator->() { return _tgl.get(); }
    FakeGl& Gl() { return _gl; }
    // The calls recorded since the last ClearCalls, as strings.
    std::vector<std::string> Calls() const { return _gl.CallStrings(); }
    std::vector<std::string> Calls(std::string const& p_name) const;
    void ClearCalls() { _gl.ClearCalls(); }

    // The scripted answer for a limit enumerant.
    static GLint Limit(GLenum p_name);

private:
    FakeGl _gl;
    std::map<GLenum, std::vector<double>> _doubles;
    std::set<std::string> _missing;
    std::unique_ptr<Chart::Ogl::Tgl> _tgl;
};

}  // namespace Tev::Test
