// Picking against the driver on one OSMesa context: seeded scenes of named
// quads and triangles at random depths (some with sub-names, some replaced
// sub-names, some outside the pick region, many overlapping) are picked
// through HitDetect, drawing with the facade's Begin/End, and through plain
// GL selection calls with the driver's own immediate mode. The records must
// be the same, in GL's order, with equal depths. Then the overflow, the
// range checks and the record texts.
#include "ogl/api/OglApi.h"
#include "ogl/picking/HitDetect.h"
#include "ogl/tgl/Tgl.h"
#include "support/Golden.h"
#include "support/OSMesaFixture.h"

#include <GL/gl.h>

#include <random>
#include <sstream>

namespace Tev::Test {
namespace {

using namespace Chart::Ogl;
using Chart::Types::Viewport;

struct Shape {
    std::uint32_t name;
    std::vector<std::uint32_t> subnames;  // each loaded in turn; the last one counts
    bool quad;
    double z;
    std::array<double, 8> xy;
};

struct Scene {
    std::vector<Shape> shapes;
    int x, y, size;  // the pick region's centre and side
};

Scene Generate(std::mt19937& p_random) {
    auto const real = [&](double p_low, double p_high) { return std::uniform_real_distribution<double>(p_low, p_high)(p_random); };
    Scene scene{{}, int(p_random() % 32), int(p_random() % 32), 2 + int(p_random() % 10)};
    std::size_t const count = 3 + p_random() % 12;
    for (std::size_t i = 0; i < count; ++i) {
        Shape s{std::uint32_t(p_random() % 5 == 0 ? 0xFFFFFFFFu : p_random() % 1000), {}, p_random() % 2 == 0, real(-0.9, 0.9), {}};
        for (std::size_t n = p_random() % 3; n-- > 0;) s.subnames.push_back(std::uint32_t(p_random() % 100));
        double const cx = real(-1.2, 1.2), cy = real(-1.2, 1.2);
        for (std::size_t k = 0; k < 8; ++k) s.xy[k] = (k % 2 ? cy : cx) + real(-0.6, 0.6);
        scene.shapes.push_back(s);
    }
    return scene;
}

Chart::Types::Matrix4 const Projection = [] {
    double const ortho[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};  // glOrtho(-1, 1, -1, 1, -1, 1)
    return Chart::Types::Matrix4::FromColumnMajor(ortho);
}();

class PickingOracle : public OSMesaFixture {
protected:
    std::vector<HitRecord> ThroughHitDetect(Scene const& p_scene, unsigned p_capacity = 64) {
        HitBuffer buffer(p_capacity);
        Chart::Utility::Scoped<Tgl> scope(*_tgl);
        {
            HitDetect pass(*_tgl, Viewport(0, 0, Width, Height), Projection, {p_scene.x, p_scene.y}, {p_scene.size, p_scene.size}, buffer);
            for (Shape const& s : p_scene.shapes) {
                s.name == 0xFFFFFFFFu ? pass.ResetName() : pass.LoadName(s.name);
                for (std::uint32_t subname : s.subnames) pass.LoadSubName(subname);
                _tgl->Begin(s.quad ? GL_QUADS : GL_TRIANGLES);
                for (std::size_t k = 0; k < (s.quad ? 8u : 6u); k += 2) _tgl->Vertex(s.xy[k], s.xy[k + 1], s.z);
                _tgl->End();
                if (!s.subnames.empty()) pass.PopSubName();
            }
        }
        return buffer.Records();
    }

    // The same pass in plain GL, and its buffer read by a reader of the
    // test's own.
    std::vector<HitRecord> ThroughDriver(Scene const& p_scene) const {
        std::vector<GLuint> words(64 * 5);
        GLint viewport[4] = {0, 0, Width, Height};
        _gl->SelectBuffer(GLsizei(words.size()), words.data()), _gl->InitNames();
        _gl->MatrixMode(GL_PROJECTION), _gl->PushMatrix(), _gl->LoadIdentity();
        _gl->GluPickMatrix(p_scene.x, p_scene.y, p_scene.size, p_scene.size, viewport);
        _gl->MultMatrixd(Projection.Data());
        _gl->MatrixMode(GL_MODELVIEW), _gl->RenderMode(GL_SELECT), _gl->PushName(0xFFFFFFFFu);
        for (Shape const& s : p_scene.shapes) {
            _gl->LoadName(s.name);
            if (!s.subnames.empty()) _gl->PushName(0);
            for (std::uint32_t subname : s.subnames) _gl->LoadName(subname);
            _gl->Begin(s.quad ? GL_QUADS : GL_TRIANGLES);
            for (std::size_t k = 0; k < (s.quad ? 8u : 6u); k += 2) _gl->Vertex3d(s.xy[k], s.xy[k + 1], s.z);
            _gl->End();
            if (!s.subnames.empty()) _gl->PopName();
        }
        _gl->PopName();
        GLint const hits = _gl->RenderMode(GL_RENDER);
        _gl->MatrixMode(GL_PROJECTION), _gl->PopMatrix(), _gl->MatrixMode(GL_MODELVIEW);
        std::vector<HitRecord> records;
        for (GLint h = 0, at = 0; h < hits; ++h, at += 3 + GLint(words[std::size_t(at)])) {
            auto const word = [&](int p_offset) { return words[std::size_t(at + p_offset)]; };
            records.emplace_back(word(3), word(0) == 2 ? word(4) : HitRecord::NameInvalid, word(1) / 4294967295.0);
        }
        return records;
    }

    std::unique_ptr<Tgl> _tgl = std::make_unique<Tgl>(*_gl, DeviceFeatureMask::PermitAll());
};

std::string Text(std::vector<HitRecord> const& p_records) {
    std::ostringstream os;
    for (HitRecord const& r : p_records) os << r << "; ";
    return os.str();
}

TEST_F(PickingOracle, RecordsAreTheDriversInOrderWithTheirDepths) {
    std::size_t hits = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        std::mt19937 random(seed);
        Scene const scene = Generate(random);
        auto const expected = ThroughDriver(scene);
        auto const got = ThroughHitDetect(scene);
        hits += expected.size();
        ASSERT_EQ(Text(got), Text(expected)) << "seed " << seed;
        ASSERT_TRUE(std::equal(got.begin(), got.end(), expected.begin(), expected.end(), HitRecord::CompareByFields)) << "seed " << seed;
    }
    EXPECT_GT(hits, 150u);
}

// Two hits in a buffer of one: the warning when the pass closes, the
// exception at the first count only. A name beyond 32 bits, a sub-name
// popped that was never pushed, an empty pass, the record texts and the
// automatic names.
TEST_F(PickingOracle, OverflowRangeChecksAndTexts) {
    Scene two{{{5, {}, true, 0.0, {-1, -1, 1, -1, 1, 1, -1, 1}}, {6, {}, true, 0.5, {-1, -1, 1, -1, 1, 1, -1, 1}}}, 16, 16, 4};
    Debug::CaptureScope log;
    HitBuffer small(1);
    {
        Chart::Utility::Scoped<Tgl> scope(*_tgl);
        HitDetect pass(*_tgl, Viewport(0, 0, Width, Height), Projection, {16, 16}, {4, 4}, small);
        for (Shape const& s : two.shapes) {
            pass.LoadName(s.name);
            _tgl->Begin(GL_QUADS);
            for (std::size_t k = 0; k < 8; k += 2) _tgl->Vertex(s.xy[k], s.xy[k + 1], s.z);
            _tgl->End();
        }
    }
    EXPECT_THROW(
        try { small.Count(); } catch (HitBuffer::OverflowError const& e) {
            EXPECT_STREQ(e.what(), "The name buffer is too small to handle all the hit!");
            throw;
        },
        HitBuffer::OverflowError);
    EXPECT_EQ(small.Count(), 1u);
    EXPECT_THROW(HitBuffer(2).Count(), HitBuffer::OverflowError);  // no pass has filled it

    HitBuffer empty(4);
    {
        Chart::Utility::Scoped<Tgl> scope(*_tgl);
        HitDetect pass(*_tgl, Viewport(0, 0, Width, Height), Projection, {16, 16}, {4, 4}, empty);
        pass.LoadName(0x100000000ull), pass.LoadSubName(0x100000001ull), pass.PopSubName(), pass.PopSubName();
        _tgl->PushName(0);  // the slot the second pop took
        AutoNameLoader names(pass, 1);
        std::uint64_t const first = names.Next();
        names.Reset();
        EXPECT_EQ(first + 1, names.Next());
    }
    EXPECT_EQ(empty.Count(), 0u);
    EXPECT_TRUE(empty.Records().empty());
    std::ostringstream records;
    records << HitRecord(7, 0.5) << "; " << HitRecord(7, 2, 0.25) << "; " << HitRecord::CatchAll();
    for (auto const& e : log.Entries())
        if (e.channel == Debug::Channel::Error || e.channel == Debug::Channel::Assert) records << '\n' << e.text;
    EXPECT_TRUE(MatchesGolden("render/picking-misuse.txt", records.str() + "\n"));
}

}  // namespace
}  // namespace Tev::Test
