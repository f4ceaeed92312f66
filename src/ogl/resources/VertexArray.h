// A list of vertex batches drawn through the facade's client-side arrays.
#pragma once

#include "framework/utility/Scoped.h"
#include "ogl/api/Export.h"
#include "ogl/resources/VertexData.h"

#include <boost/shared_ptr.hpp>

#include <bitset>
#include <cstdint>
#include <vector>

namespace Tev::Chart::Ogl {

class Tgl;
struct OglApi;

class TEVOGL_API VertexArray {
public:
    // Arrays a draw leaves out, so that GL's current value applies instead.
    enum DisabledArray { NoNormals = 0, NoColors, NoTexCoords0, NoTexCoords1, NoEdgeFlags };
    using Disabled = std::bitset<5>;

    // Shares the element blocks of p_data.
    void Add(VertexData const& p_data);
    std::uint64_t Count() const { return _entries.size(); }
    void Clear() { _entries.clear(); }

    // Every entry, every vertex.
    void operator()(Utility::Scoped<Tgl>& p_tgl, Disabled const& p_disabled) const;
    // Entries [p_first, p_first + p_count), every vertex.
    void operator()(Utility::Scoped<Tgl>& p_tgl, std::uint64_t p_first, std::uint64_t p_count,
                    Disabled const& p_disabled) const;
    // As above, from p_firstVertex (an index position when the entry is
    // indexed) and p_vertexCount many; 0 or an overrun means "to the end".
    void operator()(Utility::Scoped<Tgl>& p_tgl, std::uint64_t p_first, std::uint64_t p_count,
                    std::uint64_t p_firstVertex, std::uint64_t p_vertexCount, Disabled const& p_disabled) const;

private:
    std::vector<boost::shared_ptr<VertexData>> _entries;
};

}  // namespace Tev::Chart::Ogl
