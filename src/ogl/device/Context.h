// A GL rendering context bound to a device.
#pragma once

#include "framework/utility/Exception.h"
#include "ogl/api/Export.h"
#include "ogl/device/DeviceFormat.h"

#include <atomic>
#include <string>
#include <thread>

namespace Tev::Chart::Ogl {

class Device;

class TEVOGL_API Context {
public:
    class TEVOGL_API CreateGLContextFailed : public Utility::Exception {
    public:
        CreateGLContextFailed(DeviceFormat const& p_format, std::string const& p_message)
            : Utility::Exception(p_message), _format(p_format) {}
        DeviceFormat const& Format() const { return _format; }

    private:
        DeviceFormat _format;
    };

    class TEVOGL_API IncompatableDevice : public Utility::Exception {
    public:
        explicit IncompatableDevice(DeviceFormat const& p_format,
                                    std::string const& p_message = "Incompatable device passed to OpenGL Context")
            : Utility::Exception(p_message), _format(p_format) {}
        DeviceFormat const& Format() const { return _format; }

    private:
        DeviceFormat _format;
    };

    Context() = default;
    Context(Context const&) = delete;
    Context& operator=(Context const&) = delete;
    virtual ~Context() = default;

    // Calls nest on one thread: the first binds, the matching last
    // DoneCurrent releases.
    virtual void MakeCurrent(Device const& p_device) = 0;
    virtual void DoneCurrent() = 0;
    virtual void SwapBuffers() = 0;
};

namespace Detail {

// The nesting count of MakeCurrent calls.
class AtomicCount {
public:
    int get() const { return _value.load(); }
    int increment() { return ++_value; }
    int decrement() { return --_value; }

private:
    std::atomic<int> _value{0};
};

// The nesting count and the owning thread of a context, with the checks
// both kinds of context make on every bind and release.
class ContextBinding {
public:
    // Whether the caller must bind the device now: on the first call, and
    // on every call when p_rebindAlways (Mesa software formats).
    bool BeginMakeCurrent(bool p_rebindAlways);
    // The device is bound on this thread.
    void Bound();
    // Whether the caller must release the binding now (the count fell to 0).
    bool DoneCurrent();
    // Forget the owning thread after the release.
    void Released();

    bool OnOwningThread() const;
    int Count() const { return _currentCount.get(); }

private:
    AtomicCount _currentCount;
    std::atomic<std::thread::id> _owningThread{};
};

}  // namespace Detail

}  // namespace Tev::Chart::Ogl
