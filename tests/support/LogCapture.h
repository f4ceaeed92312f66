// Test helpers over the capturing log sink.
#pragma once

#include "framework/debug/Debug.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Tev::Test {

// The texts of the failed checks logged while the scope was installed, each
// in the logger's form "\"condition\" - signature".
inline std::vector<std::string> Assertions(Debug::CaptureScope const& p_capture) {
    return p_capture.Texts(Debug::Channel::Assert);
}

// True when a failed check with exactly this condition text was logged,
// whatever the function signature after it.
inline bool HasAssertion(Debug::CaptureScope const& p_capture, std::string const& p_condition) {
    auto const texts = Assertions(p_capture);
    return std::any_of(texts.begin(), texts.end(), [&](std::string const& t) { return t.rfind("\"" + p_condition + "\" - ", 0) == 0; });
}

// Everything the scope holds, for golden files: one entry a line,
// "channel [category]: text", with the text as written.
inline std::string LogText(Debug::CaptureScope const& p_capture) {
    std::string text;
    for (auto const& e : p_capture.Entries())
        text += Debug::ChannelName(e.channel) + (e.category.empty() ? "" : " [" + e.category + "]") + ": " + e.text + "\n";
    return text;
}

}  // namespace Tev::Test
