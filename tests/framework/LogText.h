// What a capture scope holds, as text for golden files: one entry a line,
// "channel [category]: text", with the text as written.
#pragma once

#include "framework/debug/Debug.h"

#include <string>

namespace Tev::Test {

inline std::string LogText(Debug::CaptureScope const& p_capture) {
    std::string text;
    for (auto const& e : p_capture.Entries())
        text += Debug::ChannelName(e.channel) + (e.category.empty() ? "" : " [" + e.category + "]") + ": " + e.text + "\n";
    return text;
}

}  // namespace Tev::Test
