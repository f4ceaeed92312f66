#include "ogl/device/DeviceFormat.h"

#include "framework/debug/Debug.h"
#include "framework/utility/Environment.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/FormatRanking.h"
#include "ogl/device/OsApi.h"

#include <boost/optional.hpp>

namespace Tev::Chart::Ogl {

namespace {

bool Has(std::uint32_t p_flags, std::uint32_t p_mask) { return (p_flags & p_mask) != 0; }

// Every flag a software off-screen request asks for. Nearly every GL format
// carries one of them, so nearly every one counts as pbuffer-capable; the
// request side writes the same mask, and the two must stay paired.
constexpr std::uint32_t SoftwareOffscreenFlags =
    Pfd::SupportDirectDraw | Pfd::SupportOpenGL | Pfd::DrawToBitmap | Pfd::DrawToWindow | Pfd::DoubleBuffer;

PixelFormatDescriptor EmptyDescriptor() {
    PixelFormatDescriptor descriptor{};
    descriptor.nSize = Pfd::Size;
    descriptor.nVersion = Pfd::Version;
    return descriptor;
}

std::uint32_t SupportedDevices(std::uint32_t p_flags) {
    std::uint32_t devices = 0;
    if (Has(p_flags, Pfd::DrawToBitmap)) devices |= DeviceFormat::DeviceBit(DeviceFormat::Bitmap);
    if (Has(p_flags, Pfd::DrawToWindow)) devices |= DeviceFormat::DeviceBit(DeviceFormat::Window);
    if (Has(p_flags, SoftwareOffscreenFlags)) devices |= DeviceFormat::DeviceBit(DeviceFormat::Pbuffer);
    return devices;
}

DeviceFormat::BufferSwapMode SwapMode(std::uint32_t p_flags) {
    bool const copyOnly = Has(p_flags, Pfd::SwapCopy) && !Has(p_flags, Pfd::SwapExchange);
    return copyOnly ? DeviceFormat::Copy : DeviceFormat::Exchange;
}

DeviceFormat FromDescriptor(PixelFormatDescriptor const& p_pfd, bool p_mesa) {
    std::uint32_t const flags = p_pfd.dwFlags;
    bool const generic = Has(flags, Pfd::GenericFormat);
    DeviceFormat format;
    format.supportedDevices = SupportedDevices(flags);
    format.openGL = Has(flags, Pfd::SupportOpenGL);
    format.gdi = Has(flags, Pfd::SupportGdi);
    format.driverModel = Has(flags, Pfd::GenericAccelerated | Pfd::GenericFormat) ? DeviceFormat::MCD : DeviceFormat::ICD;
    format.accelerated = !generic || Has(flags, Pfd::GenericAccelerated);
    format.mesaSoftware = p_mesa;
    format.pixelType = p_pfd.iPixelType == Pfd::TypeRGBA ? DeviceFormat::RGBA : DeviceFormat::ColorIndex;
    format.swapType = SwapMode(flags);
    format.layerPlane = p_pfd.iLayerType;
    format.doubleBuffered = Has(flags, Pfd::DoubleBuffer);
    format.stereo = Has(flags, Pfd::Stereo);
    format.colorBits = p_pfd.cColorBits;
    format.redBits = p_pfd.cRedBits;
    format.greenBits = p_pfd.cGreenBits;
    format.blueBits = p_pfd.cBlueBits;
    format.alphaBits = p_pfd.cAlphaBits;
    format.depthBits = p_pfd.cDepthBits;
    format.accumBits = p_pfd.cAccumBits;
    format.stencilBits = p_pfd.cStencilBits;
    format.auxBuffers = p_pfd.cAuxBuffers;
    return format;
}

std::uint32_t AccelerationFlags(std::uint32_t p_acceleration) {
    switch (p_acceleration) {
        case DeviceFormatRequest::Hardware: return Pfd::GenericAccelerated;
        case DeviceFormatRequest::Software: return Pfd::GenericFormat;
    }
    ensure(!"Unknown acceleration requested");
    return 0;
}

std::uint32_t DeviceFlags(DeviceFormatRequest const& p_request) {
    if (p_request.devices == DeviceFormatRequest::Window) return Pfd::DrawToWindow;
    return p_request.acceleration == DeviceFormatRequest::Software ? SoftwareOffscreenFlags : Pfd::DrawToBitmap;
}

// Depth and stencil ask for more than any format offers, so that the window
// system's chooser settles on the deepest buffers it has.
PixelFormatDescriptor RequestDescriptor(DeviceFormatRequest const& p_request) {
    PixelFormatDescriptor descriptor = EmptyDescriptor();
    descriptor.dwFlags = AccelerationFlags(p_request.acceleration) | DeviceFlags(p_request) | Pfd::SupportOpenGL |
                         (p_request.doubleBuffered ? Pfd::DoubleBuffer : Pfd::DoubleBufferDontCare) |
                         Pfd::StereoDontCare | Pfd::SwapExchange;
    descriptor.iPixelType = Pfd::TypeRGBA;
    descriptor.cColorBits = 24;
    descriptor.cAlphaBits = 8;
    descriptor.cDepthBits = p_request.depthBuffer ? 64 : 0;
    descriptor.cStencilBits = p_request.stencilBuffer ? 128 : 0;
    return descriptor;
}

bool IsMesa(OsApi const& p_api) { return p_api.IsSystem == 0; }

// The number of formats of the display when p_id is one of them, else 0.
int Describe(OsApi const& p_api, DisplayHnd const& p_display, int p_id, PixelFormatDescriptor& p_descriptor) {
    return p_api.DescribePixelFormat(p_display.Handle(), p_id, Pfd::Size, &p_descriptor);
}

DeviceFormat DescribedFormat(OsApi const& p_api, DisplayHnd const& p_display, DeviceFormat::Id p_id) {
    PixelFormatDescriptor descriptor = EmptyDescriptor();
    Describe(p_api, p_display, static_cast<int>(p_id), descriptor);
    DeviceFormat format = FromDescriptor(descriptor, IsMesa(p_api));
    format.id = p_id;
    return format;
}

DeviceFormat OSMesaFormat() {
    DeviceFormat format;
    format.id = DeviceFormat::OSMesaFormatId;
    format.supportedDevices = DeviceFormat::DeviceBit(DeviceFormat::OSMesa);
    return format;
}

boost::optional<DeviceFormat> BestFormat(OsApi const& p_api, DisplayHnd const& p_display,
                                         DeviceFormatRequest const& p_request) {
    boost::optional<DeviceFormat> best;
    for (DeviceFormat::Id const id : DeviceFormat::GetAllDeviceFormats(p_api, p_display)) {
        DeviceFormat candidate = DeviceFormat::GetDeviceFormat(p_api, p_display, id);
        candidate.enableDiagnostics = p_request.enableDiagnostics;
        if (Detail::FirstRejection(candidate, p_request)) continue;
        if (!best || Detail::FormatScores::Compare(candidate, *best, p_request).Replaces(*best)) best = candidate;
    }
    return best;
}

}  // namespace

DeviceFormat DeviceFormat::GetDeviceFormat(OsApi const& p_api, DisplayHnd const& p_display, unsigned const& p_id) {
    ensure((p_id != NullFormatId) && " Invalid Device Format id!");
    if (p_id == OSMesaFormatId && p_display.IsOSMesa()) return OSMesaFormat();
    return DescribedFormat(p_api, p_display, p_id);
}

std::vector<DeviceFormat::Id> DeviceFormat::GetAllDeviceFormats(OsApi const& p_api, DisplayHnd const& p_display) {
    if (p_display.IsOSMesa()) return {OSMesaFormatId};
    PixelFormatDescriptor descriptor = EmptyDescriptor();
    int const count = Describe(p_api, p_display, static_cast<int>(FirstFormatId), descriptor);
    std::vector<Id> ids;
    for (int id = static_cast<int>(FirstFormatId); id <= count; ++id)
        if (Describe(p_api, p_display, id, descriptor) != 0) ids.push_back(static_cast<Id>(id));
    return ids;
}

// The Mesa chooser never fails: its first format is always usable.
DeviceFormat DeviceFormat::ChooseDeviceFormatSystem(OsApi const& p_api, DisplayHnd const& p_display,
                                                    DeviceFormatRequest const& p_request) {
    PixelFormatDescriptor const descriptor = RequestDescriptor(p_request);
    int id = p_api.ChoosePixelFormat(p_display.Handle(), &descriptor);
    if (id < static_cast<int>(FirstFormatId)) {
        if (!IsMesa(p_api)) throw FailedDeterminingDeviceFormat();
        id = static_cast<int>(FirstFormatId);
    }
    DeviceFormat format = DescribedFormat(p_api, p_display, static_cast<Id>(id));
    format.enableDiagnostics = p_request.enableDiagnostics;
    return format;
}

DeviceFormat DeviceFormat::ChooseDeviceFormat(OsApi const& p_api, DisplayHnd const& p_display,
                                              DeviceFormatRequest const& p_request) {
    if (p_display.IsOSMesa()) return GetDeviceFormat(p_api, p_display, OSMesaFormatId);
    if (boost::optional<unsigned> const forced = Utility::Environment::ForcePixelFormat()) {
        DeviceFormat const format = GetDeviceFormat(p_api, p_display, *forced);
        Debug::dout() << "Forced load of Pixel Format\n" << format;
        return format;
    }
    if (Utility::Environment::UseSystemDeviceFormat()) return ChooseDeviceFormatSystem(p_api, p_display, p_request);
    if (boost::optional<DeviceFormat> const best = BestFormat(p_api, p_display, p_request)) return *best;
    return ChooseDeviceFormatSystem(p_api, p_display, p_request);
}

}  // namespace Tev::Chart::Ogl
