// TComPtr: a pointer to a component, with the client that it is reached through, and a reference to each.
//
//     TComPtr<ISensor> sensor(factory->create(), client);    // adopts the references that the caller has
//     sensor->read();                                        // the client's user is this thread's current user from here on
//     TComPtr<ISensor> other = sensor;                       // one more reference each
//
// Threads: a pointer one thread at a time; two threads may have a copy each.
#pragma once

#include <utility>

#include "component/ComponentHelper.h"
#include "ortha/ortha3/Assert.h"

namespace General::Component {

namespace Detail {

/// The client as the base that it has; defined where IClient is.
ORTHA_API IUnknown* clientBase(IClient* client);

}  // namespace Detail

/// `T` derives from IUnknown. The client of a local component is null.
template <class T>
class TComPtr
{
public:
    TComPtr() = default;
    /// Adopts: adds no reference.
    TComPtr(T* ptr, IClient* client) : m_ptr(ptr), m_client(client) {}
    TComPtr(const TComPtr& other) : m_ptr(other.m_ptr), m_client(other.m_client)
    {
        Detail::CComponentHelper::addRef(m_ptr);
        Detail::CComponentHelper::addRef(Detail::clientBase(m_client));
    }
    TComPtr& operator=(const TComPtr& other)
    {
        if (this != &other)
        {
            TComPtr(other).swap(*this);
        }
        return *this;
    }
    ~TComPtr()
    {
        Detail::CComponentHelper::release(m_ptr);
        Detail::CComponentHelper::release(Detail::clientBase(m_client));
    }

    /// Gives both references up.
    void reset() { TComPtr().swap(*this); }
    void swap(TComPtr& other) noexcept
    {
        std::swap(m_ptr, other.m_ptr);
        std::swap(m_client, other.m_client);
    }

    /// Makes the client's user the thread's current one; asserts that there is a component.
    T* operator->() const
    {
        if (m_client)
        {
            Detail::CComponentHelper::setAsCurrentUser(m_client);
        }
        ORTHA_ASSERT(m_ptr != NULL);
        return m_ptr;
    }
    explicit operator bool() const { return m_ptr != nullptr; }
    bool operator!() const { return m_ptr == nullptr; }
    /// The component, without a reference.
    T* get() const { return m_ptr; }

private:
    T* m_ptr = nullptr;
    IClient* m_client = nullptr;
};

}  // namespace General::Component
