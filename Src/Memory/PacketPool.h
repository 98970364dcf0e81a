// The pool behind packets: a binary buddy allocator.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ortha/ortha3/Mutex.h"

namespace General::Memory {

/// One for each chunk, and one as the head of each list of free blocks.
struct ChunkNode
{
    std::int32_t id;        // the chunk's index; not set in a head
    std::int32_t order;     // see PacketPool
    unsigned char* buffer;  // the chunk's first byte; null in a head
    ChunkNode* pre;
    ChunkNode* next;
};

/// A region of `chunkCount` chunks, cut into blocks of 2^k chunks, k being the order of a block. A free block is known by its first chunk's
/// node, which is on list k; lists are circular through their heads and last-in, first-out. What a node is tells its `order`:
///
///   k + 1     first chunk of a free block of order k; the head of list k
///   -(k + 1)  first chunk of an allocated block of order k
///   0         any other chunk
///
/// While nobody holds the mutex each chunk is in one block, a block of order k starts at a multiple of 2^k, and no free block has a free
/// buddy of its own order below the highest. At first the region is cut by the binary digits of chunkCount, the largest block first. Any
/// thread.
class PacketPool
{
public:
    /// `memory` has room for the pool and one chunk more, so that the first chunk can begin at a multiple of `chunkSize`, a power of two.
    /// It stays the caller's. Ends the process with an assertion, after a fatal line, if there is no memory for the nodes.
    PacketPool(unsigned char* memory, std::size_t totalSize, std::size_t chunkSize);
    ~PacketPool();
    PacketPool(const PacketPool&) = delete;
    PacketPool& operator=(const PacketPool&) = delete;

    /// The first chunk of a block of at least `size` bytes, which becomes the block's size: the highest part of the smallest free block
    /// that is large enough, of several the one freed last. Null, and `size` stays, if there is none or `size` is 0.
    const ChunkNode* allocate(std::size_t& size);
    /// The first chunk of the block that begins at `ptr`. Asserts that it lies in the pool.
    std::int32_t idOf(const void* ptr) const;
    /// Frees a block and joins it with its buddies. Asserts that it is in use.
    void release(std::int32_t id);

    bool contains(const void* ptr) const;
    std::size_t freeSize() const;
    /// Logs all free blocks, with the mutex held.
    void printNodeInfo() const;

    unsigned char* begin() const { return m_poolBuffer; }
    std::int32_t chunkCount() const { return m_chunkCount; }
    std::int32_t listCount() const { return m_listCount; }

private:
    void insert(ChunkNode& node, std::int32_t order) ORTHA_REQUIRES(m_mutex);
    void unlink(ChunkNode& node) ORTHA_REQUIRES(m_mutex);
    ChunkNode& split(std::int32_t order, std::int32_t wanted) ORTHA_REQUIRES(m_mutex);

    const std::size_t m_totalSize;
    const std::uint32_t m_chunkOrder;  // log2 of the chunk size
    const std::int32_t m_chunkCount;
    const std::int32_t m_listCount;
    unsigned char* const m_poolBuffer;
    mutable Ortha::CMutex m_mutex;
    ChunkNode* const m_chunkNodes ORTHA_PT_GUARDED_BY(m_mutex);
    ChunkNode* const m_bufferLists ORTHA_PT_GUARDED_BY(m_mutex);
};

}  // namespace General::Memory
