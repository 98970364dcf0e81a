// The record behind a component object, and what the library alone may do to it.
#pragma once

#include <atomic>
#include <cstdint>

#include "component/ObjectTable.h"
#include "component/Unknown.h"

namespace General::Component {

/// How many objects of one class there are. Entries are made once for a class and never go.
struct ClassCount
{
    const char* name;
    std::atomic<int> objects{0};
};

/// The entry of the objects that are not made yet, whose name is "".
extern ClassCount unmadeCount;

struct UnknownInternal
{
    static UnknownInternal& of(const IUnknown* object) { return *object->m_internal; }

    std::atomic<std::int64_t> refCount{1};
    std::atomic<std::int32_t> made{0};        // 1 from the first making, or reference, on
    std::atomic<bool> isInstance{false};      // on the registry's list
    std::atomic<const char*> clsid{nullptr};  // the registry's own text; null for an object that does not come from there
    std::atomic<Detail::CObjectTable*> objectTable{nullptr};
    std::atomic<ClassCount*> className{&unmadeCount};  // of the dynamic type, once made
    std::atomic<int> records{0};                       // entries of the registry's lists
    bool isClient = false;
    std::atomic<int> holders{1};  // objects that share the record
};

// The object is not null: asserted, but for getRefCount().

/// Takes a reference off, and does nothing else. The number that are left.
int decreaseRefCount(IUnknown* object);
/// Takes a reference off unless it is the last: what is left, or 0 with nothing done. For objects that others find under a lock: the last
/// one goes under that lock, all others without it.
int decreaseUnlessLast(IUnknown* object);
int getRefCount(IUnknown* object);
void setObjectTable(IUnknown* object, Detail::CObjectTable* table);
/// Marks an object as made; whether it was already.
bool markMade(IUnknown* object);
/// A table's making: adds a reference unless this is the first.
void makeInstanceForTable(IUnknown* object);

// Of the registry, for release().

/// Held while a reference to a shared instance is given up, so that nobody is given one that is about to end.
void lockInstances();
void unlockInstances();
/// Takes a shared instance off the registry's list, and ends the object. For an instance called with the lock held, which is given up
/// before the object ends. Always true.
bool destroyComponent(IUnknown* object, const char* clsid, bool isInstance);

}  // namespace General::Component
