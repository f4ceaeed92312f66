#include "ogl/shaders/Program.h"

#include "ogl/api/OglApi.h"

#include <boost/make_shared.hpp>

namespace Tev::Chart::Ogl {

ProgramObject::ProgramObject(OglApi const& p_gl, unsigned p_handle) : _gl(p_gl), _handle(p_handle) {}

ProgramObject::~ProgramObject() = default;

void ProgramObject::InternalBind() { _gl.UseProgram(_handle); }

void ProgramObject::InternalUnbind() { _gl.UseProgram(0); }

Program::~Program() = default;

bool Program::RequiresCompatibilityAttributes() const { return _object && _object->RequiresCompatibilityAttributes(); }

void Program::Activated(Utility::WeakWatchedRef<Tgl> const& p_gl) {
    _active = true;
    if (_object) _object->SetActive(true);
    OnActivated(p_gl.Expired() ? Utility::WatchedRef<Tgl>() : p_gl.Lock());
}

void Program::Deactivated(Utility::WeakWatchedRef<Tgl> const& p_gl) {
    _active = false;
    if (_object) _object->SetActive(false);
    OnDeactivated(p_gl.Expired() ? Utility::WatchedRef<Tgl>() : p_gl.Lock());
}

FixedFunction::FixedFunction(OglApi const& p_gl) { SetObject(boost::make_shared<FixedFunctionProgramObject>(p_gl)); }

}  // namespace Tev::Chart::Ogl
