// After the facade is gone, every GL object it made is gone too: buffers
// from its pool, programs and textures. Counted on the fake by name.
#include "tgl/FakeTgl.h"

#include "framework/utility/Scoped.h"
#include "ogl/resources/BufferPool.h"
#include "ogl/shaders/Program.h"

#include <GL/gl.h>
#include <boost/make_shared.hpp>
#include <gtest/gtest.h>

#include <set>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

// Names made and not yet deleted, per kind.
struct LiveNames {
    std::set<std::int64_t> buffers;
    std::set<std::int64_t> programs;
    std::set<std::int64_t> textures;
    std::int64_t next = 1;

    void Track(FakeGl& p_gl) {
        auto const gen = [this](std::set<std::int64_t>& p_live) {
            return [this, &p_live](FakeCall const& p_call) -> FakeResult {
                auto* names = static_cast<GLuint*>(const_cast<void*>(p_call.Ptr(1)));
                for (std::int64_t i = 0; i < p_call.Int(0); ++i) p_live.insert(names[i] = GLuint(next++));
                return std::int64_t{0};
            };
        };
        auto const del = [](std::set<std::int64_t>& p_live) {
            return [&p_live](FakeCall const& p_call) -> FakeResult {
                auto const* names = static_cast<GLuint const*>(p_call.Ptr(1));
                for (std::int64_t i = 0; i < p_call.Int(0); ++i) p_live.erase(names[i]);
                return std::int64_t{0};
            };
        };
        p_gl.On("glGenBuffers", gen(buffers));
        p_gl.On("glDeleteBuffers", del(buffers));
        p_gl.On("glGenTextures", gen(textures));
        p_gl.On("glDeleteTextures", del(textures));
        p_gl.On("glCreateProgram", [this](FakeCall const&) -> FakeResult {
            programs.insert(next);
            return next++;
        });
        p_gl.On("glDeleteProgram", [this](FakeCall const& p_call) -> FakeResult {
            programs.erase(p_call.Int(0));
            return std::int64_t{0};
        });
    }
};

TEST(TglLeak, DestroyingTheFacadeReleasesEveryObjectItMade) {
    FakeTgl fake;
    LiveNames live;
    live.Track(fake.Gl());
    Tgl& tgl = fake.Build();
    {
        Chart::Utility::Scoped<Tgl> scope(tgl);
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
    EXPECT_EQ(live.buffers.size(), 3u);

    fake.Destroy();
    EXPECT_TRUE(live.buffers.empty());
    EXPECT_TRUE(live.programs.empty());
    EXPECT_TRUE(live.textures.empty());
}

}  // namespace
}  // namespace Tev::Test
