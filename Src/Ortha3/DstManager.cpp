#include "Src/Ortha3/DstManager.h"

#include "ortha/ortha3/Error.h"
#include "ortha/ortha3/Thread.h"

#include "Src/Ortha3/Calendar.h"
#include "Src/Ortha3/Log.h"
#include "Src/Ortha3/TimeSetting.h"
#include "Src/Ortha3/WallClock.h"

namespace General::Ortha {

namespace {

constexpr int dstSeconds = 3600;
constexpr int aheadSeconds = 2;  // so much earlier than the rule a change is begun
constexpr int settleMilliSeconds = 1200;

bool isValid(const DstConfigInfo& rule)
{
    const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
    const bool day = rule.week == 0 ? within(rule.day, 1, 31) : within(rule.week, -1, 4) && within(rule.day, 0, 6);
    return within(rule.month, 1, 12) && within(rule.hour, 0, 23) && within(rule.minute, 0, 59) && day;
}

// A time as log lines show it.
struct Text
{
    explicit Text(const CTime& time) { time.format(text, "yyyy-MM-dd HH:mm:ss", CTime::formatAsWritten); }
    char text[32];
};

}  // namespace

DstManager* DstManager::instance()
{
    static DstManager* const s_instance = new DstManager;
    return s_instance;
}

bool DstManager::startDstManager(const DstConfigInfo& start, const DstConfigInfo& end)
{
    if (!isValid(start) || !isValid(end))
    {
        ORTHA_LOG(levelError, "DST config time invalid!\n");
        return false;
    }
    if (m_timer.isStarted())
    {
        m_timer.stopAndWait();
    }
    if (!startTimer(start, end))
    {
        return false;
    }
    // Without m_mutex: the callback may ask for the dates.
    std::int32_t unset = ZoneView::unsetDst;
    if (zoneView.dst.compare_exchange_strong(unset, 0))
    {
        callConvertCallback(false);
        ORTHA_LOG(levelInfo, "DstManager init dst, dst flag is 0.\n");
    }
    return true;
}

bool DstManager::startTimer(const DstConfigInfo& start, const DstConfigInfo& end)
{
    CRecursiveGuard guard(m_mutex);
    m_startConfig = start;
    m_endConfig = end;
    if (!getTimes(CTime::getCurrentTime().year, m_startTime, m_endTime))
    {
        ORTHA_LOG(levelError, "invalid dst config!\n");
        return false;
    }
    const Text startText(m_startTime);
    const Text endText(m_endTime);
    const long long between = m_endTime - m_startTime;
    if (between >= 0 && between <= dstSeconds)
    {
        ORTHA_LOG(levelError, "invalid dst config, start time: %s, end time: %s\n", startText.text, endText.text);
        return false;
    }
    // A first call that no thread is free for yet is no failure: the timer is armed.
    if (!m_timer.start(TFunction1<void, unsigned long>(&DstManager::onDstTimer, this), 0, 1000, 0, 60000) && !m_timer.isStarted())
    {
        ORTHA_LOG(levelError, "timer start failed!\n");
        return false;
    }
    ORTHA_LOG(levelInfo, "dst config, start time: %s, end time: %s\n", startText.text, endText.text);
    return true;
}

void DstManager::stopDstManager()
{
    if (!m_timer.isStarted())
    {
        ORTHA_LOG(levelWarn, "dst manager not started.\n");
        return;
    }
    m_timer.stopAndWait();
    if (zoneView.dst == 1)
    {
        SystemTimeEx time = Calendar::addMilliSeconds(CTime::getCurrentTimeEx(), -dstSeconds * 1000);
        time.dst = 0;
        if (setTime(time))
        {
            ORTHA_LOG(levelInfo, "out dst, dst flag is %d.\n", CTime::getDst());
        }
    }
    CRecursiveGuard guard(m_mutex);
    m_startTime = m_endTime = CTime();
}

bool DstManager::initDst(bool dst)
{
    if (m_timer.isStarted())
    {
        ORTHA_LOG(levelError, "dst manager has been started!\n");
        return false;
    }
    zoneView.dst = dst ? 1 : 0;
    ORTHA_LOG(levelInfo, "init dst, dst flag is %d.\n", dst ? 1 : 0);
    return true;
}

bool DstManager::getDstConfig(CTime& start, CTime& end, int year)
{
    if (!m_timer.isStarted())
    {
        return false;
    }
    CRecursiveGuard guard(m_mutex);
    CTime first;
    CTime last;
    if (!getTimes(year, first, last))
    {
        ORTHA_LOG(levelError, "invalid dst config!\n");
        return false;
    }
    start = first;
    end = last;
    return true;
}

void DstManager::pause()
{
    {
        CRecursiveGuard guard(m_mutex);
        m_paused = true;
    }
    for (int round = 0; m_timer.isRunning(); ++round)
    {
        if (round % 100 == 0)
        {
            ORTHA_LOG(levelInfo, "pause and waiting for the callback to finish.\n");
        }
        CThread::sleep(5);
    }
    ORTHA_LOG(levelInfo, "dstmanager has been paused.\n");
}

void DstManager::resume()
{
    CRecursiveGuard guard(m_mutex);
    m_paused = false;
    ORTHA_LOG(levelInfo, "resume dstmanager.\n");
}

void DstManager::setConvertCallback(const CTime::ConvertDstProc& proc)
{
    CRecursiveGuard guard(m_callbackMutex);
    m_convertCallback = proc;
}

void DstManager::callConvertCallback(bool dst)
{
    CRecursiveGuard guard(m_callbackMutex);
    if (!m_convertCallback.empty())
    {
        m_convertCallback(dst);
    }
}

bool DstManager::getTime(const DstConfigInfo& rule, int year, CTime& out)
{
    int day = rule.day;
    if (rule.week != 0)
    {
        if (year < Calendar::firstYear || year > Calendar::lastYear)
        {
            const bool fromFirst = rule.week > 0;
            ORTHA_LOG(levelWarn, "mktime(%4d-%2d-%2d) failed%s\n", year, rule.month, fromFirst ? 1 : 28, fromFirst ? "!" : "");
            return false;
        }
        // The first such weekday of the month, or for its last one the one that begins the month's last seven days.
        const int from = rule.week > 0 ? 1 + (rule.week - 1) * 7 : Calendar::monthDays(year, rule.month) - 6;
        day = from + (rule.day - Calendar::weekday(Calendar::daysOf(year, rule.month, from)) + 7) % 7;
    }
    out = CTime(year, rule.month, day, rule.hour, rule.minute, 0);
    return true;
}

bool DstManager::getTimes(int year, CTime& start, CTime& end) const
{
    return getTime(m_startConfig, year, start) && getTime(m_endConfig, year, end);
}

bool DstManager::prepareTime(int year)
{
    if (year == m_startTime.year)
    {
        return true;
    }
    if (!getTimes(year, m_startTime, m_endTime))
    {
        return false;
    }
    ORTHA_LOG(levelInfo, "year changed, increasing time: %s, decreasing time: %s.\n", Text(m_startTime).text, Text(m_endTime).text);
    return true;
}

// The hour before the end comes twice. After the change its times lie at least 3600 seconds before the end, and count as outside by the
// limit that lies as far below as a change is begun ahead.
bool DstManager::isChangeDue(const CTime& now, bool inDst) const
{
    const bool northern = m_startTime < m_endTime;
    if (inDst)
    {
        const bool ended = now >= m_endTime - aheadSeconds;
        const bool notBegun = now < m_startTime + (dstSeconds - aheadSeconds);
        return northern ? ended || notBegun : ended && notBegun;
    }
    const bool begun = now >= m_startTime - aheadSeconds;
    const bool notEnded = now < m_endTime - (dstSeconds + aheadSeconds);
    return northern ? begun && notEnded : begun || notEnded;
}

std::optional<SystemTimeEx> DstManager::checkAdjustTime()
{
    CRecursiveGuard guard(m_mutex);
    if (m_paused)
    {
        ORTHA_LOG(levelInfo, "dst manager paused, exit.\n");
        return std::nullopt;
    }
    const SystemTimeEx clock = CTime::getCurrentTimeEx();
    const CTime now = Calendar::timeOf(clock);
    if (!prepareTime(now.year))
    {
        ORTHA_LOG(levelError, "invalid dst config!\n");
        return std::nullopt;
    }
    const bool inDst = zoneView.dst == 1;
    if (!isChangeDue(now, inDst))
    {
        return std::nullopt;
    }
    // The target holds the seconds by which the change is ahead. Most of them pass here; the target's second is then begun.
    SystemTimeEx target = Calendar::addMilliSeconds(clock, ((inDst ? -dstSeconds : dstSeconds) + aheadSeconds) * 1000);
    target.dst = inDst ? 0 : 1;
    if (target.milliSecond < settleMilliSeconds)
    {
        CThread::sleep(settleMilliSeconds - target.milliSecond);
    }
    target.milliSecond = 0;
    return target;
}

bool DstManager::setTime(const SystemTimeEx& time)
{
    // This thread's last error may be that of an earlier try, and would make a failure of this one: the clock would be moved, the flag
    // would stay, and the next check would move the clock once more.
    setLastError(0);
    CTime::setModifyTimeClientInfo({"DstManager", "127.0.0.1", "local"});
    if (!Ortha_setCurrentTimeInternal(time, 0))
    {
        ORTHA_LOG(levelError, "dst manager set time failed!\n");
        return false;
    }
    return true;
}

void DstManager::onDstTimer(unsigned long)
{
    const std::optional<SystemTimeEx> target = checkAdjustTime();
    if (!target)
    {
        return;
    }
    if (setTime(*target))
    {
        ORTHA_LOG(levelInfo, "change dst, dst flag is %d.\n", target->dst);
    }
}

}  // namespace General::Ortha
