// What is called when the process exits.
#pragma once

namespace General::Ortha::Platform {

/// Has `handler` called when the process exits: in one order with the handlers and static objects of the program, the last one registered
/// first, and while the other threads still run. False if it could not be registered. Not to be used by a library that will be unloaded.
bool callAtExit(void (*handler)());

}  // namespace General::Ortha::Platform
