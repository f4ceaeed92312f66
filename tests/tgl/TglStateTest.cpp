// Lights, material, colour, normal and transforms on the fake: the light
// limit and the parameter checks of each form, the state tracker keeping
// values in both modes but sending them only in fixed-function mode, its save
// and restore with the attribute stack, program binding, the rounding of the
// viewport, the rotation forms and the projection helpers.
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include "framework/types/Projection.h"
#include "framework/utility/Scoped.h"
#include "ogl/shaders/Program.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using namespace Chart::Types;
using Chart::Utility::Scoped;

// A GLSL program as the facade sees it: a GL name, and a count of the
// facade's activation calls.
class NamedProgram : public Program {
public:
    NamedProgram(OglApi const& p_gl, unsigned p_name) { SetObject(boost::make_shared<ProgramObject>(p_gl, p_name)); }
    int activations = 0;
    int deactivations = 0;

private:
    void OnActivated(Chart::Utility::WatchedRef<Tgl> const&) override { ++activations; }
    void OnDeactivated(Chart::Utility::WatchedRef<Tgl> const&) override { ++deactivations; }
};

class TglState : public ::testing::Test {
protected:
    void SetUp() override { _fake.Build(); }
    Tgl& tgl() { return *_fake.tgl; }
    FakeTgl _fake;
};

// The transcript holds what each call sends (nothing once a program is
// bound), the exact failed checks, and the tracked values after each step.
TEST_F(TglState, LightsMaterialAndAttributeStackAsTranscribed) {
    EXPECT_EQ(tgl().GetMaxLights(), 2);
    _fake.Tracked({"light0 diffuse", "light1 diffuse", "light1 spot cutoff", "light model ambient", "normal"});
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::red));
    tgl().Light(GL_LIGHT1, GL_POSITION, Vector4d(1, 2, 3, 0));
    tgl().Light(GL_LIGHT1, GL_SPOT_DIRECTION, Vector3d(0, -1, 0));
    tgl().Light(GL_LIGHT1, GL_SPOT_CUTOFF, 45.0f);
    tgl().Light(GL_LIGHT0, GL_SPECULAR, Qt::blue);
    _fake.Step("lights 0 and 1 in every form");
    _fake.Tracked({"light0 diffuse", "light0 specular", "light1 position", "light1 spot direction", "light1 spot cutoff"});
    tgl().Light(GL_LIGHT2, GL_DIFFUSE, QColor(Qt::green));
    _fake.Step("light 2: past the limit of two");
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, Vector3d(1, 1, 1));
    tgl().Light(GL_LIGHT0, GL_SPOT_DIRECTION, Vector4d(1, 1, 1, 1));
    tgl().Light(GL_LIGHT0, GL_POSITION, QColor(Qt::white));
    tgl().Light(GL_LIGHT0, GL_AMBIENT, 1.0f);
    _fake.Step("forms that do not fit their parameter");

    for (int twoSide : {int(GL_TRUE), 2}) {
        tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, twoSide);
        _fake.Step("two-sided " + std::to_string(twoSide) + ": only GL_TRUE is true");
        _fake.Tracked({"light model two side"});
    }
    tgl().LightModel(GL_LIGHT_MODEL_AMBIENT, Vector4d(0.5, 0.5, 0.5, 1));
    _fake.Step("light model ambient");
    _fake.Tracked({"light model ambient"});
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, Vector4d(1, 1, 1, 1));
    _fake.Step("a vector for two-sided");

    Material material;
    material.face = GL_FRONT;
    material.shininess = 32;
    tgl().Color(QColor::fromRgbF(1, 0, 1, 1));
    tgl().Normal(0, 1, 0);
    tgl().ColorMaterial(GL_FRONT, GL_DIFFUSE);
    tgl().Material(material);
    _fake.Step("fixed function: colour, normal, colour material, front material");
    {
        Tgl::Token const bound = tgl().Bind(boost::make_shared<NamedProgram>(tgl().Api(), 7));
        tgl().Color(QColor(Qt::blue));
        tgl().Normal(Vector3d(1, 0, 0));
        tgl().Material(material);
        _fake.Step("a program bound: colour, normal and material are only kept");
        _fake.Tracked({"color", "normal", "material front shininess", "material back shininess"});
    }
    _fake.Step("the program unbound");

    // Lighting comes back under its bit, the colour only under its own; a
    // forgotten pop is unwound with the same restore.
    {
        Scoped<Tgl> scope(tgl());
        tgl().Color(QColor(Qt::red));
        tgl().PushAttrib(GL_LIGHTING_BIT);
        tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::green));
        tgl().Color(QColor(Qt::green));
        tgl().PopAttrib();
        _fake.Step("red; push lighting; green light and colour; pop");
        _fake.Tracked({"light0 diffuse", "color"});
        {
            Tgl::Token const token = tgl().PushAttribScope(GL_CURRENT_BIT | GL_LIGHTING_BIT);
            tgl().Color(QColor(Qt::blue));
            tgl().Normal(1, 0, 0);
        }
        _fake.Step("push current and lighting; blue, normal x; token released");
        _fake.Tracked({"color", "normal"});
        tgl().PushAttrib(GL_CURRENT_BIT);
        tgl().Color(QColor(Qt::blue));
    }
    _fake.Step("push current; blue; pop forgotten at scope end");
    _fake.Tracked({"color"});
    EXPECT_TRUE(MatchesGolden("tgl/lighting.txt", _fake.Transcript()));
}

TEST_F(TglState, BindingSwitchesModeAndTheTokenRestoresThePrevious) {
    auto const first = boost::make_shared<NamedProgram>(tgl().Api(), 7);
    auto const second = boost::make_shared<NamedProgram>(tgl().Api(), 9);
    EXPECT_EQ(tgl().GetMaxTextures(), 4);
    {
        Tgl::Token const outer = tgl().Bind(first);
        EXPECT_FALSE(tgl().IsFixedFunction() || tgl().RequiresCompatibilityAttributes());
        EXPECT_EQ(tgl().GetMaxTextures(), 18);
        EXPECT_TRUE(tgl().ActiveProgram() == first && first->IsActive());
        {
            Tgl::Token const inner = tgl().Bind(second);
            EXPECT_EQ(first->deactivations, 1);
            Tgl::Token const again = tgl().Bind(second);  // in force already: switches nothing
            EXPECT_EQ(second->activations, 1);
        }
        EXPECT_TRUE(tgl().ActiveProgram() == first && first->activations == 2);
    }
    EXPECT_TRUE(tgl().IsFixedFunction() && !first->IsActive());
    EXPECT_EQ(_fake.gl.CallStrings(), (std::vector<std::string>{"glUseProgram(7)", "glUseProgram(9)",
                                                                "glUseProgram(7)", "glUseProgram(0)"}));
    class ObjectlessProgram : public Program {};
    Tgl::Token const token = tgl().Bind(boost::make_shared<ObjectlessProgram>());
    EXPECT_FALSE(tgl().IsFixedFunction() || tgl().RequiresCompatibilityAttributes());

    EXPECT_FALSE(OutputStage::FromName("forward"));
    {
        Tgl::Token const outer = tgl().ScopedOutputStage(OutputStage::Deferred_Depth);
        Tgl::Token const inner = tgl().ScopedOutputStage(OutputStage::Deferred_Opaque);
        EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Deferred_Opaque);
    }
    EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Forward);
}

// Viewport rounding, rotations (degrees, identity skipped, invalid ones
// warned about) and the checks of a box or viewport of no size.
TEST_F(TglState, ViewportAndRotationsAsTranscribed) {
    tgl().Viewport(Viewport(0.5, 0.5, 99.2, 49.9));
    tgl().Viewport(Viewport(0, 0, 0, 10));
    _fake.Step("viewports (0.5, 0.5, 99.2, 49.9) and (0, 0, 0, 10)");
    tgl().Rotate(Quaternion::Identity());
    tgl().Rotate(Quaternion(-1, 0, 0, 0));
    _fake.Step("identity rotations");
    tgl().Rotate(Quaternion(std::numeric_limits<double>::quiet_NaN(), 0, 0, 1));
    tgl().Rotate(Quaternion(0, 0, 0, 0));
    _fake.Step("invalid rotations");
    tgl().Rotate(Quaternion::FromAxisAngle(Angle::FromDegrees(90), {0, 0, 2}));
    tgl().Rotate(Angle::FromRadians(M_PI), {1, 0, 0});
    _fake.Step("90 degrees about z, pi about x");
    tgl().Ortho2D(Viewport(0, 0, -5, 10));
    tgl().Ortho(Viewport(0, 0, 0, 100), BoundingBox({0, 0, 0}, {0, 0, 0}));
    tgl().GetMatrix(GL_COLOR);
    _fake.Step("projections of no size, a matrix GL cannot read");
    EXPECT_TRUE(MatchesGolden("tgl/transforms.txt", _fake.Transcript()));
}

// The helpers multiply GL's matrix by the library's own projections; matrices
// read back project and unproject with them.
TEST_F(TglState, ProjectionHelpersAndMatrixReads) {
    std::vector<Matrix4> multiplied;
    _fake.gl.On("glMultMatrixd", [&](FakeCall const& p_call) -> FakeResult {
        multiplied.push_back(Matrix4::FromColumnMajor(static_cast<double const*>(p_call.Ptr(0))));
        return std::int64_t{0};
    });
    // A 2 x 2 box in a 200 x 100 viewport must be widened to 4 x 2.
    tgl().Ortho(Viewport(0, 0, 200, 100), BoundingBox({-1, -1, -5}, {1, 1, -1}));
    tgl().Ortho2D(Viewport(10, 20, 300, 200));
    tgl().Perspective(Viewport(0, 0, 400, 200), BoundingBox({-1, -1, -10}, {1, 1, -2}), Angle::FromDegrees(45));
    EXPECT_EQ(multiplied, (std::vector<Matrix4>{Ortho(-2, 2, -1, 1, 1, 5), Ortho(10, 310, 20, 220, -1, 1),
                                                Perspective(Angle::FromDegrees(45), 2.0, 2.0, 10.0)}));

    Matrix4 const modelView = Matrix4::Translation({1, 2, -5});
    Matrix4 const projection = Perspective(Angle::FromDegrees(60), 1.0, 1.0, 100.0);
    _fake.gl.SetInteger(GL_VIEWPORT, {0, 0, 64, 64});
    _fake.gl.On("glGetDoublev", [&](FakeCall const& p_call) -> FakeResult {
        Matrix4 const& m = p_call.Int(0) == GL_MODELVIEW_MATRIX ? modelView : projection;
        std::copy_n(m.Data(), 16, static_cast<double*>(const_cast<void*>(p_call.Ptr(1))));
        return std::int64_t{0};
    });
    EXPECT_EQ(tgl().GetMatrix(GL_MODELVIEW_MATRIX), modelView);
    Vector3d window, object(1.0);
    ASSERT_EQ(tgl().Project({0, 0, 0}, window), int(GL_TRUE));
    ASSERT_EQ(tgl().UnProject(window, object), int(GL_TRUE));
    EXPECT_LT(glm::length(object), 1e-9) << object;
}

}  // namespace
}  // namespace Tev::Test
