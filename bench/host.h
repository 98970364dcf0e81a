// What the benchmark programs ask of the system, besides what the library gives. One implementation a system, in posix/ and win32/.
#pragma once

#include <string>
#include <thread>
#include <vector>

namespace Bench {

/// The numbers of the processors that the calling thread may run on, in order. None if the system does not tell.
std::vector<int> processors();
/// Has the calling thread run on these alone. False if the system refuses.
bool runOn(const std::vector<int>& processors);

/// The processor time that the process, or one of its threads that has not ended, has taken, in seconds.
double processorSeconds();
double processorSeconds(std::thread& thread);

/// Sets the environment's time zone, in the form that the C runtime takes from TZ.
void setZone(const char* zone);

/// Where files are kept in memory; empty if the system has no such place. And whether a path leads to one.
extern const char* const memoryDirectory;
bool isInMemory(const std::string& path);

/// The file that takes everything and keeps nothing.
extern const char* const nullFile;
/// Connects standard output to a file, which is made anew, and gives what it was connected to before. -1 if that failed.
int redirectOutput(const std::string& file);
void restoreOutput(int before);

/// A function of a shared library, which is loaded for it and stays. Null if there is none.
void* loadFunction(const char* library, const char* name);

}  // namespace Bench
