// Text drawn with texture fonts.
#include "ogl/tgl/Tgl.h"

#include "ogl/resources/Text.h"

namespace Tev::Chart::Ogl {

boost::shared_ptr<Text> Tgl::GenFont(std::vector<std::string> const& p_fontFiles, unsigned p_pixelSize) {
    boost::shared_ptr<Text> text(new Text(p_fontFiles, p_pixelSize));
    InitializeResource(*text);
    return text;
}

}  // namespace Tev::Chart::Ogl
