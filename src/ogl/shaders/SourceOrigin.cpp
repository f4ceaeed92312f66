#include "ogl/shaders/SourceOrigin.h"

#include <sstream>

namespace Tev::Chart::Ogl {

namespace {

std::ostream& operator<<(std::ostream& p_os, SourceLocation const& p_location) {
    return p_os << p_location.file.str() << ':' << p_location.line;
}

}  // namespace

std::string SourceOrigin::Describe() const {
    std::ostringstream text;
    switch (kind) {
    case File:
    case Directive:
        text << "in " << location;
        for (auto const& directive : includedFrom) text << ", included from " << directive;
        break;
    case Text: text << "in appended text:" << location.line; break;
    case Generated: text << "in generated code"; break;
    default: text << "in no known source"; break;
    }
    return text.str();
}

std::ostream& operator<<(std::ostream& p_os, SourceOrigin const& p_origin) { return p_os << p_origin.Describe(); }

std::size_t SourceOriginTable::EnterFile(Assets::AssetPath const& p_file, std::size_t p_parent, std::size_t p_line) {
    _frames.push_back({p_file, p_parent, p_line});
    return _frames.size() - 1;
}

void SourceOriginTable::Add(SourceOrigin::Kind p_kind, std::size_t p_frame, std::size_t p_line) {
    _records.push_back({p_kind, p_frame, p_line});
}

SourceOrigin SourceOriginTable::Origin(std::size_t p_index) const {
    if (p_index >= _records.size()) return {};
    Record const& record = _records[p_index];
    SourceOrigin origin{record.kind, {{}, record.line}, {}};
    if (record.frame == NoFrame) return origin;
    origin.location.file = _frames[record.frame].file;
    for (std::size_t frame = record.frame; _frames[frame].parent != NoFrame; frame = _frames[frame].parent) {
        Frame const& parent = _frames[_frames[frame].parent];
        origin.includedFrom.push_back({parent.file, _frames[frame].line});
    }
    return origin;
}

}  // namespace Tev::Chart::Ogl
