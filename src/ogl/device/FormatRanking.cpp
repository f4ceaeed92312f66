#include "ogl/device/FormatRanking.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace Tev::Chart::Ogl::Detail {

namespace {

using Format = DeviceFormat;
using Request = DeviceFormatRequest;

bool IsWindowRequest(Request const& p_request) { return p_request.devices == Request::Window; }
bool IsSoftwareRequest(Request const& p_request) { return p_request.acceleration == Request::Software; }
bool Supports(Format const& p_format, Format::DeviceType p_type) {
    return (p_format.supportedDevices & Format::DeviceBit(p_type)) != 0;
}
bool InRange(std::uint32_t p_bits, std::uint32_t p_low, std::uint32_t p_high) {
    return p_bits >= p_low && p_bits <= p_high;
}

// The Mesa implementation's formats are all generic (MCD) ones and may lack
// alpha; the system's generic formats are Microsoft's slow software
// renderer, which is never wanted when a vendor driver is there.
constexpr std::array<FormatRejection, 10> Rejections{{
    {"no RGBA OpenGL main plane",
     [](Format const& f, Request const&) { return !f.openGL || f.pixelType != Format::RGBA || f.layerPlane != 0; }},
    {"cannot draw to a window",
     [](Format const& f, Request const& r) { return IsWindowRequest(r) && !Supports(f, Format::Window); }},
    {"generic system format",
     [](Format const& f, Request const&) { return !f.mesaSoftware && f.driverModel == Format::MCD; }},
    {"cannot draw off-screen",
     [](Format const& f, Request const& r) {
         return !IsWindowRequest(r) && !Supports(f, IsSoftwareRequest(r) ? Format::Bitmap : Format::Pbuffer);
     }},
    {"system format without a vendor driver",
     [](Format const& f, Request const&) { return !f.mesaSoftware && f.driverModel != Format::ICD; }},
    {"single-buffered",
     [](Format const& f, Request const& r) { return r.doubleBuffered && !f.doubleBuffered; }},
    {"colour channels not 5 to 8 bits",
     [](Format const& f, Request const&) {
         return !InRange(f.redBits, 5, 8) || !InRange(f.greenBits, 5, 8) || !InRange(f.blueBits, 5, 8);
     }},
    {"system alpha not 5 to 8 bits",
     [](Format const& f, Request const&) { return !f.mesaSoftware && !InRange(f.alphaBits, 5, 8); }},
    {"depth buffer below 8 bits",
     [](Format const& f, Request const& r) { return r.depthBuffer && f.depthBits < 8; }},
    {"stencil buffer below 4 bits",
     [](Format const& f, Request const& r) { return r.stencilBuffer && f.stencilBits < 4; }},
}};

int Sign(bool p_gain) { return p_gain ? 1 : -1; }
int Difference(std::uint32_t p_candidate, std::uint32_t p_best) {
    return static_cast<int>(p_candidate) - static_cast<int>(p_best);
}
// Without a request for the buffer, having none is better than having one.
int BufferScore(bool p_requested, std::uint32_t p_candidate, std::uint32_t p_best) {
    return p_requested ? Difference(p_candidate, p_best) : Sign(p_candidate == 0);
}

}  // namespace

char const* FirstRejection(DeviceFormat const& p_candidate, DeviceFormatRequest const& p_request) {
    auto const failed = std::find_if(Rejections.begin(), Rejections.end(), [&](FormatRejection const& p_test) {
        return p_test.rejects(p_candidate, p_request);
    });
    return failed == Rejections.end() ? nullptr : failed->name;
}

FormatScores FormatScores::Compare(DeviceFormat const& p_candidate, DeviceFormat const& p_best,
                                   DeviceFormatRequest const& p_request) {
    FormatScores scores;
    if (!IsSoftwareRequest(p_request) && p_candidate.accelerated != p_best.accelerated)
        scores.acceleration = Sign(p_candidate.accelerated);
    if (p_candidate.swapType != p_best.swapType) scores.swap = Sign(p_candidate.swapType == Format::Exchange);
    if (p_candidate.doubleBuffered != p_best.doubleBuffered)
        scores.doubleBuffer = Sign(p_candidate.doubleBuffered == p_request.doubleBuffered);
    scores.green = Difference(p_candidate.greenBits, p_best.greenBits);
    scores.alpha = Difference(p_candidate.alphaBits, p_best.alphaBits);
    scores.depth = BufferScore(p_request.depthBuffer, p_candidate.depthBits, p_best.depthBits);
    scores.stencil = BufferScore(p_request.stencilBuffer, p_candidate.stencilBits, p_best.stencilBits);
    return scores;
}

bool FormatScores::Replaces(DeviceFormat const& p_best) const {
    auto const all = {acceleration, swap, doubleBuffer, green, alpha, depth, stencil};
    auto const bits = {green, alpha, depth, stencil};
    auto const positive = [](int p_score) { return p_score > 0; };
    auto const negative = [](int p_score) { return p_score < 0; };
    if (std::none_of(all.begin(), all.end(), positive)) return false;
    if (std::none_of(all.begin(), all.end(), negative)) return true;
    if (std::any_of(bits.begin(), bits.end(), negative)) return false;
    return (depth > 0 && p_best.depthBits < 24) || (stencil > 0 && p_best.stencilBits < 8) ||
           (green > 0 && p_best.greenBits < 8) || (alpha > 0 && p_best.alphaBits < 8);
}

}  // namespace Tev::Chart::Ogl::Detail
