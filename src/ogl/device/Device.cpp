#include "ogl/device/Device.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl {

void* Device::RenderBuffer::Ptr() const {
    ensure_as(_buffer != nullptr, "void*(_buffer)");
    return _buffer;
}

}  // namespace Tev::Chart::Ogl
