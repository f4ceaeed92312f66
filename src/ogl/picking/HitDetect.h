// One picking pass in GL's selection mode: made before the scene is drawn,
// destroyed after it, with the names loaded in between. The pass keeps two
// slots on the facade's name stack: the object name and, on top of it when
// loaded, a sub-name for a part of the object.
#pragma once

#include "framework/types/Matrix4.h"
#include "framework/types/Size.h"
#include "framework/types/Viewport.h"
#include "framework/utility/Scoped.h"
#include "ogl/api/Export.h"
#include "ogl/picking/HitBuffer.h"

#include <cstdint>

namespace Tev::Chart::Ogl {

class Tgl;

class TEVOGL_API HitDetect {
public:
    // Picks the p_size region centred on p_position of p_viewport, seen
    // through p_projection. The facade needs an open scope for the pass.
    HitDetect(Utility::Unscoped<Tgl> const& p_tgl, Types::Viewport const& p_viewport,
              Types::Matrix4 const& p_projection, Types::Pos const& p_position, Types::Size const& p_size,
              HitBuffer& p_buffer);
    HitDetect(HitDetect const&) = delete;
    HitDetect& operator=(HitDetect const&) = delete;
    // Ends selection; the buffer then holds the pass's hits.
    ~HitDetect();

    void LoadName(std::uint64_t p_name);
    void LoadSubName(std::uint64_t p_subname);
    void PopSubName();
    // Loads "no name" into the top slot: the sub-name's when one is pushed.
    void ResetName();

private:
    Utility::Unscoped<Tgl> _tgl;
    HitBuffer& _buffer;
    bool _inSubStack = false;
};

// Numbers objects 1, 2, 3 ... (from a first number of the caller's).
class TEVOGL_API AutoNameLoader {
public:
    AutoNameLoader(HitDetect& p_detect, std::uint64_t p_first);

    // Loads the next number and returns it.
    std::uint64_t Next();
    // Loads "no name"; the numbering goes on where it was.
    void Reset();

private:
    HitDetect& _detect;
    std::uint64_t _next;
};

}  // namespace Tev::Chart::Ogl
