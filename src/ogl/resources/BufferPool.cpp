#include "ogl/resources/BufferPool.h"

#include "framework/debug/Debug.h"
#include "ogl/api/OglApi.h"
#include "ogl/api/Tokens.h"
#include "ogl/tgl/Tgl.h"

#include <boost/bind/bind.hpp>
#include <boost/container_hash/hash.hpp>

#include <array>
#include <cstddef>
#include <string>

namespace Tev::Chart::Ogl {

namespace {

// Small pools are the rule: a context holds a few dozen buffers.
constexpr std::size_t InitialBuckets = 11;

template <typename Map>
void Configure(Map& p_map) {
    p_map.max_load_factor(1.0f);
}

bool IsStream(unsigned int p_token) {
    return p_token == Tokens::TGL_STREAM_DRAW || p_token == Tokens::TGL_STREAM_READ ||
           p_token == Tokens::TGL_STREAM_COPY;
}

// Map-access bit of each write-sync flag, by flag value.
std::array<unsigned int, 3> const writeSyncBits{0u, Tokens::TGL_MAP_INVALIDATE_RANGE_BIT,
                                                Tokens::TGL_MAP_INVALIDATE_BUFFER_BIT};

}  // namespace

namespace Internal {

unsigned int AccessPermission<1>::Permission(BufferMapWriteSync::Flags p_access) {
    ensure(p_access == BufferMapWriteSync::Default && "ReadWrite buffers only support default flushing");
    return Tokens::TGL_MAP_READ_BIT | Tokens::TGL_MAP_WRITE_BIT;
}

unsigned int AccessPermission<2>::Permission(BufferMapWriteSync::Flags p_access) {
    int const flag = p_access;
    if (!chkrng(flag, 0, static_cast<int>(writeSyncBits.size()) - 1)) return Tokens::TGL_MAP_WRITE_BIT;
    return Tokens::TGL_MAP_WRITE_BIT | writeSyncBits[static_cast<std::size_t>(flag)];
}

}  // namespace Internal

std::size_t BufferPool::KeyHash::operator()(Key const& p_key) const {
    std::size_t seed = 0;
    boost::hash_combine(seed, p_key.first);
    boost::hash_combine(seed, p_key.second);
    return seed;
}

BufferPool::BufferPool(Utility::WeakWatchedRef<const OglApi> const& p_api)
    : _api(p_api), _data(InitialBuckets), _freed(InitialBuckets), _used(InitialBuckets), _mappings(InitialBuckets) {
    Configure(_data);
    Configure(_freed);
    Configure(_used);
    Configure(_mappings);
}

// The maps then go in reverse order: dropping the pointers still held (a
// pool never initialised does not deallocate) deletes their buffers while
// _data is still there.
BufferPool::~BufferPool() { Deallocate(); }

void BufferPool::DoInitialize(Tgl& p_tgl, OglApi const& p_api) {
    _hasGpuCopyBuffer = p_tgl.IsExtensionSupported(ARB_copy_buffer);
    _labels = &p_tgl.Labels();
    _expiringApi = &p_api;
}

// When the facade ends, the weak table expires before the pool hears of it,
// yet the facade's table is still there while the pool deallocates: the
// buffers are deleted through the table the pool was made live with, also
// when a client keeps the pool itself beyond the facade.
void BufferPool::DoDeallocate() {
    _freed.clear();
    _used.clear();
    _expiringApi = nullptr;
    ensure(_data.empty() && "All memory should be released by now!");
}

unsigned int BufferPool::BufferUsageToken(BufferUsage const& p_usage) {
    static std::array<unsigned int, 12> const tokenLookup{
        Tokens::TGL_STATIC_DRAW,  Tokens::TGL_STATIC_READ,  Tokens::TGL_STATIC_COPY,  Tokens::TGL_NONE,
        Tokens::TGL_DYNAMIC_DRAW, Tokens::TGL_DYNAMIC_READ, Tokens::TGL_DYNAMIC_COPY, Tokens::TGL_NONE,
        Tokens::TGL_STREAM_DRAW,  Tokens::TGL_STREAM_READ,  Tokens::TGL_STREAM_COPY,  Tokens::TGL_NONE};
    int const index = p_usage.Index();
    if (!ensure_as(0 <= index && index < static_cast<int>(tokenLookup.size()), "0 <= index < tokenLookup.size()"))
        return Tokens::TGL_NONE;
    unsigned int const token = tokenLookup[static_cast<std::size_t>(index)];
    ensure(token != Tokens::TGL_NONE);
    return token;
}

boost::weak_ptr<BufferData> BufferPool::FindOrAllocateMemory(std::uint64_t p_bytes, BufferUsage const& p_usage) {
    unsigned int const token = BufferUsageToken(p_usage);
    if (Pointer found = FindMemory(p_bytes, token)) return found;

    unsigned int const name = AllocateMemory(p_bytes, token);
    auto const insertion = _data.emplace(name, BufferData(name, p_bytes, token));
    ensure(insertion.second && "BufferData pool insertion unsuccessful!");
    // The pointer does not own the record: its deleter hands the buffer back
    // to GL and drops the record from _data.
    Pointer const pointer(&insertion.first->second, boost::bind(&BufferPool::ReleaseMemory, this, boost::placeholders::_1));
    _used[name] = pointer;
    return pointer;
}

// Exact matches only: a request never takes a larger buffer, so the
// statistics count exactly what clients asked for.
BufferPool::Pointer BufferPool::FindMemory(std::uint64_t p_bytes, unsigned int p_usageToken) {
    auto const it = _freed.find(Key(p_bytes, p_usageToken));
    if (it == _freed.end()) return {};
    Pointer const pointer = it->second;
    _freed.erase(it);
    _used[pointer->_buffer] = pointer;
    return pointer;
}

// Every buffer is created through the array-buffer target, whatever it
// serves later: the name is what counts.
unsigned int BufferPool::AllocateMemory(std::uint64_t p_bytes, unsigned int p_usageToken) {
    auto const api = _api.Lock();
    if (!api) return 0;
    GLuint id = 0;
    api->GenBuffers(1, &id);
    ensure(id > 0 && "No buffer generated by OpenGL!");
    api->BindBuffer(Tokens::TGL_ARRAY_BUFFER, id);
    api->BufferData(Tokens::TGL_ARRAY_BUFFER, static_cast<GLsizeiptr>(p_bytes), nullptr, p_usageToken);
    api->BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0);
    if (_labels) _labels->Set(ObjectLabels::Buffer, id, "TevOgl pooled buffer, " + std::to_string(p_bytes) + " bytes");
    _totalMemory += p_bytes;
    return id;
}

void BufferPool::FreeBufferData(boost::weak_ptr<BufferData> const& p_handle) {
    Pointer const pointer = p_handle.lock();
    if (!ensure(pointer)) return;
    auto const it = _used.find(pointer->_buffer);
    if (!ensure(it != _used.end() && "Memory to free not found in used list!")) return;
    _used.erase(it);
    if (IsStream(pointer->_usage))
        _totalMemory -= pointer->_bytes;  // deleted when `pointer` goes
    else
        _freed.emplace(Key(pointer->_bytes, pointer->_usage), pointer);
}

void BufferPool::ReleaseMemory(BufferData* p_record) {
    unsigned int const name = p_record->_buffer;
    if (OglApi const* const api = _api.Expired() ? _expiringApi : _api.Lock().Get()) api->DeleteBuffers(1, &name);
    auto const it = _data.find(name);
    if (ensure(it != _data.end())) _data.erase(it);
}

void BufferPool::ReleaseFreedMemory() {
    std::uint64_t const freed = FreeMemoryCount();
    _freed.clear();
    _totalMemory -= freed;
}

std::uint64_t BufferPool::FreeMemoryCount() const {
    std::uint64_t bytes = 0;
    for (auto const& entry : _freed) bytes += entry.first.first;
    return bytes;
}

std::uint64_t BufferPool::UsedMemoryCount() const {
    std::uint64_t bytes = 0;
    for (auto const& entry : _used) bytes += entry.second->_bytes;
    return bytes;
}

BufferPool::MemoryStatistics BufferPool::GetMemoryStatistics() {
    std::uint64_t const freed = FreeMemoryCount();
    std::uint64_t const used = UsedMemoryCount();
    ensure((freed + used) == _totalMemory && "Memory statistics mismatch!");
    return {_totalMemory, used, freed};
}

// Offset and length count elements. The buffer is unbound again at once:
// a mapping outlives the binding.
void* BufferPool::MapMemory(boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset,
                            std::uint64_t p_length, std::uint64_t p_elementSize, unsigned int p_access,
                            unsigned int p_target) {
    Pointer const dataPtr = p_handle.lock();
    if (!ensure(dataPtr)) return nullptr;
    std::uint64_t const offset = p_offset * p_elementSize;
    std::uint64_t const length = p_length * p_elementSize;
    ensure(offset < dataPtr->_bytes && "Array mapping offset out of bounds!");
    ensure(length != 0 && "Array mapping lenght is zero!");
    ensure((offset + length) <= dataPtr->_bytes && "Array mapping window out of bounds!");

    unsigned int const name = dataPtr->_buffer;
    auto const it = _mappings.find(name);
    ensure(it == _mappings.end() && "Buffer is already mapped!");

    auto const api = _api.Lock();
    if (!api) return nullptr;
    api->BindBuffer(p_target, name);
    void* const ptr = api->MapBufferRange(p_target, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(length),
                                          p_access);
    api->BindBuffer(p_target, 0);
    ensure(ptr != NULL && "OpenGL buffer mapping returned NULL!!!");
    // A second mapping of a mapped buffer keeps the first record, whose
    // pointer is the one still valid.
    _mappings.emplace(name, Mapping{name, ptr});
    return ptr;
}

void BufferPool::UnmapMemory(void const* const p_memory, unsigned int const& p_buffer, unsigned int p_target) {
    auto const it = _mappings.find(p_buffer);
    if (ensure(it != _mappings.end() && "Trying to unmap not mapped memory!")) {
        Mapping const& mapping = it->second;
        ensure(mapping.memory == p_memory && "Mapping memory pointer mismatch!");
    }
    if (auto const api = _api.Lock()) {
        api->BindBuffer(p_target, p_buffer);
        api->UnmapBuffer(p_target);
        api->BindBuffer(p_target, 0);
    }
    if (it != _mappings.end()) _mappings.erase(it);
}

// Through the array-buffer target, whose binding no vertex array records,
// so that uploading never disturbs the index buffer of a bound one.
void BufferPool::UploadMemory(boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset, void const* p_data,
                              std::uint64_t p_bytes) {
    Pointer const dataPtr = p_handle.lock();
    if (!ensure(dataPtr)) return;
    if (!ensure(p_offset + p_bytes <= dataPtr->_bytes && "Upload window out of bounds!")) return;
    if (!ensure(!IsMapped(dataPtr->_buffer) && "Cannot upload into a mapped buffer!")) return;
    auto const api = _api.Lock();
    if (!api || p_bytes == 0) return;
    api->BindBuffer(Tokens::TGL_ARRAY_BUFFER, dataPtr->_buffer);
    // A whole buffer is given new storage rather than overwritten: the
    // driver need not wait for draws still reading the old contents (a
    // reused buffer was drawn from a moment ago), and drivers make this
    // the cheaper call (about half the time of glBufferSubData on Mesa).
    if (p_offset == 0 && p_bytes == dataPtr->_bytes)
        api->BufferData(Tokens::TGL_ARRAY_BUFFER, static_cast<GLsizeiptr>(p_bytes), p_data, dataPtr->_usage);
    else
        api->BufferSubData(Tokens::TGL_ARRAY_BUFFER, static_cast<GLintptr>(p_offset),
                           static_cast<GLsizeiptr>(p_bytes), p_data);
    api->BindBuffer(Tokens::TGL_ARRAY_BUFFER, 0);
}

void BufferPool::InternalCopyBufferSubData(unsigned int p_source, unsigned int p_destination,
                                           std::uint64_t p_readOffset, std::uint64_t p_writeOffset,
                                           std::uint64_t p_bytes) {
    ensure(_hasGpuCopyBuffer);
    auto const api = _api.Lock();
    if (!api) return;
    api->BindBuffer(Tokens::TGL_COPY_READ_BUFFER, p_source);
    api->BindBuffer(Tokens::TGL_COPY_WRITE_BUFFER, p_destination);
    // The entry is optional: without it the report above is all there is.
    if (api->CopyBufferSubData)
        api->CopyBufferSubData(Tokens::TGL_COPY_READ_BUFFER, Tokens::TGL_COPY_WRITE_BUFFER,
                               static_cast<GLintptr>(p_readOffset), static_cast<GLintptr>(p_writeOffset),
                               static_cast<GLsizeiptr>(p_bytes));
    api->BindBuffer(Tokens::TGL_COPY_READ_BUFFER, 0);
    api->BindBuffer(Tokens::TGL_COPY_WRITE_BUFFER, 0);
}

}  // namespace Tev::Chart::Ogl
