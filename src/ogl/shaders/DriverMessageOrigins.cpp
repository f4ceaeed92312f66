#include "ogl/shaders/DriverMessageOrigins.h"

#include "ogl/shaders/GLSLShaderBuilder.h"

#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/classification.hpp>
#include <boost/regex.hpp>

namespace Tev::Chart::Ogl {

std::vector<std::string> TraceDriverMessages(std::string const& p_log, GLSLShaderBuilder const& p_builder,
                                             std::size_t p_linesBefore) {
    // Source string number, then the line either after a colon or in
    // parentheses; nine digits at most, so that the number always fits.
    static boost::regex const located(R"(^\s*(?:(?:ERROR|WARNING):\s*)?\d+(?::(\d{1,9})|\((\d{1,9})\)))");
    std::vector<std::string> messages, traced;
    boost::split(messages, p_log, boost::is_any_of("\n"));
    for (std::string const& message : messages) {
        boost::smatch match;
        if (!boost::regex_search(message, match, located)) continue;
        std::size_t const line = std::stoul(match[1].matched ? match[1].str() : match[2].str());
        // Line 0 is what drivers give a message about the whole stage.
        if (line == 0) continue;
        traced.push_back(message + " (" + p_builder.ShaderLineOrigin(line, p_linesBefore).Describe() + ")");
    }
    return traced;
}

}  // namespace Tev::Chart::Ogl
