// Vertex buffers on the recording fake: what binding, drawing and unbinding
// send to GL, with and without a vertex array object, and every misuse
// report, in one transcript.
#include "ogl/resources/PrimitiveBuffer.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/resources/VertexDataBuffers.h"

#include "support/Golden.h"
#include "tgl/FakeTgl.h"

#include <gtest/gtest.h>

namespace Tev::Chart::Ogl {
namespace {

using namespace ::Tev::Test;
using VB = VertexBuffer;

// Writes p_span into the current step.
void Log(VB::Span p_span) { Debug::dlog() << "-> (" << p_span.first << ", " << p_span.second << ")"; }

class VertexBufferCalls : public ::testing::Test {
protected:
    VertexBufferCalls() {
        _fake.gl.SetExtensions({"GL_ARB_vertex_array_object"});
        auto const generator = [](GLuint p_first) {
            return [next = p_first](FakeCall const& c) mutable -> FakeResult { return *(GLuint*)c.Ptr(1) = next++, std::int64_t{0}; };
        };
        _fake.gl.On("glGenBuffers", generator(1));
        _fake.gl.On("glGenVertexArrays", generator(100));
        _fake.Build();
        for (std::uintptr_t offset : {4, 6, 8}) _fake.Name(reinterpret_cast<void*>(offset), "offset" + std::to_string(offset));
    }

    boost::shared_ptr<BufferPool> Pool() { return _fake->GetBufferPool(); }
    BufferRef Floats(int p_count) { return UploadAttribute(Pool(), std::vector<float>(std::size_t(p_count)).data(), 1, p_count); }

    FakeTgl _fake;
};

TEST_F(VertexBufferCalls, BindDrawAndUnbindSendWhatTheyMust) {
    auto vao = _fake->GenVertexBuffer();
    _fake.Step("made where the driver has vertex array objects");
    BuiltinAttribute const vertices{"gl_Vertex", Floats(8), LayoutOf<float>(2)};
    vao->BindBuiltinAttribute(vertices);
    vao->BindBuiltinAttribute({"gl_MultiTexCoord1", Floats(8), LayoutOf<float>(2)});
    vao->BindIndexBuffer(ElementArrayBuffer(Pool(), std::vector<std::uint16_t>(12)));
    _fake.Step("two built-in sources and 12 16-bit indices uploaded");
    for (char const* label : {"first bind fills the vertex array", "second bind: the vertex array and the indices only"}) {
        vao->Bind();
        _fake.Step(label);
    }
    vao->Draw(VB::Quads, 1, 2);
    _fake.Step("two quads from primitive 1");
    (*vao)(VB::Triangles);
    (*vao)(VB::LineStrip, 2, 3);
    _fake.Step("every triangle of the index buffer; line strips 2..4");
    vao->DrawInstanced(VB::Triangles, 1, 1, 5, 0);
    vao->DrawInstanced(VB::Triangles, 1, 1, 5, 7);
    _fake.Step("instanced, then from base instance 7");
    vao->Unbind();
    _fake.Step("unbind");
    _fake->ClientActiveTexture(GL_TEXTURE2);
    _fake->Bind(vao);
    _fake.Step("a scoped bind of texture sets and its release: the facade's client unit selected again after each");

    auto plain = _fake->GenVertexBuffer(VAONever);
    plain->BindBuiltinAttribute(vertices);
    _fake.Step("built-in arrays without a vertex array");
    for (int i = 0; i < 2; ++i) plain->Bind();
    plain->Unbind();
    _fake.Step("each bind sets the pointers; unbind switches off every built-in array");

    auto generic = _fake->GenVertexBuffer(VAONever);
    generic->BindVertexAttribute({3, Floats(4), LayoutOf<float>(4, 1)});
    generic->BindVertexBuffer(Floats(6), 0, 2, GL_FLOAT, false, 8, 4, 0);
    _fake.Step("generic locations 3 (per instance) and 0");
    {
        auto const token = _fake->Bind(generic);
        generic->DrawInstanced(VB::Points, 2, 3, 4, 0);
    }
    _fake.Step("a scoped bind, arrays drawn instanced, unbound by the token");

    generic->BindBuiltinAttribute(vertices);
    generic->BindVertexBuffer(Floats(2), 3, 2, GL_FLOAT, false, 0, 0, 0);
    generic->BindVertexAttribute({});
    generic->BindVertexAttribute({CustomVertexAttribute::UndefinedIndex, Floats(2), {}});
    generic->BindVertexBuffer(Floats(2), -1, 2, GL_FLOAT, false, 0, 0, 0);
    vao->BindVertexBuffer(Floats(2), 4, 2, GL_FLOAT, false, 0, 0, 0);
    vao->BindVertexBuffer(Floats(2), "gl_Normal", 2, {});
    vao->BindBuiltinAttribute({"gl_MultiTexCoord2", nullptr, {}});
    vao->BindIndexBuffer(ElementArrayBuffer(Pool(), std::vector<std::uint8_t>()));
    _fake.Step("misuse: built-in after generic, a second location 3, an empty and an unplaced attribute, location -1; "
               "generic after built-in, a built-in with a location, an empty texture set, empty indices");

    auto broken = _fake->GenVertexBuffer(VAONever);
    broken->BindVertexBuffer(Floats(2), "gl_Nothing", -1, {});
    broken->Bind();
    (*broken)(VB::Quads);
    broken->SetIndexBufferData(9, GL_UNSIGNED_INT, 6);
    (*broken)(VB::Quads);
    _fake.Step("an unknown built-in name; a whole-buffer draw without indices, then of 6 indices as quads");

    for (auto [type, first, count] : std::initializer_list<std::tuple<VB::PrimitiveType, unsigned, unsigned>>{
             {VB::LineStrip, 0, 5}, {VB::TriangleStrip, 4, 6}, {VB::QuadStrip, 4, 8}, {VB::Quads, 8, 8},
             {VB::LineStrip, 0, 1}, {VB::Triangles, 0, 0}, {VB::Lines, 0, 3}})
        Log(VB::IndexToPrimitive(type, {first, count}));
    _fake.Step("index spans to primitives: line strip (0, 5), triangle strip (4, 6), quad strip (4, 8), quads (8, 8); "
               "reported: line strip (0, 1), triangles (0, 0), lines (0, 3)");

    _fake.gl.SetExtensions({});
    _fake.Build();
    auto forced = _fake->GenVertexBuffer(VAOForced);
    _fake.Step("a vertex array forced on a driver without the extension, which this one has the entries of");
    _fake.tgl.reset();
    vao->Bind();
    vao->Draw(VB::Quads, 0, 1);
    vao->Unbind();
    _fake.Step("made by a facade that is gone: nothing");
    EXPECT_TRUE(MatchesGolden("resources/vertex-buffer.txt", _fake.Transcript()));
}

// A primitive buffer uploads what is new at each draw, into buffers made
// once, and draws with one call between the vertex array's bind and unbind.
TEST_F(VertexBufferCalls, PrimitiveBuffersUploadOnlyWhatIsNew) {
    auto const strip = _fake->CreatePrimitiveBuffer(VB::LineStrip);
    strip->Color(Qt::red);
    for (double x : {0.0, 1.0, 2.0}) strip->Vertex(x, 0.0);
    strip->Draw();
    _fake.Step("three coloured vertices drawn: two buffers of 1024 vertices made, the three written");
    strip->Normal({0, 0, 1}), strip->Vertex(3.0, 1.0), strip->Vertex(4.0, 1.0);
    strip->Draw();
    _fake.Step("a normal refused after the first vertex; two vertices appended and drawn: only they are written");
    strip->Draw();
    _fake.Step("drawn again: nothing written");
    EXPECT_TRUE(MatchesGolden("resources/primitive-buffer.txt", _fake.Transcript()));
}

}  // namespace
}  // namespace Tev::Chart::Ogl
