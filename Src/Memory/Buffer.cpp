#include "ortha/ortha3/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Src/Ortha3/Log.h"

namespace General::Memory {

using namespace Ortha;

namespace {

// More than any allocation gives: stands for a size that does not fit.
constexpr std::size_t tooMuch = SIZE_MAX;

std::size_t sum(std::size_t a, std::size_t b)
{
    return b <= tooMuch - a ? a + b : tooMuch;
}

std::size_t roundUp(std::size_t size, std::size_t step)
{
    return step == 0 || size % step == 0 ? size : sum(size, step - size % step);
}

}  // namespace

// Stands at the start of the block; the data follows it, aligned as the block is.
struct alignas(std::max_align_t) CBuffer::Internal
{
    std::size_t size;
    std::size_t capacity;
    std::size_t increasedSize;

    unsigned char* data() { return reinterpret_cast<unsigned char*>(this + 1); }

    static Internal* make(std::size_t capacity)
    {
        void* const block = capacity <= tooMuch - sizeof(Internal) ? std::malloc(sizeof(Internal) + capacity) : nullptr;
        return block ? new (block) Internal{0, capacity, 0} : nullptr;
    }

    // Puts a block of the new capacity, with the same content, in the old one's place.
    static bool move(Internal*& block, std::size_t capacity)
    {
        Internal* const moved = make(capacity);
        if (!moved)
        {
            return false;
        }
        std::memcpy(static_cast<void*>(moved), block, sizeof(Internal) + block->size);
        moved->capacity = capacity;
        std::free(block);
        block = moved;
        return true;
    }
};

CBuffer::~CBuffer()
{
    std::free(m_internal);
}

std::size_t CBuffer::putBuffer(unsigned char* data, std::size_t size)
{
    if (!m_internal && !(m_internal = Internal::make(size)))
    {
        ORTHA_LOG(levelInfo, " CBuffer putbuffer Malloc fail:\n");
        return 0;
    }
    if (m_internal->capacity - m_internal->size < size &&
        !Internal::move(m_internal, roundUp(sum(m_internal->size, size), m_internal->increasedSize)))
    {
        ORTHA_LOG(levelInfo, "CBuffer putbuffer ReMalloc fail:\n");
        return 0;
    }
    if (size != 0)
    {
        std::memcpy(m_internal->data() + m_internal->size, data, size);
        m_internal->size += size;
    }
    return size;
}

unsigned char* CBuffer::getBuffer() const
{
    return size() != 0 ? m_internal->data() : nullptr;
}

std::size_t CBuffer::size() const
{
    return m_internal ? m_internal->size : 0;
}

void CBuffer::resize(std::size_t size)
{
    if (!m_internal && !(m_internal = Internal::make(size)))
    {
        ORTHA_LOG(levelInfo, " CBuffer resize Malloc fail:\n");
        return;
    }
    if (size > m_internal->capacity)
    {
        size = roundUp(size, m_internal->increasedSize);
        if (!Internal::move(m_internal, size))
        {
            ORTHA_LOG(levelInfo, " CBuffer resize ReMalloc fail:\n");
            return;
        }
    }
    m_internal->size = size;
}

std::size_t CBuffer::capacity() const
{
    return m_internal ? m_internal->capacity : 0;
}

void CBuffer::reserve(std::size_t size)
{
    if (!m_internal)
    {
        m_internal = Internal::make(size);
        if (!m_internal)
        {
            ORTHA_LOG(levelInfo, " CBuffer resize Malloc fail:\n");
        }
        return;
    }
    if (size > m_internal->capacity && !Internal::move(m_internal, size))
    {
        ORTHA_LOG(levelInfo, " CBuffer reserve Malloc fail:\n");
    }
}

void CBuffer::reset()
{
    std::free(m_internal);
    m_internal = nullptr;
}

void CBuffer::setIncreasedSize(std::size_t size)
{
    if (!m_internal && !(m_internal = Internal::make(size)))
    {
        ORTHA_LOG(levelInfo, " CBuffer setIncreasedSize Malloc fail:\n");
        return;
    }
    m_internal->increasedSize = size;
}

}  // namespace General::Memory
