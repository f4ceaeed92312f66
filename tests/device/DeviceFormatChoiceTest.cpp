// Format choice against scripted pixel-format lists: generated lists checked
// against a reference chooser written out from the rules, hand-picked lists
// for the subtle cases, and the ways around the chooser.
#include "ogl/device/DeviceFormat.h"
#include "ogl/device/DisplayHnd.h"
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

// A request for p_devices (0 window, 1 off-screen) and p_acceleration (0
// hardware, 1 software) with double buffering, depth, stencil, diagnostics.
Request Ask(int p_devices, int p_acceleration, bool p_double = false, bool p_depth = false, bool p_stencil = false, bool p_diag = false) {
    return {std::uint32_t(p_devices), {0, 0}, std::uint32_t(p_acceleration), p_double, p_depth, p_stencil, p_diag, {}};
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
    unsigned Choose(Formats const& p_formats, bool p_system, Request const& p_request) {
        ScriptedFormats script(p_formats);
        script.chooseResult = int(SystemPick);
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(p_system), _display, p_request);
        EXPECT_EQ(script.chooseRequests.size(), chosen.id == SystemPick ? 1u : 0u);
        EXPECT_EQ(chosen.enableDiagnostics, p_request.enableDiagnostics);
        return chosen.id;
    }

    ScopedEnv _noForced{"TEVOS_FORCE_PIXEL_FORMAT", nullptr};
    ScopedEnv _noSystem{"TEVOS_USE_SYSTEM_DEVICE_FORMAT", nullptr};
    DisplayHnd const _display;
};

// Random lists near every rule's bounds, on both tables and all requests.
TEST_F(DeviceFormatChoice, PicksWhatTheRulesPickOnGeneratedLists) {
    std::mt19937 rng(1234);
    auto const pick = [&](std::initializer_list<int> p_values) { return p_values.begin()[rng() % p_values.size()]; };
    // Values that break a rule come one time in twelve.
    auto const mostly = [&](std::initializer_list<int> p_usual, std::initializer_list<int> p_rare) { return rng() % 12 ? pick(p_usual) : pick(p_rare); };
    int replaced = 0, fellBack = 0;
    for (int list = 0; list < 10000; ++list) {
        Request const request = Ask(pick({0, 1}), pick({0, 1}), pick({0, 1}), pick({0, 1}), pick({0, 1}), pick({0, 1}));
        bool const system = pick({0, 1});
        Formats formats(pick({1, 2, 3, 4, 5, 6, 7}));
        for (auto& format : formats) {
            if (&format != &formats[0] && pick({0, 0, 0, 0, 0, 0, 0, 1})) continue;  // fails to describe
            Descriptor p = Format(mostly({24, 24, 16, 32, 8}, {0, 7}), mostly({8, 8, 0, 4, 16}, {3}), mostly({8, 8, 5, 0}, {4, 9}));
            p.cRedBits = std::uint8_t(mostly({8, 8, 5}, {4, 9})), p.cGreenBits = std::uint8_t(mostly({8, 8, 6, 5}, {4, 9}));
            p.cBlueBits = std::uint8_t(mostly({8}, {4, 9}));
            p.dwFlags = 0;
            for (auto const [flag, odds] : {std::pair{Pfd::SupportOpenGL, 15}, {Pfd::DrawToWindow, 14}, {Pfd::DrawToBitmap, 12},
                                            {Pfd::DoubleBuffer, 12}, {Pfd::SwapExchange, 8}, {Pfd::SwapCopy, 8},
                                            {Pfd::GenericFormat, 2}, {Pfd::GenericAccelerated, 2}})
                p.dwFlags |= int(rng() % 16) < odds ? flag : 0;  // odds in 16
            p.iPixelType = rng() % 16 ? Pfd::TypeRGBA : Pfd::TypeColorIndex;
            p.iLayerType = rng() % 16 ? 0 : 1;
            format = p;
        }
        unsigned const expected = Reference(formats, !system, request);
        fellBack += expected == SystemPick;
        for (unsigned id = 1; id < expected && id <= formats.size(); ++id)
            replaced += formats[id - 1] && Fits(*formats[id - 1], !system, request);
        ASSERT_EQ(Choose(formats, system, request), expected) << "list " << list;
    }
    // Enough lists both fall back and see a later format win.
    EXPECT_GT(fellBack, 2000) << replaced;
    EXPECT_GT(replaced, 300) << fellBack;
}

// The cases a random list rarely hits just so.
TEST_F(DeviceFormatChoice, HandPickedListsPickTheirFormat) {
    Request const full = Ask(0, 0, false, true, true), window = Ask(0, 0), depth = Ask(0, 0, false, true);
    struct Row {
        char const* name;
        bool system;
        Request request;
        Formats formats;
        unsigned expected;
    } const rows[] = {
        {"24 copy replaces 16 exchange", true, full, {Format(16), Format(24, 8, 8, Pfd::SwapCopy, Pfd::SwapExchange)}, 2},
        {"32 copy leaves 24 exchange", true, full, {Format(24), Format(32, 8, 8, Pfd::SwapCopy, Pfd::SwapExchange)}, 1},
        {"a tie keeps the lower id", true, full, {Format(24), Format(24)}, 1},
        {"stencil 0 beats 8 unasked", true, depth, {Format(24, 8), Format(24, 0)}, 2},
        {"generic system formats", true, window, {Format(24, 8, 8, Pfd::GenericFormat), Format(24, 8, 8, Pfd::GenericAccelerated)}, SystemPick},
        {"Mesa alpha 0", false, window, {Format(24, 8, 0)}, 1},
        {"system alpha 0", true, window, {Format(24, 8, 0)}, SystemPick},
        {"ids stay the driver's past a failed one", true, window, {Format(24, 8, 4), std::nullopt, Format(24, 0)}, 3},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Reference(row.formats, !row.system, row.request), row.expected);
        EXPECT_EQ(Choose(row.formats, row.system, row.request), row.expected);
    }
}

// Ids are enumerated from format 1's count, skipping formats that fail to
// describe; the OSMesa display has its one fixed format, the null id is
// reported.
TEST_F(DeviceFormatChoice, EnumeratesDescribableFormatsOnly) {
    ScriptedFormats script({DriverFormat(), std::nullopt, DriverFormat(), std::nullopt});
    OsApi const api = ScriptedFormats::Table(true);
    EXPECT_EQ(DeviceFormat::GetAllDeviceFormats(api, _display), std::vector<DeviceFormat::Id>({1, 3}));
    EXPECT_EQ(script.describedIds, std::vector<int>({1, 1, 2, 3, 4}));
    DisplayHnd const& osmesa = DisplayHnd::OSMesaDisplay;
    EXPECT_EQ(DeviceFormat::GetAllDeviceFormats(api, osmesa), std::vector<DeviceFormat::Id>({DeviceFormat::OSMesaFormatId}));
    ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "1");
    DeviceFormat const mesa = DeviceFormat::ChooseDeviceFormat(api, osmesa, Request{});
    EXPECT_TRUE(mesa.id == DeviceFormat::OSMesaFormatId && mesa.supportedDevices == DeviceFormat::DeviceBit(DeviceFormat::OSMesa));
    EXPECT_FALSE(mesa.openGL || mesa.mesaSoftware || mesa.doubleBuffered || mesa.depthBits || mesa.colorBits);
    EXPECT_TRUE(script.describedIds.size() == 5 && script.chooseRequests.empty());
    // Elsewhere the OSMesa id is one more id for the driver to reject.
    DeviceFormat::GetDeviceFormat(api, _display, DeviceFormat::OSMesaFormatId);
    EXPECT_EQ(script.describedIds.back(), -1);
    script.formats.clear();
    EXPECT_TRUE(DeviceFormat::GetAllDeviceFormats(api, _display).empty());
}

// The system chooser's descriptors, the forced format's log and the null
// id's report, in tests/golden/device/chooser-log.txt; a system table
// without a format throws, Mesa falls back to format 1.
TEST_F(DeviceFormatChoice, SystemChooserForcedFormatsAndTheirLogs) {
    ScriptedFormats script({Format(24, 8, 0, Pfd::GenericFormat), Format(24, 8, 8, 0, Pfd::DoubleBuffer),
                            [] { Descriptor p = DriverFormat(); return p.iPixelType = Pfd::TypeColorIndex, p; }()});
    Debug::CaptureScope capture;
    std::vector<std::string> log;
    script.chooseResult = 2;
    for (Request const& request : {Ask(0, 0, true, true, true, true), Ask(1, 0), Ask(1, 1, false, true), Ask(0, 1, true), Ask(0, 7)}) {
        DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(true), _display, request);
        Descriptor const& p = script.chooseRequests.back();
        std::ostringstream line;
        line << std::hex << "flags " << p.dwFlags << std::dec;
        for (int const field : std::initializer_list<int>{p.nSize, p.nVersion, p.iPixelType, p.cColorBits, p.cRedBits, p.cGreenBits, p.cBlueBits,
                                p.cAlphaBits, p.cAccumBits, p.cDepthBits, p.cStencilBits, p.cAuxBuffers, p.iLayerType})
            line << ' ' << field;
        log.push_back(line.str());
    }
    script.chooseResult = 0;
    try {
        DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(true), _display, Ask(0, 0, true));
        ADD_FAILURE() << "a system table without a usable format must throw";
    } catch (DeviceFormat::FailedDeterminingDeviceFormat const& failure) {
        log.push_back(failure.what());
    }
    DeviceFormat const mesa = DeviceFormat::ChooseDeviceFormatSystem(ScriptedFormats::Table(false), _display, Request{});
    EXPECT_TRUE(mesa.id == 1u && mesa.alphaBits == 0u && mesa.mesaSoftware);

    Request const diagnostics = Ask(0, 0, false, false, false, true);
    {
        ScopedEnv system("TEVOS_USE_SYSTEM_DEVICE_FORMAT", "1");
        script.chooseResult = 2;
        DeviceFormat const chosen = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(true), _display, diagnostics);
        EXPECT_TRUE(chosen.id == 2u && chosen.enableDiagnostics && !chosen.doubleBuffered);
        // A forced id is taken as it is, before the system chooser.
        ScopedEnv forced("TEVOS_FORCE_PIXEL_FORMAT", "3");
        DeviceFormat const format = DeviceFormat::ChooseDeviceFormat(ScriptedFormats::Table(true), _display, diagnostics);
        EXPECT_TRUE(format.id == 3u && !format.enableDiagnostics && script.chooseRequests.size() == 8);
    }
    EXPECT_EQ(DeviceFormat::GetDeviceFormat(ScriptedFormats::Table(true), _display, DeviceFormat::NullFormatId).id, 0u);
    for (Debug::LogEntry const& entry : capture.Entries()) log.push_back(Debug::ChannelName(entry.channel) + (": " + entry.text));
    EXPECT_TRUE(MatchesGolden("device/chooser-log.txt", Lines(log)));
}

}  // namespace
}  // namespace Tev::Test
