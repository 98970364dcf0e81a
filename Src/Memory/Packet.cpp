#include "ortha/ortha3/Packet.h"

#include <algorithm>
#include <atomic>
#include <cinttypes>
#include <cstdlib>
#include <new>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Memory/PacketInternal.h"
#include "Src/Memory/PacketManagerInternal.h"
#include "Src/Ortha3/Log.h"

namespace General::Memory {

using namespace Ortha;

namespace {

constexpr std::size_t recordSize = sizeof(OldPacketInternal);

// Beyond this the sum of a packet's parts, rounded up, could wrap; no allocator has as much.
constexpr std::size_t maxSize = SIZE_MAX / 4;

struct FailCallback
{
    CMutex mutex;
    TFunction1<void, std::uint32_t> callback ORTHA_GUARDED_BY(mutex);
};

// Null until a callback is set: whoever finds no memory must not need any. Never destroyed.
std::atomic<FailCallback*> s_failCallback{nullptr};

void reportNoMemory()
{
    constexpr std::uint32_t noMemory = 0x1000000D;
    if (FailCallback* const fail = s_failCallback.load(std::memory_order_acquire))
    {
        CGuard guard(fail->mutex);
        if (!fail->callback.empty())
        {
            fail->callback(noMemory);
        }
    }
}

std::uint32_t cut(std::size_t size)
{
    return static_cast<std::uint32_t>(size);
}

void reportNoRecord(std::size_t size)
{
    ORTHA_LOG(levelError, "PacketInternal::create(): malloc failured! size:%" PRIu32 "\n", cut(size));
    reportNoMemory();
}

// The manager's alignment may be less than the record's, and the record ends where its block does: so blocks of sizes that suit the record.
std::size_t roundToRecord(std::size_t size)
{
    constexpr std::size_t alignment = alignof(OldPacketInternal);
    return (size + alignment - 1) & ~(alignment - 1);
}

// A block of the C runtime for an extra region and a record.
struct HeapBlock
{
    HeapBlock(const PacketManagerInternal& manager, std::size_t extra)
        : size(manager.alignUp(std::min(extra, maxSize) + recordSize)),
          memory(extra <= maxSize ? static_cast<unsigned char*>(std::malloc(roundToRecord(size))) : nullptr)
    {
    }

    void* record() const { return memory + roundToRecord(size) - recordSize; }

    const std::size_t size;
    unsigned char* const memory;
};

}  // namespace

void setPacketFailCallback(TFunction1<void, std::uint32_t> callback)
{
    static FailCallback& fail = *new FailCallback;
    CGuard guard(fail.mutex);
    ORTHA_LOG(levelInfo, "set MallocFailStatus callback success!\n");
    fail.callback = callback;
    s_failCallback.store(&fail, std::memory_order_release);
}

OldPacketInternal::OldPacketInternal(Type type, unsigned char* buffer, std::size_t size, std::size_t capacity, void* extraData,
                                     std::size_t extraSize)
    : m_type(type), m_buffer(buffer), m_size(size), m_capacity(capacity), m_extraData(extraData), m_extraSize(extraSize)
{
}

PacketInternal* OldPacketInternal::create(std::size_t size, std::size_t extra)
{
    PacketManagerInternal& manager = *PacketManagerInternal::instance();
    switch (manager.policy())
    {
    case CPacketManager::policySystem:
    case CPacketManager::policyPool:
        return createJoined(manager, size, extra);
    case CPacketManager::policySplitPool:
        return createSplit(manager, size, extra);
    default:
        ORTHA_LOG(levelDebug, "tracepoint:\n");
        return nullptr;
    }
}

OldPacketInternal* OldPacketInternal::createJoined(PacketManagerInternal& manager, std::size_t size, std::size_t extra)
{
    unsigned char* block = nullptr;
    std::size_t data = 0;
    std::size_t rest = 0;
    std::size_t total = 0;
    if (size <= maxSize && extra <= maxSize)
    {
        data = manager.alignUp(size);
        rest = manager.alignUp(extra + recordSize);
        total = roundToRecord(data + rest);
        block = static_cast<unsigned char*>(manager.malloc(&total));
    }
    if (!block)
    {
        ORTHA_LOG(levelWarn, "PacketInternal::create(): NO enough, need size:%" PRIu32 " ext:%" PRIu32 "\n", cut(size), cut(extra));
        reportNoMemory();
        return nullptr;
    }
    if (manager.policy() == CPacketManager::policyPool)
    {
        data = total - rest;  // what the pool gave beyond the request is the data's
    }
    return new (block + total - recordSize) OldPacketInternal(typeManaged, block, size, data, block + data, extra);
}

OldPacketInternal* OldPacketInternal::createSplit(PacketManagerInternal& manager, std::size_t size, std::size_t extra)
{
    unsigned char* data = nullptr;
    std::size_t capacity = size;
    if (size != 0)
    {
        data = static_cast<unsigned char*>(manager.malloc(&capacity));
        if (!data)
        {
            ORTHA_LOG(levelWarn, "PacketInternal::create(): 2 NO enough, need size:%" PRIu32 " ext:%" PRIu32 "\n", cut(size), cut(extra));
            reportNoMemory();
            return nullptr;
        }
    }
    const HeapBlock heap(manager, extra);
    if (!heap.memory)
    {
        if (data)
        {
            manager.free(data);
        }
        reportNoRecord(heap.size);
        return nullptr;
    }
    return new (heap.record()) OldPacketInternal(typeManaged, data, size, capacity, heap.memory, extra);
}

PacketInternal* OldPacketInternal::create(const CPacket& parent, std::size_t offset, std::size_t size, std::size_t extra)
{
    const PacketManagerInternal& manager = *PacketManagerInternal::instance();
    const std::size_t whole = parent.size();
    if (offset >= whole || size > whole - offset)
    {
        ORTHA_LOG(levelWarn,
                  "PacketInternal::create() offset or size is invalid!! huge_size:%" PRIu32 ", offset:%" PRIu32 ", size:%" PRIu32 "\n",
                  cut(whole), cut(offset), cut(size));
        return nullptr;
    }
    const HeapBlock heap(manager, extra);
    if (!heap.memory)
    {
        reportNoRecord(heap.size);
        return nullptr;
    }
    unsigned char* const buffer = parent.getBuffer();
    auto* const range =
        new (heap.record()) OldPacketInternal(typeRange, buffer ? buffer + offset : nullptr, size, size, heap.memory, extra);
    range->m_parent = parent;
    return range;
}

PacketInternal* OldPacketInternal::create(void* buffer, std::size_t size, const FreeFunction& freeFunction)
{
    return create(buffer, size, 0, freeFunction);
}

PacketInternal* OldPacketInternal::create(void* buffer, std::size_t size, std::size_t extra, const FreeFunction& freeFunction)
{
    return createAlone(typeExternal, buffer, size, extra, freeFunction);
}

PacketInternal* OldPacketInternal::create(unsigned int capacity, const FreeFunction& freeFunction, void* arg, std::size_t extra)
{
    OldPacketInternal* const packet = createAlone(typeLateBuffer, nullptr, capacity, extra, freeFunction);
    if (packet)
    {
        packet->m_lateArg = arg;
    }
    return packet;
}

// A packet whose record and extra region have blocks of their own.
OldPacketInternal* OldPacketInternal::createAlone(Type type, void* buffer, std::size_t size, std::size_t extra,
                                                  const FreeFunction& freeFunction)
{
    PacketManagerInternal::instance();  // the first packet of any form fixes the configuration
    void* const extraData = extra != 0 ? std::malloc(extra) : nullptr;
    auto* const packet = new (std::nothrow) OldPacketInternal(type, static_cast<unsigned char*>(buffer), size, size, extraData, extra);
    if (!packet)
    {
        std::free(extraData);
        reportNoRecord(recordSize);
        return nullptr;
    }
    packet->m_freeFunction = freeFunction;
    return packet;
}

void OldPacketInternal::destroy() noexcept
{
    // What is still needed when the record is gone.
    void* const extraData = m_extraData;
    unsigned char* const buffer = m_buffer;
    switch (m_type)
    {
    case typeManaged:
    {
        this->~OldPacketInternal();
        PacketManagerInternal& manager = *PacketManagerInternal::instance();
        manager.free(buffer);
        if (manager.policy() == CPacketManager::policySplitPool)
        {
            std::free(extraData);
        }
        return;
    }
    case typeRange:
        this->~OldPacketInternal();
        std::free(extraData);
        return;
    case typeExternal:
        if (!m_freeFunction.empty())
        {
            m_freeFunction(buffer, m_size);
        }
        delete this;
        std::free(extraData);
        return;
    case typeLateBuffer:
    {
        const FreeFunction freeFunction = m_freeFunction;
        void* const arg = m_lateArg;
        const std::size_t capacity = m_capacity;
        delete this;
        std::free(extraData);
        if (buffer && !freeFunction.empty())
        {
            freeFunction(arg, capacity);
        }
        return;
    }
    }
    static constexpr Ortha::Detail::SourceText<sizeof(__FILE__)> source(__FILE__);
    Ortha::Detail::assertionFailedMsg("false", "PacketInternal::destroy(): unreachable!\n", ORTHA_FUNCTION_SIGNATURE, source.text,
                                      __LINE__);
}

std::size_t OldPacketInternal::putBuffer(void* data, std::size_t size)
{
    if (m_type == typeLateBuffer)
    {
        m_buffer = static_cast<unsigned char*>(data);
        m_size = size;
        return size;
    }
    const std::size_t n = m_buffer ? std::min(size, m_capacity - m_size) : 0;
    if (n != 0)
    {
        PacketManagerInternal::instance()->memcpy(m_buffer + m_size, data, n);
        m_size += n;
    }
    return n;
}

bool OldPacketInternal::resize(std::size_t size)
{
    if (size > m_capacity)
    {
        return false;
    }
    m_size = size;
    return true;
}

CPacket::CPacket(std::size_t size, std::size_t extra) : m_internal(OldPacketInternal::create(size, extra)) {}

CPacket::CPacket(void* buffer, std::size_t size, FreeFunction freeFunction)
    : m_internal(OldPacketInternal::create(buffer, size, freeFunction))
{
}

CPacket::CPacket(void* buffer, std::size_t size, std::size_t extra, FreeFunction freeFunction)
    : m_internal(OldPacketInternal::create(buffer, size, extra, freeFunction))
{
}

CPacket::CPacket(const CPacket& packet, std::size_t offset, std::size_t size, std::size_t extra)
    : m_internal(OldPacketInternal::create(packet, offset, size, extra))
{
}

CPacket::CPacket(unsigned int capacity, FreeFunction freeFunction, void* arg, std::size_t extra)
    : m_internal(OldPacketInternal::create(capacity, freeFunction, arg, extra))
{
}

}  // namespace General::Memory
