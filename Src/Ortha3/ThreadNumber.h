// A number per thread, kept in a CThreadSpecific.
#pragma once

#include <cstdint>

#include "ortha/ortha3/ThreadSpecific.h"

namespace General::Ortha {

/// 0 in a thread that stored none. Used as a static object that is never destroyed, so that it can be read while the process exits, and
/// that is made before the program begins, while the system still has a slot for it.
class ThreadNumber
{
public:
    void set(std::intptr_t number) { m_slot.setValue(reinterpret_cast<const void*>(number)); }

    [[nodiscard]] std::intptr_t get() const
    {
        void* value = nullptr;
        m_slot.getValue(&value);
        return reinterpret_cast<std::intptr_t>(value);
    }

private:
    CThreadSpecific m_slot;
};

}  // namespace General::Ortha
