#include "ortha/ortha3/ThreadSpecific.h"

#include "ortha/ortha3/AtomicCount.h"

#include "Src/Platform/ThreadSlot.h"

namespace General::Ortha {

struct CThreadSpecific::Internal
{
    const std::uint32_t index = Platform::allocateThreadSlot();
    Detail::atomic_count holders{1};

    [[nodiscard]] bool valid() const { return index != Platform::noThreadSlot; }

    void release()
    {
        if (--holders != 0)
        {
            return;
        }
        if (valid())
        {
            Platform::freeThreadSlot(index);
        }
        delete this;
    }
};

CThreadSpecific::CThreadSpecific() : m_internal(new Internal) {}

CThreadSpecific::CThreadSpecific(const CThreadSpecific& other) : m_internal(other.m_internal)
{
    ++m_internal->holders;
}

CThreadSpecific& CThreadSpecific::operator=(const CThreadSpecific& other)
{
    ++other.m_internal->holders;
    m_internal->release();
    m_internal = other.m_internal;
    return *this;
}

CThreadSpecific::~CThreadSpecific()
{
    m_internal->release();
}

bool CThreadSpecific::valid() const
{
    return m_internal->valid();
}

bool CThreadSpecific::setValue(const void* value)
{
    return m_internal->valid() && Platform::setThreadSlot(m_internal->index, value);
}

bool CThreadSpecific::getValue(void** value) const
{
    if (!m_internal->valid())
    {
        return false;
    }
    *value = Platform::threadSlot(m_internal->index);
    return true;
}

}  // namespace General::Ortha
