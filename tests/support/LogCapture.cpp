#include "support/LogCapture.h"

namespace Tev::Test {

std::vector<std::string> Assertions(Debug::CaptureScope const& p_capture) {
    return p_capture.Texts(Debug::Channel::Assert);
}

bool HasAssertion(Debug::CaptureScope const& p_capture, std::string const& p_condition) {
    std::string const prefix = "\"" + p_condition + "\" - ";
    for (auto const& text : Assertions(p_capture))
        if (text.compare(0, prefix.size(), prefix) == 0) return true;
    return false;
}

std::string LogText(Debug::CaptureScope const& p_capture) {
    std::string text;
    for (auto const& e : p_capture.Entries())
        text += Debug::ChannelName(e.channel) + (e.category.empty() ? "" : " [" + e.category + "]") + ": " + e.text + "\n";
    return text;
}

}  // namespace Tev::Test
