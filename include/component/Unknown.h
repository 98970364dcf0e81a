// IUnknown: the base of every component object, with the count of its references.
//
//     class CDoor : public IUnknown
//     {
//     public:
//         void destroy() override { delete this; }
//         void reservedOperation() override {}
//     };
//     IUnknown* door = Detail::CComponentHelper::makeComponentObject(new CDoor);   // one reference, ours
//     Detail::CComponentHelper::release(door);                                     // the last one: destroy() runs
//
// An object begins with one reference, which belongs to whoever gets it first. What the next one costs depends on how it is shared:
//
// | Kind              | Made by                             | First holder | Each further one           | At 0                                        |
// |-------------------|-------------------------------------|--------------|----------------------------|---------------------------------------------|
// | ordinary object   | makeComponentObject                 | 1            | addRef()                   | destroy()                                   |
// | shared instance   | makeComponentInstance at each hand-over | 1        | the next hand-over adds 1  | destroy(), off the registry's list          |
// | table-held object | CObjectTable: insert, then find     | 1            | each find adds 1           | off the table under its lock, then destroy() |
// | client            | its factory, see Client.h           | see there    |                            | logout(), destroy()                         |
//
// References are given up with CComponentHelper::release (ComponentHelper.h), which knows clients; the operation release() here does not.
//
// Threads: any thread. destroy() runs on the thread that gives the last reference up, with no lock of the library held.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Component {

struct UnknownInternal;

class ORTHA_API IUnknown
{
public:
    /// Throws std::bad_alloc.
    IUnknown();
    virtual ~IUnknown();
    /// Shares the record, count included, of the other object. That is not a way to duplicate a component: make a new one.
    IUnknown(const IUnknown& other);
    IUnknown& operator=(const IUnknown& other);

    /// Ends the object, "delete this" as a rule. Called once, when the last reference has gone.
    virtual void destroy() = 0;
    /// Never called. Holds its place in the table of operations.
    virtual void reservedOperation() = 0;
    /// Adds a reference. The number there are now.
    virtual int addRef();
    /// Gives one up. The number that are left; after 0 the object is gone. Not for clients.
    virtual int release();

private:
    friend struct UnknownInternal;

    UnknownInternal* m_internal;
};

}  // namespace General::Component
