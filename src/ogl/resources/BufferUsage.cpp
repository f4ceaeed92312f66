#include "ogl/resources/BufferUsage.h"

namespace Tev::Chart::Ogl {

// Constant-initialised (constexpr constructor), so usable from any other
// static initialiser.
BufferUsage const BufferUsage::Default{BufferUsage::Static, BufferUsage::Draw};

}  // namespace Tev::Chart::Ogl
