// A QColor as the four floating-point components, red to alpha, that GL's
// colour calls and the shader route's uniforms take.
#pragma once

#include <QColor>

#include <array>

namespace Tev::Chart::Ogl {

inline std::array<float, 4> RgbaFloats(QColor const& p_color) {
    return {float(p_color.redF()), float(p_color.greenF()), float(p_color.blueF()), float(p_color.alphaF())};
}

}  // namespace Tev::Chart::Ogl
