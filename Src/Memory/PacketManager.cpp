#include "ortha/ortha3/PacketManager.h"

#include <algorithm>
#include <bit>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <new>

#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Memory/PacketManagerInternal.h"
#include "Src/Ortha3/Log.h"

namespace General::Memory {

using namespace Ortha;

struct PacketManagerInternal::Configuration
{
    std::atomic<bool> configurable{true};
    Policy policy = CPacketManager::policySystem;
    PoolParameter param{2097152, 1024, 4};
    MemoryOperator memop{&std::malloc, &std::free, &std::memcpy};
};

// Never destroyed: packets may be made while the process exits.
PacketManagerInternal::Configuration& PacketManagerInternal::configuration()
{
    static Configuration& s_configuration = *new Configuration;
    return s_configuration;
}

void PacketManagerInternal::config(Policy policy, const MemoryOperator* memop, const PoolParameter* param)
{
    Configuration& configuration = PacketManagerInternal::configuration();
    if (!configuration.configurable)
    {
        ORTHA_LOG(levelWarn, "PacketManagerInternal::config() failured: Packet Manager has been configured!\n");
        return;
    }
    if (policy > CPacketManager::policyExternal)
    {
        ORTHA_LOG(levelWarn, "PacketManagerInternal::config() failured: policy %" PRIu32 " is unknown!\n", std::uint32_t{policy});
        return;
    }
    if (policy != CPacketManager::policyUnchanged)
    {
        configuration.policy = policy;
    }
    if (param)
    {
        ORTHA_ASSERT(param->chunkSize >= 1024 && param->chunkSize > 0 && param->totalSize % param->chunkSize == 0);
        ORTHA_ASSERT(std::has_single_bit(param->chunkSize) && param->chunkSize <= 0x80000000u);
        ORTHA_ASSERT(param->totalSize / param->chunkSize <= 0x7FFFFFFF);
        ORTHA_ASSERT(param->alignSize >= 4);
        configuration.param = *param;
    }
    if (memop)
    {
        ORTHA_ASSERT(!memop->malloc.empty() && !memop->free.empty() && !memop->memcpy.empty());
        configuration.memop = *memop;
    }
}

void PacketManagerInternal::getConfig(Policy& policy, PoolParameter& param)
{
    policy = configuration().policy;
    param = configuration().param;
}

PacketManagerInternal::PacketManagerInternal()
    : m_policy(configuration().policy),
      m_param(configuration().param),
      m_memop(configuration().memop),
      m_alignSize(std::max<std::size_t>(std::bit_floor(static_cast<std::uint32_t>(m_param.alignSize)), 1))
{
    configuration().configurable = false;
    if (m_policy == CPacketManager::policyPool || m_policy == CPacketManager::policySplitPool)
    {
        m_rawBuffer = static_cast<unsigned char*>(m_memop.malloc(m_param.totalSize + m_param.chunkSize));
        if (!m_rawBuffer)
        {
            ORTHA_LOG(levelFatal, "sm_param.chunkSize malloc failed!\n");
        }
        ORTHA_ASSERT(m_rawBuffer);
        m_pool.emplace(m_rawBuffer, m_param.totalSize, m_param.chunkSize);
    }
}

// Apart from the constructor, so that a print hook finds the object if it uses packets.
void PacketManagerInternal::onCreated() const
{
    if (m_policy == CPacketManager::policySystem)
    {
        ::logInfo("CPacketManager: System Policy\n");
    }
    if (!m_pool)
    {
        return;
    }
    const auto chunks = static_cast<std::uint32_t>(m_pool->chunkCount());
    const auto lists = static_cast<std::uint32_t>(m_pool->listCount());
    ORTHA_LOG(levelInfo, "CPacketManager: malloc total:%" PRIu32 " pagesize:%" PRIu32 "blockCount:%d ManagermentSize:%" PRIu32 "\n",
              static_cast<std::uint32_t>(m_param.totalSize), static_cast<std::uint32_t>(m_param.chunkSize), m_pool->chunkCount(),
              static_cast<std::uint32_t>(sizeof(ChunkNode)) * (chunks + lists));
    ORTHA_LOG(levelInfo, "AddrRange:%p/%p)\n", static_cast<void*>(m_pool->begin()),
              static_cast<void*>(m_pool->begin() + m_param.totalSize));
}

PacketManagerInternal::~PacketManagerInternal()
{
    if (m_rawBuffer)
    {
        m_memop.free(m_rawBuffer);
    }
}

void* PacketManagerInternal::malloc(std::size_t* size)
{
    if (!m_pool)
    {
        return m_memop.malloc(*size);
    }
    const ChunkNode* const node = m_pool->allocate(*size);
    if (!node)
    {
        ORTHA_LOG(levelWarn, "CPacket No Free Space, totalSize:%" PRIu32 ", freeSize:%" PRIu32 " \n",
                  static_cast<std::uint32_t>(bufferSize()), static_cast<std::uint32_t>(freeSize()));
        if (m_statistics)
        {
            dumpNodes();
        }
        return nullptr;
    }
    if (m_statistics)
    {
        remember(*node, *size);
    }
    return node->buffer;
}

void PacketManagerInternal::remember(const ChunkNode& node, std::size_t size)
{
    CGuard guard(m_statisticsMutex);
    if (m_statistics)
    {
        try
        {
            m_nodes[node.id] = {CThread::getCurrentThreadID(), size};
        }
        catch (const std::bad_alloc&)  // one block that is not counted
        {
        }
    }
}

void PacketManagerInternal::free(void* ptr)
{
    if (!m_pool)
    {
        m_memop.free(ptr);
        return;
    }
    if (!ptr)
    {
        return;
    }
    const std::int32_t id = m_pool->idOf(ptr);
    if (m_statistics)
    {
        // While the block is still in use: afterwards the entry could be that of the next user.
        CGuard guard(m_statisticsMutex);
        m_nodes.erase(id);
    }
    m_pool->release(id);
}

void* PacketManagerInternal::memcpy(void* dst, const void* src, std::size_t n)
{
    if (m_pool && !(m_pool->contains(dst) && m_pool->contains(src)))
    {
        return std::memcpy(dst, src, n);
    }
    return m_memop.memcpy(dst, src, n);
}

void PacketManagerInternal::enableNodesStatistics(bool enable)
{
    CGuard guard(m_statisticsMutex);
    m_statistics = enable;
    if (!enable)
    {
        m_nodes.clear();
    }
}

void PacketManagerInternal::dumpStatistics()
{
    struct Used
    {
        int nodes = 0;
        std::size_t size = 0;
    };
    std::map<int, Used> threadUsedInfo;
    std::size_t count = 0;
    std::size_t total = 0;
    {
        CGuard guard(m_statisticsMutex);
        count = m_nodes.size();
        for (const auto& [id, info] : m_nodes)
        {
            total += info.size;
            try
            {
                Used& used = threadUsedInfo[info.thread];
                ++used.nodes;
                used.size += info.size;
            }
            catch (const std::bad_alloc&)  // a thread that is missing from the table, not from the total
            {
            }
        }
    }
    for (const auto& [thread, used] : threadUsedInfo)
    {
        ORTHA_LOG(levelInfo, "ThreadID %d  nodes= %d  size(K)= %ld\n", thread, used.nodes, static_cast<long>(used.size >> 10));
    }
    ORTHA_LOG(levelInfo, "Total  unfree count = %ld packetUsed(K) %d\n", static_cast<long>(count), static_cast<int>(total / 1024));
}

void PacketManagerInternal::dumpNodes()
{
    if (m_statistics)
    {
        dumpStatistics();
    }
    switch (m_policy)
    {
    case CPacketManager::policySystem:
    case CPacketManager::policySplitPool:
        ORTHA_LOG(levelInfo, "CPacketManager dump: SYS Policy\n");
        break;
    case CPacketManager::policyPool:
        ORTHA_LOG(levelInfo, "CPacketManager: dump FreeList\n");
        m_pool->printNodeInfo();
        break;
    default:
        break;
    }
}

CPacketManager::CPacketManager() : m_internal(PacketManagerInternal::instance()) {}

CPacketManager::~CPacketManager()
{
    m_internal = nullptr;
}

void CPacketManager::config(Policy policy, MemoryOperator* memop, PoolParameter* param)
{
    PacketManagerInternal::config(policy, memop, param);
}

void CPacketManager::getConfig(Policy& policy, PoolParameter& param)
{
    PacketManagerInternal::getConfig(policy, param);
}

CPacketManager* CPacketManager::instance()
{
    return Singleton<CPacketManager>::instance();
}

void* CPacketManager::malloc(std::size_t size)
{
    return m_internal->malloc(&size);
}

void CPacketManager::free(void* ptr)
{
    m_internal->free(ptr);
}

void* CPacketManager::memcpy(void* dst, const void* src, std::size_t n)
{
    return m_internal->memcpy(dst, src, n);
}

std::size_t CPacketManager::getBufferSize() const
{
    return m_internal->bufferSize();
}

std::size_t CPacketManager::getFreeSize() const
{
    return m_internal->freeSize();
}

unsigned char* CPacketManager::getPoolBuffer() const
{
    return m_internal->poolBuffer();
}

void CPacketManager::enableNodesStatistics(bool enable)
{
    m_internal->enableNodesStatistics(enable);
}

void CPacketManager::dumpNodes()
{
    m_internal->dumpNodes();
}

bool CPacketManager::advisePacket()
{
    ORTHA_LOG(levelError, "USE_PACKET_ADVISE mode is not used!\n");
    return false;
}

}  // namespace General::Memory
