// The buffer pool on the recording fake: exact reuse, stream buffers, the
// statistics, mapping with its checks, copies, and that every buffer the
// pool makes is deleted again.
#include "ogl/resources/BufferPool.h"

#include "resources/FakeFacade.h"
#include "support/LogCapture.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <algorithm>

namespace Tev::Chart::Ogl {
namespace {

using Access = Internal::BufferPoolAccess;
using Handle = boost::weak_ptr<BufferData>;
using Strings = std::vector<std::string>;
using Names = std::vector<GLuint>;
using Test::Assertions;
using Test::FakeCall;
using Test::FakeResult;
using Test::HasAssertion;

BufferUsage const StaticDraw = BufferUsage::Default;
BufferUsage const DynamicDraw(BufferUsage::Dynamic, BufferUsage::Draw);
BufferUsage const StreamDraw(BufferUsage::Stream, BufferUsage::Draw);
unsigned const WriteInvalidate = Internal::AccessPermission<2>::Permission(BufferMapWriteSync::InvalidateBuffer);

char g_mapped[64];

class Pool : public ::testing::Test {
protected:
    Pool() {
        _facade.gl.On("glGenBuffers", [this](FakeCall const& p_call) -> FakeResult {
            return *static_cast<GLuint*>(const_cast<void*>(p_call.Ptr(1))) = ++_generated, std::int64_t{0};
        });
        _facade.gl.On("glDeleteBuffers", [this](FakeCall const& p_call) -> FakeResult {
            return _deleted.push_back(*static_cast<GLuint const*>(p_call.Ptr(1))), std::int64_t{0};
        });
        _facade.gl.On("glMapBufferRange", [](FakeCall const&) -> FakeResult { return static_cast<void const*>(g_mapped); });
        _pool = boost::make_shared<BufferPool>(_apiLifetime.Ref<const OglApi>(_facade.api));
        Internal::ResourceAccess::Initialize(*_pool, *_facade.tgl, _facade.api, _facadeLifetime);
    }

    Handle Get(std::uint64_t p_bytes, BufferUsage const& p_usage) { return Access::FindOrAllocate(*_pool, p_bytes, p_usage); }
    void Free(Handle const& p_handle) { Access::Free(*_pool, p_handle); }
    static unsigned Name(Handle const& p_handle) { return p_handle.lock()->Buffer(); }
    Strings Calls() const { return _facade.gl.CallStrings(); }
    Names Deleted() {
        std::sort(_deleted.begin(), _deleted.end());
        return _deleted;
    }
    // Total, used and freed bytes.
    std::vector<std::uint64_t> Statistics() const {
        BufferPool::MemoryStatistics const stats = _pool->GetMemoryStatistics();
        return {stats.totalMemory, stats.usedMemory, stats.freedMemory};
    }

    // Declared before the pool, which deletes its buffers through the fake
    // when it goes: the fake's handlers record into them.
    GLuint _generated = 0;
    Names _deleted;
    ::Tev::Test::FakeFacade _facade;
    Utility::Lifetime _apiLifetime;
    Utility::Lifetime _facadeLifetime;
    boost::shared_ptr<BufferPool> _pool;
};

using Bytes = std::vector<std::uint64_t>;

TEST_F(Pool, FreedBuffersComeBackOneByOneOnlyForTheSameSizeAndUsage) {
    Handle const first = Get(1000, StaticDraw);
    auto const calls = Calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_TRUE(calls[0].starts_with("glGenBuffers(1, ")) << calls[0];
    EXPECT_EQ(Strings(calls.begin() + 1, calls.end()),
              (Strings{"glBindBuffer(34962, 1)", "glBufferData(34962, 1000, 0, 35044)", "glBindBuffer(34962, 0)"}));

    Free(first);
    _facade.gl.ClearCalls();
    Handle const again = Get(1000, StaticDraw);
    EXPECT_TRUE(Name(again) == 1u && Calls().empty());

    Free(again);
    Handle const larger = Get(1001, StaticDraw), dynamic = Get(1000, DynamicDraw);
    EXPECT_TRUE(Name(larger) == 2u && Name(dynamic) == 3u);
    EXPECT_EQ(dynamic.lock()->Usage(), unsigned(GL_DYNAMIC_DRAW));
    EXPECT_EQ(_facade.gl.Calls("glBufferData").back().Int(3), GL_DYNAMIC_DRAW);
    EXPECT_EQ(Statistics(), (Bytes{3001, 2001, 1000}));

    // All freed buffers of a size and usage are kept, each handed out once.
    Handle const second = Get(1000, StaticDraw), third = Get(1000, StaticDraw);
    Free(second), Free(third);
    EXPECT_EQ(Statistics(), (Bytes{4001, 2001, 2000}));
    Names names{Name(Get(1000, StaticDraw)), Name(Get(1000, StaticDraw)), Name(Get(1000, StaticDraw))};
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{1, 4, 5}));
    EXPECT_EQ(Statistics(), (Bytes{5001, 5001, 0}));
    EXPECT_TRUE(_deleted.empty());
}

TEST_F(Pool, StreamBuffersGoAtOnceOthersWaitForReleaseFreedMemory) {
    Handle const stream = Get(500, StreamDraw), kept = Get(300, StaticDraw), dynamic = Get(200, DynamicDraw);
    Handle const inUse = Get(100, StaticDraw);
    EXPECT_EQ(_facade.gl.Calls("glBufferData").front().Int(3), GL_STREAM_DRAW);

    Free(stream);
    EXPECT_TRUE(stream.expired() && _deleted == Names{1});
    EXPECT_EQ(Statistics(), (Bytes{600, 600, 0}));
    Free(kept), Free(dynamic);
    EXPECT_EQ(_deleted.size(), 1u);
    EXPECT_EQ(Statistics(), (Bytes{600, 100, 500}));
    {
        // Freeing what is not in use is reported and changes nothing.
        Debug::CaptureScope capture;
        Free(kept);
        EXPECT_EQ(Assertions(capture), (Strings{"\"it != _used.end() && \"Memory to free not found in used list!\"\" - void "
                                                "Tev::Chart::Ogl::BufferPool::FreeBufferData(const "
                                                "boost::weak_ptr<Tev::Chart::Ogl::BufferData>&)"}));
        EXPECT_EQ(Statistics(), (Bytes{600, 100, 500}));
    }

    _pool->ReleaseFreedMemory();
    EXPECT_EQ(Deleted(), (Names{1, 2, 3}));
    EXPECT_EQ(Statistics(), (Bytes{100, 100, 0}));
    EXPECT_FALSE(inUse.expired());
}

TEST_F(Pool, UsageTokensAndTheirChecks) {
    unsigned const expected[12] = {GL_STATIC_DRAW,  GL_STATIC_READ,  GL_STATIC_COPY,  0,
                                   GL_DYNAMIC_DRAW, GL_DYNAMIC_READ, GL_DYNAMIC_COPY, 0,
                                   GL_STREAM_DRAW,  GL_STREAM_READ,  GL_STREAM_COPY,  0};
    Debug::CaptureScope capture;
    for (int f = 0; f < 3; ++f)
        for (int n = 0; n < 4; ++n)
            EXPECT_EQ(Access::UsageToken(BufferUsage(BufferUsage::Frequency(f), BufferUsage::Nature(n))),
                      expected[f * 4 + n]);
    EXPECT_EQ(Assertions(capture).size(), 3u);
    EXPECT_TRUE(HasAssertion(capture, "token != Tokens::TGL_NONE"));

    capture.Sink().Clear();
    EXPECT_EQ(Access::UsageToken(BufferUsage(BufferUsage::Frequency(3), BufferUsage::Draw)), 0u);
    auto const failures = Assertions(capture);
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_TRUE(failures[0].starts_with("\"0 <= index < tokenLookup.size()\" - ")) << failures[0];
}

TEST_F(Pool, MappingBindsMapsAndUnbindsAndChecksItsWindowAndItsPointer) {
    Handle const h = Get(40, StaticDraw);
    unsigned const name = Name(h);
    Debug::CaptureScope capture;
    Access::Unmap(*_pool, g_mapped, name, GL_ARRAY_BUFFER);
    EXPECT_TRUE(HasAssertion(capture, "it != _mappings.end() && \"Trying to unmap not mapped memory!\""));

    capture.Sink().Clear();
    _facade.gl.ClearCalls();
    void* const memory = Access::Map(*_pool, h, 2, 8, 4, WriteInvalidate, GL_ARRAY_BUFFER);
    EXPECT_EQ(memory, g_mapped);
    EXPECT_EQ(Calls(), (Strings{"glBindBuffer(34962, 1)", "glMapBufferRange(34962, 8, 32, 10)", "glBindBuffer(34962, 0)"}));
    EXPECT_TRUE(Access::IsMapped(*_pool, name));
    Access::Map(*_pool, h, 0, 1, 4, WriteInvalidate, GL_ARRAY_BUFFER);
    ASSERT_EQ(Assertions(capture).size(), 1u);
    EXPECT_TRUE(Assertions(capture)[0].starts_with(
        "\"it == _mappings.end() && \"Buffer is already mapped!\"\" - void* Tev::Chart::Ogl::BufferPool::MapMemory("));
    _facade.gl.ClearCalls();
    capture.Sink().Clear();
    Access::Unmap(*_pool, memory, name, GL_ARRAY_BUFFER);
    EXPECT_EQ(Calls(), (Strings{"glBindBuffer(34962, 1)", "glUnmapBuffer(34962)", "glBindBuffer(34962, 0)"}));
    EXPECT_FALSE(Access::IsMapped(*_pool, name));
    EXPECT_TRUE(Assertions(capture).empty());

    // Windows (first, count, stride 4) against the 40 bytes; one may end at
    // the buffer's end. A wrong pointer is reported and the unmap done.
    struct Row {
        std::uint64_t first, count;
        void* unmapped;
        Strings failures;
    } const rows[] = {
        {0, 0, g_mapped, {"length != 0 && \"Array mapping lenght is zero!\""}},
        {10, 1, g_mapped, {"offset < dataPtr->_bytes && \"Array mapping offset out of bounds!\"",
                           "(offset + length) <= dataPtr->_bytes && \"Array mapping window out of bounds!\""}},
        {8, 2, g_mapped, {}},
        {0, 1, g_mapped + 1, {"mapping.memory == p_memory && \"Mapping memory pointer mismatch!\""}},
    };
    for (Row const& row : rows) {
        capture.Sink().Clear();
        _facade.gl.ClearCalls();
        Access::Map(*_pool, h, row.first, row.count, 4, WriteInvalidate, GL_ARRAY_BUFFER);
        Access::Unmap(*_pool, row.unmapped, name, GL_ARRAY_BUFFER);
        EXPECT_EQ(Assertions(capture).size(), row.failures.size()) << row.first;
        for (auto const& failure : row.failures) EXPECT_TRUE(HasAssertion(capture, failure)) << failure;
        EXPECT_TRUE(_facade.gl.Calls("glUnmapBuffer").size() == 1u && !Access::IsMapped(*_pool, name)) << row.first;
    }

    _facade.gl.On("glMapBufferRange", [](FakeCall const&) -> FakeResult { return static_cast<void const*>(nullptr); });
    capture.Sink().Clear();
    EXPECT_EQ(Access::Map(*_pool, h, 0, 16, 1, GL_MAP_WRITE_BIT, GL_ARRAY_BUFFER), nullptr);
    EXPECT_TRUE(HasAssertion(capture, "ptr != NULL && \"OpenGL buffer mapping returned NULL!!!\""));
    EXPECT_TRUE(Access::IsMapped(*_pool, name));
}

TEST(BufferMapAccess, BitsPerAccessKindAndFlag) {
    using Sync = BufferMapWriteSync;
    using Write = Internal::AccessPermission<2>;
    using ReadWrite = Internal::AccessPermission<1>;
    Debug::CaptureScope capture;
    EXPECT_EQ((std::vector<unsigned>{Write::Permission(Sync::Default), Write::Permission(Sync::InvalidateRange),
                                     Write::Permission(Sync::InvalidateBuffer), ReadWrite::Permission(Sync::Default)}),
              (std::vector<unsigned>{0x02, 0x06, 0x0A, 0x03}));
    EXPECT_TRUE(Assertions(capture).empty());
    EXPECT_EQ(ReadWrite::Permission(Sync::InvalidateBuffer), 0x03u);
    EXPECT_TRUE(HasAssertion(capture, "p_access == BufferMapWriteSync::Default && \"ReadWrite buffers only support default flushing\""));
}

TEST_F(Pool, CopiesBindBothTargetsAndReportAMissingFeature) {
    Debug::CaptureScope capture;
    Access::Copy(*_pool, 4, 5, 16, 32, 64);
    EXPECT_TRUE(HasAssertion(capture, "_hasGpuCopyBuffer"));
    EXPECT_EQ(Calls(), (Strings{"glBindBuffer(36662, 4)", "glBindBuffer(36663, 5)",
                                "glCopyBufferSubData(36662, 36663, 16, 32, 64)", "glBindBuffer(36662, 0)",
                                "glBindBuffer(36663, 0)"}));
}

// Freed, stream, used: none outlives its pool, made live or not.
TEST_F(Pool, EveryBufferIsDeletedWhenThePoolGoes) {
    auto const fill = [](BufferPool& p_pool) {
        Access::Free(p_pool, Access::FindOrAllocate(p_pool, 10, StaticDraw));
        Access::Free(p_pool, Access::FindOrAllocate(p_pool, 20, StreamDraw));
        Access::FindOrAllocate(p_pool, 30, DynamicDraw);
        Access::FindOrAllocate(p_pool, 40, StaticDraw);
    };
    Debug::CaptureScope capture;
    fill(*_pool);
    _pool.reset();
    EXPECT_EQ(Deleted(), (Names{1, 2, 3, 4}));

    _deleted.clear();
    auto* const neverLive = new BufferPool(_apiLifetime.Ref<const OglApi>(_facade.api));
    fill(*neverLive);
    delete neverLive;
    EXPECT_EQ(Deleted(), (Names{5, 6, 7, 8}));
    EXPECT_TRUE(Assertions(capture).empty());
}

TEST_F(Pool, TheFacadeEndingFirstReleasesEverythingButWhatAClientHolds) {
    Free(Get(10, StaticDraw));
    Handle const held = Get(20, StaticDraw);
    Get(30, StaticDraw);
    Debug::CaptureScope capture;
    {
        auto const locked = held.lock();
        _facadeLifetime.Expire();
        EXPECT_EQ(Deleted(), (Names{1, 3}));
        EXPECT_TRUE(HasAssertion(capture, "_data.empty() && \"All memory should be released by now!\""));
        EXPECT_FALSE(_pool->IsValid());
    }
    EXPECT_EQ(_deleted.size(), 3u) << "the last lock going deletes the held buffer";

    // The total is left as it stood, so the statistics no longer add up.
    capture.Sink().Clear();
    EXPECT_EQ(Statistics(), (Bytes{60, 0, 0}));
    EXPECT_TRUE(HasAssertion(capture, "(freed + used) == _totalMemory && \"Memory statistics mismatch!\""));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
