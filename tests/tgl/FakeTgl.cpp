#include "tgl/FakeTgl.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>

namespace Tev::Test {

namespace {

// Distinct answers, so that a field read from the wrong query shows.
std::map<GLenum, GLint> const Limits = {
    {GL_MAX_LIGHTS, 8},
    {GL_STENCIL_BITS, 8},
    {GL_MAX_CLIP_PLANES, 6},
    {GL_MAX_TEXTURE_COORDS, 10},
    {GL_MAX_TEXTURE_SIZE, 16384},
    {GL_MAX_TEXTURE_UNITS, 4},
    {GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS, 16},
    {GL_MAX_TEXTURE_BUFFER_SIZE, 65536},
    {GL_MAX_GEOMETRY_TEXTURE_IMAGE_UNITS, 17},
    {GL_MAX_TEXTURE_IMAGE_UNITS, 18},
    {GL_MAX_COMPUTE_TEXTURE_IMAGE_UNITS, 19},
    {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 96},
    {GL_MAX_NAME_STACK_DEPTH, 64},
};

}  // namespace

FakeTgl::FakeTgl() {
    for (auto const& [name, value] : Limits) _gl.SetInteger(name, {value});
    _gl.SetInteger(GL_MAX_VIEWPORT_DIMS, {8192, 4096});
    SetDoubles(GL_POINT_SIZE_RANGE, {1.0, 64.0});
    SetDoubles(GL_ALIASED_POINT_SIZE_RANGE, {1.0, 64.0});
    SetDoubles(GL_LINE_WIDTH_RANGE, {1.0, 10.0});
    SetDoubles(GL_ALIASED_LINE_WIDTH_RANGE, {1.0, 10.0});
    _gl.On("glGetDoublev", [this](FakeCall const& p_call) -> FakeResult {
        auto const found = _doubles.find(GLenum(p_call.Int(0)));
        if (found != _doubles.end())
            std::copy(found->second.begin(), found->second.end(), static_cast<double*>(const_cast<void*>(p_call.Ptr(1))));
        return std::int64_t{0};
    });
}

void FakeTgl::SetVersion(std::string const& p_version) { _gl.SetString(GL_VERSION, p_version); }

void FakeTgl::SetDoubles(GLenum p_name, std::vector<double> p_values) { _doubles[p_name] = std::move(p_values); }

Chart::Ogl::Tgl& FakeTgl::Build(Chart::Ogl::DeviceFeatureMask const& p_mask, bool p_keepCalls) {
    _tgl = std::make_unique<Chart::Ogl::Tgl>(_gl.Api(_missing), p_mask);
    if (!p_keepCalls) _gl.ClearCalls();
    return *_tgl;
}

std::vector<std::string> FakeTgl::Calls(std::string const& p_name) const {
    std::vector<std::string> calls;
    for (auto const& call : _gl.Calls(p_name)) calls.push_back(call.ToString());
    return calls;
}

GLint FakeTgl::Limit(GLenum p_name) { return Limits.at(p_name); }

}  // namespace Tev::Test
