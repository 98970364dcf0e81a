// CThreadSpecific: one pointer-sized value per thread.
//
//     CThreadSpecific slot;
//     slot.setValue(&context);                // for the calling thread
//     void* value = nullptr;
//     if (slot.getValue(&value)) { ... }      // what this thread stored, null if it stored nothing
//
// The slot owns nothing: nothing happens to a stored value when its thread ends. The system gives a process a limited number
// of slots (1024 on Linux, all libraries together); `valid` tells whether this object got one.
//
// Threads: every operation may be called from any thread on one object. Construction, assignment and destruction must not race with use.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Ortha {

class ORTHA_API CThreadSpecific
{
public:
    /// Asks the system for a slot. A failure is not reported here: see `valid`.
    CThreadSpecific();
    /// Shares the other object's slot. The last of the objects that share a slot gives it back.
    CThreadSpecific(const CThreadSpecific& other);
    /// Gives up the own slot and shares the other object's.
    CThreadSpecific& operator=(const CThreadSpecific& other);
    ~CThreadSpecific();

    /// False only if the system had no slot left when the object was made.
    [[nodiscard]] bool valid() const;
    /// Stores the calling thread's value. False if the slot is not valid or the system could not store it.
    bool setValue(const void* value);
    /// Reads the calling thread's value into `*value`, null if the thread stored none. False, and `*value` untouched, if the slot is not
    /// valid.
    bool getValue(void** value) const;

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Ortha
