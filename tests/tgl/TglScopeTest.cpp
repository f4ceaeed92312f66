// The scope discipline on the fake: pushes filed on their own stacks with a
// backstop on the scope, the forced unwind of a forgotten pop with its
// warning, tokens, Begin/End against scopes, and pushes with no scope open.
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/tgl/UndoOperationFallback.h"

#include <GL/gl.h>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Utility::Scoped;
using Debug::Channel;
using Lines = std::vector<std::string>;

std::string const ForcedUnwind =
    "WARNING: \"_func.expired() && \"No eqivelent pop operation found, so forcing an unwind!\"\" - "
    "void Tev::Chart::Ogl::UndoOperationFallback::operator()() const";

// The scope's backstop pops only a token still held when the scope ends.
TEST(TglScope, AttribTokenPopsOnceWhetherReleasedInTimeOrUnwoundWithTheWarning) {
    for (bool const held : {false, true}) {
        SCOPED_TRACE(held);
        FakeTgl fake;
        Tgl& tgl = fake.Build();
        Debug::CaptureScope capture;
        Tgl::Token token;
        {
            Scoped<Tgl> scope(tgl);
            token = tgl.PushAttribScope(GL_LIGHTING_BIT);
            EXPECT_EQ(fake.Calls(), Lines{"glPushAttrib(64)"});
            if (!held) token.reset();
            EXPECT_EQ(fake.Calls("glPopAttrib").size(), held ? 0u : 1u);
        }
        EXPECT_EQ(fake.Calls("glPopAttrib").size(), 1u);
        EXPECT_EQ(capture.Texts(Channel::Error), held ? Lines{ForcedUnwind} : Lines{});
        EXPECT_TRUE(Assertions(capture).empty());
    }
}

TEST(TglScope, ForgottenPopsOfEveryStackAreUnwoundAtScopeEnd) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    Debug::CaptureScope capture;
    {
        Scoped<Tgl> scope(tgl);
        tgl.PushName(7);
        tgl.PushName(8);
        tgl.PopName();
        tgl.PushAttrib(GL_CURRENT_BIT);
        tgl.PushScissor();
        tgl.Scissor({1, 2, 3, 4});
    }
    // The pop that was made and the two that were forgotten.
    EXPECT_EQ(fake.Calls("glPopName").size(), 2u);
    EXPECT_EQ(fake.Calls("glPopAttrib").size(), 1u);
    EXPECT_EQ(capture.Texts(Channel::Error), Lines(3, ForcedUnwind));
    // The forced scissor unwind took the pushed rectangle off again: the
    // base entry of no size is in force, so nothing is clipped.
    fake.ClearCalls();
    tgl.Scissor({100, 100, 10, 10});
    EXPECT_EQ(fake.Calls(), Lines{"glScissor(100, 100, 10, 10)"});
}

TEST(TglScope, ScopedOperationFallbackRunsOnlyForAStillHeldToken) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    int undone = 0;
    auto const makeToken = [&] { return boost::shared_ptr<void>(boost::make_shared<UndoAction>([&] { ++undone; })); };

    Debug::CaptureScope capture;
    {
        Scoped<Tgl> scope(tgl);
        boost::shared_ptr<void> released = makeToken();
        tgl.PushScopedOperation(released);
        released.reset();
    }
    EXPECT_EQ(undone, 0);
    EXPECT_TRUE(capture.Texts(Channel::Error).empty());

    boost::shared_ptr<void> held = makeToken();
    {
        Scoped<Tgl> scope(tgl);
        tgl.PushScopedOperation(held);
    }
    EXPECT_EQ(undone, 1);
    EXPECT_EQ(capture.Texts(Channel::Error), Lines{ForcedUnwind});

    capture.Sink().Clear();
    tgl.PushScopedOperation(makeToken());
    EXPECT_TRUE(HasAssertion(capture, "_scopes.Depth()"));
}

TEST(TglScope, PushesWithoutAScopeReportAndStillPush) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    Debug::CaptureScope capture;
    tgl.PushAttrib(GL_ENABLE_BIT);
    tgl.PopAttrib();
    EXPECT_EQ(Assertions(capture),
              (Lines{"\"_scopes.Depth()\" - void Tev::Chart::Ogl::Tgl::PushAttrib(unsigned int)",
                     "\"_scopes.Depth() && _attributeUndoStack.Depth()\" - void Tev::Chart::Ogl::Tgl::PopAttrib()"}));
    tgl.PushName(3);
    tgl.PopName();
    EXPECT_EQ(Assertions(capture).size(), 4u);
    EXPECT_EQ(fake.Calls(), (Lines{"glPushAttrib(8192)", "glPopAttrib()", "glPushName(3)", "glPopName()"}));
}

TEST(TglScope, BeginEndAgainstScopes) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    Debug::CaptureScope capture;

    tgl.Begin(GL_TRIANGLES);
    EXPECT_TRUE(tgl.InBeginEnd());
    tgl.Begin(GL_TRIANGLES);
    EXPECT_TRUE(HasAssertion(capture, "!_inBeginEnd"));
    for (int i = 0; i < 3; ++i) tgl.Vertex(double(i), 0.0);
    tgl.End();
    EXPECT_FALSE(tgl.InBeginEnd());
    EXPECT_EQ(Assertions(capture).back(), "\"_scopes.Depth()\" - void Tev::Chart::Ogl::Tgl::End()");
    EXPECT_EQ(fake.Calls("glDrawArrays"), Lines{"glDrawArrays(4, 0, 3)"});

    // End (outside a scope too) and the vertex calls outside Begin/End.
    capture.Sink().Clear();
    tgl.End();
    tgl.Vertex(1.0, 2.0);
    tgl.TexCoord(0.5);
    tgl.MultiTexCoord(GL_TEXTURE1, 0.5);
    EXPECT_EQ(Assertions(capture).size(), 5u);
    EXPECT_TRUE(HasAssertion(capture, "_inBeginEnd"));

    // Closing a scope inside Begin/End ends the primitive first.
    capture.Sink().Clear();
    testing::internal::CaptureStdout();
    fake.ClearCalls();
    {
        Scoped<Tgl> scope(tgl);
        tgl.Begin(GL_LINES);
        tgl.Vertex(0.0, 0.0);
        tgl.Vertex(1.0, 1.0);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WARNING: scope unwind within Begin/End block\n");
    EXPECT_FALSE(tgl.InBeginEnd());
    EXPECT_TRUE(Assertions(capture).empty());
    EXPECT_EQ(fake.Calls("glDrawArrays"), Lines{"glDrawArrays(1, 0, 2)"});
}

TEST(TglScope, PixelsSitOnCornersButOnCentresInLines) {
    FakeTgl fake;
    Tgl& tgl = fake.Build();
    Scoped<Tgl> scope(tgl);
    std::vector<double> drawn;
    fake.Gl().On("glVertexPointer", [&](FakeCall const& p_call) -> FakeResult {
        if (p_call.Int(1) == GL_DOUBLE) {
            auto const* vertices = static_cast<double const*>(p_call.Ptr(3));
            drawn.assign(vertices, vertices + 3);
        } else {
            auto const* vertices = static_cast<float const*>(p_call.Ptr(3));
            drawn.assign(vertices, vertices + 3);
        }
        return std::int64_t{0};
    });
    auto const firstVertex = [&](unsigned p_primitive) {
        tgl.Begin(p_primitive);
        tgl.Pixel(3, 4);
        tgl.End();
        return drawn;
    };
    EXPECT_EQ(firstVertex(GL_POINTS), (std::vector<double>{3, 4, 0}));
    EXPECT_EQ(firstVertex(GL_LINE_STRIP), (std::vector<double>{3.5, 4.5, 0}));
    EXPECT_EQ(firstVertex(GL_TRIANGLES), (std::vector<double>{3, 4, 0}));

    Debug::CaptureScope capture;
    // Outside Begin/End a pixel is a misplaced vertex: reported, like Vertex.
    tgl.Pixel(1, 2);
    EXPECT_TRUE(HasAssertion(capture, "_inBeginEnd"));
}

}  // namespace
}  // namespace Tev::Test
