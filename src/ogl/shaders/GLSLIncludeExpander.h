// Include expansion for GLSL template files: a line
//     #pragma include("path/to/file.glsl")
// is replaced by the file it names, found through a list of include paths,
// and each file is pulled in at most once into one line list.
#pragma once

#include "framework/assets/AssetPath.h"
#include "framework/assets/Volume.h"
#include "framework/utility/HashedString.h"
#include "ogl/api/Export.h"
#include "ogl/shaders/SourceOrigin.h"

#include <boost/optional.hpp>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

// The path an include directive on p_line names, without its quotes; empty
// for a line that is no include directive. A line that starts one but
// cannot be parsed is reported and also gives an empty path.
TEVOGL_API std::string ParseIncludeMacro(std::string const& p_line);

class GLSLIncludeExpander {
public:
    // Lines go to the end of p_lines (each with its "\n") and their origins
    // to p_origins; p_included collects the resolved path of every file an
    // include pulled in. All must outlive the expander.
    GLSLIncludeExpander(Assets::Volume const& p_volume, std::vector<Assets::AssetPath> const& p_includePaths,
                        std::set<Utility::HashedString>& p_included, std::vector<std::string>& p_lines,
                        SourceOriginTable& p_origins);

    // Adds p_file with its includes expanded. The file itself is not
    // recorded as included: a file that includes it gets it once more.
    void Append(Assets::AssetPath const& p_file);

private:
    void Expand(Assets::AssetPath const& p_source, std::size_t p_depth, std::size_t p_frame);
    void ExpandInclude(std::string const& p_line, std::string const& p_target, std::string const& p_indent,
                       std::size_t p_depth, std::size_t p_frame, std::size_t p_lineNumber);
    // The first include path under which p_target exists.
    boost::optional<Assets::AssetPath> Resolve(std::string const& p_target) const;
    void ReportUnresolved(std::string const& p_target) const;
    void Emit(std::string p_text, SourceOrigin::Kind p_kind, std::size_t p_frame, std::size_t p_lineNumber);

    Assets::Volume const& _volume;
    std::vector<Assets::AssetPath> const& _includePaths;
    std::set<Utility::HashedString>& _included;
    std::vector<std::string>& _lines;
    SourceOriginTable& _origins;
};

}  // namespace Tev::Chart::Ogl
