// The GLM-backed value types: matrix layout as GL expects it, quaternion
// conversions, projection round trips and the box and range types.
#include "framework/types/BoundingBox.h"
#include "framework/types/Math.h"
#include "framework/types/MinMax.h"
#include "framework/types/Projection.h"
#include "framework/types/Quaternion.h"

#include <boost/optional/optional_io.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Tev::Chart::Types {
namespace {

void ExpectNear(Vector3d const& p_actual, Vector3d const& p_expected, double p_tolerance = 1e-9) {
    EXPECT_LT(glm::length(p_actual - p_expected), p_tolerance) << p_actual << " vs " << p_expected;
}

TEST(Matrix4, IsColumnMajorAsGlLoadsIt) {
    Matrix4 const translation = Matrix4::Translation({1.0, 2.0, 3.0});
    double const* values = translation.Data();
    // glLoadMatrixd reads the translation from elements 12, 13, 14.
    EXPECT_EQ((std::vector<double>(values + 12, values + 15)), (std::vector<double>{1.0, 2.0, 3.0}));
    EXPECT_EQ(translation(0, 3), 1.0);
    EXPECT_EQ(Matrix4::FromColumnMajor(values), translation);
    EXPECT_EQ(Matrix4(), Matrix4::Identity());

    // Applied right to left, as glMultMatrix composes: scale, then move.
    Matrix4 const combined = translation * Matrix4::Scaling({2.0, 2.0, 2.0});
    ExpectNear(combined.TransformPoint({1.0, 1.0, 1.0}), {3.0, 4.0, 5.0});
    ExpectNear((combined * combined.Inverse()).TransformPoint({7.0, 8.0, 9.0}), {7.0, 8.0, 9.0});
    EXPECT_EQ(combined.Transposed()(3, 0), 1.0);

    ExpectNear(Matrix4::Rotation(Angle::FromDegrees(90.0), {0.0, 0.0, 5.0}).TransformPoint({1.0, 0.0, 0.0}),
               {0.0, 1.0, 0.0});
}

TEST(Quaternion, ValidityIdentityAndAxisAngle) {
    Quaternion const quarter = Quaternion::FromAxisAngle(Angle::FromDegrees(90.0), {0.0, 0.0, 2.0});
    EXPECT_TRUE(quarter.IsValid() && !quarter.IsIdentity());
    EXPECT_NEAR(quarter.RotationAngle().Degrees(), 90.0, 1e-9);
    ExpectNear(quarter.Axis(), {0.0, 0.0, 1.0});
    ExpectNear(quarter.Rotate({1.0, 0.0, 0.0}), {0.0, 1.0, 0.0});
    ExpectNear(quarter.ToMatrix().TransformPoint({1.0, 0.0, 0.0}), {0.0, 1.0, 0.0});
    ExpectNear((quarter * quarter).Rotate({1.0, 0.0, 0.0}), {-1.0, 0.0, 0.0});

    // A quaternion that is not of unit length still names its rotation.
    Quaternion const scaled(0.0, 0.0, 3.0, 0.0);
    EXPECT_TRUE(scaled.IsValid());
    EXPECT_NEAR(scaled.RotationAngle().Degrees(), 180.0, 1e-9);
    ExpectNear(scaled.Axis(), {0.0, 1.0, 0.0});

    EXPECT_TRUE(Quaternion().IsIdentity());
    EXPECT_TRUE(Quaternion(-2.0, 0.0, 0.0, 0.0).IsIdentity()) << "-q is the same rotation";
    ExpectNear(Quaternion().Axis(), {0.0, 0.0, 1.0});
    EXPECT_EQ(Quaternion(), Quaternion::Identity());

    EXPECT_FALSE(Quaternion(0.0, 0.0, 0.0, 0.0).IsValid());
    EXPECT_FALSE(Quaternion(std::nan(""), 0.0, 0.0, 1.0).IsValid());
    EXPECT_FALSE(Quaternion(1.0, std::numeric_limits<double>::infinity(), 0.0, 0.0).IsValid());
}

TEST(Projection, ProjectAndUnProjectRoundTrip) {
    Viewport const viewport(10, 20, 640, 480);
    Matrix4 const modelView =
        Matrix4::Translation({0.0, 0.0, -10.0}) * Matrix4::Rotation(Angle::FromDegrees(30.0), {1.0, 1.0, 0.0});
    Matrix4 const projection = Perspective(Angle::FromDegrees(45.0), 640.0 / 480.0, 1.0, 100.0);

    for (Vector3d const point : {Vector3d(0.0), Vector3d(1.0, -2.0, 0.5), Vector3d(-3.0, 2.0, 4.0)}) {
        auto const window = Project(point, modelView, projection, viewport);
        ASSERT_TRUE(window);
        EXPECT_GE(window->x, 10.0);
        EXPECT_LE(window->x, 650.0);
        auto const back = UnProject(*window, modelView, projection, viewport);
        ASSERT_TRUE(back);
        ExpectNear(*back, point, 1e-6);
    }
    // The eye axis lands in the viewport's centre, the near plane at depth 0.
    ExpectNear(*Project({0.0, 0.0, -1.0}, Matrix4(), projection, viewport), {330.0, 260.0, 0.0}, 1e-6);

    EXPECT_FALSE(Project({0.0, 0.0, 0.0}, Matrix4(), projection, viewport)) << "a point in the eye plane has w 0";
    EXPECT_FALSE(UnProject({1.0, 1.0, 0.5}, Matrix4::Scaling({1.0, 0.0, 1.0}), projection, viewport));

    Matrix4 const ortho = Ortho(0.0, 640.0, 0.0, 480.0, -1.0, 1.0);
    ExpectNear(*Project({320.0, 240.0, 0.0}, Matrix4(), ortho, Viewport(0, 0, 640, 480)), {320.0, 240.0, 0.5});
}

TEST(Projection, PickMatrixMapsTheRegionOntoTheClipVolume) {
    Viewport const viewport(0, 0, 200, 100);
    Matrix4 const pick = PickMatrix(Viewport(50, 25, 10, 4), viewport);
    // Window (50, 25) is NDC (-0.5, -0.5); the pick region is 10 x 4 pixels,
    // that is 0.1 x 0.08 in NDC, so its edges must map to -1 and +1.
    ExpectNear(pick.TransformPoint({-0.5, -0.5, 0.3}), {0.0, 0.0, 0.3});
    ExpectNear(pick.TransformPoint({-0.45, -0.46, 0.0}), {1.0, 1.0, 0.0});
    ExpectNear(pick.TransformPoint({-0.55, -0.54, 0.0}), {-1.0, -1.0, 0.0});

    EXPECT_EQ(PickMatrix(Viewport(50, 25, 0, 4), viewport), Matrix4::Identity());
    EXPECT_EQ(PickMatrix({50.0, 25.0}, {3.0, -1.0}, viewport), Matrix4::Identity());
}

TEST(Viewport, Intersection) {
    Viewport const a(0, 0, 100, 50);
    EXPECT_EQ(Intersect(a, Viewport(50, 10, 100, 100)), Viewport(50, 10, 50, 40));
    EXPECT_EQ(Intersect(a, Viewport(20, 5, 10, 10)), Viewport(20, 5, 10, 10));
    Viewport const disjoint = Intersect(a, Viewport(200, 60, 10, 10));
    EXPECT_TRUE(disjoint == Viewport(200, 60, 0, 0) && disjoint.IsEmpty());
}

TEST(BoundsAndRanges, StartEmptyAndGrow) {
    BoundingBox box;
    EXPECT_TRUE(box.IsEmpty() && box.Extent() == Vector3d(0.0));
    box.Extend({1.0, -2.0, 0.0});
    EXPECT_FALSE(box.IsEmpty());
    EXPECT_EQ(box.min, box.max) << "one point is a box of no size";
    box.Extend({-1.0, 4.0, 0.0});
    EXPECT_EQ(box.min, Vector3d(-1.0, -2.0, 0.0));
    EXPECT_EQ(box.max, Vector3d(1.0, 4.0, 0.0));
    EXPECT_TRUE(box.Contains({0.0, 0.0, 0.0}) && !box.Contains({0.0, 0.0, 0.1}));

    BoundingBox merged;
    merged.Extend(BoundingBox());
    EXPECT_TRUE(merged.IsEmpty()) << "an empty box adds nothing";
    merged.Extend(box);
    EXPECT_EQ(merged, box);

    MinMax_Base<unsigned> levels;
    EXPECT_TRUE(levels.IsEmpty() && levels.Range() == 0u);
    levels.Extend(4);
    levels.Extend(1);
    EXPECT_EQ(levels, MinMax_Base<unsigned>(1, 4));
    EXPECT_EQ(levels.Range(), 3u);
    EXPECT_TRUE(levels.Contains(4) && !levels.Contains(5));
}

TEST(Math, ClampTakesTheNearerBound) {
    // Bounds given the wrong way round still clamp to the nearer one.
    EXPECT_EQ((std::vector<double>{Math::Clamp(100.0, 1.0, 7.0), Math::Clamp(0.5, 1.0, 7.0), Math::Clamp(3.0, 1.0, 7.0),
                                   Math::Clamp(4.0, 5.0, 3.0), Math::Clamp(6.0, 5.0, 3.0)}),
              (std::vector<double>{7.0, 1.0, 3.0, 5.0, 3.0}));
}

}  // namespace
}  // namespace Tev::Chart::Types
