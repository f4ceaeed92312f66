#include "ogl/resources/TglResource.h"

#include "framework/debug/Debug.h"
#include "ogl/tgl/Tgl.h"

#include <boost/bind/bind.hpp>

#include <atomic>
#include <ostream>

namespace Tev::Chart::Ogl {

namespace {

// Shared by every thread that makes resources; the only shared state here.
std::atomic<int> instanceCounter{0};

// Recognisable in a log and never a real instance number.
constexpr int DeadId = -99999999;

}  // namespace

TglResource::TglResource() : _id(-(instanceCounter.fetch_add(1) + 1)) {}

TglResource::~TglResource() {
    Debug::dlog() << "TglResource(" << _id << ") DEAD!";
    _id = DeadId;
}

bool TglResource::IsValid() const { return !_watcher.Expired() && _id > 0; }

void TglResource::Initialize(Tgl& p_tgl, OglApi const& p_api, Utility::Lifetime const& p_lifetime) {
    _watcher = p_lifetime.Watch(boost::bind(&TglResource::OnExpire, this));
    DoInitialize(p_tgl, p_api);
    ensure(_id < 0);
    _id = -_id;
}

void TglResource::Deallocate() {
    if (_id <= 0) return;
    Debug::dlog() << "TglResource(" << _id << ") Deallocated!" << std::endl;
    DoDeallocate();
    ensure(_id > 0);
    _id = -_id;
}

void TglResource::OnExpire() {
    Debug::dlog() << "TglResource(" << _id << ") Expired!";
    Deallocate();
}

TglObject::TglObject(OglApi const& p_api, unsigned int p_name, ObjectLabels::Kind p_labelKind)
    : _api(p_api), _name(p_name), _labelKind(p_labelKind) {}

TglObject::~TglObject() = default;

bool TglObject::IsValid() const { return TglResource::IsValid() && _name > 0; }

void TglObject::SetLabel(std::string const& p_label) const {
    if (IsValid()) _labels->Set(_labelKind, _name, p_label);
}

void TglObject::DoInitialize(Tgl& p_tgl, OglApi const&) { _labels = &p_tgl.Labels(); }

}  // namespace Tev::Chart::Ogl
