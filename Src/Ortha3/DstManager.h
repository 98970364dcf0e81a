// The daylight-saving manager: moves the machine's clock at the two changeovers of the year.
#pragma once

#include <optional>

#include "ortha/ortha3/Mutex.h"
#include "ortha/ortha3/Time.h"
#include "ortha/ortha3/Timer.h"

namespace General::Ortha {

/// Looks at the clock once a second, and keeps no schedule: a clock that others moved is judged afresh. Stopped, running, or running and
/// paused. Any thread.
class DstManager
{
public:
    /// Never destroyed: its timer ends with the timer manager.
    static DstManager* instance();

    bool startDstManager(const DstConfigInfo& start, const DstConfigInfo& end);
    void stopDstManager();
    /// Sets the flag before the manager runs.
    bool initDst(bool dst);
    /// The two dates in `year`. False if the manager is not started or, with an error line, a rule gives no date.
    bool getDstConfig(CTime& start, CTime& end, int year);
    /// When it returns, no check is under way, and none moves the clock until resume().
    void pause();
    void resume();
    void setConvertCallback(const CTime::ConvertDstProc& proc);
    void callConvertCallback(bool dst);

private:
    DstManager() = default;

    bool startTimer(const DstConfigInfo& start, const DstConfigInfo& end);
    static bool getTime(const DstConfigInfo& rule, int year, CTime& out);
    bool getTimes(int year, CTime& start, CTime& end) const ORTHA_REQUIRES(m_mutex);
    bool prepareTime(int year) ORTHA_REQUIRES(m_mutex);
    bool isChangeDue(const CTime& now, bool inDst) const ORTHA_REQUIRES(m_mutex);
    std::optional<SystemTimeEx> checkAdjustTime();
    static bool setTime(const SystemTimeEx& time);
    void onDstTimer(unsigned long);

    CRecursiveMutex m_mutex;          // held through a check, its sleep before a changeover included
    CRecursiveMutex m_callbackMutex;  // held while the callback runs; taken alone
    CTimer m_timer{"DstManager"};
    DstConfigInfo m_startConfig ORTHA_GUARDED_BY(m_mutex);
    DstConfigInfo m_endConfig ORTHA_GUARDED_BY(m_mutex);
    CTime m_startTime ORTHA_GUARDED_BY(m_mutex);  // of the rule, in the year in use: in standard time
    CTime m_endTime ORTHA_GUARDED_BY(m_mutex);    // the same, in daylight-saving time
    bool m_paused ORTHA_GUARDED_BY(m_mutex) = false;
    CTime::ConvertDstProc m_convertCallback ORTHA_GUARDED_BY(m_callbackMutex);
};

}  // namespace General::Ortha
