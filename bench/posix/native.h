// The system's own calls, which rows show beside the library. Everything stands in this header, for a call more would be measured too.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <iconv.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <time.h>

#include <memory>
#include <string>
#include <string_view>

namespace Bench::Native {

/// Whose calls these are, in the names of rows; and what makes and frees memory.
constexpr const char* system = "posix";
constexpr const char* allocator = "glibc";

/// Whether who waits at a std::counting_semaphore is always woken.
constexpr bool stdSemaphoreWakes = true;

class Semaphore
{
public:
    Semaphore() { sem_init(&m_semaphore, 0, 0); }
    ~Semaphore() { sem_destroy(&m_semaphore); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;
    void post() { sem_post(&m_semaphore); }
    void wait()
    {
        while (sem_wait(&m_semaphore) != 0)
        {
        }
    }
    bool tryTake() { return sem_trywait(&m_semaphore) == 0; }

private:
    sem_t m_semaphore;
};

/// What each thread keeps for itself, for as long as the process runs.
class Slot
{
public:
    Slot() { pthread_key_create(&m_key, nullptr); }
    void set(void* value) { pthread_setspecific(m_key, value); }
    [[nodiscard]] void* get() const { return pthread_getspecific(m_key); }

private:
    pthread_key_t m_key{};
};

constexpr const char* searchedBy = "readdir";

/// Tells `seen` the name, whether it is a directory, whether it is read-only, and the size of each entry but the dots.
template <class Seen>
void searchDirectory(const std::string& directory, Seen seen)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> search(opendir(directory.c_str()), &closedir);
    struct stat status;
    while (const dirent* const entry = search ? readdir(search.get()) : nullptr)
    {
        const char* const name = entry->d_name;
        const bool isDots = name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
        if (!isDots && fstatat(dirfd(search.get()), name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        {
            seen(name, S_ISDIR(status.st_mode), (status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0, status.st_size);
        }
    }
}

/// The C library's calendar.
inline tm split(time_t seconds)
{
    tm time;
    gmtime_r(&seconds, &time);
    return time;
}

inline time_t join(tm& time)
{
    return timegm(&time);
}

constexpr bool parses = true;
inline time_t parse(const std::string& text, const char* format)
{
    tm time{};
    strptime(text.c_str(), format, &time);
    const long offset = time.tm_gmtoff;
    return timegm(&time) - offset;
}

inline auto monotonicTime(timespec& now)
{
    return clock_gettime(CLOCK_MONOTONIC, &now);
}

inline auto localTime(timespec& now, tm& local)
{
    return clock_gettime(CLOCK_REALTIME, &now), localtime_r(&now.tv_sec, &local);
}

constexpr const char* convertedBy = "iconv";

/// Between character sets: "UTF-8", "UTF-16LE", "GBK" and "CP1251".
class Converter
{
public:
    Converter(const char* to, const char* from) : m_state(iconv_open(to, from), &iconv_close) {}

    /// Into a text that has room. Empty if a character has no place in the other set.
    std::string_view operator()(std::string_view from, std::string& to)
    {
        char *next = const_cast<char*>(from.data()), *end = to.data();
        std::size_t left = from.size(), room = to.size();
        iconv(m_state.get(), &next, &left, &end, &room);
        return std::string_view(to.data(), left == 0 ? to.size() - room : 0);
    }

private:
    std::shared_ptr<void> m_state;
};

}  // namespace Bench::Native
