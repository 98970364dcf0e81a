// Factories: what makes the components of a class. They are found by the name of an interface and the name of a class.
//
//     class CSensorFactory : public IFactoryUnknown
//     {
//     public:
//         const char* clsid() override { return "Tcp.Sensor"; }
//         ISensor* create();
//     };
//     CSensorFactory factory;
//     factory.registerFactory("Sensor");
//
// CComponentHelper::getComponentFactory (ComponentHelper.h) finds it, and the client that it is reached through. A factory is not counted:
// it lives longer than its registration.
//
// Last errors: the first registration of any factory sets the texts of 0x10030000 to 0x10030015, among them 0x10030000 interface not found,
// 0x10030001 class not found, 0x10030002 client not found, 0x10030003 client not exist, 0x10030007 password not valid.
//
// Threads: any thread.
#pragma once

#include <cstddef>

#include "ortha/ortha3/Export.h"
#include "ortha/ortha3/FlexString.h"

namespace General::Component {

class ORTHA_API IFactoryUnknown
{
public:
    virtual ~IFactoryUnknown();
    /// The name of the class, which lives as long as the factory.
    virtual const char* clsid() = 0;

    /// Puts the factory into the table of an interface. One that has the same class there is replaced. Always true.
    bool registerFactory(const char* iid);
    /// Takes the factory of this class out; interface and class stay known. Always true.
    bool unregisterFactory(const char* iid);
};

/// The classes that an interface had when the list was made, in ascending order; those whose factory was taken out are there too.
class ORTHA_API ClassIDList
{
public:
    /// Throws std::bad_alloc.
    explicit ClassIDList(const char* iid);
    ~ClassIDList();
    ClassIDList(const ClassIDList&) = delete;
    ClassIDList& operator=(const ClassIDList&) = delete;

    [[nodiscard]] std::size_t count() const;
    /// Asserts that there is such an entry.
    Ortha::string operator[](int index) const;

private:
    struct Internal;
    Internal* m_internal;
};

/// The class that is meant where an interface alone is named.
class ORTHA_API CLocalComSelectManager
{
public:
    /// The first setting of an interface stands for good: true for that one, false for later ones and for null.
    static bool setDefaultComponent(const char* iid, const char* clsid);
    /// "Local" if none was set; empty for null.
    static Ortha::string getDefaultClassID(const char* iid);
};

}  // namespace General::Component
