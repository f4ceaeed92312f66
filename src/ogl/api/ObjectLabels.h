// Names for GL objects in frame debuggers (glObjectLabel of KHR_debug).
//
// Labels are a debugging aid only: without KHR_debug nothing is called and
// nothing is reported, so that labelling code needs no guards of its own.
#pragma once

#include "ogl/api/Export.h"
#include "ogl/api/GlTypes.h"
#include "ogl/api/TglExtensions.h"

#include <string>

namespace Tev::Chart::Ogl {

struct OglApi;

class TEVOGL_API ObjectLabels {
public:
    // The object namespaces of glObjectLabel (GL_BUFFER, GL_TEXTURE, ...).
    enum Kind : unsigned {
        Buffer = 0x82E0,
        Shader = 0x82E1,
        Program = 0x82E2,
        VertexArray = 0x8074,
        Texture = 0x1702,
        Framebuffer = 0x8D40,
        DisplayList = 0x82E7,  // compatibility contexts
    };

    // Labels nothing.
    ObjectLabels() = default;
    // glObjectLabel is looked up only when the context offers KHR_debug:
    // the lookups hand back a stub for any name, so their answer alone
    // proves nothing.
    ObjectLabels(OglApi const& p_api, ExtensionSet const& p_extensions);

    bool Enabled() const { return _objectLabel != nullptr; }
    // Longer labels are cut to what every driver takes (GL_MAX_LABEL_LENGTH
    // is at least 256).
    void Set(Kind p_kind, unsigned p_name, std::string const& p_label) const;

private:
    using ObjectLabelFn = void(TGL_APIENTRY*)(GLenum, GLuint, GLsizei, GLchar const*);
    ObjectLabelFn _objectLabel = nullptr;
};

}  // namespace Tev::Chart::Ogl
