#include "ogl/shaders/ProgramObject.h"

#include "ogl/api/OglApi.h"

#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

ProgramObject::ProgramObject(OglApi const& p_gl, unsigned p_handle, boost::function<void()> p_callback)
    : TglObject(p_gl, p_handle, ObjectLabels::Program),
      _name("GLSLProgram(" + std::to_string(p_handle) + ")"),
      _callback(std::move(p_callback)) {}

ProgramObject::~ProgramObject() { Deallocate(); }

// The token holds the object weakly: an object that is gone has nothing
// left to unbind.
boost::shared_ptr<void> ProgramObject::ScopedBind() {
    InternalBind();
    boost::weak_ptr<ProgramObject> const weak = weak_from_this();
    return boost::shared_ptr<void>(static_cast<void*>(this), [weak](void*) {
        if (auto const self = weak.lock()) {
            self->InternalUnbind();
            if (self->_callback) self->_callback();
        }
    });
}

void ProgramObject::InternalBind() { Api().UseProgram(Handle()); }

void ProgramObject::InternalUnbind() { Api().UseProgram(0); }

FixedFunctionProgramObject::FixedFunctionProgramObject(OglApi const& p_gl) : ProgramObject(p_gl, 0) {
    SetName("FixedFunction");
}

FixedFunctionProgramObject::~FixedFunctionProgramObject() = default;

}  // namespace Tev::Chart::Ogl
