// Programs as the facade binds them: a Program owns one ProgramObject, the
// GL side. The FixedFunction program stands for "no GLSL program": its
// object has the GL name 0, and binding it selects the fixed-function
// pipeline.
#pragma once

#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"

#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

struct OglApi;
class Tgl;

class TEVOGL_API ProgramObject {
public:
    // p_gl must outlive the object.
    ProgramObject(OglApi const& p_gl, unsigned p_handle);
    ProgramObject(ProgramObject const&) = delete;
    ProgramObject& operator=(ProgramObject const&) = delete;
    virtual ~ProgramObject();

    // The GL program name; 0 means the fixed-function pipeline.
    unsigned Handle() const { return _handle; }
    bool IsActive() const { return _active; }
    void SetActive(bool p_active) { _active = p_active; }

    // Makes this program GL's current one.
    virtual void InternalBind();
    // Returns GL to no program.
    virtual void InternalUnbind();
    // Whether drawing with this program needs the built-in (compatibility)
    // vertex attributes rather than generic ones.
    virtual bool RequiresCompatibilityAttributes() const { return false; }

protected:
    OglApi const& Api() const { return _gl; }

private:
    OglApi const& _gl;
    unsigned _handle;
    bool _active = false;
};

// The object behind the FixedFunction program.
class TEVOGL_API FixedFunctionProgramObject final : public ProgramObject {
public:
    explicit FixedFunctionProgramObject(OglApi const& p_gl) : ProgramObject(p_gl, 0) {}

    // The fixed-function pipeline draws from the built-in attributes only.
    bool RequiresCompatibilityAttributes() const override { return true; }
};

class TEVOGL_API Program {
public:
    Program() = default;
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;
    virtual ~Program();

    boost::shared_ptr<ProgramObject> const& Object() const { return _object; }
    bool IsActive() const { return _active; }
    // What the object answers; false without one.
    bool RequiresCompatibilityAttributes() const;

protected:
    void SetObject(boost::shared_ptr<ProgramObject> p_object) { _object = std::move(p_object); }

    // Hooks for derived programs: the program has become, or stopped being,
    // the facade's current one.
    virtual void OnActivated(Utility::WatchedRef<Tgl> const& p_gl) {}
    virtual void OnDeactivated(Utility::WatchedRef<Tgl> const& p_gl) {}

private:
    friend class Tgl;

    void Activated(Utility::WeakWatchedRef<Tgl> const& p_gl);
    void Deactivated(Utility::WeakWatchedRef<Tgl> const& p_gl);

    boost::shared_ptr<ProgramObject> _object;
    bool _active = false;
};

// The placeholder the facade binds when no GLSL program is in force.
class TEVOGL_API FixedFunction final : public Program {
public:
    explicit FixedFunction(OglApi const& p_gl);
};

}  // namespace Tev::Chart::Ogl
