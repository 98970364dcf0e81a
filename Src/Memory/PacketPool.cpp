#include "Src/Memory/PacketPool.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "ortha/ortha3/Assert.h"

#include "Src/Ortha3/Log.h"

namespace General::Memory {

using namespace Ortha;

static_assert(sizeof(ChunkNode) == 32, "what the start-up line says of the cost of a chunk");

namespace {

std::uint32_t log2(std::uint32_t x)
{
    return x == 0 ? 0 : static_cast<std::uint32_t>(std::bit_width(x)) - 1;
}

unsigned char* roundUp(unsigned char* memory, std::size_t chunkSize)
{
    return memory + (0 - reinterpret_cast<std::uintptr_t>(memory)) % chunkSize;
}

ChunkNode* allocateNodes(std::int32_t count)
{
    return static_cast<ChunkNode*>(std::malloc(sizeof(ChunkNode) * static_cast<std::size_t>(std::max(count, 1))));
}

}  // namespace

PacketPool::PacketPool(unsigned char* memory, std::size_t totalSize, std::size_t chunkSize)
    : m_totalSize(totalSize),
      m_chunkOrder(log2(static_cast<std::uint32_t>(chunkSize))),
      m_chunkCount(static_cast<std::int32_t>(totalSize / chunkSize)),
      m_listCount(static_cast<std::int32_t>(log2(static_cast<std::uint32_t>(m_chunkCount))) + 1),
      m_poolBuffer(roundUp(memory, chunkSize)),
      m_chunkNodes(allocateNodes(m_chunkCount)),
      m_bufferLists(allocateNodes(m_listCount))
{
    if (!m_chunkNodes)
    {
        ORTHA_LOG(levelFatal, "ChunkNode malloc failed!\n");
    }
    ORTHA_ASSERT(m_chunkNodes);
    if (!m_bufferLists)
    {
        ORTHA_LOG(levelFatal, "BufferList malloc failed!\n");
    }
    ORTHA_ASSERT(m_bufferLists);

    for (std::int32_t i = 0; i < m_chunkCount; ++i)
    {
        m_chunkNodes[i] = {i, 0, m_poolBuffer + (static_cast<std::size_t>(i) << m_chunkOrder), nullptr, nullptr};
    }
    std::int32_t next = 0;
    for (std::int32_t order = m_listCount - 1; order >= 0; --order)
    {
        ChunkNode& head = m_bufferLists[order];
        head = {0, order + 1, nullptr, &head, &head};
        if ((m_chunkCount >> order & 1) != 0)
        {
            insert(m_chunkNodes[next], order);
            next += 1 << order;
        }
    }
}

PacketPool::~PacketPool()
{
    std::free(m_bufferLists);
    std::free(m_chunkNodes);
}

const ChunkNode* PacketPool::allocate(std::size_t& size)
{
    if (size == 0 || size > m_totalSize)
    {
        return nullptr;
    }
    const auto wanted = static_cast<std::int32_t>(std::bit_width((size - 1) >> m_chunkOrder));
    CGuard guard(m_mutex);
    std::int32_t order = wanted;
    while (order < m_listCount && m_bufferLists[order].next == &m_bufferLists[order])
    {
        ++order;
    }
    if (order >= m_listCount)
    {
        return nullptr;
    }
    size = std::size_t{1} << (static_cast<std::uint32_t>(wanted) + m_chunkOrder);
    return &split(order, wanted);
}

std::int32_t PacketPool::idOf(const void* ptr) const
{
    const std::ptrdiff_t id = (static_cast<const unsigned char*>(ptr) - m_poolBuffer) >> m_chunkOrder;
    ORTHA_ASSERT(id >= 0);
    ORTHA_ASSERT(id < m_chunkCount);
    return static_cast<std::int32_t>(id);
}

void PacketPool::release(std::int32_t id)
{
    CGuard guard(m_mutex);
    std::int32_t& state = m_chunkNodes[id].order;
    ORTHA_ASSERT(state < 0);
    std::int32_t order = -state - 1;
    state = 0;
    for (; order + 1 < m_listCount; ++order)
    {
        const std::int32_t buddy = id ^ (1 << order);
        if (buddy >= m_chunkCount || m_chunkNodes[buddy].order != order + 1)
        {
            break;
        }
        unlink(m_chunkNodes[buddy]);
        id = std::min(id, buddy);
    }
    insert(m_chunkNodes[id], order);
}

void PacketPool::insert(ChunkNode& node, std::int32_t order)
{
    ChunkNode& head = m_bufferLists[order];
    node.order = order + 1;
    node.pre = &head;
    node.next = head.next;
    head.next->pre = &node;
    head.next = &node;
}

void PacketPool::unlink(ChunkNode& node)
{
    node.order = 0;
    node.pre->next = node.next;
    node.next->pre = node.pre;
}

// The lower half goes back on a list and the upper one is split on, so that the block handed out is the highest part of the one taken.
ChunkNode& PacketPool::split(std::int32_t order, std::int32_t wanted)
{
    ChunkNode* node = m_bufferLists[order].next;
    unlink(*node);
    while (order > wanted)
    {
        --order;
        insert(*node, order);
        node += 1 << order;
    }
    node->order = -(wanted + 1);
    return *node;
}

bool PacketPool::contains(const void* ptr) const
{
    return static_cast<std::size_t>(static_cast<const unsigned char*>(ptr) - m_poolBuffer) < m_totalSize;
}

std::size_t PacketPool::freeSize() const
{
    CGuard guard(m_mutex);
    std::size_t chunks = 0;
    for (std::int32_t order = 0; order < m_listCount; ++order)
    {
        for (const ChunkNode* node = m_bufferLists[order].next; node != &m_bufferLists[order]; node = node->next)
        {
            chunks += std::size_t{1} << order;
        }
    }
    return chunks << m_chunkOrder;
}

void PacketPool::printNodeInfo() const
{
    const auto address = [](const void* node) { return node; };  // as "%p" takes it
    CGuard guard(m_mutex);
    for (std::int32_t i = 0; i < m_listCount; ++i)
    {
        const ChunkNode* const head = &m_bufferLists[i];
        ORTHA_LOG(levelInfo, "BufferList id:%d, order:%d, head:%p, headpre:%p, next:%p\n", i, head->order, address(head),
                  address(head->pre), address(head->next));
        int position = 0;
        for (const ChunkNode* node = head->next; node != head; node = node->next)
        {
            ORTHA_LOG(levelInfo, "bufflist:%d, id:%d, realIdx:%d, self:%p, order:%d, pre:%p, next:%p\n", i, position++, node->id,
                      address(node), node->order, address(node->pre), address(node->next));
        }
    }
}

}  // namespace General::Memory
