#include "ogl/resources/VertexArray.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace Tev::Chart::Ogl {

namespace {

using Disabled = VertexArray::Disabled;

// A set without its own unit goes to unit 0 (first set) or unit 2 (second
// set): unit 1 is left to callers that bind a texture there themselves.
void EnableTexCoords(OglApi const& p_gl, Utility::Attribute<VertexData::TexCoords> const& p_set, int p_defaultUnit) {
    if (!p_set.Defined()) return;
    int const unit = p_set->unit == -1 ? p_defaultUnit : p_set->unit;
    p_gl.ClientActiveTexture(Tokens::TGL_TEXTURE0 + static_cast<unsigned>(unit));
    p_gl.EnableClientState(Tokens::TGL_TEXTURE_COORD_ARRAY);
    p_gl.TexCoordPointer(p_set->dims, VertexData::ToToken(p_set->type), 0, p_set->data.get());
}

void EnableArrays(OglApi const& p_gl, VertexData const& p_data, Disabled const& p_disabled) {
    if (p_data.normals.Defined() && !p_disabled[VertexArray::NoNormals]) {
        p_gl.EnableClientState(Tokens::TGL_NORMAL_ARRAY);
        p_gl.NormalPointer(VertexData::ToToken(p_data.normals->type), 0, p_data.normals->data.get());
    }
    if (p_data.colors.Defined() && !p_disabled[VertexArray::NoColors]) {
        p_gl.EnableClientState(Tokens::TGL_COLOR_ARRAY);
        p_gl.ColorPointer(p_data.colors->alpha ? 4 : 3, VertexData::ToToken(p_data.colors->type), 0,
                          p_data.colors->data.get());
    }
    if (!p_disabled[VertexArray::NoTexCoords0]) EnableTexCoords(p_gl, p_data.texCoords0, 0);
    if (!p_disabled[VertexArray::NoTexCoords1]) EnableTexCoords(p_gl, p_data.texCoords1, 2);
    if (p_data.edgeFlags.Defined() && !p_disabled[VertexArray::NoEdgeFlags]) {
        p_gl.EnableClientState(Tokens::TGL_EDGE_FLAG_ARRAY);
        p_gl.EdgeFlagPointer(0, p_data.edgeFlags->data.get());
    }
    auto const& vertices = *p_data.vertices;
    p_gl.EnableClientState(Tokens::TGL_VERTEX_ARRAY);
    p_gl.VertexPointer(vertices.dims, VertexData::ToToken(vertices.type), 0, vertices.data.get());
}

// A window that starts at or beyond the end draws nothing; a count of 0, or
// one that runs past the end, means "to the end".
std::uint64_t WindowLength(std::uint64_t p_first, std::uint64_t p_count, std::uint64_t p_total) {
    return p_count != 0 && p_first + p_count <= p_total ? p_count : p_total - p_first;
}

void DrawEntry(OglApi const& p_gl, VertexData const& p_data, std::uint64_t p_firstVertex, std::uint64_t p_vertexCount) {
    unsigned const primitive = VertexData::ToToken(*p_data.primitive);
    if (!p_data.indices.Defined()) {
        std::uint64_t const total = p_data.vertices->count;
        if (p_firstVertex >= total) return;
        p_gl.DrawArrays(primitive, static_cast<GLint>(p_firstVertex),
                        static_cast<GLsizei>(WindowLength(p_firstVertex, p_vertexCount, total)));
        return;
    }
    auto const& indices = *p_data.indices;
    unsigned const type = VertexData::ToToken(indices.type);
    if (p_firstVertex == 0 && p_vertexCount == 0) {
        p_gl.DrawElements(primitive, static_cast<GLsizei>(indices.count), type, indices.data.get());
        return;
    }
    if (p_firstVertex >= indices.count) return;
    p_gl.DrawElements(primitive, static_cast<GLsizei>(WindowLength(p_firstVertex, p_vertexCount, indices.count)), type,
                      indices.data.get() + p_firstVertex * indices.DatumSize());
}

}  // namespace

void VertexArray::Add(VertexData const& p_data) { _entries.push_back(boost::make_shared<VertexData>(p_data)); }

void VertexArray::operator()(Utility::Scoped<Tgl>& p_tgl, Disabled const& p_disabled) const {
    (*this)(p_tgl, 0, Count(), 0, 0, p_disabled);
}

void VertexArray::operator()(Utility::Scoped<Tgl>& p_tgl, std::uint64_t p_first, std::uint64_t p_count,
                             Disabled const& p_disabled) const {
    (*this)(p_tgl, p_first, p_count, 0, 0, p_disabled);
}

// The client state is pushed before any array is enabled, so that the pop
// takes every enable and pointer back: a later entry without colours must
// not draw with this one's colour block, which may be gone by then.
void VertexArray::operator()(Utility::Scoped<Tgl>& p_tgl, std::uint64_t p_first, std::uint64_t p_count,
                             std::uint64_t p_firstVertex, std::uint64_t p_vertexCount,
                             Disabled const& p_disabled) const {
    OglApi const& gl = p_tgl->Api();
    ensure(p_first + p_count <= Count());
    std::uint64_t const end = std::min(p_first + p_count, Count());
    for (std::uint64_t i = p_first; i < end; ++i) {
        VertexData const& data = *_entries[i];
        if (!ensure(data.vertices.Defined() && "Vertices must be provided!")) continue;
        ensure(data.vertices->dims != VertexData::X);
        ensure(data.vertices->dims != VertexData::XYZW);
        gl.PushClientAttrib(Tokens::TGL_CLIENT_VERTEX_ARRAY_BIT);
        EnableArrays(gl, data, p_disabled);
        DrawEntry(gl, data, p_firstVertex, p_vertexCount);
        gl.PopClientAttrib();
    }
    p_tgl->CheckError();
}

}  // namespace Tev::Chart::Ogl
