// Owner of every GL buffer object the library's vertex, index and primitive
// buffers use.
//
// Clients ask for memory of a size and a usage and get a weak handle to a
// pooled record; they map, unmap and hand it back through the pool. Static
// and dynamic buffers that come back are kept and reused for a later request
// of exactly the same size and usage, which avoids gen/data/delete churn when
// the same geometry is rebuilt frame after frame; stream buffers are deleted
// at once.
#pragma once

#include "framework/utility/WatchedRef.h"
#include "ogl/api/Export.h"
#include "ogl/resources/BufferData.h"
#include "ogl/resources/BufferUsage.h"
#include "ogl/resources/TglResource.h"

#include <boost/shared_ptr.hpp>
#include <boost/unordered_map.hpp>
#include <boost/weak_ptr.hpp>

#include <cstdint>
#include <utility>

namespace Tev::Chart::Ogl {

struct OglApi;

struct BufferMapWriteSync {
    enum Flags { Default = 0, InvalidateRange = 1, InvalidateBuffer = 2 };
};

namespace Internal {

struct BufferPoolAccess;

// The map-access bits a mapping helper passes to MapMemory, per access kind.
template <int AccessKind>
struct AccessPermission;

// Read-write: always read and write, and only with default flushing.
template <>
struct TEVOGL_API AccessPermission<1> {
    static unsigned int Permission(BufferMapWriteSync::Flags p_access);
};

// Write-only: write, plus the invalidation the flag asks for.
template <>
struct TEVOGL_API AccessPermission<2> {
    static unsigned int Permission(BufferMapWriteSync::Flags p_access);
};

}  // namespace Internal

class TEVOGL_API BufferPool : public TglResource {
public:
    struct MemoryStatistics {
        std::uint64_t totalMemory;  // bytes allocated on the GPU by the pool
        std::uint64_t usedMemory;   // bytes of buffers handed out
        std::uint64_t freedMemory;  // bytes of buffers kept for reuse
    };

    explicit BufferPool(Utility::WeakWatchedRef<const OglApi> const& p_api);
    ~BufferPool() override;

    // Reports when the parts do not add up to the total.
    MemoryStatistics GetMemoryStatistics();
    std::uint64_t FreeMemoryCount() const;
    std::uint64_t UsedMemoryCount() const;
    // Deletes every buffer kept for reuse; the pool never trims on its own.
    void ReleaseFreedMemory();

private:
    friend struct Internal::BufferPoolAccess;

    using Key = std::pair<std::uint64_t, unsigned int>;  // (bytes, usage token)
    struct KeyHash {
        std::size_t operator()(Key const& p_key) const;
    };
    struct Mapping {
        unsigned int buffer;
        void* memory;
    };
    using Pointer = boost::shared_ptr<BufferData>;

    static unsigned int BufferUsageToken(BufferUsage const& p_usage);

    boost::weak_ptr<BufferData> FindOrAllocateMemory(std::uint64_t p_bytes, BufferUsage const& p_usage);
    Pointer FindMemory(std::uint64_t p_bytes, unsigned int p_usageToken);
    unsigned int AllocateMemory(std::uint64_t p_bytes, unsigned int p_usageToken);
    void FreeBufferData(boost::weak_ptr<BufferData> const& p_handle);
    void ReleaseMemory(BufferData* p_record);

    void* MapMemory(boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset, std::uint64_t p_length,
                    std::uint64_t p_elementSize, unsigned int p_access, unsigned int p_target);
    void UnmapMemory(void const* const p_memory, unsigned int const& p_buffer, unsigned int p_target);
    // Writes p_bytes at byte p_offset through the array-buffer target.
    void UploadMemory(boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset, void const* p_data,
                      std::uint64_t p_bytes);
    bool IsMapped(unsigned int p_buffer) const { return _mappings.count(p_buffer) != 0; }
    void InternalCopyBufferSubData(unsigned int p_source, unsigned int p_destination, std::uint64_t p_readOffset,
                                   std::uint64_t p_writeOffset, std::uint64_t p_bytes);

    void DoInitialize(Tgl& p_tgl, OglApi const& p_api) override;
    void DoDeallocate() override;

    Utility::WeakWatchedRef<const OglApi> _api;
    boost::unordered_map<unsigned int, BufferData> _data;
    boost::unordered_multimap<Key, Pointer, KeyHash> _freed;
    boost::unordered_map<unsigned int, Pointer> _used;
    boost::unordered_map<unsigned int, Mapping> _mappings;
    std::uint64_t _totalMemory = 0;
    bool _hasGpuCopyBuffer = false;
    // The facade's, from initialisation on; the pool dies with the facade.
    ObjectLabels const* _labels = nullptr;
    // The table given when made live, for the deletes of deallocation only.
    OglApi const* _expiringApi = nullptr;
};

namespace Internal {

// The door to the pool's allocation, mapping and copy operations, for the
// buffer classes and mapping helpers built on the pool (and their tests).
struct BufferPoolAccess {
    static unsigned int UsageToken(BufferUsage const& p_usage) { return BufferPool::BufferUsageToken(p_usage); }
    static boost::weak_ptr<BufferData> FindOrAllocate(BufferPool& p_pool, std::uint64_t p_bytes,
                                                      BufferUsage const& p_usage) {
        return p_pool.FindOrAllocateMemory(p_bytes, p_usage);
    }
    static void Free(BufferPool& p_pool, boost::weak_ptr<BufferData> const& p_handle) {
        p_pool.FreeBufferData(p_handle);
    }
    static void* Map(BufferPool& p_pool, boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset,
                     std::uint64_t p_length, std::uint64_t p_elementSize, unsigned int p_access,
                     unsigned int p_target) {
        return p_pool.MapMemory(p_handle, p_offset, p_length, p_elementSize, p_access, p_target);
    }
    static void Unmap(BufferPool& p_pool, void const* p_memory, unsigned int p_buffer, unsigned int p_target) {
        p_pool.UnmapMemory(p_memory, p_buffer, p_target);
    }
    static bool IsMapped(BufferPool const& p_pool, unsigned int p_buffer) { return p_pool.IsMapped(p_buffer); }
    static void Upload(BufferPool& p_pool, boost::weak_ptr<BufferData> const& p_handle, std::uint64_t p_offset,
                       void const* p_data, std::uint64_t p_bytes) {
        p_pool.UploadMemory(p_handle, p_offset, p_data, p_bytes);
    }
    static void Copy(BufferPool& p_pool, unsigned int p_source, unsigned int p_destination,
                     std::uint64_t p_readOffset, std::uint64_t p_writeOffset, std::uint64_t p_bytes) {
        p_pool.InternalCopyBufferSubData(p_source, p_destination, p_readOffset, p_writeOffset, p_bytes);
    }
};

}  // namespace Internal

}  // namespace Tev::Chart::Ogl
