// A facade on the recording fake driver, with the driver's answers scripted
// before Build(), and a transcript of what each step sent to GL and logged,
// for comparison with a golden file.
#pragma once

#include "framework/debug/Debug.h"
#include "ogl/tgl/Tgl.h"
#include "support/FakeGl.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <map>
#include <memory>
#include <regex>
#include <sstream>

namespace Tev::Test {

class FakeTgl {
public:
    // GL 4.5 with eight lights and a value of its own for every limit, so
    // that a field read from the wrong query shows; points 1..64, lines 1..10.
    // glGetDoublev answers from doubles.
    FakeTgl() {
        for (auto const& [name, value] : std::map<GLenum, GLint>{
                 {GL_MAX_LIGHTS, 8}, {GL_STENCIL_BITS, 8}, {GL_MAX_CLIP_PLANES, 6}, {GL_MAX_TEXTURE_COORDS, 10},
                 {GL_MAX_TEXTURE_SIZE, 16384}, {GL_MAX_TEXTURE_UNITS, 4}, {GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS, 16},
                 {GL_MAX_TEXTURE_BUFFER_SIZE, 65536}, {GL_MAX_GEOMETRY_TEXTURE_IMAGE_UNITS, 17},
                 {GL_MAX_TEXTURE_IMAGE_UNITS, 18}, {GL_MAX_COMPUTE_TEXTURE_IMAGE_UNITS, 19},
                 {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 96}, {GL_MAX_NAME_STACK_DEPTH, 64}})
            gl.SetInteger(name, {value});
        gl.SetInteger(GL_MAX_VIEWPORT_DIMS, {8192, 4096});
        doubles = {{GL_POINT_SIZE_RANGE, {1, 64}}, {GL_ALIASED_POINT_SIZE_RANGE, {1, 64}},
                   {GL_LINE_WIDTH_RANGE, {1, 10}}, {GL_ALIASED_LINE_WIDTH_RANGE, {1, 10}}};
        gl.On("glGetDoublev", [this](FakeCall const& p_call) -> FakeResult {
            auto const& values = doubles[GLenum(p_call.Int(0))];
            return std::copy(values.begin(), values.end(), static_cast<double*>(const_cast<void*>(p_call.Ptr(1)))), std::int64_t{0};
        });
    }

    // Builds the facade (replacing one built before); the calls and logs
    // made so far are dropped unless p_keep.
    Chart::Ogl::Tgl& Build(Chart::Ogl::DeviceFeatureMask const& p_mask = Chart::Ogl::DeviceFeatureMask::PermitAll(),
                           bool p_keep = false) {
        Chart::Ogl::OglApi api = gl.Api();
        api.Vendor = vendor;
        tgl = std::make_unique<Chart::Ogl::Tgl>(api, p_mask);
        if (!p_keep) gl.ClearCalls(), capture.Sink().Clear();
        return *tgl;
    }
    Chart::Ogl::Tgl* operator->() { return tgl.get(); }

    // Shows p_pointer in the transcript as "&p_name".
    void Name(void const* p_pointer, std::string const& p_name) {
        std::ostringstream os;
        os << p_pointer;
        _names.emplace_back(std::regex(os.str() + "\\b"), "&" + p_name);
    }
    // Ends a step: its label, then the calls and the log entries since the
    // step before, one a line, with other pointers shown as "&" and resource
    // numbers (which depend on what the process made before) as "n".
    void Step(std::string const& p_label) {
        static std::regex const pointer("0x[0-9a-f]+"), resource("TglResource\\(-?[0-9]+\\)");
        _transcript << "== " << p_label << '\n';
        for (std::string call : gl.CallStrings()) {
            for (auto const& [named, name] : _names) call = std::regex_replace(call, named, name);
            _transcript << std::regex_replace(call, pointer, "&") << '\n';
        }
        for (auto const& entry : capture.Entries())
            _transcript << '[' << Debug::ChannelName(entry.channel) << (entry.category.empty() ? "" : " ")
                        << entry.category << "] " << std::regex_replace(entry.text, resource, "TglResource(n)") << '\n';
        gl.ClearCalls(), capture.Sink().Clear();
    }
    // Adds the lines of the facade's state dump that name one of p_names.
    void Tracked(std::vector<std::string> const& p_names) {
        Debug::CaptureScope dumped;
        tgl->DumpState();
        std::istringstream dump(dumped.Texts(Debug::Channel::Debug).at(0));
        for (std::string line; std::getline(dump, line);)
            for (auto const& name : p_names)
                if (line.rfind("\t" + name + " =", 0) == 0) _transcript << "  " << line.substr(1) << '\n';
    }
    std::string Transcript() const { return _transcript.str(); }

    FakeGl gl;
    // The vendor the facade records for its device.
    Chart::Ogl::Vendors vendor = Chart::Ogl::UNKNOWN;
    std::map<GLenum, std::vector<double>> doubles;
    Debug::CaptureScope capture;
    std::unique_ptr<Chart::Ogl::Tgl> tgl;

private:
    std::vector<std::pair<std::regex, std::string>> _names;
    std::ostringstream _transcript;
};

}  // namespace Tev::Test
