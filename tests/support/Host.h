// What tests ask of the system, besides what the library gives. One implementation a system, in posix/ and win32/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <string>

namespace General::Ortha::Test {

/// Sets the environment's time zone, in the form that the C runtime takes from TZ (not every one knows names of other than three letters),
/// and has it read.
void setZone(const char* zone);

/// Whether the zone may tell when its daylight saving begins and ends.
extern const bool zonesHaveRules;
/// Seconds since 1970 of fields in UTC, whose day of the week it sets.
std::int64_t utcSeconds(std::tm& fields);

/// The name that the system's tools show for a thread of this process, and how much of a longer one.
std::string systemName(int threadId);
extern const std::size_t systemNameLength;
/// Whether a thread of this process sleeps, as far as the system tells.
bool isAsleep(int threadId);

/// A long wait in the system, at which a thread can be terminated, and whether that destroys the objects on its stack.
void sleepForAnHour();
extern const bool terminationUnwinds;

/// Files that are open in this process.
std::size_t openDescriptors();
/// Those that a child process would get, as text that holds their paths.
std::string inheritedDescriptors();
bool isInherited(int descriptor);
/// Leaves so many descriptors free, while it lives.
class ScarceDescriptors
{
public:
    explicit ScarceDescriptors(int left);
    ~ScarceDescriptors();
    ScarceDescriptors(const ScarceDescriptors&) = delete;
    ScarceDescriptors& operator=(const ScarceDescriptors&) = delete;

private:
    struct Taken;
    Taken* const m_taken;
};
/// How many it must leave, lest the C runtime lose what it opens.
extern const int fewestDescriptors;

std::filesystem::path programFile();
bool loadLibrary(const std::string& path);
/// The permissions that the system shows for a file that is its owner's alone.
extern const unsigned int ownersPermissions;
/// Has the system take a file for hidden, if the dot before its name does not.
void hide(const std::string& path);
/// Whether a program's C runtime calls handlers that are registered while the process exits.
extern const bool callsLateHandlers;
/// Whether a search tells of files that have gone since it was begun.
extern const bool searchesReadAhead;
/// A name that looks like a pattern.
extern const char* const patternName;
/// How many bytes there are in a block of the C runtime's memory, at least what it was asked for.
std::size_t blockSize(void* memory);
/// Makes a symbolic link at `path`. False if that could not be done; where there are links, it can.
extern const bool hasLinks;
bool makeLink(const std::string& target, const std::string& path);

/// What assert() tells of a condition.
std::string assertReport(const std::string& condition);
/// What errno is, and its text, as a log line shows it: when a directory is opened, and removed, as a file.
extern const char* const openedDirectory;
extern const char* const removedDirectory;

}  // namespace General::Ortha::Test
