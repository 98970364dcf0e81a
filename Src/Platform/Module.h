// Modules that are loaded while the program runs.
#pragma once

namespace General::Ortha::Platform {

/// What a module's file name ends in, ".so" or ".dll".
extern const char* const moduleSuffix;

/// Loads a module by its file name, once: later calls give the same handle. It is looked for beside the running program, beside this
/// library, and then where the system's loader looks; not in the current directory, unless the loader's settings name it, so a name with a
/// directory in it is refused. Null if there is none. Never unloaded.
void* loadModule(const char* fileName);
/// The address of a name that a module exports; null if it has none.
void* findSymbol(void* module, const char* name);

}  // namespace General::Ortha::Platform
