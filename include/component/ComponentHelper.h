// CComponentHelper: what creators and holders of component objects call.
//
//     IClient* client = nullptr;
//     auto* factory = dynamic_cast<CSensorFactory*>(Detail::CComponentHelper::getComponentFactory("Sensor", "Tcp.Sensor", info, client));
//     if (factory)
//     {
//         TComPtr<ISensor> sensor(factory->create(), client);     // adopts both references
//     }
//
// Threads: any thread.
#pragma once

#include "component/Factory.h"
#include "component/ServerInfo.h"
#include "component/Unknown.h"

namespace General::Component {

class IClient;

namespace Detail {

class ORTHA_API CComponentHelper
{
public:
    /// For a creator that hands out one shared object: each call but the first adds the reference of its holder. Null gives null, with last
    /// error 0x1003000e.
    static IUnknown* makeComponentInstance(IUnknown* object);
    /// For a creator that hands out a new object, whose first reference is its holder's. Null gives null, with last error 0x1003000d.
    static IUnknown* makeComponentObject(IUnknown* object);

    /// Adds a reference. The number there are now, 0 for null.
    static int addRef(IUnknown* object);
    /// Gives a reference up. The number that are left: 0 when the object has ended, and for null.
    static int release(IUnknown* object);

    /// Makes the user of a client that of the calling thread. False for null, which changes nothing.
    static bool setAsCurrentUser(IClient* client);

    /// Finds the factory of a class. For ServerInfo::none, and for the interface "Client", that is all. Else the client for `info` is found
    /// or made, logged in if it is not, and given with a reference; the calling thread waits for the login. Null if there is no such
    /// factory (last error 0x10030000 or 0x10030001), no client (0x10030002, 0x10030003), or the login failed, with a log line and the
    /// client's own last error; then `client` is null too.
    static IFactoryUnknown* getComponentFactory(const char* iid, const ClassID& clsid, const ServerInfo& info, IClient*& client);
    /// The same with the client of a user, as it is: no login. Null if there is none. -1 asks for a local component.
    static IFactoryUnknown* getComponentFactory(const char* iid, const ClassID& clsid, int userId, IClient*& client);
};

}  // namespace Detail

}  // namespace General::Component
