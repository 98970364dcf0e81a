// The manager of packet memory: the policy in force, and the pool if there is one.
#pragma once

#include <atomic>
#include <map>
#include <optional>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/PacketManager.h"

#include "Src/Memory/PacketPool.h"
#include "Src/Ortha3/Singleton.h"

namespace General::Memory {

/// Any thread, but for config().
class PacketManagerInternal
{
public:
    using Policy = CPacketManager::Policy;
    using MemoryOperator = CPacketManager::MemoryOperator;
    using PoolParameter = CPacketManager::PoolParameter;

    static PacketManagerInternal* instance() { return Ortha::Singleton<PacketManagerInternal>::instance(); }
    static void config(Policy policy, const MemoryOperator* memop, const PoolParameter* param);
    static void getConfig(Policy& policy, PoolParameter& param);

    /// Under a pool policy `*size` becomes the block's size.
    void* malloc(std::size_t* size);
    void free(void* ptr);
    void* memcpy(void* dst, const void* src, std::size_t n);

    Policy policy() const { return m_policy; }
    /// `n` rounded up to the alignment inside packets. The caller sees to it that the result fits.
    std::size_t alignUp(std::size_t n) const { return (n + m_alignSize - 1) & ~(m_alignSize - 1); }

    std::size_t bufferSize() const { return m_pool ? m_param.totalSize : 0; }
    std::size_t freeSize() const { return m_pool ? m_pool->freeSize() : 0; }
    unsigned char* poolBuffer() const { return m_rawBuffer; }
    void enableNodesStatistics(bool enable);
    void dumpNodes();

private:
    friend class Ortha::Singleton<PacketManagerInternal>;
    struct Configuration;
    static Configuration& configuration();

    PacketManagerInternal();
    ~PacketManagerInternal();
    void onCreated() const;
    void remember(const ChunkNode& node, std::size_t size);
    void dumpStatistics();

    // As the configuration stood when it was first used.
    const Policy m_policy;
    const PoolParameter m_param;
    const MemoryOperator m_memop;
    const std::size_t m_alignSize;

    unsigned char* m_rawBuffer = nullptr;
    std::optional<PacketPool> m_pool;

    struct NodeInfo
    {
        int thread;
        std::size_t size;
    };
    std::atomic<bool> m_statistics{false};                                         // changed under m_statisticsMutex
    Ortha::CMutex m_statisticsMutex;                                               // never held together with the pool's mutex
    std::map<std::int32_t, NodeInfo> m_nodes ORTHA_GUARDED_BY(m_statisticsMutex);  // blocks in use, by their first chunk
};

}  // namespace General::Memory
