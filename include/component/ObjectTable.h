// CObjectTable: objects that are found by a key and handed out to many, as a factory of single objects does it.
//
//     table.lock();
//     IUnknown* door = table.find(DoorKey("front"));     // a further reference, if it is there
//     if (!door)
//     {
//         table.insert(door = new CDoor("front"));        // its first one
//     }
//     table.unlock();
//
// The table holds no reference. An object leaves it when its last reference goes: that happens under the table's lock, so that find() never
// gives an object that is about to end.
#pragma once

#include <cstddef>

#include "component/Unknown.h"

namespace General::Component::Detail {

/// What find() looks for. Derive from it.
struct ORTHA_API key_base
{
    virtual ~key_base();
    /// Whether this is the object. Called with the table's lock held.
    virtual bool match(IUnknown* object) const = 0;
};

class ORTHA_API CObjectTable
{
public:
    CObjectTable();
    /// Touches no object that is still in the table; there should be none.
    ~CObjectTable();
    CObjectTable(const CObjectTable&) = delete;
    CObjectTable& operator=(const CObjectTable&) = delete;

    /// The lock is re-entrant.
    void lock();
    void unlock();

    // With the lock held:

    /// The first object, in the order of insertion, that the key matches, with one more reference; null if there is none.
    IUnknown* find(const key_base& key) const;
    /// Appends an object, whose first reference is the caller's. There is no look for duplicates. Throws std::bad_alloc.
    void insert(IUnknown* object);
    /// Takes out all entries of an object.
    void erase(IUnknown* object);
    [[nodiscard]] std::size_t count() const;
    /// An entry, without a reference. Asserts that there is one.
    [[nodiscard]] IUnknown* get(std::size_t index) const;

private:
    struct Internal;
    Internal* m_internal;
};

}  // namespace General::Component::Detail
