// TSignal0 to TSignal5: a fixed table of callbacks that one party fires and others attach to.
//
//     TSignal1<int> knocked(8);                                 // room for 8 procedures
//     knocked.attach(TFunction1<void, int>(&Door::onKnock, &door));
//     knocked(3);                                               // calls them all, in table order
//     knocked.detach(TFunction1<void, int>(&Door::onKnock, &door), true);    // and waits until it is not running any more
//
// A procedure runs on the firing thread with the signal's lock released. It may attach, detach (itself too) and fire. A procedure attached
// during a firing is called in that firing if its slot comes later. A detached procedure is not entered again, but may still be running
// elsewhere unless `detach` waited. A positional attach moves procedures: a firing under way may then skip one or call one twice.
// Procedures must not throw.
//
// | Slot     | fire enters | last firing leaves | attach      | detach   |
// |----------|-------------|--------------------|-------------|----------|
// | free     |             |                    | attached    |          |
// | attached | firing      |                    |             | free     |
// | firing   | firing      | attached           |             | draining |
// | draining |             | free               | (not taken) |          |
//
// Threads: any thread, at most 255 firings at once in one procedure. Two threads that attach the same procedure at one moment can both
// succeed. The signal must outlive all firing and detaching; its destructor does not wait. After construction nothing allocates.
#pragma once

#include <cstdint>

#include "ortha/ortha3/CPrintLog.h"
#include "ortha/ortha3/Function.h"
#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Thread.h"
#include "ortha/ortha3/detail/source_text.h"

namespace General::Ortha {

/// Failures of attach and detach; success is the number of procedures attached now.
enum SignalError
{
    errorNotFound = -1,   ///< detach: no such procedure, or it could not be found again
    errorAttached = -2,   ///< attach: the procedure is attached already
    errorFull = -3,       ///< attach: no free slot, or an unknown position
    errorEmptyProc = -4,  ///< the procedure is empty
    errorAnyProc = -5     ///< attach: the procedure is a search key (`typeAny`)
};

/// Where attach puts a procedure.
enum SignalPosition
{
    positionAny = 0,   ///< the first free slot
    positionBack = 1,  ///< the last slot; those behind the last free slot move one place to the front
    positionFront = 2  ///< the first slot; those before the first free slot move one place to the back
};

template <class... Args>
class TSignalN
{
public:
    using Proc = TFunctionN<void, Args...>;

    /// Makes a table of `maxSlots` free slots, at least 1. Throws what the allocation throws.
    explicit TSignalN(int maxSlots) : m_maxSlots(maxSlots), m_slots(new SignalSlot[static_cast<unsigned int>(maxSlots)]) {}
    ~TSignalN() { delete[] m_slots; }
    TSignalN(const TSignalN&) = delete;
    TSignalN& operator=(const TSignalN&) = delete;

    /// Adds a procedure at a SignalPosition. The number attached now, or a SignalError.
    int attach(const Proc& proc, int position = positionAny)
    {
        if (proc.empty())
        {
            return errorEmptyProc;
        }
        if (proc.type() == typeAny)
        {
            return errorAnyProc;
        }
        if (isAttached(proc))
        {
            return errorAttached;
        }
        CGuard guard(m_mutex);
        SignalSlot* slot = makeRoom(position);
        if (!slot)
        {
            return errorFull;
        }
        slot->proc = proc;
        slot->state = stateNormal;
        slot->running = 0;
        return ++m_attached;
    }

    /// Removes a procedure, or with a `typeAny` key every tagged binding of its function and object. With `wait` it returns when the
    /// procedure has left its running calls, looking every 10 milliseconds; the thread that began the last firing does not wait.
    /// The number attached now, or a SignalError.
    int detach(const Proc& proc, bool wait = false)
    {
        if (proc.empty())
        {
            return errorEmptyProc;
        }
        CGuard guard(m_mutex);
        bool removed = false;
        for (int i = 0; i < m_maxSlots; ++i)
        {
            if (m_slots[i].state != stateNormal || m_slots[i].proc != proc)
            {
                continue;
            }
            if (wait && !waitWhileRunning(proc, i))
            {
                return errorNotFound;
            }
            if (m_slots[i].state != stateNormal)
            {
                continue;  // another thread has detached it during the wait
            }
            m_slots[i].state = stateEmpty;
            --m_attached;
            if (proc.type() != typeAny)
            {
                return m_attached;
            }
            removed = true;
        }
        return removed ? m_attached : static_cast<int>(errorNotFound);
    }

    /// True if the procedure is attached; false for an empty one.
    [[nodiscard]] bool isAttached(const Proc& proc) const
    {
        CGuard guard(m_mutex);
        return !proc.empty() && findAttached(proc) >= 0;
    }

    /// Fires: calls every attached procedure in table order, each with copies of the arguments.
    void operator()(Args... args)
    {
        CGuard guard(m_mutex);
        m_firingThread = CThread::getCurrentThreadID();
        for (int i = 0; i < m_maxSlots; ++i)
        {
            if (m_slots[i].state != stateNormal)
            {
                continue;
            }
            const Proc curProc = m_slots[i].proc;
            ++m_slots[i].running;
            m_mutex.leave();
            curProc(args...);
            m_mutex.enter();
            if (m_slots[i].proc != curProc)
            {
                log(4, "operator()", __LINE__,
                    "the index of the current proc in the slotsList has changed when operator() released mutex\n");
                const int moved = findRunning(curProc);
                if (moved < 0)
                {
                    log(3, "operator()", __LINE__, "operator() index is abnormal, can not find back old proc\n");
                    continue;
                }
                i = moved;
            }
            --m_slots[i].running;
        }
    }

private:
    enum SlotState : std::int32_t
    {
        stateEmpty = 0,
        stateNormal = 1
    };

    // A slot takes a new procedure only when it is empty and nobody runs in it. Until then a detached procedure stays, so that the
    // firing that is inside finds its slot again.
    struct SignalSlot
    {
        Proc proc;
        SlotState state = stateEmpty;
        std::uint8_t running = 0;  // firings inside the procedure

        [[nodiscard]] bool free() const { return state == stateEmpty && running == 0; }
    };

    SignalSlot* makeRoom(int position) ORTHA_REQUIRES(m_mutex)
    {
        const bool fromBack = position == positionBack;
        if (!fromBack && position != positionAny && position != positionFront)
        {
            return nullptr;
        }
        int i = fromBack ? m_maxSlots - 1 : 0;
        while (i >= 0 && i < m_maxSlots && !m_slots[i].free())
        {
            i += fromBack ? -1 : 1;
        }
        if (i < 0 || i >= m_maxSlots)
        {
            return nullptr;
        }
        for (; fromBack && i < m_maxSlots - 1; ++i)
        {
            m_slots[i] = m_slots[i + 1];
        }
        for (; position == positionFront && i > 0; --i)
        {
            m_slots[i] = m_slots[i - 1];
        }
        return &m_slots[i];
    }

    int findAttached(const Proc& proc) const ORTHA_REQUIRES(m_mutex)
    {
        for (int i = 0; i < m_maxSlots; ++i)
        {
            if (m_slots[i].state == stateNormal && m_slots[i].proc == proc)
            {
                return i;
            }
        }
        return -1;
    }

    // Where a procedure that is in a call has moved to. A slot that is not in a call may hold an equal one that was detached earlier.
    int findRunning(const Proc& proc) const ORTHA_REQUIRES(m_mutex)
    {
        for (int i = 0; i < m_maxSlots; ++i)
        {
            if (m_slots[i].running != 0 && m_slots[i].proc == proc)
            {
                return i;
            }
        }
        return -1;
    }

    // Follows the procedure if the table is rearranged meanwhile; false if it is gone.
    bool waitWhileRunning(const Proc& proc, int& i) ORTHA_REQUIRES(m_mutex)
    {
        while (m_slots[i].running != 0 && m_slots[i].state == stateNormal && CThread::getCurrentThreadID() != m_firingThread)
        {
            m_mutex.leave();
            CThread::sleep(10);
            m_mutex.enter();
            if (m_slots[i].proc == proc)
            {
                continue;
            }
            log(4, "detach", __LINE__, "the index of the current proc in the slotsList has changed when detach() released mutex\n");
            const int moved = findAttached(proc);
            if (moved < 0)
            {
                log(3, "detach", __LINE__, "detach index is abnormal, can not find back old proc\n");
                return false;
            }
            i = moved;
        }
        return true;
    }

    static void log(int level, const char* function, int line, const char* text)
    {
        static constexpr Detail::SourceText<sizeof(__FILE__)> file(__FILE__);
        Ortha_logFilter(level, "Unknown", file.text, function, line, "Unknown", "%s", text);
    }

    const int m_maxSlots;
    int m_attached ORTHA_GUARDED_BY(m_mutex) = 0;
    SignalSlot* const m_slots ORTHA_GUARDED_BY(m_mutex);
    mutable CMutex m_mutex;
    int m_firingThread ORTHA_GUARDED_BY(m_mutex) = -1;  // began firing last
};

using TSignal0 = TSignalN<>;
template <class A1>
using TSignal1 = TSignalN<A1>;
template <class A1, class A2>
using TSignal2 = TSignalN<A1, A2>;
template <class A1, class A2, class A3>
using TSignal3 = TSignalN<A1, A2, A3>;
template <class A1, class A2, class A3, class A4>
using TSignal4 = TSignalN<A1, A2, A3, A4>;
template <class A1, class A2, class A3, class A4, class A5>
using TSignal5 = TSignalN<A1, A2, A3, A4, A5>;

}  // namespace General::Ortha
