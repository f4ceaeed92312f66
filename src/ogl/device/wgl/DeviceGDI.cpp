#include "ogl/device/wgl/DeviceGDI.h"

#include "framework/debug/Debug.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/wgl/WglArbApi.h"

#include <algorithm>

namespace Tev::Chart::Ogl {

// What an off-screen device owns besides its device context: the hidden
// window and pbuffer of the pbuffer path, or the DIB section of the bitmap
// path.
struct DeviceGDI::Offscreen {
    HWND hiddenWindow = nullptr;
    HDC hiddenDc = nullptr;
    PbufferHandle pbuffer = nullptr;
    HBITMAP bitmap = nullptr;
    WglArbApi arb;
};

namespace {

void SetPixelFormat(OsApi const& p_api, HDC p_device, int p_pfId) {
    ensure(p_pfId > 0);
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = Pfd::Size;
    descriptor.nVersion = Pfd::Version;
    p_api.DescribePixelFormat(p_device, p_pfId, sizeof descriptor, &descriptor);
    int const set = p_api.SetPixelFormat(p_device, p_pfId, &descriptor);
    ensure(set == TRUE && "Failed to set the pixel format on the given device!");
}

int Extent(std::uint64_t p_extent) { return int(std::min<std::uint64_t>(p_extent, 0x7FFFFFFF)); }

}  // namespace

DeviceGDI::DeviceGDI(OsApi const& p_api, HDC const& p_window, DeviceFormat const& p_format)
    : _format(p_format), _hdc(p_window), _display(GetDisplayHnd(p_window)) {
    ensure(_format.id > DeviceFormat::NullFormatId && "Invalid Pixel Format defined");
    SetPixelFormat(p_api, _hdc, int(_format.id));
    _format.currentDevice = DeviceFormat::Window;
    _format.mesaSoftware = _format.mesaSoftware || p_api.IsSystem == 0;
}

DeviceGDI::DeviceGDI(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, HDC const& p_parentDevice,
                     DeviceFormat const& p_format)
    : _format(p_format) {
    ensure(p_parentDevice && "Invalid parent device given");
    _display = p_parentDevice ? GetDisplayHnd(p_parentDevice) : GetRootDisplayHnd();
    InitializeOffscreenDevice(p_api, p_width, p_height, p_parentDevice ? p_parentDevice : _display.Handle());
}

DeviceGDI::DeviceGDI(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height, DeviceFormat const& p_format)
    : _format(p_format), _display(GetRootDisplayHnd()) {
    InitializeOffscreenDevice(p_api, p_width, p_height, _display.Handle());
}

void DeviceGDI::InitializeOffscreenDevice(OsApi const& p_api, std::uint64_t p_width, std::uint64_t p_height,
                                          HDC p_parent) {
    ensure(_format.id > DeviceFormat::NullFormatId && "Invalid Pixel Format defined");
    _offscreen = std::make_unique<Offscreen>();
    if (_format.accelerated && _format.driverModel == DeviceFormat::ICD)
        InitializePbuffer(p_api, Extent(p_width), Extent(p_height));
    else
        InitializeBitmap(p_api, Extent(p_width), Extent(p_height), p_parent);
    _format.mesaSoftware = _format.mesaSoftware || p_api.IsSystem == 0;
}

void DeviceGDI::InitializePbuffer(OsApi const& p_api, int p_width, int p_height) {
    Offscreen& offscreen = *_offscreen;
    offscreen.hiddenWindow = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_DISABLED, 0, 0, 1, 1, nullptr, nullptr,
                                             GetModuleHandleA(nullptr), nullptr);
    ShowWindow(offscreen.hiddenWindow, SW_HIDE);
    offscreen.hiddenDc = GetDC(offscreen.hiddenWindow);
    int const id = int(_format.id);
    SetPixelFormat(p_api, offscreen.hiddenDc, id);
    offscreen.arb = p_api.GetArbApi(id, offscreen.hiddenDc);

    GdiFlush();
    offscreen.arb.MakeCurrent();
    int const noAttributes[] = {0};
    // The Mesa table has no pbuffer entries: reported like a refusal.
    if (offscreen.arb.CreatePbufferARB)
        offscreen.pbuffer = offscreen.arb.CreatePbufferARB(offscreen.hiddenDc, id, p_width, p_height, noAttributes);
    ensure(offscreen.pbuffer && "Failed to create a pbuffer.");
    if (offscreen.pbuffer && offscreen.arb.GetPbufferDCARB) _hdc = offscreen.arb.GetPbufferDCARB(offscreen.pbuffer);
    offscreen.arb.DoneCurrent();

    _format.currentDevice = DeviceFormat::Pbuffer;
    // Workaround "pbuffer-dc-format": the pbuffer's device context is born
    // with its format, and Wine refuses to set it again (as GDI refuses any
    // second SetPixelFormat). Switch: drop the GetPixelFormat test.
    if (_hdc && p_api.GetPixelFormat(_hdc) != id) SetPixelFormat(p_api, _hdc, id);
}

void DeviceGDI::InitializeBitmap(OsApi const& p_api, int p_width, int p_height, HDC p_parent) {
    GdiFlush();
    _hdc = CreateCompatibleDC(p_parent);
    ensure(_hdc && "Failed to create compatable dc");

    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = p_width;
    info.bmiHeader.biHeight = p_height;  // positive: rows from the bottom up, as GL reads them
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = WORD(std::max(_format.colorBits, 8u));
    info.bmiHeader.biCompression = BI_RGB;
    void* pixels = nullptr;
    _offscreen->bitmap = CreateDIBSection(_hdc, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    ensure(_offscreen->bitmap && pixels && "failed to create a dib section");

    HGDIOBJ const previous = _hdc && _offscreen->bitmap ? SelectObject(_hdc, _offscreen->bitmap) : nullptr;
    ensure(previous && "Failed SelectObject");
    GdiFlush();

    _format.currentDevice = DeviceFormat::Bitmap;
    _buffer = RenderBuffer(p_width, p_height, pixels);
    SetPixelFormat(p_api, _hdc, int(_format.id));
}

DeviceGDI::~DeviceGDI() {
    if (!_offscreen) return;
    Offscreen& offscreen = *_offscreen;
    if (offscreen.pbuffer) {
        if (_hdc && offscreen.arb.ReleasePbufferDCARB) offscreen.arb.ReleasePbufferDCARB(offscreen.pbuffer, _hdc);
        if (offscreen.arb.DestroyPbufferARB) offscreen.arb.DestroyPbufferARB(offscreen.pbuffer);
    }
    if (offscreen.hiddenWindow) {
        if (offscreen.hiddenDc) ReleaseDC(offscreen.hiddenWindow, offscreen.hiddenDc);
        DestroyWindow(offscreen.hiddenWindow);
        return;
    }
    // The device context goes first: a bitmap still selected into one
    // cannot be deleted, and would be left behind with a warning.
    if (_hdc && !DeleteDC(_hdc)) Debug::derr() << "WARNING: \"DeleteDC(_hdc)\" -";
    if (offscreen.bitmap && !DeleteObject(offscreen.bitmap))
        Debug::derr() << "WARNING: \"DeleteObject(_offscreenHandle.bitmap)\" -";
}

}  // namespace Tev::Chart::Ogl
