#include "ogl/picking/HitBuffer.h"

#include "framework/debug/Debug.h"

namespace Tev::Chart::Ogl {

namespace {

// Words of a record: name count, minimum depth, maximum depth, names.
enum Word { NameCount = 0, MinDepth, MaxDepth, Names };

// Walks the records of a selection buffer. The bound for entering a record
// is deliberately computed from the name count of the record being left.
class RecordWalker {
public:
    explicit RecordWalker(std::vector<std::uint32_t> const& p_words) : _words(p_words) {}

    bool Move() {
        std::size_t const size = _words.size();
        if (_next >= size) return false;
        std::uint32_t const leaving = _words[_current + NameCount];
        if (_next + Names + leaving > size || leaving == 0 || _words[_next + NameCount] == 0) return false;
        _current = _next;
        _next = _current + Names + _words[_current + NameCount];
        ensure_as(_words[_current + NameCount] <= 2, "_current[NameCount] <= 2");
        return true;
    }

    std::uint32_t Word(std::size_t p_offset) const { return _words[_current + p_offset]; }
    // A name beyond the buffer (the bound above lets the entered record run
    // past it) reads as no name rather than past the end.
    std::uint64_t Name(std::size_t p_index) const {
        std::size_t const at = _current + Names + p_index;
        return at < _words.size() ? _words[at] : HitRecord::NameInvalid;
    }

private:
    std::vector<std::uint32_t> const& _words;
    std::size_t _current = 0;
    std::size_t _next = 0;
};

}  // namespace

HitBuffer::HitBuffer(unsigned int p_capacity) : _buffer(std::size_t(p_capacity) * 5, 0u) {}

unsigned int HitBuffer::Count() const {
    if (!_counted && _count != 0) {
        std::int32_t const returned = _count;
        RecordWalker walker(_buffer);
        std::int32_t counted = 0;
        while (walker.Move()) ++counted;
        _count = counted;
        _counted = true;
        if (returned < 0) throw OverflowError("The name buffer is too small to handle all the hit!");
    }
    return static_cast<unsigned int>(_count);
}

std::vector<HitRecord> HitBuffer::Records() const {
    unsigned int const count = Count();
    std::vector<HitRecord> records;
    if (count == 0) return records;
    records.reserve(count);
    RecordWalker walker(_buffer);
    while (walker.Move()) {
        std::uint64_t const subname = walker.Word(NameCount) == 2 ? walker.Name(1) : HitRecord::NameInvalid;
        records.emplace_back(walker.Name(0), subname, walker.Word(MinDepth) / 4294967295.0);
    }
    return records;
}

}  // namespace Tev::Chart::Ogl
