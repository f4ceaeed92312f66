// The GL side of a Program: one GL program object, or the fixed-function
// pipeline (GL name 0) for the FixedFunction placeholder.
//
// Linking, validation and binding are reached through the facade's
// program binding; a program binds, links lazily and answers location
// queries through this interface whatever its kind.
#pragma once

#include "framework/core/TimeStamp.h"
#include "framework/utility/HashedString.h"
#include "ogl/api/Export.h"
#include "ogl/resources/TglResource.h"

#include <boost/enable_shared_from_this.hpp>
#include <boost/function.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <utility>
#include <vector>

namespace Tev::Chart::Ogl {

class TEVOGL_API ProgramObject : public TglObject, public boost::enable_shared_from_this<ProgramObject> {
public:
    // Attribute locations to bind before linking: (location, name).
    using Layout = std::vector<std::pair<int, std::string>>;

    // An object for the GL program p_handle, which it does not own; 0 is
    // the fixed-function pipeline. p_callback runs when a ScopedBind token
    // is released.
    ProgramObject(OglApi const& p_gl, unsigned p_handle, boost::function<void()> p_callback = {});
    ~ProgramObject() override;

    // The GL program name.
    unsigned Handle() const { return TglObject::Name(); }
    // The name the logs use.
    std::string const& Name() const { return _name; }
    void SetName(std::string p_name) { _name = std::move(p_name); }
    bool IsActive() const { return _active; }
    void SetActive(bool p_active) { _active = p_active; }
    // When the object was made; a Program compares its own stamp with it.
    Core::TimeStamp const& Time() const { return _time; }

    // Binds now; releasing the token unbinds and runs the callback.
    virtual boost::shared_ptr<void> ScopedBind();
    virtual void InternalBind();
    virtual void InternalUnbind();
    // Nothing to validate, link or look up here: a GLSLProgram does that.
    virtual void Validate() {}
    virtual void Link() {}
    // Whether the last link succeeded; nothing is linked here.
    virtual bool LinkSucceeded() const { return false; }
    virtual int GetUniformLocation(Utility::HashedString const& p_name) { return -1; }
    virtual boost::optional<int> GetAttributeLocation(Utility::HashedString const& p_name) const { return {}; }
    // Whether drawing needs the built-in (compatibility) vertex arrays
    // rather than generic attributes.
    virtual bool RequiresCompatibilityAttributes() const { return false; }
    // Locations to bind at the next link.
    virtual void AttributeLayout(Layout const& p_layout) {}

private:
    void DoDeallocate() override {}

    std::string _name;
    boost::function<void()> _callback;
    bool _active = false;
    Core::TimeStamp _time = Core::TimeStamp::Now();
};

// The object behind the FixedFunction program: GL program 0.
class TEVOGL_API FixedFunctionProgramObject final : public ProgramObject {
public:
    explicit FixedFunctionProgramObject(OglApi const& p_gl);
    ~FixedFunctionProgramObject() override;

    // The fixed-function pipeline draws from the built-in arrays only.
    bool RequiresCompatibilityAttributes() const override { return true; }
};

}  // namespace Tev::Chart::Ogl
