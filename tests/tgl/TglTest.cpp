// The facade on the fake driver: what building and destroying it asks of the
// driver and logs (set-up calls, limits per version gate, framebuffer-object
// choice, point and line ranges, debug output); the light limit and the
// parameter checks of each form, the state tracker keeping values in both
// modes but sending them only in fixed-function mode and restoring them with
// the attribute stack, program binding, the scope discipline (pushes filed on
// their own stacks with a backstop on the scope, the forced unwind of a
// forgotten pop, Begin/End against scopes), the scissor stack's edges, the
// rounding of the viewport, quaternion rotations and the projection helpers.
// What the pixel oracle in the render tests draws (fixed-function lights,
// material, colour material, whole-pixel scissors pushed and popped,
// matrices by angle and axis, perspective) is not repeated here.
#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include "framework/types/Projection.h"
#include "framework/utility/Scoped.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/UndoOperationFallback.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <limits>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using namespace Chart::Types;
using Chart::Utility::Scoped;
using Lines = std::vector<std::string>;

// The transcript holds the exact set-up sequence, the dump (every limit with
// the value read, under channel "ogl") for each version gate, the sentry of a
// driver without framebuffer objects, the debug callback and groups, the
// clamped sizes, and the destruction logs; a field read from the wrong query
// or left unread shows in it. The group texts are the debug tests' own.
TEST(TglConstruction, SetUpLimitsRangesDebugAndDestructionAsTranscribed) {
    FakeTgl fake;
    Tgl& tgl = fake.Build(DeviceFeatureMask::PermitAll(), true);
    fake.Step("built on GL 4.5");
    tgl.DumpState();
    fake.Step("the state tracker's initial values");
    EXPECT_TRUE(tgl.IsFixedFunction() && tgl.GenFixedFunction()->IsActive() && tgl.GenFixedFunction()->Handle() == 0 &&
                tgl.GetMaxViewportSize() == Size(8192, 4096));

    for (auto const& [version, extensions] : std::vector<std::pair<std::string, Lines>>{
             {"2.0 FakeGL", Lines{}}, {"2.1", Lines{}}, {"3.0", Lines{}}, {"4.2", Lines{}}, {"4.3", Lines{}},
             {"4.5", Lines{"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil"}},
             {"4.5", Lines{"GL_EXT_framebuffer_object", "GL_EXT_packed_depth_stencil", "GL_EXT_framebuffer_blit"}},
             {"4.5", Lines{"GL_ARB_framebuffer_object"}}}) {
        fake.gl.SetString(GL_VERSION, version), fake.gl.SetExtensions(extensions);
        int const bufferSize = fake.Build(DeviceFeatureMask::DisableAll(), true).Limits().textureBufferSize;
        fake.gl.ClearCalls();
        fake.Step("GL " + version + ", " + std::to_string(extensions.size()) + " extensions, texture buffer " + std::to_string(bufferSize));
    }

    // The callback is set up, and a debug scope inserts its groups, only
    // where the mask permits debug output.
    fake.gl.SetExtensions({"GL_KHR_debug"});
    for (bool const permitted : {true, false}) {
        DeviceFeatures::Set const off = DeviceFeatures::Set().set(DeviceFeatures::OpenGL_DebugOutput, !permitted);
        fake.Build(DeviceFeatureMask::DisableMask(off), true).DebugScope(5, "grid");
        fake.Step(permitted ? "debug output permitted: a debug scope" : "debug output masked off: a debug scope");
    }
    EXPECT_TRUE(fake->IsExtensionSupported(KHR_debug) && !fake->IsExtensionSupported(ARB_debug_output));

    // Smooth 0.5..64 and aliased 1..32 points, 1..10 and 0.5..7 lines.
    fake.doubles[GL_POINT_SIZE_RANGE] = {0.5, 64.0}, fake.doubles[GL_ALIASED_POINT_SIZE_RANGE] = {1.0, 32.0};
    fake.doubles[GL_ALIASED_LINE_WIDTH_RANGE] = {0.5, 7.0};
    fake.Build();
    for (float size : {0.1f, 48.0f, 3.5f}) fake->PointSize(size);
    for (float width : {100.0f, 0.75f}) fake->LineWidth(width);
    fake.Step("points 0.1, 48, 3.5; lines 100, 0.75");

    // The buffers of its pool go with the facade (the driver names each 12). An open level is dropped,
    // not run: the context may be gone by then.
    fake.gl.On("glGenBuffers", [](FakeCall const& p_call) -> FakeResult {
        return *static_cast<GLuint*>(const_cast<void*>(p_call.Ptr(1))) = 12, std::int64_t{0};
    });
    for (bool const open : {false, true}) {
        auto const handle = fake.Build().ConstHandle();
        { Chart::Utility::Scoped<Tgl> scope(*fake.tgl); }
        Internal::BufferPoolAccess::FindOrAllocate(*fake->GetBufferPool(), 1000, BufferUsage::Default);
        if (open) fake->ScopeBegin(), fake->PushAttrib(GL_LIGHTING_BIT);
        fake.Step(open ? "built, a buffer taken, a scope left open" : "built, a buffer taken");
        fake.tgl.reset();
        fake.Step(open ? "destroyed with a scope open" : "destroyed");
        EXPECT_TRUE(handle.Expired());
    }
    EXPECT_TRUE(MatchesGolden("tgl/construction.txt", fake.Transcript()));
}

// A GLSL program as the facade sees it: a GL name, and a count of the
// facade's activation calls.
class NamedProgram : public Program {
public:
    NamedProgram() = default;
    NamedProgram(OglApi const& p_gl, unsigned p_name) { Adopt(boost::make_shared<ProgramObject>(p_gl, p_name)); }
    int activations = 0, deactivations = 0;
    void Compile(Chart::Utility::WatchedRef<Tgl> const&, Chart::Assets::Volume const&) override {}
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
// bound), the exact failed checks, and the tracked values after each step:
// lighting comes back under its bit, the colour only under its own, and a
// forgotten pop is unwound, with its warning, by the same restore.
TEST_F(TglState, LightsMaterialAndAttributeStackAsTranscribed) {
    _fake.Tracked({"light0 diffuse", "light1 diffuse", "light1 spot cutoff", "light model ambient", "normal"});
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::red)), tgl().Light(GL_LIGHT1, GL_POSITION, Vector4d(1, 2, 3, 0));
    tgl().Light(GL_LIGHT1, GL_SPOT_DIRECTION, Vector3d(0, -1, 0)), tgl().Light(GL_LIGHT1, GL_SPOT_CUTOFF, 45.0f);
    tgl().Light(GL_LIGHT0, GL_SPECULAR, Qt::blue);
    _fake.Step("lights 0 and 1 in every form");
    _fake.Tracked({"light0 diffuse", "light0 specular", "light1 position", "light1 spot direction", "light1 spot cutoff"});
    tgl().Light(GL_LIGHT2, GL_DIFFUSE, QColor(Qt::green));
    _fake.Step("light 2: past the limit of two");
    tgl().Light(GL_LIGHT0, GL_DIFFUSE, Vector3d(1, 1, 1)), tgl().Light(GL_LIGHT0, GL_SPOT_DIRECTION, Vector4d(1, 1, 1, 1));
    tgl().Light(GL_LIGHT0, GL_POSITION, QColor(Qt::white)), tgl().Light(GL_LIGHT0, GL_AMBIENT, 1.0f);
    _fake.Step("forms that do not fit their parameter");
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, 2), tgl().LightModel(GL_LIGHT_MODEL_LOCAL_VIEWER, int(GL_TRUE));
    _fake.Step("two-sided 2, local viewer GL_TRUE: only GL_TRUE is true");
    _fake.Tracked({"light model two side", "light model local viewer"});
    tgl().LightModel(GL_LIGHT_MODEL_AMBIENT, Vector4d(0.5, 0.5, 0.5, 1));
    _fake.Step("light model ambient");
    _fake.Tracked({"light model ambient"});
    tgl().LightModel(GL_LIGHT_MODEL_TWO_SIDE, Vector4d(1, 1, 1, 1));
    _fake.Step("a vector for two-sided");

    Material const material{.face = GL_FRONT, .shininess = 32};
    tgl().Color(QColor::fromRgbF(1, 0, 1, 1)), tgl().Normal(0, 1, 0);
    tgl().ColorMaterial(GL_FRONT, GL_DIFFUSE), tgl().Material(material);
    _fake.Step("fixed function: colour, normal, colour material, front material");
    {
        Tgl::Token const bound = tgl().Bind(boost::make_shared<NamedProgram>(tgl().Api(), 7));
        tgl().Color(QColor(Qt::blue)), tgl().Normal(Vector3d(1, 0, 0)), tgl().Material(material);
        _fake.Step("a program bound: the material is only kept; colour and normal, current vertex values in both routes, go to GL");
        _fake.Tracked({"color", "normal", "material front shininess", "material back shininess"});
    }
    {
        Scoped<Tgl> scope(tgl());
        tgl().Color(QColor(Qt::red)), tgl().PushAttrib(GL_LIGHTING_BIT);
        tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::green)), tgl().Color(QColor(Qt::green)), tgl().PopAttrib();
        _fake.Step("the program unbound; red; push lighting; green light and colour; pop");
        _fake.Tracked({"light0 diffuse", "color"});
        tgl().PushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT);
        tgl().Color(QColor(Qt::blue)), tgl().Normal(0, 0, 1), tgl().Light(GL_LIGHT0, GL_DIFFUSE, QColor(Qt::blue));
    }
    _fake.Step("push current and lighting; blue light and colour, normal z; pop forgotten at scope end");
    _fake.Tracked({"light0 diffuse", "color", "normal"});
    EXPECT_TRUE(MatchesGolden("tgl/lighting.txt", _fake.Transcript()));
}

// Binding switches to the program (and the texture limit with it); binding
// what is in force switches nothing; each token restores the one before.
TEST_F(TglState, BindingSwitchesModeAndTheTokenRestoresThePrevious) {
    auto const first = boost::make_shared<NamedProgram>(tgl().Api(), 7), second = boost::make_shared<NamedProgram>(tgl().Api(), 9);
    {
        Tgl::Token const outer = tgl().Bind(first);
        EXPECT_FALSE(tgl().IsFixedFunction() || tgl().RequiresCompatibilityAttributes());
        EXPECT_TRUE(tgl().GetMaxTextures() == 18 && tgl().ActiveProgram() == first && first->IsActive());
        {
            Tgl::Token const inner = tgl().Bind(second), again = tgl().Bind(second);
            EXPECT_TRUE(first->deactivations == 1 && second->activations == 1);
        }
        EXPECT_TRUE(tgl().ActiveProgram() == first && first->activations == 2);
    }
    EXPECT_TRUE(tgl().IsFixedFunction() && tgl().RequiresCompatibilityAttributes() && !first->IsActive() && tgl().GetMaxTextures() == 4);
    EXPECT_EQ(_fake.gl.CallStrings(), (Lines{"glUseProgram(7)", "glUseProgram(9)", "glUseProgram(7)", "glUseProgram(0)"}));
    Tgl::Token const objectless = tgl().Bind(boost::make_shared<NamedProgram>());
    EXPECT_FALSE(tgl().IsFixedFunction() || tgl().RequiresCompatibilityAttributes());
    Tgl::Token depth = tgl().ScopedOutputStage(OutputStage::Deferred_Depth), opaque = tgl().ScopedOutputStage(OutputStage::Deferred_Opaque);
    EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Deferred_Opaque);
    opaque.reset(), depth.reset();
    EXPECT_EQ(tgl().ActiveOutputStage(), OutputStage::Forward);
}

// The transcript holds each stack's pushes and pops, the forced-unwind
// warning of a scoped operation still held, and the failed checks of pushes,
// ends and vertices out of place.
TEST_F(TglState, PushesPopsAndForcedUnwindsAsTranscribed) {
    {
        Scoped<Tgl> scope(tgl());
        tgl().PushAttribScope(GL_LIGHTING_BIT).reset();
        tgl().PushName(7), tgl().PushName(8), tgl().PopName();
        tgl().PushAttrib(GL_CURRENT_BIT), tgl().PushScissor(), tgl().Scissor({1, 2, 3, 4});
    }
    tgl().Scissor({100, 100, 10, 10});
    _fake.Step("attribute token released at once; names 7, 8, one pop; attributes, scissor pushed; scope ends; "
               "then a scissor of 100, 100, 10, 10");

    int undone = 0;
    auto const operation = [&] { return boost::shared_ptr<void>(boost::make_shared<UndoAction>([&] { ++undone; })); };
    boost::shared_ptr<void> const held = operation();
    {
        Scoped<Tgl> scope(tgl());
        tgl().PushScopedOperation(operation()), tgl().PushScopedOperation(held);
    }
    EXPECT_EQ(undone, 1);
    _fake.Step("scoped operations: one released at once, one still held at scope end");
    tgl().PushScopedOperation(operation()), tgl().PushAttrib(GL_ENABLE_BIT), tgl().PopAttrib();
    tgl().PushName(3), tgl().PopName(), tgl().PopScissor();
    _fake.Step("pushes and pops with no scope open");

    tgl().Begin(GL_TRIANGLES), tgl().Begin(GL_TRIANGLES);
    for (int i = 0; i < 3; ++i) tgl().Vertex(double(i), 0.0);
    tgl().End();
    _fake.Step("Begin twice, three vertices, End, with no scope open");
    tgl().End(), tgl().Vertex(1.0, 2.0), tgl().TexCoord(0.5), tgl().MultiTexCoord(GL_TEXTURE1, 0.5), tgl().Pixel(1, 2);
    _fake.Step("End, Vertex, TexCoord, MultiTexCoord, Pixel outside Begin/End");

    testing::internal::CaptureStdout();
    {
        Scoped<Tgl> scope(tgl());
        tgl().Begin(GL_LINES), tgl().Vertex(0.0, 0.0), tgl().Vertex(1.0, 1.0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WARNING: scope unwind within Begin/End block\n");
    EXPECT_FALSE(tgl().InBeginEnd());
    _fake.Step("a scope closed inside Begin/End ends the primitive first");
    EXPECT_TRUE(MatchesGolden("tgl/scopes.txt", _fake.Transcript()));
}

// Pixels sit on the corners, but on the centres in lines.
TEST_F(TglState, PixelsSitOnCornersButOnCentresInLines) {
    Scoped<Tgl> scope(tgl());
    std::vector<double> drawn;
    _fake.gl.On("glVertexPointer", [&](FakeCall const& p_call) -> FakeResult {
        return drawn.assign(static_cast<double const*>(p_call.Ptr(3)), static_cast<double const*>(p_call.Ptr(3)) + 3), std::int64_t{0};
    });
    for (auto const& [primitive, offset] : std::initializer_list<std::pair<unsigned, double>>{{GL_POINTS, 0}, {GL_LINE_STRIP, 0.5}, {GL_TRIANGLES, 0}}) {
        tgl().Begin(primitive), tgl().Pixel(3, 4), tgl().End();
        EXPECT_EQ(drawn, (std::vector<double>{3 + offset, 4 + offset, 0})) << primitive;
    }
}

// Each row on a new facade: the rectangle in force narrows each request,
// rounded outwards; one of no size clips nothing; an empty cut sends
// nothing; a pop of the base entry pops nothing.
TEST_F(TglState, ScissorRequestsNarrowTheRectangleInForceAsTranscribed) {
    auto const s = [&](double p_x, double p_y, double p_w, double p_h) { tgl().Scissor(Viewport(p_x, p_y, p_w, p_h)); };
    auto const row = [&](char const* p_label, auto const& p_steps) {
        _fake.Build().ScopeBegin(), p_steps(), _fake.Step(p_label);  // the scope is dropped with the facade
    };
    row("10.4, 20.6, 5.2, 5.2 on the base entry of no size", [&] { s(10.4, 20.6, 5.2, 5.2); });
    row("0, 0, 100, 100; 50, 40, 100, 100; 0, 0, 100, 100", [&] { s(0, 0, 100, 100), s(50, 40, 100, 100), s(0, 0, 100, 100); });
    row("0, 0, 10, 10; outside 20, 20, 5, 5; 0, 0, 100, 100", [&] { s(0, 0, 10, 10), s(20, 20, 5, 5), s(0, 0, 100, 100); });
    row("0, 0, 10, 10; touching 10, 0, 5, 5", [&] { s(0, 0, 10, 10), s(10, 0, 5, 5); });
    row("push; 50, 60, 0, 10; 10, 10, 20, 30; pop", [&] { tgl().PushScissor(), s(50, 60, 0, 10), s(10, 10, 20, 30), tgl().PopScissor(); });
    row("pop of the base entry; 0, 0, 8, 8; 4, 4, 8, 8", [&] { tgl().PopScissor(), s(0, 0, 8, 8), s(4, 4, 8, 8); });
    EXPECT_TRUE(MatchesGolden("tgl/scissor.txt", _fake.Transcript()));
}

// The box helpers multiply GL's matrix by the library's own projections;
// the transcript holds the viewport rounding, quaternion rotations (degrees,
// identity skipped, invalid ones warned about) and the checks of a box or
// viewport of no size; Project takes the model-view, projection and viewport
// GL holds.
TEST_F(TglState, TransformsAsTranscribedAndProjectedWithGLsMatrices) {
    std::vector<Matrix4> multiplied;
    _fake.gl.On("glMultMatrixd", [&](FakeCall const& p_call) -> FakeResult {
        return multiplied.push_back(Matrix4::FromColumnMajor(static_cast<double const*>(p_call.Ptr(0)))), std::int64_t{0};
    });
    // A 2 x 2 box in a 200 x 100 viewport must be widened to 4 x 2.
    tgl().Ortho(Viewport(0, 0, 200, 100), BoundingBox({-1, -1, -5}, {1, 1, -1}));
    tgl().Ortho2D(Viewport(10, 20, 300, 200));
    EXPECT_EQ(multiplied, (std::vector<Matrix4>{Ortho(-2, 2, -1, 1, 1, 5), Ortho(10, 310, 20, 220, -1, 1)}));
    tgl().Viewport(Viewport(0.5, 0.5, 99.2, 49.9)), tgl().Viewport(Viewport(0, 0, 0, 10));
    _fake.Step("two box helpers; viewports (0.5, 0.5, 99.2, 49.9) and (0, 0, 0, 10)");
    tgl().Rotate(Quaternion::Identity()), tgl().Rotate(Quaternion(-1, 0, 0, 0));
    _fake.Step("identity rotations");
    tgl().Rotate(Quaternion(std::numeric_limits<double>::quiet_NaN(), 0, 0, 1)), tgl().Rotate(Quaternion(0, 0, 0, 0));
    _fake.Step("invalid rotations");
    tgl().Rotate(Quaternion::FromAxisAngle(Angle::FromDegrees(90), {0, 0, 2}));
    tgl().RasterPos({1, 2, 3});
    _fake.Step("90 degrees about z; raster position (1, 2, 3)");
    tgl().Ortho2D(Viewport(0, 0, -5, 10)), tgl().Ortho(Viewport(0, 0, 0, 100), BoundingBox({0, 0, 0}, {0, 0, 0}));
    tgl().GetMatrix(GL_COLOR);
    _fake.Step("projections of no size, a matrix GL cannot read");
    EXPECT_TRUE(MatchesGolden("tgl/transforms.txt", _fake.Transcript()));

    // The origin, moved to x 0.5 then halved, lands at 0.25, five eighths
    // into a 64-wide viewport from x 8 (swapped matrices would give 0.5).
    _fake.doubles[GL_MODELVIEW_MATRIX] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0.5, 0, 0, 1};  // column-major
    _fake.doubles[GL_PROJECTION_MATRIX] = {0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1};
    _fake.gl.SetInteger(GL_VIEWPORT, {8, 0, 64, 32});
    Vector3d window, object(1.0);
    ASSERT_TRUE(tgl().Project({0, 0, 0}, window) == int(GL_TRUE) && tgl().UnProject(window, object) == int(GL_TRUE));
    EXPECT_EQ(window, Vector3d(48, 16, 0.5));
    EXPECT_LT(glm::length(object), 1e-9) << object;
}

}  // namespace
}  // namespace Tev::Test
