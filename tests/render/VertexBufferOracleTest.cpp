// Vertex buffers against the driver on one OSMesa context: seeded meshes
// drawn through VertexBuffer (with and without a vertex array object, from
// a VertexData upload or from sources bound one by one) and by plain GL
// calls from client memory must give the same pixels; so must instanced
// draws with per-instance attributes, with and without a base instance.
// Afterwards no buffer or vertex array the facade made is left.
#include "ogl/api/OglApi.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/resources/VertexDataBuffers.h"
#include "ogl/tgl/Tgl.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <random>
#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using VB = VertexBuffer;

// The test's own account of each type: GL token, indices per primitive,
// extra indices.
struct TypeRow { VB::PrimitiveType type; GLenum token; unsigned scale, offset; };
TypeRow const Rows[] = {{VB::Points, GL_POINTS, 1, 0},  {VB::Lines, GL_LINES, 2, 0},
                        {VB::LineStrip, GL_LINE_STRIP, 1, 1}, {VB::Triangles, GL_TRIANGLES, 3, 0},
                        {VB::TriangleStrip, GL_TRIANGLE_STRIP, 1, 2}, {VB::Quads, GL_QUADS, 4, 0},
                        {VB::QuadStrip, GL_QUAD_STRIP, 2, 2}};
GLenum const IndexTypes[] = {GL_UNSIGNED_BYTE, GL_UNSIGNED_SHORT, GL_UNSIGNED_INT};

struct Mesh {
    TypeRow row;
    std::vector<float> positions;      // x, y a vertex
    std::vector<std::uint8_t> colors;  // r, g, b, a a vertex
    std::vector<float> floatColors;    // the same as VertexData holds them
    std::vector<std::uint8_t> indexBytes;
    GLenum indexType;
    unsigned first, count;             // primitives drawn
    VAOFlags vao;
    bool fromVertexData;

    unsigned IndexSize() const { return indexType == GL_UNSIGNED_BYTE ? 1 : indexType == GL_UNSIGNED_SHORT ? 2 : 4; }
    unsigned IndexCount() const { return unsigned(indexBytes.size()) / IndexSize(); }
};

Mesh Generate(std::mt19937& p_random) {
    auto const pick = [&](unsigned p_max) { return unsigned(p_random() % (p_max + 1)); };
    Mesh m;
    m.row = Rows[pick(6)];
    unsigned const vertices = 4 + pick(40);
    for (unsigned v = 0; v < vertices; ++v) {
        for (int axis = 0; axis < 2; ++axis) m.positions.push_back(float(int(pick(64)) - 32) / 30.0f);
        for (int c = 0; c < 4; ++c) m.colors.push_back(std::uint8_t(c == 3 ? 255 : pick(255)));
    }
    for (std::uint8_t c : m.colors) m.floatColors.push_back(float(c) / 255.0f);
    m.indexType = IndexTypes[pick(2)];
    unsigned const primitives = 1 + pick(12);
    for (unsigned i = 0; i < m.row.scale * primitives + m.row.offset; ++i) {
        std::uint32_t const index = pick(vertices - 1);
        m.indexBytes.insert(m.indexBytes.end(), reinterpret_cast<std::uint8_t const*>(&index),
                            reinterpret_cast<std::uint8_t const*>(&index) + m.IndexSize());  // little-endian
    }
    m.first = pick(primitives - 1);
    m.count = 1 + pick(primitives - m.first - 1);
    m.vao = pick(1) ? VAOWhereSupported : VAONever;
    m.fromVertexData = pick(1);
    return m;
}

// Where two frames differ: the count and the first pixel, for the message.
std::string Difference(std::vector<std::uint32_t> const& p_got, std::vector<std::uint32_t> const& p_expected) {
    std::size_t count = 0, first = 0;
    for (std::size_t i = p_got.size(); i-- > 0;)
        if (p_got[i] != p_expected[i]) ++count, first = i;
    if (count == 0) return {};
    std::ostringstream os;
    os << count << " pixels differ, first at " << first << ": " << std::hex << p_got[first] << " for " << p_expected[first];
    return os.str();
}

class VertexBufferOracle : public OSMesaFixture {
protected:
    VertexBufferOracle() { _gl->Enable(GL_PROGRAM_POINT_SIZE); }

    void Clear() const { _gl->ClearColor(0, 0, 0, 1), _gl->Clear(GL_COLOR_BUFFER_BIT); }

    boost::shared_ptr<VertexBuffer> Upload(Mesh const& p_mesh) {
        auto const pool = _tgl->GetBufferPool();
        auto vb = _tgl->GenVertexBuffer(p_mesh.vao);
        if (p_mesh.fromVertexData) {
            VertexData data;
            auto const borrowed = [](auto const& p_values) {  // the mesh outlives the upload
                return VertexData::Block(reinterpret_cast<char const*>(p_values.data()), [](char const*) {});
            };
            data.vertices = VertexData::Vertices{borrowed(p_mesh.positions), VertexData::XY, VertexData::Float,
                                                 std::uint32_t(p_mesh.positions.size() / 2)};
            data.colors = VertexData::Colors{borrowed(p_mesh.floatColors), VertexData::Float, true};
            VertexDataBuffers(pool, data).BindTo(*vb);
        } else {
            vb->BindBuiltinAttribute({"gl_Vertex", UploadAttribute(pool, p_mesh.positions.data(), p_mesh.positions.size() / 2, 2), LayoutOf<float>(2)});
            vb->BindBuiltinAttribute({"gl_Color", UploadAttribute(pool, p_mesh.colors.data(), p_mesh.colors.size() / 4, 4), LayoutOf<std::uint8_t>(4, 0, true)});
        }
        // The indices go in as their own bytes; the variant form is the
        // same upload with the type taken from the element type.
        vb->BindIndexBuffer(ElementArrayBuffer(pool, p_mesh.indexType, p_mesh.indexBytes.data(), p_mesh.IndexCount()));
        return vb;
    }

    std::vector<std::uint32_t> ThroughVertexBuffer(Mesh const& p_mesh) {
        Clear();
        auto const vb = Upload(p_mesh);
        auto const token = _tgl->Bind(vb);
        vb->Draw(p_mesh.row.type, p_mesh.first, p_mesh.count);
        return Frame();
    }

    std::vector<std::uint32_t> ThroughDriver(Mesh const& p_mesh) const {
        Clear();
        _gl->PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        _gl->EnableClientState(GL_VERTEX_ARRAY), _gl->EnableClientState(GL_COLOR_ARRAY);
        _gl->VertexPointer(2, GL_FLOAT, 0, p_mesh.positions.data());
        if (p_mesh.fromVertexData)  // VertexData has no byte colours
            _gl->ColorPointer(4, GL_FLOAT, 0, p_mesh.floatColors.data());
        else
            _gl->ColorPointer(4, GL_UNSIGNED_BYTE, 0, p_mesh.colors.data());
        _gl->DrawElements(p_mesh.row.token, GLsizei(p_mesh.row.scale * p_mesh.count + p_mesh.row.offset), p_mesh.indexType,
                          p_mesh.indexBytes.data() + p_mesh.IndexSize() * p_mesh.row.scale * p_mesh.first);
        _gl->PopClientAttrib();
        return Frame();
    }

    // A linked program of the two stages, in use.
    GLuint Program(char const* p_vertex, char const* p_fragment) const {
        GLuint const program = _gl->CreateProgram();
        for (auto [type, text] : {std::pair{GL_VERTEX_SHADER, p_vertex}, std::pair{GL_FRAGMENT_SHADER, p_fragment}}) {
            GLuint const shader = _gl->CreateShader(type);
            _gl->ShaderSource(shader, 1, &text, nullptr), _gl->CompileShader(shader);
            _gl->AttachShader(program, shader), _gl->DeleteShader(shader);
        }
        _gl->LinkProgram(program);
        GLint linked = 0;
        _gl->GetProgramiv(program, GL_LINK_STATUS, &linked);
        EXPECT_TRUE(linked);
        _gl->UseProgram(program);
        return program;
    }

    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
};

TEST_F(VertexBufferOracle, MeshesGiveTheDriversPixels) {
    int drawn = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::mt19937 random(seed);
        Mesh const mesh = Generate(random);
        auto const expected = ThroughDriver(mesh);
        drawn += Difference(expected, std::vector<std::uint32_t>(expected.size(), 0xff000000u)) != "";
        ASSERT_EQ(Difference(ThroughVertexBuffer(mesh), expected), "") << "seed " << seed;
        ASSERT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR)) << "seed " << seed;
    }
    EXPECT_GT(drawn, 180);
}

// Per-instance offsets and colours (divisor 1) through a program of the
// test's own, drawn from instance 0 and from a base instance, indexed and
// not; after a refused second binding to a location, which changes nothing.
TEST_F(VertexBufferOracle, InstancedDrawsGiveTheDriversPixels) {
    GLuint const program = Program(R"(#version 330 compatibility
        layout(location = 0) in vec2 position; layout(location = 1) in vec2 offset; layout(location = 2) in vec4 color;
        out vec4 v_color;
        void main() { gl_Position = vec4(position * 0.2 + offset, 0.0, 1.0); v_color = color; })",
        "#version 330\nin vec4 v_color; out vec4 color; void main() { color = v_color; }");
    std::vector<float> const quad{-1, -1, 1, -1, 1, 1, -1, 1}, offsets{-0.6f, -0.6f, 0.6f, -0.6f, 0.6f, 0.6f, -0.6f, 0.6f, 0, 0};
    std::vector<std::uint8_t> const colors{255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 0, 255, 0, 255, 255, 255};
    std::vector<std::uint16_t> const indices{0, 1, 2, 2, 3, 0};
    auto const pool = _tgl->GetBufferPool();
    auto const vb = _tgl->GenVertexBuffer();
    vb->BindVertexAttribute({0, UploadAttribute(pool, quad.data(), 4, 2), LayoutOf<float>(2)});
    vb->BindVertexAttribute({1, UploadAttribute(pool, offsets.data(), 5, 2), LayoutOf<float>(2, 1)});
    vb->BindVertexAttribute({2, UploadAttribute(pool, colors.data(), 5, 4), LayoutOf<std::uint8_t>(4, 1, true)});
    vb->BindVertexAttribute({1, UploadAttribute(pool, colors.data(), 5, 4), LayoutOf<std::uint8_t>(4, 1, true)});
    ElementArrayBuffer const elements(pool, indices);
    for (auto [indexed, base] : std::initializer_list<std::pair<bool, unsigned>>{{true, 0}, {true, 2}, {false, 0}, {false, 1}}) {
        Clear();
        _gl->PushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        for (GLuint location : {0, 1, 2}) _gl->EnableVertexAttribArray(location);
        _gl->VertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, quad.data());
        _gl->VertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, offsets.data()), _gl->VertexAttribDivisor(1, 1);
        _gl->VertexAttribPointer(2, 4, GL_UNSIGNED_BYTE, GL_TRUE, 0, colors.data()), _gl->VertexAttribDivisor(2, 1);
        if (indexed)
            _gl->DrawElementsInstancedBaseInstance(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, indices.data() + 3, 5 - base, base);
        else
            _gl->DrawArraysInstancedBaseInstance(GL_QUADS, 0, 4, 5 - base, base);
        for (GLuint location : {1, 2}) _gl->VertexAttribDivisor(location, 0);
        _gl->PopClientAttrib();
        auto const expected = Frame();

        Clear();
        vb->SetIndexBufferData(indexed ? elements.Name() : 0, GL_UNSIGNED_SHORT, 6);
        auto const token = _tgl->Bind(vb);
        vb->DrawInstanced(indexed ? VB::Triangles : VB::Quads, indexed ? 1 : 0, 1, 5 - base, base);
        EXPECT_EQ(Difference(Frame(), expected), "") << "indexed " << indexed << ", base instance " << base;
        EXPECT_NE(Difference(expected, std::vector<std::uint32_t>(expected.size(), 0xff000000u)), "");
    }
    _gl->UseProgram(0), _gl->DeleteProgram(program);
}

// Labels reach the driver; when the facade goes, every buffer and vertex
// array it made goes with it, kept or not, and what is left does nothing.
TEST_F(VertexBufferOracle, LabelsAndNothingLeftBehind) {
    auto const pool = _tgl->GetBufferPool();
    std::vector<float> const values(8, 0.5f);
    auto const kept = UploadAttribute(pool, values.data(), 4, 2);
    auto const vb = _tgl->GenVertexBuffer();
    vb->BindBuiltinAttribute({"gl_Vertex", kept, LayoutOf<float>(2)});
    UploadAttribute(pool, values.data(), 2, 2);  // handed back to the pool at once
    vb->SetLabel("mesh");
    GLint vao = 0;
    _tgl->Bind(vb), _gl->GetIntegerv(GL_VERTEX_ARRAY_BINDING, &vao);
    auto const label = [&](GLenum p_kind, GLuint p_name) {
        char text[64] = {};
        reinterpret_cast<PFNGLGETOBJECTLABELPROC>(_gl->ProcAddress("glGetObjectLabel"))(p_kind, p_name, 64, nullptr, text);
        return std::string(text);
    };
    EXPECT_EQ(label(GL_VERTEX_ARRAY, GLuint(vao)), "mesh");
    EXPECT_EQ(label(GL_BUFFER, kept->Name()), "TevOgl pooled buffer, 32 bytes");
    auto const isBuffer = reinterpret_cast<PFNGLISBUFFERPROC>(_gl->ProcAddress("glIsBuffer"));
    std::vector<GLuint> buffers;
    for (GLuint name = 1; name < 64; ++name)
        if (isBuffer(name)) buffers.push_back(name);
    EXPECT_EQ(buffers.size(), 2u);

    _tgl.reset();
    EXPECT_FALSE(_gl->IsVertexArray(GLuint(vao)));
    for (GLuint name : buffers) EXPECT_FALSE(isBuffer(name)) << name;
    EXPECT_EQ(kept->Name(), 0u);
    vb->Bind(), vb->Draw(VB::Quads, 0, 1), vb->SetLabel("gone");
    EXPECT_EQ(_gl->GetError(), GLenum(GL_NO_ERROR));
}

}  // namespace
}  // namespace Tev::Test
