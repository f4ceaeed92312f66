// Format choice against scripted pixel-format lists.
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
#include "support/FakeOsApi.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

namespace {

using namespace Tev::Chart::Ogl;
using Tev::Test::ScopedEnv;
using Tev::Test::ScriptedFormats;
using Descriptor = PixelFormatDescriptor;
using Request = DeviceFormatRequest;
using Edit = std::function<void(Descriptor&)>;

// The vendor driver's format with p_edit applied.
Descriptor Make(Edit const& p_edit) {
    Descriptor pfd = Tev::Test::DriverFormat();
    if (p_edit) p_edit(pfd);
    return pfd;
}

Edit Flags(std::uint32_t p_set, std::uint32_t p_clear = 0) {
    return [=](Descriptor& p) { p.dwFlags = (p.dwFlags | p_set) & ~p_clear; };
}
Edit Depth(int p_bits) { return [=](Descriptor& p) { p.cDepthBits = std::uint8_t(p_bits); }; }
Edit Stencil(int p_bits) { return [=](Descriptor& p) { p.cStencilBits = std::uint8_t(p_bits); }; }
Edit Alpha(int p_bits) { return [=](Descriptor& p) { p.cAlphaBits = std::uint8_t(p_bits); }; }
Edit Rgb(int p_r, int p_g, int p_b) {
    return [=](Descriptor& p) { p.cRedBits = std::uint8_t(p_r), p.cGreenBits = std::uint8_t(p_g), p.cBlueBits = std::uint8_t(p_b); };
}
Edit Both(Edit p_first, Edit p_second) { return [=](Descriptor& p) { p_first(p), p_second(p); }; }
Edit const SwapCopy = Flags(Pfd::SwapCopy, Pfd::SwapExchange);
Edit const Single = Flags(0, Pfd::DoubleBuffer);
Edit const SlowGeneric = Flags(Pfd::GenericFormat);
Edit const FastGeneric = Flags(Pfd::GenericFormat | Pfd::GenericAccelerated);

// A request for p_devices and p_acceleration, with the buffers named in
// p_buffers: 'D'ouble buffering, 'd'epth, 's'tencil.
Request Ask(std::uint32_t p_devices, std::uint32_t p_acceleration, std::string const& p_buffers = "") {
    auto const has = [&](char p_c) { return p_buffers.find(p_c) != std::string::npos; };
    return {p_devices, {0, 0}, p_acceleration, has('D'), has('d'), has('s'), false, {}};
}
Request const Window = Ask(Request::Window, Request::Hardware);
Request const Full = Ask(Request::Window, Request::Hardware, "ds");

// The environment may carry either flag; every test starts without both.
class DeviceFormatChoice : public ::testing::Test {
protected:
    ScopedEnv _noForced{"TEVOS_FORCE_PIXEL_FORMAT", nullptr};
    ScopedEnv _noSystem{"TEVOS_USE_SYSTEM_DEVICE_FORMAT", nullptr};
    DisplayHnd const _display;
};

// The chooser rejected every format and took what the system chooser
// answered (1).
constexpr DeviceFormat::Id Asked = 0;

TEST_F(DeviceFormatChoice, RejectionRulesScoresAndTheDecisionRulePickTheFormat) {
    Request const depth = Ask(Request::Window, Request::Hardware, "d");
    Request const softOffscreen = Ask(Request::Offscreen, Request::Software);
    struct Row {
        char const* name;
        bool system;
        Request request;
        std::vector<Edit> formats;
        DeviceFormat::Id expected;
    } const rows[] = {
        {"a vendor format fits", true, Window, {nullptr}, 1},
        {"no OpenGL", true, Window, {Flags(0, Pfd::SupportOpenGL)}, Asked},
        {"colour index", true, Window, {[](Descriptor& p) { p.iPixelType = Pfd::TypeColorIndex; }}, Asked},
        {"overlay plane", true, Window, {[](Descriptor& p) { p.iLayerType = 1; }}, Asked},
        {"window request, no window", true, Window, {Flags(0, Pfd::DrawToWindow)}, Asked},
        {"hardware off-screen, no bitmap", true, Ask(Request::Offscreen, Request::Hardware), {Flags(0, Pfd::DrawToBitmap)}, 1},
        {"generic system format", true, Window, {SlowGeneric}, Asked},
        {"generic Mesa format", false, Window, {SlowGeneric}, 1},
        {"software off-screen, no bitmap", false, softOffscreen, {Flags(0, Pfd::DrawToBitmap)}, Asked},
        {"software off-screen, bitmap", false, softOffscreen, {Flags(0, Pfd::DrawToWindow)}, 1},
        {"double buffering wanted", true, Ask(Request::Window, Request::Hardware, "D"), {Single}, Asked},
        {"single buffering accepted", true, Window, {Single}, 1},
        {"red 4 bits", true, Window, {Rgb(4, 8, 8)}, Asked},
        {"green 9 bits", true, Window, {Rgb(8, 9, 8)}, Asked},
        {"blue 5 bits", true, Window, {Rgb(8, 8, 5)}, 1},
        {"system alpha 4", true, Window, {Alpha(4)}, Asked},
        {"system alpha 5", true, Window, {Alpha(5)}, 1},
        {"Mesa alpha 0", false, Window, {Alpha(0)}, 1},
        {"depth wanted, 0", true, depth, {Depth(0)}, Asked},
        {"depth wanted, 8", true, depth, {Depth(8)}, 1},
        {"stencil wanted, 3", true, Ask(Request::Window, Request::Hardware, "s"), {Stencil(3)}, Asked},
        {"stencil wanted, 4", true, Ask(Request::Window, Request::Hardware, "s"), {Stencil(4)}, 1},
        // With depth and stencil requested their scores are plain
        // differences; without, every format that has the buffer scores -1
        // against the best.
        {"a tie keeps the lower id", true, Full, {nullptr, nullptr}, 1},
        {"no unwanted buffers wins", true, Window, {nullptr, Both(Depth(0), Stencil(0))}, 2},
        {"no unwanted stencil wins", true, depth, {Stencil(8), Stencil(0)}, 2},
        {"an unwanted stencil loses", true, depth, {Stencil(0), Stencil(8)}, 1},
        {"an unwanted stencil outweighs no unwanted depth", true, Window, {nullptr, Depth(0)}, 1},
        {"deeper 24 copy replaces 16 exchange", true, Full, {Depth(16), Both(Depth(24), SwapCopy)}, 2},
        {"32 copy does not replace 24 exchange", true, Full, {Depth(24), Both(Depth(32), SwapCopy)}, 1},
        {"exchange beats copy", true, Full, {SwapCopy, nullptr}, 2},
        {"matching single buffering wins", true, Full, {nullptr, Single}, 2},
        {"more green wins", true, Full, {Rgb(5, 6, 5), nullptr}, 2},
        {"a colour gain with a depth loss stays out", true, Full, {Rgb(5, 6, 5), Depth(16)}, 1},
        {"a colour gain pays for a copy swap", true, Full, {Rgb(5, 6, 5), SwapCopy}, 2},
        {"an alpha gain pays for a copy swap", true, Full, {Alpha(5), SwapCopy}, 2},
        {"a stencil gain pays below 8 bits", true, Full, {Stencil(4), Both(Stencil(8), SwapCopy)}, 2},
        {"but not from 8 bits on", true, Full, {Stencil(8), Both(Stencil(16), SwapCopy)}, 1},
        {"later formats meet the best so far", true, Full, {Depth(16), Depth(24), Both(Depth(32), SwapCopy)}, 2},
        {"Mesa alpha counts", false, Full, {Alpha(0), nullptr}, 2},
        {"acceleration wins on a hardware request", false, Full, {SlowGeneric, FastGeneric}, 2},
        {"acceleration is no score for software", false, Ask(Request::Window, Request::Software, "ds"),
         {SlowGeneric, FastGeneric}, 1},
        {"depth pays for lost acceleration", false, Full, {Both(FastGeneric, Depth(16)), Both(SlowGeneric, Depth(24))}, 2},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::optional<Descriptor>> formats;
        for (Edit const& edit : row.formats) formats.push_back(Make(edit));
        ScriptedFormats script(formats);
        script.chooseResult = 1;
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(row.system), _display, row.request);
        EXPECT_EQ(script.chooseRequests.size(), row.expected == Asked ? 1u : 0u);
        EXPECT_EQ(chosen.id, row.expected == Asked ? 1u : row.expected);
    }
}

TEST_F(DeviceFormatChoice, ConvertsDescriptorFlagsAndCounts) {
    std::uint32_t const bitmap = DeviceFormat::DeviceBit(DeviceFormat::Bitmap);
    std::uint32_t const window = DeviceFormat::DeviceBit(DeviceFormat::Window);
    std::uint32_t const pbuffer = DeviceFormat::DeviceBit(DeviceFormat::Pbuffer);
    using Converted = std::tuple<std::uint32_t, DeviceFormat::DriverModel, bool, DeviceFormat::BufferSwapMode>;
    struct Row {
        std::uint32_t flags;
        Converted converted;  // devices, driver model, accelerated, swap
    } const rows[] = {
        {Pfd::DrawToWindow | Pfd::SwapExchange, {window | pbuffer, DeviceFormat::ICD, true, DeviceFormat::Exchange}},
        {Pfd::DrawToBitmap | Pfd::SwapCopy, {bitmap | pbuffer, DeviceFormat::ICD, true, DeviceFormat::Copy}},
        {Pfd::SwapCopy | Pfd::SwapExchange, {0, DeviceFormat::ICD, true, DeviceFormat::Exchange}},
        {Pfd::SupportDirectDraw | Pfd::GenericFormat, {pbuffer, DeviceFormat::MCD, false, DeviceFormat::Exchange}},
        {Pfd::DoubleBuffer | Pfd::GenericFormat | Pfd::GenericAccelerated,
         {pbuffer, DeviceFormat::MCD, true, DeviceFormat::Exchange}},
        {Pfd::SupportGdi | Pfd::GenericAccelerated, {0, DeviceFormat::MCD, true, DeviceFormat::Exchange}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.flags);
        ScriptedFormats script({Make(Flags(row.flags, ~row.flags))});
        DeviceFormat const f = DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(true), _display, 1u);
        EXPECT_EQ(Converted(f.supportedDevices, f.driverModel, f.accelerated, f.swapType), row.converted);
        EXPECT_EQ(std::tuple(f.gdi, f.doubleBuffered, f.openGL),
                  std::tuple((row.flags & Pfd::SupportGdi) != 0, (row.flags & Pfd::DoubleBuffer) != 0, false));
    }

    Descriptor counts = Make(Flags(Pfd::Stereo));
    counts.iPixelType = Pfd::TypeColorIndex;
    counts.cColorBits = 30, counts.cRedBits = 10, counts.cGreenBits = 9, counts.cBlueBits = 11, counts.cAlphaBits = 2;
    counts.cDepthBits = 32, counts.cAccumBits = 64, counts.cStencilBits = 4, counts.cAuxBuffers = 3, counts.iLayerType = 2;
    ScriptedFormats script({counts});
    DeviceFormat const format = DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(false), _display, 1u);
    EXPECT_TRUE(format.id == 1u && format.currentDevice == DeviceFormat::UnknownDevice);
    EXPECT_TRUE(format.openGL && format.stereo && format.mesaSoftware && format.pixelType == DeviceFormat::ColorIndex);
    EXPECT_EQ(std::vector<std::uint32_t>({format.colorBits, format.redBits, format.greenBits, format.blueBits,
                                          format.alphaBits, format.depthBits, format.accumBits, format.stencilBits,
                                          format.auxBuffers, format.layerPlane}),
              std::vector<std::uint32_t>({30, 10, 9, 11, 2, 32, 64, 4, 3, 2}));
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
    EXPECT_TRUE(script.describedIds == std::vector<int>({0}) && null.id == DeviceFormat::NullFormatId);

    script.formats.clear();
    EXPECT_TRUE(DeviceFormat::GetAllDeviceFormats(api, _display).empty());
}

TEST_F(DeviceFormatChoice, TheOSMesaDisplayHasOneFixedFormat) {
    ScriptedFormats script({Make(nullptr)});
    OsApi const api = ScriptedFormats::Table(false);
    DisplayHnd const& osmesa = DisplayHnd::OSMesaDisplay;
    EXPECT_EQ(DeviceFormat::GetAllDeviceFormats(api, osmesa), std::vector<DeviceFormat::Id>({DeviceFormat::OSMesaFormatId}));
    ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "1");
    DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(api, osmesa, Ask(Request::Window, Request::Software, "Dd"));
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
    Request request = Ask(Request::Window, Request::Hardware, "Dds");
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
        {Ask(Request::Offscreen, Request::Hardware), Pfd::GenericAccelerated | Pfd::DrawToBitmap | Pfd::DoubleBufferDontCare, 0, 0},
        {Ask(Request::Offscreen, Request::Software, "d"), Pfd::GenericFormat | 0x202D | Pfd::DoubleBufferDontCare, 64, 0},
        {Ask(Request::Window, Request::Software, "D"), Pfd::GenericFormat | Pfd::DrawToWindow | Pfd::DoubleBuffer, 0, 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.flags);
        script.chooseRequests.clear();
        DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, row.request);
        ASSERT_EQ(script.chooseRequests.size(), 1u);
        Descriptor const& asked = script.chooseRequests[0];
        EXPECT_EQ(std::vector<int>({asked.nSize, asked.nVersion, asked.iPixelType, asked.cColorBits, asked.cAlphaBits,
                                    asked.cDepthBits, asked.cStencilBits}),
                  std::vector<int>({40, 1, Pfd::TypeRGBA, 24, 8, row.depth, row.stencil}));
        EXPECT_EQ(asked.dwFlags, row.flags | Pfd::SupportOpenGL | Pfd::StereoDontCare | Pfd::SwapExchange);
        EXPECT_EQ(asked.cRedBits + asked.cGreenBits + asked.cBlueBits + asked.cAccumBits + asked.cAuxBuffers, 0);
    }

    Tev::Debug::CaptureScope capture;
    DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, Ask(Request::Window, 7));
    EXPECT_EQ(script.chooseRequests.back().dwFlags & (Pfd::GenericFormat | Pfd::GenericAccelerated), 0u);
    EXPECT_TRUE(Tev::Test::HasAssertion(capture, "!\"Unknown acceleration requested\""));
}

TEST_F(DeviceFormatChoice, SystemChooserFailureThrowsForTheSystemAndFallsBackForMesa) {
    ScriptedFormats script({Make(SlowGeneric), Make(SlowGeneric)});
    try {
        DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(true), _display, Window);
        ADD_FAILURE() << "a system table without a usable format must throw";
    } catch (DeviceFormat::FailedDeterminingDeviceFormat const& failure) {
        EXPECT_STREQ(failure.what(), "glX/gdi/mesa failed to determine the required device format");
    }
    EXPECT_EQ(script.chooseRequests.size(), 1u);

    script.formats = {Make(Alpha(0)), Make(Alpha(0))};
    DeviceFormat const mesa = DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(false), _display, Window);
    EXPECT_TRUE(mesa.id == 1u && mesa.alphaBits == 0u && mesa.mesaSoftware);
}

TEST_F(DeviceFormatChoice, EnvironmentForcesAFormatOrTheSystemChooser) {
    ScriptedFormats script({Make(nullptr), Make(SlowGeneric), Make([](Descriptor& p) { p.iPixelType = Pfd::TypeColorIndex; })});
    script.chooseResult = 2;
    OsApi const api = ScriptedFormats::Table(true);
    Request request = Window;
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
