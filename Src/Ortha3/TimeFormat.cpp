#include "Src/Ortha3/TimeFormat.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstring>

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/Log.h"

namespace General::Ortha {

namespace {

constexpr const char* noDateFormat = "setFormat dateFormat is invalid,set default separator: ymd \n";

void report(const char* text)
{
    ORTHA_LOG(levelError, "%s", text);
}

// The template that most times are written and read by, and that the others' cost is not to be paid for.
constexpr char plainTemplate[] = "yyyy-MM-dd HH:mm:ss";

bool isPlainTemplate(const char* format)
{
    return std::strcmp(format, plainTemplate) == 0;
}

// What there is to know of a template before it is walked. Places are counted from the left, a missing letter is beyond all.
struct Letters
{
    explicit Letters(const char* format)
    {
        for (unsigned int i = 0; format[i] != 0; ++i)
        {
            switch (format[i])
            {
            case 'y':
                note(year, i);
                break;
            case 'M':
                note(month, i);
                break;
            case 'd':
                note(day, i);
                break;
            case 'h':
                twelveHour = true;
                break;
            default:
                break;
            }
        }
    }

    struct Letter
    {
        unsigned int count = 0;
        unsigned int first = UINT_MAX;
    };

    bool order(CTime::DateFormat& dateFormat) const
    {
        if (year.first < month.first && month.first < day.first)
        {
            dateFormat = CTime::dateFormatYMD;
        }
        else if (month.first < day.first && day.first < year.first)
        {
            dateFormat = CTime::dateFormatMDY;
        }
        else if (day.first < month.first && month.first < year.first)
        {
            dateFormat = CTime::dateFormatDMY;
        }
        else
        {
            return false;
        }
        return true;
    }

    Letter year;
    Letter month;
    Letter day;
    bool twelveHour = false;

private:
    static void note(Letter& letter, unsigned int place)
    {
        letter.first = std::min(letter.first, place);
        ++letter.count;
    }
};

// Writes a number with at least `digits` digits, 1 or 2.
char* write(char* to, int number, int digits)
{
    if (number < 0 || number > 99)  // in no time that this library made
    {
        return to + std::sprintf(to, digits == 1 ? "%d" : "%02d", number);
    }
    if (number > 9 || digits == 2)
    {
        *to++ = static_cast<char>('0' + number / 10);
    }
    *to++ = static_cast<char>('0' + number % 10);
    return to;
}

// Writes a time of possible fields as "2024-03-05 07:08:09", with `separator` between date and time of day. Gives its end.
char* writeFixed(char* to, const SystemTime& time, char separator)
{
    const auto two = [](char* at, std::int32_t number) {
        const auto digits = static_cast<std::uint32_t>(number);
        at[0] = static_cast<char>('0' + digits / 10);
        at[1] = static_cast<char>('0' + digits % 10);
    };
    two(to, time.year / 100);
    two(to + 2, time.year % 100);
    to[4] = '-';
    two(to + 5, time.month);
    to[7] = '-';
    two(to + 8, time.day);
    to[10] = separator;
    two(to + 11, time.hour);
    to[13] = ':';
    two(to + 14, time.minute);
    to[16] = ':';
    two(to + 17, time.second);
    return to + 19;
}

// Whether a time's fields have no more digits than the plain template shows.
bool fitsPlainTemplate(const SystemTime& time)
{
    const auto below = [](std::int32_t value, std::uint32_t end) { return static_cast<std::uint32_t>(value) < end; };
    return below(time.year, 10000) && below(time.month, 100) && below(time.day, 100) && below(time.hour, 100) && below(time.minute, 100) &&
           below(time.second, 100);
}

constexpr int dateFieldSize = 4;

// Writes a date field, cut to its size.
char* writeDateField(char* to, const char* format, int number)
{
    char text[16];
    const int length = std::min(std::sprintf(text, format, number), dateFieldSize);
    std::memcpy(to, text, static_cast<std::size_t>(length));
    return to + length;
}

char* writeYear(char* to, int year, unsigned int letters)
{
    if (letters < 3)
    {
        return year >= 0 ? write(to, year % 100, 2) : writeDateField(to, "%02d", year % 100);
    }
    if (year < 0 || year > 9999)
    {
        return writeDateField(to, "%04d", year);
    }
    return write(write(to, year / 100, 2), year % 100, 2);
}

char* writeDay(char* to, int number, unsigned int letters)
{
    const bool one = letters == 1;
    return number >= 0 && number <= 99 ? write(to, number, one ? 1 : 2) : writeDateField(to, one ? "%d" : "%02d", number);
}

// Skips the run of a letter, or of either of two.
const char* skipRun(const char* at, char letter, char other)
{
    while (*at == letter || *at == other)
    {
        ++at;
    }
    return at;
}

// Reads decimal numbers with anything but digits between them; a digit run too long for an int counts as INT_MAX. `between` is shown each
// character between.
template <class Between>
int readNumbers(const char* text, int* numbers, int most, Between between)
{
    const auto digitOf = [](char c) { return static_cast<unsigned int>(c) - '0'; };
    int count = 0;
    do
    {
        int number = 0;
        unsigned int digit = digitOf(*text);
        while (digit < 10)
        {
            number = number >= INT_MAX / 10 ? INT_MAX : number * 10 + static_cast<int>(digit);
            digit = digitOf(*++text);
        }
        numbers[count++] = number;
        for (; digit >= 10 && *text != 0; digit = digitOf(*++text))
        {
            between(*text);
        }
    } while (count < most && *text != 0);
    return count;
}

const char* textOf(const char* text)
{
    return text ? text : "";
}

// As setFormatString() left them. Never destroyed, as times are written until the very end.
struct Settings
{
    string format = "yyyy-MM-dd HH:mm:ss";
    std::atomic<CTime::DateFormat> dateFormat{CTime::dateFormatYMD};
    std::atomic<char> separator{'-'};
    std::atomic<bool> twelveHour{false};
};

Settings& settings()
{
    static Settings& s_settings = *new Settings;
    return s_settings;
}

// So that writing a time never needs memory.
[[maybe_unused]] const Settings& s_settingsMadeEarly = settings();

}  // namespace

TimePreferences preferencesOf(const char* format, ReportFormatFault reportFault)
{
    TimePreferences preferences;
    const char* const separator = std::strchr(format, '.') ? "." : std::strchr(format, '/') ? "/" : std::strchr(format, '-');
    if (!separator)
    {
        reportFault("setFormat separator is invalid,set default separator: - \n");
    }
    preferences.separator = separator ? *separator : '-';
    const Letters letters(format);
    preferences.twelveHour = letters.twelveHour;
    if (!letters.order(preferences.dateFormat))
    {
        reportFault(noDateFormat);
    }
    return preferences;
}

void formatTime(char* buf, const char* format, const SystemTime& time, TimePreferences preferences, int options,
                ReportFormatFault reportFault)
{
    const bool keepSeparator = (options & CTime::formatKeepSeparator) != 0;
    if (isPlainTemplate(format) && (keepSeparator || preferences.separator == '-') &&
        ((options & CTime::formatDateOrder) != 0 || preferences.dateFormat == CTime::dateFormatYMD) &&
        ((options & CTime::formatHourStyle) != 0 || !preferences.twelveHour) && fitsPlainTemplate(time))
    {
        *writeFixed(buf, time, ' ') = 0;
        return;
    }
    const Letters letters(format);
    if ((options & CTime::formatDateOrder) != 0 && !letters.order(preferences.dateFormat))
    {
        reportFault(noDateFormat);
        preferences.dateFormat = CTime::dateFormatYMD;
    }
    const bool twelveHour = (options & CTime::formatHourStyle) != 0 ? letters.twelveHour : preferences.twelveHour;
    const int hour = !twelveHour ? time.hour : time.hour > 12 ? time.hour - 12 : time.hour == 0 ? 12 : time.hour;

    // The date fields in their order; those without a letter are passed over.
    enum Field : char
    {
        year,
        month,
        day
    };
    constexpr Field orders[][3] = {{year, month, day}, {month, day, year}, {day, month, year}};
    const Field* field = orders[preferences.dateFormat];
    const Field* const end = field + 3;

    const auto writeNumber = [&buf](const char* run, const char* runEnd, int number) {
        buf = write(buf, number, runEnd - run == 1 ? 1 : 2);
        return runEnd;
    };
    const char* const begin = buf;
    for (const char* at = format; *at != 0;)
    {
        const char letter = *at;
        switch (letter)
        {
        case 'y':
        case 'M':
        case 'd':
            at = skipRun(at, letter, letter);
            for (bool written = false; field != end && !written; ++field)
            {
                const unsigned int count = *field == year ? letters.year.count : *field == month ? letters.month.count : letters.day.count;
                written = count != 0;
                if (written)
                {
                    buf = *field == year ? writeYear(buf, time.year, count) : writeDay(buf, *field == month ? time.month : time.day, count);
                }
            }
            break;
        case 'h':
        case 'H':
            at = writeNumber(at, skipRun(at, 'h', 'H'), hour);
            break;
        case 'm':
            at = writeNumber(at, skipRun(at, 'm', 'm'), time.minute);
            break;
        case 's':
            at = writeNumber(at, skipRun(at, 's', 's'), time.second);
            break;
        case 't':
            if (twelveHour)
            {
                at = skipRun(at, 't', 't');
                *buf++ = time.hour / 12 != 0 ? 'P' : 'A';
                *buf++ = 'M';
                break;
            }
            ++at;
            while (buf != begin && buf[-1] == ' ')
            {
                --buf;
            }
            break;
        case '-':
        case '.':
        case '/':
            *buf++ = keepSeparator ? letter : preferences.separator;
            ++at;
            break;
        default:
            *buf++ = letter;
            ++at;
        }
    }
    *buf = 0;
}

void CTime::format(char* buf, const char* format, int options) const
{
    if (!buf)
    {
        ORTHA_LOG(levelError, "buf is NULL!!\n");
        return;
    }
    const Settings& set = settings();
    const TimePreferences preferences{set.dateFormat.load(std::memory_order_relaxed), set.separator.load(std::memory_order_relaxed),
                                      set.twelveHour.load(std::memory_order_relaxed)};
    formatTime(buf, textOf(format), *this, preferences, options, &report);
}

bool CTime::parse(const char* buf, const char* format, int)
{
    buf = textOf(buf);
    format = textOf(format);
    const auto fail = [this] {
        year = month = day = hour = minute = second = 0;
        return false;
    };
    const void* const self = this;
    int numbers[6] = {};
    if (readNumbers(buf, numbers, 6, [](char) {}) != 6)
    {
        ORTHA_LOG(levelError, "this:%p CTime parser input information is not enough.\n", self);
        return fail();
    }
    const bool plain = isPlainTemplate(format);
    const Letters letters(plain ? "" : format);
    DateFormat dateFormat{};
    if (plain || letters.order(dateFormat))
    {
        const bool yearFirst = dateFormat == dateFormatYMD;
        year = numbers[yearFirst ? 0 : 2];
        month = numbers[dateFormat == dateFormatMDY ? 0 : 1];
        day = numbers[dateFormat == dateFormatMDY ? 1 : yearFirst ? 2 : 0];
    }
    hour = numbers[3];
    minute = numbers[4];
    second = numbers[5];
    if (letters.twelveHour)
    {
        if (hour >= 13)
        {
            ORTHA_LOG(levelError, "this:%p CTime parser input hour format is not accord with real value format.\n", self);
            return fail();
        }
        if (std::strstr(buf, "PM"))
        {
            hour += hour != 12 ? 12 : 0;
        }
        else if (std::strstr(buf, "AM"))
        {
            hour = hour == 12 ? 0 : hour;
        }
        else
        {
            ORTHA_LOG(levelError, "this:%p 12 hours time point is unclear.\n", self);
            return fail();
        }
    }
    Calendar::normalise(*this);
    return true;
}

void CTime::setFormatString(const char* format)
{
    format = textOf(format);
    Settings& set = settings();
    set.format = format;
    const TimePreferences preferences = preferencesOf(format, &report);
    set.separator = preferences.separator;
    set.twelveHour = preferences.twelveHour;
    set.dateFormat = preferences.dateFormat;
}

void CTime::setFormat(const string& format)
{
    setFormatString(format.c_str());
}

const string CTime::getFormat()
{
    return settings().format;
}

CTime::DateFormat CTime::getDateFormat()
{
    return settings().dateFormat;
}

char CTime::getSeparator()
{
    return settings().separator;
}

bool CTime::get12Hour()
{
    return settings().twelveHour;
}

bool CTime::convertTZtoUTC(const char* buf, unsigned long long* utcSec)
{
    if (!buf || !utcSec)
    {
        ORTHA_LOG(levelError, "buf or utcSec is NULL!!\n");
        return false;
    }
    *utcSec = 0;
    int numbers[8] = {};
    int sign = 0;
    const int count = readNumbers(buf, numbers, 8, [&sign](char c) { sign = c == '+' ? 1 : c == '-' ? -1 : sign; });
    if (count != 6 && (count != 8 || sign == 0))
    {
        ORTHA_LOG(levelError, "convert TZ to UTC, input information is not enough.\n");
        return false;
    }
    std::int64_t offset = 0;
    if (count == 8)
    {
        offset = (std::int64_t{numbers[6]} * 3600 + std::int64_t{numbers[7]} * 60) * sign;
        if (offset < -43200 || offset >= 50401)
        {
            ORTHA_LOG(levelError, "invalid timezone!\n");
            return false;
        }
    }
    const SystemTime time{numbers[0], numbers[1], numbers[2], 0, numbers[3], numbers[4], numbers[5]};
    *utcSec = static_cast<unsigned long long>(std::clamp<std::int64_t>(Calendar::toSeconds(time) - offset, 0, Calendar::lastSecond));
    return true;
}

void CTime::convertUTCtoTZ(unsigned long long utcSec, char* buf, int len, bool addOffset)
{
    if (addOffset)
    {
        ORTHA_LOG(levelError, "addOffset is temporarily not supported.\n");
        return;
    }
    if (!buf || len < static_cast<int>(sizeof("yyyy-MM-ddTHH:mm:ssZ")))
    {
        ORTHA_LOG(levelError, "buf space is not large enough\n");
        return;
    }
    const CTime time(utcSec, false);
    buf = writeFixed(buf, time, 'T');
    *buf++ = 'Z';
    *buf = 0;
}

}  // namespace General::Ortha
