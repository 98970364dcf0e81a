// The registry: component classes by name, shared instances of them, and classes that are loaded when they are first asked for.
//
//     IUnknown* createDoor(const ServerInfo*) { return Detail::CComponentHelper::makeComponentObject(new CDoor); }
//     registerComponent("Door", createDoor);
//     IUnknown* door = createComponentObject("Door", nullptr);
//     Detail::CComponentHelper::release(door);
//
// A class that nobody registered is looked for in a loadable module named after it, "Door.so" on this system, beside the program, beside
// this library, or where the loader looks; not in the current directory, unless the loader's settings name it. It must export the creator
// as a C function, "createDoorObject". Names are cut at 31 characters, so such a class has at most 19. Modules are never unloaded.
//
// Threads: any thread. A creator runs on the caller's thread with no lock of the registry held, and may use the registry. A module is
// loaded under its lock; what it runs then may register classes, too. `clsid` is never null.
#pragma once

#include <map>

#include "component/ServerInfo.h"
#include "component/Unknown.h"

namespace General::Component {

/// Makes an object with its first reference, or null with a last error. `info` is null for a local one, and borrowed for the time of the
/// call.
using ComponentCreator = IUnknown* (*)(const ServerInfo* info);

/// Names a creator. The last one counts; a warning tells of each that is replaced. Always true.
ORTHA_API bool registerComponent(const char* clsid, ComponentCreator creator);

/// The instance of a class that is shared by all who name the same server (address, port, user, password, kind; or no server), with one
/// more reference. It is made if there is none, and ends with its last reference. Null if there is no such class, or the creator gave none.
[[nodiscard]] ORTHA_API IUnknown* getComponentInstance(const char* clsid, const ServerInfo* info);

/// A new object of a class. Null as above.
[[nodiscard]] ORTHA_API IUnknown* createComponentObject(const char* clsid, const ServerInfo* info);

/// How many objects there are of each class, by the name that the compiler gives the type. The entry "" counts those that are not made yet.
/// Always true.
ORTHA_API bool getComponentCountInfo(std::map<Ortha::string, int>& info);

}  // namespace General::Component
