#include "ogl/resources/DisplayList.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"

#include <boost/weak_ptr.hpp>

namespace Tev::Chart::Ogl {

DisplayList::DisplayList(OglApi const& p_api, unsigned int p_name) : TglObject(p_api, p_name, ObjectLabels::DisplayList) {}

DisplayList::~DisplayList() { Deallocate(); }

void DisplayList::DoDeallocate() {
    if (_compiling) Api().EndList();
    Api().DeleteLists(Name(), 1);
}

boost::shared_ptr<void> DisplayList::Compile(bool p_execute) {
    if (!ensure(IsValid()) || !ensure(!_compiling && "The display list is being compiled already!")) return {};
    Api().NewList(Name(), p_execute ? Tokens::TGL_COMPILE_AND_EXECUTE : Tokens::TGL_COMPILE);
    _compiling = true;
    // The token does not keep the list: one dropped while compiling has
    // ended the compile in its deallocation.
    boost::weak_ptr<DisplayList> const list = weak_from_this();
    return boost::shared_ptr<void>(static_cast<void*>(this), [list](void*) {
        if (auto const locked = list.lock()) locked->EndCompile();
    });
}

void DisplayList::EndCompile() {
    if (!_compiling || !IsValid()) return;
    Api().EndList();
    _compiling = false;
    _compiled = true;
}

void DisplayList::Call() const {
    if (IsValid() && ensure(_compiled && "Calling a display list that was never compiled!")) Api().CallList(Name());
}

}  // namespace Tev::Chart::Ogl
