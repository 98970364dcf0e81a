#include "utils/String.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

#include "ortha/ortha3/PrintLog.h"
#include "utils/IpAddress.h"

namespace General::Utils {

namespace {

// As vsnprintf, but a text of just `size` characters has its last one, and one that does not fit gives -1.
ORTHA_PRINTF(3, 0) int formatBounded(char* buffer, std::size_t size, const char* format, va_list args)
{
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(buffer, size, format, args);
    if (length >= 0 && size != 0 && static_cast<std::size_t>(length) >= size)
    {
        // The last character, in place of the terminator: of a text that is formatted once more, into room for it.
        char small[512];
        const std::size_t needed = size + 1;
        char* const whole = needed <= sizeof(small) ? small : new (std::nothrow) char[needed];
        if (whole)
        {
            std::vsnprintf(whole, needed, format, again);
            buffer[size - 1] = whole[size - 1];
        }
        if (whole != small)
        {
            delete[] whole;
        }
    }
    va_end(again);
    return length >= 0 && static_cast<std::size_t>(length) <= size ? length : -1;
}

int boundedPrint(char* buffer, std::size_t size, const char* format, ...) ORTHA_PRINTF(3, 4);

int boundedPrint(char* buffer, std::size_t size, const char* format, ...)
{
    va_list args;
    va_start(args, format);
    const int length = formatBounded(buffer, size, format, args);
    va_end(args);
    return length;
}

int compareWithoutCase(const char* a, const char* b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : static_cast<unsigned char>(c); };
    while (*a != 0 && lower(*a) == lower(*b))
    {
        ++a;
        ++b;
    }
    return lower(*a) - lower(*b);
}

}  // namespace

int (*snprintf)(char* buffer, std::size_t size, const char* format, ...) = boundedPrint;
int (*stricmp)(const char* a, const char* b) = compareWithoutCase;

std::size_t strncpy(char* destination, std::size_t destinationSize, const char* source, std::size_t count)
{
    const std::size_t bound = std::min(destinationSize - 1, count);
    const void* const end = std::memchr(source, 0, bound);
    const std::size_t length = end ? static_cast<std::size_t>(static_cast<const char*>(end) - source) : bound;
    std::memmove(destination, source, length);
    destination[length] = 0;
    return length;
}

std::size_t strncat(char* destination, std::size_t destinationSize, const char* source, std::size_t count)
{
    const std::size_t length = std::strlen(destination);
    const std::size_t bound = std::min(destinationSize - length - 1, count);
    strncpy(destination + length, bound + 1, source, bound);
    destination[destinationSize - 1] = 0;
    return bound;
}

int snprintf_x(char* buffer, int size, const char* format, ...)
{
    if (size < 1)
    {
        return 0;
    }
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(buffer, static_cast<std::size_t>(size), format, args);
    va_end(args);
    if (length < 0)
    {
        *buffer = 0;
    }
    return std::clamp(length, 0, size - 1);
}

char* ipToString(IpAddress ip, char* buffer, std::size_t size)
{
    const auto byte = [ip](int shift) { return static_cast<int>(ip.value >> shift & 0xFF); };
    constexpr std::size_t most = std::numeric_limits<int>::max();
    snprintf_x(buffer, static_cast<int>(std::min(size, most)), "%d.%d.%d.%d", byte(24), byte(16), byte(8), byte(0));
    return buffer;
}

IpAddress stringToIp(const char* text)
{
    int numbers[4] = {};
    const int parsed = text ? std::sscanf(text, "%d.%d.%d.%d", &numbers[0], &numbers[1], &numbers[2], &numbers[3]) : 0;
    if (parsed < 4)
    {
        ::logWarn("param str %s is invalid\n", text ? text : "(null)");
    }
    IpAddress ip{};
    for (const int number : numbers)
    {
        ip.value = ip.value << 8 | (static_cast<std::uint32_t>(number) & 0xFF);
    }
    return ip;
}

}  // namespace General::Utils
