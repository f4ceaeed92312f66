// The scissor stack: intersection with the rectangle in force, rounding
// outwards, the unclipped rules for a rectangle of no size, deliberate
// accumulation without a push, and what a push and pop restore.
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"

#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Viewport;
using Lines = std::vector<std::string>;

// One step on the facade: a rectangle, or Push, Pop, or Forget (the calls
// so far are dropped).
struct Step {
    enum Kind { Scissor, Push, Pop, Forget } kind = Scissor;
    Viewport rect;
    Step(Kind p_kind) : kind(p_kind) {}
    Step(double p_x, double p_y, double p_w, double p_h) : rect(p_x, p_y, p_w, p_h) {}
};

TEST(TglScissor, RequestsNarrowTheRectangleInForceAndPushPopRestoreIt) {
    struct Row {
        char const* name;
        std::vector<Step> steps;
        Lines calls;
    } const rows[] = {
        {"a base entry of no size sends the request rounded outwards", {{10.4, 20.6, 5.2, 5.2}},
         {"glScissor(10, 20, 6, 6)"}},
        {"calls without a push keep narrowing", {{0, 0, 100, 100}, {50, 40, 100, 100}, {0, 0, 100, 100}},
         {"glScissor(0, 0, 100, 100)", "glScissor(50, 40, 50, 60)", "glScissor(50, 40, 50, 60)"}},
        // What is stored then has no size, so it clips nothing: the next
        // request passes whole, from the larger corner.
        {"a rectangle outside sends nothing", {{0, 0, 10, 10}, Step::Forget, {20, 20, 5, 5}, {0, 0, 100, 100}},
         {"glScissor(20, 20, 100, 100)"}},
        {"touching edges are no overlap", {{0, 0, 10, 10}, Step::Forget, {10, 0, 5, 5}}, {}},
        {"a zero width passes the size but keeps the larger corner",
         {Step::Push, {50, 60, 0, 10}, {10, 10, 20, 30}, Step::Pop}, {"glScissor(50, 60, 20, 30)"}},
        // Popping sends nothing; the next call sees the rectangle of before.
        {"push and pop bracket the narrowing",
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
        Debug::CaptureScope capture;
        Chart::Utility::Scoped<Tgl> scope(tgl);
        for (Step const& step : row.steps) {
            if (step.kind == Step::Scissor) tgl.Scissor(step.rect);
            if (step.kind == Step::Push) tgl.PushScissor();
            if (step.kind == Step::Pop) tgl.PopScissor();
            if (step.kind == Step::Forget) fake.ClearCalls();
        }
        EXPECT_EQ(fake.Calls(), row.calls);
        EXPECT_TRUE(Assertions(capture).empty());
    }
}

}  // namespace
}  // namespace Tev::Test
