// CPacket: a handle on a reference-counted block of bytes, the unit of data that modules pass to each other.
//
//     CPacket frame(1500, 0);                                   // memory from the packet manager
//     frame.resize(socket.read(frame.getBuffer(), frame.capacity()));
//     CPacket body(frame, 20, frame.size() - 20, 0);            // a range: shares the frame's bytes and keeps them alive
//     queue.push(body);                                         // a copy of the handle; no byte moves
//
// Beside its data a block can have an extra region, private memory of whoever created it, of exactly the size asked for. A packet is made
// in one of five forms:
//
//   form         data                    who frees the data                              extra region
//   managed      the packet manager's    the packet                                      in the block or beside it
//   range        a part of a packet's    that packet, which the range holds              its own
//   external     the caller's buffer     the caller's function, called at the end        its own
//     ... with an extra region
//   late buffer  none until putBuffer()  the caller's function, if a buffer ever came    its own
//
// A packet that cannot be made is an invalid handle, and the log tells why; the caller then still owns the buffer that it meant to hand
// over. On an invalid packet every operation gives 0, null or false and does nothing.
//
// Threads: handles on one block may be copied, assigned and released by different threads at the same time; the last one frees the block,
// on its thread. One handle, and the bytes, size and extra region of a block: one thread at a time. Nothing here throws. A free function
// runs with no lock held and must not throw.
#pragma once

#include <cstddef>
#include <utility>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/detail/packet_internal.h"

namespace General::Memory {

class ORTHA_API CPacket
{
public:
    /// Takes the memory back that a packet was given; the arguments are told at the constructors.
    using FreeFunction = Ortha::TFunction2<void, void*, std::size_t>;

    /// An invalid packet.
    CPacket() noexcept : m_internal(nullptr) {}

    /// Managed: `size` bytes of data, not cleared, and `extra` bytes of extra region; both begin at multiples of the manager's alignSize
    /// from the start of their block. capacity() is what the block has room for, at least `size` rounded up: a pool gives a power of two of
    /// whole chunks. Invalid without memory, and under policyExternal.
    CPacket(std::size_t size, std::size_t extra);

    /// External: the `size` bytes at `buffer`, which stay the caller's until `freeFunction(buffer, size of the packet by then)` gives them
    /// back; an empty function is not called.
    CPacket(void* buffer, std::size_t size, FreeFunction freeFunction);

    /// External, with an extra region of `extra` bytes. Without memory for it the packet stands, and getExtraData() is null.
    CPacket(void* buffer, std::size_t size, std::size_t extra, FreeFunction freeFunction);

    /// Range: the `size` bytes of `packet` from `offset` on, with an extra region of its own. Holds a reference on `packet` until it is
    /// gone itself. Invalid unless the range lies within packet.size() and begins before its end. What it needs besides the data is of the
    /// C runtime's heap, under every policy.
    CPacket(const CPacket& packet, std::size_t offset, std::size_t size, std::size_t extra);

    /// Late buffer: stands for `capacity` bytes that putBuffer() will bring, with an extra region of `extra` bytes (as in the external
    /// form). At the end calls `freeFunction(arg, capacity)` if a buffer came.
    CPacket(unsigned int capacity, FreeFunction freeFunction, void* arg, std::size_t extra);

    /// Shares the block.
    CPacket(const CPacket& packet) noexcept : m_internal(packet.m_internal)
    {
        if (m_internal)
        {
            m_internal->addRef();
        }
    }
    /// Takes the reference over; `packet` is invalid afterwards.
    CPacket(CPacket&& packet) noexcept : m_internal(std::exchange(packet.m_internal, nullptr)) {}
    /// Shares the block and releases the old one. Between handles on one block nothing happens.
    CPacket& operator=(const CPacket& packet) noexcept
    {
        if (m_internal != packet.m_internal)
        {
            *this = CPacket(packet);
        }
        return *this;
    }
    CPacket& operator=(CPacket&& packet) noexcept
    {
        release(std::exchange(m_internal, std::exchange(packet.m_internal, nullptr)));
        return *this;
    }
    /// Releases the block.
    virtual ~CPacket() { release(m_internal); }

    /// Releases the block and makes this handle invalid.
    void reset() noexcept { release(std::exchange(m_internal, nullptr)); }
    [[nodiscard]] bool valid() const noexcept { return m_internal != nullptr; }

    /// Late buffer: takes the `size` bytes at `data` as its data, without a copy, in place of those it had; they stay the caller's. Gives
    /// `size`. Other forms: appends a copy of as many of the bytes as there is room for between size() and capacity(), none without a
    /// buffer, and gives their number. A packet begins with its size as asked for, so resize(0) comes first where the data is to be built
    /// up.
    std::size_t putBuffer(void* data, std::size_t size) { return m_internal ? m_internal->putBuffer(data, size) : 0; }
    /// The data; null if there is none, or none yet.
    [[nodiscard]] unsigned char* getBuffer() const { return m_internal ? m_internal->getBuffer() : nullptr; }
    /// Bytes in use.
    [[nodiscard]] std::size_t size() const { return m_internal ? m_internal->size() : 0; }
    /// Sets the bytes in use; no byte moves or is cleared. False, and nothing changes, above capacity().
    bool resize(std::size_t size) { return m_internal && m_internal->resize(size); }
    /// The most that size() can become.
    [[nodiscard]] std::size_t capacity() const { return m_internal ? m_internal->capacity() : 0; }
    /// The extra region; null if none was asked for.
    [[nodiscard]] void* getExtraData() const { return m_internal ? m_internal->getExtraData() : nullptr; }
    /// Bytes in the extra region, as asked for.
    [[nodiscard]] std::size_t getExtraSize() const { return m_internal ? m_internal->getExtraSize() : 0; }

private:
    static void release(PacketInternal* internal) noexcept
    {
        if (internal)
        {
            internal->release();
        }
    }

    PacketInternal* m_internal;
};

}  // namespace General::Memory
