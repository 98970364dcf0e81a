#include "ortha/ortha3/MemPool.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <utility>

#include "ortha/ortha3/Mutex.h"

namespace General::Memory::Detail {

using Ortha::CGuard;
using Ortha::CMutex;

namespace {

// Then come the blocks.
struct alignas(std::max_align_t) Chunk
{
    unsigned char* blocks;
    Chunk* next;
};

// A free block holds the address of the next one in its first bytes, at whatever address it lies.
unsigned char* next(const unsigned char* block)
{
    unsigned char* next = nullptr;
    std::memcpy(&next, block, sizeof(next));
    return next;
}

void setNext(unsigned char* block, unsigned char* next)
{
    std::memcpy(block, &next, sizeof(next));
}

}  // namespace

struct CMemPool::Internal
{
    const std::uint32_t blockSize;
    const std::uint32_t blockCount;
    CMutex mutex{};
    Chunk* chunks ORTHA_GUARDED_BY(mutex) = nullptr;
    unsigned char* freeList ORTHA_GUARDED_BY(mutex) = nullptr;

    bool grow() ORTHA_REQUIRES(mutex)
    {
        const std::size_t bytes = std::size_t{blockSize} * blockCount;
        auto* const memory = static_cast<unsigned char*>(::operator new(sizeof(Chunk) + bytes, std::nothrow));
        if (!memory)
        {
            return false;
        }
        chunks = new (memory) Chunk{memory + sizeof(Chunk), chunks};
        freeList = chunks->blocks;
        unsigned char* block = freeList;
        for (std::uint32_t i = 1; i < blockCount; ++i, block += blockSize)
        {
            setNext(block, block + blockSize);
        }
        setNext(block, nullptr);
        return true;
    }
};

CMemPool::CMemPool(unsigned int blockSize, unsigned int blockCount) : m_internal(nullptr)
{
    try
    {
        m_internal = new Internal{std::max<std::uint32_t>(blockSize, sizeof(void*)), std::max<std::uint32_t>(blockCount, 1)};
    }
    catch (const std::bad_alloc&)  // a pool that never has a block
    {
    }
}

CMemPool::~CMemPool() ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    if (!m_internal)
    {
        return;
    }
    for (Chunk* chunk = m_internal->chunks; chunk;)
    {
        ::operator delete(std::exchange(chunk, chunk->next));
    }
    delete m_internal;
}

void* CMemPool::malloc()
{
    if (!m_internal)
    {
        return nullptr;
    }
    CGuard guard(m_internal->mutex);
    if (!m_internal->freeList && !m_internal->grow())
    {
        return nullptr;
    }
    unsigned char* const block = m_internal->freeList;
    m_internal->freeList = next(block);
    return block;
}

void CMemPool::free(void* ptr)
{
    CGuard guard(m_internal->mutex);
    setNext(static_cast<unsigned char*>(ptr), m_internal->freeList);
    m_internal->freeList = static_cast<unsigned char*>(ptr);
}

}  // namespace General::Memory::Detail
