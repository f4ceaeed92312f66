#include "ogl/resources/VertexDataBuffers.h"

#include "framework/debug/Debug.h"
#include "ogl/resources/VertexBuffer.h"

#include <boost/make_shared.hpp>

#include <string>

namespace Tev::Chart::Ogl {

namespace {

// Built-in texture sets the vertex buffer's table names.
constexpr int TexCoordSets = 4;

struct Uploader {
    boost::shared_ptr<BufferPool> const& pool;
    BufferUsage const& usage;
    std::uint64_t vertices;
    std::vector<BuiltinAttribute>& out;

    void Add(char const* p_name, VertexData::Block const& p_data, std::uint64_t p_datumSize, int p_components,
             VertexData::ElementType p_type) {
        auto buffer = boost::make_shared<PooledBuffer const>(pool, vertices * p_datumSize, usage, p_data.get());
        AttributeLayout layout{p_components, VertexData::ToToken(p_type), false, 0, 0, 0};
        out.push_back(BuiltinAttribute{p_name, std::move(buffer), layout});
    }

    void AddTexCoords(Utility::Attribute<VertexData::TexCoords> const& p_set, int p_defaultUnit) {
        if (!p_set.Defined()) return;
        int const unit = p_set->unit == -1 ? p_defaultUnit : p_set->unit;
        if (!chkrng(unit, 0, TexCoordSets - 1)) return;
        std::string const name = "gl_MultiTexCoord" + std::to_string(unit);
        Add(name.c_str(), p_set->data, p_set->DatumSize(), p_set->dims, p_set->type);
    }
};

}  // namespace

VertexDataBuffers::VertexDataBuffers(boost::shared_ptr<BufferPool> const& p_pool, VertexData const& p_data,
                                     BufferUsage const& p_usage) {
    if (!ensure(p_data.vertices.Defined() && "Vertices must be provided!")) return;
    VertexData::Vertices const& v = *p_data.vertices;
    Uploader up{p_pool, p_usage, v.count, builtins};
    up.Add("gl_Vertex", v.data, v.DatumSize(), v.dims, v.type);
    if (p_data.normals.Defined())
        up.Add("gl_Normal", p_data.normals->data, p_data.normals->DatumSize(), 3, p_data.normals->type);
    if (p_data.colors.Defined())
        up.Add("gl_Color", p_data.colors->data, p_data.colors->DatumSize(), p_data.colors->alpha ? 4 : 3,
               p_data.colors->type);
    up.AddTexCoords(p_data.texCoords0, 0);
    up.AddTexCoords(p_data.texCoords1, 2);
    if (p_data.indices.Defined()) {
        VertexData::Indices const& i = *p_data.indices;
        indices = ElementArrayBuffer(p_pool, VertexData::ToToken(i.type), i.data.get(), i.count, p_usage);
    }
}

void VertexDataBuffers::BindTo(VertexBuffer& p_buffer) const {
    for (BuiltinAttribute const& builtin : builtins) p_buffer.BindBuiltinAttribute(builtin);
    if (indices.Defined()) p_buffer.BindIndexBuffer(indices);
}

}  // namespace Tev::Chart::Ogl
