// tevogl-render: the chart scene drawn through the library into a PNG, and
// optionally picked at a pixel.
#include "ChartScene.h"
#include "Options.h"
#include "Png.h"
#include "RenderTarget.h"

#include "framework/debug/Debug.h"
#include "ogl/api/DeviceFeatures.h"
#include "ogl/tgl/Tgl.h"

#include <iomanip>
#include <iostream>

namespace TevOglRender {

namespace {

// The library's routine lines and dumps stay out of the job's output;
// warnings and failed checks go to standard error.
class ErrorSink final : public Tev::Debug::LogSink {
public:
    void Write(Tev::Debug::LogEntry const& p_entry) override {
        if (p_entry.channel != Tev::Debug::Channel::Error && p_entry.channel != Tev::Debug::Channel::Assert) return;
        std::cerr << p_entry.text << (p_entry.text.empty() || p_entry.text.back() != '\n' ? "\n" : "");
    }
};

void PrintHits(std::vector<Tev::Chart::Ogl::HitRecord> const& p_hits, Options::Pixel const& p_pixel) {
    std::cout << "pick " << p_pixel.x << ',' << p_pixel.y << ": " << p_hits.size() << (p_hits.size() == 1 ? " hit" : " hits")
              << ", nearest first\n";
    for (auto const& hit : p_hits) std::cout << "  " << std::left << std::setw(12) << NameOf(hit.name) << hit << '\n';
}

int Run(Options const& p_options) {
    RenderTarget target(p_options.system, p_options.width, p_options.height);
    Image frame;
    {
        Tev::Chart::Ogl::Tgl tgl(target.Api(), Tev::Chart::Ogl::DeviceFeatureMask::PermitAll());
        ChartScene scene(tgl, ChartLayout(p_options.width, p_options.height), p_options.route);
        scene.Draw();
        frame = target.ReadFrame();
        if (p_options.pick)
            PrintHits(scene.Pick(p_options.pick->x, p_options.height - 1 - p_options.pick->y), *p_options.pick);
    }
    WritePng(p_options.out, frame);
    std::cout << "wrote " << p_options.out << " (" << p_options.width << 'x' << p_options.height << ", "
              << (p_options.route == Route::Shader ? "shader" : "fixed-function") << " route, "
              << (p_options.system ? "system GL" : "Mesa") << ")\n";
    return 0;
}

}  // namespace

}  // namespace TevOglRender

int main(int p_argc, char** p_argv) {
    using namespace TevOglRender;
    Options options;
    try {
        options = Parse(p_argc, p_argv);
    } catch (UsageError const& e) {
        std::cerr << "tevogl-render: " << e.what() << "\n\n" << Usage;
        return 2;
    }
    if (options.help) {
        std::cout << Usage;
        return 0;
    }
    Tev::Debug::SetSink(std::make_shared<ErrorSink>());
    try {
        return Run(options);
    } catch (std::exception const& e) {
        std::cerr << "tevogl-render: " << e.what() << '\n';
        return 1;
    }
}
