// Collects the texts that the log hands to its printer.
#pragma once

#include <mutex>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "ortha/ortha3/PrintLog.h"

namespace General::Ortha::Test {

/// Is the log printer during its life, which keeps the console silent. Any thread may log meanwhile.
class LogLines
{
public:
    LogLines() { setLogPrinter({&LogLines::onPrint, this}); }
    ~LogLines() { setLogPrinter({}); }

    /// The texts since the last call, one for each log call.
    std::vector<std::string> take()
    {
        std::lock_guard guard(m_mutex);
        return std::exchange(m_texts, {});
    }

    /// The same, joined.
    std::string text()
    {
        const std::vector<std::string> texts = take();
        return std::accumulate(texts.begin(), texts.end(), std::string());
    }

private:
    void onPrint(const char* text)
    {
        std::lock_guard guard(m_mutex);
        m_texts.emplace_back(text);
    }

    std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

}  // namespace General::Ortha::Test
