// What a packet's handle points at. It stands in a public header so that handles are counted without a call into the library; programs use
// CPacket.
#pragma once

#include <cstddef>

#include "ortha/ortha3/AtomicCount.h"

namespace General::Memory {

/// A block of bytes with its count of references, 1 at first. Counting is for any thread, the rest for one thread at a time.
class PacketInternal
{
public:
    PacketInternal(const PacketInternal&) = delete;
    PacketInternal& operator=(const PacketInternal&) = delete;

    void addRef() noexcept { ++m_refCount; }
    void release() noexcept
    {
        if (--m_refCount == 0)
        {
            destroy();
        }
    }

    virtual std::size_t putBuffer(void* data, std::size_t size) = 0;
    virtual unsigned char* getBuffer() const = 0;
    virtual std::size_t size() const = 0;
    virtual bool resize(std::size_t size) = 0;
    virtual std::size_t capacity() const = 0;
    virtual void* getExtraData() const = 0;
    virtual std::size_t getExtraSize() const = 0;

protected:
    PacketInternal() = default;
    ~PacketInternal() = default;

private:
    /// Ends the object; called when the last reference is gone.
    virtual void destroy() noexcept = 0;

    Ortha::Detail::atomic_count m_refCount{1};
};

}  // namespace General::Memory
