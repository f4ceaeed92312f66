// Lights, material, colour and normal on the fake: the light limit and the
// parameter checks of each form, the state tracker keeping values in both
// modes but sending them only in fixed-function mode, its save and restore
// with the attribute stack, and program binding.
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/api/OglApi.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/StateTracker.h"

#include <GL/gl.h>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Utility::Scoped;
using Chart::Utility::WatchedRef;
using Lines = std::vector<std::string>;

// A GLSL program as the facade sees it: a GL name, and a count of the
// facade's activation calls.
class NamedProgram : public Program {
public:
    NamedProgram(OglApi const& p_gl, unsigned p_name) { SetObject(boost::make_shared<ProgramObject>(p_gl, p_name)); }
    int activations = 0;
    int deactivations = 0;

private:
    void OnActivated(WatchedRef<Tgl> const& p_gl) override { ++activations; }
    void OnDeactivated(WatchedRef<Tgl> const& p_gl) override { ++deactivations; }
};

class ObjectlessProgram : public Program {};

class TglLighting : public ::testing::Test {
protected:
    void SetUp() override { _fake.Build(); }
    Tgl& tgl() { return _fake.Get(); }
    StateTracker::Values StateTrackerValues() { return tgl().GetStateTracker().Current(); }
    FakeTgl _fake;
};

TEST_F(TglLighting, OnlyTwoLightsOfEightPassAndEachFormChecksItsParameter) {
    EXPECT_EQ(tgl().GetMaxLights(), 2);
    Debug::CaptureScope capture;
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::red));
    tgl().Light(GL_LIGHT1, GL_POSITION, Chart::Types::Vector4d(1, 2, 3, 0));
    tgl().Light(GL_LIGHT1, GL_SPOT_DIRECTION, Chart::Types::Vector3d(0, -1, 0));
    tgl().Light(GL_LIGHT1, GL_SPOT_CUTOFF, 45.0f);
    tgl().Light(GL_LIGHT0, GL_SPECULAR, Qt::blue);
    EXPECT_TRUE(Assertions(capture).empty());

    tgl().Light(GL_LIGHT2, GL_DIFFUSE, QColor(Qt::green));
    EXPECT_EQ(Assertions(capture), Lines{"\"lightCount >= 0 && lightCount < GetMaxLights()\" - bool "
                                         "Tev::Chart::Ogl::Tgl::LightIndexValid(unsigned int) const"});
    capture.Sink().Clear();
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, Chart::Types::Vector3d(1, 1, 1));
    tgl().Light(GL_LIGHT0, GL_SPOT_DIRECTION, Chart::Types::Vector4d(1, 1, 1, 1));
    tgl().Light(GL_LIGHT0, GL_POSITION, QColor(Qt::white));
    tgl().Light(GL_LIGHT0, GL_AMBIENT, 1.0f);
    EXPECT_TRUE(HasAssertion(capture, "p_param == Tokens::TGL_SPOT_DIRECTION"));
    EXPECT_TRUE(HasAssertion(capture, "p_param == Tokens::TGL_POSITION"));
    EXPECT_TRUE(HasAssertion(capture,
                             "p_param == Tokens::TGL_AMBIENT || p_param == Tokens::TGL_DIFFUSE || "
                             "p_param == Tokens::TGL_SPECULAR"));

    // Diffuse red and green, specular blue, position x, spot direction y, cutoff.
    auto const& lights = StateTrackerValues().lights;
    EXPECT_EQ((std::vector<float>{lights[0][4], lights[0][5], lights[0][10], lights[1][12], lights[1][17], lights[1][20]}),
              (std::vector<float>{1, 0, 1, 1, -1, 45}));
}

TEST_F(TglLighting, LightModelTakesOnlyTrueAsTrue) {
    Debug::CaptureScope capture;
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, int(GL_TRUE));
    bool const twoSided = StateTrackerValues().lightModelTwoSide;
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, 2);
    EXPECT_TRUE(twoSided && !StateTrackerValues().lightModelTwoSide);
    tgl().LightModel(GL_LIGHT_MODEL_AMBIENT, Chart::Types::Vector4d(0.5, 0.5, 0.5, 1));
    EXPECT_EQ(StateTrackerValues().lightModelAmbient[0], 0.5f);
    EXPECT_TRUE(Assertions(capture).empty());
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, Chart::Types::Vector4d(1, 1, 1, 1));
    EXPECT_TRUE(HasAssertion(capture, "pname == Tokens::TGL_LIGHT_MODEL_AMBIENT"));
}

TEST_F(TglLighting, FixedFunctionModeSendsStateAndShaderModeOnlyKeepsIt) {
    tgl().Color(QColor::fromRgbF(1, 0, 1, 1));
    tgl().Normal(0, 1, 0);
    tgl().ColorMaterial(GL_FRONT, GL_DIFFUSE);
    EXPECT_EQ(_fake.Calls(), (Lines{"glColor4f(1, 0, 1, 1)", "glNormal3d(0, 1, 0)", "glColorMaterial(1028, 4609)"}));

    Material material;
    material.face = GL_FRONT;
    material.shininess = 32;
    _fake.ClearCalls();
    tgl().Material(material);
    Lines const materialCalls = _fake.Calls("glMaterialfv");
    ASSERT_EQ(materialCalls.size(), 5u);
    EXPECT_EQ(_fake.Gl().Calls("glMaterialfv")[4].Int(1), GL_SHININESS);

    auto const program = boost::make_shared<NamedProgram>(tgl().Api(), 7);
    Tgl::Token const bound = tgl().Bind(program);
    _fake.ClearCalls();
    tgl().Color(QColor(Qt::blue));
    tgl().Normal(Chart::Types::Vector3d(1, 0, 0));
    tgl().Material(material);
    EXPECT_TRUE(_fake.Calls().empty());
    EXPECT_EQ(StateTrackerValues().color, (std::array<float, 4>{0, 0, 1, 1}));
    EXPECT_EQ(StateTrackerValues().normal, (std::array<double, 3>{1, 0, 0}));
    EXPECT_EQ(StateTrackerValues().materials[0][16], 32.0f);
    EXPECT_EQ(StateTrackerValues().materials[1][16], 0.0f) << "front only";
}

TEST_F(TglLighting, AttributeStackSavesTrackedStatePerBitAndTheForcedUnwindRestoresItToo) {
    Debug::CaptureScope capture;
    {
        Scoped<Tgl> scope(tgl());
        tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::red));
        tgl().Color(QColor(Qt::red));
        tgl().PushAttrib(GL_LIGHTING_BIT);
        tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::green));
        tgl().Color(QColor(Qt::green));
        tgl().PopAttrib();
        // Lighting came back, the colour (not in the mask) did not.
        EXPECT_EQ(StateTrackerValues().lights[0][4], 1.0f);
        EXPECT_EQ(StateTrackerValues().color[1], 1.0f);
        {
            Tgl::Token const token = tgl().PushAttribScope(GL_CURRENT_BIT | GL_LIGHTING_BIT);
            tgl().Color(QColor(Qt::blue));
            tgl().Normal(1, 0, 0);
        }
        EXPECT_EQ(StateTrackerValues().color, (std::array<float, 4>{0, 1, 0, 1}));
        EXPECT_EQ(StateTrackerValues().normal, (std::array<double, 3>{0, 0, 1}));
        EXPECT_TRUE(capture.Texts(Debug::Channel::Error).empty());

        tgl().PushAttrib(GL_CURRENT_BIT);
        tgl().Color(QColor(Qt::blue));
    }
    EXPECT_EQ(StateTrackerValues().color, (std::array<float, 4>{0, 1, 0, 1}));
    EXPECT_EQ(capture.Texts(Debug::Channel::Error).size(), 1u);
}

TEST_F(TglLighting, BindingSwitchesModeAndTheTokenRestoresThePrevious) {
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
            // Rebinding what is in force switches nothing.
            Tgl::Token const again = tgl().Bind(second);
            EXPECT_EQ(second->activations, 1);
        }
        EXPECT_EQ(tgl().ActiveProgram(), first);
        EXPECT_EQ(first->activations, 2);
    }
    EXPECT_TRUE(tgl().IsFixedFunction() && !first->IsActive());
    EXPECT_EQ(_fake.Calls("glUseProgram"),
              (Lines{"glUseProgram(7)", "glUseProgram(9)", "glUseProgram(7)", "glUseProgram(0)"}));

    auto const objectless = boost::make_shared<ObjectlessProgram>();
    Tgl::Token const token = tgl().Bind(objectless);
    EXPECT_FALSE(tgl().IsFixedFunction() || tgl().RequiresCompatibilityAttributes());
}

TEST_F(TglLighting, DumpStateNamesEveryTrackedValue) {
    tgl().Light(GL_LIGHT1, GL_DIFFUSE, QColor(Qt::red));
    tgl().Normal(0, 1, 0);
    Debug::CaptureScope capture;
    tgl().DumpState();
    Lines const dump = capture.Texts(Debug::Channel::Debug);
    ASSERT_EQ(dump.size(), 1u);
    for (std::string const line : {"\tlight1 diffuse = (1, 0, 0, 1)\n", "\tlight0 diffuse = (1, 1, 1, 1)\n",
                                   "\tlight1 spot cutoff = (180)\n", "\tmaterial back shininess = (0)\n",
                                   "\tlight model ambient = (0.2, 0.2, 0.2, 1)\n", "\tnormal = (0, 1, 0)\n"})
        EXPECT_NE(dump[0].find(line), std::string::npos) << line << dump[0];
}

TEST_F(TglLighting, OutputStagesStackUnderTheirTokens) {
    EXPECT_EQ(OutputStage::FromName("WeightedAverage_Translucent_ForceOpaque"),
              OutputStage(OutputStage::WeightedAverage_Translucent_ForceOpaque));
    EXPECT_EQ(OutputStage(OutputStage::Deferred_Background).Name(), "Deferred_Background");
    EXPECT_FALSE(OutputStage::FromName("forward"));
    {
        Tgl::Token const outer = tgl().ScopedOutputStage(OutputStage::Deferred_Depth);
        Tgl::Token const inner = tgl().ScopedOutputStage(OutputStage::Deferred_Opaque);
        EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Deferred_Opaque);
    }
    EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Forward);
}

}  // namespace
}  // namespace Tev::Test
