#include "ogl/device/Context.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl::Detail {

bool ContextBinding::OnOwningThread() const { return _owningThread.load() == std::this_thread::get_id(); }

bool ContextBinding::BeginMakeCurrent(bool p_rebindAlways) {
    ensure(_currentCount.get() >= 0);
    if (_currentCount.get() == 0) return true;
    ensure(OnOwningThread() && "Making gl context current to a different thread without releasing it"
                               "from a previos thread!");
    if (p_rebindAlways) return true;
    _currentCount.increment();
    return false;
}

void ContextBinding::Bound() {
    _owningThread = std::this_thread::get_id();
    _currentCount.increment();
}

bool ContextBinding::DoneCurrent() {
    ensure(OnOwningThread() && "Cannot unbind GL context on a different thread!");
    _currentCount.decrement();
    ensure(_currentCount.get() >= 0);
    return _currentCount.get() == 0;
}

void ContextBinding::Released() { _owningThread = std::thread::id(); }

}  // namespace Tev::Chart::Ogl::Detail
