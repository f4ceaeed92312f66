// The base of every GPU-side object of the library.
//
// A resource is numbered at construction, made live against a facade by the
// facade's factories (Initialize), and releases its GL objects exactly once:
// when its owner asks (Deallocate from the concrete destructor) or when the
// facade's lifetime ends first, whichever comes earlier. The sign of the
// instance number is the state, so a log line alone tells whether a resource
// was live.
#pragma once

#include "framework/utility/Lifetime.h"
#include "ogl/api/Export.h"
#include "ogl/api/ObjectLabels.h"

#include <boost/noncopyable.hpp>

#include <string>

namespace Tev::Chart::Ogl {

class Tgl;
struct OglApi;
class TglResource;

namespace Internal { struct ResourceAccess; }

class TEVOGL_API TglResource : private boost::noncopyable {
public:
    // Takes the next process-wide instance number, negated: not live yet.
    TglResource();
    // Pure so that the class stays abstract; logs "DEAD!" and poisons the
    // number. It cannot deallocate (no virtual dispatch here): every concrete
    // destructor calls Deallocate() itself.
    virtual ~TglResource() = 0;

    // Live: initialised, not deallocated, and the facade still exists.
    virtual bool IsValid() const;
    // Negative before Initialize and after Deallocate.
    int TglInstanceId() const { return _id; }

protected:
    // Releases the GL objects once; later calls do nothing.
    void Deallocate();

private:
    friend class Tgl;
    friend struct Internal::ResourceAccess;

    // Only the facade's factories make a resource live.
    void Initialize(Tgl& p_tgl, OglApi const& p_api, Utility::Lifetime const& p_lifetime);
    void OnExpire();

    virtual void DoInitialize(Tgl& p_tgl, OglApi const& p_api) = 0;
    virtual void DoDeallocate() = 0;

    Utility::Lifetime::Watcher _watcher;
    int _id;
};

namespace Internal {

// The one door through which a resource is made live: the facade's
// factories, and tests that watch a lifetime of their own instead of the
// facade's.
struct ResourceAccess {
    static void Initialize(TglResource& p_resource, Tgl& p_tgl, OglApi const& p_api,
                           Utility::Lifetime const& p_lifetime) {
        p_resource.Initialize(p_tgl, p_api, p_lifetime);
    }
};

}  // namespace Internal

// A resource that wraps exactly one GL object name, deleted through the
// table that created it.
class TEVOGL_API TglObject : public TglResource {
public:
    ~TglObject() override;

    // As a resource, and the GL name is not 0.
    bool IsValid() const override;
    // Names the GL object in frame debuggers, where the driver offers
    // KHR_debug; does nothing otherwise, or once the object is not valid.
    void SetLabel(std::string const& p_label) const;

protected:
    // p_labelKind: the namespace of the name for SetLabel.
    TglObject(OglApi const& p_api, unsigned int p_name, ObjectLabels::Kind p_labelKind);

    OglApi const& Api() const { return _api; }
    unsigned int Name() const { return _name; }
    // Overrides call this first.
    void DoInitialize(Tgl& p_tgl, OglApi const& p_api) override;

private:

    OglApi const& _api;
    unsigned int _name;
    ObjectLabels::Kind _labelKind;
    // The facade's; only used while the object is valid, so while the
    // facade lives.
    ObjectLabels const* _labels = nullptr;
};

}  // namespace Tev::Chart::Ogl
