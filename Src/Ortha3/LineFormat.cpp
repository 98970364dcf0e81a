#include "Src/Ortha3/LineFormat.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace General::Ortha::Detail {

namespace {

// Counts all that is appended, and stores what fits.
class Message
{
public:
    Message(char* buffer, std::size_t size) : m_buffer(buffer), m_room(size - 1) {}

    void append(const char* text, std::size_t length)
    {
        if (m_length < m_room)
        {
            std::memcpy(m_buffer + m_length, text, std::min(length, m_room - m_length));
        }
        m_length += length;
    }

    template <class Integer>
    void appendNumber(Integer value)
    {
        char digits[24];
        append(digits, static_cast<std::size_t>(std::to_chars(digits, digits + sizeof(digits), value).ptr - digits));
    }

    /// The length; negative if it does not fit into the result, for which the runtime has its own answer.
    int finish()
    {
        m_buffer[std::min(m_length, m_room)] = 0;
        return m_length <= INT_MAX ? static_cast<int>(m_length) : -1;
    }

private:
    char* const m_buffer;
    const std::size_t m_room;  // without the terminator
    std::size_t m_length = 0;
};

enum class Width
{
    plain,
    isLong,
    isLongLong,
    isSize
};

Width readWidth(const char*& at)
{
    if (*at == 'z')
    {
        ++at;
        return Width::isSize;
    }
    if (*at != 'l')
    {
        return Width::plain;
    }
    ++at;
    if (*at != 'l')
    {
        return Width::isLong;
    }
    ++at;
    return Width::isLongLong;
}

// A va_list can be passed on by reference only within a record.
struct Arguments
{
    va_list list;
};

std::int64_t readSigned(Width width, Arguments& args)
{
    switch (width)
    {
    case Width::plain:
        return va_arg(args.list, int);
    case Width::isLong:
        return va_arg(args.list, long);
    case Width::isLongLong:
        return va_arg(args.list, long long);
    default:
        return va_arg(args.list, std::ptrdiff_t);
    }
}

std::uint64_t readUnsigned(Width width, Arguments& args)
{
    switch (width)
    {
    case Width::plain:
        return va_arg(args.list, unsigned int);
    case Width::isLong:
        return va_arg(args.list, unsigned long);
    case Width::isLongLong:
        return va_arg(args.list, unsigned long long);
    default:
        return va_arg(args.list, std::size_t);
    }
}

// One conversion, `at` behind its percent sign. False if it is not a plain one.
bool convert(Message& message, const char*& at, Arguments& args)
{
    const Width width = readWidth(at);
    const char conversion = *at++;
    if (conversion == 'd' || conversion == 'i')
    {
        message.appendNumber(readSigned(width, args));
        return true;
    }
    if (conversion == 'u')
    {
        message.appendNumber(readUnsigned(width, args));
        return true;
    }
    if (width != Width::plain)
    {
        return false;
    }
    if (conversion == 's')
    {
        const char* text = va_arg(args.list, const char*);
        if (!text)
        {
            return false;  // the runtime has its own word for that
        }
        message.append(text, std::strlen(text));
        return true;
    }
    if (conversion == 'c' || conversion == '%')
    {
        const char c = conversion == 'c' ? static_cast<char>(va_arg(args.list, int)) : '%';
        message.append(&c, 1);
        return true;
    }
    return false;
}

bool formatPlain(Message& message, const char* format, Arguments& args)
{
    for (;;)
    {
        const char* percent = format;
        while (*percent != 0 && *percent != '%')
        {
            ++percent;
        }
        message.append(format, static_cast<std::size_t>(percent - format));
        if (*percent == 0)
        {
            return true;
        }
        format = percent + 1;
        if (!convert(message, format, args))
        {
            return false;
        }
    }
}

}  // namespace

int formatMessage(char* buffer, std::size_t size, const char* format, va_list args)
{
    Message message(buffer, size);
    Arguments copy;
    va_copy(copy.list, args);
    const bool plain = formatPlain(message, format, copy);
    va_end(copy.list);
    const int length = plain ? message.finish() : -1;
    return length >= 0 ? length : std::vsnprintf(buffer, size, format, args);
}

}  // namespace General::Ortha::Detail
