// The one kind of block that packets have, in five forms.
#pragma once

#include <cstdint>

#include "ortha/ortha3/Packet.h"

namespace General::Memory {

class PacketManagerInternal;

/// Where the packet's memory is the library's, the record lies in it: one block holds, from its first byte, data (unless that is apart),
/// extra region, a gap and the record, which ends where the block does.
class OldPacketInternal final : public PacketInternal
{
public:
    using FreeFunction = CPacket::FreeFunction;

    // One for each form. Null if there is no memory, which the failure callback is told, or if the packet is refused.
    static PacketInternal* create(std::size_t size, std::size_t extra);
    static PacketInternal* create(void* buffer, std::size_t size, const FreeFunction& freeFunction);
    static PacketInternal* create(void* buffer, std::size_t size, std::size_t extra, const FreeFunction& freeFunction);
    static PacketInternal* create(const CPacket& parent, std::size_t offset, std::size_t size, std::size_t extra);
    static PacketInternal* create(unsigned int capacity, const FreeFunction& freeFunction, void* arg, std::size_t extra);

    std::size_t putBuffer(void* data, std::size_t size) override;
    unsigned char* getBuffer() const override { return m_buffer; }
    std::size_t size() const override { return m_size; }
    bool resize(std::size_t size) override;
    std::size_t capacity() const override { return m_capacity; }
    void* getExtraData() const override { return m_extraSize != 0 ? m_extraData : nullptr; }
    std::size_t getExtraSize() const override { return m_extraSize; }

private:
    enum Type : std::uint8_t
    {
        typeManaged = 0,
        typeRange = 1,
        typeExternal = 2,
        typeLateBuffer = 3
    };

    OldPacketInternal(Type type, unsigned char* buffer, std::size_t size, std::size_t capacity, void* extraData, std::size_t extraSize);
    ~OldPacketInternal() = default;
    void destroy() noexcept override;

    static OldPacketInternal* createJoined(PacketManagerInternal& manager, std::size_t size, std::size_t extra);
    static OldPacketInternal* createSplit(PacketManagerInternal& manager, std::size_t size, std::size_t extra);
    static OldPacketInternal* createAlone(Type type, void* buffer, std::size_t size, std::size_t extra, const FreeFunction& freeFunction);

    const Type m_type;
    unsigned char* m_buffer;
    std::size_t m_size;
    const std::size_t m_capacity;
    void* const m_extraData;
    const std::size_t m_extraSize;
    CPacket m_parent;             // of a range
    FreeFunction m_freeFunction;  // of an external packet, with its buffer and size; of a late buffer, with m_lateArg and the capacity
    void* m_lateArg = nullptr;
};

/// Sets who is called, with status 0x1000000D, whenever there is no memory for a packet: on the failing thread and under a mutex, which the
/// callback may enter again. An empty function ends that. Any thread.
void setPacketFailCallback(Ortha::TFunction1<void, std::uint32_t> callback);

}  // namespace General::Memory
