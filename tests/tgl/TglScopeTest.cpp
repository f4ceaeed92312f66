// The scope discipline on the fake: pushes filed on their own stacks with a
// backstop on the scope, the forced unwind of a forgotten pop with its
// warning, Begin/End against scopes, pushes with no scope open, the scissor
// stack, and that every GL object the facade made goes with it.
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/shaders/Program.h"
#include "ogl/tgl/UndoOperationFallback.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <set>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Viewport;
using Chart::Utility::Scoped;

class TglScope : public ::testing::Test {
protected:
    void SetUp() override { _fake.Build(); }
    Tgl& tgl() { return *_fake.tgl; }
    FakeTgl _fake;
};

// The transcript holds each stack's pushes and pops, the forced-unwind
// warnings of the forgotten ones, and the failed checks of pushes, ends and
// vertices out of place.
TEST_F(TglScope, PushesPopsAndForcedUnwindsAsTranscribed) {
    Tgl::Token token;  // held to the end: released after a forced unwind, it would pop again
    for (bool const held : {false, true}) {
        {
            Scoped<Tgl> scope(tgl());
            token = tgl().PushAttribScope(GL_LIGHTING_BIT);
            if (!held) token.reset();
        }
        _fake.Step(held ? "attribute token still held at scope end" : "attribute token released in the scope");
    }
    {
        Scoped<Tgl> scope(tgl());
        tgl().PushName(7);
        tgl().PushName(8);
        tgl().PopName();
        tgl().PushAttrib(GL_CURRENT_BIT);
        tgl().PushScissor();
        tgl().Scissor({1, 2, 3, 4});
    }
    tgl().Scissor({100, 100, 10, 10});
    _fake.Step("names 7, 8, one pop; attributes, scissor pushed; scope ends; then a scissor of 100, 100, 10, 10");

    int undone = 0;
    auto const makeToken = [&] { return boost::shared_ptr<void>(boost::make_shared<UndoAction>([&] { ++undone; })); };
    for (bool const held : {false, true}) {
        boost::shared_ptr<void> token = makeToken();
        {
            Scoped<Tgl> scope(tgl());
            tgl().PushScopedOperation(token);
            if (!held) token.reset();
        }
        EXPECT_EQ(undone, held ? 1 : 0);
        _fake.Step(held ? "scoped operation still held at scope end" : "scoped operation released in the scope");
    }
    tgl().PushScopedOperation(makeToken());
    tgl().PushAttrib(GL_ENABLE_BIT);
    tgl().PopAttrib();
    tgl().PushName(3);
    tgl().PopName();
    _fake.Step("pushes and pops with no scope open");

    tgl().Begin(GL_TRIANGLES);
    EXPECT_TRUE(tgl().InBeginEnd());
    tgl().Begin(GL_TRIANGLES);
    for (int i = 0; i < 3; ++i) tgl().Vertex(double(i), 0.0);
    tgl().End();
    EXPECT_FALSE(tgl().InBeginEnd());
    _fake.Step("Begin twice, three vertices, End, with no scope open");
    tgl().End();
    tgl().Vertex(1.0, 2.0);
    tgl().TexCoord(0.5);
    tgl().MultiTexCoord(GL_TEXTURE1, 0.5);
    tgl().Pixel(1, 2);
    _fake.Step("End, Vertex, TexCoord, MultiTexCoord, Pixel outside Begin/End");

    testing::internal::CaptureStdout();
    {
        Scoped<Tgl> scope(tgl());
        tgl().Begin(GL_LINES);
        tgl().Vertex(0.0, 0.0);
        tgl().Vertex(1.0, 1.0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WARNING: scope unwind within Begin/End block\n");
    EXPECT_FALSE(tgl().InBeginEnd());
    _fake.Step("a scope closed inside Begin/End ends the primitive first");
    EXPECT_TRUE(MatchesGolden("tgl/scopes.txt", _fake.Transcript()));
}

// Pixels sit on the corners, but on the centres in lines.
TEST_F(TglScope, PixelsSitOnCornersButOnCentresInLines) {
    Scoped<Tgl> scope(tgl());
    std::vector<double> drawn;
    _fake.gl.On("glVertexPointer", [&](FakeCall const& p_call) -> FakeResult {
        auto const* vertices = static_cast<double const*>(p_call.Ptr(3));
        drawn.assign(vertices, vertices + 3);
        return std::int64_t{0};
    });
    for (unsigned primitive : {GL_POINTS, GL_LINE_STRIP, GL_TRIANGLES}) {
        tgl().Begin(primitive);
        tgl().Pixel(3, 4);
        tgl().End();
        double const offset = primitive == GL_LINE_STRIP ? 0.5 : 0.0;
        EXPECT_EQ(drawn, (std::vector<double>{3 + offset, 4 + offset, 0})) << primitive;
    }
}

// One step on the scissor stack: a rectangle, or Push, Pop, or Forget (the
// calls so far are dropped).
struct Step {
    enum Kind { Scissor, Push, Pop, Forget } kind = Scissor;
    Viewport rect;
    Step(Kind p_kind) : kind(p_kind) {}
    Step(double p_x, double p_y, double p_w, double p_h) : rect(p_x, p_y, p_w, p_h) {}
};

// Requests narrow the rectangle in force, rounded outwards; one of no size
// clips nothing; push and pop restore what was in force.
TEST(TglScissor, RequestsNarrowTheRectangleInForceAndPushPopRestoreIt) {
    struct Row {
        char const* name;
        std::vector<Step> steps;
        std::vector<std::string> calls;
    } const rows[] = {
        {"a base entry of no size sends the request rounded outwards", {{10.4, 20.6, 5.2, 5.2}},
         {"glScissor(10, 20, 6, 6)"}},
        {"calls without a push keep narrowing", {{0, 0, 100, 100}, {50, 40, 100, 100}, {0, 0, 100, 100}},
         {"glScissor(0, 0, 100, 100)", "glScissor(50, 40, 50, 60)", "glScissor(50, 40, 50, 60)"}},
        // What is stored then has no size: the next request passes whole,
        // from the larger corner.
        {"a rectangle outside sends nothing", {{0, 0, 10, 10}, Step::Forget, {20, 20, 5, 5}, {0, 0, 100, 100}},
         {"glScissor(20, 20, 100, 100)"}},
        {"touching edges are no overlap", {{0, 0, 10, 10}, Step::Forget, {10, 0, 5, 5}}, {}},
        {"a zero width passes the size but keeps the larger corner",
         {Step::Push, {50, 60, 0, 10}, {10, 10, 20, 30}, Step::Pop}, {"glScissor(50, 60, 20, 30)"}},
        {"push and pop bracket the narrowing; popping sends nothing",
         {{0, 0, 100, 100}, Step::Push, {10, 10, 20, 20}, Step::Push, {15, 15, 100, 100}, Step::Pop, Step::Pop,
          Step::Forget, {5, 5, 200, 200}},
         {"glScissor(5, 5, 95, 95)"}},
        {"popping the base entry pops nothing", {Step::Pop, {0, 0, 8, 8}, {4, 4, 8, 8}},
         {"glScissor(0, 0, 8, 8)", "glScissor(4, 4, 4, 4)"}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        FakeTgl fake;
        Tgl& tgl = fake.Build();
        Scoped<Tgl> scope(tgl);
        for (Step const& step : row.steps) {
            if (step.kind == Step::Scissor) tgl.Scissor(step.rect);
            if (step.kind == Step::Push) tgl.PushScissor();
            if (step.kind == Step::Pop) tgl.PopScissor();
            if (step.kind == Step::Forget) fake.gl.ClearCalls();
        }
        EXPECT_EQ(fake.gl.CallStrings(), row.calls);
        EXPECT_TRUE(Assertions(fake.capture).empty());
    }
}

// Buffers from its pool, programs and textures: none outlives the facade.
TEST(TglLeak, DestroyingTheFacadeReleasesEveryObjectItMade) {
    FakeTgl fake;
    std::map<std::string, std::set<std::int64_t>> live;  // by kind, the names made and not deleted
    std::int64_t next = 1;
    for (std::string kind : {"Buffers", "Textures"}) {
        fake.gl.On("glGen" + kind, [&, kind](FakeCall const& p_call) -> FakeResult {
            auto* names = static_cast<GLuint*>(const_cast<void*>(p_call.Ptr(1)));
            for (std::int64_t i = 0; i < p_call.Int(0); ++i) live[kind].insert(names[i] = GLuint(next++));
            return std::int64_t{0};
        });
        fake.gl.On("glDelete" + kind, [&, kind](FakeCall const& p_call) -> FakeResult {
            for (std::int64_t i = 0; i < p_call.Int(0); ++i) live[kind].erase(static_cast<GLuint const*>(p_call.Ptr(1))[i]);
            return std::int64_t{0};
        });
    }
    fake.gl.On("glCreateProgram", [&](FakeCall const&) -> FakeResult { return live["Program"].insert(next), next++; });
    fake.gl.On("glDeleteProgram", [&](FakeCall const& p_call) -> FakeResult {
        return live["Program"].erase(p_call.Int(0)), std::int64_t{0};
    });
    Tgl& tgl = fake.Build();
    {
        Scoped<Tgl> scope(tgl);
        tgl.Begin(GL_QUADS);
        for (int i = 0; i < 4; ++i) tgl.Vertex(double(i & 1), double(i >> 1));
        tgl.End();
        Tgl::Token const bound = tgl.Bind(boost::make_shared<FixedFunction>(tgl.Api()));
    }
    using Access = Internal::BufferPoolAccess;
    BufferPool& pool = *tgl.GetBufferPool();
    auto const used = Access::FindOrAllocate(pool, 1000, BufferUsage::Default);
    Access::Free(pool, Access::FindOrAllocate(pool, 2000, BufferUsage::Default));
    Access::FindOrAllocate(pool, 3000, BufferUsage(BufferUsage::Stream, BufferUsage::Draw));
    EXPECT_EQ(live["Buffers"].size(), 3u);
    fake.tgl.reset();
    for (auto const& [kind, names] : live) EXPECT_TRUE(names.empty()) << kind;
}

}  // namespace
}  // namespace Tev::Test
