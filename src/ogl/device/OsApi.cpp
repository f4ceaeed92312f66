#include "ogl/device/OsApi.h"

namespace Tev::Chart::Ogl {

// Every entry null: what test doubles start from.
OsApi::OsApi() = default;

}  // namespace Tev::Chart::Ogl
