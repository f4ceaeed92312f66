#include "ogl/resources/VertexBuffer.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Tev::Chart::Ogl {

namespace {

// Indices per primitive: p primitives take scale * p + offset indices.
struct ElementConversion {
    unsigned token;
    unsigned scale;
    unsigned offset;
};

std::array<ElementConversion, VertexBuffer::PrimitiveTypeCount> const elementConversions{{
    {0x0000, 1, 0},  // GL_POINTS
    {0x0001, 2, 0},  // GL_LINES
    {0x0003, 1, 1},  // GL_LINE_STRIP
    {0x0004, 3, 0},  // GL_TRIANGLES
    {0x0005, 1, 2},  // GL_TRIANGLE_STRIP
    {0x0007, 4, 0},  // GL_QUADS
    {0x0008, 2, 2},  // GL_QUAD_STRIP
    {0x000A, 4, 0},  // GL_LINES_ADJACENCY
}};

ElementConversion const& Conversion(VertexBuffer::PrimitiveType p_type) {
    if (!chkrng(int(p_type), 0, int(VertexBuffer::PrimitiveTypeCount) - 1)) return elementConversions[0];
    return elementConversions[std::size_t(p_type)];
}

void const* ByteOffset(std::uint64_t p_offset) { return reinterpret_cast<void const*>(std::uintptr_t(p_offset)); }

struct Binding {
    BufferRef buffer;
    AttributeLayout layout;
};

// The buffer bound as the array source while one pointer is set. Vertex
// arrays keep the buffer per attribute, not this binding, so 0 afterwards
// loses nothing.
class ArrayBufferScope {
public:
    ArrayBufferScope(OglApi const& p_gl, Binding const& p_binding) : _gl(p_gl) {
        _gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, p_binding.buffer ? p_binding.buffer->Name() : 0);
    }
    ~ArrayBufferScope() { _gl.BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0); }

private:
    OglApi const& _gl;
};

void BindBuiltinVertexAttribute(OglApi const& p_gl, Binding const& p_binding) {
    ArrayBufferScope const scope(p_gl, p_binding);
    AttributeLayout const& l = p_binding.layout;
    p_gl.EnableClientState(Tokens::TGL_VERTEX_ARRAY);
    p_gl.VertexPointer(l.components, l.type, l.stride, ByteOffset(l.offset));
}

void BindBuiltinNormalAttribute(OglApi const& p_gl, Binding const& p_binding) {
    ArrayBufferScope const scope(p_gl, p_binding);
    AttributeLayout const& l = p_binding.layout;
    p_gl.EnableClientState(Tokens::TGL_NORMAL_ARRAY);
    p_gl.NormalPointer(l.type, l.stride, ByteOffset(l.offset));
}

void BindBuiltinColorAttribute(OglApi const& p_gl, Binding const& p_binding) {
    ArrayBufferScope const scope(p_gl, p_binding);
    AttributeLayout const& l = p_binding.layout;
    p_gl.EnableClientState(Tokens::TGL_COLOR_ARRAY);
    p_gl.ColorPointer(l.components, l.type, l.stride, ByteOffset(l.offset));
}

void BindBuiltinMultiTexCoordAttribute(OglApi const& p_gl, Binding const& p_binding, unsigned p_stage) {
    ensure(p_stage < Tgl::TexCoordMAX);
    ArrayBufferScope const scope(p_gl, p_binding);
    AttributeLayout const& l = p_binding.layout;
    p_gl.ClientActiveTexture(Tokens::TGL_TEXTURE0 + p_stage);
    p_gl.EnableClientState(Tokens::TGL_TEXTURE_COORD_ARRAY);
    p_gl.TexCoordPointer(l.components, l.type, l.stride, ByteOffset(l.offset));
}

using Binder = std::function<void(OglApi const&, Binding const&)>;
using LegacyTable = std::map<Utility::HashedString, Binder>;

Binder MultiTexCoord(unsigned p_stage) {
    return [p_stage](OglApi const& p_gl, Binding const& p_binding) {
        BindBuiltinMultiTexCoordAttribute(p_gl, p_binding, p_stage);
    };
}

// What an empty source of each built-in array reports.
char const* EmptyBuiltinText(Utility::HashedString const& p_name) {
    std::string const& name = p_name.str();
    if (name == "gl_Normal") return "p_builtin.Defined() && \"Attempted to bind an empty gl_Normal builtin buffer!\"";
    if (name == "gl_Color") return "p_builtin.Defined() && \"Attempted to bind an empty gl_Color builtin buffer!\"";
    if (name.rfind("gl_MultiTexCoord", 0) == 0)
        return "p_builtin.Defined() && \"Attempted to bind an empty gl_MultiTexCoord builtin buffer!\"";
    return "p_builtin.Defined() && \"Attempted to bind an empty gl_Vertex builtin buffer!\"";
}

bool DecideVAO(Tgl const& p_tgl, VAOFlags p_flags) {
    bool const vaoExtensionSupport = p_tgl.Extensions().test(ARB_vertex_array_object);
    if (p_flags == VAONever) return false;
    if (p_flags != VAOForced) return vaoExtensionSupport;
    ensure(vaoExtensionSupport && "VAO use forced but no OpenGL extension support!");
    // Forced without the entry points would call through null: the buffer
    // then goes without, after the report.
    OglApi const& gl = p_tgl.Api();
    return gl.GenVertexArrays && gl.BindVertexArray && gl.DeleteVertexArrays;
}

unsigned GenerateVAO(OglApi const& p_gl, bool p_use) {
    GLuint name = 0;
    if (p_use) p_gl.GenVertexArrays(1, &name);
    return name;
}

}  // namespace

struct VertexBuffer::State {
    struct IndexBuffer {
        unsigned id = 0;
        unsigned type = 0;
        unsigned bytesPerIndex = 0;
        unsigned count = 0;
        BufferRef buffer;  // keeps a buffer bound from an ElementArrayBuffer alive
    };

    IndexBuffer idxBuffer;
    std::map<Utility::HashedString, Binding> builtInBindings;
    std::map<int, Binding> bindings;
    bool useVAO = false;
    bool instancingSupported = false;
    bool bound = false;
    bool bindingsChanged = true;

    static LegacyTable const& LegacyBindings() {
        static LegacyTable const table{
            {"gl_Vertex", BindBuiltinVertexAttribute},   {"gl_Normal", BindBuiltinNormalAttribute},
            {"gl_Color", BindBuiltinColorAttribute},     {"gl_MultiTexCoord0", MultiTexCoord(0)},
            {"gl_MultiTexCoord1", MultiTexCoord(1)},     {"gl_MultiTexCoord2", MultiTexCoord(2)},
            {"gl_MultiTexCoord3", MultiTexCoord(3)},
        };
        return table;
    }
};

VertexBuffer::VertexBuffer(Tgl const& p_tgl, VAOFlags p_flags) : VertexBuffer(p_tgl, DecideVAO(p_tgl, p_flags)) {}

VertexBuffer::VertexBuffer(Tgl const& p_tgl, bool p_useVAO)
    : TglObject(p_tgl.Api(), GenerateVAO(p_tgl.Api(), p_useVAO), ObjectLabels::VertexArray),
      _state(std::make_unique<State>()) {
    _state->useVAO = p_useVAO;
    _state->instancingSupported = p_tgl.Features().Supported(DeviceFeatures::OpenGL_GeometryInstancing);
}

VertexBuffer::~VertexBuffer() { Deallocate(); }

void VertexBuffer::DoDeallocate() {
    GLuint const name = Name();
    if (_state->useVAO && name != 0) Api().DeleteVertexArrays(1, &name);
    _state->builtInBindings.clear();
    _state->bindings.clear();
    _state->idxBuffer = {};
}

bool VertexBuffer::IsValid() const { return TglResource::IsValid() && (!_state->useVAO || Name() != 0); }
bool VertexBuffer::UsesVAO() const { return _state->useVAO; }
bool VertexBuffer::IsBound() const { return _state->bound; }

bool VertexBuffer::SelectsClientUnits() const {
    return std::any_of(_state->builtInBindings.begin(), _state->builtInBindings.end(), [](auto const& p_binding) {
        return p_binding.first.str().rfind("gl_MultiTexCoord", 0) == 0;
    });
}

void VertexBuffer::BindVertexBuffer(BufferRef const& p_buffer, Utility::HashedString const& p_builtin, int p_attribute,
                                    AttributeLayout const& p_layout) {
    ensure(p_attribute == -1 && "Shader attribute location should be -1!");
    ensure(_state->bindings.empty() && "Mixing builtin and custom shader attributes is not possible!");
    _state->builtInBindings[p_builtin] = Binding{p_buffer, p_layout};
    _state->bindingsChanged = true;
}

void VertexBuffer::BindVertexBuffer(BufferRef const& p_buffer, int p_attribute, int p_size, unsigned p_type,
                                    bool p_normalized, int p_stride, std::uint64_t p_offset, unsigned p_divisor) {
    ensure(p_attribute != -1 && "Shader attribute location is invalid!");
    ensure(_state->builtInBindings.empty() && "Mixing builtin and custom shader attributes is not possible!");
    AttributeLayout const layout{p_size, p_type, p_normalized, p_stride, p_offset, p_divisor};
    auto const insertion = _state->bindings.emplace(p_attribute, Binding{p_buffer, layout});
    ensure(insertion.second && "Bind point cannot be overriden, please construct a different VertexBuffer.");
    _state->bindingsChanged = true;
}

void VertexBuffer::BindVertexAttribute(CustomVertexAttribute const& p_attribute) {
    ensure(p_attribute.Defined() && "Attempted to bind an empty VertexAttribute buffer!");
    ensure(p_attribute.index != CustomVertexAttribute::UndefinedIndex && "Shader attribute location should be valid!");
    AttributeLayout const& l = p_attribute.layout;
    BindVertexBuffer(p_attribute.buffer, int(p_attribute.index), l.components, l.type, l.normalized, l.stride,
                     l.offset, l.divisor);
}

void VertexBuffer::BindBuiltinAttribute(BuiltinAttribute const& p_builtin) {
    ensure_as(p_builtin.Defined(), EmptyBuiltinText(p_builtin.name));
    BindVertexBuffer(p_builtin.buffer, p_builtin.name, -1, p_builtin.layout);
}

void VertexBuffer::BindIndexBuffer(ElementArrayBuffer const& p_buffer) {
    ensure(p_buffer.Defined() && "Binding an invalid index buffer!");
    SetIndexBufferData(p_buffer.Name(), p_buffer.Type(), p_buffer.Count());
    _state->idxBuffer.buffer = p_buffer.Buffer();
}

void VertexBuffer::SetIndexBufferData(unsigned int p_id, unsigned int p_type, unsigned int p_count) {
    _state->idxBuffer = State::IndexBuffer{p_id, p_type, ElementArrayBuffer::BytesPerIndex(p_type), p_count, {}};
}

// Every GL-facing operation checks validity first: once the facade is gone,
// so is the table Api() refers to.
void VertexBuffer::Bind() {
    if (!IsValid()) return;
    OglApi const& gl = Api();
    if (_state->useVAO) gl.BindVertexArray(Name());
    if (!_state->useVAO || _state->bindingsChanged) {
        BindBuiltins();
        BindGenerics();
    }
    if (_state->idxBuffer.id != 0) gl.BindBuffer(Tokens::TGL_ELEMENT_ARRAY_BUFFER, _state->idxBuffer.id);
    _state->bindingsChanged = false;
    _state->bound = true;
}

void VertexBuffer::BindBuiltins() const {
    for (auto const& [name, binding] : _state->builtInBindings) {
        auto const func = _state->LegacyBindings().find(name);
        if (!ensure(func != _state->LegacyBindings().end() && "Unknown builtin shader attribute. Wrong attribute name, maybe?"))
            continue;
        func->second(Api(), binding);
    }
}

void VertexBuffer::BindGenerics() const {
    OglApi const& gl = Api();
    for (auto const& [location, binding] : _state->bindings) {
        ArrayBufferScope const scope(gl, binding);
        AttributeLayout const& l = binding.layout;
        auto const index = GLuint(location);
        gl.EnableVertexAttribArray(index);
        gl.VertexAttribPointer(index, l.components, l.type, GLboolean(l.normalized), l.stride, ByteOffset(l.offset));
        if (l.divisor > 0) {
            ensure(_state->instancingSupported);
            gl.VertexAttribDivisor(index, l.divisor);
        }
    }
}

// Without a vertex array object the arrays live in GL's shared state: what
// this buffer enabled is switched off again, and a divisor put back to 0,
// so that the next draw does not read them.
void VertexBuffer::Unbind() {
    if (!IsValid()) return;
    OglApi const& gl = Api();
    if (_state->idxBuffer.id != 0) gl.BindBuffer(Tokens::TGL_ELEMENT_ARRAY_BUFFER, 0);
    if (_state->useVAO) {
        gl.BindVertexArray(0);
    } else if (!_state->builtInBindings.empty()) {
        gl.DisableClientState(Tokens::TGL_VERTEX_ARRAY);
        gl.DisableClientState(Tokens::TGL_NORMAL_ARRAY);
        gl.DisableClientState(Tokens::TGL_COLOR_ARRAY);
        for (unsigned unit = 0; unit < 8; ++unit) {
            gl.ClientActiveTexture(Tokens::TGL_TEXTURE0 + unit);
            gl.DisableClientState(Tokens::TGL_TEXTURE_COORD_ARRAY);
        }
        gl.ClientActiveTexture(Tokens::TGL_TEXTURE0);
    } else {
        for (auto const& [location, binding] : _state->bindings) {
            gl.DisableVertexAttribArray(GLuint(location));
            if (binding.layout.divisor > 0) gl.VertexAttribDivisor(GLuint(location), 0);
        }
    }
    _state->bound = false;
}

VertexBuffer::DrawRange VertexBuffer::Range(PrimitiveType p_type, unsigned p_first, unsigned p_count) const {
    ElementConversion const& c = Conversion(p_type);
    return {c.token, GLsizei(c.scale * p_count + c.offset), GLint(c.scale * p_first),
            ByteOffset(std::uint64_t(_state->idxBuffer.bytesPerIndex) * c.scale * p_first)};
}

void VertexBuffer::Draw(PrimitiveType p_type, unsigned p_first, unsigned p_count) const {
    if (!IsValid()) return;
    DrawRange const r = Range(p_type, p_first, p_count);
    if (_state->idxBuffer.id != 0)
        Api().DrawElements(r.token, r.count, _state->idxBuffer.type, r.offset);
    else
        Api().DrawArrays(r.token, r.first, r.count);
}

void VertexBuffer::DrawInstanced(PrimitiveType p_type, unsigned p_first, unsigned p_count, unsigned p_instances,
                                 unsigned p_baseInstance) const {
    ensure(_state->instancingSupported);
    if (!IsValid()) return;
    OglApi const& gl = Api();
    DrawRange const r = Range(p_type, p_first, p_count);
    unsigned const indexType = _state->idxBuffer.type;
    auto const instances = GLsizei(p_instances);
    bool const indexed = _state->idxBuffer.id != 0;
    if (p_baseInstance == 0) {
        if (indexed)
            gl.DrawElementsInstanced(r.token, r.count, indexType, r.offset, instances);
        else
            gl.DrawArraysInstanced(r.token, r.first, r.count, instances);
    } else if (indexed) {
        if (ensure(gl.DrawElementsInstancedBaseInstance && "ERROR: Not supported by GL driver!"))
            gl.DrawElementsInstancedBaseInstance(r.token, r.count, indexType, r.offset, instances, p_baseInstance);
    } else if (ensure(gl.DrawArraysInstancedBaseInstance && "ERROR: Not supported by GL driver!")) {
        gl.DrawArraysInstancedBaseInstance(r.token, r.first, r.count, instances, p_baseInstance);
    }
}

void VertexBuffer::operator()(PrimitiveType p_type) const {
    ElementConversion const& elemConv = Conversion(p_type);
    ensure(_state->idxBuffer.id != 0);
    ensure(_state->idxBuffer.count > 0);
    ensure(_state->idxBuffer.count > elemConv.offset);
    unsigned const numElements = _state->idxBuffer.count > elemConv.offset ? _state->idxBuffer.count - elemConv.offset : 0;
    ensure(numElements % elemConv.scale == 0);
    Draw(p_type, 0, numElements / elemConv.scale);
}

VertexBuffer::Span VertexBuffer::IndexToPrimitive(PrimitiveType p_type, Span p_indexSpan) {
    ElementConversion const& elemConv = Conversion(p_type);
    ensure(p_indexSpan.second > 0);
    ensure(p_indexSpan.second > elemConv.offset);
    // Too few indices make no primitive, rather than wrapping round.
    unsigned const count = p_indexSpan.second > elemConv.offset ? p_indexSpan.second - elemConv.offset : 0;
    ensure(count % elemConv.scale == 0);
    return {p_indexSpan.first / elemConv.scale, count / elemConv.scale};
}

unsigned VertexBuffer::CompletePrimitives(PrimitiveType p_type, unsigned p_vertices) {
    ElementConversion const& c = Conversion(p_type);
    return p_vertices > c.offset ? (p_vertices - c.offset) / c.scale : 0;
}

unsigned VertexBuffer::Token(PrimitiveType p_type) { return Conversion(p_type).token; }

}  // namespace Tev::Chart::Ogl
