// The one door to a drawing surface and a GL context for it: from a display,
// a device handle and a format request it builds the window-system table,
// chooses the pixel format, creates the device and the matching context.
#pragma once

#include "framework/types/Size.h"
#include "ogl/api/Export.h"
#include "ogl/device/Context.h"
#include "ogl/device/Device.h"
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/Platform.h"

#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

class TEVOGL_API DeviceContext {
public:
    // p_device is the window to draw into for a window request, the parent
    // of the surface for an off-screen one (null: the display's root). The
    // table is Mesa's for a software request and for the OSMesa display
    // (whose one format Mesa renders), the system's otherwise. Nothing is
    // made current: the caller binds the context on its thread and loads
    // the OglApi of the implementation the table names (IsSystem).
    // Exceptions of the table, the chooser and the context pass through.
    DeviceContext(DisplayHnd const& p_display, DeviceHandle const& p_device, DeviceFormatRequest const& p_request);
    DeviceContext(boost::shared_ptr<OsApi> p_osApi, boost::shared_ptr<Device> p_device,
                  boost::shared_ptr<Context> p_context);

    // A window device for p_window, whose X window must have been made for
    // the format (see WindowDevice::VisualFor); the handle and the window
    // must outlive the device. The device keeps p_display open.
    static boost::shared_ptr<Device> CreateWindowDevice(DisplayHnd const& p_display, DeviceHandle const& p_window,
                                                        boost::shared_ptr<OsApi> const& p_osApi,
                                                        DeviceFormat const& p_format);
    // An OSMesa buffer for the OSMesa format; otherwise a pbuffer or pixmap
    // on p_parent, or on the display's root when p_parent is null. A size
    // that is not positive is reported and the device made anyway. An X
    // device keeps p_display open.
    static boost::shared_ptr<Device> CreateOffscreenDevice(DisplayHnd const& p_display, DeviceHandle const& p_parent,
                                                           boost::shared_ptr<OsApi> const& p_osApi,
                                                           DeviceFormat const& p_format, Types::Size const& p_size);

    // Copies share the three.
    boost::shared_ptr<OsApi> osApi;
    boost::shared_ptr<Device> device;
    boost::shared_ptr<Context> context;
};

}  // namespace Tev::Chart::Ogl
