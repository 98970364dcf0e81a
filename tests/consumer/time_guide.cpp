#include <cstdio>

#include "ortha/ortha3/Time.h"

using General::Ortha::CTime;

int main()
{
    char text[32];
    CTime meeting;
    if (!meeting.parse("2024-02-28 23:30:00", "yyyy-MM-dd HH:mm:ss", 0))
    {
        return 1;
    }
    const CTime end = meeting + 90 * 60;
    end.format(text, "dd/MM/yyyy h:mm tt", CTime::formatKeepSeparator | CTime::formatDateOrder | CTime::formatHourStyle);
    std::printf("ends %s, a day of the week %d\n", text, end.wday);
    std::printf("%lld seconds\n", end - meeting);

    unsigned long long utc = 0;
    CTime::convertTZtoUTC("2024-05-01T20:00:00+08:00", &utc);
    CTime::convertUTCtoTZ(utc, text, sizeof(text), false);
    std::printf("%s\n", text);

    CTime::getCurrentTime().format(text, "yyyy-MM-dd HH:mm:ss", CTime::formatAsWritten);
    std::printf("now it is %s\n", text);
}
