// Format choice against scripted pixel-format lists.
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "support/FakeOsApi.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Test::DriverFormat;
using Tev::Test::ScopedEnv;
using Tev::Test::ScriptedFormats;
using Descriptor = PixelFormatDescriptor;
using Request = DeviceFormatRequest;
using Edit = std::function<void(Descriptor&)>;

Descriptor Make(Edit const& p_edit) {
    Descriptor pfd = DriverFormat();
    if (p_edit) p_edit(pfd);
    return pfd;
}

Request MakeRequest(std::uint32_t p_devices, std::uint32_t p_acceleration, bool p_double = false,
                    bool p_depth = false, bool p_stencil = false) {
    return {p_devices, {0, 0}, p_acceleration, p_double, p_depth, p_stencil, false, {}};
}

Edit Flags(std::uint32_t p_set, std::uint32_t p_clear = 0) {
    return [=](Descriptor& p) { p.dwFlags = (p.dwFlags | p_set) & ~p_clear; };
}
Edit Depth(int p_bits) { return [=](Descriptor& p) { p.cDepthBits = std::uint8_t(p_bits); }; }
Edit Stencil(int p_bits) { return [=](Descriptor& p) { p.cStencilBits = std::uint8_t(p_bits); }; }
Edit Alpha(int p_bits) { return [=](Descriptor& p) { p.cAlphaBits = std::uint8_t(p_bits); }; }
Edit Rgb(int p_r, int p_g, int p_b) {
    return [=](Descriptor& p) {
        p.cRedBits = std::uint8_t(p_r), p.cGreenBits = std::uint8_t(p_g), p.cBlueBits = std::uint8_t(p_b);
    };
}
Edit Both(Edit p_first, Edit p_second) { return [=](Descriptor& p) { p_first(p), p_second(p); }; }
Edit const SwapCopy = Flags(Pfd::SwapCopy, Pfd::SwapExchange);
Edit const Single = Flags(0, Pfd::DoubleBuffer);

// The environment may carry either flag; every test starts without both.
class DeviceFormatChoice : public ::testing::Test {
protected:
    ScopedEnv _noForced{"TEVOS_FORCE_PIXEL_FORMAT", nullptr};
    ScopedEnv _noSystem{"TEVOS_USE_SYSTEM_DEVICE_FORMAT", nullptr};
    DisplayHnd const _display;
};

TEST_F(DeviceFormatChoice, EachRejectionRuleSendsTheChoiceToTheSystemChooser) {
    Request const window = MakeRequest(Request::Window, Request::Hardware);
    Request const softOffscreen = MakeRequest(Request::Offscreen, Request::Software);
    struct Row {
        char const* name;
        bool system;
        Request request;
        Edit edit;
        bool rejected;
    } const rows[] = {
        {"a vendor format fits", true, window, nullptr, false},
        {"no OpenGL", true, window, Flags(0, Pfd::SupportOpenGL), true},
        {"colour index", true, window, [](Descriptor& p) { p.iPixelType = Pfd::TypeColorIndex; }, true},
        {"overlay plane", true, window, [](Descriptor& p) { p.iLayerType = 1; }, true},
        {"window request, no window", true, window, Flags(0, Pfd::DrawToWindow), true},
        {"hardware off-screen, no bitmap", true, MakeRequest(Request::Offscreen, Request::Hardware),
         Flags(0, Pfd::DrawToBitmap), false},
        {"generic system format", true, window, Flags(Pfd::GenericFormat), true},
        {"generic accelerated system format", true, window, Flags(Pfd::GenericAccelerated), true},
        {"generic Mesa format", false, window, Flags(Pfd::GenericFormat), false},
        {"software off-screen, no bitmap", false, softOffscreen, Flags(0, Pfd::DrawToBitmap), true},
        {"software off-screen, bitmap", false, softOffscreen, Flags(0, Pfd::DrawToWindow), false},
        {"double buffering wanted", true, MakeRequest(Request::Window, Request::Hardware, true), Single, true},
        {"single buffering accepted", true, window, Single, false},
        {"red 4 bits", true, window, Rgb(4, 8, 8), true},
        {"green 9 bits", true, window, Rgb(8, 9, 8), true},
        {"blue 5 bits", true, window, Rgb(8, 8, 5), false},
        {"system alpha 0", true, window, Alpha(0), true},
        {"system alpha 4", true, window, Alpha(4), true},
        {"system alpha 5", true, window, Alpha(5), false},
        {"Mesa alpha 0", false, window, Alpha(0), false},
        {"depth wanted, 0", true, MakeRequest(Request::Window, Request::Hardware, false, true), Depth(0), true},
        {"depth wanted, 8", true, MakeRequest(Request::Window, Request::Hardware, false, true), Depth(8), false},
        {"stencil wanted, 3", true, MakeRequest(Request::Window, Request::Hardware, false, false, true), Stencil(3), true},
        {"stencil wanted, 4", true, MakeRequest(Request::Window, Request::Hardware, false, false, true), Stencil(4), false},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedFormats script({Make(row.edit)});
        script.chooseResult = 1;
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(row.system), _display, row.request);
        EXPECT_EQ(script.chooseRequests.size(), row.rejected ? 1u : 0u);
        EXPECT_EQ(chosen.id, 1u);
    }
}

TEST_F(DeviceFormatChoice, ScoresAndTheDecisionRulePickTheExpectedFormat) {
    // With depth and stencil requested their scores are plain differences;
    // without, every format that has the buffer scores -1 against the best.
    Request const plain = MakeRequest(Request::Window, Request::Hardware);
    Request const depth = MakeRequest(Request::Window, Request::Hardware, false, true);
    Request const full = MakeRequest(Request::Window, Request::Hardware, false, true, true);
    Edit const slowGeneric = Flags(Pfd::GenericFormat);
    Edit const fastGeneric = Flags(Pfd::GenericFormat | Pfd::GenericAccelerated);
    Edit const noBuffers = Both(Depth(0), Stencil(0));
    struct Row {
        char const* name;
        bool system;
        Request request;
        std::vector<Edit> formats;
        DeviceFormat::Id expected;
    } const rows[] = {
        {"a tie keeps the lower id", true, full, {nullptr, nullptr}, 1},
        {"unwanted buffers on both keep the lower id", true, plain, {nullptr, nullptr}, 1},
        {"no unwanted buffers wins", true, plain, {nullptr, noBuffers}, 2},
        {"no unwanted stencil wins", true, depth, {Stencil(8), Stencil(0)}, 2},
        {"an unwanted stencil loses", true, depth, {Stencil(0), Stencil(8)}, 1},
        {"an unwanted stencil outweighs no unwanted depth", true, plain, {nullptr, Depth(0)}, 1},
        {"deeper 24 copy replaces 16 exchange", true, full, {Depth(16), Both(Depth(24), SwapCopy)}, 2},
        {"32 copy does not replace 24 exchange", true, full, {Depth(24), Both(Depth(32), SwapCopy)}, 1},
        {"exchange beats copy", true, full, {SwapCopy, nullptr}, 2},
        {"matching single buffering wins", true, full, {nullptr, Single}, 2},
        {"more green wins", true, full, {Rgb(5, 6, 5), nullptr}, 2},
        {"a colour gain with a depth loss stays out", true, full, {Rgb(5, 6, 5), Depth(16)}, 1},
        {"a colour gain pays for a copy swap", true, full, {Rgb(5, 6, 5), SwapCopy}, 2},
        {"an alpha gain pays for a copy swap", true, full, {Alpha(5), SwapCopy}, 2},
        {"a stencil gain pays below 8 bits", true, full, {Stencil(4), Both(Stencil(8), SwapCopy)}, 2},
        {"but not from 8 bits on", true, full, {Stencil(8), Both(Stencil(16), SwapCopy)}, 1},
        {"later formats meet the best so far", true, full, {Depth(16), Depth(24), Both(Depth(32), SwapCopy)}, 2},
        {"Mesa alpha counts", false, full, {Alpha(0), nullptr}, 2},
        {"acceleration wins on a hardware request", false, full, {slowGeneric, fastGeneric}, 2},
        {"acceleration is no score for software", false, MakeRequest(Request::Window, Request::Software, false, true, true),
         {slowGeneric, fastGeneric}, 1},
        {"depth pays for lost acceleration", false, full, {Both(fastGeneric, Depth(16)), Both(slowGeneric, Depth(24))}, 2},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::optional<Descriptor>> formats;
        for (Edit const& edit : row.formats) formats.push_back(Make(edit));
        ScriptedFormats script(formats);
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(row.system), _display, row.request);
        EXPECT_EQ(chosen.id, row.expected);
        EXPECT_TRUE(script.chooseRequests.empty());
    }
}

TEST_F(DeviceFormatChoice, ConvertsDescriptorFlagsAndCounts) {
    std::uint32_t const bitmap = DeviceFormat::DeviceBit(DeviceFormat::Bitmap);
    std::uint32_t const window = DeviceFormat::DeviceBit(DeviceFormat::Window);
    std::uint32_t const pbuffer = DeviceFormat::DeviceBit(DeviceFormat::Pbuffer);
    struct Row {
        std::uint32_t flags;
        std::uint32_t devices;
        DeviceFormat::DriverModel model;
        bool accelerated;
        DeviceFormat::BufferSwapMode swap;
    } const rows[] = {
        {Pfd::DrawToWindow | Pfd::SwapExchange, window | pbuffer, DeviceFormat::ICD, true, DeviceFormat::Exchange},
        {Pfd::DrawToBitmap | Pfd::SwapCopy, bitmap | pbuffer, DeviceFormat::ICD, true, DeviceFormat::Copy},
        {Pfd::SwapCopy | Pfd::SwapExchange, 0, DeviceFormat::ICD, true, DeviceFormat::Exchange},
        {Pfd::SupportDirectDraw | Pfd::GenericFormat, pbuffer, DeviceFormat::MCD, false, DeviceFormat::Exchange},
        {Pfd::DoubleBuffer | Pfd::GenericFormat | Pfd::GenericAccelerated, pbuffer, DeviceFormat::MCD, true,
         DeviceFormat::Exchange},
        {Pfd::SupportGdi | Pfd::GenericAccelerated, 0, DeviceFormat::MCD, true, DeviceFormat::Exchange},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.flags);
        ScriptedFormats script({Make(Flags(row.flags, ~row.flags))});
        DeviceFormat const format = DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(true), _display, 1u);
        EXPECT_EQ(format.supportedDevices, row.devices);
        EXPECT_EQ(format.driverModel, row.model);
        EXPECT_EQ(format.accelerated, row.accelerated);
        EXPECT_EQ(format.swapType, row.swap);
        EXPECT_EQ(format.gdi, (row.flags & Pfd::SupportGdi) != 0);
        EXPECT_EQ(format.doubleBuffered, (row.flags & Pfd::DoubleBuffer) != 0);
        EXPECT_FALSE(format.openGL);
    }

    Descriptor counts = Make(Flags(Pfd::Stereo));
    counts.iPixelType = Pfd::TypeColorIndex;
    counts.cColorBits = 30, counts.cRedBits = 10, counts.cGreenBits = 9, counts.cBlueBits = 11, counts.cAlphaBits = 2;
    counts.cDepthBits = 32, counts.cAccumBits = 64, counts.cStencilBits = 4, counts.cAuxBuffers = 3, counts.iLayerType = 2;
    ScriptedFormats script({counts});
    DeviceFormat const format = DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(false), _display, 1u);
    EXPECT_TRUE(format.id == 1u && format.currentDevice == DeviceFormat::UnknownDevice);
    EXPECT_TRUE(format.openGL && format.stereo && format.mesaSoftware && format.pixelType == DeviceFormat::ColorIndex);
    EXPECT_EQ(format.layerPlane, 2u);
    EXPECT_EQ(std::vector<std::uint32_t>({format.colorBits, format.redBits, format.greenBits, format.blueBits,
                                          format.alphaBits, format.depthBits, format.accumBits, format.stencilBits,
                                          format.auxBuffers}),
              std::vector<std::uint32_t>({30, 10, 9, 11, 2, 32, 64, 4, 3}));
}

TEST_F(DeviceFormatChoice, EnumeratesOnlyDescribableFormatsAndReportsTheNullId) {
    ScriptedFormats script({Make(nullptr), std::nullopt, Make(nullptr), std::nullopt});
    OsApi const api = ScriptedFormats::Table(true);
    EXPECT_EQ(DeviceFormat::GetAllDeviceFormats(api, _display), std::vector<DeviceFormat::Id>({1, 3}));
    EXPECT_EQ(script.describedIds, std::vector<int>({1, 1, 2, 3, 4}));

    Tev::Debug::CaptureScope capture;
    script.describedIds.clear();
    DeviceFormat const null = DeviceFormat::GetDeviceFormat(api, _display, DeviceFormat::NullFormatId);
    EXPECT_EQ(Tev::Test::Assertions(capture),
              std::vector<std::string>({"\"(p_id != NullFormatId) && \" Invalid Device Format id!\"\" - static "
                                        "Tev::Chart::Ogl::DeviceFormat Tev::Chart::Ogl::DeviceFormat::GetDeviceFormat("
                                        "const Tev::Chart::Ogl::OsApi&, const Tev::Chart::Ogl::DisplayHnd&, const "
                                        "unsigned int&)"}));
    EXPECT_EQ(script.describedIds, std::vector<int>({0}));
    EXPECT_EQ(null.id, DeviceFormat::NullFormatId);

    script.formats.clear();
    EXPECT_TRUE(DeviceFormat::GetAllDeviceFormats(api, _display).empty());
}

TEST_F(DeviceFormatChoice, TheOSMesaDisplayHasOneFixedFormat) {
    ScriptedFormats script({Make(nullptr)});
    OsApi const api = ScriptedFormats::Table(false);
    DisplayHnd const& osmesa = DisplayHnd::OSMesaDisplay;
    EXPECT_EQ(DeviceFormat::GetAllDeviceFormats(api, osmesa), std::vector<DeviceFormat::Id>({DeviceFormat::OSMesaFormatId}));
    ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "1");
    DeviceFormat const format =
        DeviceFormat::ChooseDeviceFormat(api, osmesa, MakeRequest(Request::Window, Request::Software, true, true));
    EXPECT_TRUE(format.id == DeviceFormat::OSMesaFormatId &&
                format.supportedDevices == DeviceFormat::DeviceBit(DeviceFormat::OSMesa));
    EXPECT_FALSE(format.openGL || format.mesaSoftware || format.doubleBuffered);
    EXPECT_EQ(format.depthBits + format.colorBits + format.greenBits, 0u);
    EXPECT_TRUE(script.describedIds.empty() && script.chooseRequests.empty());

    // On an ordinary display the OSMesa id is just an id the driver rejects.
    DeviceFormat::GetDeviceFormat(api, _display, DeviceFormat::OSMesaFormatId);
    EXPECT_EQ(script.describedIds, std::vector<int>({-1}));
}

TEST_F(DeviceFormatChoice, SystemChooserAsksWithTheRequestDescriptor) {
    Request request = MakeRequest(Request::Window, Request::Hardware, true, true, true);
    request.enableDiagnostics = true;
    ScriptedFormats script({Make(nullptr), Make(Single)});
    script.chooseResult = 2;
    DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, request);
    EXPECT_TRUE(chosen.id == 2u && !chosen.doubleBuffered && chosen.enableDiagnostics);

    struct Row {
        Request request;
        std::uint32_t flags;
        int depth, stencil;
    } const rows[] = {
        {request, Pfd::GenericAccelerated | Pfd::DrawToWindow | Pfd::DoubleBuffer, 64, 128},
        {MakeRequest(Request::Offscreen, Request::Hardware), Pfd::GenericAccelerated | Pfd::DrawToBitmap | Pfd::DoubleBufferDontCare, 0, 0},
        {MakeRequest(Request::Offscreen, Request::Software, false, true),
         Pfd::GenericFormat | 0x202D | Pfd::DoubleBufferDontCare, 64, 0},
        {MakeRequest(Request::Window, Request::Software, true), Pfd::GenericFormat | Pfd::DrawToWindow | Pfd::DoubleBuffer, 0, 0},
    };
    script.chooseRequests.clear();
    for (Row const& row : rows) DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, row.request);
    ASSERT_EQ(script.chooseRequests.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        Descriptor const& asked = script.chooseRequests[i];
        EXPECT_TRUE(asked.nSize == 40 && asked.nVersion == 1);
        EXPECT_EQ(asked.dwFlags, rows[i].flags | Pfd::SupportOpenGL | Pfd::StereoDontCare | Pfd::SwapExchange);
        EXPECT_EQ(asked.iPixelType, Pfd::TypeRGBA);
        EXPECT_EQ(std::vector<int>({asked.cColorBits, asked.cAlphaBits, asked.cDepthBits, asked.cStencilBits}),
                  std::vector<int>({24, 8, rows[i].depth, rows[i].stencil}));
        EXPECT_EQ(asked.cRedBits + asked.cGreenBits + asked.cBlueBits + asked.cAccumBits + asked.cAuxBuffers, 0);
    }

    Tev::Debug::CaptureScope capture;
    DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, MakeRequest(Request::Window, 7));
    EXPECT_EQ(script.chooseRequests.back().dwFlags & (Pfd::GenericFormat | Pfd::GenericAccelerated), 0u);
    EXPECT_TRUE(Tev::Test::HasAssertion(capture, "!\"Unknown acceleration requested\""));
}

TEST_F(DeviceFormatChoice, SystemChooserFailureThrowsForTheSystemAndFallsBackForMesa) {
    Request const request = MakeRequest(Request::Window, Request::Hardware);
    ScriptedFormats script({Make(Flags(Pfd::GenericFormat)), Make(Flags(Pfd::GenericFormat))});
    script.chooseResult = 0;
    try {
        DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(true), _display, request);
        ADD_FAILURE() << "a system table without a usable format must throw";
    } catch (DeviceFormat::FailedDeterminingDeviceFormat const& failure) {
        EXPECT_STREQ(failure.what(), "glX/gdi/mesa failed to determine the required device format");
    }
    EXPECT_EQ(script.chooseRequests.size(), 1u);

    script.formats = {Make(Alpha(0)), Make(Alpha(0))};
    DeviceFormat const mesa =
        DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(false), _display, request);
    EXPECT_TRUE(mesa.id == 1u && mesa.alphaBits == 0u && mesa.mesaSoftware);
}

TEST_F(DeviceFormatChoice, EnvironmentForcesAFormatOrTheSystemChooser) {
    Descriptor colourIndex = Make(nullptr);
    colourIndex.iPixelType = Pfd::TypeColorIndex;
    ScriptedFormats script({Make(nullptr), Make(Flags(Pfd::GenericFormat)), colourIndex});
    script.chooseResult = 2;
    OsApi const api = ScriptedFormats::Table(true);
    Request request = MakeRequest(Request::Window, Request::Hardware);
    request.enableDiagnostics = true;
    {
        ScopedEnv system("TEVOS_USE_SYSTEM_DEVICE_FORMAT", "1");
        EXPECT_EQ(DeviceFormat::ChooseDeviceFormat(api, _display, request).id, 2u);
        EXPECT_EQ(script.chooseRequests.size(), 1u);

        ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "3");
        Tev::Debug::CaptureScope capture;
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, _display, request);
        EXPECT_TRUE(format.id == 3u && format.pixelType == DeviceFormat::ColorIndex && !format.enableDiagnostics);
        std::ostringstream dump;
        dump << format;
        EXPECT_EQ(capture.Texts(Tev::Debug::Channel::Out),
                  std::vector<std::string>({"Forced load of Pixel Format\n" + dump.str()}));
        EXPECT_EQ(script.chooseRequests.size(), 1u);
    }
    DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(api, _display, request);
    EXPECT_TRUE(chosen.id == 1u && chosen.enableDiagnostics);
}

}  // namespace
