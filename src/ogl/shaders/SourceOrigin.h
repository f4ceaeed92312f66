// Where the lines of an assembled shader came from. A driver's compile log
// names lines of the text it was given; shader authors need the template
// file and line behind them, and the chain of includes that pulled that
// file in.
#pragma once

#include "framework/assets/AssetPath.h"
#include "ogl/api/Export.h"

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace Tev::Chart::Ogl {

// A line of a file, counted from 1.
struct SourceLocation {
    Assets::AssetPath file;
    std::size_t line = 0;

    friend bool operator==(SourceLocation const&, SourceLocation const&) = default;
};

class TEVOGL_API SourceOrigin {
public:
    enum Kind : int {
        Unknown,    // not a line of the assembled text
        File,       // copied from a file
        Directive,  // a comment written in place of a file's include directive
        Text,       // from a text appended as it is
        Generated,  // written by the builder itself
    };

    Kind kind = Unknown;
    // The file and its line for File and Directive; for Text only the line,
    // counted within the appended text.
    SourceLocation location;
    // The include directives that led to location.file, innermost first.
    std::vector<SourceLocation> includedFrom;

    // "in D/N.frag.glsl:12, included from D/N.vert.glsl:3".
    std::string Describe() const;

    friend bool operator==(SourceOrigin const&, SourceOrigin const&) = default;
};

TEVOGL_API std::ostream& operator<<(std::ostream& p_os, SourceOrigin const& p_origin);

// The origins of a line list, one record a line, kept beside the lines.
// Each expansion of a file is a frame that remembers the directive which
// caused it, so a record needs only its frame and line and the include
// chain is rebuilt on demand.
class SourceOriginTable {
public:
    static constexpr std::size_t NoFrame = std::numeric_limits<std::size_t>::max();

    // A frame for the lines of p_file; p_parent and p_line give the frame
    // and line of the directive that included it, NoFrame for a file that
    // was appended itself.
    std::size_t EnterFile(Assets::AssetPath const& p_file, std::size_t p_parent, std::size_t p_line);
    // The origin of the next line: p_frame is NoFrame for Text and Generated.
    void Add(SourceOrigin::Kind p_kind, std::size_t p_frame, std::size_t p_line);

    std::size_t Count() const { return _records.size(); }
    // Unknown past the end.
    SourceOrigin Origin(std::size_t p_index) const;

private:
    struct Frame {
        Assets::AssetPath file;
        std::size_t parent;
        std::size_t line;
    };
    struct Record {
        SourceOrigin::Kind kind;
        std::size_t frame;
        std::size_t line;
    };

    std::vector<Frame> _frames;
    std::vector<Record> _records;
};

}  // namespace Tev::Chart::Ogl
