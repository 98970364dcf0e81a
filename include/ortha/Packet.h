// CPacket and IPacketManager of the older interface: a packet of ortha3/Packet.h under older terms. The header of an older packet is the
// extra region, its length the size, its size the capacity.
//
//     IPacketManager::config(64 << 20, 1024, 64);                   // before the first packet
//     CPacket frame(1500);                                          // with a header of 64 bytes
//     if (frame.Valid()) { frame.SetLength(socket.read(frame.GetBuffer(), frame.GetSize())); }
//     General::Memory::CPacket newer = frame;                       // shares the bytes, as copies do
//
// Numbers of bytes are counted in 32 bits. On an invalid packet every operation gives 0 or null and does nothing.
//
// Threads: as the newer classes; config() at start-up.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ortha/Function.h"
#include "ortha/ortha3/Packet.h"

class ORTHA_API CPacket
{
public:
    /// An invalid packet.
    CPacket();
    /// `size` bytes, with a header of the size that IPacketManager::config() set; 128 by default. Invalid, with a log line, without memory.
    explicit CPacket(unsigned long size);
    /// Stands for `capacity` bytes that PutBuffer() will bring; at the end calls `freeFunction(arg, capacity)` if a buffer came.
    CPacket(unsigned int capacity, General::Ortha::TFunction2<void, void*, std::size_t> freeFunction, void* arg);
    /// Shares the block; invalid if `packet` is.
    CPacket(const CPacket& packet);
    CPacket(const General::Memory::CPacket& packet);
    ~CPacket();
    CPacket& operator=(const CPacket& packet);

    /// Shares the block; an invalid packet if this one is.
    operator General::Memory::CPacket() const;

    [[nodiscard]] bool Valid() const;
    [[nodiscard]] bool Invalid() const;

    /// The most that GetLength() can become.
    [[nodiscard]] unsigned long GetSize() const;
    /// Bytes in use. A packet begins with its size as asked for.
    [[nodiscard]] unsigned long GetLength() const;
    /// Sets the bytes in use. 1; 0, and nothing changes, above GetSize(). Mind: not the length.
    unsigned long SetLength(unsigned long length);
    /// GetSize() - GetLength().
    [[nodiscard]] unsigned long GetLeft() const;
    /// Appends as many of the bytes as fit, or takes them over as they stand if the packet waits for its buffer. How many.
    unsigned long PutBuffer(void* data, unsigned long size);
    [[nodiscard]] unsigned char* GetBuffer() const;
    [[nodiscard]] unsigned char* GetHeader() const;
    [[nodiscard]] unsigned long GetHeaderSize() const;
    /// Fills the header with zeros.
    void ClearHeader();

private:
    friend class IPacketManager;
    static std::int32_t m_headerSize;

    General::Memory::CPacket* m_packet;  // null if invalid
};

class ORTHA_API IPacketManager
{
public:
    virtual ~IPacketManager();
    /// Bytes in the pool; 0 without one.
    [[nodiscard]] virtual std::size_t getBufferSize() const = 0;
    /// Bytes in the pool that no block has.
    [[nodiscard]] virtual std::size_t getFreeSize() const = 0;
    virtual void dumpNodes() = 0;

    /// Has packets live in a pool of `totalSize` bytes, in chunks of `chunkSize`, with their headers, of `headerSize` bytes from now on,
    /// beside it on the heap (policySplitPool of ortha3/PacketManager.h, which tells the bounds). After the first packet a warning, and
    /// nothing changes but the header size.
    static void config(int totalSize, int chunkSize, int headerSize);
    /// The one object of the process.
    static IPacketManager* instance();
};
