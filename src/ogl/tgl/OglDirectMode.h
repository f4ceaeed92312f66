// Begin/End emulation: the values a client gives between Begin and End are
// collected with immediate mode's current-value behaviour and drawn at End
// as one vertex-array entry.
#pragma once

#include "framework/types/Vector.h"
#include "ogl/api/Export.h"
#include "ogl/resources/VertexArray.h"

#include <QColor>

#include <boost/shared_array.hpp>

#include <cstdint>
#include <map>
#include <vector>

namespace Tev::Chart::Ogl {

class TEVOGL_API OglDirectMode : public VertexArray {
public:
    OglDirectMode();

    // Starts collecting; p_primitive is a primitive token (TGL_POINTS ...
    // TGL_POLYGON).
    void Begin(unsigned p_primitive);
    // Builds the entry and draws it.
    void End(Utility::Scoped<Tgl>& p_tgl);
    // Builds the entry without drawing it.
    void End();
    // Draws every entry built so far.
    void operator()(Utility::Scoped<Tgl>& p_tgl) const;
    // Forgets the collection and every entry.
    void Clear();

    void Vertex(Types::Vector2d const& p_vertex);
    void Vertex(Types::Vector3d const& p_vertex);
    void Vertex(Types::Vector4d const& p_vertex);
    void Vertex(float p_x, float p_y);
    void Normal(Types::Vector3d const& p_normal);
    void Normal(double p_x, double p_y, double p_z);
    void Color(QColor const& p_color);
    void TexCoord(double p_s);
    void TexCoord(double p_s, double p_t);
    void TexCoord(Types::Vector2d const& p_coord);
    void TexCoord(Types::Vector3d const& p_coord);
    void TexCoord(Types::Vector4d const& p_coord);
    // p_unit is a texture token (TGL_TEXTURE0 + n). Two units can be fed
    // within one Begin/End; a third is reported and its coordinates dropped.
    void MultiTexCoord(unsigned p_unit, double p_s);
    void MultiTexCoord(unsigned p_unit, Types::Vector2d const& p_coord);
    void MultiTexCoord(unsigned p_unit, Types::Vector3d const& p_coord);
    void MultiTexCoord(unsigned p_unit, Types::Vector4d const& p_coord);
    // A vertex at a pixel; lines go through pixel centres.
    void Pixel(Types::Vector2d const& p_pixel);
    void Pixel(double p_x, double p_y);

    // Primitive token -> stored primitive value; exactly the ten primitives.
    static std::map<unsigned, unsigned> const& PrimitivesMap();

private:
    using Values = std::vector<double>;

    struct TexCoordSet {
        Values values;
        std::int32_t type = -1;
        std::int32_t dims = -1;
        std::int32_t unit = -1;
    };

    void Reset();
    void AddVertex(double const* p_components, int p_count);
    void StoreCurrent(Values& p_values, int p_width, double const* p_entry);
    void StoreTexCoord(TexCoordSet& p_set, double const* p_components, int p_count);
    void MultiTexCoord(unsigned p_unit, double const* p_components, int p_count);

    std::uint64_t NumVertices() const;
    std::uint64_t NumNormals() const;
    std::uint64_t NumColors() const;
    static std::uint64_t NumTexCoords(Values const& p_values, std::int32_t p_dims);
    void AdjustSizes();
    static boost::shared_array<char const> PackArray(Values const& p_values, std::int32_t p_dims,
                                                     std::uint64_t p_elementSize, std::uint64_t p_count);
    void PackInto(VertexData& p_data, std::uint64_t p_count);

    std::uint8_t _missing = 0;
    unsigned _primitive = 0;
    bool _isLine = false;
    Values _vertices;
    // Vertices collected; _vertices holds them at its front and is larger.
    std::uint64_t _vertexCount = 0;
    Values _normals;
    Values _colors;
    TexCoordSet _setA;
    TexCoordSet _setB;
    std::int32_t _vertexType = -1;
    std::int32_t _normalType = -1;
    std::int32_t _colorType = -1;
    std::int32_t _vertexDims = -1;
};

}  // namespace Tev::Chart::Ogl
