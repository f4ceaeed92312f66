#include "framework/utility/Environment.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace Tev::Chart::Utility::Environment {

namespace {

// The variable's value, or none when it is unset.
boost::optional<std::string> Read(char const* p_name) {
    char const* value = std::getenv(p_name);
    if (!value) return boost::none;
    return std::string(value);
}

boost::optional<unsigned long> ReadNumber(char const* p_name) {
    auto const text = Read(p_name);
    if (!text || text->empty()) return boost::none;
    char* end = nullptr;
    unsigned long const value = std::strtoul(text->c_str(), &end, 10);
    if (*end != '\0' || text->front() == '-') return boost::none;
    return value;
}

}  // namespace

int FrameworkDevelopment() {
    auto const value = ReadNumber("TEVOS_FRAMEWORK_DEVELOPMENT");
    return value ? static_cast<int>(std::min(*value, 1000ul)) : 0;
}

boost::optional<unsigned> ForcePixelFormat() {
    auto const value = ReadNumber("TEVOS_FORCE_PIXEL_FORMAT");
    if (!value || *value == 0 || *value > 0xFFFFFFFFul) return boost::none;
    return static_cast<unsigned>(*value);
}

bool UseSystemDeviceFormat() {
    auto text = Read("TEVOS_USE_SYSTEM_DEVICE_FORMAT");
    if (!text) return false;
    std::transform(text->begin(), text->end(), text->begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return !(text->empty() || *text == "0" || *text == "false" || *text == "no" || *text == "off");
}

}  // namespace Tev::Chart::Utility::Environment
