#include "Src/Platform/NativeThread.h"

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <new>

#include "Src/Platform/posix/Futex.h"

namespace General::Ortha::Platform {

namespace Detail {

constinit thread_local int cachedThreadId = 0;

int readThreadId()
{
    // A fork keeps the thread-local value of the one thread that goes on in the child, where it is wrong.
    static const int forkHandler = pthread_atfork(nullptr, nullptr, [] { cachedThreadId = 0; });
    static_cast<void>(forkHandler);
    cachedThreadId = static_cast<int>(syscall(SYS_gettid));
    return cachedThreadId;
}

}  // namespace Detail

void sleepMilliseconds(std::uint32_t milliseconds)
{
    if (milliseconds == 0)
    {
        sched_yield();
        return;
    }
    const timespec deadline = deadlineIn(milliseconds);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR)
    {
    }
}

void exitCurrentThread()
{
    pthread_exit(nullptr);
}

void setSystemThreadName(int threadId, const char* name)
{
    char shown[16] = {};
    std::strncpy(shown, name, sizeof(shown) - 1);
    if (threadId == currentThreadId())
    {
        prctl(PR_SET_NAME, shown);
        return;
    }
    char path[48];
    std::snprintf(path, sizeof(path), "/proc/self/task/%d/comm", threadId);
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file >= 0)
    {
        [[maybe_unused]] const ssize_t written = write(file, shown, std::strlen(shown));
        close(file);
    }
}

// Shared by the handles and the thread itself, which runs detached: nobody has to join it, and the record tells when it has ended.
struct NativeThread::Record
{
    Routine routine;
    Routine atEnd;
    void* argument;
    pthread_t thread{};
    std::atomic<std::uint32_t> id{0};
    std::mutex endMutex;  // a thread that is found not ended under it can be cancelled
    std::atomic<std::uint32_t> ended{0};

    struct End  // also run when the thread is cancelled
    {
        Record& record;
        ~End()
        {
            record.atEnd(record.argument);
            std::lock_guard guard(record.endMutex);
            record.ended.store(1, std::memory_order_release);
            futexWakeAll(&record.ended);
        }
    };

    static void* main(void* argument)
    {
        const std::unique_ptr<std::shared_ptr<Record>> own(static_cast<std::shared_ptr<Record>*>(argument));
        Record& record = **own;
        const End end{record};
        record.id.store(static_cast<std::uint32_t>(currentThreadId()), std::memory_order_release);
        futexWakeAll(&record.id);
        record.routine(record.argument);
        return nullptr;
    }
};

int NativeThread::start(std::size_t stackSize, Routine routine, Routine ended, void* argument)
try
{
    close();
    auto record = std::make_shared<Record>();
    record->routine = routine;
    record->atEnd = ended;
    record->argument = argument;

    pthread_attr_t attributes;
    if (const int error = pthread_attr_init(&attributes))
    {
        return error;
    }
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    if (stackSize != 0)
    {
        pthread_attr_setstacksize(&attributes, std::max<std::size_t>(stackSize, static_cast<std::size_t>(PTHREAD_STACK_MIN)));
    }
    auto own = std::make_unique<std::shared_ptr<Record>>(record);
    const int error = pthread_create(&record->thread, &attributes, &Record::main, own.get());
    pthread_attr_destroy(&attributes);
    if (error != 0)
    {
        return error;
    }
    static_cast<void>(own.release());
    while (record->id.load(std::memory_order_acquire) == 0)
    {
        futexWait(record->id, 0);
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
    const timespec deadline = deadlineIn(milliseconds);
    while (m_record && m_record->ended.load(std::memory_order_acquire) == 0)
    {
        if (!futexWait(m_record->ended, 0, &deadline))
        {
            return m_record->ended.load(std::memory_order_acquire) != 0;
        }
    }
    return true;
}

unsigned int NativeThread::exitCode() const
{
    return m_record && m_record->ended.load(std::memory_order_acquire) == 0 ? stillActive : 0;
}

int NativeThread::setPriority(int priority) const
{
    struct Level
    {
        int priority;
        int nice;
    };
    static constexpr Level levels[] = {{15, -15}, {2, -10}, {1, -5}, {0, 0}, {-1, 5}, {-2, 10}, {-15, 19}};
    for (const Level& level : levels)
    {
        if (level.priority == priority)
        {
            const bool done = setpriority(PRIO_PROCESS, m_record->id.load(std::memory_order_relaxed), level.nice) == 0;
            return done || errno == EACCES || errno == EPERM ? 0 : errno;
        }
    }
    return EINVAL;
}

bool NativeThread::terminate() const
{
    if (static_cast<int>(m_record->id.load(std::memory_order_relaxed)) == currentThreadId())
    {
        exitCurrentThread();
    }
    std::lock_guard guard(m_record->endMutex);
    return m_record->ended.load(std::memory_order_relaxed) != 0 || pthread_cancel(m_record->thread) == 0;
}

}  // namespace General::Ortha::Platform
