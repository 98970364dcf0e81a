#include "ortha/Packet.h"

#include <cstring>

#include "ortha/ortha3/PacketManager.h"

#include "Src/Ortha3/Singleton.h"

using NewPacket = General::Memory::CPacket;
using NewManager = General::Memory::CPacketManager;

namespace {

unsigned long cut(std::size_t value)
{
    return static_cast<std::uint32_t>(value);
}

// A handle of its own, or null.
NewPacket* handleOn(const NewPacket& packet)
{
    return packet.valid() ? new NewPacket(packet) : nullptr;
}

std::size_t sizeOf(std::int32_t headerSize)
{
    return static_cast<std::size_t>(headerSize);
}

}  // namespace

std::int32_t CPacket::m_headerSize = 128;

CPacket::CPacket() : m_packet(nullptr) {}

CPacket::CPacket(unsigned long size) : m_packet(handleOn(NewPacket(size, sizeOf(m_headerSize)))) {}

CPacket::CPacket(unsigned int capacity, General::Ortha::TFunction2<void, void*, std::size_t> freeFunction, void* arg)
    : m_packet(handleOn(NewPacket(capacity, freeFunction, arg, sizeOf(m_headerSize))))
{
}

CPacket::CPacket(const CPacket& packet) : m_packet(packet.m_packet ? handleOn(*packet.m_packet) : nullptr) {}

CPacket::CPacket(const NewPacket& packet) : m_packet(handleOn(packet)) {}

CPacket::~CPacket()
{
    delete m_packet;
}

CPacket& CPacket::operator=(const CPacket& packet)
{
    if (packet.m_packet && m_packet)
    {
        *m_packet = *packet.m_packet;
    }
    else if (packet.m_packet)
    {
        m_packet = new NewPacket(*packet.m_packet);
    }
    else
    {
        delete m_packet;
        m_packet = nullptr;
    }
    return *this;
}

CPacket::operator General::Memory::CPacket() const
{
    return m_packet ? *m_packet : NewPacket();
}

bool CPacket::Valid() const
{
    return m_packet != nullptr;
}

bool CPacket::Invalid() const
{
    return m_packet == nullptr;
}

unsigned long CPacket::GetSize() const
{
    return m_packet ? cut(m_packet->capacity()) : 0;
}

unsigned long CPacket::GetLength() const
{
    return m_packet ? cut(m_packet->size()) : 0;
}

unsigned long CPacket::SetLength(unsigned long length)
{
    return m_packet && m_packet->resize(length) ? 1 : 0;
}

unsigned long CPacket::GetLeft() const
{
    return m_packet ? cut(m_packet->capacity() - m_packet->size()) : 0;
}

unsigned long CPacket::PutBuffer(void* data, unsigned long size)
{
    return m_packet ? cut(m_packet->putBuffer(data, size)) : 0;
}

unsigned char* CPacket::GetBuffer() const
{
    return m_packet ? m_packet->getBuffer() : nullptr;
}

unsigned char* CPacket::GetHeader() const
{
    return m_packet ? static_cast<unsigned char*>(m_packet->getExtraData()) : nullptr;
}

unsigned long CPacket::GetHeaderSize() const
{
    return m_packet ? cut(m_packet->getExtraSize()) : 0;
}

void CPacket::ClearHeader()
{
    if (m_packet && m_packet->getExtraData())
    {
        std::memset(m_packet->getExtraData(), 0, m_packet->getExtraSize());
    }
}

namespace {

class CPacketManager : public IPacketManager
{
public:
    std::size_t getBufferSize() const override { return NewManager::instance()->getBufferSize(); }
    std::size_t getFreeSize() const override { return NewManager::instance()->getFreeSize(); }
    void dumpNodes() override { NewManager::instance()->dumpNodes(); }
};

}  // namespace

IPacketManager::~IPacketManager() = default;

void IPacketManager::config(int totalSize, int chunkSize, int headerSize)
{
    NewManager::PoolParameter pool{static_cast<std::size_t>(totalSize), static_cast<std::size_t>(chunkSize), 4};
    CPacket::m_headerSize = headerSize;
    NewManager::config(NewManager::policySplitPool, nullptr, &pool);
}

IPacketManager* IPacketManager::instance()
{
    return General::Ortha::Singleton<CPacketManager>::instance();
}
