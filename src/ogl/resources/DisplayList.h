// A GL display list: what the facade draws between the start and the end of
// a compile (Begin/End included, since the facade draws those from client
// arrays, which GL copies into the list) is kept by the driver and replayed
// by Call().
#pragma once

#include "ogl/api/Export.h"
#include "ogl/resources/TglResource.h"

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>

namespace Tev::Chart::Ogl {

class TEVOGL_API DisplayList final : public TglObject, public boost::enable_shared_from_this<DisplayList> {
public:
    ~DisplayList() override;

    // Records from now until the token goes; with p_execute the commands
    // are also carried out while recording. Compiling again replaces the
    // contents. One list compiles at a time per context (GL's rule).
    boost::shared_ptr<void> Compile(bool p_execute = false);
    void Call() const;
    bool IsCompiled() const { return _compiled; }

private:
    friend class Tgl;

    DisplayList(OglApi const& p_api, unsigned int p_name);
    void EndCompile();
    void DoDeallocate() override;

    bool _compiling = false;
    bool _compiled = false;
};

}  // namespace Tev::Chart::Ogl
