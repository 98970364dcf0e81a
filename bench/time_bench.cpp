// The library's calendar, time texts and clocks beside others. Rows are named time/operation/who.
//
// Inputs are drawn at random, or else the branches that depend on a date are learnt. Each conversion is tried on all of them before it is
// measured.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>

#include "ortha/ortha3/Time.h"

#ifdef ORTHA_BENCH_HAS_FMT
#include <fmt/chrono.h>
#endif
#ifdef ORTHA_BENCH_HAS_ABSL
#include <absl/time/time.h>
#endif
#ifdef ORTHA_BENCH_HAS_POCO
#include <Poco/DateTimeFormatter.h>
#include <Poco/DateTimeParser.h>
#endif
#ifdef ORTHA_BENCH_HAS_DATE
#include <date/date.h>
#endif

#include "native.h"
#include "support.h"

namespace {

namespace chrono = std::chrono;
using Bench::Native::split;
using General::Ortha::CTime;
using General::Ortha::SystemTime;
using Seconds = unsigned long long;
using Text = std::string;

SystemTime fieldsOf(const tm& time)
{
    return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_wday, time.tm_hour, time.tm_min, time.tm_sec};
}

// Into a text that has the length already.
void write(const tm& time, const char* format, Text& text)
{
    strftime(text.data(), text.size() + 1, format, &time);
}

// The same times in all forms, by the C library: from the second day on, so that no zone brings one to before 1970, to the end of 2099.
struct Times
{
    static constexpr std::size_t count = 1 << 16;
    std::vector<Seconds> seconds = std::vector<Seconds>(count);
    std::vector<tm> splits = std::vector<tm>(count);
    std::vector<CTime> fields = std::vector<CTime>(count);
    std::vector<Text> texts{count, "2024-05-01 20:00:00"}, utcTexts{count, "2024-05-01T12:00:00Z"},
        zoneTexts{count, "2024-05-01T20:00:00+08:00"};

    Times()
    {
        Bench::Draw<Seconds> draw(86400, 4102444799);
        for (std::size_t i = 0; i < count; ++i)
        {
            seconds[i] = draw();
            splits[i] = split(time_t(seconds[i]));
            static_cast<SystemTime&>(fields[i]) = fieldsOf(splits[i]);
            write(splits[i], "%Y-%m-%d %H:%M:%S", texts[i]);
            write(splits[i], "%Y-%m-%dT%H:%M:%SZ", utcTexts[i]);
            const bool east = seconds[i] % 2 != 0;
            const tm local = split(time_t(seconds[i]) + (east ? 8 : -5) * 3600);
            write(local, east ? "%Y-%m-%dT%H:%M:%S+08:00" : "%Y-%m-%dT%H:%M:%S-05:00", zoneTexts[i]);
        }
    }
};

const Times times;

// `function` takes an input, and what to write the result into.
template <class Input, class Result, class Function>
void convert(const std::string& name, const std::vector<Input>& inputs, const std::vector<Result>& expected, Function function)
{
    Bench::row("time/" + name, [&inputs, &expected, function](benchmark::State& state) {
        Result result = expected.front();
        const auto right = [&](const Result& wanted, const Input& input) { return function(input, result), result == wanted; };
        if (!std::equal(expected.begin(), expected.end(), inputs.begin(), right))
        {
            return state.SkipWithError("wrong result");
        }
        std::size_t next = 0;
        for (auto _ : state)
        {
            function(inputs[next++ % Times::count], result);
            benchmark::DoNotOptimize(result);
        }
    });
}

template <class Function>
void read(const std::string& name, Function function)
{
    Bench::row("time/" + name, [function](benchmark::State& state) {
        for (auto _ : state)
        {
            auto result = function();
            benchmark::DoNotOptimize(result);
        }
    });
}

// The calendar of the standard library, or of the library it comes from.
template <class Days, class Date, class Weekday, class Clock>
void compareCalendar(const std::string& who)
{
    convert("seconds-to-fields/" + who, times.seconds, times.fields, [](Seconds utc, SystemTime& to) {
        const chrono::sys_seconds time{chrono::seconds(utc)};
        const auto days = chrono::floor<typename Days::duration>(time);
        const Date date{days};
        const Clock clock{time - days};
        to = {int(date.year()),           int(unsigned(date.month())),  int(unsigned(date.day())),   int(Weekday(days).c_encoding()),
              int(clock.hours().count()), int(clock.minutes().count()), int(clock.seconds().count())};
    });
    convert("fields-to-seconds/" + who, times.fields, times.seconds, [](const CTime& time, Seconds& utc) {
        const auto part = [](auto like, int value) { return decltype(like)(static_cast<unsigned int>(value)); };
        const Days days = Date(part(Date().year(), time.year), part(Date().month(), time.month), part(Date().day(), time.day));
        utc = (days + chrono::hours(time.hour) + chrono::minutes(time.minute) + chrono::seconds(time.second)).time_since_epoch().count();
    });
}

}  // namespace

int main(int argc, char** argv)
{
    Bench::setZone("UTC");
    const auto& [seconds, splits, fields, texts, utcTexts, zoneTexts] = times;
    constexpr const char* format = "yyyy-MM-dd HH:mm:ss";
    convert("seconds-to-fields/ortha", seconds, fields, [](Seconds utc, CTime& time) { std::construct_at(&time, utc, false); });
    convert("fields-to-seconds/ortha", fields, seconds, [](const CTime& time, Seconds& utc) { utc = CTime::timeToSeconds(time); });
    convert("format/ortha", fields, texts, [](const CTime& time, Text& text) { time.format(text.data(), format, CTime::formatAsWritten); });
    convert("parse/ortha", texts, fields, [](const Text& text, CTime& time) { time.parse(text.c_str(), format, CTime::formatAsWritten); });
    convert("parse-with-zone/ortha", zoneTexts, seconds, [](const Text& text, Seconds& utc) { CTime::convertTZtoUTC(text.c_str(), &utc); });
    convert("format-utc/ortha", seconds, utcTexts, [](Seconds utc, Text& text) { CTime::convertUTCtoTZ(utc, text.data(), 21, false); });
    read("monotonic-clock/ortha", &CTime::getCurrentMilliSecond);
    read("local-time/ortha", &CTime::getCurrentTime);

    convert("seconds-to-fields/libc", seconds, fields, [](Seconds utc, SystemTime& time) { time = fieldsOf(split(time_t(utc))); });
    convert("fields-to-seconds/libc", splits, seconds, [](tm time, Seconds& utc) { utc = Seconds(Bench::Native::join(time)); });
    convert("format/libc", splits, texts, [](const tm& time, Text& text) { write(time, "%Y-%m-%d %H:%M:%S", text); });
    using Bench::Native::parse;
    if (Bench::Native::parses)
    {
        convert("parse/libc", texts, seconds, [](const Text& text, Seconds& utc) { utc = Seconds(parse(text, "%Y-%m-%d %H:%M:%S")); });
        convert("parse-with-zone/libc", zoneTexts, seconds,
                [](const Text& text, Seconds& utc) { utc = Seconds(parse(text, "%Y-%m-%dT%H:%M:%S%z")); });
    }
    convert("format-utc/libc", seconds, utcTexts, [](Seconds utc, Text& text) { write(split(time_t(utc)), "%Y-%m-%dT%H:%M:%SZ", text); });
    read("monotonic-clock/std", &chrono::steady_clock::now);
    timespec now;
    read("monotonic-clock/libc", [&now] { return Bench::Native::monotonicTime(now); });
    tm local;
    read("local-time/libc", [&now, &local] { return Bench::Native::localTime(now, local); });
    compareCalendar<chrono::sys_days, chrono::year_month_day, chrono::weekday, chrono::hh_mm_ss<chrono::seconds>>("std");
#ifdef ORTHA_BENCH_HAS_DATE
    compareCalendar<date::sys_days, date::year_month_day, date::weekday, date::hh_mm_ss<chrono::seconds>>("date");
#endif
#ifdef ORTHA_BENCH_HAS_FMT
    convert("format/fmt", splits, texts, [](const tm& time, Text& text) { fmt::format_to(text.data(), "{:%Y-%m-%d %H:%M:%S}", time); });
#endif
#ifdef ORTHA_BENCH_HAS_ABSL
    const auto zone = absl::UTCTimeZone();
    convert("seconds-to-fields/absl", seconds, fields, [zone](Seconds utc, SystemTime& to) {
        const absl::CivilSecond time = zone.At(absl::FromUnixSeconds(utc)).cs;
        const int weekday = (static_cast<int>(absl::GetWeekday(time)) + 1) % 7;
        to = {int(time.year()), time.month(), time.day(), weekday, time.hour(), time.minute(), time.second()};
    });
    convert("fields-to-seconds/absl", fields, seconds, [zone](const CTime& time, Seconds& utc) {
        const absl::CivilSecond civil(time.year, time.month, time.day, time.hour, time.minute, time.second);
        utc = absl::ToUnixSeconds(absl::FromCivil(civil, zone));
    });
    convert("format/absl", seconds, texts,
            [zone](Seconds utc, Text& text) { text = absl::FormatTime("%Y-%m-%d %H:%M:%S", absl::FromUnixSeconds(utc), zone); });
    convert("format-utc/absl", seconds, utcTexts,
            [zone](Seconds utc, Text& text) { text = absl::FormatTime("%Y-%m-%d%ET%H:%M:%SZ", absl::FromUnixSeconds(utc), zone); });
    const auto parseBy = [zone](const char* how) {
        return [zone, how](const Text& text, Seconds& utc) {
            absl::Time time;
            absl::ParseTime(how, text, zone, &time, nullptr);
            utc = absl::ToUnixSeconds(time);
        };
    };
    convert("parse/absl", texts, seconds, parseBy("%Y-%m-%d %H:%M:%S"));
    convert("parse-with-zone/absl", zoneTexts, seconds, parseBy(absl::RFC3339_sec));
#endif
#ifdef ORTHA_BENCH_HAS_POCO
    const auto splitPoco = [](Seconds utc) { return Poco::DateTime(Poco::Timestamp::fromEpochTime(time_t(utc))); };
    std::vector<Poco::DateTime> dates(Times::count);
    std::transform(seconds.begin(), seconds.end(), dates.begin(), splitPoco);
    convert("seconds-to-fields/poco", seconds, fields, [splitPoco](Seconds utc, SystemTime& to) {
        const Poco::DateTime time = splitPoco(utc);
        to = {time.year(), time.month(), time.day(), time.dayOfWeek(), time.hour(), time.minute(), time.second()};
    });
    convert("format/poco", dates, texts, [](const Poco::DateTime& time, Text& text) {
        text.clear();
        Poco::DateTimeFormatter::append(text, time, "%Y-%m-%d %H:%M:%S");
    });
    convert("parse/poco", texts, seconds, [](const Text& text, Seconds& utc) {
        int offset = 0;
        utc = Poco::DateTimeParser::parse("%Y-%m-%d %H:%M:%S", text, offset).timestamp().epochTime();
    });
#endif
    return Bench::run(argc, argv);
}
