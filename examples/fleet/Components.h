// What the program and the component system have to do with each other, apart from the readings: the classes that it makes known, the
// directory of devices, and the account of all objects in the end.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "DeviceList.h"

namespace Fleet {

/// Registers the clients "Tcp" and the sensors "Tcp.Sensor", and has the library ask these devices for servers from now on. Once a process.
void startComponents(const std::vector<Device>& devices);

/// How many objects there are of each class, by its name in the source. Any thread.
std::map<std::string, int> liveObjects();

/// For when everybody has given up what they held: ends the clients that never got a login, and the library's check for such. Throws
/// std::runtime_error if an object is left, but for the directory, which the library keeps.
void endComponents();

}  // namespace Fleet
