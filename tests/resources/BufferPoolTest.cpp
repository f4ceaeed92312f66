// The buffer pool on the recording fake: exact reuse, stream buffers, the
// statistics, usage tokens, mapping windows with their checks, copies, and
// that every buffer the pool makes is deleted again; through the pool, the
// resource base's states and log lines.
#include "ogl/resources/BufferPool.h"

#include "support/Golden.h"
#include "support/LogCapture.h"
#include "tgl/FakeTgl.h"

#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <tuple>

namespace Tev::Chart::Ogl {
namespace {

using Access = Internal::BufferPoolAccess;
using Handle = boost::weak_ptr<BufferData>;
using namespace ::Tev::Test;

BufferUsage const StaticDraw = BufferUsage::Default;
BufferUsage const DynamicDraw(BufferUsage::Dynamic, BufferUsage::Draw);
BufferUsage const StreamDraw(BufferUsage::Stream, BufferUsage::Draw);
unsigned const WriteInvalidate = Internal::AccessPermission<2>::Permission(BufferMapWriteSync::InvalidateBuffer);

char g_mapped[64];

class Pool : public ::testing::Test {
protected:
    Pool() {
        _fake.gl.On("glGenBuffers", [this](FakeCall const& c) -> FakeResult { return *(GLuint*)c.Ptr(1) = ++_generated, std::int64_t{0}; });
        _fake.gl.On("glDeleteBuffers", [](FakeCall const& c) -> FakeResult { return Debug::dlog() << "deleted " << *(GLuint*)c.Ptr(1), std::int64_t{0}; });
        _fake.gl.On("glMapBufferRange", [](FakeCall const&) -> FakeResult { return static_cast<void const*>(g_mapped); });
        _fake.Build();
        _pool = boost::make_shared<BufferPool>(_apiLifetime.Ref<const OglApi>(_fake->Api()));
        Internal::ResourceAccess::Initialize(*_pool, *_fake.tgl, _fake->Api(), _facadeLifetime);
    }

    Handle Get(std::uint64_t p_bytes, BufferUsage const& p_usage) { return Access::FindOrAllocate(*_pool, p_bytes, p_usage); }
    void Free(Handle const& p_handle) { Access::Free(*_pool, p_handle); }
    // Ends a transcript step, with the buffer's name and the total, used and
    // freed bytes in its label.
    void Step(std::string const& p_label, Handle const& p_handle = {}) {
        auto const [total, used, freed] = _pool->GetMemoryStatistics();
        _fake.Step(p_label + (p_handle.expired() ? "" : " -> " + std::to_string(p_handle.lock()->Buffer())) + "; bytes " +
                   std::to_string(total) + " " + std::to_string(used) + " " + std::to_string(freed));
    }

    GLuint _generated = 0;
    FakeTgl _fake;
    Utility::Lifetime _apiLifetime, _facadeLifetime;
    boost::shared_ptr<BufferPool> _pool;
};

// The transcript holds each buffer's name and calls, with the statistics
// after every step: a freed buffer comes back, one at a time, only for the
// same size and usage; stream buffers go at once, the others when freed
// memory is released; freeing twice is reported.
TEST_F(Pool, ReuseStreamBuffersAndStatisticsAsTranscribed) {
    Handle h;
    Step("1000 static", h = Get(1000, StaticDraw)), Free(h);
    Step("1000 static again", h = Get(1000, StaticDraw)), Free(h);
    Step("1001 static", Get(1001, StaticDraw));
    Step("1000 dynamic", Get(1000, DynamicDraw));
    Handle const second = Get(1000, StaticDraw), third = Get(1000, StaticDraw);
    Free(second), Free(third), Step("two more 1000 static, freed");
    for (int i = 0; i < 3; ++i) Step("1000 static", Get(1000, StaticDraw));

    Handle const stream = Get(500, StreamDraw), kept = Get(300, StaticDraw), dynamic = Get(200, DynamicDraw);
    Step("500 stream, 300 static, 200 dynamic");
    Free(stream), Step("the stream buffer freed");
    Free(kept), Free(dynamic), Free(kept), Step("the static and dynamic ones freed, the static one twice");
    _pool->ReleaseFreedMemory(), Step("freed memory released");

    std::string tokens = "usage tokens of 3 frequencies by 4 natures, then of a fourth frequency:";
    for (int f = 0; f < 4; ++f)
        for (int n = 0; n < (f < 3 ? 4 : 1); ++n)
            tokens += " " + std::to_string(Access::UsageToken(BufferUsage(BufferUsage::Frequency(f), BufferUsage::Nature(n))));
    Step(tokens);
    Access::Copy(*_pool, 4, 5, 16, 32, 64), Step("copy 64 bytes from 16 in buffer 4 to 32 in buffer 5");
    EXPECT_TRUE(MatchesGolden("resources/pool.txt", _fake.Transcript()));
}

// The access bits per kind and flag, a read-write map taking only the
// default; mapping binds, maps and unbinds; its window (first, count, stride
// 4) must lie in the 40 bytes, one may end at the buffer's end; a second map,
// an unmap of what is not mapped, a wrong pointer and a null answer are
// reported.
TEST_F(Pool, MappingWindowsAndTheirChecksAsTranscribed) {
    using Sync = BufferMapWriteSync;
    using Write = Internal::AccessPermission<2>;
    using ReadWrite = Internal::AccessPermission<1>;
    std::string bits = "access bits";
    for (unsigned permission : {Write::Permission(Sync::Default), Write::Permission(Sync::InvalidateRange), WriteInvalidate,
                                ReadWrite::Permission(Sync::Default), ReadWrite::Permission(Sync::InvalidateBuffer)})
        bits += " " + std::to_string(permission);
    _fake.Step(bits);
    Handle const h = Get(40, StaticDraw);
    unsigned const name = h.lock()->Buffer();
    auto const step = [&](std::string const& p_label, void* p_got) {
        Step(p_label + (p_got == g_mapped ? ", got the driver's pointer" : p_got ? ", got another" : ", got null") +
             (Access::IsMapped(*_pool, name) ? ", still mapped" : ""));
    };
    Access::Unmap(*_pool, g_mapped, name, GL_ARRAY_BUFFER);
    step("unmapped before mapping", nullptr);
    void* const first = Access::Map(*_pool, h, 2, 8, 4, WriteInvalidate, GL_ARRAY_BUFFER);
    step("window 2, 8", first);
    for (auto [first, count, unmapped] : std::initializer_list<std::tuple<std::uint64_t, std::uint64_t, char*>>{
             {0, 1, g_mapped}, {0, 0, g_mapped}, {10, 1, g_mapped}, {8, 2, g_mapped}, {0, 1, g_mapped + 1}}) {
        void* const got = Access::Map(*_pool, h, first, count, 4, WriteInvalidate, GL_ARRAY_BUFFER);
        Access::Unmap(*_pool, unmapped, name, GL_ARRAY_BUFFER);
        step("window " + std::to_string(first) + ", " + std::to_string(count) + " mapped and unmapped" +
             (unmapped == g_mapped ? "" : " by a wrong pointer"), got);
    }
    _fake.gl.On("glMapBufferRange", [](FakeCall const&) -> FakeResult { return static_cast<void const*>(nullptr); });
    step("the driver maps nothing", Access::Map(*_pool, h, 0, 16, 1, GL_MAP_WRITE_BIT, GL_ARRAY_BUFFER));
    EXPECT_TRUE(MatchesGolden("resources/mapping.txt", _fake.Transcript()));
}

struct Named final : TglObject {
    Named(OglApi const& p_api, unsigned p_name) : TglObject(p_api, p_name, ObjectLabels::Texture) {}
    ~Named() override { Deallocate(); }  // as every resource must
    void DoDeallocate() override {}
};

// Freed, stream, used: none outlives its pool, made live or not; when the
// facade ends first, everything goes but what a client holds, and the total
// is left as it stood, so the statistics no longer add up. The resource base
// under it: a number that is negative until made live, positive while live
// and negative again once deallocated, exactly once; a pool destroyed first
// no longer hears of the facade's end (the last step has one Expired!); each
// resource takes the next number down; a GL object is valid only with a name.
TEST_F(Pool, EveryBufferIsDeletedWhenThePoolOrTheFacadeGoes) {
    auto const fill = [](auto&& p_pool) {
        Access::Free(p_pool, Access::FindOrAllocate(p_pool, 10, StaticDraw));
        Access::Free(p_pool, Access::FindOrAllocate(p_pool, 20, StreamDraw));
        Access::FindOrAllocate(p_pool, 30, DynamicDraw);
        return Access::FindOrAllocate(p_pool, 40, StaticDraw);
    };
    auto const state = [](TglResource const& p_resource) {
        return std::string(p_resource.TglInstanceId() > 0 ? "; number positive" : "; number negative") + (p_resource.IsValid() ? ", valid" : ", not valid");
    };
    fill(*_pool);
    _fake.Step("a live pool filled" + state(*_pool));
    _pool.reset(), _fake.Step("and destroyed");
    fill(BufferPool(_apiLifetime.Ref<const OglApi>(_fake->Api())));
    _fake.Step("a pool never made live filled and destroyed");

    _pool = boost::make_shared<BufferPool>(_apiLifetime.Ref<const OglApi>(_fake->Api()));
    Named unnamed(_fake->Api(), 0), named(_fake->Api(), 7);
    _fake.Step("a new pool" + state(*_pool) + (named.TglInstanceId() == unnamed.TglInstanceId() - 1 ? "; then two more" : ""));
    for (TglResource* resource : std::initializer_list<TglResource*>{_pool.get(), &unnamed, &named})
        Internal::ResourceAccess::Initialize(*resource, *_fake.tgl, _fake->Api(), _facadeLifetime);
    _fake.Step("all made live: GL objects 0 and 7" + state(unnamed) + state(named));
    Handle const held = fill(*_pool);
    {
        auto const locked = held.lock();
        _facadeLifetime.Expire();
        _fake.Step("filled, then the facade ends while a client holds buffer 12" + state(*_pool) + state(named));
    }
    Step("the client lets go");
    _pool.reset(), _fake.Step("the pool destroyed");
    EXPECT_TRUE(MatchesGolden("resources/pool-end.txt", _fake.Transcript()));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
