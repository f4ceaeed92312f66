#include "ogl/device/DeviceContext.h"

#include "framework/debug/Debug.h"
#include "ogl/device/ContextGL.h"
#include "ogl/device/SystemDevice.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

namespace Tev::Chart::Ogl {

namespace {

bool IsOSMesa(DeviceFormat const& p_format) { return p_format.id == DeviceFormat::OSMesaFormatId; }

// The OSMesa display's one format is Mesa's whatever the request says, and
// the Mesa table needs no X server, so a hardware request there must not
// load GLX either.
boost::shared_ptr<OsApi> MakeOsApi(DisplayHnd const& p_display, DeviceFormatRequest const& p_request) {
    bool const mesa = p_request.acceleration == DeviceFormatRequest::Software || p_display.IsOSMesa();
    if (mesa) return boost::make_shared<OsApi>(ApiMesa, p_display);
    return boost::make_shared<OsApi>(ApiSystem, p_display);
}

// X devices and contexts only borrow their display connection; their
// deleter keeps the caller's handle, so a device context stays usable when
// the caller lets go of the display first.
template <typename T, typename... Args>
boost::shared_ptr<T> MakeOnDisplay(DisplayHnd const& p_display, Args&&... p_args) {
    return boost::shared_ptr<T>(new T(std::forward<Args>(p_args)...), [p_display](T* p_object) { delete p_object; });
}

boost::shared_ptr<Context> MakeContext(DisplayHnd const& p_display, Device const& p_device, OsApi const& p_osApi,
                                       DeviceFormat const& p_format, DeviceFormatRequest const& p_request) {
    if (IsOSMesa(p_format)) return boost::make_shared<ContextOSMesa>(p_device);
    return MakeOnDisplay<ContextGL>(p_display, p_device, p_osApi, p_request);
}

// A negative extent is as empty as 0, not a huge unsigned one.
std::uint64_t Extent(std::int32_t p_extent) { return std::uint64_t(std::max(p_extent, 0)); }

}  // namespace

DeviceContext::DeviceContext(DisplayHnd const& p_display, DeviceHandle const& p_device,
                             DeviceFormatRequest const& p_request)
    : osApi(MakeOsApi(p_display, p_request)) {
    DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(*osApi, p_display, p_request);
    Debug::dout() << "Requested Device Format:\n" << p_request;
    Debug::dout() << "Chosen Device Format:\n" << format;
    // An OSMesa buffer is never a window: a window request on the OSMesa
    // display gets a buffer of the request's size.
    bool const window = p_request.devices == DeviceFormatRequest::Window && !IsOSMesa(format);
    device = window ? CreateWindowDevice(p_display, p_device, osApi, format)
                    : CreateOffscreenDevice(p_display, p_device, osApi, format, p_request.size);
    context = MakeContext(p_display, *device, *osApi, format, p_request);
}

DeviceContext::DeviceContext(boost::shared_ptr<OsApi> p_osApi, boost::shared_ptr<Device> p_device,
                             boost::shared_ptr<Context> p_context)
    : osApi(std::move(p_osApi)), device(std::move(p_device)), context(std::move(p_context)) {}

boost::shared_ptr<Device> DeviceContext::CreateWindowDevice(DisplayHnd const& p_display, DeviceHandle const& p_window,
                                                            boost::shared_ptr<OsApi> const& p_osApi,
                                                            DeviceFormat const& p_format) {
    return MakeOnDisplay<SystemDevice>(p_display, *p_osApi, p_window, p_format);
}

boost::shared_ptr<Device> DeviceContext::CreateOffscreenDevice(DisplayHnd const& p_display, DeviceHandle const& p_parent,
                                                               boost::shared_ptr<OsApi> const& p_osApi,
                                                               DeviceFormat const& p_format, Types::Size const& p_size) {
    ensure(p_size.width > 0 && p_size.height > 0);
    if (IsOSMesa(p_format)) return boost::make_shared<DeviceOSMesa>(Extent(p_size.width), Extent(p_size.height));
    DeviceHandle const parent = p_parent ? p_parent : p_display.Handle();
    return MakeOnDisplay<SystemDevice>(p_display, *p_osApi, Extent(p_size.width), Extent(p_size.height), parent, p_format);
}

}  // namespace Tev::Chart::Ogl
