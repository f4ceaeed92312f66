#include "ogl/shaders/GLSLIncludeExpander.h"

#include "framework/debug/Debug.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/regex.hpp>

#include <sstream>

namespace Tev::Chart::Ogl {

namespace {

std::vector<std::string> ReadLines(std::istream& p_stream) {
    std::vector<std::string> lines;
    for (std::string line; std::getline(p_stream, line);) lines.push_back(std::move(line));
    return lines;
}

}  // namespace

std::string ParseIncludeMacro(std::string const& p_line) {
    using boost::algorithm::ends_with;
    using boost::algorithm::starts_with;
    // Perl syntax, searched anywhere in the line. The capture is greedy: the
    // path runs to the last ")" of the line, whatever stands between.
    static boost::regex const directive(R"(#\s*pragma\s+include)", boost::regex::perl);
    static boost::regex const withPath(R"(#\s*pragma\s+include\s*\((.*)\))", boost::regex::perl);

    std::string const line = boost::algorithm::trim_copy(p_line);
    if (!boost::regex_search(line, directive)) return {};
    boost::smatch match;
    bool const parsed = boost::regex_search(line, match, withPath);
    if (!parsed)
        Debug::dlog("GLSL") << "ERROR: Failed to parse include path from include macro. Format should be: "
                               "#pragma include(\"path/to/file.glsl\")";
    if (!ensure(parsed)) return {};
    ensure(match.size() == 2);
    std::string const path = boost::algorithm::trim_copy(match[1].str());
    ensure(!path.empty() && "ERROR: Empty include path provided for #pragma include.");
    ensure(starts_with(path, "\"") && "ERROR: Expected \" after: #pragma include(");
    ensure(ends_with(path, "\"") && "ERROR: No matching \" after: #pragma include(\"");
    // Dropping both ends of a path shorter than two characters would run
    // past its start: such a path names nothing.
    if (path.size() < 2) return {};
    return path.substr(1, path.size() - 2);
}

GLSLIncludeExpander::GLSLIncludeExpander(Assets::Volume const& p_volume,
                                         std::vector<Assets::AssetPath> const& p_includePaths,
                                         std::set<Utility::HashedString>& p_included, std::vector<std::string>& p_lines,
                                         SourceOriginTable& p_origins)
    : _volume(p_volume), _includePaths(p_includePaths), _included(p_included), _lines(p_lines), _origins(p_origins) {}

void GLSLIncludeExpander::Append(Assets::AssetPath const& p_file) {
    Expand(p_file, 0, _origins.EnterFile(p_file, SourceOriginTable::NoFrame, 0));
}

void GLSLIncludeExpander::Expand(Assets::AssetPath const& p_source, std::size_t p_depth, std::size_t p_frame) {
    // The expander holds the volume as a member; the report names it as the
    // parameter it is to callers.
    ensure_as(_volume.Exists(p_source), "p_volume.Exists( p_source )");
    std::vector<std::string> const lines = ReadLines(*_volume.Open(p_source));
    _lines.reserve(_lines.size() + lines.size());
    std::string const indent(2 * p_depth, ' ');
    Debug::dlog("GLSL") << indent << "PARSE: " << p_source.str();

    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string const target = ParseIncludeMacro(lines[i]);
        if (target.empty())
            Emit(lines[i] + "\n", SourceOrigin::File, p_frame, i + 1);
        else
            ExpandInclude(lines[i], target, indent, p_depth, p_frame, i + 1);
    }
}

void GLSLIncludeExpander::ExpandInclude(std::string const& p_line, std::string const& p_target,
                                        std::string const& p_indent, std::size_t p_depth, std::size_t p_frame,
                                        std::size_t p_lineNumber) {
    boost::optional<Assets::AssetPath> const resolved = Resolve(p_target);
    if (!resolved) {
        ReportUnresolved(p_target);
        ensure(resolved);
        // Nothing to expand: the directive is dropped and the file goes on.
        return;
    }
    Debug::dlog("GLSL") << p_indent << "INCLUDE: " << p_target << " -> resolved as: " << resolved->str();
    if (!_included.insert(Utility::HashedString(resolved->str())).second) {
        Emit("// Already included above: " + p_line + "\n", SourceOrigin::Directive, p_frame, p_lineNumber);
        return;
    }
    Emit("// Expanded: " + p_line + "\n", SourceOrigin::Directive, p_frame, p_lineNumber);
    Emit("// Resolved as: " + resolved->str() + "\n", SourceOrigin::Directive, p_frame, p_lineNumber);
    Expand(*resolved, p_depth + 1, _origins.EnterFile(*resolved, p_frame, p_lineNumber));
}

boost::optional<Assets::AssetPath> GLSLIncludeExpander::Resolve(std::string const& p_target) const {
    for (auto const& includePath : _includePaths) {
        Assets::AssetPath candidate = includePath + Assets::AssetPath(p_target);
        if (_volume.Exists(candidate)) return candidate;
    }
    return boost::none;
}

void GLSLIncludeExpander::ReportUnresolved(std::string const& p_target) const {
    Debug::dbgostream log = Debug::dlog("GLSL");
    log << "ERROR: Cannot resolve path for include macro path: " << p_target << "\nNot found within include paths:";
    for (auto const& includePath : _includePaths) log << "\n  " << includePath.str();
}

void GLSLIncludeExpander::Emit(std::string p_text, SourceOrigin::Kind p_kind, std::size_t p_frame,
                               std::size_t p_lineNumber) {
    _lines.push_back(std::move(p_text));
    _origins.Add(p_kind, p_frame, p_lineNumber);
}

}  // namespace Tev::Chart::Ogl
