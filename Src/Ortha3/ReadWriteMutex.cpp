#include "ortha/ortha3/ReadWriteMutex.h"

#include <atomic>
#include <cstdint>
#include <optional>

#include "ortha/ortha3/Assert.h"

#include "Src/Ortha3/Log.h"
#include "Src/Platform/CountingSemaphore.h"
#include "Src/Platform/Event.h"
#include "Src/Platform/Lock.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha {

namespace {

// Readers count in one word with two marks of the writer, so that a reader that finds the gate open enters and leaves with one atomic
// operation each. With the gate closed readers queue on the gate's lock, which the writer keeps for as long as it holds the lock.
class SpinMode
{
public:
    void enterReading()
    {
        std::uint32_t word = m_word.load(std::memory_order_relaxed);
        while ((word & gateClosed) == 0)
        {
            if (m_word.compare_exchange_weak(word, word + 1, std::memory_order_acquire, std::memory_order_relaxed))
            {
                return;
            }
        }
        m_gate.enter();
        m_word.fetch_add(1, std::memory_order_acquire);
        m_gate.leave();
    }

    void enterWriting()
    {
        m_gate.enter();
        ++m_gateDepth;
        m_word.fetch_or(gateClosed, std::memory_order_relaxed);
        while ((m_word.load(std::memory_order_acquire) & readersMask) != 0)
        {
            Platform::sleepMilliseconds(0);
        }
        m_word.fetch_or(writing, std::memory_order_relaxed);
    }

    bool leave()
    {
        std::uint32_t word = m_word.load(std::memory_order_relaxed);
        while ((word & readersMask) != 0)
        {
            if (m_word.compare_exchange_weak(word, word - 1, std::memory_order_release, std::memory_order_relaxed))
            {
                return true;
            }
        }
        if ((word & writing) != 0)
        {
            leaveWriting();
            return true;
        }
        ORTHA_LOG(levelError, "No lock, maybe err\n");
        return false;
    }

    void close()
    {
        const std::uint32_t word = m_word.load(std::memory_order_relaxed);
        if ((word & readersMask) != 0)
        {
            ORTHA_LOG(levelError, "has lock Read count:%d, maybe err\n", static_cast<int>(word & readersMask));
        }
        if ((word & writing) != 0)
        {
            ORTHA_LOG(levelError, "has lock write, maybe err\n");
            leaveWriting();
        }
    }

private:
    static constexpr std::uint32_t writing = 0x80000000u;
    static constexpr std::uint32_t gateClosed = 0x40000000u;
    static constexpr std::uint32_t readersMask = gateClosed - 1;

    void leaveWriting()
    {
        const std::uint32_t marks = --m_gateDepth == 0 ? writing | gateClosed : writing;
        m_word.fetch_and(~marks, std::memory_order_release);
        m_gate.leave();
    }

    std::atomic<std::uint32_t> m_word{0};
    Platform::CriticalSection m_gate;
    int m_gateDepth = 0;  // enters of the gate by its owner; guarded by the gate
};

// Writers sleep on a semaphore, through which the lock is handed to one of them; readers sleep on an event, which lets all of them in.
class WriterFirstMode
{
public:
    [[nodiscard]] bool valid() const { return m_readerEvent.valid() && m_writerSemaphore.valid(); }

    void enterReading()
    {
        m_stateLock.enter();
        bool letOthersIn = false;
        if (m_waitingWriters < 1 && m_state < writerHolds)
        {
            ++m_state;
            letOthersIn = m_state == 1 && m_waitingReaders != 0;
        }
        else
        {
            ++m_waitingReaders;
            do
            {
                const std::uint32_t ticket = m_readerEvent.reset();
                m_stateLock.leave();
                m_readerEvent.wait(ticket);
                m_stateLock.enter();
            } while (m_waitingWriters != 0 || m_state >= writerHolds);
            --m_waitingReaders;
            ++m_state;
        }
        m_stateLock.leave();
        if (letOthersIn)
        {
            m_readerEvent.set();
        }
    }

    void enterWriting()
    {
        m_stateLock.enter();
        if (m_state == 0)
        {
            m_state = writerHolds;
            m_stateLock.leave();
            return;
        }
        ++m_waitingWriters;
        m_stateLock.leave();
        // Whoever posts has set the state for the new owner.
        m_writerSemaphore.wait(Platform::CountingSemaphore::forever);
    }

    bool leave()
    {
        m_stateLock.enter();
        if (m_state > 0 && m_state < writerHolds)
        {
            leaveReading();
            m_stateLock.leave();
            return true;
        }
        if (m_state != writerHolds)
        {
            m_stateLock.leave();
            return false;
        }
        const bool handOver = m_waitingWriters != 0;
        bool letReadersIn = false;
        if (handOver)
        {
            --m_waitingWriters;
        }
        else
        {
            m_state = 0;
            letReadersIn = m_waitingReaders != 0;
        }
        m_stateLock.leave();
        if (handOver)
        {
            m_writerSemaphore.post();
        }
        else if (letReadersIn)
        {
            m_readerEvent.set();
        }
        return true;
    }

private:
    static constexpr std::uint32_t writerHolds = 0x10000;

    void leaveReading()
    {
        if (--m_state != 0)
        {
            return;
        }
        if (m_waitingReaders != 0)
        {
            m_readerEvent.reset();
        }
        if (m_waitingWriters != 0)
        {
            --m_waitingWriters;
            m_state = writerHolds;
            m_writerSemaphore.post();
        }
    }

    Platform::CriticalSection m_stateLock;  // guards the three words; never held while sleeping
    int m_waitingWriters = 0;
    int m_waitingReaders = 0;
    std::uint32_t m_state = 0;  // 0 free; 1 to 0xFFFF readers; 0x10000 a writer
    Platform::Event m_readerEvent;
    Platform::CountingSemaphore m_writerSemaphore{0, 1};
};

}  // namespace

struct CReadWriteMutex::RWMutexInternal
{
    const RWPriority m_rwPriority;
    SpinMode m_spin;
    std::optional<WriterFirstMode> m_writerFirst;  // in that mode alone: the system's objects behind it are not free
};

CReadWriteMutex::CReadWriteMutex() : CReadWriteMutex(priorityDefault) {}

CReadWriteMutex::CReadWriteMutex(RWPriority priority)
    : m_internal(new RWMutexInternal{priority == priorityWriter ? priorityWriter : priorityDefault, {}, {}})
{
    ORTHA_ASSERT(m_internal);
    if (priority == priorityWriter)
    {
        m_internal->m_writerFirst.emplace();
        ORTHA_ASSERT(m_internal->m_writerFirst->valid());
    }
    if (priority != priorityDefault && priority != priorityWriter)
    {
        ORTHA_LOG(levelWarn, "this:%p Input rwpriority level error, priorityDefault used!\n", static_cast<void*>(this));
    }
}

CReadWriteMutex::~CReadWriteMutex()
{
    if (m_internal->m_rwPriority == priorityDefault)
    {
        m_internal->m_spin.close();
    }
    delete m_internal;
}

bool CReadWriteMutex::enterReading()
{
    if (m_internal->m_rwPriority == priorityDefault)
    {
        m_internal->m_spin.enterReading();
    }
    else
    {
        m_internal->m_writerFirst->enterReading();
    }
    return true;
}

bool CReadWriteMutex::enterWriting()
{
    if (m_internal->m_rwPriority == priorityDefault)
    {
        m_internal->m_spin.enterWriting();
    }
    else
    {
        m_internal->m_writerFirst->enterWriting();
    }
    return true;
}

bool CReadWriteMutex::leave()
{
    return m_internal->m_rwPriority == priorityDefault ? m_internal->m_spin.leave() : m_internal->m_writerFirst->leave();
}

}  // namespace General::Ortha
