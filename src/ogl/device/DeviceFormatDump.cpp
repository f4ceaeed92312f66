// The log dumps of a format and of a request.
#include "framework/debug/Debug.h"
#include "ogl/device/DeviceFormat.h"

#include <array>
#include <iomanip>
#include <ostream>

namespace Tev::Chart::Ogl {

namespace {

template <std::size_t N>
char const* Name(std::array<char const*, N> const& p_names, std::uint32_t p_value) {
    return ensure(p_value < N) ? p_names[p_value] : "<ERROR>";
}

char const* TrueFalse(bool p_value) { return p_value ? "True" : "False"; }

// Each dump pads its labels to one column, so the values line up.
struct Labels {
    std::ostream& out;
    int width;

    std::ostream& operator()(char const* p_label) const {
        return out << '\t' << std::left << std::setw(width) << p_label << std::right << "= ";
    }
};

// Ids beyond the signed range cannot come from the window system; they are
// left over from a sign mix-up and are flagged as such.
void WriteId(std::ostream& p_out, DeviceFormat::Id p_id) {
    if (p_id == DeviceFormat::OSMesaFormatId) p_out << "OSMesa";
    else if (p_id == DeviceFormat::NullFormatId) p_out << "(undefined)";
    else if (static_cast<std::int32_t>(p_id) > 0) p_out << p_id;
    else p_out << "(ERROR)";
}

void WriteDevices(std::ostream& p_out, std::uint32_t p_devices) {
    for (auto type : {DeviceFormat::Bitmap, DeviceFormat::Window, DeviceFormat::Pbuffer, DeviceFormat::OSMesa})
        if (p_devices & DeviceFormat::DeviceBit(type)) p_out << DeviceFormat::DeviceTypeText(type) << ' ';
}

}  // namespace

char const* DeviceFormat::DeviceTypeText(DeviceType p_type) {
    return Name(std::array{"", "Bitmap", "Window", "Pbuffer", "OSMesa"}, p_type);
}
char const* DeviceFormat::DriverModelText(DriverModel p_model) {
    return Name(std::array{"Unknown", "ICD", "MCD"}, p_model);
}
char const* DeviceFormat::PixelTypeText(PixelType p_type) {
    return Name(std::array{"Unknown", "RGBA", "ColorIndex"}, p_type);
}
char const* DeviceFormat::SwapModeText(BufferSwapMode p_mode) {
    return Name(std::array{"Unknown", "Copy", "Exchange"}, p_mode);
}

std::ostream& operator<<(std::ostream& p_out, DeviceFormat const& p_format) {
    Labels const line{p_out, 28};
    p_out << '\n';
    line("Id");
    WriteId(p_out, p_format.id);
    p_out << '\n';
    line("CurrentDevice") << DeviceFormat::DeviceTypeText(p_format.currentDevice) << '\n';
    line("SupportedDevices");
    WriteDevices(p_out, p_format.supportedDevices);
    p_out << '\n';
    line("OpenGL") << TrueFalse(p_format.openGL) << '\n';
    line("GDI") << TrueFalse(p_format.gdi) << '\n';
    line("Driver Model") << DeviceFormat::DriverModelText(p_format.driverModel) << '\n';
    line("Accelerated") << TrueFalse(p_format.accelerated) << '\n';
    line("Mesa Software") << TrueFalse(p_format.mesaSoftware) << '\n';
    line("Pixel Type") << DeviceFormat::PixelTypeText(p_format.pixelType) << '\n';
    line("Swap Type") << DeviceFormat::SwapModeText(p_format.swapType) << '\n';
    line("Layer Plane") << p_format.layerPlane << '\n';
    line("Double Buffered") << TrueFalse(p_format.doubleBuffered) << '\n';
    line("Stereo Buffer") << TrueFalse(p_format.stereo) << '\n';
    line("Color Bits") << p_format.colorBits << "\t(" << p_format.redBits << ',' << p_format.greenBits << ','
                       << p_format.blueBits << ',' << p_format.alphaBits << ")\n";
    line("Depth Bits") << p_format.depthBits << '\n';
    line("Accum Bits") << p_format.accumBits << '\n';
    line("Stencil Bits") << p_format.stencilBits << '\n';
    line("Aux Buffers") << p_format.auxBuffers << '\n';
    line("Enable Diagnostics") << TrueFalse(p_format.enableDiagnostics) << '\n';
    return p_out;
}

std::ostream& operator<<(std::ostream& p_out, DeviceFormatRequest const& p_request) {
    Labels const line{p_out, 19};
    bool const window = p_request.devices == DeviceFormatRequest::Window;
    bool const hardware = p_request.acceleration == DeviceFormatRequest::Hardware;
    line("Devices") << (window ? "Window " : "Offscreen ") << '\n';
    line("Acceleration") << (hardware ? "Hardware " : "Software") << '\n';
    line("Double Buffered") << TrueFalse(p_request.doubleBuffered) << '\n';
    line("Depth Buffer") << TrueFalse(p_request.depthBuffer) << '\n';
    line("Stencil Buffer") << TrueFalse(p_request.stencilBuffer) << '\n';
    line("Enable Diagnostics") << TrueFalse(p_request.enableDiagnostics) << '\n';
    return p_out << '\n';
}

}  // namespace Tev::Chart::Ogl
