#include "ogl/tgl/UndoOperationFallback.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl {

void UndoOperationFallback::operator()() const {
    if (_func.expired()) return;
    Debug::derr() << "WARNING: \"_func.expired() && \"No eqivelent pop operation found, so forcing an unwind!\"\" - "
                  << TEV_SIGNATURE;
    boost::shared_ptr<UndoAction> const undo = _func.lock();
    if (undo && *undo) (*undo)();
}

}  // namespace Tev::Chart::Ogl
