// Detail::CMemPool: blocks of one size, handed out and taken back quickly.
//
//     Detail::CMemPool pool(sizeof(Node), 256);          // 256 blocks an allocation
//     void* block = pool.malloc();
//     pool.free(block);
//
// The pool grows by chunks and gives nothing back before it goes. The block freed last is handed out first.
//
// Threads: malloc() and free() from any thread; construction and destruction must not race with use. Nothing here throws.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Memory::Detail {

class ORTHA_API CMemPool
{
public:
    /// Blocks of `blockSize` bytes, at least 8, in chunks of `blockCount`, at least 1; smaller values count as these. Allocates no chunk
    /// yet.
    CMemPool(unsigned int blockSize, unsigned int blockCount);
    /// Frees all chunks, with the blocks that are out.
    ~CMemPool();
    CMemPool(const CMemPool&) = delete;
    CMemPool& operator=(const CMemPool&) = delete;

    /// A block; null without memory. A chunk begins at an address aligned for any object, and its blocks follow each other without gaps.
    [[nodiscard]] void* malloc();
    /// Takes a block back. Precondition: it came from this pool and is out; nothing checks this.
    void free(void* ptr);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Memory::Detail
