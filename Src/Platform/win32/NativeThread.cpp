#include "Src/Platform/NativeThread.h"

#include <process.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <iterator>
#include <new>
#include <utility>

#include "Src/Platform/win32/Windows.h"

// Not in every version of the compiler's headers.
extern "C" WINBASEAPI HRESULT WINAPI SetThreadDescription(HANDLE thread, PCWSTR description);

namespace General::Ortha::Platform {

int currentThreadId()
{
    return static_cast<int>(GetCurrentThreadId());
}

void sleepMilliseconds(std::uint32_t milliseconds)
{
    Sleep(milliseconds);
}

void setSystemThreadName(int threadId, const char* name)
{
    wchar_t wide[64] = L"";
    MultiByteToWideChar(CP_ACP, 0, name, -1, wide, static_cast<int>(std::size(wide)) - 1);
    if (const HANDLE thread = OpenThread(THREAD_SET_LIMITED_INFORMATION, FALSE, static_cast<DWORD>(threadId)))
    {
        SetThreadDescription(thread, wide);
        CloseHandle(thread);
    }
}

// Shared by the handles and, as long as it runs, by the thread itself.
struct NativeThread::Record
{
    // Who goes through the thread's end: the thread when its routine has returned, or whoever terminates it.
    enum Stage : int
    {
        running,
        ending,
        terminated
    };

    Record(Routine run, Routine end, void* with) : routine(run), atEnd(end), argument(with) {}
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    ~Record()
    {
        if (handle)
        {
            CloseHandle(handle);
        }
    }

    bool claimEnd(Stage by)
    {
        int expected = running;
        return stage.compare_exchange_strong(expected, by);
    }
    // The last step of the thread, or of its end: the record may be gone behind it.
    void finish()
    {
        const std::shared_ptr<Record> own = std::move(self);
        atEnd(argument);
    }

    static unsigned int __stdcall main(void* argument)
    {
        auto& record = *static_cast<Record*>(argument);
        s_current = &record;
        record.routine(record.argument);
        record.endHere();
        return 0;
    }
    void endHere()
    {
        if (!claimEnd(ending))
        {
            Sleep(INFINITE);  // somebody is about to terminate this thread, and ends it
        }
        finish();
    }

    static thread_local Record* s_current;  // the calling thread's, if it was started here
    const Routine routine;
    const Routine atEnd;
    void* const argument;
    HANDLE handle = nullptr;
    unsigned int id = 0;
    std::atomic<int> stage{running};
    std::shared_ptr<Record> self;  // the thread's own share
};

thread_local NativeThread::Record* NativeThread::Record::s_current = nullptr;

void exitCurrentThread()
{
    NativeThread::endCurrent();
    ExitThread(0);
}

void NativeThread::endCurrent()
{
    if (Record::s_current)
    {
        Record::s_current->endHere();
    }
}

int NativeThread::start(std::size_t stackSize, Routine routine, Routine ended, void* argument)
try
{
    close();
    auto record = std::make_shared<Record>(routine, ended, argument);
    record->self = record;
    // Suspended, so that the thread finds its handle and id in the record.
    const auto size = static_cast<unsigned int>(std::min<std::size_t>(stackSize, UINT_MAX));
    const std::uintptr_t handle = _beginthreadex(nullptr, size, &Record::main, record.get(), CREATE_SUSPENDED, &record->id);
    if (handle == 0)
    {
        record->self.reset();
        return errno;
    }
    record->handle = reinterpret_cast<HANDLE>(handle);
    if (ResumeThread(record->handle) == static_cast<DWORD>(-1))
    {
        const auto error = static_cast<int>(GetLastError());
        TerminateThread(record->handle, 0);
        record->self.reset();
        return error;
    }
    m_record = std::move(record);
    return 0;
}
catch (const std::bad_alloc&)
{
    return ENOMEM;
}

bool NativeThread::waitForEnd(std::uint32_t milliseconds) const
{
    return !m_record || WaitForSingleObject(m_record->handle, milliseconds) == WAIT_OBJECT_0;
}

unsigned int NativeThread::exitCode() const
{
    DWORD code = 0;
    return m_record && GetExitCodeThread(m_record->handle, &code) ? code : 0;
}

int NativeThread::setPriority(int priority) const
{
    if (SetThreadPriority(m_record->handle, priority))
    {
        return 0;
    }
    const DWORD error = GetLastError();
    return error == ERROR_ACCESS_DENIED ? 0 : static_cast<int>(error);
}

bool NativeThread::terminate() const
{
    const std::shared_ptr<Record> record = m_record;
    if (record->id == GetCurrentThreadId())
    {
        exitCurrentThread();
    }
    if (!record->claimEnd(Record::terminated))
    {
        return true;
    }
    if (!TerminateThread(record->handle, 0))
    {
        record->stage = Record::running;
        return false;
    }
    WaitForSingleObject(record->handle, INFINITE);
    record->finish();
    return true;
}

}  // namespace General::Ortha::Platform
