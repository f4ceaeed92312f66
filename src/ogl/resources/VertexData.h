// The CPU-side description of one drawable batch.
//
// Every array is the caller's own block of raw elements plus a type tag: the
// numbers are never copied or converted, and the GPU receives them in the
// caller's type (the GL call is told which through ToToken). Copies of a
// VertexData make new descriptions that share the element blocks.
#pragma once

#include "framework/types/BoundingBox.h"
#include "framework/utility/Attribute.h"
#include "ogl/api/Export.h"

#include <boost/shared_array.hpp>

#include <cstdint>

namespace Tev::Chart::Ogl {

class TEVOGL_API VertexData {
public:
    enum ElementType : std::int32_t { Short = 0, Int = 1, Float = 2, Double = 3 };
    enum ElementIndexType : std::int32_t { UnsignedByte = 0, UnsignedShort = 1, UnsignedInt = 2 };
    enum Primitive : std::int32_t {
        Points = 0,
        Lines,
        LineLoop,
        LineStrip,
        Triangles,
        TriangleStrip,
        TriangleFan,
        Quads,
        QuadStrip,
        Polygon
    };
    // Components per entry; -1 while unset.
    enum Dimensions : std::int32_t { X = 1, XY = 2, XYZ = 3, XYZW = 4 };

    using Block = boost::shared_array<char const>;

    struct TEVOGL_API Vertices {
        Block data;
        Dimensions dims = Dimensions(-1);
        ElementType type = ElementType(-1);
        std::uint32_t count = std::uint32_t(-1);

        // Bytes per vertex; only two and three components are drawable.
        std::uint64_t DatumSize() const;
        bool operator==(Vertices const& p_other) const;
    };

    struct TEVOGL_API Indices {
        Block data;
        ElementIndexType type = ElementIndexType(-1);
        std::uint32_t count = std::uint32_t(-1);

        std::uint64_t DatumSize() const;
        bool operator==(Indices const& p_other) const;
    };

    struct TEVOGL_API Normals {
        Block data;
        ElementType type = ElementType(-1);

        std::uint64_t DatumSize() const;
        bool operator==(Normals const& p_other) const;
    };

    struct TEVOGL_API Colors {
        Block data;
        ElementType type = ElementType(-1);
        bool alpha = false;

        std::uint64_t DatumSize() const;
        bool operator==(Colors const& p_other) const;
    };

    struct TEVOGL_API TexCoords {
        Block data;
        ElementType type = ElementType(-1);
        Dimensions dims = Dimensions(-1);
        // Counted from GL_TEXTURE0; -1 leaves the choice to the drawing code.
        std::int32_t unit = -1;

        std::uint64_t DatumSize() const;
        bool operator==(TexCoords const& p_other) const;
    };

    struct TEVOGL_API EdgeFlags {
        Block data;

        std::uint64_t DatumSize() const { return 1; }
        bool operator==(EdgeFlags const& p_other) const { return data.get() == p_other.data.get(); }
    };

    VertexData() = default;

    // Bytes of per-vertex data: every defined array times the vertex count.
    std::uint64_t VertexDataSize() const;
    std::uint64_t IndexDataSize() const;
    // Over the vertices the indices name, or over all vertices without
    // indices; z is 0 for two-component data.
    Types::BoundingBox_Base<double> BoundingBox() const;

    // Forgets everything but the indices, which a rebuilt batch usually
    // keeps.
    void Clear();
    // Drop the element blocks once they live on the GPU; the descriptions
    // (types, dims, counts) stay for drawing from buffers.
    void FreeVertexMemory();
    void FreeIndexMemory();

    static unsigned ToToken(ElementType p_type);
    static unsigned ToToken(ElementIndexType p_type);
    static unsigned ToToken(Primitive p_primitive);

    Utility::Attribute<Primitive> primitive;
    Utility::Attribute<Vertices> vertices;
    Utility::Attribute<Indices> indices;
    Utility::Attribute<Normals> normals;
    Utility::Attribute<Colors> colors;
    Utility::Attribute<TexCoords> texCoords0;
    Utility::Attribute<TexCoords> texCoords1;
    Utility::Attribute<EdgeFlags> edgeFlags;
};

}  // namespace Tev::Chart::Ogl
