#include "ortha/ortha3/Time.h"

#include <algorithm>
#include <tuple>

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/WallClock.h"

namespace General::Ortha {

namespace {

// What moves a time from one end of the calendar to the other moves it as far as it can go.
std::int64_t held(long long seconds)
{
    return std::clamp<std::int64_t>(seconds, -Calendar::lastSecond, Calendar::lastSecond);
}

CTime moved(const CTime& time, std::int64_t seconds)
{
    CTime result;
    Calendar::split(Calendar::toSeconds<SystemTime>(time) + seconds, result);
    return result;
}

auto fields(const CTime& time)
{
    return std::tie(time.year, time.month, time.day, time.hour, time.minute, time.second);
}

constexpr SystemTime newYear(int year)
{
    SystemTime time{year, 1, 1};
    Calendar::normalise(time);
    return time;
}

}  // namespace

constinit const CTime CTime::minTime{newYear(2000)};
constinit const CTime CTime::maxTime{newYear(2038)};

CTime::CTime(unsigned long long time) noexcept
{
    breakTime(time);
}

CTime::CTime(unsigned long long time, bool local) noexcept
{
    if (local)
    {
        breakTime(time);
    }
    else
    {
        Calendar::split(static_cast<std::int64_t>(std::min<unsigned long long>(time, Calendar::lastSecond)), *this);
    }
}

CTime::CTime(int yearIn, int monthIn, int dayIn, int hourIn, int minuteIn, int secondIn) noexcept
    : SystemTime{yearIn, monthIn, dayIn, 0, hourIn, minuteIn, secondIn}
{
    Calendar::normalise(*this);
}

unsigned long long CTime::makeTime() const noexcept
{
    const std::int64_t time = Calendar::toSeconds<SystemTime>(*this) + zoneOffset();
    return time < 1 ? 0 : static_cast<unsigned long long>(time);
}

void CTime::breakTime(unsigned long long time) noexcept
{
    const auto seconds = static_cast<std::int64_t>(time);
    const std::int64_t offset = zoneOffset();
    Calendar::split(seconds > offset ? held(seconds) - offset : 0, *this);
}

unsigned long long CTime::timeToSeconds(const SystemTime& time) noexcept
{
    return static_cast<unsigned long long>(Calendar::toSeconds(time));
}

CTime CTime::operator+(long long seconds) const noexcept
{
    return moved(*this, held(seconds));
}

CTime CTime::operator-(long long seconds) const noexcept
{
    return moved(*this, -held(seconds));
}

long long CTime::operator-(const CTime& time) const noexcept
{
    return Calendar::toSeconds<SystemTime>(*this) - Calendar::toSeconds<SystemTime>(time);
}

CTime& CTime::operator+=(long long seconds) noexcept
{
    Calendar::split(Calendar::toSeconds<SystemTime>(*this) + held(seconds), *this);
    return *this;
}

CTime& CTime::operator-=(long long seconds) noexcept
{
    return *this += -held(seconds);
}

bool CTime::operator==(const CTime& time) const noexcept
{
    return fields(*this) == fields(time);
}

bool CTime::operator<(const CTime& time) const noexcept
{
    return fields(*this) < fields(time);
}

}  // namespace General::Ortha
