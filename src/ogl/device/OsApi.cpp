// The system table. The Mesa one, OsApi(ApiMesaType, ...), is the Mesa
// window emulation's and is defined with it in osmesa/.
#include "ogl/device/OsApi.h"

#include "framework/debug/Debug.h"
#include "ogl/device/OsVersion.h"
#include "ogl/device/glx/GlxAdapters.h"
#include "ogl/device/glx/GlxArbApi.h"

namespace Tev::Chart::Ogl {

OsApi::OsApi() = default;

OsApi::OsApi(ApiSystemType, DisplayHnd const&)
    : IsSystem(1), OsVersion(Detail::OsVersionDump(Detail::QueryOsRelease())) {
    Detail::LoadGlxEntries(*this);
    Debug::dlog() << "OsApi: \n" << OsVersion.Text();
}

GlxArbApi OsApi::GetArbApi(int p_pixelFormat, DeviceHandle p_device) const {
    if (IsSystem == 0) return GlxArbApi();
    return GlxArbApi::MakeFakeContext(*this, p_pixelFormat, p_device);
}

}  // namespace Tev::Chart::Ogl
