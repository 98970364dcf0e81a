// CBuffer: bytes that are appended to.
//
//     CBuffer line;
//     line.setIncreasedSize(4096);            // grow in steps of 4 KiB
//     line.putBuffer(data, size);
//     send(line.getBuffer(), line.size());
//
// Data and bookkeeping are one block of the C runtime's malloc. A pointer from getBuffer() holds until the next operation that grows,
// resets or destroys the buffer. If memory runs out the operation logs an info line and leaves the buffer as it was.
//
// Threads: one thread at a time. Nothing here throws.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"

namespace General::Memory {

class ORTHA_API CBuffer
{
public:
    /// Nothing allocated.
    CBuffer() noexcept : m_internal(nullptr) {}
    ~CBuffer();
    CBuffer(const CBuffer&) = delete;
    CBuffer& operator=(const CBuffer&) = delete;

    /// Appends a copy of `size` bytes, growing to the size needed, rounded up to a multiple of the growth step if one is set. Gives `size`,
    /// or 0 if memory ran out. `data` must not lie in this buffer.
    std::size_t putBuffer(unsigned char* data, std::size_t size);
    /// The data, aligned as malloc's memory; null while size() is 0.
    [[nodiscard]] unsigned char* getBuffer() const;
    /// Bytes in use.
    [[nodiscard]] std::size_t size() const;
    /// Sets the bytes in use; new ones are not cleared. Above capacity() the buffer grows, and with a growth step both size() and
    /// capacity() become `size` rounded up to its multiple.
    void resize(std::size_t size);
    /// Bytes that there is room for.
    [[nodiscard]] std::size_t capacity() const;
    /// Makes room for `size` bytes in all, exactly; never less than there is. size() stays.
    void reserve(std::size_t size);
    /// Frees everything; the growth step goes with it.
    void reset();
    /// Sets the growth step in bytes; 0, as at first, grows to the exact need. A buffer without memory gets room for one step.
    void setIncreasedSize(std::size_t size);

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Memory
