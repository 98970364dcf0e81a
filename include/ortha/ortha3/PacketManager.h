// CPacketManager: where the memory of packets comes from.
//
// A process chooses once, before its first packet, between the system's allocator and one contiguous pool:
//
//     CPacketManager::PoolParameter pool = {64 << 20, 1024, 8};          // 64 MiB, in chunks of 1 KiB
//     CPacketManager::config(CPacketManager::policyPool, nullptr, &pool);
//     CPacket packet(1500, 0);                                            // from here on the choice is fixed
//     logInfo("%zu of %zu bytes are free\n", CPacketManager::instance()->getFreeSize(), CPacketManager::instance()->getBufferSize());
//
// The pool is a binary buddy allocator (Knowlton 1965; Knuth, The Art of Computer Programming 1, section 2.5): blocks of 2^k chunks, a
// request rounded up to the next such block, a larger block halved as often as needed, and a freed block joined with its free buddy at
// once. Allocation and free cost at most one list operation for each order of size, whatever the number of blocks in use; after the start
// the pool calls no allocator.
//
//   policy           data of a packet    its control record and extra region   size of a block
//   policySystem     system functions    in the data's block                   as needed
//   policyPool       pool                in the data's block                   a power of two of chunks, all of it used for data
//   policySplitPool  pool                a block of the C runtime's malloc     the same
//   policyExternal   the caller's        a block of the C++ runtime            no packet can be created by its size
//
// Threads: config() at start-up; every operation of the object from any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Function.h"

namespace General::Ortha {
template <class T>
class Singleton;
}

namespace General::Memory {

class PacketManagerInternal;

class ORTHA_API CPacketManager
{
public:
    enum Policy : std::uint32_t
    {
        policyUnchanged = 0,  ///< for config() only: keep what is set
        policySystem = 1,     ///< the default
        policyPool = 2,
        policySplitPool = 3,
        policyExternal = 4
    };

    /// The system functions. They default to the C runtime's, whose rules they follow: `malloc` gives memory aligned for any object, or
    /// null; `free` accepts null. They are called on any thread and must not throw or use packets. Under policySystem they serve every
    /// packet; under a pool policy `malloc` and `free` serve the pool as a whole, and `memcpy` the copies from pool to pool.
    struct MemoryOperator
    {
        Ortha::TFunction1<void*, std::size_t> malloc;
        Ortha::TFunction1<void, void*> free;
        Ortha::TFunction3<void*, void*, const void*, std::size_t> memcpy;
    };

    struct PoolParameter
    {
        std::size_t totalSize;  ///< bytes in the pool, a multiple of chunkSize, in fewer than 2^31 chunks; 2,097,152 by default
        std::size_t chunkSize;  ///< bytes in the smallest block, a power of two from 1024 to 2^31; 1024 by default
        std::size_t
            alignSize;  ///< bytes, at least 4, to whose multiple sizes inside a packet are rounded; cut to a power of two; 4 by default
    };

    CPacketManager(const CPacketManager&) = delete;
    CPacketManager& operator=(const CPacketManager&) = delete;

    /// Sets the policy, the system functions and the pool's measures; policyUnchanged and null pointers leave their item as it is. May be
    /// called again until the first packet or instance(); the last call that gives an item decides it. Afterwards, and for a policy above
    /// 4, it logs a warning and changes nothing. Asserts that the measures are as PoolParameter tells and that no function is empty.
    /// Start-up.
    static void config(Policy policy, MemoryOperator* memop, PoolParameter* param);
    /// The policy and measures as they are set, in use or not.
    static void getConfig(Policy& policy, PoolParameter& param);
    /// The manager. The first call fixes the configuration and allocates the pool; if that fails it logs a fatal line and ends the process
    /// with an assertion.
    static CPacketManager* instance();

    /// A block of at least `size` bytes, the caller's until free(). Under a pool policy it starts at a multiple of its own size within the
    /// pool; null, with a warning, if no free block is large enough or `size` is 0. Under the other policies what the system function
    /// gives.
    [[nodiscard]] void* malloc(std::size_t size);
    /// Takes a block of malloc() back; null is ignored by a pool. A pool asserts that the block is one of its own and in use.
    void free(void* ptr);
    /// Copies `n` bytes; the areas must not overlap. Between two places in the pool, and always without one, by the system function, whose
    /// result it gives; else by the C runtime.
    void* memcpy(void* dst, const void* src, std::size_t n);

    /// Bytes in the pool; 0 without one.
    [[nodiscard]] std::size_t getBufferSize() const;
    /// Bytes in the pool that no block has; 0 without a pool. They need not be together. Walks the free blocks.
    [[nodiscard]] std::size_t getFreeSize() const;
    /// The memory that holds the pool, up to one chunk before the first chunk; null without a pool.
    [[nodiscard]] unsigned char* getPoolBuffer() const;

    /// Has each block of the pool remembered from now on, with its size and the thread that allocated it, at the price of a map operation
    /// for each malloc and free; or forgets them all. A block that there is no memory left to remember is not counted.
    void enableNodesStatistics(bool enable);
    /// Logs at info level: with statistics, the blocks in use by thread; then, under policyPool, every free block. That list is logged with
    /// the pool's mutex held, so a print hook must not allocate or free packets, nor wait for a thread that does.
    void dumpNodes();
    /// Not in this library: false, with an error line.
    bool advisePacket();

private:
    friend class Ortha::Singleton<CPacketManager>;
    CPacketManager();
    ~CPacketManager();

    PacketManagerInternal* m_internal;
};

}  // namespace General::Memory
