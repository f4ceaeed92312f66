// Transforms and raster state on the fake: rounding of the viewport, the
// rotation forms, projection helpers multiplied onto GL's matrix, matrix
// reads, and the checks of a box or viewport of no size.
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/types/Projection.h"
#include "ogl/api/Tokens.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using namespace Chart::Types;
using Debug::Channel;
using Lines = std::vector<std::string>;

class TglTransform : public ::testing::Test {
protected:
    void SetUp() override {
        _fake.Build();
        _fake.Gl().On("glMultMatrixd", [this](FakeCall const& p_call) -> FakeResult {
            _multiplied.push_back(Matrix4::FromColumnMajor(static_cast<double const*>(p_call.Ptr(0))));
            return std::int64_t{0};
        });
    }
    Tgl& tgl() { return _fake.Get(); }

    // The matrix of the one glMultMatrixd since the last call.
    Matrix4 Multiplied() {
        EXPECT_EQ(_multiplied.size(), 1u);
        Matrix4 const matrix = _multiplied.empty() ? Matrix4() : _multiplied.back();
        _multiplied.clear();
        return matrix;
    }

    FakeTgl _fake;
    std::vector<Matrix4> _multiplied;
};

TEST_F(TglTransform, ViewportRoundsTheCornerDownAndTheSizeUp) {
    tgl().Viewport(Chart::Types::Viewport(0.5, 0.5, 99.2, 49.9));
    EXPECT_EQ(_fake.Calls(), Lines{"glViewport(0, 0, 100, 50)"});
    Debug::CaptureScope capture;
    tgl().Viewport(Chart::Types::Viewport(0, 0, 0, 10));
    EXPECT_TRUE(HasAssertion(capture, "p_viewport.width > 0 && p_viewport.height > 0"));
}

TEST_F(TglTransform, RotationsSendDegreesAndSkipTheIdentity) {
    Debug::CaptureScope capture;
    tgl().Rotate(Quaternion::Identity());
    tgl().Rotate(Quaternion(-1, 0, 0, 0));
    EXPECT_TRUE(_fake.Calls().empty());

    double const nan = std::numeric_limits<double>::quiet_NaN();
    tgl().Rotate(Quaternion(nan, 0, 0, 1));
    tgl().Rotate(Quaternion(0, 0, 0, 0));
    EXPECT_TRUE(_fake.Calls().empty());
    std::string const warning =
        "WARNING: \"p_rotation.IsValid() && \"Invalid rotation defined!\"\" - "
        "void Tev::Chart::Ogl::Tgl::Rotate(const Tev::Chart::Types::Quaternion&)";
    EXPECT_EQ(capture.Texts(Channel::Error), Lines(2, warning));

    tgl().Rotate(Quaternion::FromAxisAngle(Angle::FromDegrees(90), {0, 0, 2}));
    auto const calls = _fake.Gl().Calls("glRotated");
    ASSERT_EQ(calls.size(), 1u);
    double const expected[] = {90.0, 0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(calls[0].Double(i), expected[i], 1e-9) << i;

    _fake.ClearCalls();
    tgl().Rotate(Angle::FromRadians(M_PI), {1, 0, 0});
    EXPECT_EQ(_fake.Calls(), Lines{"glRotated(180, 1, 0, 0)"});
}

TEST_F(TglTransform, ProjectionHelpersMultiplyTheirMatricesAndCheckTheirBoxes) {
    // A 2 x 2 box in a 200 x 100 viewport must be widened to 4 x 2.
    tgl().Ortho(Chart::Types::Viewport(0, 0, 200, 100), BoundingBox({-1, -1, -5}, {1, 1, -1}));
    EXPECT_EQ(Multiplied(), Chart::Types::Ortho(-2, 2, -1, 1, 1, 5));
    tgl().Ortho2D(Chart::Types::Viewport(10, 20, 300, 200));
    EXPECT_EQ(Multiplied(), Chart::Types::Ortho(10, 310, 20, 220, -1, 1));

    tgl().Perspective(Chart::Types::Viewport(0, 0, 400, 200), BoundingBox({-1, -1, -10}, {1, 1, -2}),
                      Angle::FromDegrees(45));
    EXPECT_EQ(Multiplied(), Chart::Types::Perspective(Angle::FromDegrees(45), 2.0, 2.0, 10.0));

    Debug::CaptureScope capture;
    tgl().Ortho2D(Chart::Types::Viewport(0, 0, -5, 10));
    EXPECT_TRUE(HasAssertion(capture, "p_viewport.width > 0 && p_viewport.height > 0"));
    tgl().Ortho(Chart::Types::Viewport(0, 0, 0, 100), BoundingBox({0, 0, 0}, {0, 0, 0}));
    EXPECT_TRUE(HasAssertion(capture, "p_viewport.width != 0 && p_viewport.height != 0"));
    EXPECT_TRUE(HasAssertion(capture, "p_bb.min != p_bb.max"));
}

TEST_F(TglTransform, MatricesAreReadBackAndProjectedWithGlsOwn) {
    Matrix4 const modelView = Matrix4::Translation({1, 2, -5});
    Matrix4 const projection = Chart::Types::Perspective(Angle::FromDegrees(60), 1.0, 1.0, 100.0);
    _fake.Gl().SetInteger(GL_VIEWPORT, {0, 0, 64, 64});
    _fake.Gl().On("glGetDoublev", [&](FakeCall const& p_call) -> FakeResult {
        Matrix4 const& m = p_call.Int(0) == GL_MODELVIEW_MATRIX ? modelView : projection;
        std::copy_n(m.Data(), 16, static_cast<double*>(const_cast<void*>(p_call.Ptr(1))));
        return std::int64_t{0};
    });
    EXPECT_EQ(tgl().GetMatrix(GL_MODELVIEW_MATRIX), modelView);

    Vector3d window;
    ASSERT_EQ(tgl().Project({0, 0, 0}, window), int(GL_TRUE));
    Vector3d object(1.0);
    ASSERT_EQ(tgl().UnProject(window, object), int(GL_TRUE));
    EXPECT_LT(glm::length(object), 1e-9) << object;

    Debug::CaptureScope capture;
    tgl().GetMatrix(GL_COLOR);
    EXPECT_EQ(Assertions(capture).size(), 1u);
}

}  // namespace
}  // namespace Tev::Test
