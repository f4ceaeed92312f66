// GPU resources against plain GL on the same OSMesa context in the same run:
//
//   build/default/bench/tevogl_bench_resources
//
// - a VertexBuffer draw (bind, draw, unbind) of a 100k-triangle indexed
//   mesh against glBindVertexArray + glDrawElements on a vertex array set
//   up by hand over the same buffers;
// - a frame of 1000 uploads of 4 KiB into pooled buffers (taken, filled,
//   handed back) against generating, filling and deleting 1000 buffers.
//
// - a primitive buffer's draw of a 100k-point series against the same
//   points drawn from a vertex buffer object set up by hand.
//
// Each benchmark reports `ratio` = library time / raw time.
#include "BenchContext.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/api/Tokens.h"
#include "ogl/resources/PrimitiveBuffer.h"
#include "ogl/resources/VertexBuffer.h"
#include "ogl/tgl/Tgl.h"

#include <random>
#include <vector>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Bench::MesaContext;

void BM_VertexBufferDraw(benchmark::State& p_state) {
    int const triangles = int(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    Tgl& tgl = Tev::Bench::MesaFacade();
    std::mt19937 random(1);
    // Small triangles over the whole surface, so that the draw is not all
    // rasterisation.
    std::vector<float> positions;
    for (int i = 0; i < 4096; ++i)
        for (float centre : {float(i % 64) / 32.0f - 1.0f, float(i / 64) / 32.0f - 1.0f, 0.0f})
            positions.push_back(centre + float(random() % 100) / 3200.0f);
    std::vector<std::uint32_t> indices;
    for (int i = 0; i < triangles; ++i)
        for (std::uint32_t corner = 0; corner < 3; ++corner) indices.push_back((std::uint32_t(i) + corner) % 4096);
    auto const vertices = UploadAttribute(tgl.GetBufferPool(), positions.data(), 4096, 3);
    ElementArrayBuffer const elements(tgl.GetBufferPool(), indices);
    auto const vb = tgl.GenVertexBuffer();
    vb->BindBuiltinAttribute({"gl_Vertex", vertices, LayoutOf<float>(3)});
    vb->BindIndexBuffer(elements);

    GLuint vao = 0;
    gl.GenVertexArrays(1, &vao);
    gl.BindVertexArray(vao);
    gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, vertices->Name());
    gl.EnableClientState(Tokens::TGL_VERTEX_ARRAY);
    gl.VertexPointer(3, Tokens::TGL_FLOAT, 0, nullptr);
    gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0);
    gl.BindBuffer(Tokens::TGL_ELEMENT_ARRAY_BUFFER, elements.Name());
    gl.BindVertexArray(0);

    auto const library = [&] {
        auto const token = tgl.Bind(vb);
        vb->Draw(VertexBuffer::Triangles, 0, unsigned(triangles));
        gl.Finish();
    };
    auto const raw = [&] {
        gl.BindVertexArray(vao);
        gl.DrawElements(Tokens::TGL_TRIANGLES, 3 * triangles, Tokens::TGL_UNSIGNED_INT, nullptr);
        gl.BindVertexArray(0);
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 3);
    gl.DeleteVertexArrays(1, &vao);
}
BENCHMARK(BM_VertexBufferDraw)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_PooledUploads(benchmark::State& p_state) {
    int const uploads = int(p_state.range(0));
    std::uint64_t const bytes = 4096;
    OglApi const& gl = *MesaContext::Get().gl;
    auto const pool = Tev::Bench::MesaFacade().GetBufferPool();
    std::vector<char> const data(bytes, 7);
    std::vector<std::unique_ptr<PooledBuffer>> frame(static_cast<std::size_t>(uploads));
    std::vector<GLuint> names(static_cast<std::size_t>(uploads));
    auto const library = [&] {
        for (auto& buffer : frame) buffer = std::make_unique<PooledBuffer>(pool, bytes, BufferUsage::Default, data.data());
        for (auto& buffer : frame) buffer.reset();
    };
    auto const raw = [&] {
        gl.GenBuffers(GLsizei(uploads), names.data());
        for (GLuint name : names) {
            gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, name);
            gl.BufferData(Tokens::TGL_ARRAY_BUFFER, GLsizeiptr(bytes), data.data(), Tokens::TGL_STATIC_DRAW);
        }
        gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0);
        gl.DeleteBuffers(GLsizei(uploads), names.data());
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 1);
}
BENCHMARK(BM_PooledUploads)->Arg(1000)->Unit(benchmark::kMicrosecond);

void BM_PrimitiveBufferDraw(benchmark::State& p_state) {
    int const points = int(p_state.range(0));
    OglApi const& gl = *MesaContext::Get().gl;
    std::mt19937 random(2);
    std::vector<float> positions;
    auto const series = Tev::Bench::MesaFacade().CreatePrimitiveBuffer(VertexBuffer::Points);
    for (int i = 0; i < points; ++i) {
        float const x = float(i) / float(points) * 2.0f - 1.0f, y = float(random() % 2000) / 1000.0f - 1.0f;
        positions.insert(positions.end(), {x, y, 0.0f});
        series->Vertex(x, y);
    }
    series->Draw();  // uploads once

    GLuint vbo = 0, vao = 0;
    gl.GenBuffers(1, &vbo), gl.GenVertexArrays(1, &vao);
    gl.BindVertexArray(vao), gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, vbo);
    gl.BufferData(Tokens::TGL_ARRAY_BUFFER, GLsizeiptr(positions.size() * sizeof(float)), positions.data(),
                  Tokens::TGL_STATIC_DRAW);
    gl.EnableClientState(Tokens::TGL_VERTEX_ARRAY), gl.VertexPointer(3, Tokens::TGL_FLOAT, 0, nullptr);
    gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0), gl.BindVertexArray(0);

    auto const library = [&] {
        series->Draw();
        gl.Finish();
    };
    auto const raw = [&] {
        gl.BindVertexArray(vao);
        gl.DrawArrays(Tokens::TGL_POINTS, 0, points);
        gl.BindVertexArray(0);
        gl.Finish();
    };
    Tev::Bench::CompareWithRaw(p_state, library, raw, 5);
    gl.DeleteVertexArrays(1, &vao), gl.DeleteBuffers(1, &vbo);
}
BENCHMARK(BM_PrimitiveBufferDraw)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
