#include "ortha/ortha3/CPrintLog.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

#include "Src/Ortha3/LineFormat.h"
#include "Src/Ortha3/LogCore.h"
#include "Src/Platform/Clock.h"
#include "Src/Platform/Console.h"
#include "Src/Platform/NativeThread.h"

namespace General::Ortha::Detail {

std::atomic<int> logLevel{4};
std::atomic<int> filterMode{filterAll};
std::atomic<bool> lineComplete{true};

namespace {

struct Level
{
    std::string_view word;
    Platform::ConsoleColor color;
};

constexpr Platform::ConsoleColor blue = 1;
constexpr Platform::ConsoleColor green = 2;
constexpr Platform::ConsoleColor red = 4;

constexpr Level levels[] = {
    {"", 0},  // no print level
    {"fatal ", red | blue},
    {"error ", red},
    {"warn ", red | green},
    {"info ", green},
    {"trace ", red | green | blue},
    {"debug ", green | blue},
};

// A level that no table knows counts as no level.
const Level& levelEntry(int level)
{
    return levels[level >= 0 && level < static_cast<int>(std::size(levels)) ? level : 0];
}

unsigned char s_options[optionCount] = {};

std::atomic<bool> s_colorReset{true};
std::atomic<Platform::ConsoleColor> s_savedColor{0};  // 0 until a colour was set

bool option(unsigned char PrintOptions::*field)
{
    return std::atomic_ref(s_options[optionIndex(field)]).load(std::memory_order_relaxed) != 0;
}

void setColor(int level)
{
    s_savedColor.store(Platform::consoleColor(), std::memory_order_relaxed);
    std::fflush(stdout);
    Platform::setConsoleColor(levelEntry(level).color);
    s_colorReset.store(false, std::memory_order_relaxed);
}

// Appends the pieces of a header by hand: formatting them costs more than the rest of a line. What does not fit is cut.
class HeaderWriter
{
public:
    HeaderWriter(char* buffer, int size, bool structured)
        : m_begin(buffer), m_at(buffer), m_end(buffer + size - 1), m_structured(structured)
    {
    }

    [[nodiscard]] bool structured() const { return m_structured; }

    /// Text of the labelled form alone.
    void label(std::string_view label)
    {
        if (m_structured)
        {
            text(label);
        }
    }

    void text(std::string_view text)
    {
        const std::size_t length = std::min(text.size(), static_cast<std::size_t>(m_end - m_at));
        std::memcpy(m_at, text.data(), length);
        m_at += length;
    }

    void number(int value)
    {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
        text({digits, static_cast<std::size_t>(end - digits)});
    }

    void padded(int value, int width)
    {
        char digits[8];
        for (int i = width; i > 0; value /= 10)
        {
            digits[--i] = static_cast<char>('0' + value % 10);
        }
        for (int i = 0; i < width; ++i)
        {
            character(digits[i]);
        }
    }

    void character(char c)
    {
        if (m_at < m_end)
        {
            *m_at++ = c;
        }
    }

    int finish()
    {
        *m_at = 0;
        return static_cast<int>(m_at - m_begin);
    }

private:
    char* const m_begin;
    char* m_at;
    char* const m_end;  // room for the terminator
    const bool m_structured;
};

void writeTime(HeaderWriter& header, const LogTime& time)
{
    header.label("|T: ");
    if (option(&PrintOptions::showDate))
    {
        header.padded(time.year, 4);
        header.character('-');
        header.padded(time.month, 2);
        header.character('-');
        header.padded(time.day, 2);
        header.character('T');
    }
    if (!option(&PrintOptions::noTime))
    {
        header.padded(time.hour, 2);
        header.character(':');
        header.padded(time.minute, 2);
        header.character(':');
        header.padded(time.second, 2);
        if (option(&PrintOptions::showMilliseconds))
        {
            header.character('.');
            header.padded(time.milliSecond, 3);
        }
    }
    header.character(' ');
}

void writeVersion(HeaderWriter& header, const char* version)
{
    const std::string_view text = version ? version : "";
    if (header.structured())
    {
        if (!option(&PrintOptions::noVersion))
        {
            header.text("[ver:");
            header.text(text);
            header.text("] ");
        }
        return;
    }
    if (option(&PrintOptions::noVersion))
    {
        // The blank that would have stood behind the module's version.
        if (!option(&PrintOptions::noModule))
        {
            header.character(' ');
        }
        return;
    }
    if (!text.empty() && text != "Unknown")
    {
        header.character(':');
        header.text(text);
    }
    header.character(' ');
}

// Level, module, version and thread.
void writeOrigin(HeaderWriter& header, int level, const char* module, const char* version)
{
    if (!option(&PrintOptions::noLevel))
    {
        header.label("L:");
        header.text(levelEntry(level).word);
        header.label("|");
    }
    if (!option(&PrintOptions::noModule))
    {
        header.label("[");
        header.text(module ? module : "");
        header.label("] ");
    }
    writeVersion(header, version);
    if (!option(&PrintOptions::noThreadId))
    {
        header.label("tid:");
        header.number(Platform::currentThreadId());
        header.character(' ');
    }
}

void writePlace(HeaderWriter& header, const char* file, int line, const char* function)
{
    if (!option(&PrintOptions::noFile))
    {
        header.label("F:");
        header.text(file ? file : "");
        header.character(header.structured() ? '|' : ':');
    }
    if (!option(&PrintOptions::noLine))
    {
        header.label("l:");
        header.number(line);
        header.label("|");
    }
    if (option(&PrintOptions::showFunction))
    {
        const std::string_view name = function ? function : "";
        header.text(header.structured() ? "f:" : " ");
        header.text(name.substr(name.rfind(':') + 1));
        header.label("|");
    }
}

void readTime(LogTime& time)
{
    const Platform::CalendarTime now = Platform::localTime();
    time = {now.year, now.month, now.day, now.dayOfWeek, now.hour, now.minute, now.second, now.milliSecond, {}};
}

}  // namespace

const char* behindLastBackslash(const char* file)
{
    const char* last = std::strrchr(file, '\\');
    return last ? last + 1 : file;
}

int formatLine(char (&buffer)[lineBufferSize], int level, const char* module, const char* file, const char* function, int line,
               const char* version, LogTime* time, const char* format, va_list args)
{
    const int header = Ortha_logOptionControl(buffer, lineBufferSize - 1, level, module, file, function, line, version, time);
    const int message = formatMessage(buffer + header, static_cast<std::size_t>(lineBufferSize - header), format, args);
    if (message < 0)
    {
        buffer[header] = 0;
    }
    const int count = header + std::clamp(message, 0, INT_MAX - lineBufferSize);
    lineComplete.store(count >= lineBufferSize || (count >= 1 && buffer[count - 1] == '\n'), std::memory_order_relaxed);
    return count;
}

}  // namespace General::Ortha::Detail

using namespace General::Ortha;
using namespace General::Ortha::Detail;

int Ortha_logFilter(int level, const char* module, const char* file, const char* function, int line, const char* version,
                    const char* format, ...)
{
    if (level == 6)
    {
        level = 5;
    }
    if (!levelPasses(level))
    {
        return 0;
    }
    const ErrnoKeeper keeper;
    const char* shownFile = file ? behindLastBackslash(file) : "";
    if (file && *shownFile == 0)
    {
        shownFile = file;
    }
    char buffer[lineBufferSize];
    va_list args;
    va_start(args, format);
    const int count = formatLine(buffer, level, module, shownFile, function, line, version, nullptr, format, args);
    va_end(args);
    Ortha_print(level, buffer);
    Ortha_resetcolor();
    return count;
}

int Ortha_logOptionControl(char* buffer, int size, int level, const char* module, const char* file, const char* function, int line,
                           const char* version, LogTime* time)
{
    const ErrnoKeeper keeper;  // a format may show it
    LogTime local;
    LogTime& now = time ? *time : local;
    readTime(now);
    if (!lineComplete.load(std::memory_order_relaxed))
    {
        return 0;
    }
    if (!option(&PrintOptions::noColor))
    {
        setColor(level);
    }
    if (size < 1)
    {
        return 0;
    }

    HeaderWriter header(buffer, size, option(&PrintOptions::structured));
    header.character('[');
    writeTime(header, now);
    writeOrigin(header, level, module, version);
    writePlace(header, file, line, function);
    header.label("m:");
    header.character(']');
    return header.finish();
}

void Ortha_print(int, const char* text)
{
    const ErrnoKeeper keeper;
    Platform::debuggerOutput(text);
    std::fputs(text, stdout);
}

void Ortha_resetcolor()
{
    if (!lineComplete.load(std::memory_order_relaxed))
    {
        return;
    }
    if (option(&PrintOptions::noColor) && s_colorReset.load(std::memory_order_relaxed))
    {
        return;
    }
    const ErrnoKeeper keeper;
    std::fflush(stdout);
    if (const Platform::ConsoleColor saved = s_savedColor.load(std::memory_order_relaxed))
    {
        Platform::setConsoleColor(saved);
    }
    s_colorReset.store(true, std::memory_order_relaxed);
}

unsigned char* Ortha_getPrintOption()
{
    return s_options;
}
