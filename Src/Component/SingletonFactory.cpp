#include <algorithm>
#include <vector>

#include "component/ObjectTable.h"
#include "ortha/ortha3/Assert.h"
#include "ortha/ortha3/Mutex.h"

#include "Src/Component/UnknownInternal.h"

namespace General::Component::Detail {

key_base::~key_base() = default;

struct CObjectTable::Internal
{
    Ortha::CMutex mutex;
    std::vector<IUnknown*> objects;  // guarded by the mutex, which the callers hold
};

CObjectTable::CObjectTable() : m_internal(new Internal) {}

CObjectTable::~CObjectTable()
{
    delete m_internal;
}

void CObjectTable::lock() ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    m_internal->mutex.enter();
}

void CObjectTable::unlock() ORTHA_NO_THREAD_SAFETY_ANALYSIS
{
    m_internal->mutex.leave();
}

IUnknown* CObjectTable::find(const key_base& key) const
{
    for (IUnknown* const object : m_internal->objects)
    {
        if (key.match(object))
        {
            makeInstanceForTable(object);
            return object;
        }
    }
    return nullptr;
}

void CObjectTable::insert(IUnknown* object)
{
    m_internal->objects.push_back(object);
    setObjectTable(object, this);
    makeInstanceForTable(object);
}

void CObjectTable::erase(IUnknown* object)
{
    std::erase(m_internal->objects, object);
}

std::size_t CObjectTable::count() const
{
    return m_internal->objects.size();
}

IUnknown* CObjectTable::get(std::size_t index) const
{
    ORTHA_ASSERT(index < m_internal->objects.size());
    return m_internal->objects[index];
}

}  // namespace General::Component::Detail
