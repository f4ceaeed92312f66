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
using Chart::Utility::Scoped;
using Lines = std::vector<std::string>;

class TglScissor : public ::testing::Test {
protected:
    void SetUp() override { _fake.Build(); }
    Tgl& tgl() { return _fake.Get(); }
    FakeTgl _fake;
};

TEST_F(TglScissor, BaseEntryOfNoSizeSendsTheRequestRoundedOutwards) {
    tgl().Scissor(Viewport(10.4, 20.6, 5.2, 5.2));
    EXPECT_EQ(_fake.Calls(), Lines{"glScissor(10, 20, 6, 6)"});
}

TEST_F(TglScissor, SuccessiveCallsWithoutAPushKeepNarrowing) {
    tgl().Scissor(Viewport(0, 0, 100, 100));
    tgl().Scissor(Viewport(50, 40, 100, 100));
    tgl().Scissor(Viewport(0, 0, 100, 100));
    EXPECT_EQ(_fake.Calls(),
              (Lines{"glScissor(0, 0, 100, 100)", "glScissor(50, 40, 50, 60)", "glScissor(50, 40, 50, 60)"}));
}

TEST_F(TglScissor, RectangleOutsideTheOneInForceSendsNothing) {
    tgl().Scissor(Viewport(0, 0, 10, 10));
    _fake.ClearCalls();
    tgl().Scissor(Viewport(20, 20, 5, 5));
    EXPECT_TRUE(_fake.Calls().empty());
    // What is stored now has no size, so it clips nothing: the next request
    // passes whole, from the larger corner.
    tgl().Scissor(Viewport(0, 0, 100, 100));
    EXPECT_EQ(_fake.Calls(), Lines{"glScissor(20, 20, 100, 100)"});
}

TEST_F(TglScissor, TouchingEdgesAreNoOverlap) {
    tgl().Scissor(Viewport(0, 0, 10, 10));
    _fake.ClearCalls();
    tgl().Scissor(Viewport(10, 0, 5, 5));
    EXPECT_TRUE(_fake.Calls().empty());
}

TEST_F(TglScissor, ZeroWidthInForcePassesTheSizeButKeepsTheLargerCorner) {
    Scoped<Tgl> scope(tgl());
    tgl().PushScissor();
    tgl().Scissor(Viewport(50, 60, 0, 10));
    EXPECT_TRUE(_fake.Calls().empty());
    tgl().Scissor(Viewport(10, 10, 20, 30));
    EXPECT_EQ(_fake.Calls(), Lines{"glScissor(50, 60, 20, 30)"});
    tgl().PopScissor();
}

TEST_F(TglScissor, PushAndPopBracketTheNarrowing) {
    Scoped<Tgl> scope(tgl());
    tgl().Scissor(Viewport(0, 0, 100, 100));
    tgl().PushScissor();
    tgl().Scissor(Viewport(10, 10, 20, 20));
    tgl().PushScissor();
    tgl().Scissor(Viewport(15, 15, 100, 100));
    tgl().PopScissor();
    tgl().PopScissor();
    _fake.ClearCalls();
    // Popping sends nothing; the next call sees the rectangle of before.
    tgl().Scissor(Viewport(5, 5, 200, 200));
    EXPECT_EQ(_fake.Calls(), Lines{"glScissor(5, 5, 95, 95)"});
}

TEST_F(TglScissor, PoppingTheBaseEntryLeavesScissorsUnstored) {
    Debug::CaptureScope capture;
    Scoped<Tgl> scope(tgl());
    tgl().PopScissor();  // nothing pushed: the level pops nothing
    EXPECT_TRUE(Assertions(capture).empty());
    tgl().Scissor(Viewport(0, 0, 8, 8));
    tgl().Scissor(Viewport(4, 4, 8, 8));
    EXPECT_EQ(_fake.Calls(), (Lines{"glScissor(0, 0, 8, 8)", "glScissor(4, 4, 4, 4)"}));
}

}  // namespace
}  // namespace Tev::Test
