// How the format chooser judges one pixel format: the tests that rule a
// format out for a request, and the scores that rank two formats that both
// pass.
#pragma once

#include "ogl/device/DeviceFormat.h"

namespace Tev::Chart::Ogl::Detail {

// A test that rules a candidate out; the name says what it checks.
struct FormatRejection {
    char const* name;
    bool (*rejects)(DeviceFormat const& p_candidate, DeviceFormatRequest const& p_request);
};

// The name of the first test the candidate fails, in the fixed order of
// the tests, or null when it fits the request.
char const* FirstRejection(DeviceFormat const& p_candidate, DeviceFormatRequest const& p_request);

// How much better (positive) or worse (negative) a candidate is than the
// best format so far, one signed score per preference.
struct FormatScores {
    int acceleration = 0;
    int swap = 0;
    int doubleBuffer = 0;
    int green = 0;  // stands for the colour depth
    int alpha = 0;
    int depth = 0;
    int stencil = 0;

    static FormatScores Compare(DeviceFormat const& p_candidate, DeviceFormat const& p_best,
                                DeviceFormatRequest const& p_request);

    // Whether the candidate takes the place of p_best. Earlier formats win
    // ties; a loss in acceleration, swap or buffering is accepted only for a
    // gain that lifts the best above a shallow depth, stencil, colour or
    // alpha buffer.
    bool Replaces(DeviceFormat const& p_best) const;
};

}  // namespace Tev::Chart::Ogl::Detail
