// OperationStack and the Scoped/Unscoped guards: the order in which filed
// operations run, nesting, and what happens to exceptions.
#include "framework/utility/OperationStack.h"
#include "framework/utility/Scoped.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace Tev::Chart::Utility {
namespace {

using Trace = std::vector<std::string>;

OperationStack::Operation Record(Trace& p_trace, std::string p_text) {
    return [&p_trace, p_text] { p_trace.push_back(p_text); };
}

TEST(OperationStack, PopRunsOnlyTheTopLevelLastFiledFirst) {
    OperationStack stack;
    Trace trace;
    stack.Push();
    stack.InsertOperation(Record(trace, "outer 1"), "o1");
    stack.InsertOperation(Record(trace, "outer 2"), "o2");
    stack.Push();
    stack.InsertOperation(Record(trace, "inner 1"), "i1");
    stack.InsertOperation(Record(trace, "inner 2"), "i2");
    EXPECT_EQ(stack.Depth(), 2u);
    EXPECT_EQ(stack.TopNames(), (Trace{"i1", "i2"}));

    stack.Pop();
    EXPECT_EQ(trace, (Trace{"inner 2", "inner 1"}));
    EXPECT_EQ(stack.TopNames(), (Trace{"o1", "o2"}));

    stack.Pop();
    EXPECT_EQ(trace, (Trace{"inner 2", "inner 1", "outer 2", "outer 1"}));
    EXPECT_EQ(stack.Depth(), 0u);
}

TEST(OperationStack, MisuseIsQuietAndLeftOpenLevelsDoNotRun) {
    Trace trace;
    Debug::CaptureScope capture;
    {
        OperationStack stack;
        stack.Pop();
        stack.InsertOperation(Record(trace, "no level"), "dropped");
        stack.Push();
        EXPECT_TRUE(stack.TopNames().empty()) << "filed with no level open, so never kept";
        stack.InsertOperation(Record(trace, "left open"), "left");
    }
    EXPECT_TRUE(trace.empty());
    EXPECT_TRUE(capture.Entries().empty());
}

TEST(OperationStack, ThrowingOperationIsLoggedAndTheOthersStillRun) {
    OperationStack stack;
    Trace trace;
    Debug::CaptureScope capture;
    stack.Push();
    stack.InsertOperation(Record(trace, "first"), "first");
    stack.InsertOperation([] { throw std::runtime_error("undo failed"); }, "PopAttrib");
    stack.InsertOperation(Record(trace, "last"), "last");
    EXPECT_NO_THROW(stack.Pop());

    EXPECT_EQ(trace, (Trace{"last", "first"}));
    auto const errors = capture.Texts(Debug::Channel::Error);
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_TRUE(errors[0].starts_with("Exception caught in ") && errors[0].find("OperationStack") != std::string::npos &&
                errors[0].ends_with(" [PopAttrib]: undo failed"))
        << errors[0];
}

TEST(OperationStack, OperationsMayUseTheStackWhileItPops) {
    OperationStack stack;
    Trace trace;
    stack.Push();
    stack.Push();
    // An undo that itself pops the level below (as an undo that calls a pop
    // of the same stack would) and one that opens and fills a new level.
    stack.InsertOperation(
        [&] {
            stack.Push();
            stack.InsertOperation(Record(trace, "filed during pop"), "late");
            stack.Pop();
        },
        "nested");
    stack.InsertOperation([&] { stack.Pop(); }, "pops below");
    stack.Pop();
    EXPECT_EQ(trace, Trace{"filed during pop"});
    EXPECT_EQ(stack.Depth(), 0u);
}

// An object with its own scope stack, as the facade has.
struct ScopeOwner {
    Trace trace;
    bool throwOnBegin = false;
    bool throwOnEnd = false;

    void ScopeBegin() {
        trace.push_back("begin");
        if (throwOnBegin) throw std::runtime_error("begin failed");
    }
    void ScopeEnd() {
        trace.push_back("end");
        if (throwOnEnd) throw std::logic_error("end failed");
    }
};

void UseScoped(Scoped<ScopeOwner>& p_scope) { p_scope->trace.push_back("draw"); }

TEST(Scoped, OpensAndClosesAScopeAroundItsLifetime) {
    ScopeOwner owner;
    Unscoped<ScopeOwner> const handle = owner;
    {
        Scoped<ScopeOwner> outer(handle);
        UseScoped(outer);
        {
            Scoped<ScopeOwner> inner(outer.Unscope());
            EXPECT_EQ(&inner.Get(), &owner);
        }
        (*outer).trace.push_back("after inner");
    }
    EXPECT_EQ(owner.trace, (Trace{"begin", "draw", "begin", "end", "after inner", "end"}));
}

TEST(Scoped, ExceptionsFromBeginAndEndAreLoggedNotThrown) {
    ScopeOwner owner;
    owner.throwOnBegin = true;
    owner.throwOnEnd = true;
    Debug::CaptureScope capture;
    EXPECT_NO_THROW({ Scoped<ScopeOwner> scope(owner); });

    EXPECT_EQ(owner.trace, (Trace{"begin", "end"})) << "a failed begin still gets its end";
    auto const errors = capture.Texts(Debug::Channel::Error);
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_TRUE(errors[0].find("Scoped") != std::string::npos && errors[0].ends_with(": begin failed")) << errors[0];
    EXPECT_TRUE(errors[1].find("~Scoped") != std::string::npos && errors[1].ends_with(": end failed")) << errors[1];
}

}  // namespace
}  // namespace Tev::Chart::Utility
