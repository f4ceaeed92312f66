#include "ogl/api/ObjectLabels.h"

#include "ogl/api/OglApi.h"

#include <algorithm>

namespace Tev::Chart::Ogl {

namespace {

// The least GL_MAX_LABEL_LENGTH a KHR_debug driver may have, less the
// terminating zero it counts.
constexpr std::size_t MaxLabelLength = 255;

}  // namespace

ObjectLabels::ObjectLabels(OglApi const& p_api, ExtensionSet const& p_extensions) {
    if (p_extensions.test(KHR_debug))
        _objectLabel = reinterpret_cast<ObjectLabelFn>(p_api.ProcAddress("glObjectLabel"));
}

void ObjectLabels::Set(Kind p_kind, unsigned p_name, std::string const& p_label) const {
    if (!_objectLabel || p_name == 0) return;
    auto const length = static_cast<int>(std::min(p_label.size(), MaxLabelLength));
    _objectLabel(p_kind, p_name, length, p_label.data());
}

}  // namespace Tev::Chart::Ogl
