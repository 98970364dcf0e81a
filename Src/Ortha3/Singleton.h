// The way every process-wide manager is made and unmade.
#pragma once

#include <atomic>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/PrintLog.h"

#include "Src/Platform/ExitHandler.h"

namespace General::Ortha {

/// Owns the one object of a class that has `friend class Singleton<T>`. The first use constructs it; every later use is one load. It is
/// deleted by an exit handler, so that what was made last goes first, and what a constructor uses outlives it. A use after that makes a new
/// object, with a new handler. An object that has onCreated() gets that call, once others can find it: there it may log, and a print hook
/// may use it. Without memory for the object the process ends. Any thread.
template <class T>
class Singleton
{
public:
    static T* instance()
    {
        T* object = s_object.load(std::memory_order_acquire);
        return object ? object : create();
    }

private:
    static T* create() noexcept
    {
        static CMutex& s_creation = *new CMutex;
        CGuard guard(s_creation);
        T* object = s_object.load(std::memory_order_relaxed);
        if (!object)
        {
            object = new T;
            s_object.store(object, std::memory_order_release);
            if (!Platform::callAtExit(&destroy))
            {
                ::logInfo("atexit failed!\n");
            }
            if constexpr (requires { object->onCreated(); })
            {
                object->onCreated();
            }
        }
        return object;
    }

    static void destroy() { delete s_object.exchange(nullptr); }

    static inline std::atomic<T*> s_object{nullptr};
};

}  // namespace General::Ortha
