// ContextGL and GlxArbApi against a scripted window-system table: the
// nesting count, the owning-thread checks, which formats swap, and that
// the fake context never outlives what needed it.
#include "ogl/device/Device.h"
#include "ogl/device/NativeHandles.h"
#include "ogl/device/OsApi.h"
#include "ogl/device/glx/ContextGL.h"
#include "ogl/device/glx/GlxArbApi.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <thread>
#include <tuple>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Debug::Channel;

// What the scripted table was asked to do, and what it answers.
struct Script {
    int created = 0, deleted = 0, binds = 0, releases = 0, swaps = 0;
    int devicePixelFormat = 3;
    bool createFails = false, makeCurrentFails = false, deleteFails = false;
    ContextHandle current = nullptr;
    Detail::NativeContext contexts[4];

    // Created, deleted, bound, released.
    std::vector<int> Counts() const { return {created, deleted, binds, releases}; }
};
Script script;

OsApi FakeApi(int p_isSystem = 0) {
    OsApi api;
    api.IsSystem = p_isSystem;
    api.CreateContext = [](DeviceHandle) -> ContextHandle {
        return script.createFails ? nullptr : &script.contexts[script.created++ % 4];
    };
    api.DeleteContext = [](ContextHandle) { return ++script.deleted, int(!script.deleteFails); };
    api.GetCurrentContext = [] { return script.current; };
    api.MakeCurrent = [](DeviceHandle, ContextHandle p_context) {
        if (script.makeCurrentFails) return 0;
        ++(p_context ? script.binds : script.releases);
        script.current = p_context;
        return 1;
    };
    api.SwapBuffers = [](DeviceHandle) { return ++script.swaps; };
    api.GetPixelFormat = [](DeviceHandle) { return script.devicePixelFormat; };
    api.GetProcAddress = [](char const*) -> void* { return nullptr; };
    return api;
}

class FakeDevice final : public Device {
public:
    FakeDevice(DeviceFormat::Id p_id, DeviceFormat::DeviceType p_type, bool p_doubleBuffered) {
        _format.id = p_id;
        _format.currentDevice = p_type;
        _format.doubleBuffered = p_doubleBuffered;
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

DeviceFormatRequest const request;

class ContextGLFake : public ::testing::Test {
protected:
    void SetUp() override { script = Script{}; }
    FakeDevice const device{3, DeviceFormat::Window, true};
};

// A release on another thread is checked by the binding that all contexts
// share, and tested with the OSMesa context; a bind from another thread
// differs here: it is counted, not bound again.
TEST_F(ContextGLFake, NestedCallsBindOnceAndReleaseOnceOtherThreadsAreReported) {
    Debug::CaptureScope capture;
    {
        ContextGL context(device, FakeApi(), request);
        context.MakeCurrent(device);
        context.MakeCurrent(device);
        EXPECT_EQ(context.CurrentCount(), 2);
        context.DoneCurrent();
        EXPECT_EQ(script.Counts(), (std::vector<int>{1, 0, 1, 0}));
        EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();
        std::thread([&] { context.MakeCurrent(device); }).join();
        EXPECT_TRUE(HasAssertion(capture, "OnOwningThread() && \"Making gl context current to a different thread "
                                          "without releasing it\" \"from a previos thread!\""));
        EXPECT_TRUE(script.binds == 1 && context.CurrentCount() == 2);
        context.DoneCurrent(), context.DoneCurrent();
        EXPECT_EQ(script.releases, 1);

        // One release too many: reported, nothing released twice.
        capture.Sink().Clear();
        context.DoneCurrent();
        EXPECT_TRUE(HasAssertion(capture, "_currentCount.get() >= 0"));
    }
    EXPECT_EQ(script.Counts(), (std::vector<int>{1, 1, 1, 1}));
}

TEST_F(ContextGLFake, OnlyDoubleBufferedWindowsSwap) {
    Debug::CaptureScope capture;
    using Case = std::tuple<DeviceFormat::DeviceType, bool, int>;  // device, double-buffered, swaps
    for (auto const& [type, doubleBuffered, swaps] : {Case{DeviceFormat::Window, true, 1}, Case{DeviceFormat::Window, false, 0},
                                                      Case{DeviceFormat::Pbuffer, true, 0}, Case{DeviceFormat::Bitmap, false, 0}}) {
        script.swaps = 0;
        FakeDevice const swapping(3, type, doubleBuffered);
        ContextGL context(swapping, FakeApi(), request);
        context.MakeCurrent(swapping);
        context.SwapBuffers();
        EXPECT_EQ(script.swaps, swaps) << type << " " << doubleBuffered;
        context.DoneCurrent();
    }
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();

    // A swap while another context is current is reported.
    ContextGL context(device, FakeApi(), request);
    context.MakeCurrent(device);
    script.current = nullptr;
    context.SwapBuffers();
    EXPECT_TRUE(HasAssertion(capture, "_api->GetCurrentContext() == _handle && "
                                      "\"Swap failed as no context is current to this thread\""));
}

TEST_F(ContextGLFake, FailuresAreRefusedOrReported) {
    Debug::CaptureScope capture;
    { ContextGL const context(FakeDevice(DeviceFormat::OSMesaFormatId, DeviceFormat::OSMesa, false), FakeApi(), request); }
    { ContextGL const context(FakeDevice(0, DeviceFormat::Window, false), FakeApi(), request); }
    EXPECT_EQ(Assertions(capture).size(), 2u);
    EXPECT_TRUE(HasAssertion(capture, "_format.currentDevice != DeviceFormat::OSMesa && "
                                      "\"OSMesa not supported by this gl context.\""));
    EXPECT_TRUE(HasAssertion(capture, "_format.id >= DeviceFormat::FirstFormatId && \"Unknown format id provided\""));

    ContextGL context(device, FakeApi(), request);
    try {
        context.MakeCurrent(FakeDevice(4, DeviceFormat::Window, true));
        ADD_FAILURE() << "bound a device of another format";
    } catch (Context::IncompatableDevice const& e) {
        EXPECT_STREQ(e.what(), "Incompatable device passed to OpenGL Context");
    }
    EXPECT_TRUE(script.binds == 0 && context.CurrentCount() == 0);
    script.makeCurrentFails = true;
    context.MakeCurrent(device);
    EXPECT_TRUE(HasAssertion(capture, "made && \"Failed to make context current!\""));
    context.DoneCurrent();
    EXPECT_TRUE(HasAssertion(capture, "cleared && \"Failed to clear context current!\""));

    script.createFails = true;
    try {
        ContextGL const failed(device, FakeApi(), request);
        ADD_FAILURE() << "no context, yet no exception";
    } catch (Context::CreateGLContextFailed const& e) {
        EXPECT_STREQ(e.what(), "Failed to create gl context");
        EXPECT_EQ(e.Format().id, 3u);
    }
    script.createFails = false, script.deleteFails = true;
    capture.Sink().Clear();
    { ContextGL const deleted(device, FakeApi(), request); }
    EXPECT_EQ(capture.Texts(Channel::Error), std::vector<std::string>{"Failed to delete GL Context"});
}

// A system table goes through the fake context: made and bound on the
// device, released and deleted before the constructor returns.
TEST_F(ContextGLFake, FakeContextIsGoneBeforeTheContextIsReturned) {
    Debug::CaptureScope capture;
    ContextGL const context(device, FakeApi(1), request);
    // Without ARB entries both come from the table's own CreateContext.
    EXPECT_EQ(script.Counts(), (std::vector<int>{2, 1, 1, 1}));
    EXPECT_EQ(capture.Texts(Channel::Debug), std::vector<std::string>{"WGL Extensions :"});
    EXPECT_TRUE(Assertions(capture).empty()) << Assertions(capture).front();

    script.devicePixelFormat = 5;
    ContextGL const other(device, FakeApi(1), request);
    EXPECT_TRUE(HasAssertion(capture, "sourcePixelFormat == p_pixelFormat"));
}

TEST_F(ContextGLFake, ArbCopiesShareTheFakeContextAndItsCurrentFlag) {
    Debug::CaptureScope capture;
    Detail::NativeDevice parent;
    OsApi const api = FakeApi(1);
    {
        GlxArbApi const first = api.GetArbApi(3, &parent);
        {
            GlxArbApi const copy = first;
            first.MakeCurrent();
            EXPECT_TRUE(copy.IsCurrent());
            copy.MakeCurrent();
            EXPECT_TRUE(HasAssertion(capture, "!(*_isContextCurrentToThread)"));
            copy.DoneCurrent();
        }
        EXPECT_TRUE(script.deleted == 0 && !first.IsCurrent());
        first.DoneCurrent();
        EXPECT_TRUE(HasAssertion(capture, "*_isContextCurrentToThread"));
    }
    EXPECT_EQ(script.deleted, 1);

    // A Mesa table offers no entries and no fake context.
    GlxArbApi const mesa = FakeApi(0).GetArbApi(3, &parent);
    EXPECT_FALSE(mesa.CreateContextAttribsARB || mesa.CreatePbuffer || mesa.DestroyPbuffer);
    EXPECT_EQ(script.created, 1);
}

}  // namespace
}  // namespace Tev::Test
