// The GL selection buffer of one picking pass, and the hits read from it.
#pragma once

#include "framework/utility/Exception.h"
#include "ogl/api/Export.h"
#include "ogl/picking/HitRecord.h"

#include <cstdint>
#include <vector>

namespace Tev::Chart::Ogl {

class HitDetect;

class TEVOGL_API HitBuffer {
public:
    // The pass wrote more hits than the buffer holds.
    class OverflowError : public Utility::Exception {
    public:
        using Utility::Exception::Exception;
    };

    // Room for p_capacity hits of two names each.
    explicit HitBuffer(unsigned int p_capacity);

    // The hits the last pass recorded. Throws OverflowError, once, when that
    // pass overflowed the buffer (and on a buffer no pass has filled).
    unsigned int Count() const;
    // In the order GL recorded them; sort with the HitRecord orderings.
    std::vector<HitRecord> Records() const;

private:
    friend class HitDetect;

    std::vector<std::uint32_t> _buffer;
    // What GL returned at the end of the pass, then the hits counted; -1
    // before a pass.
    mutable std::int32_t _count = -1;
    mutable bool _counted = false;
};

}  // namespace Tev::Chart::Ogl
