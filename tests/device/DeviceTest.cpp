// The device layer against scripted window-system tables. Format choice:
// hand-worked and generated lists checked against a reference chooser
// written out from the rules; the ways around the chooser, the formats
// descriptors convert to and the dumps of formats, requests and systems as
// one golden transcript. ContextGL and GlxArbApi: the table logs each call
// it gets, so the scenarios' calls, what they read back and what the
// context reports make one transcript in the order they happen.
#include "framework/debug/Debug.h"
#include "ogl/device/Device.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/OsVersion.h"
#include "ogl/device/ContextGL.h"
#include "ogl/device/glx/GlxArbApi.h"
#include "support/FakeOsApi.h"
#include "support/Golden.h"
#include "support/LogCapture.h"
#include "support/ScopedEnv.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Descriptor = PixelFormatDescriptor;
using Request = DeviceFormatRequest;
using Formats = std::vector<std::optional<Descriptor>>;
constexpr unsigned SystemPick = 99;  // what the scripted system chooser answers

// Logs what a scenario reads back, and the text of what a call throws.
void Saw(auto const& p_value) { Debug::dlog("saw") << p_value; }
void Throws(auto const& p_call) {
    try {
        p_call();
    } catch (std::exception const& e) {
        Saw(e.what());
    }
}

// A request for p_devices (0 window, 1 off-screen) and p_acceleration (0
// hardware, 1 software) with double buffering, depth, stencil, diagnostics.
Request Ask(unsigned p_devices, unsigned p_acceleration, bool p_double = false, bool p_depth = false, bool p_stencil = false, bool p_diag = false) {
    return {p_devices, {0, 0}, p_acceleration, p_double, p_depth, p_stencil, p_diag, {}};
}
bool Has(Descriptor const& p, std::uint32_t p_flags) { return (p.dwFlags & p_flags) != 0; }
bool In(int p_bits, int p_low, int p_high) { return p_bits >= p_low && p_bits <= p_high; }

// The rejection rules. An OpenGL format can always draw to a pbuffer, so a
// hardware off-screen request asks nothing more of it.
bool Fits(Descriptor const& p, bool p_mesa, Request const& r) {
    bool const window = r.devices == Request::Window, software = r.acceleration == Request::Software;
    return Has(p, Pfd::SupportOpenGL) && p.iPixelType == Pfd::TypeRGBA && p.iLayerType == 0 &&
           (!window || Has(p, Pfd::DrawToWindow)) && (p_mesa || !Has(p, Pfd::GenericFormat | Pfd::GenericAccelerated)) &&
           (window || !software || Has(p, Pfd::DrawToBitmap)) && (!r.doubleBuffered || Has(p, Pfd::DoubleBuffer)) &&
           In(p.cRedBits, 5, 8) && In(p.cGreenBits, 5, 8) && In(p.cBlueBits, 5, 8) && (p_mesa || In(p.cAlphaBits, 5, 8)) &&
           (!r.depthBuffer || p.cDepthBits >= 8) && (!r.stencilBuffer || p.cStencilBits >= 4);
}

// The scores of c against the best so far b, and whether c takes b's place.
bool Replaces(Descriptor const& c, Descriptor const& b, Request const& r) {
    auto const fast = [](Descriptor const& p) { return !Has(p, Pfd::GenericFormat) || Has(p, Pfd::GenericAccelerated); };
    auto const exchange = [](Descriptor const& p) { return !Has(p, Pfd::SwapCopy) || Has(p, Pfd::SwapExchange); };
    auto const prefer = [](bool p_c, bool p_b, bool p_good) { return p_c == p_b ? 0 : p_c == p_good ? 1 : -1; };
    auto const buffer = [](bool p_wanted, int p_c, int p_b) { return p_wanted ? p_c - p_b : p_c == 0 ? 1 : -1; };
    int const bits[] = {c.cGreenBits - b.cGreenBits, c.cAlphaBits - b.cAlphaBits, buffer(r.depthBuffer, c.cDepthBits, b.cDepthBits),
                        buffer(r.stencilBuffer, c.cStencilBits, b.cStencilBits)};
    int const shallow[] = {b.cGreenBits < 8, b.cAlphaBits < 8, b.cDepthBits < 24, b.cStencilBits < 8};
    int const modes[] = {r.acceleration == Request::Software ? 0 : prefer(fast(c), fast(b), true),
                         prefer(exchange(c), exchange(b), true),
                         prefer(Has(c, Pfd::DoubleBuffer), Has(b, Pfd::DoubleBuffer), r.doubleBuffered)};
    bool gain = false, loss = false, bitLoss = false, deepens = false;
    for (int i = 0; i < 4; ++i) gain |= bits[i] > 0, bitLoss |= bits[i] < 0, deepens |= bits[i] > 0 && shallow[i];
    for (int const mode : modes) gain |= mode > 0, loss |= mode < 0;
    return gain && (!(loss || bitLoss) || (!bitLoss && deepens));
}

// What the chooser should pick: the first best fitting format, else the
// system chooser's answer. A list whose first format fails to describe has
// no formats at all.
unsigned Reference(Formats const& p_formats, bool p_mesa, Request const& p_request) {
    unsigned best = 0;
    for (unsigned id = 1; id <= p_formats.size() && p_formats[0]; ++id)
        if (auto const& f = p_formats[id - 1]; f && Fits(*f, p_mesa, p_request) && (!best || Replaces(*f, *p_formats[best - 1], p_request)))
            best = id;
    return best ? best : SystemPick;
}

// The vendor driver's format with the given buffers and flags changed.
Descriptor Format(int p_depth, int p_stencil = 8, int p_alpha = 8, std::uint32_t p_set = 0, std::uint32_t p_clear = 0) {
    Descriptor p = DriverFormat();
    p.cDepthBits = std::uint8_t(p_depth), p.cStencilBits = std::uint8_t(p_stencil), p.cAlphaBits = std::uint8_t(p_alpha);
    p.dwFlags = (p.dwFlags | p_set) & ~p_clear;
    return p;
}

// Both flags cleared: every test starts with the chooser in charge.
class DeviceFormatChoice : public ::testing::Test {
protected:
    ScopedEnv _noForced{"TEVOS_FORCE_PIXEL_FORMAT", nullptr}, _noSystem{"TEVOS_USE_SYSTEM_DEVICE_FORMAT", nullptr};
    DisplayHnd const _display;
};

// The reference on hand-worked lists where replacing is subtle; then random
// lists near every rule's bounds, on both tables and all requests, get the
// reference's pick, the system chooser asked only when nothing fits, and
// the request's diagnostics flag.
TEST_F(DeviceFormatChoice, PicksWhatTheRulesPick) {
    Request const full = Ask(0, 0, false, true, true);
    EXPECT_EQ(Reference({Format(16), Format(24, 8, 8, Pfd::SwapCopy, Pfd::SwapExchange)}, false, full), 2u) << "24 copy replaces 16 exchange";
    EXPECT_EQ(Reference({Format(24), Format(32, 8, 8, Pfd::SwapCopy, Pfd::SwapExchange)}, false, full), 1u) << "32 copy leaves 24 exchange";
    EXPECT_EQ(Reference({Format(24, 8), Format(24, 0)}, false, Ask(0, 0, false, true)), 2u) << "no stencil beats 8 unasked";
    EXPECT_EQ(Reference({Format(24, 8, 4), std::nullopt, Format(24, 0)}, false, Ask(0, 0)), 3u) << "ids stay the driver's past a failed one";
    std::mt19937 rng(1234);
    auto const pick = [&](std::initializer_list<int> p_values) { return p_values.begin()[rng() % p_values.size()]; };
    // Values that break a rule come one time in twelve.
    auto const mostly = [&](std::initializer_list<int> p_usual, std::initializer_list<int> p_rare) { return rng() % 12 ? pick(p_usual) : pick(p_rare); };
    for (int list = 0; list < 10000; ++list) {
        Formats formats(pick({1, 2, 3, 4, 5, 6, 7}));
        for (auto& format : formats) {
            if (&format != &formats[0] && pick({0, 0, 0, 0, 0, 0, 0, 1})) continue;  // fails to describe
            Descriptor& p = *(format = Format(mostly({24, 24, 16, 32, 8}, {0, 7}), mostly({8, 8, 0, 4, 16}, {3}), mostly({8, 8, 5, 0}, {4, 9}), 0, ~0u));
            p.cRedBits = std::uint8_t(mostly({8, 8, 5}, {4, 9})), p.cGreenBits = std::uint8_t(mostly({8, 8, 6, 5}, {4, 9}));
            p.cBlueBits = std::uint8_t(mostly({8}, {4, 9}));
            for (auto const& [flag, odds] : {std::pair{Pfd::SupportOpenGL, 15}, {Pfd::DrawToWindow, 14}, {Pfd::DrawToBitmap, 12},
                                            {Pfd::DoubleBuffer, 12}, {Pfd::SwapExchange, 8}, {Pfd::SwapCopy, 8},
                                            {Pfd::GenericFormat, 2}, {Pfd::GenericAccelerated, 2}})
                p.dwFlags |= int(rng() % 16) < odds ? flag : 0;  // odds in 16
            p.iPixelType = rng() % 16 ? Pfd::TypeRGBA : Pfd::TypeColorIndex;
            p.iLayerType = rng() % 16 ? 0 : 1;
        }
        bool const system = rng() % 2;
        Request const request = Ask(rng() % 2, rng() % 2, rng() % 2, rng() % 2, rng() % 2, rng() % 2);
        unsigned const expected = Reference(formats, !system, request);
        ScriptedFormats script(formats);
        script.chooseResult = int(SystemPick);
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(system), _display, request);
        ASSERT_EQ(chosen.id, expected) << "list " << list;
        ASSERT_TRUE(script.chooseRequests.size() == (expected == SystemPick) && chosen.enableDiagnostics == request.enableDiagnostics);
    }
}

// In tests/golden/device/formats.txt, in order: the ids enumerated from
// format 1's count, skipping formats that fail to describe, and the ids
// described; the descriptor the system chooser is asked with for each kind
// of request and the format its answer converts to, on the system table and
// (the last) on Mesa's; Mesa's chooser falls back to format 1; the system
// chooser on request, a forced id before it without asking; the OSMesa
// display's one fixed format, which elsewhere is one more id for the driver
// to reject; ids past the signed range and values past their names;
// requests less their labels; the systems. Then the log: the system table
// without a usable format throws, the forced format, the failed checks.
TEST_F(DeviceFormatChoice, EnumerationSystemChooserForcedFormatsAndDumpsAsTranscribed) {
    Formats formats;
    for (std::uint32_t const flags : {Pfd::DrawToWindow | Pfd::SwapExchange, Pfd::DrawToBitmap | Pfd::SwapCopy, Pfd::SwapCopy | Pfd::SwapExchange,
                                      Pfd::SupportDirectDraw | Pfd::GenericFormat, Pfd::DoubleBuffer | Pfd::GenericFormat | Pfd::GenericAccelerated,
                                      Pfd::SupportGdi | Pfd::GenericAccelerated, DriverFormat().dwFlags | Pfd::Stereo})
        formats.push_back(Format(24, 8, 8, flags, ~flags)), formats.push_back(std::nullopt);
    Descriptor& counts = *formats[12];  // every count changed, described by Mesa
    counts.iPixelType = Pfd::TypeColorIndex, counts.iLayerType = 2, counts.cColorBits = 30, counts.cRedBits = 10, counts.cGreenBits = 9;
    counts.cBlueBits = 11, counts.cAlphaBits = 2, counts.cDepthBits = 32, counts.cAccumBits = 64, counts.cStencilBits = 4, counts.cAuxBuffers = 3;
    ScriptedFormats script(formats);
    Debug::CaptureScope capture;
    std::ostringstream out;
    auto const list = [&](char const* p_title, auto const& p_values) {
        out << p_title;
        for (auto const value : p_values) out << ' ' << int(value);
        out << '\n';
    };
    OsApi const system = ScriptedFormats::Table(true);
    list("ids", DeviceFormat::GetAllDeviceFormats(system, _display)), list("described", script.describedIds);
    Request const requests[] = {Ask(0, 0, true, true, true, true), Ask(1, 0), Ask(1, 1, false, true), Ask(0, 1, true), Ask(0, 7), Ask(0, 0), Ask(1, 1)};
    for (int id = 1; id <= 7; ++id) {
        script.chooseResult = 2 * id - 1;
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(id < 7), _display, requests[id - 1]);
        Descriptor const& p = script.chooseRequests.back();
        out << std::hex << "asked with flags " << p.dwFlags << std::dec;
        list("", std::initializer_list<int>{p.nSize, p.nVersion, p.iPixelType, p.cColorBits, p.cRedBits, p.cGreenBits, p.cBlueBits, p.cAlphaBits,
                                            p.cAccumBits, p.cDepthBits, p.cStencilBits, p.cAuxBuffers, p.iLayerType});
        out << format;
    }
    script.chooseResult = 0;
    Throws([&] { DeviceFormat::ChooseDeviceFormat(system, _display, Ask(0, 0, true)); });  // logged
    out << "Mesa falls back to " << DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(false), _display, {}).id << '\n';
    {
        ScopedEnv systemChooser("TEVOS_USE_SYSTEM_DEVICE_FORMAT", "1");
        script.chooseResult = 3;
        out << "on request, the system's" << DeviceFormat::ChooseDeviceFormat(system, _display, requests[0]);
        ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "5");
        script.describedIds.clear(), script.chooseRequests.clear();
        DeviceFormat::ChooseDeviceFormat(system, _display, requests[0]);  // logs its format
        list("OSMesa ids", DeviceFormat::GetAllDeviceFormats(system, DisplayHnd::OSMesaDisplay));
        out << DeviceFormat::ChooseDeviceFormat(system, DisplayHnd::OSMesaDisplay, {});
    }
    list("asked", std::vector{script.chooseRequests.size()});
    DeviceFormat::GetDeviceFormat(system, _display, DeviceFormat::OSMesaFormatId);
    DeviceFormat::GetDeviceFormat(system, _display, DeviceFormat::NullFormatId);
    list("described", script.describedIds), script.formats.clear();
    list("ids without formats", DeviceFormat::GetAllDeviceFormats(system, _display));
    DeviceFormat special;
    for (DeviceFormat::Id const id : {DeviceFormat::NullFormatId, 0x80000000u, 0x7FFFFFFFu}) out << (special.id = id, special);
    special.currentDevice = DeviceFormat::DeviceType(5), special.driverModel = DeviceFormat::DriverModel(3);
    out << (special.pixelType = DeviceFormat::PixelType(3), special.swapType = DeviceFormat::BufferSwapMode(3), special);
    out << Request{Request::Offscreen, {0, 0}, Request::Software, false, true, false, false, "label"} << Request{} << "systems:\n";
    using Detail::OsVersionDump;
    for (auto const& version : {OsVersionDump(Detail::OsRelease{"Linux", "6.1.55-1-amd64", "x86_64", true}), OsVersionDump(std::nullopt)})
        out << unsigned(version.Major()) << '.' << unsigned(version.Minor()) << ' ' << version.Text();
    EXPECT_TRUE(MatchesGolden("device/formats.txt", out.str() + "log:\n" + LogText(capture)));
    EXPECT_FALSE(Detail::QueryOsRelease().value().release.empty());
}

// ContextGL and GlxArbApi.

// What the scripted table answers; contexts are logged by their number.
struct Script {
    bool createFails = false, makeCurrentFails = false, deleteFails = false;
    int created = 0, devicePixelFormat = 3;
    ContextHandle current = nullptr;
    Detail::NativeContext contexts[32];
} script;

// Logs a call of the table with the context it names (-1 for none).
ContextHandle Call(char const* p_call, ContextHandle p_context) {
    Debug::dlog("table") << p_call << ' ' << (p_context ? p_context - script.contexts : -1);
    return p_context;
}

OsApi FakeApi(int p_isSystem = 0) {
    OsApi api;
    api.IsSystem = p_isSystem;
    api.CreateContext = [](DeviceHandle) { return Call("create", script.createFails ? nullptr : &script.contexts[script.created++]); };
    api.DeleteContext = [](ContextHandle p_context) { return Call("delete", p_context), int(!script.deleteFails); };
    api.GetCurrentContext = [] { return script.current; };
    api.MakeCurrent = [](DeviceHandle, ContextHandle p_context) {
        return Call(p_context ? "bind" : "release", p_context), script.makeCurrentFails ? 0 : (script.current = p_context, 1);
    };
    api.SwapBuffers = [](DeviceHandle) { return Call("swap", nullptr), 1; };
    api.GetPixelFormat = [](DeviceHandle) { return script.devicePixelFormat; };
    return api;
}

struct FakeDevice final : Device {
    explicit FakeDevice(DeviceFormat::Id p_id = 3, DeviceFormat::DeviceType p_type = DeviceFormat::Window, bool p_double = true) {
        format.id = p_id, format.currentDevice = p_type, format.doubleBuffered = p_double;
    }
    DeviceHandle HardwareHandle() const override { return &record; }
    // Any display will do: the context only asks whether there is one.
    DisplayHnd HardwareDisplay() const override { return DisplayHnd::OSMesaDisplay; }
    RenderBuffer const& Buffer() const override { return buffer; }
    DeviceFormat const& Format() const override { return format; }
    mutable Detail::NativeDevice record;
    RenderBuffer buffer;
    DeviceFormat format;
};

// A scenario starts with a fresh script and its name in the transcript.
void Step(char const* p_scenario) {
    int const created = script.created;
    script = Script(), script.created = created, Debug::dout() << p_scenario;
}

// Nested binds bind once, releases past the count are reported; only
// double-buffered windows swap; failures of the table are reported or
// thrown. The system table's fake context is made, bound, released and
// deleted before the constructor returns (a Mesa table makes none); ARB
// copies share it and its current flag, the last deleting it.
TEST(ContextGLFake, ScenariosMatchTheirTranscript) {
    Debug::CaptureScope capture;
    FakeDevice const device;
    {
        ContextGL context(device, FakeApi(), {});
        Step("nested binds");
        context.MakeCurrent(device), context.MakeCurrent(device);
        Saw(context.CurrentCount()), context.DoneCurrent(), Saw(context.CurrentCount()), context.DoneCurrent();
        Step("a swap while another context is current");
        context.MakeCurrent(device), script.current = nullptr, context.SwapBuffers(), context.DoneCurrent();
        Step("a device of another format");
        Throws([&] { context.MakeCurrent(FakeDevice(4)); }), Saw(context.CurrentCount());
        Step("a failed bind and release");
        script.makeCurrentFails = true, context.MakeCurrent(device), context.DoneCurrent();
        Step("a release past the count, a failed delete");
        script.deleteFails = true, context.DoneCurrent();
    }
    Step("double window, single window, double pbuffer, bitmap");
    for (auto const& [type, twice] : {std::pair{DeviceFormat::Window, true}, {DeviceFormat::Window, false},
                                     {DeviceFormat::Pbuffer, true}, {DeviceFormat::Bitmap, false}}) {
        FakeDevice const other(3, type, twice);
        ContextGL context(other, FakeApi(), {});
        context.MakeCurrent(other), context.SwapBuffers(), context.DoneCurrent();
    }
    Step("an OSMesa device, the null format");
    ContextGL(FakeDevice(DeviceFormat::OSMesaFormatId, DeviceFormat::OSMesa), FakeApi(), {});
    ContextGL(FakeDevice(0), FakeApi(), {});
    Step("a failed create");
    script.createFails = true, Throws([&] { ContextGL(device, FakeApi(), {}); });
    Step("a system table");
    ContextGL(device, FakeApi(1), {}), Saw("constructed");
    Step("a system table, device of another format");
    script.devicePixelFormat = 5, ContextGL(device, FakeApi(1), {});
    Step("ARB copies");
    Detail::NativeDevice parent;
    {
        GlxArbApi const first = FakeApi(1).GetArbApi(3, &parent);
        {
            GlxArbApi const copy = first;
            first.MakeCurrent(), Saw(copy.IsCurrent()), copy.MakeCurrent(), copy.DoneCurrent();
        }
        Saw("copy gone"), Saw(first.IsCurrent()), first.DoneCurrent();
    }
    EXPECT_TRUE(MatchesGolden("device/context-gl.txt", LogText(capture)));
}

}  // namespace
}  // namespace Tev::Test
