// A surface material as immediate-mode GL describes it.
#pragma once

#include <QColor>

namespace Tev::Chart::Ogl {

struct Material {
    // Tokens::TGL_FRONT, TGL_BACK or TGL_FRONT_AND_BACK; 0 stands for
    // TGL_FRONT_AND_BACK so that a default material needs no token.
    unsigned face = 0;
    QColor ambient = QColor::fromRgbF(0.2f, 0.2f, 0.2f, 1.0f);
    QColor diffuse = QColor::fromRgbF(0.8f, 0.8f, 0.8f, 1.0f);
    QColor specular = QColor::fromRgbF(0.0f, 0.0f, 0.0f, 1.0f);
    QColor emission = QColor::fromRgbF(0.0f, 0.0f, 0.0f, 1.0f);
    // The specular exponent, 0 to 128.
    float shininess = 0.0f;
};

}  // namespace Tev::Chart::Ogl
