// Functions to be called for an event, in the order in which they were attached.
#pragma once

#include <memory>
#include <new>
#include <vector>

#include "ortha/ortha3/Mutex.h"

namespace General::Ortha {

/// Any thread. No lock is held while a function runs: it may attach others, which are called from the next time on.
template <class Function>
class ObserverList
{
public:
    /// An empty function is none. False if there is no memory.
    bool add(const Function& function)
    {
        if (function.empty())
        {
            return true;
        }
        CGuard guard(m_mutex);
        try
        {
            auto functions = m_functions ? std::make_shared<Functions>(*m_functions) : std::make_shared<Functions>();
            functions->push_back(function);
            m_functions = std::move(functions);
        }
        catch (const std::bad_alloc&)
        {
            return false;
        }
        return true;
    }

    /// Calls all with these values. False if there are none.
    template <class... Args>
    bool call(const Args&... args)
    {
        const std::shared_ptr<const Functions> functions = snapshot();
        if (!functions)
        {
            return false;
        }
        for (const Function& function : *functions)
        {
            function(args...);
        }
        return true;
    }

private:
    using Functions = std::vector<Function>;

    std::shared_ptr<const Functions> snapshot()
    {
        CGuard guard(m_mutex);
        return m_functions;
    }

    CMutex m_mutex;
    std::shared_ptr<const Functions> m_functions ORTHA_GUARDED_BY(m_mutex);  // replaced, never changed
};

}  // namespace General::Ortha
