// Texture-font text against FreeType's own rendering of the same font: the
// pixels a string covers and its measures, drawn at a pixel, at a world
// point, with a GLSL program in force, on OSMesa and on GLX in one process;
// fonts that do not load; and no GL object left once the facade goes.
#include "framework/assets/MemoryVolume.h"
#include "ogl/api/OglApi.h"
#include "ogl/device/ContextGL.h"
#include "ogl/device/glx/DeviceGLX.h"
#include "ogl/device/osmesa/ContextOSMesa.h"
#include "ogl/device/osmesa/DeviceOSMesa.h"
#include "ogl/resources/Text.h"
#include "ogl/tgl/Tgl.h"
#include "support/LogCapture.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <GL/glext.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;

constexpr int Width = 72, Height = 28, OriginX = 3, OriginY = 8;
constexpr unsigned PixelSize = 15;
// Descenders, a comma and glyphs whose bitmaps touch their neighbours'.
std::string const Sample = "gT4,jx";
// Where fonts-dejavu-core installs the default font.
std::string const DejaVuSans = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

// FreeType's coverage of each pixel (bottom row first) for Sample with its
// origin at (OriginX, OriginY), and its measures. Glyphs load unhinted from
// outlines, as texture fonts load them; each bitmap sits at the floor of
// pen plus bearing, composited "over" the ones before it as blended quads
// are; the pen moves by the unrounded advance plus the unfitted kerning.
struct FreeTypeText {
    std::vector<int> coverage = std::vector<int>(Width * Height, 0);
    float advance = 0.0f;
    TextBounds bounds{1e9f, 1e9f, -1e9f, -1e9f};
};

FreeTypeText Rasterise() {
    FreeTypeText text;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    EXPECT_FALSE(FT_Init_FreeType(&library) || FT_New_Face(library, DejaVuSans.c_str(), 0, &face) ||
                 FT_Set_Char_Size(face, 0, FT_F26Dot6(PixelSize * 64), 72, 72));
    FT_UInt previous = 0;
    for (char const c : Sample) {
        FT_UInt const index = FT_Get_Char_Index(face, FT_ULong(c));
        FT_Vector kerning{0, 0};
        if (previous) FT_Get_Kerning(face, previous, index, FT_KERNING_UNFITTED, &kerning);
        float const pen = (text.advance += float(kerning.x) / 64.0f);
        FT_BBox box;
        FT_Load_Glyph(face, previous = index, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP), FT_Outline_Get_CBox(&face->glyph->outline, &box);
        text.bounds = {std::min(text.bounds.minX, pen + float(box.xMin) / 64), std::min(text.bounds.minY, float(box.yMin) / 64),
                       std::max(text.bounds.maxX, pen + float(box.xMax) / 64), std::max(text.bounds.maxY, float(box.yMax) / 64)};
        FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL);
        FT_Bitmap const& bitmap = face->glyph->bitmap;
        int const left = int(std::floor(OriginX + pen + float(face->glyph->bitmap_left))), top = OriginY + face->glyph->bitmap_top;
        for (int row = 0; row < int(bitmap.rows); ++row)
            for (int column = 0; column < int(bitmap.width); ++column) {
                int const alpha = bitmap.buffer[row * bitmap.pitch + column];
                int& pixel = text.coverage.at(std::size_t((top - 1 - row) * Width + left + column));
                pixel = alpha + pixel * (255 - alpha) / 255;
            }
        text.advance += float(face->glyph->advance.x) / 64.0f;
    }
    FT_Done_Face(face), FT_Done_FreeType(library);
    return text;
}

FreeTypeText const& Expected() {
    static FreeTypeText const expected = Rasterise();
    return expected;
}

// Empty when the frame holds Sample in pure red as FreeType draws it. Each
// glyph texel lands on exactly one pixel and is sampled at its centre, so
// blending a texel's alpha over black gives back its coverage: llvmpipe
// matches exactly. One step of 255 is left for drivers whose blend rounds
// where llvmpipe's truncates, or whose interpolated texture coordinate
// lands a hair off the texel centre.
std::string Compare(OglApi const& p_gl) {
    std::vector<std::uint32_t> rgba(std::size_t(Width * Height));
    p_gl.ReadPixels(0, 0, Width, Height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    std::string wrong;
    int drawn = 0;
    for (std::size_t i = 0; i < rgba.size(); ++i) {
        int const red = int(rgba[i] & 0xFF), want = Expected().coverage[i];
        drawn += red > 0;
        if (std::abs(red - want) > 1 || (rgba[i] & 0xFFFF00) != 0)
            wrong += "(" + std::to_string(i % Width) + "," + std::to_string(i / Width) + ") " + std::to_string(rgba[i]) + " want red " + std::to_string(want) + "; ";
    }
    return drawn > 40 ? wrong : "nothing drawn; " + wrong;
}

// The names below 64 for which glIs<kind> (p_is) answers true.
std::vector<GLuint> Names(OglApi const& p_gl, char const* p_is) {
    std::vector<GLuint> names;
    for (GLuint name = 1; name < 64; ++name)
        if (reinterpret_cast<GLboolean(TGL_APIENTRY*)(GLuint)>(p_gl.ProcAddress(p_is))(name)) names.push_back(name);
    return names;
}

// A program of the caller's that paints everything green: text showing in
// red proves the text program stood in for it.
class Green final : public Program {
public:
    static Chart::Assets::MemoryVolume Sources() {
        Chart::Assets::MemoryVolume volume;
        volume.Add("green/green.vert.glsl", "void main() { gl_Position = ftransform(); }\n");
        volume.Add("green/green.frag.glsl", "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }\n");
        return volume;
    }

private:
    void Compile(Chart::Utility::WatchedRef<Tgl> const& p_gl, Chart::Assets::Volume const& p_volume) override {
        CompileProgram(p_gl, p_volume, "green", GLSL_1_2);
    }
};

// A facade on the current context, drawing red on black over the frame.
std::unique_ptr<Tgl> Facade(OglApi const& p_gl) {
    auto tgl = std::make_unique<Tgl>(p_gl, DeviceFeatureMask::PermitAll());
    p_gl.Viewport(0, 0, Width, Height), p_gl.ClearColor(0, 0, 0, 1), p_gl.Clear(GL_COLOR_BUFFER_BIT);
    tgl->Color(QColor(255, 0, 0));
    return tgl;
}

class TextOnMesa : public ::testing::Test {
protected:
    ~TextOnMesa() override { _tgl.reset(), _gl.reset(), _context.DoneCurrent(); }

    DeviceOSMesa _device{Width, Height};
    ContextOSMesa _context{_device};
    std::unique_ptr<OglApi> _gl = (_context.MakeCurrent(_device), std::make_unique<OglApi>(ApiMesa));
    std::unique_ptr<Tgl> _tgl = Facade(*_gl);
};

// One frame per way of placing the text, each FreeType's. Around the
// drawing the caller's state stands: no blending, no texture bound, its
// program, modelview and texture unit. The glyph textures and the text
// program go with the facade, and the text that outlived it does nothing.
TEST_F(TextOnMesa, DrawsWhatFreeTypeDrawsWhereverPlacedAndLeavesNothingBehind) {
    Debug::CaptureScope capture;
    auto const text = _tgl->GenFont({}, PixelSize);
    auto const green = _tgl->CompileProgram<Green>(Green::Sources());
    ASSERT_TRUE(text->IsValid() && green->CompileSuccessful()) << LogText(capture);
    TextBounds const box = text->Bounds(Sample), want = Expected().bounds;
    EXPECT_EQ(text->PixelSize(), PixelSize);
    EXPECT_NEAR(text->Advance(Sample), Expected().advance, 1e-3);
    for (auto [got, expected] : {std::pair{box.minX, want.minX}, {box.minY, want.minY}, {box.maxX, want.maxX}, {box.maxY, want.maxY}})
        EXPECT_NEAR(got, expected, 1e-3);

    struct Row { char const* name; std::function<void()> prepare, draw; };
    Row const rows[] = {
        {"at a pixel", [] {}, [&] { text->RenderAtPixel(Sample, {OriginX, OriginY}); }},
        // The modelview scales by 4: the point moves, the glyphs do not grow.
        {"at a world point", [&] { _tgl->Ortho(0, Width, 0, Height, -1, 1), _tgl->Scale({4, 4, 1}); },
         [&] { text->Render(Sample, {OriginX / 4.0, OriginY / 4.0, 0.0}); }},
        {"with a GLSL program in force", [] {}, [&] {
             auto const bound = _tgl->Bind(green);
             text->RenderAtPixel(Sample, {OriginX, OriginY});
             GLint current = 0;
             _gl->GetIntegerv(GL_CURRENT_PROGRAM, &current);
             EXPECT_TRUE(_tgl->ActiveProgram() == green && GLuint(current) == green->Object()->Handle());
         }},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        _gl->Clear(GL_COLOR_BUFFER_BIT), _gl->LoadIdentity(), _tgl->ActiveTexture(GL_TEXTURE2), row.prepare();
        Chart::Types::Matrix4 const modelview = _tgl->GetMatrix(GL_MODELVIEW_MATRIX);
        row.draw();
        EXPECT_EQ(Compare(*_gl), "");
        GLint blend = 1, texture = 1, unit = 0, mode = 0;
        _gl->GetIntegerv(GL_BLEND, &blend), _gl->GetIntegerv(GL_TEXTURE_BINDING_2D, &texture);
        _gl->GetIntegerv(GL_ACTIVE_TEXTURE, &unit), _gl->GetIntegerv(GL_MATRIX_MODE, &mode);
        EXPECT_TRUE(blend == 0 && texture == 0 && unit == GL_TEXTURE2 && _tgl->ActiveTextureUnit() == GL_TEXTURE2 &&
                    mode == GL_MODELVIEW && _tgl->GetMatrix(GL_MODELVIEW_MATRIX) == modelview);
    }
    EXPECT_TRUE(Assertions(capture).empty() && capture.Texts(Debug::Channel::Error).empty()) << LogText(capture);

    EXPECT_FALSE(Names(*_gl, "glIsTexture").empty());
    _tgl.reset();
    EXPECT_TRUE(Names(*_gl, "glIsTexture").empty() && Names(*_gl, "glIsProgram").empty());
    text->RenderAtPixel(Sample, {OriginX, OriginY}), text->Render(Sample, {0, 0, 0});
    EXPECT_TRUE(!text->IsValid() && text->Advance(Sample) == 0.0f);
}

// Each file that does not load is named once; the first that loads wins,
// and a text none loads for draws nothing while the facade draws on.
TEST_F(TextOnMesa, FontsThatDoNotLoadAreNamedAndDrawingGoesOn) {
    std::filesystem::path const notAFont = std::filesystem::temp_directory_path() / ("tevogl-not-a-font-" + std::to_string(getpid()) + ".ttf");
    std::ofstream(notAFont) << "not a font";
    std::string const missing = "missing-font-file.ttf";
    Debug::CaptureScope capture;
    auto const none = _tgl->GenFont({missing, notAFont.string()}, PixelSize);
    auto const fallback = _tgl->GenFont({missing, DejaVuSans}, PixelSize);
    std::filesystem::remove(notAFont);
    std::string const prefix = "Unable to load the font file \"";
    EXPECT_EQ(capture.Texts(Debug::Channel::Error),
              (std::vector<std::string>{prefix + missing + "\" (no such file)", prefix + notAFont.string() + "\" (not a font FreeType can read)",
                                        prefix + missing + "\" (no such file)"}));
    none->RenderAtPixel(Sample, {OriginX, OriginY}), none->Render(Sample, {0, 0, 0});
    EXPECT_TRUE(!none->IsValid() && none->Advance(Sample) == 0.0f && none->Bounds(Sample).maxX == 0.0f && fallback->IsValid());
    fallback->RenderAtPixel(Sample, {OriginX, OriginY});
    EXPECT_EQ(Compare(*_gl), "");
    EXPECT_TRUE(Assertions(capture).empty()) << LogText(capture);
}

// The system GL's FTGL and the Mesa namespace's each draw into their own
// context, in turns, in one process.
using TextOnGlxAndMesa = XServerTest;

TEST_F(TextOnGlxAndMesa, BothImplementationsDrawTextInOneProcess) {
    int const id = Find([](int, Descriptor const& p_d) { return (p_d.dwFlags & Pfd::DoubleBuffer) && !(p_d.dwFlags & Pfd::GenericFormat); });
    ASSERT_NE(id, 0);
    DeviceGLX const glxDevice(*_system, Width, Height, _display.Handle(), DeviceFormat::GetDeviceFormat(*_system, _display, unsigned(id)));
    ContextGL glxContext(glxDevice, *_system, DeviceFormatRequest{});
    DeviceOSMesa const mesaDevice(Width, Height);
    ContextOSMesa mesaContext(mesaDevice);
    struct Side { bool system; std::function<void()> makeCurrent; std::unique_ptr<OglApi> gl; std::unique_ptr<Tgl> tgl; boost::shared_ptr<Text> text; };
    Side sides[] = {{true, [&] { glxContext.MakeCurrent(glxDevice); }, nullptr, nullptr, nullptr},
                    {false, [&] { mesaContext.MakeCurrent(mesaDevice); }, nullptr, nullptr, nullptr}};
    for (int turn = 0; turn < 4; ++turn) {
        Side& side = sides[turn % 2];
        SCOPED_TRACE(side.system ? "GLX" : "OSMesa");
        side.makeCurrent();
        if (!side.gl) side.gl = side.system ? std::make_unique<OglApi>(ApiSystem) : std::make_unique<OglApi>(ApiMesa);
        if (!side.tgl) side.tgl = Facade(*side.gl), side.text = side.tgl->GenFont({}, PixelSize);
        side.gl->Clear(GL_COLOR_BUFFER_BIT), side.text->RenderAtPixel(Sample, {OriginX, OriginY});
        EXPECT_EQ(Compare(*side.gl), "");
    }
    for (Side& side : sides) side.makeCurrent(), side.text.reset(), side.tgl.reset(), side.gl.reset();
    glxContext.DoneCurrent();
}

}  // namespace
}  // namespace Tev::Test
