// The pixel formats of the Mesa window emulation: what an OSMesa context
// can render into a window's memory copy.
#pragma once

#include "ogl/device/Platform.h"

#include <span>

namespace Tev::Chart::Ogl::Detail {

// One renderable combination; format n (1-based) is element n-1.
struct MesaPixelFormat {
    bool doubleBuffered;
    int depthBits;
    int stencilBits;
};

// The most capable format first: the Mesa chooser falls back to format 1.
std::span<MesaPixelFormat const> MesaPixelFormats();

// The descriptor of format p_id, which must be one of the list.
PixelFormatDescriptor DescribeMesaFormat(int p_id);

// The format that fits p_request best, or 0 when none can serve it (a
// colour-index request). Buffering is matched first, then the depth and
// stencil buffers come as close to the request as the list allows; the
// lower id wins ties.
int ChooseMesaFormat(PixelFormatDescriptor const& p_request);

}  // namespace Tev::Chart::Ogl::Detail
