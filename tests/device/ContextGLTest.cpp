// ContextGL and GlxArbApi against a scripted window-system table. Each row
// is one scenario; what the table was asked to do, what the scenario saw and
// what was logged or thrown make a transcript, compared with
// tests/golden/device/context-gl.txt.
#include "framework/debug/Debug.h"
#include "ogl/device/Device.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/GlxArbApi.h"
#include "support/Golden.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <thread>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

// What the scripted table was asked to do, and what it answers.
struct Script {
    int created = 0, deleted = 0, binds = 0, releases = 0, swaps = 0, devicePixelFormat = 3;
    bool createFails = false, makeCurrentFails = false, deleteFails = false;
    ContextHandle current = nullptr;
    Detail::NativeContext contexts[4];
} script;

OsApi FakeApi(int p_isSystem = 0) {
    OsApi api;
    api.IsSystem = p_isSystem;
    api.CreateContext = [](DeviceHandle) { return script.createFails ? nullptr : &script.contexts[script.created++ % 4]; };
    api.DeleteContext = [](ContextHandle) { return ++script.deleted, int(!script.deleteFails); };
    api.GetCurrentContext = [] { return script.current; };
    api.MakeCurrent = [](DeviceHandle, ContextHandle p_context) {
        if (script.makeCurrentFails) return 0;
        ++(p_context ? script.binds : script.releases);
        return script.current = p_context, 1;
    };
    api.SwapBuffers = [](DeviceHandle) { return ++script.swaps; };
    api.GetPixelFormat = [](DeviceHandle) { return script.devicePixelFormat; };
    api.GetProcAddress = [](char const*) -> void* { return nullptr; };
    return api;
}

class FakeDevice final : public Device {
public:
    explicit FakeDevice(DeviceFormat::Id p_id = 3, DeviceFormat::DeviceType p_type = DeviceFormat::Window, bool p_double = true) {
        _format.id = p_id, _format.currentDevice = p_type, _format.doubleBuffered = p_double;
    }
    DeviceHandle HardwareHandle() const override { return const_cast<Detail::NativeDevice*>(&_record); }
    // Any display will do: the context only asks whether there is one.
    DisplayHnd HardwareDisplay() const override { return DisplayHnd::OSMesaDisplay; }
    RenderBuffer const& Buffer() const override { return _buffer; }
    DeviceFormat const& Format() const override { return _format; }

private:
    Detail::NativeDevice _record;
    RenderBuffer _buffer;
    DeviceFormat _format;
};

struct Row {
    char const* name;
    std::function<void(std::ostream&)> run;  // writes what it sees
};

Row Swap(char const* p_name, DeviceFormat::DeviceType p_type, bool p_double) {
    return {p_name, [=](std::ostream&) {
                FakeDevice const device(3, p_type, p_double);
                ContextGL context(device, FakeApi(), {});
                context.MakeCurrent(device), context.SwapBuffers(), context.DoneCurrent();
            }};
}

// Nested binds bind once, releases past the count are reported, a bind on
// another thread is counted and reported, only double-buffered windows
// swap, and failures of the table are reported or thrown.
TEST(ContextGLFake, ScenariosMatchTheirTranscript) {
    FakeDevice const device;
    Row const rows[] = {
        {"nested binds", [&](std::ostream& out) {
             ContextGL context(device, FakeApi(), {});
             context.MakeCurrent(device), context.MakeCurrent(device);
             out << context.CurrentCount(), context.DoneCurrent(), out << context.CurrentCount();
             context.DoneCurrent(), context.DoneCurrent();
         }},
        {"a bind from another thread", [&](std::ostream& out) {
             ContextGL context(device, FakeApi(), {});
             context.MakeCurrent(device);
             std::thread([&] { context.MakeCurrent(device); }).join();
             out << context.CurrentCount(), context.DoneCurrent(), context.DoneCurrent();
         }},
        Swap("double-buffered window", DeviceFormat::Window, true), Swap("single-buffered window", DeviceFormat::Window, false),
        Swap("pbuffer", DeviceFormat::Pbuffer, true), Swap("bitmap", DeviceFormat::Bitmap, false),
        {"a swap while another context is current", [&](std::ostream&) {
             ContextGL context(device, FakeApi(), {});
             context.MakeCurrent(device), script.current = nullptr, context.SwapBuffers();
         }},
        {"an OSMesa device", [](std::ostream&) { ContextGL(FakeDevice(DeviceFormat::OSMesaFormatId, DeviceFormat::OSMesa), FakeApi(), {}); }},
        {"the null format", [](std::ostream&) { ContextGL(FakeDevice(0), FakeApi(), {}); }},
        {"a device of another format", [&](std::ostream& out) {
             ContextGL context(device, FakeApi(), {});
             try {
                 context.MakeCurrent(FakeDevice(4));
             } catch (Context::IncompatableDevice const& e) {
                 out << e.what() << ", count " << context.CurrentCount();
             }
         }},
        {"a failed bind and release", [&](std::ostream&) {
             ContextGL context(device, FakeApi(), {});
             script.makeCurrentFails = true, context.MakeCurrent(device), context.DoneCurrent();
         }},
        {"a failed create", [&](std::ostream&) { script.createFails = true, ContextGL(device, FakeApi(), {}); }},
        {"a failed delete", [&](std::ostream&) { script.deleteFails = true, ContextGL(device, FakeApi(), {}); }},
        // The system table's fake context is made, bound, released and
        // deleted before the constructor returns.
        {"a system table", [&](std::ostream& out) {
             ContextGL const context(device, FakeApi(1), {});
             out << "created " << script.created << ", deleted " << script.deleted << ", released " << script.releases;
         }},
        {"a system table, device of another format", [&](std::ostream&) {
             script.devicePixelFormat = 5, ContextGL(device, FakeApi(1), {});
         }},
        // Copies share the fake context and its current flag; the last one
        // deletes it.
        {"ARB copies", [](std::ostream& out) {
             Detail::NativeDevice parent;
             GlxArbApi const first = FakeApi(1).GetArbApi(3, &parent);
             {
                 GlxArbApi const copy = first;
                 first.MakeCurrent(), out << copy.IsCurrent(), copy.MakeCurrent(), copy.DoneCurrent();
             }
             out << first.IsCurrent() << script.deleted, first.DoneCurrent();
         }},
        {"ARB entries of a Mesa table", [](std::ostream& out) {
             Detail::NativeDevice parent;
             GlxArbApi const mesa = FakeApi(0).GetArbApi(3, &parent);
             out << bool(mesa.CreateContextAttribsARB || mesa.CreatePbuffer || mesa.DestroyPbuffer || mesa.QueryExtensionsString);
         }},
    };
    std::ostringstream transcript;
    for (Row const& row : rows) {
        script = Script{};
        Debug::CaptureScope capture;
        transcript << row.name << "\n  saw: ";
        try {
            row.run(transcript);
        } catch (Context::CreateGLContextFailed const& e) {
            transcript << "throws \"" << e.what() << "\" for format " << e.Format().id;
        }
        transcript << "\n  table: created " << script.created << ", deleted " << script.deleted << ", bound " << script.binds
                   << ", released " << script.releases << ", swapped " << script.swaps << "\n";
        for (Debug::LogEntry const& entry : capture.Entries()) {
            std::string const& text = entry.text;  // a failed check without its function
            bool const check = entry.channel == Debug::Channel::Assert;
            transcript << "  " << Debug::ChannelName(entry.channel) << ": " << (check ? text.substr(0, text.find("\" - ") + 1) : text) << "\n";
        }
    }
    EXPECT_TRUE(MatchesGolden("device/context-gl.txt", transcript.str()));
}

}  // namespace
}  // namespace Tev::Test
