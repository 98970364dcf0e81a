#include "ortha/ortha3/Error.h"

#include <map>
#include <string>

#include "ortha/ortha3/Mutex.h"

#include "Src/Ortha3/Singleton.h"
#include "Src/Ortha3/ThreadNumber.h"

namespace General::Ortha {

namespace {

ThreadNumber& lastError()
{
    static ThreadNumber& code = *new ThreadNumber;
    return code;
}

[[maybe_unused]] const ThreadNumber& s_madeEarly = lastError();

class CErrorMessageTable
{
public:
    void set(int code, const char* text)
    {
        CGuard guard(m_mutex);
        m_messages[code] = text ? text : "";
    }

    const char* get(int code)
    {
        CGuard guard(m_mutex);
        return find(code);
    }

    string copy(int code)
    {
        CGuard guard(m_mutex);
        return find(code);
    }

private:
    const char* find(int code) const ORTHA_REQUIRES(m_mutex)
    {
        const auto found = m_messages.find(code);
        return found == m_messages.end() ? "" : found->second.c_str();
    }

    CMutex m_mutex;
    std::map<int, std::string> m_messages ORTHA_GUARDED_BY(m_mutex);  // entries are never removed: their texts are handed out
};

CErrorMessageTable& table()
{
    return *Singleton<CErrorMessageTable>::instance();
}

}  // namespace

void setLastError(int code)
{
    lastError().set(code);
}

int getLastError()
{
    return static_cast<int>(lastError().get());
}

void setErrMsg(int code, const char* text)
{
    table().set(code, text);
}

const char* getErrMsg(int code)
{
    return table().get(code);
}

void setErrorMessage(int code, const string& text)
{
    table().set(code, text.c_str());
}

string getErrorMessage(int code)
{
    return table().copy(code);
}

}  // namespace General::Ortha
